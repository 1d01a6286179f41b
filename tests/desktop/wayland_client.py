# SPDX-License-Identifier: MIT
"""A small Wayland client of the tests' own, in the protocol's wire format (Wayland 1.21): the hand on a mouse that a
compositor without a screen lacks (wlr-virtual-pointer-unstable-v1), and a launcher's activation token (xdg-activation-v1)."""

import os
import socket
import struct

LEFT_BUTTON = 0x110
REGISTRY = 2


class Client:
    def __init__(self, runtime_folder, display):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(os.path.join(runtime_folder, display))
        self.received = b""
        self.last_id = REGISTRY
        self.globals = {}
        self._send(1, 1, struct.pack("=I", REGISTRY))  # wl_display.get_registry
        self._wait()

    def close(self):
        self.socket.close()

    def _send(self, target, opcode, arguments=b""):
        self.socket.sendall(struct.pack("=II", target, (8 + len(arguments)) << 16 | opcode) + arguments)

    def _new_id(self):
        self.last_id += 1
        return self.last_id

    def _events(self):
        """Those up to the next answer of the compositor, as (object, opcode, arguments)."""
        while len(self.received) < 8 or len(self.received) < struct.unpack_from("=I", self.received, 4)[0] >> 16:
            more = self.socket.recv(65536)
            assert more, "the compositor has gone"
            self.received += more
        source, word = struct.unpack_from("=II", self.received)
        arguments, self.received = self.received[8:word >> 16], self.received[word >> 16:]
        return source, word & 0xFFFF, arguments

    def _wait(self, wanted=None):
        """Takes events until the one of that object comes; answers its arguments. Without one: until all was done."""
        if wanted is None:
            wanted = self._new_id()
            self._send(1, 0, struct.pack("=I", wanted))  # wl_display.sync
        while True:
            source, opcode, arguments = self._events()
            assert source != 1 or opcode != 0, arguments  # wl_display.error
            if source == wanted:
                return arguments
            if source == REGISTRY and opcode == 0:
                name, length = struct.unpack_from("=II", arguments)
                self.globals[arguments[8:7 + length].decode()] = name

    def _bind(self, interface):
        text = interface.encode() + b"\0"
        new = self._new_id()
        self._send(REGISTRY, 0, struct.pack("=II", self.globals[interface], len(text)) + text + bytes(-len(text) % 4) +
                   struct.pack("=II", 1, new))
        return new

    def activation_token(self):
        token = self._new_id_of(self._bind("xdg_activation_v1"), 1)  # get_activation_token
        self._send(token, 3)  # commit
        arguments = self._wait(token)  # done
        return arguments[4:3 + struct.unpack_from("=I", arguments)[0]].decode()

    def _new_id_of(self, factory, opcode, before=b""):
        new = self._new_id()
        self._send(factory, opcode, before + struct.pack("=I", new))
        return new


class Pointer(Client):
    """A mouse; the places are those of the screen, of that size."""

    def __init__(self, runtime_folder, display, size):
        super().__init__(runtime_folder, display)
        self.size = size
        self.time = 0
        manager = self._bind("zwlr_virtual_pointer_manager_v1")
        self.pointer = self._new_id_of(manager, 0, struct.pack("=I", 0))  # create_virtual_pointer
        self._wait()

    def _do(self, opcode, *numbers):
        self.time += 10
        self._send(self.pointer, opcode, struct.pack(f"={1 + len(numbers)}I", self.time, *numbers))
        self._send(self.pointer, 4)  # frame
        self._wait()

    def move(self, x, y):
        self._do(1, x, y, *self.size)

    def press(self):
        self._do(2, LEFT_BUTTON, 1)

    def release(self):
        self._do(2, LEFT_BUTTON, 0)
