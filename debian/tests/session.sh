# SPDX-License-Identifier: MIT
# Shared by the tests, each of which uses the installed program with a display, a session bus and an empty home of its
# own, as "control" says.

identifier=net.tarvo.UsageMeter

fail() {
    echo "FAILED: $1" >&2
    exit 1
}

expectWindow() {
    timeout 20 xdotool search --sync --onlyvisible --name "$1" >/dev/null || fail "there is no window '$1'"
}

# The bus starts the program if it is not running.
activate() {
    gapplication launch "$identifier" || fail "the program does not answer"
}

processOnBus() {
    local answer
    answer=$(dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.GetConnectionUnixProcessID "string:$identifier") || fail "the program is not on the bus"
    echo "${answer##* }"
}

endProgram() {
    kill "$1"
    timeout 5 tail --pid="$1" --follow /dev/null || fail "the program does not end"
}
