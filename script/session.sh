#!/bin/bash
# SPDX-License-Identifier: MIT
# Shared by script/run, script/gallery and script/bench: a private session for the program on a stand-in provider, and
# screenshots of its windows. The caller sets the build folder ($build) and a folder for temporary files ($stage).
# Whatever was started here ends with the script, however the script ends.

log=$stage/log
shots=$stage/screenshots
showStatus=(env LC_ALL=C.UTF-8 "$build/bin/usage-meter-status")
runtime=
program=

fail() {
    echo "script/${0##*/}: $1" >&2
    exit 1
}

# Polls until the command succeeds, or fails after the given number of seconds.
waitFor() {
    local deadline=$((SECONDS + $1))
    until "${@:2}"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.05
    done
}

# Whether there is nothing left that this signal reaches.
isEndedBy() {
    ! kill -s "$1" "$2" 2>/dev/null
}

# Processes started by our bus are not our children, but they have our runtime folder in their environment.
allAreEndedBy() {
    local pids=()
    [[ -z $runtime ]] ||
        mapfile -t pids < <(env -u XDG_RUNTIME_DIR grep -lszxF "XDG_RUNTIME_DIR=$runtime" /proc/[0-9]*/environ)
    mapfile -t -O "${#pids[@]}" pids < <(jobs -pr)
    ((${#pids[@]} == 0)) || ! kill -s "$1" "${pids[@]//[!0-9]/}" 2>/dev/null
}

finish() {
    local status=$?
    trap '' EXIT INT TERM HUP
    # Ends the program before its display and its bus, so that it can shut down properly.
    [[ -z $program ]] || waitFor 3 isEndedBy TERM "$program" || true
    waitFor 5 allAreEndedBy TERM || waitFor 5 allAreEndedBy KILL || true
    [[ -z $runtime ]] || rm -rf "$runtime"
    exit "$status"
}

trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
trap 'exit 129' HUP

# Starts a program under a name, which is that of its log too.
start() {
    { setpriv --pdeathsig TERM -- "${@:2}" & } >"$log/$1.out" 2>"$log/$1"
}

# A signal interrupts this wait, but would not interrupt a foreground command.
await() {
    setpriv --pdeathsig TERM -- "$@" &
    wait $!
}

# Starts a program that prints one line once it is ready, and stores that line in $announced.
startAnnounced() {
    start "$@"
    waitFor 20 isAnnounced "$1" || fail "$1 did not start; see $log/$1"
}

isAnnounced() {
    read -r announced <"$log/$1.out"
}

# The X server's authority file keeps its place when the home is moved.
useHome() {
    export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority} HOME=$1
    export XDG_CONFIG_HOME=$HOME/config XDG_CACHE_HOME=$HOME/cache XDG_DATA_HOME=$HOME/data XDG_STATE_HOME=$HOME/state
    export no_proxy=localhost NO_PROXY=localhost
    mkdir -p "$log" "$HOME"/{config,cache,data,state}
}

# Starts a display of this size, and an ordinary bus unless dbus-daemon gets another option.
startSession() {
    runtime=$(mktemp -d)
    export XDG_RUNTIME_DIR=$runtime
    unset XAUTHORITY
    startAnnounced display Xvfb -displayfd 1 -screen 0 "$1x24" -nolisten tcp
    export DISPLAY=:$announced
    startAnnounced bus dbus-daemon "${2:---session}" --nofork --nopidfile --print-address=1
    export DBUS_SESSION_BUS_ADDRESS=$announced
}

# Starts a provider with this command, and stages the program for it.
startProvider() {
    startAnnounced provider "$@"
    cmake -DBUILD="$build" -DSTAGE="$stage" -DHOME="$HOME" -DHOST="${announced#https://}" \
        -DAUTHORITY="$stage/certificate/authority.pem" -P demo/StageBundle.cmake
}

# The web engine reads the user's own authorities from a database in the home.
startDemoProvider() {
    local database=sql:$HOME/.pki/nssdb
    startProvider "$build/bin/usage-meter-provider" --folder "$stage/certificate"
    mkdir -p "$HOME/.pki/nssdb"
    certutil -L -d "$database" >/dev/null 2>&1 || certutil -N -d "$database" --empty-password
    certutil -D -d "$database" -n provider 2>/dev/null || true
    certutil -A -d "$database" -n provider -t C,, -i "$stage/certificate/authority.pem"
    # The engine cannot sandbox its pages as root.
    ((EUID != 0)) || export QTWEBENGINE_DISABLE_SANDBOX=1
}

# Starts a session of this size for pictures, with a real panel, the stand-in provider and an empty home. What pictures
# there were are removed.
startPictures() {
    rm -rf "$2" "$shots"
    mkdir -p "$shots"
    useHome "$2"
    startSession "$1"
    start panel env NO_AT_BRIDGE=1 GSETTINGS_BACKEND=memory mate-panel
    await gdbus wait --session --timeout 20 org.kde.StatusNotifierWatcher ||
        fail "the panel did not start; see $log/panel"
    startDemoProvider
}

startProgram() {
    start program env LC_ALL=en_US.UTF-8 "$@" "$stage/bin/usage-meter"
    program=$!
}

endProgram() {
    waitFor 3 isEndedBy TERM "$program" || fail "the program did not exit"
}

# Prints what the item shows once there is a report.
awaitReport() {
    await "${showStatus[@]}" --timeout 30 --not "…" || fail "no report came; see $log/program"
}

# Drawing is finished if a picture is not blank and has not changed since the last time.
isDrawn() {
    local before=$drawn
    import "$@" 2>>"$log/screenshots" || return 1
    drawn=$(identify -format '%# %k' "${!#}")
    [[ $drawn == "$before" && $drawn != *' 1' ]]
}

# Takes a picture of this name with import's options.
capture() {
    local picture=$shots/$1.png drawn=
    waitFor 10 isDrawn "${@:2}" "$picture" || fail "$1 is blank; see $picture"
    echo "$picture"
}

visibleWindows() {
    xdotool search --onlyvisible "$@" 2>/dev/null | sort
}

# Finds a window that is not among these of before, with xdotool's options.
findNewWindow() {
    window=$(comm -13 <(echo "$1") <(visibleWindows "${@:2}") | tail -n 1)
    [[ -n $window ]]
}

# Clicks a menu item and waits for its window.
openWindow() {
    local before
    before=$(visibleWindows --pid "$program" || true)
    await "${showStatus[@]}" --click "$1" || fail "\"$1\" cannot be clicked"
    waitFor 20 findNewWindow "$before" --pid "$program" || fail "\"$1\" opened no window"
}

captureWindow() {
    openWindow "$2"
    capture "$1" -window "$window"
}

# The area is only a sliver until the item is in it.
findStatusArea() {
    findNewWindow "" --class notification-area-applet &&
        [[ $(xdotool getwindowgeometry --shell "$window" | sed -n 's/^WIDTH=//p') -gt 8 ]]
}

# Captures the upper right corner of the screen with the item in the panel and its menu open.
captureMenu() {
    local before
    waitFor 10 findStatusArea || fail "the panel shows no status area"
    before=$(visibleWindows --class notification-area-applet)
    xdotool mousemove --window "$window" 20 12 click 3
    waitFor 10 findNewWindow "$before" --class notification-area-applet || fail "the item's menu did not open"
    capture "$1" -window root -crop 400x370+880+0 +repage
    # A click elsewhere closes the menu.
    xdotool mousemove 300 700 click 1
}

# A page is slow to load. The month picker is shown with it, and its table starts further down and to the right.
isPageDrawn() {
    local area
    isDrawn "$@" || return 1
    for area in 100x20+30+12 400x40+30+280; do
        [[ $(convert "${!#}" -crop "$area" -format %k info:) -gt 1 ]] || return 1
    done
}

captureDailyUsage() {
    local picture=$shots/$1.png drawn=
    openWindow "Daily Usage"
    waitFor 30 isPageDrawn -window "$window" "$picture" ||
        fail "the provider's page did not load; see $picture and $log/program"
    echo "$picture"
}

# Without settings, the program asks for a key by itself.
captureFirstStart() {
    endProgram
    startProgram XDG_CONFIG_HOME="$HOME/first-start"
    waitFor 20 findNewWindow "" --all --pid "$program" --name '^Add a Connection$' ||
        fail "a first start does not ask for a key"
    capture "$1" -window "$window"
}
