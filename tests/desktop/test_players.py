# SPDX-License-Identifier: MIT
"""Sonarin follows the selection in real players, connected as a user connects them, and the track that they play."""

import os
import pty
import shutil
import signal
import time

from desktop import SAMPLES, DesktopTest, song, wait_until

NAMES = ["a b.mp3", "c#d.mp3", "e%41f.mp3", "音楽.mp3"]
MPV = ("mpv", "--no-config", "--no-video", "--ao=null", "--script=/usr/lib/mpv-mpris/mpris.so")


class Selections(DesktopTest):
    def setUp(self):
        super().setUp()
        for number, name in enumerate([*NAMES, os.fsdecode(b"latin\xe9.mp3")]):
            song(self.music / name, title=f"song {number}")
        self.desktop.start_sonarin(kind=6)

    def check_list(self, player, home, down):
        """Through the whole list, of which Sonarin shows all, and on when the player was stopped; the names in their order."""
        names = []
        for _ in range(len(NAMES) + 3):
            if wait_until(lambda: self.desktop.shown not in ["", *names], 2.5):  # cmus is asked once a second
                names.append(self.desktop.shown)
            down()
        self.assertEqual(len(names), len(NAMES) + 1)
        self.assertLessEqual(set(NAMES), set(names))
        home()
        self.assert_shown(names[0])
        player.send_signal(signal.SIGSTOP)
        self.assert_stays(names[0])
        player.send_signal(signal.SIGCONT)
        down()
        self.assert_shown(names[1])
        return names

    def check_window(self, program):
        self.require(program)
        self.desktop.connect(program)
        player = self.desktop.spawn(program)
        window = self.desktop.wait_for_window(program)
        self.wait_for(self.desktop.names, 20)
        self.desktop.activate(window)
        time.sleep(6)  # it looks for its songs
        self.desktop.click_track(window)
        self.desktop.keys("Home", pause=0.5)  # what is shown still may be the track that was clicked
        names = self.check_list(player, lambda: self.desktop.keys("Home"), lambda: self.desktop.keys("Down"))
        self.desktop.keys("shift+Down")
        self.assert_stays(names[1])
        self.desktop.keys("Down")
        self.assert_shown(names[3])
        self.kill(player)
        self.wait_for(lambda: not self.desktop.names())

    def test_quod_libet(self):
        self.desktop.configure("quodlibet/config", f"[settings]\nscan = {self.music}\n[plugins]\n")
        self.check_window("quodlibet")

    def test_rhythmbox(self):
        self.check_window("rhythmbox")

    def test_cmus(self):
        def remote(*commands):
            self.desktop.output("cmus-remote", "-C", *commands)
        self.require("cmus")
        self.desktop.configure("cmus/rc", "set output_plugin=\n")  # no sound
        keyboard, terminal = pty.openpty()
        self.addCleanup(os.close, keyboard)
        player = self.desktop.spawn("cmus", environment={"TERM": "xterm"}, stdin=terminal)
        os.close(terminal)
        self.wait_for((self.desktop.scratch / "run/cmus-socket").exists, 10)
        remote(f"add {self.music}", "view 2")
        names = self.check_list(player, lambda: remote("win-top"), lambda: remote("win-down"))
        remote("view 5")  # which has no tracks
        self.assert_stays(names[1])
        remote("view 2", "win-down")
        self.assert_shown(names[2])


class Tracks(DesktopTest):
    """What is played, over MPRIS."""

    def check(self, *command):
        self.require(command[0])
        self.tracks = [shutil.copy(SAMPLES / "sample.mp3", self.music / name) for name in NAMES]
        self.desktop.start_sonarin(kind=7)
        for track in self.tracks:
            player = self.desktop.spawn(*command, track)
            self.assert_shown(track.name, 20)
            self.kill(player)

    def test_mpv(self):
        self.check(*MPV, "--loop=inf")
        self.desktop.spawn(*MPV, "--loop-playlist=inf", *self.tracks)
        for track in self.tracks:
            self.assert_shown(track.name, 20)

    def test_vlc(self):
        self.check("vlc", "--intf", "dummy", "--control", "dbus", "--aout", "adummy", "--repeat", "--no-video")

    def test_audacious(self):
        self.check("audacious", "--headless", "--play")
