# SPDX-License-Identifier: MIT
"""What the tests of the terminal programs share: the program as a user runs it, and files to run it on."""

import json
import os
import pathlib
import pty
import select
import subprocess
import tempfile
import unittest

INFO = os.environ["SONARIN_INFO"]
SAMPLES = pathlib.Path(os.environ["SAMPLES"])
SAMPLE = SAMPLES / "sample.mp3"
SOUND = b"\xff\xfb\x90\0" + bytes(400)  # one frame, as MPEG audio begins


def run(*arguments, locale="C", **options):
    """The exit status, what was printed, and the complaints."""
    environment = dict(os.environ, LC_ALL=locale, TERM="xterm")
    done = subprocess.run([INFO, *arguments], capture_output=True, env=environment, timeout=60, **options)
    return done.returncode, done.stdout, done.stderr.decode()


def complaints(*causes):
    return "".join(f"sonarin-info: {cause}\n" for cause in causes)


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def write(self, name, content=SOUND):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return path

    def made(self, name, *command):
        """A file that a command makes, or changes; it is given the path as its last argument."""
        path = self.folder / name
        subprocess.run([*command, path], check=True, capture_output=True)
        return path

    def sound(self, seconds=3, rate=44100, channels=2):
        command = f"sox -R -n -r {rate} -c {channels} -b 16 sound.wav synth {seconds} sine 440 gain -6"
        subprocess.run(command.split(), cwd=self.folder, check=True)
        return self.folder / "sound.wav"

    def terminal(self):
        """A terminal for a program, and what types keys there and answers what is shown until it is still again."""
        screen, terminal = pty.openpty()

        def type_keys(keys="", awaited=""):
            os.write(screen, keys.encode())
            shown = b""
            while select.select([screen], [], [], 1 if awaited.encode() in shown else 20)[0]:
                shown += os.read(screen, 4096)
            return shown.decode(errors="replace")

        for descriptor in (screen, terminal):
            self.addCleanup(os.close, descriptor)
        return terminal, type_keys

    def expect_all(self, rows, *options, locale="C"):
        """Compares facts of the record and texts of the panel that stand beside each path; answers them all. One run for many
        files, since under a sanitizer a run costs more than a file."""
        shown = run("--json", *options, *(path for path, _ in rows), locale=locale)[1].splitlines()
        every = []
        for (path, facts), line in zip(rows, shown, strict=True):
            with self.subTest(path=path.name, options=options, locale=locale):
                found = json.loads(line)
                found |= found.pop("record") | found.pop("panel")
                every.append(found)
                self.assertEqual({name: found[name] for name in facts}, facts)
        return every

    def expect(self, path, /, *options, locale="C", **facts):
        return self.expect_all([(path, facts)], *options, locale=locale)[0]
