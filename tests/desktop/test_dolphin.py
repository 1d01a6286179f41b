# SPDX-License-Identifier: MIT
"""Sonarin follows the selection in a real Dolphin, which passes what every file manager passes, and more."""

import os
import pathlib
import time
import unittest

from desktop import song, wait_until
from test_filemanagers import ODD_NAMES, FileManager


class Dolphin(FileManager, unittest.TestCase):
    command = ("dolphin",)
    program = "Dolphin"
    views = {"icons": "ctrl+1", "compact": "ctrl+2", "list": "ctrl+3"}

    @classmethod
    def prepare(cls):
        cls.desktop.environment.update(QT_QPA_PLATFORM="xcb")
        config = cls.desktop.home / ".config"
        config.mkdir()
        (config / "kdeglobals").write_text("[KDE]\nSingleClick=false\n")  # a click selects and opens nothing
        (config / "baloofilerc").write_text("[Basic Settings]\nIndexing-Enabled=false\n")

    def assert_told(self, path):
        self.assertTrue(wait_until(lambda: self.told() == os.fsencode(path), 5), (path, self.facts()))

    def need_worker(self, name):
        if not any(pathlib.Path("/usr/lib").glob(f"*/qt5/plugins/kf5/kio/{name}.so")):
            self.skipTest("NOT TESTED, missing: kio-extras")

    def assert_told_no_file(self):
        self.assertTrue(wait_until(lambda: "['']" in self.desktop.ask(self.desktop.names()[0]), 5), self.facts())

    def select_only_file(self):
        """By the key for all, as soon as it is there; the key Home does nothing where the only item was selected once."""
        def selected():
            self.press("ctrl+a")
            return "'Selected': <['" in self.desktop.ask(self.desktop.names()[0])
        self.assertTrue(wait_until(selected, 10, 0.3), self.facts())

    def visit_only_file(self, folder):
        self.visit(folder)
        self.select_only_file()

    def test_odd_names(self):
        for view in self.views:
            self.use_view(view)
            for number, name in enumerate(ODD_NAMES):
                with self.subTest(view=view, name=name):
                    path = self.desktop.home / f"odd{number}" / name
                    self.visit_only_file(path.parent)
                    if "\udce9" in name:  # whose bytes Dolphin itself does not know
                        self.assert_told_no_file()
                        self.assert_stays(ODD_NAMES[number - 1])
                    else:
                        self.assert_told(path)
                        self.assertTrue(wait_until(lambda: self.desktop.shown[:1] == name[:1], 5))

    def test_places_without_files(self):
        """A file in the trash is a file; one in an archive is not."""
        song(self.desktop.home / "gone.mp3")
        self.desktop.output("gio", "trash", self.desktop.home / "gone.mp3")
        self.visit("trash:/")
        self.press("F5")  # Dolphin knows only of what it has thrown away itself
        self.select_only_file()
        self.assert_told(self.desktop.home / ".local/share/Trash/files/gone.mp3")
        self.assert_shown("gone.mp3")
        self.need_worker("archive")
        self.desktop.output("tar", "-C", self.music, "-cf", self.desktop.home / "all.tar", "song5.mp3")
        self.visit_only_file(f"tar:{self.desktop.home}/all.tar")
        self.assert_told_no_file()
        self.assert_stays("gone.mp3")

    def click_file(self, share, upwards=False):
        """Clicks along a line at that share of the window's width until a file is met, which Dolphin is to name itself."""
        width, height = self.desktop.size(self.window)
        for y in sorted(range(height // 8, height * 7 // 8, 15), reverse=upwards):
            self.desktop.click(self.window, int(width * share), y)
            time.sleep(0.4)  # two clicks are not to be one double click
            if "[]" not in self.desktop.ask(self.desktop.names()[0]):  # copying nothing would change how clicks select
                break
        copied = self.desktop.copied()
        self.assertEqual(len(copied), 1)
        self.assert_told(os.fsdecode(copied[0]))
        self.assert_shown(os.path.basename(copied[0]).decode())
        return copied[0]

    def test_follows_the_mouse(self):
        for view in self.views:
            with self.subTest(view=view):
                self.use_view(view)
                self.assertNotEqual(self.click_file(0.43), self.click_file(0.43, upwards=True))

    def test_follows_both_halves_of_a_split_view(self):
        self.use_view("list")
        self.press("F3")
        self.addCleanup(self.press, "F3")
        self.settle()
        self.visit(self.music / "folder")
        for _ in range(2):
            self.assertEqual(self.click_file(0.95), os.fsencode(self.music / "folder/inside.mp3"))
            self.assertEqual(os.path.dirname(self.click_file(0.6)), os.fsencode(self.music))

    def test_same_name_in_two_folders_of_the_tree(self):
        top = self.desktop.home / "tree"
        for folder in (top / "a", top / "b"):
            folder.mkdir(parents=True)
            song(folder / "same.mp3")
        self.use_view("list")
        self.visit(top)
        self.press("Home", "Right", "Down")
        self.settle()
        self.assert_told(top / "a/same.mp3")
        self.press("Down", "Right", "Down")
        self.settle()
        self.assert_told(top / "b/same.mp3")
        self.press("Up", "Up")
        self.assert_told(top / "a/same.mp3")

    def test_renamed_where_it_is_selected(self):
        folder = self.desktop.home / "renamed"
        folder.mkdir()
        song(folder / "before.mp3")
        self.visit_only_file(folder)
        self.assert_shown("before.mp3")
        self.press("F2")
        self.settle()
        self.desktop.xdotool("type", "behind")
        self.press("Return")
        self.assert_shown("behind.mp3")

    def test_what_a_search_finds(self):
        self.need_worker("kio_filenamesearch")
        self.press("ctrl+t")
        self.addCleanup(self.press, "ctrl+w")
        self.settle()
        self.press("ctrl+f")
        self.settle()
        self.desktop.xdotool("type", "inside")
        self.press("Return")
        self.settle()
        self.desktop.click_empty_room(self.window)
        self.select_only_file()
        self.assert_told(self.music / "folder/inside.mp3")
        self.assert_shown("inside.mp3")

    def test_answers_and_cannot_be_changed(self):
        name = self.desktop.names()[0]
        self.use_view("list")
        self.select_song(0)
        self.assert_shown("song0.mp3")
        before = self.desktop.ask(name)
        self.assertIn("'Program': <'Dolphin'>", before)
        time.sleep(1)
        self.assertEqual(self.desktop.ask(name), before)  # ActiveSince rests while nothing is done

        def call(method, *words):
            return self.desktop.output("gdbus", "call", "--session", "--dest", name, "--object-path", "/org/sonarin/Selection1",
                                       "--method", "org.freedesktop.DBus.Properties." + method, *words, check=False)
        self.assertIn("song0.mp3", call("Get", "org.sonarin.Selection1", "Selected"))
        for interface, known in (("org.sonarin.Selection1", "Program"), ("org.sonarin.Selection1", "objectName"), ("", "objectName")):
            self.assertEqual(call("Set", interface, known, "<'x'>"), "")
        self.assertEqual(self.desktop.ask(name), before)

    def test_zz_goes_with_its_program(self):
        """Killed while it is asked, and started again; closed as a user closes it."""
        for _ in range(3):
            self.process.kill()
            self.process.wait()
            self.assertTrue(wait_until(lambda: not self.desktop.names(), 5))
            self.assertIsNone(self.desktop.sonarin.poll())
            self.start()
        self.turn_to(self.window)
        self.use_view("list")
        self.select_song(1)
        self.assert_shown("song1.mp3")
        self.press("ctrl+q")
        self.assertEqual(self.process.wait(10), 0)
        self.assertEqual(self.desktop.names(), [])


if __name__ == "__main__":
    unittest.main()
