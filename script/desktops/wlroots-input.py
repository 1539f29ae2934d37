#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A mouse and a keyboard for a wlroots compositor, which stay plugged in while this runs:
wlroots-input.py PIPE WIDTH HEIGHT. Reads one command a line from the pipe: move X Y, in points of a screen of this
size; button 1 or 0, for down and up; key CODE, the kernel's number of a key, pressed and released."""
import os
import socket
import struct
import sys
import time

DISPLAY = 1
KEYMAP = b"""xkb_keymap {
    xkb_keycodes { include "evdev" }; xkb_types { include "complete" }; xkb_compatibility { include "complete" };
    xkb_symbols { include "pc+us" };
};\0"""
LEFT_BUTTON = 0x110


class Connection:
    """Speaks just as much of the Wayland protocol as is needed."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(os.path.join(os.environ["XDG_RUNTIME_DIR"], os.environ["WAYLAND_DISPLAY"]))
        self.last_id = DISPLAY
        self.globals = {}
        self.received = b""
        self.registry = self.new_id()
        self.send(DISPLAY, 1, struct.pack("=I", self.registry))
        self.synchronize()

    def new_id(self):
        self.last_id += 1
        return self.last_id

    def send(self, target, operation, arguments=b"", descriptors=()):
        size = 8 + len(arguments)
        socket.send_fds(self.socket, [struct.pack("=II", target, size << 16 | operation) + arguments], descriptors)

    def bind(self, interface):
        name = self.globals[interface]
        bound = self.new_id()
        text = interface.encode() + b"\0"
        padded = text + b"\0" * (-len(text) % 4)
        self.send(self.registry, 0, struct.pack("=II", name, len(text)) + padded + struct.pack("=II", 1, bound))
        return bound

    def synchronize(self):
        callback = self.new_id()
        self.send(DISPLAY, 0, struct.pack("=I", callback))
        while self.next_event()[0] != callback:
            pass

    def next_event(self):
        target, size_and_operation = struct.unpack("=II", self.read(8))
        operation = size_and_operation & 0xFFFF
        body = self.read((size_and_operation >> 16) - 8)
        if target == DISPLAY and operation == 0:
            sys.exit(f"the compositor refuses: {body!r}")
        if target == self.registry and operation == 0:
            name, length = struct.unpack_from("=II", body)
            self.globals[body[8:8 + length - 1].decode()] = name
        return target, operation

    def read(self, size):
        while len(self.received) < size:
            more = self.socket.recv(4096)
            if not more:
                sys.exit("the compositor is gone")
            self.received += more
        taken, self.received = self.received[:size], self.received[size:]
        return taken


class Input:
    def __init__(self, width, height):
        self.size = width, height
        self.connection = Connection()
        seat = self.connection.bind("wl_seat")
        self.pointer = self.create(self.connection.bind("zwlr_virtual_pointer_manager_v1"), seat)
        self.keyboard = self.create(self.connection.bind("zwp_virtual_keyboard_manager_v1"), seat)
        file = os.memfd_create("keymap")
        os.write(file, KEYMAP)
        self.connection.send(self.keyboard, 0, struct.pack("=II", 1, len(KEYMAP)), [file])
        self.connection.synchronize()

    def create(self, manager, seat):
        device = self.connection.new_id()
        self.connection.send(manager, 0, struct.pack("=II", seat, device))
        return device

    def move(self, x, y):
        self.connection.send(self.pointer, 1, struct.pack("=IIIII", self.now(), x, y, *self.size))
        self.connection.send(self.pointer, 4)

    def button(self, down):
        self.connection.send(self.pointer, 2, struct.pack("=III", self.now(), LEFT_BUTTON, down))
        self.connection.send(self.pointer, 4)

    def key(self, code):
        for down in 1, 0:
            self.connection.send(self.keyboard, 1, struct.pack("=III", self.now(), code, down))

    @staticmethod
    def now():
        return time.monotonic_ns() // 1_000_000 & 0xFFFFFFFF


def main():
    pipe, *size = sys.argv[1:]
    devices = Input(*map(int, size))
    # For writing too, so that it does not end with whoever writes one line.
    with open(os.open(pipe, os.O_RDWR), encoding="ascii") as lines:
        for line in lines:
            command, *numbers = line.split()
            getattr(devices, command)(*map(int, numbers))
            devices.connection.synchronize()


main()
