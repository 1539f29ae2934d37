# SPDX-License-Identifier: MIT
# labwc, whose windows stack, with two workspaces.
source "$tools/wlroots.sh"

export WAYLAND_DISPLAY=wayland-0

# Where the program's windows come up, for labwc does not tell where they are.
windowPlace=100
# Bound to sending the active window to the other workspace.
keyCodes[F9]=67

startCompositor() {
    mkdir -p ~/.config/labwc
    cat >~/.config/labwc/rc.xml <<END
<labwc_config>
  <desktops number="2"/>
  <windowRules>
    <windowRule identifier="$identifier"><action name="MoveTo" x="$windowPlace" y="$windowPlace"/></windowRule>
  </windowRules>
  <keyboard>
    <keybind key="F9"><action name="SendToDesktop" to="right" follow="no"/></keybind>
  </keyboard>
</labwc_config>
END
    start compositor labwc
    waitFor 10 test -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY"
    wlr-randr --output HEADLESS-1 --custom-mode "$1x$2" --scale "$3"
    start background swaybg --color '#3b6ea5'
}

minimizeWindow() {
    wlrctl toplevel minimize title:"$1"
}

moveWindowAway() {
    wlrctl toplevel focus title:"$1" && waitFor 5 isActive "$1" || return
    press F9
    waitFor 5 isInactive "$1"
}

# In the title bar.
isKnown() {
    isKnownWithIcon "$1" "$windowPlace $windowPlace 32 26"
}

isInactive() {
    ! isActive "$1"
}

# Its upper left part, below the title bar; no window is smaller.
windowBox() {
    isShown "$1" && echo $((windowPlace + 10)) $((windowPlace + 40)) 360 160
}
