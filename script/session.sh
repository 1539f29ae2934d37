#!/bin/bash
# SPDX-License-Identifier: MIT
# Shared by script/run and script/gallery: a private session for the program on a stand-in provider, and screenshots of
# its windows. The caller sets the build folder ($build) and a folder for temporary files ($stage).

log=$stage/log
shots=$stage/screenshots
showStatus=(env LC_ALL=C.UTF-8 "$build/bin/usage-meter-status")
runtime=
program=
started=()

fail() {
    echo "script/${0##*/}: $1" >&2
    exit 1
}

# Polls until the command succeeds, or fails after the given number of seconds.
waitFor() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.05
    done
}

# Processes started by our bus are not our children, so they are recognized by our runtime folder.
findStarted() {
    local found
    [[ -n $runtime ]] || return 0
    mapfile -t found < <(env -u XDG_RUNTIME_DIR grep -lsz "^XDG_RUNTIME_DIR=$runtime\$" /proc/[0-9]*/environ)
    found=("${found[@]#/proc/}")
    started+=("${found[@]%/environ}")
}

signalAll() {
    local pid left=()
    findStarted
    for pid in "${started[@]}"; do
        [[ ! -d /proc/$pid ]] || left+=("$pid")
    done
    started=("${left[@]}")
    ((${#left[@]} == 0)) || ! kill -s "$1" "${left[@]}" 2>/dev/null
}

isEndedBy() {
    ! kill -s "$1" "$2" 2>/dev/null
}

noneLeftAfter() {
    signalAll "$1"
    ((${#started[@]} == 0))
}

finish() {
    local status=$?
    trap - EXIT
    trap '' INT TERM HUP
    # Ends the program before its display and its bus, so that it can shut down properly.
    [[ -z $program ]] || waitFor 3 isEndedBy TERM "$program" || true
    waitFor 5 noneLeftAfter TERM || waitFor 5 noneLeftAfter KILL || true
    [[ -z $runtime ]] || rm -rf "$runtime"
    exit "$status"
}

# A signal interrupts this wait, but would not interrupt a foreground command.
await() {
    setpriv --pdeathsig TERM -- "$@" &
    started+=($!)
    wait $!
}

start() {
    local name=$1
    shift
    setpriv --pdeathsig TERM -- "$@" >"$log/$name" 2>&1 &
    started+=($!)
}

# Starts a program that prints one line once it is ready, and stores that line in $announced.
startAnnounced() {
    local name=$1 output
    shift
    exec {output}< <(exec setpriv --pdeathsig TERM -- "$@" 2>"$log/$name")
    started+=($!)
    read -r -t 20 -u "$output" announced || fail "$name did not start; see $log/$name"
}

startProvider() {
    startAnnounced provider "$build/bin/usage-meter-provider" --folder "$stage/certificate"
    host=${announced#https://}
}

stageBundle() {
    cmake -DBUILD="$build" -DSTAGE="$stage" -DHOME="$HOME" -DHOST="$host" \
        -DAUTHORITY="$stage/certificate/authority.pem" -P demo/StageBundle.cmake
}

# The X server's authority file keeps its place when the home is moved.
useHome() {
    export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}
    export HOME=$1
    export XDG_CONFIG_HOME=$HOME/config XDG_CACHE_HOME=$HOME/cache XDG_DATA_HOME=$HOME/data XDG_STATE_HOME=$HOME/state
    export no_proxy=localhost NO_PROXY=localhost
    mkdir -p "$XDG_CONFIG_HOME" "$XDG_CACHE_HOME" "$XDG_DATA_HOME" "$XDG_STATE_HOME"
}

# The web engine reads the user's own authorities from a database in the home.
trustProvider() {
    local database=sql:$HOME/.pki/nssdb
    mkdir -p "$HOME/.pki/nssdb"
    certutil -L -d "$database" >/dev/null 2>&1 || certutil -N -d "$database" --empty-password
    certutil -D -d "$database" -n provider 2>/dev/null || true
    certutil -A -d "$database" -n provider -t C,, -i "$stage/certificate/authority.pem"
    # The engine cannot sandbox its pages as root.
    ((EUID != 0)) || export QTWEBENGINE_DISABLE_SANDBOX=1
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

startPanel() {
    start panel env NO_AT_BRIDGE=1 "$@"
    panel=${started[-1]}
    await gdbus wait --session --timeout 20 org.kde.StatusNotifierWatcher || fail "the panel did not start; see $log/panel"
}

startProgram() {
    start program env LC_ALL=en_US.UTF-8 "$@" "$stage/bin/usage-meter"
    program=${started[-1]}
}

endProgram() {
    waitFor 3 isEndedBy TERM "$program" || fail "the program did not exit"
}

visibleWindows() {
    xdotool search --onlyvisible "$@" 2>/dev/null | sort
}

# Drawing is finished if a picture is not blank and has not changed since the last time.
isDrawn() {
    local before=$drawn
    import "$@" 2>>"$log/screenshots" || return 1
    drawn=$(identify -format '%# %k' "${!#}")
    [[ $drawn == "$before" && $drawn != *' 1' ]]
}

capture() {
    local picture=$shots/$1.png
    drawn=
    waitFor 10 isDrawn -window "$2" "$picture" || fail "$1 is blank; see $picture"
    echo "$picture"
}

# The area is only a sliver until the item is in it.
findStatusArea() {
    local width
    window=$(visibleWindows --class notification-area-applet | tail -n 1)
    [[ -n $window ]] || return 1
    width=$(xdotool getwindowgeometry --shell "$window" | sed -n 's/^WIDTH=//p')
    ((width > 8))
}

findMenu() {
    window=$(comm -13 <(echo "$1") <(visibleWindows --class notification-area-applet) | tail -n 1)
    [[ -n $window ]]
}

# Captures the upper right corner of the screen with the item in the panel and its menu open.
captureMenu() {
    local area before picture=$shots/$1.png
    waitFor 10 findStatusArea || fail "the panel shows no status area"
    area=$window
    before=$(visibleWindows --class notification-area-applet)
    xdotool mousemove --window "$area" 20 12 click 3
    waitFor 10 findMenu "$before" || fail "the item's menu did not open"
    drawn=
    waitFor 10 isDrawn -window root -crop 400x370+880+0 +repage "$picture" || fail "the menu is blank"
    echo "$picture"
    # A click elsewhere closes the menu.
    xdotool mousemove 300 700 click 1
}

findNewWindow() {
    window=$(comm -13 <(echo "$1") <(visibleWindows --pid "$program") | head -n 1)
    [[ -n $window ]]
}

openWindow() {
    local before
    before=$(visibleWindows --pid "$program" || true)
    await "${showStatus[@]}" --click "$1" || fail "\"$1\" cannot be clicked"
    waitFor 20 findNewWindow "$before" || fail "\"$1\" opened no window"
}

captureWindow() {
    openWindow "$2"
    capture "$1" "$window"
}

isBlank() {
    [[ $(convert "$1" -crop "$2" -format %k info:) == 1 ]]
}

# A page is slow to load. The month picker is shown with it, and its table starts further down and to the right.
isPageDrawn() {
    isDrawn -window "$window" "$1" && ! isBlank "$1" 100x20+30+12 && ! isBlank "$1" 400x40+30+280
}

captureDailyUsage() {
    local picture=$shots/$1.png
    openWindow "Daily Usage"
    drawn=
    waitFor 30 isPageDrawn "$picture" || fail "the provider's page did not load; see $picture and $log/program"
    echo "$picture"
}

findAddKeyWindow() {
    window=$(visibleWindows --name '^Add a Connection$' | tail -n 1)
    [[ -n $window ]]
}

# Without settings, the program asks for a key by itself.
captureFirstStart() {
    endProgram
    startProgram XDG_CONFIG_HOME="$HOME/first-start"
    waitFor 20 findAddKeyWindow || fail "a first start does not ask for a key"
    capture "$1" "$window"
}

# Cleans up however the script ends.
endInGoodOrder() {
    trap finish EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
}
