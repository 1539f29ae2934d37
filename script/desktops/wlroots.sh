# SPDX-License-Identifier: MIT
# What the desktops of wlroots have in common: waybar with its tray, mako for notifications, and the GTK portal for
# light and dark. A desktop's own file defines:
#   startCompositor WIDTH HEIGHT SCALE   with a screen of this many pixels
#   WAYLAND_DISPLAY                      the socket that it makes

export WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman
export XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=$desktop

screenWidth=1280
screenHeight=800
barHeight=30
# Each start of the panel has the next size of icons.
iconSizes=(21 16)
panelStarts=0
panelProcess=
declare -A keyCodes=([Escape]=1 [Return]=28 [Up]=103 [Left]=105 [Right]=106 [Down]=108)

startDesktop() {
    startCompositor "$(inPixels $screenWidth)" "$(inPixels $screenHeight)" "$scale"
    dbus-update-activation-environment WAYLAND_DISPLAY XDG_CURRENT_DESKTOP XDG_SESSION_TYPE
    mkfifo -m 600 "$XDG_RUNTIME_DIR/input"
    start input python3 "$tools/wlroots-input.py" "$XDG_RUNTIME_DIR/input" $screenWidth $screenHeight
    mkdir -p ~/.config/xdg-desktop-portal
    printf '[preferred]\ndefault=gtk\n' >~/.config/xdg-desktop-portal/portals.conf
    start mako mako
    waitFor 10 isOnBus org.freedesktop.Notifications
}

inPixels() {
    awk -v points="$1" -v scale="$scale" 'BEGIN { print points * scale }'
}

startPanel() {
    local iconSize=${iconSizes[panelStarts++ % ${#iconSizes[@]}]}
    mkdir -p ~/.config/waybar
    cat >~/.config/waybar/config <<END
{ "height": $barHeight, "modules-right": ["tray"], "tray": { "icon-size": $iconSize, "spacing": 10 } }
END
    start panel waybar
    panelProcess=$!
    waitFor 10 isOnBus org.kde.StatusNotifierWatcher
}

endPanel() {
    kill "$panelProcess" && waitFor 5 isOver "$panelProcess"
}

iconBox() {
    panel icon
}

itemPlace() {
    local left top width height
    read -r left top width height < <(iconBox) || return
    echo $((left + width / 2)) $((top + height / 2))
}

input() {
    # Opened for reading, too: it is not waited for if nobody reads.
    echo "$@" 1<>"$XDG_RUNTIME_DIR/input"
}

clickAt() {
    # Twice, for a menu only minds a pointer that it saw moving.
    input move $(($1 - 3)) "$2"
    input move "$1" "$2"
    input button 1
    input button 0
}

# The menu hangs by its upper right corner from where it was asked for.
linePlace() {
    local right below
    read -r right below < <(panel place "$1") || return
    # shellcheck disable=SC2086
    set -- $menuPlace
    echo $(($1 + right)) $(($2 + below))
}

shownMenu() {
    panel lines
}

# The menu keeps underscores from screen readers, and from us.
readableLines() {
    menuLines | tr -d _
}

# The panel's widgets.
panel() {
    local command=$1 text=("${@:2}")
    python3 "$tools/gtk-widgets.py" "$command" waybar "${text[@]//_/}"
}

# The panel gets no keys.
closeMenu() {
    clickAt 20 $((barHeight / 2))
    isDrawn
}

press() {
    input key "${keyCodes[$1]}"
}

capture() {
    grim "$1"
}

programWindows() {
    local active
    active=$(wlrctl toplevel list state:active)
    wlrctl toplevel list | awk -v active="$active" '{
        place = index($0, ": ")
        print ($0 == active ? "active" : "-") "\t" substr($0, 1, place - 1) "\t" substr($0, place + 2)
    }'
}

coverWindows() {
    openCover
    waitFor 10 coverIsActive
}

coverIsActive() {
    wlrctl toplevel find title:"Something Else" state:active
}

# mako shows it in the upper right corner, below the panel.
clickNotification() {
    clickAt $((screenWidth - 150)) $((barHeight + 30))
}

useLook() {
    local scheme=prefer-light
    [[ $1 == light ]] || scheme=prefer-dark
    gsettings set org.gnome.desktop.interface color-scheme "$scheme"
}

# mako takes icons only from folders that are named after a size in pixels, and ours is for any size.
notificationHasIcon() {
    return 2
}
