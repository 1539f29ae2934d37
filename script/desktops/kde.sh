# SPDX-License-Identifier: MIT
# Plasma on KWin, in a window of an X server without a screen, through which it is clicked and looked at.

export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=KDE KDE_FULL_SESSION=true KDE_SESSION_VERSION=6
export XDG_MENU_PREFIX=plasma- DISPLAY=:77 WAYLAND_DISPLAY=wayland-kde

startDesktop() {
    scale=$1
    local width height
    read -r width height < <(awk -v scale="$scale" 'BEGIN { print 1280 * scale, 800 * scale }')
    kwriteconfig6 --file kwinrc --group Desktops --key Number 2
    writeScreen "$width" "$height"
    dbus-update-activation-environment --all
    start screen Xvfb "$DISPLAY" -screen 0 "${width}x${height}x24"
    waitFor 10 xdotool getmouselocation >/dev/null 2>&1
    start windows kwin_wayland --x11-display "$DISPLAY" --width 1280 --height 800 --scale "$scale" \
        --socket "$WAYLAND_DISPLAY" --no-lockscreen
    waitFor 20 isOnBus org.kde.KWin
    kbuildsycoca6 >>"$log/desktop" 2>&1
    start desktop kded6
    start desktop /usr/libexec/kactivitymanagerd
    waitFor 20 isOnBus org.kde.StatusNotifierWatcher
    start driver python3 "$tools/kde-driver.py" "$tools/kde-windows.js"
    waitFor 10 isOnBus net.tarvo.UsageMeter.Try
}

# As the user sets the scale up; KWin's argument only makes its window larger.
writeScreen() {
    cat >~/.config/kwinoutputconfig.json <<END
[
  { "name": "outputs", "data": [ { "connectorName": "X11-0", "scale": $scale,
    "mode": { "width": $1, "height": $2, "refreshRate": 60000 } } ] },
  { "name": "setups", "data": [ { "lidClosed": false, "outputs": [ { "enabled": true, "outputIndex": 0,
    "position": { "x": 0, "y": 0 }, "priority": 0 } ] } ] }
]
END
}

# What our driver does and knows.
plasma() {
    ask net.tarvo.UsageMeter.Try "$@"
}

startPanel() {
    # It tells what it shows as to a screen reader.
    start panel env QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 plasmashell
    panel=$!
}

endPanel() {
    kill "$panel" && waitFor 10 isOver "$panel"
}

# The item has the name that a screen reader says, which is the figure.
itemPlace() {
    plasma Item "$(title)"
}

iconBox() {
    plasma Icon "$(title)"
}

shownMenu() {
    local place
    place=$(linePlace Connection) || return
    # Before it is opened a submenu has no lines.
    # shellcheck disable=SC2086
    clickAt $place
    isDrawn
    plasma Menu
}

closeMenu() {
    waitFor 10 menuIsClosed
}

# One key may only close a submenu.
menuIsClosed() {
    plasma Menu >/dev/null 2>&1 || return 0
    press Escape
    isDrawn
    return 1
}

linePlace() {
    plasma Line "$1"
}

clickAt() {
    local x y
    read -r x y < <(awk -v x="$1" -v y="$2" -v scale="$scale" 'BEGIN { printf "%d %d\n", x * scale, y * scale }')
    # Twice, for a menu only minds a pointer that it saw moving.
    xdotool mousemove $((x - 5)) "$y" mousemove "$x" "$y" click 1
}

press() {
    xdotool key "$1"
}

# Hardly compressed, for which there is no time.
capture() {
    import -silent -window root -define png:compression-level=1 -define png:compression-filter=0 "$1"
}

programWindows() {
    plasma Windows | awk -F '\t' -v program="$program" '$1 == program { print $2 "\t" $3 "\t" $4 }'
}

# The task list has a button for each window.
isKnown() {
    isKnownWithIcon "$1" "$(plasma Icon "$1")"
}

windowBox() {
    plasma WindowBox "$1"
}

coverWindows() {
    openCover
    waitFor 10 plasma Raise "Something Else"
}

minimizeWindow() {
    plasma Minimize "$1"
}

moveWindowAway() {
    plasma Away "$1"
}

# It never stands still: a ring shows how much longer it stays.
notificationIsShown() {
    waitFor 10 plasma Notification "Usage updated"
}

clickNotification() {
    local place
    place=$(plasma Notification "Usage updated") || return
    # shellcheck disable=SC2086
    clickAt $place
}

useLook() {
    plasma-apply-colorscheme "$([[ $1 == dark ]] && echo BreezeDark || echo BreezeLight)"
}
