# SPDX-License-Identifier: MIT
"""The window as somebody meets it who does not see it: through AT-SPI, the interface of screen readers; and what leaves it
for other programs."""

import json
import os
import pathlib
import shutil
import subprocess
import time
import unittest

from desktop import DesktopTest, missing, wait_until

SAMPLES = pathlib.Path(os.environ["SAMPLES"])


class Reader:
    def __init__(self, place):
        self.process = subprocess.Popen(["/usr/bin/python3", "-W", "ignore", pathlib.Path(__file__).with_name("screen_reader.py"), "sonarin"],
                                        env=place.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        place.programs.append(self.process)

    def _ask(self, *command):
        self.process.stdin.write(json.dumps(command) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def all(self, role=None, name=None):
        return [thing for thing in self._ask("look")
                if (role is None or thing["role"] == role) and (name is None or thing["name"] == name)]

    def the(self, role, name):
        found = wait_until(lambda: self.all(role, name), 5, 0.1)
        assert found, f"nothing is a {role} named {name}"
        return found[0]

    def do(self, role, name, *actions):
        thing = self.the(role, name)
        assert any(self._ask("do", thing["place"], action) for action in actions), thing

    def focus(self, role, name):
        return self._ask("focus", self.the(role, name)["place"])

    def text(self, name):
        return self.the("text", name)["text"]


class ScreenReader(DesktopTest):
    def setUp(self):
        if not pathlib.Path("/usr/lib/x86_64-linux-gnu/girepository-1.0/Atspi-2.0.typelib").exists():
            self.skipTest("NOT TESTED, missing: gir1.2-atspi-2.0")
        super().setUp()
        self.desktop.environment.update(QT_ACCESSIBILITY="1", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        self.music.mkdir()
        self.song = self.music / "song.mp3"
        shutil.copy(SAMPLES / "sample.mp3", self.song)
        self.desktop.start_sonarin(self.song)
        self.assertIsNotNone(self.desktop.wait_until_shown("song.mp3"))
        self.reader = Reader(self.desktop)
        self.assertTrue(wait_until(lambda: self.reader.all("text"), 10, 0.2), "the window cannot be heard")

    def clipboard(self):
        return self.desktop.output("timeout", "2", "xclip", "-o", "-selection", "clipboard", check=False)

    def test_reads_every_value_by_its_name(self):
        heard = {thing["name"]: thing["text"] for thing in self.reader.all("text")}
        self.assertEqual(heard, {
            "Title": "Prélude in One Second", "Artist": "The Sample Makers", "Album": "Small Files", "File name": "song.mp3",
            "File size": "27.6 KB", "Duration": "0:01", "Bit rate": "128 kbps  44.1 kHz", "Channels": " Joint Stereo",
            "Tag": "ID3v3", "Cover details": "96 x 96, 10787 bytes", "Track": "1 of 1", "Year": "2026", "Genre": "Classical",
            "Composer": "A. Script", "Encoder": "LAME", "Comment": "Made by make-samples"})
        for thing in self.reader.all("text"):
            self.assertIn("focusable", thing["states"])
        named = self.reader.all()
        for role in ("push button", "check box", "combo box", "text", "menu", "menu item"):
            for thing in named:
                self.assertTrue(thing["role"] != role or thing["name"], thing)
        self.assertEqual(len(self.reader.all("combo box", "What to follow")), 1)

    def test_presses_and_chooses(self):
        self.reader.do("push button", "Lyrics", "press")
        self.assertTrue(wait_until(lambda: any((thing["text"] or "").startswith("One second,") for thing in self.reader.all()), 5, 0.2))
        self.reader.do("check box", "Follow", "toggle", "press")
        self.assertTrue(wait_until(lambda: "checked" not in self.reader.the("check box", "Follow")["states"], 5, 0.2))
        self.desktop.activate(self.desktop.sonarin_window)
        self.reader.do("push button", "Rename", "showmenu")
        entry = "Rename to:   01 - Prélude in One Second.mp3"
        self.reader.do("menu item", entry, "press")
        self.assertTrue(wait_until((self.music / "01 - Prélude in One Second.mp3").exists, 5))
        self.assertTrue(wait_until(lambda: self.reader.all("label", "Renamed"), 5, 0.2))

    def test_copies_by_keys(self):
        self.desktop.activate(self.desktop.sonarin_window)
        self.reader.focus("text", "Artist")
        self.assertTrue(wait_until(lambda: "focused" in self.reader.the("text", "Artist")["states"], 5, 0.2))
        self.desktop.keys("ctrl+c")
        self.assertTrue(wait_until(lambda: self.clipboard() == "The Sample Makers", 5, 0.2), self.clipboard())
        self.desktop.keys("Tab", "ctrl+c")  # to the next value
        self.assertTrue(wait_until(lambda: self.clipboard() == "Small Files", 5, 0.2), self.clipboard())
        self.desktop.keys("Menu")
        time.sleep(0.3)
        self.desktop.keys("Down", "Down", "Return")  # Copy All as Text
        printed = self.desktop.output("sonarin-info", self.song)
        self.assertTrue(wait_until(lambda: self.clipboard() == printed, 5, 0.2), self.clipboard())

    def test_shows_the_file_in_the_file_manager(self):
        if missing("thunar"):
            self.skipTest("NOT TESTED, missing: thunar")
        self.desktop.spawn("thunar", "--daemon")
        self.assertTrue(wait_until(lambda: self.desktop.names("org.freedesktop.FileManager1"), 20, 0.2))
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.keys("ctrl+m")
        window = self.desktop.wait_for_window("thunar")
        self.assertTrue(wait_until(lambda: "Music" in self.desktop.title(window), 10, 0.2))

    def test_drags_the_cover_into_a_folder(self):
        if missing("pcmanfm-qt"):
            self.skipTest("NOT TESTED, missing: pcmanfm-qt")
        target = self.desktop.home / "Pictures"
        target.mkdir()
        self.desktop.spawn("pcmanfm-qt", target, environment={"QT_QPA_PLATFORM": "xcb"})
        folder = self.desktop.wait_for_window("pcmanfm-qt")
        time.sleep(2)
        self.desktop.xdotool("windowmove", folder, 700, 0)
        self.desktop.xdotool("windowmove", self.desktop.sonarin_window, 0, 0)
        time.sleep(0.5)
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.xdotool("mousemove", 100, 120, "sleep", 0.2, "mousedown", 1, "sleep", 0.3)
        for x in (*range(101, 140, 3), *range(140, 1160, 40)):
            self.desktop.xdotool("mousemove", x, 300, "sleep", 0.03)
        self.desktop.xdotool("sleep", 0.5, "mouseup", 1)
        time.sleep(0.5)
        self.desktop.keys("Down", "Return")  # it asks whether to copy
        picture = target / "song.png"
        self.assertTrue(wait_until(picture.exists, 5, 0.1), list(target.iterdir()))
        self.assertTrue(wait_until(lambda: picture.stat().st_size == 10787, 5, 0.1))

    def test_stays_on_top(self):
        def state():
            return self.desktop.output("xprop", "-id", str(self.desktop.sonarin_window), "_NET_WM_STATE")
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.keys("ctrl+shift+t")
        self.assertTrue(wait_until(lambda: "_NET_WM_STATE_ABOVE" in state(), 5, 0.1), state())
        self.desktop.keys("ctrl+shift+t")
        self.assertTrue(wait_until(lambda: "_NET_WM_STATE_ABOVE" not in state(), 5, 0.1), state())


if __name__ == "__main__":
    unittest.main()
