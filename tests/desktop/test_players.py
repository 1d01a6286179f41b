# SPDX-License-Identifier: MIT
"""Sonarin follows the selection in real players, connected as a user connects them, and the track that they play."""

import ast
import fcntl
import os
import pty
import re
import signal
import struct
import termios
import threading
import time
import unittest
import urllib.parse

from desktop import FRAME, Desktop, missing, song, wait_until

NAMES = ["a b.mp3", "c#d.mp3", "e%41f.mp3", "音楽.mp3"]
SONGS = [*NAMES, "new\nline.mp3", os.fsdecode(b"latin\xe9.mp3")]  # the last two have no title to compare with
STREAM = """
import sys, quodlibet
quodlibet.init()
from quodlibet.formats import dump_audio_files
from quodlibet.formats.remote import RemoteFile
stream = RemoteFile("http://127.0.0.1:9/stream")
stream["tracknumber"] = "9"  # after the songs, which have none
with open(sys.argv[1], "wb") as library:
    library.write(dump_audio_files([stream]))
"""


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
        for _ in range(len(SONGS) + 2):
            if wait_until(lambda: self.desktop.shown not in names, 2.5):
                names.append(self.desktop.shown)
            step()
        return names

    def selected(self):
        """The paths (bytes) that the connector tells, b"" for what is no file."""
        told = re.search(r"'Selected': <(?:@as )?(\[.*?\])>", self.desktop.ask(self.desktop.names()[0]))
        return [urllib.parse.unquote_to_bytes(uri).removeprefix(b"file://") for uri in ast.literal_eval(told[1])]

    def tells(self, number):
        if not wait_until(lambda: len(self.selected()) == number, 5, 0.1):
            self.fail(f"not {number} selected but {self.selected()}")

    def active_since(self):
        return int(re.search("'ActiveSince': <int64 ([0-9]+)>", self.desktop.ask(self.desktop.names()[0]))[1])

    def check_list(self):
        """The list holds what `write_songs` wrote. Answers the names that Sonarin showed, in their order."""
        self.desktop.click_track(self.window)
        self.tells(1)
        self.assertTrue(wait_until(lambda: self.desktop.shown, 5))
        self.desktop.keys("Home")
        told = set()

        def down():
            told.update(self.selected())
            self.desktop.keys("Down")

        names = self.walk(down)
        self.assertEqual(told, {os.fsencode(self.music / name) for name in SONGS})
        self.assertEqual(len(names), len(SONGS))
        self.assertLessEqual(set(NAMES), set(names))
        self.desktop.keys("Home")
        self.shows(names[0])
        self.desktop.keys("shift+Down")
        self.tells(2)
        self.stays(names[0])
        self.desktop.keys("Down")
        self.shows(names[2])
        self.desktop.keys("ctrl+shift+a")
        self.tells(0)
        self.stays(names[2])
        return names

    def check_use_is_told(self):
        before = self.active_since()
        self.desktop.activate(self.desktop.sonarin_window)
        self.desktop.activate(self.window)
        self.assertTrue(wait_until(lambda: self.active_since() > before, 5, 0.1))

    def check_end(self, names):
        self.desktop.keys("Home", "Down")
        self.shows(names[1])
        self.player.send_signal(signal.SIGSTOP)
        self.stays(names[1])
        self.assertIsNone(self.desktop.sonarin.poll())
        self.player.send_signal(signal.SIGCONT)
        self.desktop.keys("Up")
        self.shows(names[0])
        self.player.kill()
        self.player.wait()
        self.assertTrue(wait_until(lambda: not self.desktop.names(), 5))
        self.stays(names[0])

    def write_songs(self):
        for number, name in enumerate(SONGS):
            song(self.music / name, title=f"song {number}")


class Selections(PlayerTest):
    def test_quod_libet(self):
        self.require("quodlibet", "exfalso")
        self.begin()
        self.write_songs()
        settings = self.desktop.home / ".config/quodlibet"
        settings.mkdir(parents=True)
        (settings / "config").write_text(f"[settings]\nscan = {self.music}\n[plugins]\n")
        self.desktop.output("/usr/bin/python3", "-c", STREAM, settings / "songs")
        self.connect_and_start("quodlibet")
        time.sleep(4)  # it looks for its songs
        names = self.check_list()
        self.desktop.keys("End")  # the stream
        self.tells(0)
        self.stays(names[2])
        self.desktop.keys("shift+Up")  # and a song
        self.tells(1)
        self.shows(names[-1])
        self.check_use_is_told()
        self.check_that_ex_falso_is_none()
        self.check_end(names)

    def check_that_ex_falso_is_none(self):
        """It loads Quod Libet's plug-ins, and has no list of songs."""
        published = self.desktop.names()
        self.desktop.activate(self.desktop.sonarin_window)
        other = self.desktop.spawn("exfalso", self.music)
        self.desktop.wait_for_window("exfalso")
        time.sleep(2)
        self.assertEqual(self.desktop.names(), published)
        self.desktop.stop(other)
        self.desktop.activate(self.window)

    def test_rhythmbox(self):
        self.require("rhythmbox", "gsettings")
        self.begin()
        self.write_songs()
        self.connect_and_start("rhythmbox")
        time.sleep(6)  # it looks for its songs in the folder Music
        self.check_switching_off_and_on()
        names = self.check_list()
        self.check_use_is_told()
        self.check_end(names)

    def check_switching_off_and_on(self):
        key = ("org.gnome.rhythmbox.plugins", "active-plugins")
        active = ast.literal_eval(self.desktop.output("gsettings", "get", *key))
        others = [plugin for plugin in active if plugin != "sonarin_rhythmbox"]
        self.assertLess(len(others), len(active))
        self.desktop.output("gsettings", "set", *key, str(others))
        self.assertTrue(wait_until(lambda: not self.desktop.names(), 10))
        self.desktop.output("gsettings", "set", *key, str(active))
        self.assertTrue(wait_until(self.desktop.names, 10))

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
        self.assertEqual(len([name for name in names if name]), len(SONGS))
        self.assertLessEqual(set(NAMES), set(names))
        last = names[-1]
        self.desktop.output("cmus-remote", "-C", "view 5")  # a view without tracks
        self.stays(last)
        self.desktop.output("cmus-remote", "-C", "view 2", "win-top")
        self.shows(next(name for name in names if name))
        os.kill(process, signal.SIGSTOP)
        self.stays(self.desktop.shown)
        os.kill(process, signal.SIGCONT)
        self.desktop.output("cmus-remote", "-C", "win-down")
        self.shows([name for name in names if name][1])


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
            (self.music / name).write_bytes(FRAME * 2400)  # a minute of silence
        self.desktop.spawn(program, *options, *[self.music / name for name in NAMES])
        self.shows(NAMES[0], 20)
        for name in NAMES[1:]:
            self.desktop.output("gdbus", "call", "--session", "--dest", "org.mpris.MediaPlayer2." + program,
                                "--object-path", "/org/mpris/MediaPlayer2",
                                "--method", "org.mpris.MediaPlayer2.Player.Next")
            self.shows(name, 10)

    def test_mpv(self):
        plugin = "/usr/lib/mpv-mpris/mpris.so"
        if not os.path.exists(plugin):
            self.skipTest("NOT TESTED, missing: mpv-mpris")
        self.check_player("mpv", "--no-config", "--no-video", "--ao=null", "--script=" + plugin)

    def test_vlc(self):
        self.check_player("vlc", "--intf", "dummy", "--control", "dbus", "--aout", "adummy", "--no-video")

    def test_audacious(self):
        self.check_player("audacious", "--headless", "--play")


if __name__ == "__main__":
    unittest.main()
