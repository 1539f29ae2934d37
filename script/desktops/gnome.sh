# SPDX-License-Identifier: MIT
# GNOME Shell with the indicator extension, on a virtual monitor. A stand-in for the login and display managers lets it
# lock its screen.

export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=GNOME XDG_SESSION_ID=1 WAYLAND_DISPLAY=wayland-gnome

ourExtension=try@usage-meter.tarvo.net
indicators=ubuntu-appindicators@ubuntu.com

# Runs as root.
startSystem() {
    # As a booted system has them; by the second one GNOME knows that there is a login manager.
    mkdir -m 1777 /tmp/.X11-unix
    mkdir -p /run/dbus /run/systemd/seats
    cat >/etc/dbus-1/system.d/display-manager.conf <<'END'
<busconfig>
  <policy user="root"><allow own="org.gnome.DisplayManager"/></policy>
  <policy context="default"><allow send_destination="org.gnome.DisplayManager"/></policy>
</busconfig>
END
    dbus-daemon --system --fork --nopidfile
    python3 -m dbusmock --system --template logind >/var/log/logind &
    gdbus wait --system --timeout 10 org.freedesktop.login1
    mock org.freedesktop.login1 /org/freedesktop/login1 AddSession 1 seat0 'uint32 1000' user true
    python3 -m dbusmock --system org.gnome.DisplayManager /org/gnome/DisplayManager/Manager \
        org.gnome.DisplayManager.Manager >/var/log/display-manager &
    gdbus wait --system --timeout 10 org.gnome.DisplayManager
    mock org.gnome.DisplayManager /org/gnome/DisplayManager/Manager AddProperty \
        org.gnome.DisplayManager.Manager Version "<'48'>"
    mock org.gnome.DisplayManager /org/gnome/DisplayManager/Manager AddMethod \
        org.gnome.DisplayManager.Manager RegisterSession 'a{sv}' '' ''
}

mock() {
    gdbus call --system --dest "$1" --object-path "$2" --method "org.freedesktop.DBus.Mock.$3" "${@:4}" >/dev/null
}

startDesktop() {
    scale=$1
    installOurExtension
    enableExtensions "$ourExtension"
    gsettings set org.gnome.shell welcome-dialog-last-shown-version 999
    gsettings set org.gnome.desktop.session idle-delay 0
    dbus-update-activation-environment XDG_SESSION_TYPE XDG_CURRENT_DESKTOP WAYLAND_DISPLAY LIBGL_ALWAYS_SOFTWARE
    local pixels
    pixels=$(awk -v scale="$scale" 'BEGIN { print 1280 * scale "x" 800 * scale }')
    start desktop gnome-shell --headless --wayland-display="$WAYLAND_DISPLAY" --virtual-monitor "$pixels"
    waitFor 60 shell Start 2>>"$log/waiting"
    displays ApplyMonitorsConfig "$(displays GetCurrentState | sed -E 's/^\((uint32 [0-9]+).*/\1/')" 1 \
        "[(0, 0, $scale, uint32 0, true, [('Meta-0', '$pixels@60.000', @a{sv} {})])]" '{}' >/dev/null
}

displays() {
    gdbus call --session --dest org.gnome.Mutter.DisplayConfig --object-path /org/gnome/Mutter/DisplayConfig \
        --method "org.gnome.Mutter.DisplayConfig.$1" "${@:2}"
}

installOurExtension() {
    local folder=~/.local/share/gnome-shell/extensions/$ourExtension
    mkdir -p "$folder"
    cp "$tools/gnome-extension.js" "$folder/extension.js"
    cat >"$folder/metadata.json" <<END
{
  "uuid": "$ourExtension", "name": "Try", "description": "Tries the program",
  "shell-version": ["48"], "session-modes": ["user", "unlock-dialog"]
}
END
}

enableExtensions() {
    local names
    names=$(printf "'%s', " "$@")
    gsettings set org.gnome.shell enabled-extensions "[${names%, }]"
}

# What our extension does and knows.
shell() {
    ask org.gnome.Shell "$@"
}

startPanel() {
    enableExtensions "$ourExtension" "$indicators"
    waitFor 10 isOnBus org.kde.StatusNotifierWatcher
}

endPanel() {
    enableExtensions "$ourExtension"
    waitFor 10 isNotOnBus org.kde.StatusNotifierWatcher
}

isNotOnBus() {
    ! isOnBus "$1"
}

itemPlace() {
    shell Item
}

iconBox() {
    shell Icon
}

windowBox() {
    shell WindowBox "$1"
}

shownFigure() {
    shell Label
}

shownMenu() {
    shell Menu
}

linePlace() {
    shell Line "$1"
}

clickAt() {
    shell Click "$1 $2"
}

press() {
    shell Press "$1"
}

capture() {
    shell Capture "$1" && mogrify -alpha off "$1"
}

programWindows() {
    shell Windows | awk -F '\t' -v program="$program" '$1 == program { print $2 "\t" $3 "\t" $4 }'
}

coverWindows() {
    openCover
    waitFor 10 shell Change "raise Something Else"
}

minimizeWindow() {
    shell Change "minimize $1"
}

moveWindowAway() {
    shell Change "away $1"
}

# In the colour of the banner's text.
notificationHasIcon() {
    [[ $(shell NotificationIcon) == "$identifier"* ]]
}

clickNotification() {
    local place
    place=$(shell Notification) || return
    # shellcheck disable=SC2086
    clickAt $place
}

useLook() {
    gsettings set org.gnome.desktop.interface color-scheme "$([[ $1 == dark ]] && echo prefer-dark || echo default)"
}

lockScreen() {
    gdbus call --session --dest org.gnome.ScreenSaver --object-path /org/gnome/ScreenSaver \
        --method org.gnome.ScreenSaver.Lock
}

# As the login manager does once the password was right.
unlockScreen() {
    gdbus call --system --dest org.freedesktop.login1 --object-path /org/freedesktop/login1/session/1 \
        --method org.freedesktop.login1.Session.Unlock
}
