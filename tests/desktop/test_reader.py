# SPDX-License-Identifier: MIT
"""The window as somebody meets it who does not see it: through AT-SPI, the interface of screen readers; and what leaves it
for other programs."""

import shutil
import time

from desktop import SAMPLES, DesktopTest
from screen_reader import Reader

HEARD = {
    "Title": "Prélude in One Second", "Artist": "The Sample Makers", "Album": "Small Files", "File name": "song.mp3",
    "File size": "27.6 KB", "Duration": "0:01", "Bit rate": "128 kbps  44.1 kHz", "Channels": " Joint Stereo",
    "Tag": "ID3v3", "Cover details": "96 x 96, 10787 bytes", "Track": "1 of 1", "Year": "2026", "Genre": "Classical",
    "Composer": "A. Script", "Encoder": "LAME", "Comment": "Made by make-samples",
}
NEED_NAMES = ("push button", "check box", "combo box", "text", "menu", "menu item")


class ScreenReader(DesktopTest):
    needs = ("*/girepository-1.0/Atspi-2.0.typelib", *DesktopTest.needs)

    def setUp(self):
        super().setUp()
        self.desktop.environment.update(QT_ACCESSIBILITY="1", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        self.song = shutil.copy(SAMPLES / "sample.mp3", self.music / "song.mp3")
        self.desktop.start_sonarin(self.song)
        self.assert_shown("song.mp3")
        self.reader = Reader(self.desktop.environment)
        self.addCleanup(self.reader.close)
        self.wait_for(lambda: self.reader.all("text"), 10, "a window that can be heard")
        self.desktop.activate(self.desktop.sonarin_window)

    def wait_for_copy(self, text):
        self.wait_for(lambda: self.desktop.clipboard() == text, wanted=text)

    def test_reads_every_value_by_its_name(self):
        self.assertEqual({thing["name"]: thing["text"] for thing in self.reader.all("text")}, HEARD)
        things = self.reader.all()
        self.assertEqual([thing for thing in things if thing["role"] == "text" and "focusable" not in thing["states"]], [])
        self.assertEqual([thing for thing in things if thing["role"] in NEED_NAMES and not thing["name"]], [])
        self.assertEqual(len(self.reader.all("combo box", "What to follow")), 1)

    def test_presses_and_chooses(self):
        self.reader.do("push button", "Lyrics", "press")
        self.wait_for(lambda: any((thing["text"] or "").startswith("One second,") for thing in self.reader.all()))
        self.reader.do("check box", "Follow", "toggle", "press")
        self.wait_for(lambda: "checked" not in self.reader.the("check box", "Follow")["states"])
        self.reader.do("push button", "Rename", "showmenu")
        self.reader.do("menu item", "Rename to:   01 - Prélude in One Second.mp3", "press")
        self.wait_for((self.music / "01 - Prélude in One Second.mp3").exists)
        self.wait_for(lambda: self.reader.all("label", "Renamed"))

    def test_copies_by_keys(self):
        self.reader.do("text", "Artist", "setfocus")
        self.wait_for(lambda: "focused" in self.reader.the("text", "Artist")["states"])
        self.desktop.keys("ctrl+c")
        self.wait_for_copy("The Sample Makers")
        self.desktop.keys("Tab", "ctrl+c")  # to the next value
        self.wait_for_copy("Small Files")
        self.desktop.keys("Menu", pause=0.3)
        self.desktop.keys("Down", "Down", "Return")  # Copy All as Text
        self.wait_for_copy(self.desktop.output("sonarin-info", self.song))

    def test_shows_the_file_in_the_file_manager(self):
        self.require("thunar")
        self.desktop.spawn("thunar", "--daemon")
        self.wait_for(lambda: self.desktop.names("org.freedesktop.FileManager1"), 20)
        self.desktop.keys("ctrl+m")
        window = self.desktop.wait_for_window("thunar")
        self.wait_for(lambda: "Music" in self.desktop.title(window), 10)

    def test_drags_the_cover_into_a_folder(self):
        target = self.desktop.home / "Pictures"
        target.mkdir()
        self.open_folder(target)
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.drag(100, 120, 1150, 300)
        time.sleep(0.5)
        self.desktop.keys("Down", "Return")  # it asks whether to copy
        picture = target / "song.png"
        self.wait_for(lambda: picture.exists() and picture.stat().st_size == 10787, wanted="the whole picture")

    def test_stays_on_top(self):
        for wanted in (True, False):
            self.desktop.keys("ctrl+shift+t")
            state = ("xprop", "-id", self.desktop.sonarin_window, "_NET_WM_STATE")
            self.wait_for(lambda: ("_NET_WM_STATE_ABOVE" in self.desktop.output(*state)) == wanted, wanted=wanted)
