# SPDX-License-Identifier: MIT
"""Sonarin where nothing is followed: as the desktop starts it, and beside a file manager that cannot be followed."""

import gzip
import itertools
import re
import shutil
import time

from desktop import PREFIX, SAMPLES, DesktopTest, song


class Installed(DesktopTest):
    """Through its entry and the bus, where no Sonarin runs yet."""

    needs = ("gio", "gapplication", *DesktopTest.needs)

    def setUp(self):
        super().setUp()
        shutil.copytree(SAMPLES, self.music, dirs_exist_ok=True)

    def assert_shown(self, name, seconds=10):
        self.wait_for(lambda: "Sonarin - " + name in map(self.desktop.title, self.desktop.windows("sonarin")), seconds, name)

    def test_examples_of_the_manual_page(self):
        page = gzip.open(PREFIX / "share/man/man1/sonarin.1.gz", "rt").read()
        commands = [line.replace("\\-", "-") for line in re.findall(r"^\$ (.*)$", page, re.M)]
        self.assertGreater(len(commands), 4)
        for command in commands:
            if command.startswith("sonarin"):
                self.desktop.spawn("sh", "-c", command)  # the first one stays
            else:
                self.desktop.output("sh", "-c", command + " >/dev/null 2>&1")
            if command.startswith(("sonarin", "gapplication")):
                self.assert_shown(["sample.mp3", *re.findall(r"sample\.\w+", command)][-1])

    def test_opens_where_none_runs(self):
        self.desktop.output("gapplication", "launch", "org.sonarin.Sonarin", self.music / "sample.m4a")
        self.assert_shown("sample.m4a")
        entry = PREFIX / "share/applications/org.sonarin.Sonarin.desktop"
        self.desktop.output("gio", "launch", entry, song(self.music / "a #1.mp3"))
        self.assert_shown("a #1.mp3")

    def test_shows_what_is_on_the_clipboard(self):
        self.desktop.put_on_clipboard(str(self.music / "sample.mp3"))
        self.desktop.output("gapplication", "action", "org.sonarin.Sonarin", "show-pasted-path")
        self.assert_shown("sample.mp3")
        self.desktop.put_on_clipboard(str(self.music / "sample.aiff") + "\n")
        self.desktop.output("sonarin", "--show-pasted-path")
        self.assert_shown("sample.aiff")


class WithoutConnector(DesktopTest):
    """PCManFM-Qt."""

    def setUp(self):
        super().setUp()
        song(self.music / "a #1.mp3")
        self.desktop.output("sonarin-connect", "pcmanfm-qt")
        self.desktop.start_sonarin()
        self.window = self.open_folder(self.music)
        self.desktop.activate(self.window)
        self.desktop.keys("ctrl+a")

    def test_copying_and_pasting(self):
        self.desktop.keys("ctrl+c", pause=0.3)
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.keys("ctrl+v")
        self.assert_shown("a #1.mp3")

    def test_dropping(self):
        x, y = self.file_position()
        time.sleep(0.6)  # this is to be no double click
        self.desktop.drag(x, y, 200, y)
        self.assert_shown("a #1.mp3")

    def file_position(self):
        """Where a click selects the only file, which its copying tells."""
        for y, x in itertools.product(range(25, 60, 3), range(28, 60, 6)):
            self.desktop.click(self.window, x, y)
            if self.desktop.copied():
                where = self.desktop.xdotool("getmouselocation", "--shell").split()
                return tuple(int(word.split("=")[1]) for word in where[:2])
        return self.fail("the file cannot be found")

    def test_its_menu(self):
        self.desktop.keys("Menu", pause=0.7)
        self.desktop.keys(*["Down"] * 7, "Return")  # the last entry but those for archives and properties
        self.assert_shown("a #1.mp3")
