# SPDX-License-Identifier: MIT
"""sonarin-connect as a user calls it; the connectors themselves are met by the programs that they are for."""

import os
import pathlib
import subprocess
import tempfile
import unittest

CONNECT = pathlib.Path(os.environ["SONARIN_INFO"]).parent / "sonarin-connect"


class Connect(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.home = pathlib.Path(scratch.name)
        (self.home / "bin").mkdir()
        player = self.home / "bin" / "quodlibet"
        player.write_text("#!/bin/sh\n")
        player.chmod(0o755)

    def call(self, *words, **environment):
        return subprocess.run([CONNECT, *words], capture_output=True, text=True, check=False, timeout=60,
                              env={"PATH": str(self.home / "bin"), "HOME": str(self.home), **environment})

    def files(self):
        return sorted(path.name for path in self.home.rglob("*") if path.is_file() and path.parent.name != "bin")

    def test_adds_lists_and_removes(self):
        self.assertIn("not connected", self.call().stdout)
        self.assertEqual(self.call("quodlibet").returncode, 0)
        self.assertEqual(self.files(), ["__init__.py", "sonarin_selection.py"])
        self.assertNotIn("not connected", self.call().stdout)
        done = self.call("--remove", "--all")
        self.assertEqual((done.returncode, self.files()), (0, []))
        self.assertIn("Quod Libet is no longer connected.", done.stdout)
        older = self.home / ".quodlibet"
        older.mkdir()
        (self.home / ".config/quodlibet/plugins").rmdir()
        (self.home / ".config/quodlibet").rmdir()
        self.call("quodlibet")  # a newer folder would hide the user's library
        self.assertTrue((older / "plugins/sonarin/__init__.py").exists())

    def test_says_what_cannot_be_done(self):
        for words, status, said in [(["--everything"], 2, "unknown option --everything"), (["--remove"], 2, "needs a program"),
                                    (["nautilus"], 1, "nautilus: not installed here"), (["no/such"], 1, "no/such: not")]:
            with self.subTest(words=words):
                done = self.call(*words)
                self.assertEqual((done.returncode, done.stdout), (status, ""))
                self.assertIn(said, done.stderr)
        (self.home / ".config").touch()
        done = self.call("quodlibet", "thunar")
        self.assertEqual(done.returncode, 1)
        self.assertIn("Quod Libet: Not a directory", done.stderr)
        self.assertEqual(self.files(), [".config"])


if __name__ == "__main__":
    unittest.main()
