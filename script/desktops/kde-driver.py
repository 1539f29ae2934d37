#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Lets kde.sh see what Plasma and KWin show: kde-driver.py SCRIPT. Plasma is read as a screen reader reads it, and
KWin's windows with this script. Serves methods over the session bus, each of which takes and returns one text."""
import json
import sys
import tempfile

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

NAME = "net.tarvo.UsageMeter.Try"
PATH = "/net/tarvo/UsageMeter/Try"
METHODS = ("Item", "Icon", "Menu", "Line", "Notification", "Windows", "WindowBox", "Raise", "Minimize", "Away",
           "Answer")
PROTOCOL = "<node><interface name='%s'>%s</interface></node>" % (NAME, "".join(
    f"<method name='{name}'><arg type='s' direction='in'/><arg type='s' direction='out'/></method>"
    for name in METHODS))


class Refusal(Exception):
    pass


def children(parent):
    try:
        found = [parent.get_child_at_index(index) for index in range(parent.get_child_count())]
    except GLib.Error:
        # It is gone already.
        found = []
    return [child for child in found if child]


def everything(parent):
    for child in children(parent):
        yield child
        yield from everything(child)


def has(widget, state):
    return widget.get_state_set().contains(state)


def extents(widget):
    return widget.get_extents(Atspi.CoordType.SCREEN)


def is_on_screen(widget):
    box = extents(widget)
    return has(widget, Atspi.StateType.SHOWING) and box.width > 0 and box.height > 0


def middle(widget):
    box = extents(widget)
    return f"{box.x + box.width / 2} {box.y + box.height / 2}"


def role(widget):
    try:
        return widget.get_role()
    except GLib.Error:
        return Atspi.Role.INVALID


def plasma():
    for application in children(Atspi.get_desktop(0)):
        if application.get_name() == "plasmashell":
            return application
    raise Refusal("Plasma does not run")


def find(wanted, text):
    for widget in everything(plasma()):
        if role(widget) == wanted and widget.get_name() == text and is_on_screen(widget):
            return widget
    raise Refusal(f"Plasma does not show {text}")


def lines_of(menu):
    return [line for line in children(menu) if has(line, Atspi.StateType.VISIBLE)]


def submenu_of(line):
    menus = [child for child in children(line) if role(child) == Atspi.Role.POPUP_MENU]
    return lines_of(menus[0]) if menus else []


def described(lines, indent=""):
    for line in lines:
        mark = "* " if has(line, Atspi.StateType.CHECKED) else ""
        is_separator = role(line) == Atspi.Role.SEPARATOR
        yield indent + ("--------" if is_separator else mark + line.get_name())
        yield from described(submenu_of(line), indent + "    ")


class Driver:
    def __init__(self, script):
        self.script = script
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.menus = []
        self.answer = None
        self.listener = Atspi.EventListener.new(self.popup_changed)
        self.listener.register("object:state-changed:showing")

    # A menu is found no other way than by its opening.
    def popup_changed(self, event):
        if role(event.source) != Atspi.Role.POPUP_MENU:
            return
        self.menus = [menu for menu in self.menus if menu != event.source]
        if event.detail1:
            self.menus.append(event.source)

    def menu(self):
        if not self.menus:
            raise Refusal("no menu is open")
        return lines_of(self.menus[0])

    def Item(self, figure):
        return middle(find(Atspi.Role.BUTTON, figure))

    def Icon(self, figure):
        box = extents(find(Atspi.Role.BUTTON, figure))
        return f"{box.x} {box.y} {box.width} {box.height}"

    def Menu(self, _):
        return "\n".join(described(self.menu()))

    def Line(self, text):
        for menu in reversed(self.menus):
            for line in lines_of(menu):
                if line.get_name().startswith(text):
                    return middle(line)
        raise Refusal(f"the menu shows no line {text}")

    def Notification(self, title):
        return middle(find(Atspi.Role.NOTIFICATION, title))

    def Windows(self, _):
        return self.in_kwin("list", "")

    def WindowBox(self, title):
        return self.in_kwin("box", title)

    def Raise(self, title):
        return self.in_kwin("raise", title)

    def Minimize(self, title):
        return self.in_kwin("minimize", title)

    def Away(self, title):
        return self.in_kwin("away", title)

    # What a script calls with its outcome.
    def Answer(self, text):
        self.answer = text
        return ""

    def in_kwin(self, request, title):
        with open(self.script, encoding="utf-8") as file:
            source = file.read()
        with tempfile.NamedTemporaryFile("w", suffix=".js") as script:
            script.write(f"const request = {json.dumps(request)}, title = {json.dumps(title)};\n{source}")
            script.flush()
            return self.run(script.name)

    def run(self, script):
        self.answer = None
        number, = self.kwin("/Scripting", "org.kde.kwin.Scripting", "loadScript", "(ss)", script, script)
        self.kwin(f"/Scripting/Script{number}", "org.kde.kwin.Script", "run")
        while self.answer is None:
            GLib.MainContext.default().iteration(True)
        self.kwin("/Scripting", "org.kde.kwin.Scripting", "unloadScript", "(s)", script)
        if self.answer.startswith("no "):
            raise Refusal(self.answer)
        return self.answer

    def kwin(self, path, interface, method, types="()", *arguments):
        return self.bus.call_sync("org.kde.KWin", path, interface, method, GLib.Variant(types, arguments), None,
                                  Gio.DBusCallFlags.NONE, 5000, None)

    def called(self, _bus, _sender, _path, _interface, method, arguments, invocation):
        try:
            invocation.return_value(GLib.Variant("(s)", (getattr(self, method)(*arguments),)))
        except (Refusal, GLib.Error) as error:
            invocation.return_dbus_error(NAME + ".Error", str(error))


def main():
    driver = Driver(sys.argv[1])
    interface = Gio.DBusNodeInfo.new_for_xml(PROTOCOL).interfaces[0]
    driver.bus.register_object(PATH, interface, driver.called, None, None)
    Gio.bus_own_name_on_connection(driver.bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.MainLoop().run()


main()
