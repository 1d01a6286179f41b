# SPDX-License-Identifier: MIT
"""What there is for file managers that cannot be followed, tried with PCManFM-Qt."""

import time
import unittest

from desktop import PREFIX, DesktopTest, song


class WithoutConnector(DesktopTest):
    needs = ("pcmanfm-qt", "gio", *DesktopTest.needs)

    def setUp(self):
        super().setUp()
        self.music.mkdir()
        song(self.music / "a #1.mp3")

    def start_both(self):
        self.desktop.output("sonarin-connect", "pcmanfm-qt")
        self.desktop.start_sonarin()
        self.desktop.spawn("pcmanfm-qt", self.music, environment={"QT_QPA_PLATFORM": "xcb"})
        self.window = self.desktop.wait_for_window("pcmanfm-qt")
        time.sleep(2)
        self.desktop.xdotool("windowmove", self.window, 0, 0)
        self.desktop.xdotool("windowmove", self.desktop.sonarin_window, 900, 0)
        time.sleep(0.5)
        self.desktop.activate(self.window)
        self.desktop.keys("ctrl+a")

    def assert_shown(self):
        self.assertIsNotNone(self.desktop.wait_until_shown("a #1.mp3"))

    def test_copying_and_pasting(self):
        self.start_both()
        self.desktop.keys("ctrl+c")
        time.sleep(0.3)
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.keys("ctrl+v")
        self.assert_shown()

    def test_dropping(self):
        self.start_both()
        x, y = self.file_position()
        time.sleep(0.6)  # this is to be no double click
        self.desktop.xdotool("mousemove", x, y, "sleep", 0.2, "mousedown", 1, "sleep", 0.3)
        for toward in (*range(x, x + 30), *range(x + 30, 1100, 40)):
            self.desktop.xdotool("mousemove", toward, y, "sleep", 0.03)
        self.desktop.xdotool("sleep", 0.5, "mouseup", 1)
        self.assert_shown()

    def test_its_menu(self):
        self.start_both()
        self.desktop.keys("Menu")
        time.sleep(0.7)
        self.desktop.keys(*["Down"] * 7, "Return")  # the last entry but those for archives and properties
        self.assert_shown()

    def file_position(self):
        """Where a click selects the only file, which its copying tells."""
        for y in range(124, 300, 12):
            for x in range(180, 400, 40):
                self.desktop.click(self.window, x, y)
                if self.desktop.copied():
                    where = self.desktop.xdotool("getmouselocation", "--shell").split()
                    return tuple(int(word.split("=")[1]) for word in where[:2])
        return self.fail("the file cannot be found")

    def test_open_with(self):
        self.desktop.start_sonarin()
        entry = PREFIX / "share/applications/org.sonarin.Sonarin.desktop"
        self.desktop.output("gio", "launch", entry, self.music / "a #1.mp3")
        self.assert_shown()


if __name__ == "__main__":
    unittest.main()
