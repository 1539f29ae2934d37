# SPDX-License-Identifier: MIT
# sway, which has no task list: nothing is minimised there.
source "$tools/wlroots.sh"

export WAYLAND_DISPLAY=wayland-1 SWAYSOCK=/run/user/1000/sway

startCompositor() {
    cat >~/sway.config <<END
output * mode --custom $1x$2 scale $3
output * background #3b6ea5 solid_color
for_window [app_id="zenity"] floating disable
END
    start compositor sway --config ~/sway.config
    waitFor 10 swaymsg -q -t get_version 2>>"$log/waiting"
}

# Windows stand side by side there, or behind one another as tabs.
coverWindows() {
    swaymsg -q layout tabbed
    openCover
    waitFor 10 coverIsActive
}

minimizeWindow() {
    return 2
}

moveWindowAway() {
    swaymsg "[title=\"^$1\"] move container to workspace 2"
}

windowBox() {
    swaymsg -r -t get_tree | python3 -c '
import json, sys
def look(node):
    if node.get("app_id") and node["name"].startswith(sys.argv[1]):
        print(*(node["rect"][side] for side in ("x", "y", "width", "height")))
    for inner in node["nodes"] + node["floating_nodes"]:
        look(inner)
look(json.load(sys.stdin))' "$1"
}
