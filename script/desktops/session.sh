#!/bin/bash
# SPDX-License-Identifier: MIT
# Runs inside the clean Debian, as root at first: session.sh DESKTOP. Brings the desktop up as an ordinary user, drives
# the program in it, and prints one line a check.
#
# The desktop's own file, beside this one, defines:
#   startDesktop SCALE     its windows, notifications and settings, on a screen of 1280x800 points and this scale
#   startPanel, endPanel   what the status item shows in
#   itemPlace              prints the item's middle, "X Y", in points; fails while it is not shown
#   clickAt X Y            the primary button; moves there first
#   press KEY              a key by its X name: Up, Down, Right, Return, Escape
#   capture FILE           a picture of the whole screen
#   iconBox                as itemPlace, but "X Y WIDTH HEIGHT" of the item's icon
#   windowBox TITLE        the same of a window's inside
#   shownFigure            the text that the panel shows as the item's figure; only where it shows one as text
#   shownMenu              the lines of the opened menu as the desktop shows them, in the form of usage-meter-status
#   linePlace TEXT         where the opened menu shows the line that begins like this, as itemPlace
#   programWindows         a line for each window of the program: "active" or "-", a tab, what the desktop takes it for
#                          (the desktop entry's name), a tab, its title
#   coverWindows           another program's window, over all others and with the focus; openCover and endCover do most
#   minimizeWindow TITLE, moveWindowAway TITLE   out of sight: to the task list, to another workspace; returns 2 where
#                          the desktop has no such thing
#   clickNotification      a click on the notification that is shown, where a user would click
#   useLook light|dark     the user's choice in the desktop's settings; returns 2 where there is none
#   lockScreen, unlockScreen   only where the panel does not outlive the lock of the screen
#   startSystem            only if it needs something of the system, such as its bus; runs as root before all others
set -uo pipefail

desktop=$1
tools=/try
identifier=net.tarvo.UsageMeter
settings=~/.config/$identifier/preferences.plist
pictures=~/pictures
showStatus=$tools/usage-meter-status
scale=${2:-1}
log=~/log/at-$scale
# A desktop that cannot have them all says so in its file.
scales=(1 2 1.5)
program=
cover=

waitFor() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

# A line of the outcome. The arguments: what is checked, and the command that succeeds if it holds.
check() {
    local name=$1 status=0
    shift
    "$@" >>"$log/checks" 2>&1 || status=$?
    case $status in
    0) echo "ok: $desktop: $name" ;;
    2) echo "left out: $desktop: $name" ;;
    *)
        echo "FAILED: $desktop: $name"
        capture "$pictures/failed-at-$scale-$((++failures)).png" || true
        ;;
    esac
}
failures=0

start() {
    local name=$1
    shift
    "$@" >>"$log/$name" 2>&1 &
}

isOnBus() {
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.NameHasOwner "$1" | grep -q true
}

# Calls a method of a helper of ours: its name on the bus, the method, the text that goes in. Prints what comes out.
ask() {
    local answer
    answer=$(gdbus call --session --dest "$1" --object-path /net/tarvo/UsageMeter/Try \
        --method "net.tarvo.UsageMeter.Try.$2" -- "${3-}") || return
    python3 -c 'import ast, sys; text, = ast.literal_eval(sys.argv[1]); print(text) if text else None' "$answer"
}

isOver() {
    ! kill -0 "$1" 2>/dev/null
}

startBus() {
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    start bus dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS"
    waitFor 10 test -S "$XDG_RUNTIME_DIR/bus"
}

startProvider() {
    start provider "$tools/usage-meter-provider" --folder ~/certificate --port 8443
    waitFor 20 grep -qs https "$log/provider"
    # The web engine knows the user's own authorities from here.
    mkdir -p ~/.pki/nssdb
    certutil -N -d sql:"$HOME/.pki/nssdb" --empty-password
    certutil -A -d sql:"$HOME/.pki/nssdb" -n provider -t C,, -i ~/certificate/authority.pem
}

# Two connections, one of them with an underscore in its name.
writeSettings() {
    mkdir -p "${settings%/*}"
    cat >"$settings" <<'END'
<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
  <key>tarvo_keys</key>
  <array>
    <string>Home - demohome</string>
    <string>Cottage_by_the_sea - democottage</string>
  </array>
  <key>tarvo_key_selected</key>
  <string>Home - demohome</string>
  <key>usage_cap_values</key>
  <dict>
    <key>Home - demohome</key>
    <string>100</string>
  </dict>
</dict>
</plist>
END
}

startProgram() {
    usage-meter 2>>"$log/program" &
    program=$!
}

endProgram() {
    kill "$program" && waitFor 5 isOver "$program"
}

# What the program says, over the bus.
title() {
    "$showStatus" --timeout 5 2>/dev/null | sed -n 's/^Title: //p'
}

hasFigure() {
    [[ $(title) == *[0-9]* ]]
}

# The lines of the menu as they stand in it, submenus indented.
menuLines() {
    "$showStatus" --timeout 5 | tail -n +2
}

itemIsShown() {
    waitFor 10 hasFigure && waitFor 10 itemPlace >/dev/null && isDrawn && waitFor 3 figureIsShown
}

figureIsShown() {
    ! declare -F shownFigure >/dev/null || [[ $(shownFigure) == "$(title)" ]]
}

# Until two pictures in a row are the same.
isDrawn() {
    local before now
    now=$(mktemp --suffix=.png)
    capture "$now" && waitFor 10 isStill
    rm -f "$now"
}

isStill() {
    before=$(identify -format '%#' "$now")
    capture "$now"
    [[ $(identify -format '%#' "$now") == "$before" ]]
}

# A picture of the screen once nothing moves on it.
picture() {
    isDrawn
    capture "$pictures/$1.png"
}

# What a picture shows in a box of points; nothing if there is no box.
cutOut() {
    [[ $2 ]] || { : >"$3" && return 1; }
    local box
    box=$(awk -v scale="$scale" '{ print $3 * scale "x" $4 * scale "+" $1 * scale "+" $2 * scale }' <<<"$2")
    convert "$1" -crop "$box" +repage "$3"
}

# How far apart the lightest and the darkest pixel are, and the highest steps from one pixel to the next, across and
# down; from 0 to 1.
contrasts() {
    convert "$1" -colorspace gray \( -clone 0 -roll +1+0 -clone 0 -compose difference -composite -shave 1x1 \) \
        \( -clone 0 -roll +0+1 -clone 0 -compose difference -composite -shave 1x1 \) \
        -format '%[fx:maxima-minima] ' info:
}

# Whether something is drawn in this box, and for this scale: a step is nearly as high as the contrast. If it were drawn
# with one pixel a point and stretched, it would be divided by the scale.
isSharp() {
    local cut status
    cut=$(mktemp --suffix=.png)
    capture "$cut" && cutOut "$cut" "$1" "$cut" && contrasts "$cut" |
        awk '{ print; exit $1 < 0.4 || $2 < 0.7 * $1 || $3 < 0.7 * $1 }' && ! isDoubled "$cut"
    status=$?
    rm "$cut"
    return $status
}

# Whether each of its pixels is there twice, across and down.
isDoubled() {
    [[ $scale == 2 ]] &&
        [[ $(identify -format '%#' "$1") == "$(convert "$1" -sample 50% -sample 200% -format '%#' info:)" ]]
}

iconIsSharp() {
    isSharp "$(iconBox)"
}

windowIsSharp() {
    isDrawn
    isSharp "$(windowBox "$1")"
}

popUpMenu() {
    menuPlace=$(itemPlace) || return
    # shellcheck disable=SC2086
    clickAt $menuPlace
    isDrawn
}

closeMenu() {
    press Escape
    isDrawn
}

# As menuLines, for a desktop on which not all of a text can be read.
readableLines() {
    menuLines
}

showsWholeMenu() {
    popUpMenu && diff <(readableLines) <(shownMenu)
}

# Chooses a line, or the lines of submenus and one in the last of them.
choose() {
    local line place
    declare -F linePlace >/dev/null || { chooseWithKeys "$@"; return; }
    popUpMenu || return
    for line; do
        place=$(linePlace "$line") || { closeMenu; return 1; }
        # shellcheck disable=SC2086
        clickAt $place
        isDrawn
    done
}

# From the end of the opened menu upwards, and from the beginning of a submenu downwards. All lines can be chosen but
# separators.
chooseWithKeys() {
    popUpMenu || return
    pressTimes Up "$(menuLines | grep -v '^ ' | grep -v '^--' | tac | lineNumber "$1")" || return
    if (($# > 1)); then
        press Right
        pressTimes Down $(($(menuLines | sed -n "/^$1\$/,/^[^ ]/s/^    \(\* \)\?//p" | lineNumber "$2") - 1)) || return
    fi
    press Return
}

lineNumber() {
    grep -nxF -m 1 "$1" | cut -d : -f 1
}

pressTimes() {
    local times
    [[ $2 =~ ^[0-9]+$ ]] || return
    for ((times = $2; times > 0; --times)); do
        press "$1"
    done
}

windowLine() {
    programWindows | awk -F '\t' -v title="$1" 'index($3, title) == 1'
}

isShown() {
    [[ -n $(windowLine "$1") ]]
}

isActive() {
    [[ $(windowLine "$1") == active* ]]
}

isKnown() {
    [[ $(windowLine "$1" | cut -f 2) == "$identifier" ]]
}

# And it shows the program's icon in this box, where it shows a window's.
isKnownWithIcon() {
    local cut status
    cut=$(mktemp --suffix=.png)
    [[ $(windowLine "$1" | cut -f 2) == "$identifier" ]] && capture "$cut" && cutOut "$cut" "$2" "$cut" &&
        showsIcon "$cut"
    status=$?
    rm "$cut"
    return $status
}

openCover() {
    start cover zenity --info --title "Something Else" --text "Another program's window" --width 900 --height 600
    cover=$!
}

endCover() {
    [[ -z $cover ]] || { kill "$cover" 2>/dev/null && waitFor 5 isOver "$cover"; }
    cover=
}

showsWhenChosen() {
    choose "$1" && waitFor 15 isActive "$2"
}

showsPageWhenChosen() {
    showsWhenChosen "Daily Usage" "Daily Usage" && waitFor 20 pageIsShown
}

# A page is full of letters; before it is loaded the window is nearly empty.
pageIsShown() {
    local cut full
    cut=$(mktemp --suffix=.png)
    capture "$cut" && cutOut "$cut" "$(windowBox "Daily Usage")" "$cut"
    full=$(convert "$cut" -colorspace gray -format '%[fx:standard_deviation>0.08]' info:)
    rm "$cut"
    [[ $full == 1 ]]
}

# From behind another window.
comesFromBehind() {
    coverWindows && ! isActive "$2" && showsWhenChosen "$1" "$2"
}

comesFromMinimized() {
    minimizeWindow "$2" && ! isActive "$2" && showsWhenChosen "$1" "$2"
}

comesFromAway() {
    moveWindowAway "$2" && ! isActive "$2" && showsWhenChosen "$1" "$2"
}

showsNoUnderscores() {
    menuLines | grep -q 'Cottage_by_the_sea' && ! menuLines | grep -q __
}

# How often the program's threads gave way to others.
switches() {
    cat /proc/"$program"/task/*/status | awk '/ctxt_switches/ { sum += $2 } END { print sum }'
}

sleepsFor() {
    local before
    before=$(switches)
    sleep "$1"
    [[ $(switches) == "$before" ]]
}

# Threads that had work last for half a minute.
isIdle() {
    waitFor 45 sleepsFor 10
}

updatesNow() {
    local before
    before=$(stat -c %y "$HOME/.cache/$identifier/demohome")
    choose "Update Now" && waitFor 10 reportIsNewerThan "$before"
}

reportIsNewerThan() {
    [[ $(stat -c %y "$HOME/.cache/$identifier/demohome") != "$1" ]]
}

switchesConnection() {
    local before looks
    before=$(title)
    looks=$(itemLooks)
    choose Connection "$1" && waitFor 10 titleIsNot "$before" && menuLines | grep -q "^    \* $1" && isDrawn &&
        [[ $(itemLooks) != "$looks" ]] && figureIsShown
}

# The text in the panel, or the drawn figure.
itemLooks() {
    local cut
    ! declare -F shownFigure >/dev/null || { shownFigure; return; }
    cut=$(mktemp --suffix=.png)
    capture "$cut" && cutOut "$cut" "$(iconBox)" "$cut" && identify -format '%#' "$cut"
    rm "$cut"
}

titleIsNot() {
    hasFigure && [[ $(title) != "$1" ]]
}

# The next update falls due in front of our eyes.
bringUpdateForward() {
    local due
    due=$(date -u -d '+8 seconds' +%FT%TZ)
    sed -i -z -E "s|(<key>nextUpdate</key>\s*<date>)[^<]*|\1$due|" "$HOME/.cache/$identifier/demohome"
}

watchNotifications() {
    start notifications dbus-monitor --session "interface='org.freedesktop.Notifications',member='Notify'"
    waitFor 5 grep -qs NameAcquired "$log/notifications"
}

isNotified() {
    grep -q 'Usage updated' "$log/notifications"
}

notifies() {
    endProgram && bringUpdateForward && startProgram && waitFor 30 isNotified && notificationIsShown
}

# A desktop on which something moves in it finds it otherwise.
notificationIsShown() {
    isDrawn
}

notificationHasIcon() {
    showsIcon "$pictures/notification.png"
}

# The green that is in nothing else of a desktop.
showsIcon() {
    convert "$1" -fuzz 3% -fill black +opaque '#2B7A33' -fill white -opaque '#2B7A33' \
        -format '%[fx:mean*w*h]\n' info: | awk '{ print; exit $1 < 50 }'
}

notificationShowsUsage() {
    clickNotification && waitFor 10 isActive "$usageTitle"
}

followsLook() {
    local status=0
    useLook dark || return
    waitFor 10 windowLooks dark "$1" || status=1
    picture "$2-dark"
    useLook light
    waitFor 10 windowLooks light "$1" && return $status
}

windowLooks() {
    local cut look
    cut=$(mktemp --suffix=.png)
    capture "$cut" && cutOut "$cut" "$(windowBox "$2")" "$cut"
    look=$(convert "$cut" -colorspace gray -format '%[fx:mean<0.4?0:mean>0.6?1:0.5]' info:)
    rm "$cut"
    [[ $look == "$([[ $1 == light ]] && echo 1 || echo 0)" ]]
}

# With this window open, or with none.
outlivesLock() {
    local status=0
    [[ $# == 0 ]] || isShown "$1" || return
    programWindows | sort >"$log/windows"
    lockScreen
    # Longer than the program waits for a panel to come back.
    sleep 4
    diff <(cut -f 3 "$log/windows") <(programWindows | cut -f 3 | sort) || status=1
    unlockScreen
    itemIsShown && diff "$log/windows" <(programWindows | sort) && return $status
}

# As after the installation.
forgetEverything() {
    rm -rf ~/.config/"$identifier" ~/.cache/"$identifier"
}

textIsShown() {
    waitFor 10 itemPlace >/dev/null && [[ -n $(title) ]] && waitFor 3 figureIsShown
}

saysNothing() {
    ! grep . "$log/program"
}

quits() {
    choose "Quit" && waitFor 5 isOver "$program" && wait "$program"
}

usageTitle="Usage Meter - Home"

tryProgram() {
    startDesktop "$scale"
    startProgram
    waitFor 20 isOnBus "$identifier"
    startPanel
    check "the item appears with its figure in a panel that came later" itemIsShown
    check "its icon is drawn sharply" iconIsSharp
    picture panel
    endPanel
    startPanel
    check "the item is there again when the panel was restarted" itemIsShown
    check "and its icon is drawn sharply there" iconIsSharp
    check "the menu shows every line" showsWholeMenu
    picture menu
    closeMenu
    check "no line has a stray underscore" showsNoUnderscores
    check "it sleeps while nothing happens" isIdle
    check "Update Now fetches the figures" updatesNow
    check "another connection has other figures" switchesConnection "Cottage_by_the_sea - democottage"
    check "and back" switchesConnection "Home - demohome"
    check "Usage Window shows it in front" showsWhenChosen "Usage Window" "$usageTitle"
    check "the desktop takes it for the program" isKnown "$usageTitle"
    picture usage
    popUpMenu
    picture desktop
    closeMenu
    check "it follows light and dark live" followsLook "$usageTitle" usage
    check "it comes to the front from behind another window" comesFromBehind "Usage Window" "$usageTitle"
    check "it comes to the front when it is minimised" comesFromMinimized "Usage Window" "$usageTitle"
    check "it comes to the front from another workspace" comesFromAway "Usage Window" "$usageTitle"
    endCover
    check "Preferences shows them in front" showsWhenChosen "Preferences…" "Usage Meter Preferences"
    picture preferences
    check "Daily Usage shows the provider's page in front" showsPageWhenChosen
    picture daily-usage
    check "Quit ends it" quits
    startProgram
    waitFor 20 hasFigure
    watchNotifications
    check "an automatic refresh notifies" notifies
    capture "$pictures/notification.png"
    check "its notification shows the program's icon" notificationHasIcon
    check "the notification shows the usage window" notificationShowsUsage
    check "it ends when it is told to" endProgram
    ! declare -F lockScreen >/dev/null || tryLock
    forgetEverything
    startProgram
    check "the item is shown at a first start, without any key" textIsShown
    picture first-start
    endProgram
    check "it has nothing to complain of" saysNothing
}

tryLock() {
    startProgram
    waitFor 20 itemIsShown
    check "no window appears behind the lock, and the item is there after it" outlivesLock
    choose "Preferences…"
    waitFor 10 isActive "Usage Meter Preferences"
    check "a window outlives the lock" outlivesLock "Usage Meter Preferences"
    endProgram
}

# With more pixels a point.
tryScale() {
    startDesktop "$scale"
    startPanel
    startProgram
    check "at scale $scale, the item is shown" itemIsShown
    check "at scale $scale, its icon is sharp" iconIsSharp
    picture "panel-at-$scale"
    tryWindow "Usage Window" "$usageTitle" usage
    tryWindow "Preferences…" "Usage Meter Preferences" preferences
    tryWindow "Daily Usage" "Daily Usage" daily-usage pageIsShown
    popUpMenu
    picture "menu-at-$scale"
    endProgram
}

# The last argument: what to wait for after the window.
tryWindow() {
    choose "$1"
    waitFor 15 isActive "$2"
    waitFor 20 "${4:-true}"
    check "at scale $scale, $2 is sharp" windowIsSharp "$2"
    picture "$3-at-$scale"
}

asUser() {
    mkdir -p "$log" "$pictures"
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
    export LIBGL_ALWAYS_SOFTWARE=1
    startBus
    startProvider
    writeSettings
    if [[ $scale == 1 ]]; then
        tryProgram
    else
        tryScale
    fi
}

# A session for each scale, whose processes end with it. The arguments: the scale.
runSession() {
    rm -rf /run/user/1000 /tmp/.X11-unix/* /tmp/.X*-lock
    find /home/user -mindepth 1 -maxdepth 1 ! -name log ! -name pictures -exec rm -r {} +
    install -d -o user -g user -m 700 /run/user/1000
    unshare --mount --pid --fork --kill-child --mount-proc \
        setpriv --reuid=user --regid=user --clear-groups env -i HOME=/home/user USER=user LOGNAME=user SHELL=/bin/bash \
        PATH=/usr/local/bin:/usr/bin:/bin LANG=en_US.UTF-8 LC_ALL=C.UTF-8 XDG_RUNTIME_DIR=/run/user/1000 \
        bash "$tools/session.sh" "$desktop" "$1"
}

source "$tools/$desktop.sh"
if ((EUID == 0)); then
    ! declare -F startSystem >/dev/null || startSystem
    mkdir -p -m 755 /run/user
    for scale in "${scales[@]}"; do
        runSession "$scale"
    done
    exit
fi
asUser
