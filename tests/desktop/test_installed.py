# SPDX-License-Identifier: MIT
"""Sonarin as the desktop starts it: through its entry and the bus, where no Sonarin runs yet."""

import gzip
import re
import shutil
import unittest

from desktop import PREFIX, DesktopTest, wait_until

ENTRY = PREFIX / "share/applications/org.sonarin.Sonarin.desktop"


class Installed(DesktopTest):
    needs = ("gio", "gapplication", *DesktopTest.needs)

    def setUp(self):
        super().setUp()
        shutil.copytree(PREFIX.parent / "samples", self.music)

    def assert_shown(self, name):
        def titles():
            return [self.desktop.title(window) for window in self.desktop.windows("sonarin")]
        self.assertTrue(wait_until(lambda: f"Sonarin - {name}" in titles(), 10, 0.05), titles())

    def test_examples_of_the_manual_page(self):
        page = gzip.open(PREFIX / "share/man/man1/sonarin.1.gz", "rt").read()
        commands = [line.replace("\\-", "-") for line in re.findall(r"^\$ (.*)$", page, re.M)]
        self.assertGreater(len(commands), 4)
        for command in commands:
            if command.startswith("sonarin"):
                self.desktop.spawn("sh", "-c", command)  # the first one stays
            else:
                self.desktop.output("sh", "-c", command + " >/dev/null 2>&1")
            named = re.findall(r"sample\.\w+", command)
            if command.startswith(("sonarin", "gapplication")):
                self.assert_shown(named[-1] if named else "sample.mp3")

    def test_opens_where_none_runs(self):
        self.desktop.output("gapplication", "launch", "org.sonarin.Sonarin", self.music / "sample.m4a")
        self.assert_shown("sample.m4a")
        self.desktop.output("gio", "launch", ENTRY, self.music / "sample.wav")
        self.assert_shown("sample.wav")

    def test_shows_what_is_on_the_clipboard(self):
        self.desktop.put_on_clipboard(str(self.music / "sample.mp3"))
        self.desktop.output("gapplication", "action", "org.sonarin.Sonarin", "show-pasted-path")
        self.assert_shown("sample.mp3")
        self.desktop.put_on_clipboard(str(self.music / "sample.aiff") + "\n")
        self.desktop.output("sonarin", "--show-pasted-path")
        self.assert_shown("sample.aiff")


if __name__ == "__main__":
    unittest.main()
