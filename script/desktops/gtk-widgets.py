#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reads what a GTK program shows, as it tells a screen reader: gtk-widgets.py COMMAND.
  icon PROGRAM         its first icon: X Y WIDTH HEIGHT, in its window, or on the screen where windows know that
  button PROGRAM       the same of its first button
  lines PROGRAM        the lines of its opened menu, submenus indented, "--------" for a separator, "* " before a set
                       check mark
  place PROGRAM TEXT   the middle of the menu's line that begins like this: how far right of the menu's right border,
                       how far below its top
  heard-lines          the lines of an opened menu that no window leads to, as in a process that is embedded in a panel;
                       moves the selection in it
Lines lack underscores, which panels' menus keep from readers."""
import os
import subprocess
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def children(parent):
    found = (parent.get_child_at_index(index) for index in range(parent.get_child_count()))
    return [child for child in found if child]


def has(line, state):
    return line.get_state_set().contains(state)


def visible_lines(menu):
    return [line for line in children(menu) if has(line, Atspi.StateType.VISIBLE)]


def print_lines(menu, indent=""):
    for line in visible_lines(menu):
        mark = "* " if has(line, Atspi.StateType.CHECKED) else ""
        is_separator = line.get_role() == Atspi.Role.SEPARATOR
        print(indent + ("--------" if is_separator else mark + line.get_name()))
        print_lines(line, indent + "    ")


def extents(widget):
    on_screen = os.environ.get("XDG_SESSION_TYPE") == "x11"
    return widget.get_extents(Atspi.CoordType.SCREEN if on_screen else Atspi.CoordType.WINDOW)


def print_place(menu, text):
    border = extents(menu)
    for line in visible_lines(menu):
        beside = extents(line)
        middle = beside.y + beside.height // 2 - border.y
        if line.get_name().startswith(text):
            print(-border.width // 2, middle)
        # A submenu opens on the left, its first line beside the line that it belongs to.
        for below, inner in enumerate(visible_lines(line)):
            if inner.get_name().startswith(text):
                print(-border.width - extents(inner).width // 2, middle + below * beside.height)


def showing(widget, role):
    for child in children(widget):
        if has(child, Atspi.StateType.SHOWING):
            if child.get_role() == role:
                yield child
            yield from showing(child, role)


def heard_menu():
    menus = []

    def hear(event):
        menus.append(event.source.get_parent())
        Atspi.event_quit()

    listener = Atspi.EventListener.new(hear)
    listener.register("object:state-changed:selected")
    # Again and again, for programs learn of the listener in their own time.
    GLib.timeout_add(300, lambda: subprocess.run(["xdotool", "key", "Up"], check=True) and True)
    GLib.timeout_add_seconds(10, Atspi.event_quit)
    Atspi.event_main()
    return menus[0]


def print_box(widget):
    place = extents(widget)
    print(place.x, place.y, place.width, place.height)


def program(name):
    return next(found for found in children(Atspi.get_desktop(0)) if found.get_name() == name)


def main():
    command, *arguments = sys.argv[1:]
    if command == "heard-lines":
        print_lines(heard_menu())
        return
    name, *text = arguments
    role = {"icon": Atspi.Role.ICON, "button": Atspi.Role.PUSH_BUTTON}.get(command, Atspi.Role.MENU)
    widget = next(showing(program(name), role))
    if command == "lines":
        print_lines(widget)
    elif command == "place":
        print_place(widget, *text)
    else:
        print_box(widget)


main()
