# SPDX-License-Identifier: MIT
"""Sonarin follows the selection in real players, connected as a user connects them, and the track that they play."""

import fcntl
import os
import pathlib
import pty
import shutil
import signal
import struct
import termios
import threading
import time
import unittest

from desktop import Desktop, missing, song, wait_until

SAMPLE = pathlib.Path(os.environ["SAMPLES"]) / "sample.mp3"
NAMES = ["a b.mp3", "c#d.mp3", "e%41f.mp3", "音楽.mp3"]


class PlayerTest(unittest.TestCase):
    kind = 6  # what Sonarin follows

    def require(self, *programs):
        gone = missing(*programs, "Xvfb", "openbox", "xdotool", "xprop")
        if gone:
            self.skipTest("NOT TESTED, missing: " + " ".join(gone))

    def begin(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)
        self.music = self.desktop.home / "Music"
        self.music.mkdir()
        self.desktop.start_sonarin(kind=self.kind)

    def shows(self, name, seconds=5):
        if not wait_until(lambda: self.desktop.shown == name, seconds):
            self.fail(f"{name!r} is not shown but {self.desktop.shown!r}: "
                      f"{[self.desktop.ask(told) for told in self.desktop.names()]}")

    def stays(self, name, seconds=0.8):
        time.sleep(seconds)
        self.assertIsNone(self.desktop.sonarin.poll())
        self.assertEqual(self.desktop.shown, name)

    def connect_and_start(self, program, *arguments):
        self.assertIn("is connected", self.desktop.output("sonarin-connect", program))
        self.player = self.desktop.spawn(program, *arguments)
        self.window = self.desktop.wait_for_window(program)
        self.assertTrue(wait_until(self.desktop.names, 20), self.desktop.log(program))
        self.desktop.activate(self.window)

    def walk(self, step):
        """The names that Sonarin shows on the way through the list, in their order."""
        names = []
        for _ in range(len(NAMES) + 3):
            if wait_until(lambda: self.desktop.shown not in ["", *names], 2.5):  # cmus is asked once a second
                names.append(self.desktop.shown)
            step()
        return names

    def check_list(self):
        """The list has the keyboard and holds the songs that `write_songs` wrote."""
        self.desktop.keys("Home")
        time.sleep(0.5)  # what is shown still may be the track that was clicked
        names = self.walk(lambda: self.desktop.keys("Down"))
        self.assertEqual(len(names), len(NAMES) + 1)
        self.assertLessEqual(set(NAMES), set(names))
        self.desktop.keys("Home")
        self.shows(names[0])
        self.desktop.keys("shift+Down")
        self.stays(names[0])
        self.desktop.keys("Down")
        self.shows(names[2])
        self.player.send_signal(signal.SIGSTOP)
        time.sleep(0.5)
        self.assertIsNone(self.desktop.sonarin.poll())
        self.player.send_signal(signal.SIGCONT)
        self.desktop.keys("Up")
        self.shows(names[1])
        self.player.kill()
        self.player.wait()
        self.assertTrue(wait_until(lambda: not self.desktop.names(), 5))

    def write_songs(self):
        for number, name in enumerate([*NAMES, b"latin\xe9.mp3".decode(errors="surrogateescape")]):
            song(self.music / name, title=f"song {number}")


class Selections(PlayerTest):
    def test_quod_libet(self):
        self.require("quodlibet")
        self.begin()
        self.write_songs()
        settings = self.desktop.home / ".config/quodlibet"
        settings.mkdir(parents=True)
        (settings / "config").write_text(f"[settings]\nscan = {self.music}\n[plugins]\n")
        self.connect_and_start("quodlibet")
        time.sleep(4)  # it looks for its songs
        self.desktop.click_track(self.window)
        self.check_list()

    def test_rhythmbox(self):
        self.require("rhythmbox")
        self.begin()
        self.write_songs()
        self.connect_and_start("rhythmbox")
        time.sleep(6)  # it looks for its songs in the folder Music
        self.desktop.click_track(self.window)
        self.check_list()

    def test_cmus(self):
        self.require("cmus")
        self.begin()
        self.write_songs()
        settings = self.desktop.home / ".config/cmus"
        settings.mkdir(parents=True)
        (settings / "rc").write_text("set output_plugin=\n")  # no sound
        process, terminal = pty.fork()
        if process == 0:
            os.execvpe("cmus", ["cmus"], {**self.desktop.environment, "TERM": "xterm"})
        self.addCleanup(os.waitpid, process, 0)
        self.addCleanup(os.kill, process, signal.SIGKILL)
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 120, 0, 0))
        threading.Thread(target=drain, args=(terminal,), daemon=True).start()
        self.assertTrue(wait_until((self.desktop.scratch / "run/cmus-socket").exists, 10))
        self.desktop.output("cmus-remote", "-C", f"add {self.music}", "view 2")
        names = self.walk(lambda: self.desktop.output("cmus-remote", "-C", "win-down"))
        self.assertEqual(len(names), len(NAMES) + 1)
        self.assertLessEqual(set(NAMES), set(names))
        last = names[-1]
        self.desktop.output("cmus-remote", "-C", "view 5")  # a view without tracks
        self.stays(last)
        self.desktop.output("cmus-remote", "-C", "view 2", "win-top")
        self.shows(names[0])
        os.kill(process, signal.SIGSTOP)
        self.stays(self.desktop.shown)
        os.kill(process, signal.SIGCONT)
        self.desktop.output("cmus-remote", "-C", "win-down")
        self.shows(names[1])


def drain(terminal):
    try:
        while os.read(terminal, 65536):
            pass
    except OSError:
        pass  # the program has ended


class Tracks(PlayerTest):
    """What is played, over MPRIS."""

    kind = 7

    def check_player(self, program, *options):
        self.require(program)
        self.begin()
        for name in NAMES:
            shutil.copy(SAMPLE, self.music / name)
        for name in NAMES:
            player = self.desktop.spawn(program, *options, self.music / name)
            self.shows(name, 20)
            self.desktop.stop(player)

    def test_mpv(self):
        self.check_player("mpv", "--no-config", "--no-video", "--ao=null", "--loop=inf", "--script=/usr/lib/mpv-mpris/mpris.so")

    def test_vlc(self):
        self.check_player("vlc", "--intf", "dummy", "--control", "dbus", "--aout", "adummy", "--repeat", "--no-video")

    def test_audacious(self):
        self.check_player("audacious", "--headless", "--play")

    def test_following_to_the_next_track(self):
        self.require("mpv")
        self.begin()
        for name in NAMES:
            shutil.copy(SAMPLE, self.music / name)
        self.desktop.spawn("mpv", "--no-config", "--no-video", "--ao=null", "--loop-playlist=inf",
                           "--script=/usr/lib/mpv-mpris/mpris.so", *[self.music / name for name in NAMES])
        for name in NAMES:
            self.shows(name, 20)


if __name__ == "__main__":
    unittest.main()
