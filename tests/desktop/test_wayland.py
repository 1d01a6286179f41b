# SPDX-License-Identifier: MIT
"""The window in a Wayland session (sway, without a screen of its own): no X server there, no window placed by a program."""

import json
import os
import pathlib
import shutil
import time
import unittest

from desktop import PREFIX, Desktop, missing, song, wait_until
from wayland_client import Client, Pointer

SAMPLES = pathlib.Path(os.environ["SAMPLES"])
SCREEN = (1600, 1000)
CONFIG = """
output HEADLESS-1 mode 1600x1000
focus_follows_mouse no
focus_on_window_activation focus
for_window [app_id=".*"] floating enable
exec sh -c 'echo $WAYLAND_DISPLAY > {0}.new && mv {0}.new {0}'
"""


class NoCompositor(Exception):
    pass


class WaylandDesktop(Desktop):
    def _start_screen(self):
        ready = self.scratch / "wayland"
        (self.scratch / "config").write_text(CONFIG.format(ready))
        self.environment["SWAYSOCK"] = str(self.scratch / "sway.sock")
        self.spawn("sway", "--config", self.scratch / "config", environment={
            "WLR_BACKENDS": "headless", "WLR_RENDERER": "pixman", "WLR_LIBINPUT_NO_DEVICES": "1"})
        if not wait_until(ready.exists, 20, 0.1):
            raise NoCompositor(self.log("sway"))
        self.environment.update(WAYLAND_DISPLAY=ready.read_text().strip(), QT_QPA_PLATFORM="wayland")

    def spawn(self, *command, **options):
        # The window manager of the other desktops is none here.
        return None if command[0] == "openbox" else super().spawn(*command, **options)

    def _has_window_manager(self):
        return True

    def sway(self, *words):
        return self.output("swaymsg", *words, check=False)

    def window(self, app_id):
        """The compositor's view of the window; none before there is one."""
        waiting = [json.loads(self.output("swaymsg", "-t", "get_tree"))]
        while waiting:
            node = waiting.pop()
            if node.get("app_id") == app_id:
                return node
            waiting += node["nodes"] + node["floating_nodes"]
        return None

    def wait_for_title(self, title):
        def shown():
            window = self.window("org.sonarin.Sonarin")
            return window and window["name"] == title
        return wait_until(shown, 10, 0.1)

    def wtype(self, *words):
        self.output("wtype", *words)


class Wayland(unittest.TestCase):
    def setUp(self):
        gone = missing("sway", "wtype", "wl-copy", "wl-paste")
        if gone:
            self.skipTest("NOT TESTED, missing: " + " ".join(gone))
        try:
            self.desktop = WaylandDesktop()
        except NoCompositor as reason:
            self.skipTest(f"NOT TESTED, sway does not start here: {reason}")
        self.addCleanup(self.desktop.close)
        self.song = self.desktop.home / "song.mp3"
        shutil.copy(SAMPLES / "sample.mp3", self.song)
        self.desktop.spawn(PREFIX / "bin" / "sonarin", self.song)
        self.assertTrue(self.desktop.wait_for_title("Sonarin - song.mp3"), self.desktop.log("sonarin"))
        self.desktop.sway('[app_id="org.sonarin.Sonarin"]', "focus")

    def test_takes_over_from_a_second_start(self):
        other = song(self.desktop.home / "other.mp3")
        self.desktop.output(PREFIX / "bin" / "sonarin", other)
        self.assertTrue(self.desktop.wait_for_title("Sonarin - other.mp3"))

    def test_the_clipboard_goes_both_ways(self):
        pasted = song(self.desktop.home / "pasted.mp3")
        self.desktop.output("sh", "-c", 'wl-copy -- "$0" >/dev/null 2>&1', pasted)
        self.desktop.wtype("-M", "ctrl", "v", "-m", "ctrl")
        self.assertTrue(self.desktop.wait_for_title("Sonarin - pasted.mp3"))
        self.desktop.wtype("-M", "ctrl", "-M", "alt", "c", "-m", "alt", "-m", "ctrl")
        self.assertTrue(wait_until(lambda: self.desktop.output("wl-paste", "-n", check=False) == str(pasted), 5, 0.2))

    def test_a_key_opens_a_menu_and_renames(self):
        # With one keyboard: a menu closes when it is unplugged.
        self.desktop.wtype("-M", "alt", "r", "-m", "alt", "-s", "700", "-k", "Return")
        self.assertTrue(wait_until((self.desktop.home / "Prélude in One Second.mp3").exists, 5, 0.1))

    def test_a_file_is_dropped(self):
        if missing("pcmanfm-qt"):
            self.skipTest("NOT TESTED, missing: pcmanfm-qt")
        folder = self.desktop.home / "Music"
        folder.mkdir()
        song(folder / "dropped.mp3")
        self.desktop.spawn("pcmanfm-qt", folder)
        self.assertTrue(wait_until(lambda: self.desktop.window("pcmanfm-qt"), 20, 0.2))
        time.sleep(2)
        for app_id, left in (("pcmanfm-qt", 0), ("org.sonarin.Sonarin", 900)):
            self.desktop.sway(f'[app_id="{app_id}"]', "move", "absolute", "position", str(left), "0")
        pointer = Pointer(*self.display(), SCREEN)
        self.addCleanup(pointer.close)
        time.sleep(1)
        for y in (190, 160, 130):  # until the file is under the pointer
            pointer.move(200, y)
            time.sleep(0.3)
            pointer.press()
            time.sleep(0.3)
            for x in (*range(202, 262, 3), *range(270, 1150, 40)):
                pointer.move(x, y)
                time.sleep(0.03)
            time.sleep(0.3)
            pointer.release()
            if self.desktop.wait_for_title("Sonarin - dropped.mp3"):
                return
        self.fail("the file was not taken")

    def launch(self, *words):
        """Starts Sonarin as a launcher does, while another program is in use."""
        self.desktop.spawn("pcmanfm-qt", self.desktop.home)
        self.assertTrue(wait_until(lambda: (self.desktop.window("pcmanfm-qt") or {}).get("focused"), 20, 0.2))
        client = Client(*self.display())
        self.addCleanup(client.close)
        start = self.desktop.spawn(PREFIX / "bin" / "sonarin", *words,
                                   environment={"XDG_ACTIVATION_TOKEN": client.activation_token()})
        self.assertEqual(start.wait(10), 0)

    def test_comes_to_the_front_with_a_launchers_token(self):
        self.launch(song(self.desktop.home / "other.mp3"))
        self.assertTrue(wait_until(lambda: self.desktop.window("org.sonarin.Sonarin")["focused"], 5, 0.1))

    def test_shows_what_was_copied_in_another_program(self):
        copied = song(self.desktop.home / "copied.mp3")
        self.desktop.output("sh", "-c", 'wl-copy -- "$0" >/dev/null 2>&1', copied)
        self.launch("--show-pasted-path")
        self.assertTrue(self.desktop.wait_for_title("Sonarin - copied.mp3"))

    def display(self):
        return self.desktop.environment["XDG_RUNTIME_DIR"], self.desktop.environment["WAYLAND_DISPLAY"]


if __name__ == "__main__":
    unittest.main()
