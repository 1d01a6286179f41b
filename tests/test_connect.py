# SPDX-License-Identifier: MIT
"""sonarin-connect as a user calls it; the connectors themselves are met by the programs that they are for."""

import subprocess

from program import INFO, Folder


class Connect(Folder):
    def calls(self, *rows):
        """Each row is a call, its exit status, what is said (where it belongs), and the files that are there afterwards."""
        self.write("bin/quodlibet", b"#!/bin/sh\n").chmod(0o755)
        for words, status, said, files in rows:
            with self.subTest(words=words):
                done = subprocess.run([INFO.removesuffix("info") + "connect", *words.split()], capture_output=True, text=True,
                                      timeout=60, env={"PATH": f"{self.folder}/bin", "HOME": str(self.folder)})
                self.assertEqual((done.returncode, done.stdout, done.stderr.partition("Usage: ")[0]),
                                 (status, "", f"sonarin-connect: {said}") if status else (0, said, ""))
                self.assertCountEqual([path.name for path in self.folder.rglob("*") if path.is_file()], ["quodlibet", *files])

    def test_adds_lists_and_removes(self):
        plugin = ["__init__.py", "sonarin_selection.py"]
        self.calls(("", 0, "quodlibet     Quod Libet    not connected\n", []),
                   ("quodlibet", 0, "Quod Libet is connected. Start it anew.\n", plugin),
                   ("", 0, "quodlibet     Quod Libet    connected\n", plugin),
                   ("--remove --all", 0, "Quod Libet is no longer connected. Start it anew.\n", []))

    def test_keeps_to_the_older_folder(self):
        (self.folder / ".quodlibet").mkdir()
        self.calls(("quodlibet", 0, "Quod Libet is connected. Start it anew.\n", ["__init__.py", "sonarin_selection.py"]))
        self.assertTrue((self.folder / ".quodlibet/plugins/sonarin/__init__.py").exists())  # a newer one would hide the library

    def test_says_what_cannot_be_done(self):
        self.write(".config")
        missing = "not installed here, or not known\n"
        self.calls(("--everything", 2, "unknown option --everything\n", [".config"]),
                   ("--remove", 2, "--remove needs a program, or --all\n", [".config"]),
                   ("nautilus", 1, f"nautilus: {missing}", [".config"]), ("no/such", 1, f"no/such: {missing}", [".config"]),
                   ("quodlibet", 1, "Quod Libet: Not a directory\n", [".config"]),
                   ("quodlibet thunar", 1, f"thunar: {missing}sonarin-connect: Quod Libet: Not a directory\n", [".config"]))
