# SPDX-License-Identifier: MIT
"""The window in a Wayland session (sway, whose screen and mouse are Xvfb's): no X server, no window placed by a program."""

import json
import shutil
import socket
import struct
import time
import unittest

from desktop import SAMPLES, Desktop, DesktopTest, song, wait_until

SONARIN = "org.sonarin.Sonarin"
CONFIG = """
output * mode 1600x1000
focus_follows_mouse no
focus_on_window_activation focus
for_window [app_id=".*"] floating enable
"""


class WaylandDesktop(Desktop):
    def _start_window_manager(self):
        (self.scratch / "config").write_text(CONFIG)
        self.environment["SWAYSOCK"] = str(self.scratch / "sway.sock")
        self.spawn("sway", "--config", self.scratch / "config", environment={"WLR_BACKENDS": "x11", "WLR_RENDERER": "pixman"})
        if not wait_until(lambda: self.output("swaymsg", "-t", "get_version", check=False), 20):
            reason = (self.scratch / "sway.log").read_text(errors="replace")
            raise unittest.SkipTest(f"NOT TESTED, sway does not start here: {reason}")
        self.environment.update(WAYLAND_DISPLAY="wayland-1", QT_QPA_PLATFORM="wayland")
        self.screen = self.environment.pop("DISPLAY")

    def xdotool(self, *words, check=True):
        return self.output("env", "DISPLAY=" + self.screen, "xdotool", *map(str, words), check=check)

    def sway(self, app_id, *words):
        self.output("swaymsg", f'[app_id="{app_id}"]', *words)

    def window(self, app_id):
        """The compositor's view of the window; empty before there is one."""
        nodes = []
        json.loads(self.output("swaymsg", "-t", "get_tree"), object_hook=lambda node: nodes.append(node) or node)
        return next((node for node in nodes if node.get("app_id") == app_id), {})


def activation_token(display):
    """As a launcher asks for it (xdg-activation-v1), in Wayland's wire format."""
    with socket.socket(socket.AF_UNIX) as connection, connection.makefile("rb") as received:
        connection.settimeout(10)
        connection.connect(display)

        def send(target, opcode, arguments=b""):
            connection.sendall(struct.pack("=II", target, (8 + len(arguments)) << 16 | opcode) + arguments)

        def events():
            while True:
                source, word = struct.unpack("=II", received.read(8))
                yield source, received.read((word >> 16) - 8)
        registry, activation, token = 2, 3, 4
        send(1, 1, struct.pack("=I", registry))  # wl_display.get_registry
        manager = next(arguments for _, arguments in events() if b"xdg_activation_v1" in arguments)
        send(registry, 0, manager[:-4] + struct.pack("=II", 1, activation))  # bind, to version 1 of it
        send(activation, 1, struct.pack("=I", token))  # get_activation_token
        send(token, 3)  # commit
        done = next(arguments for source, arguments in events() if source == token)
        return done[4:].partition(b"\0")[0].decode()


class Wayland(DesktopTest):
    needs = ("Xvfb", "xdotool", "sway", "wtype", "wl-copy", "wl-paste")
    kind_of_desktop = WaylandDesktop

    def setUp(self):
        super().setUp()
        self.desktop.spawn("sonarin", shutil.copy(SAMPLES / "sample.mp3", self.desktop.home / "song.mp3"))
        self.assert_shown("song.mp3", 10)
        self.desktop.sway(SONARIN, "focus")

    def assert_shown(self, name, seconds=5):
        self.wait_for(lambda: self.desktop.window(SONARIN).get("name") == "Sonarin - " + name, seconds, name)

    def copy(self, path):
        self.desktop.output("sh", "-c", 'wl-copy -- "$0" >/dev/null 2>&1', path)

    def test_takes_over_from_a_second_start(self):
        self.desktop.output("sonarin", song(self.desktop.home / "other.mp3"))
        self.assert_shown("other.mp3")

    def test_the_clipboard_goes_both_ways(self):
        pasted = song(self.desktop.home / "pasted.mp3")
        self.copy(pasted)
        self.desktop.output("wtype", "-M", "ctrl", "v", "-m", "ctrl")
        self.assert_shown("pasted.mp3")
        self.desktop.output("wtype", "-M", "ctrl", "-M", "alt", "c", "-m", "alt", "-m", "ctrl")
        self.wait_for(lambda: self.desktop.output("wl-paste", "-n", check=False) == str(pasted))

    def test_a_key_opens_a_menu_and_renames(self):
        # With one keyboard: a menu closes when it is unplugged.
        self.desktop.output("wtype", "-M", "alt", "r", "-m", "alt", "-s", "2000", "-k", "Return")
        self.wait_for((self.desktop.home / "Prélude in One Second.mp3").exists)

    def open_folder(self, folder):
        self.require("pcmanfm-qt")
        self.desktop.spawn("pcmanfm-qt", folder)
        self.wait_for(lambda: self.desktop.window("pcmanfm-qt").get("focused"), 20)

    def test_a_file_is_dropped(self):
        song(self.music / "dropped.mp3")
        self.open_folder(self.music)
        time.sleep(2)
        for app_id, left in (("pcmanfm-qt", "0"), (SONARIN, "900")):
            self.desktop.sway(app_id, "move", "absolute", "position", left, "0")
        time.sleep(1)
        for y in (190, 160, 130):  # until the file is under the pointer
            self.desktop.drag(200, y, 1150, y)
        self.assert_shown("dropped.mp3")

    def launch(self, *words):
        """Starts Sonarin as a launcher does, while another program is in use."""
        self.open_folder(self.desktop.home)
        token = activation_token(f"{self.desktop.scratch}/run/wayland-1")
        start = self.desktop.spawn("sonarin", *words, environment={"XDG_ACTIVATION_TOKEN": token})
        self.assertEqual(start.wait(10), 0)

    def test_comes_to_the_front_with_a_launchers_token(self):
        self.launch(song(self.desktop.home / "other.mp3"))
        self.wait_for(lambda: self.desktop.window(SONARIN)["focused"])

    def test_shows_what_was_copied_in_another_program(self):
        self.copy(song(self.desktop.home / "copied.mp3"))
        self.launch("--show-pasted-path")
        self.assert_shown("copied.mp3")
