# SPDX-License-Identifier: MIT
# Xfce with its panel, window manager, settings and notifications, on a virtual X server.

export XDG_SESSION_TYPE=x11 XDG_CURRENT_DESKTOP=XFCE DISPLAY=:1

screenWidth=1280
screenHeight=800
panelProcess=

startDesktop() {
    writePanelSettings
    start server Xvfb "$DISPLAY" -nolisten tcp -screen 0 "$(inPixels $screenWidth)x$(inPixels $screenHeight)x24"
    waitFor 10 xdpyinfo >>"$log/waiting" 2>&1
    dbus-update-activation-environment DISPLAY XDG_SESSION_TYPE XDG_CURRENT_DESKTOP
    xfconf-query --create -c xfce4-desktop -p /desktop-icons/style -t int -s 0
    # Whole scales are a setting, which no programs but GTK's heed; one in between is made with the resolution of texts.
    if [[ $scale == 1.5 ]]; then
        xfconf-query --create -c xsettings -p /Xft/DPI -t int -s 144
    else
        xfconf-query --create -c xsettings -p /Gdk/WindowScalingFactor -t int -s "$scale"
    fi
    start settings xfsettingsd --no-daemon --disable-wm-check
    start windows xfwm4
    start background xfdesktop
    start notifyd /usr/lib/x86_64-linux-gnu/xfce4/notifyd/xfce4-notifyd
    waitFor 10 isOnBus org.freedesktop.Notifications
    waitFor 10 isOnBus org.xfce.SettingsDaemon
}

inPixels() {
    awk -v points="$1" -v scale="$scale" 'BEGIN { print int(points * scale) }'
}

writePanelSettings() {
    mkdir -p ~/.config/xfce4/xfconf/xfce-perchannel-xml
    cat >~/.config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml <<'END'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="icon-size" type="uint" value="16"/>
      <property name="size" type="uint" value="26"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
    </property>
    <property name="plugin-3" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
END
}

startPanel() {
    start panel xfce4-panel --disable-wm-check
    panelProcess=$!
    waitFor 10 isOnBus org.kde.StatusNotifierWatcher
}

endPanel() {
    kill "$panelProcess" && waitFor 5 isOver "$panelProcess"
}

# The status area is the last thing in the panel, and there is nothing else in it.
iconBox() {
    local left top width height area ink
    read -r left top width height < <(geometry --class xfce4-panel) || return
    area=$(mktemp --suffix=.png)
    # Without the line below the panel.
    import -silent -window root -crop "$((height * 2))x$((height - 2))+$((width - height * 2))+0" +repage "$area"
    ink=$(convert "$area" -fuzz 20% -format '%@' info: && rm "$area") || return
    awk -F '[x+]' -v left=$((width - height * 2)) -v all=$((height * 2)) -v scale="$scale" \
        '{ print (left + $3) / scale, $4 / scale, $1 / scale, $2 / scale; exit $1 == 0 || $1 == all }' <<<"$ink"
}

# "X Y WIDTH HEIGHT" in pixels of the inside of the last window that is found by these options of xdotool's.
geometry() {
    local window
    window=$(xdotool search --onlyvisible "$@" | tail -n 1) && [[ $window ]] || return
    xwininfo -id "$window" | awk '/Absolute upper-left|Width:|Height:/ { printf "%s ", $NF } END { print "" }'
}

itemPlace() {
    local box
    box=$(iconBox) && awk '{ print $1 + $3 / 2, $2 + $4 / 2 }' <<<"$box"
}

shownMenu() {
    python3 "$tools/gtk-widgets.py" heard-lines
}

# The menu keeps underscores from screen readers, and from us.
readableLines() {
    menuLines | tr -d _
}

capture() {
    import -silent -window root "png:$1"
}

clickAt() {
    xdotool mousemove "$(inPixels "$1")" "$(inPixels "$2")"
    # A tool tip may have been in the way.
    isDrawn
    xdotool click 1
}

press() {
    xdotool key "$1"
    # Off the item, whose tool tip would come up.
    [[ $1 != Return ]] || xdotool mousemove 0 "$(inPixels $screenHeight)"
}

programWindows() {
    local window active
    active=$(xdotool getactivewindow 2>/dev/null)
    for window in $(xprop -root _NET_CLIENT_LIST | grep -o '0x[0-9a-f]*'); do
        printf '%s\t%s\t%s\n' "$( ((window == active)) && echo active || echo -)" \
            "$(entryOf "$window")" "$(xdotool getwindowname $((window)))"
    done
}

# The desktop entry for windows of this one's class.
entryOf() {
    local class
    class=$(xprop -id "$1" WM_CLASS | sed -n 's/.*, "\(.*\)"/\1/p')
    grep -lx "StartupWMClass=$class" /usr/share/applications/*.desktop | xargs -r basename -s .desktop
}

# In the task list, and in the title bar.
isKnown() {
    isKnownWithIcon "$1" "0 0 40 26" &&
        isKnownWithIcon "$1" "$(windowBox "$1" | awk '{ print $1, $2 - 28, 30, 28 }')"
}

windowOf() {
    xdotool search --name "^$1"
}

windowBox() {
    geometry --name "^$1" | awk -v scale="$scale" '{ print $1 / scale, $2 / scale, $3 / scale, $4 / scale }'
}

coverWindows() {
    openCover
    waitFor 10 windowOf "Something Else" >/dev/null
    xdotool windowactivate --sync "$(windowOf "Something Else")"
}

minimizeWindow() {
    xdotool windowminimize --sync "$(windowOf "$1")"
}

moveWindowAway() {
    xdotool set_desktop_for_window "$(windowOf "$1")" 1
}

# A click on its text only closes it.
clickNotification() {
    local left top width height
    read -r left top width height < <(python3 "$tools/gtk-widgets.py" button xfce4-notifyd) || return
    clickAt $((left + width / 2)) $((top + height / 2))
}

# What its settings dialog does when a theme is picked whose name says that it is dark.
useLook() {
    local theme=Adwaita scheme=default
    [[ $1 == light ]] || theme=Adwaita-dark scheme=prefer-dark
    xfconf-query --create -c xsettings -p /Net/ThemeName -t string -s "$theme"
    gsettings set org.gnome.desktop.interface color-scheme "$scheme"
}
