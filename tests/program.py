# SPDX-License-Identifier: MIT
"""What the tests of sonarin-info share: the program as a user runs it, and files made by real encoders."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

INFO = os.environ["SONARIN_INFO"]
SAMPLES = pathlib.Path(os.environ["SAMPLES"])


def run(*arguments, locale="C", **options):
    environment = dict(os.environ, LC_ALL=locale, TERM="xterm")
    return subprocess.run([INFO, *arguments], capture_output=True, env=environment, timeout=60, **options)


def read_json(*paths, locale="C"):
    """One object per path, whatever became of it."""
    lines = run("--json", *paths, locale=locale).stdout.split(b"\n")
    assert lines.pop() == b""
    return [json.loads(line) for line in lines]


class Folder(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def sound(self, seconds=3, rate=44100, channels=2):
        path = self.folder / "sound.wav"
        subprocess.run(["sox", "-n", "-r", str(rate), "-c", str(channels), "-b", "16", path,
                        "synth", str(seconds), "sine", "440", "gain", "-6"], check=True)
        return path

    def made(self, name, *command):
        """A file that a command makes; it is given the path as its last argument."""
        path = self.folder / name
        subprocess.run([*command, path], check=True, capture_output=True)
        return path

    def encoded(self, name, *command, **sound):
        return self.made(name, *command, self.sound(**sound))
