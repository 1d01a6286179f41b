# SPDX-License-Identifier: MIT
"""sonarin-info on whole libraries: folders, lists of names, several files at once, and how it ends."""

import itertools
import json
import os
import resource
import signal
import subprocess
import time

from program import INFO, SAMPLE, SOUND, Folder, complaints, run
from sample_bytes import frame, id3_tag


def listed(*paths):
    return b"".join(os.fsencode(path) + b"\0" for path in paths)


class Library(Folder):
    def shows(self, arguments, paths, *causes, **options):
        """Compares the paths that are shown, and what is said."""
        status, shown, said = run("--json", *arguments, cwd=self.folder, **options)
        shown = [json.loads(line)["path"] for line in shown.splitlines()]
        self.assertEqual((shown, said, status), (paths, complaints(*causes), 1 if causes else 0))

    def plant(self, *names):
        for name in names:
            self.write(name)

    def test_folders_in_the_order_of_their_names(self):
        strange = os.fsdecode(b"b/\xff\xe9 caf\xc3\xa9.wav")
        self.plant("b/2.mp3", "b/10.mp3", "b/a/z.M4A", "b/a\n.mp3", strange, "a.mp3", "c/notes.txt", "c/cover.jpg",
                   "c/noname", "c/._x.mp3", "c/x.mp3", "c/._lone.mp3", "other/o.aif", "other/._o.aif/in.mp3")
        self.write("c/._noname", b"\0\5\x16\7\0\2\0\0" + bytes(16) + b"\0\1\0\0\0\x09\0\0\0\x26\0\0\0\x20" + b"MPG3" + bytes(28))
        for link, target in (("b/link", "../other"), ("b/loop", ".."), ("b/file.mp3", "../a.mp3")):
            (self.folder / link).symlink_to(target)
        os.mkfifo(self.folder / "b/fifo.mp3")
        for jobs in ("1", "4"):
            self.shows(["-r", "--jobs", jobs, "."],
                       ["./a.mp3", "./b/10.mp3", "./b/2.mp3", "./b/a/z.M4A", "./b/a\n.mp3", "./b/file.mp3", f"./{strange}",
                        "./c/._lone.mp3", "./c/noname", "./c/x.mp3", "./other/._o.aif/in.mp3", "./other/o.aif"],
                       "./b/a/z.M4A: No MPEG-4 movie header with an item list found",
                       "./b/\ufffd\ufffd café.wav: No WAVE sound format found", "./other/o.aif: No AIFF sound format found")
        self.shows(["--recursive", "c/", "b/link", "a.mp3"],
                   ["c/._lone.mp3", "c/noname", "c/x.mp3", "b/link/._o.aif/in.mp3", "b/link/o.aif", "a.mp3"],
                   "b/link/o.aif: No AIFF sound format found")
        self.shows(["c"], ["c"], "c: Is a directory")  # not asked to look inside

    def test_folders_that_cannot_be_read_are_passed_over(self):
        self.plant("a/1.mp3", "z.mp3")
        (self.folder / "b.mp3").symlink_to("nowhere")
        deep = "./a" + f"/{'d' * 250}" * 17  # which is more than a path can say
        subprocess.run(["mkdir", "-p", f"{deep}/deeper"], cwd=self.folder, check=True)
        self.shows(["-r", ".", "gone"], ["./a/1.mp3", "./b.mp3", "./z.mp3", "gone"], f"{deep[:4096]}…: File name too long",
                   "./b.mp3: No such file or directory", "gone: No such file or directory")
        if os.geteuid() != 0:
            (self.folder / "a").chmod(0)
            self.shows(["-r", "a"], [], "a: Permission denied")

    def test_lists_of_names(self):
        names = ["1.mp3", "2.mp3", "sub/3.mp3"]
        self.plant(*names)
        self.write("list", listed(*names))
        self.shows(["--files0-from", "list"], names)
        missing, long, longer = "No such file or directory", "x" * 100000, "y" * 1000000
        for options, content, shown, *causes in (
                ([], listed(*names)[:-1], names), ([], b"", []), (["-r"], listed("sub"), names[2:]),
                ([], listed("", "gone.mp3", long, "1.mp3", longer, "", "2.mp3"), ["gone.mp3", long, "1.mp3", "2.mp3"],
                 "-: Name 1 is empty", f"gone.mp3: {missing}", f"{long[:4096]}…: File name too long",
                 f"{longer[:4096]}…: File name too long", "-: Name 6 is empty")):
            self.shows([*options, "--files0-from", "-"], shown, *causes, input=content)
        for unreadable, cause in (("", missing), ("no", missing), ("sub", "Is a directory")):
            self.shows(["--files0-from", unreadable], [], f"{unreadable}: {cause}")
        slow = self.enterContext(subprocess.Popen(["sh", "-c", "sleep 0.1; cat list"], cwd=self.folder, stdout=subprocess.PIPE))
        os.set_blocking(slow.stdout.fileno(), False)
        self.shows(["--files0-from", "-"], names, stdin=slow.stdout)

    def test_many_files_come_in_order(self):
        self.write("small.mp3", SAMPLE.read_bytes())
        self.write("large.mp3", id3_tag(frame(b"USLT", b"\0eng\0" + b"la " * 100000)) + SOUND)
        self.write("slow.mp3", b"\xff" * 20000000)
        paths = ["slow.mp3", *["large.mp3", "small.mp3", "gone.mp3"] * 30, "slow.mp3"]
        status, shown, said = run("--jobs", "1", *paths, cwd=self.folder)
        self.assertEqual((status, shown.count(b"\n\n"), said.count("\n")), (1, len(paths) - 1, 32))
        for jobs in ("2", "7"):
            self.assertEqual(run("--jobs", jobs, *paths, cwd=self.folder), (status, shown, said))
        twice = run(*paths, *paths, cwd=self.folder)  # so many that it helps itself
        self.assertEqual(twice, (status, shown + b"\n" + shown, said * 2))
        self.shows(["--jobs", "64", *["small.mp3"] * 80], ["small.mp3"] * 80,
                   preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (24, 24)))


class Endings(Folder):
    WAYS = ((), ("--jobs", "3"))

    def start(self, names, *arguments, **options):
        """One that waits for more names."""
        process = self.enterContext(subprocess.Popen([INFO, "--json", "--files0-from", "-", *arguments], stdin=subprocess.PIPE,
                                                     env=dict(os.environ, TERM="xterm"), **options))
        self.addCleanup(process.kill)
        process.stdin.write(listed(*[SAMPLE] * names))
        process.stdin.flush()
        return process

    def test_signals(self):
        for arguments, (end, names, lines) in itertools.product(
                self.WAYS, ((signal.SIGINT, 50, 50), (signal.SIGTERM, 50, 50), (signal.SIGINT, 500, 0))):
            with self.subTest(arguments=arguments, end=end, lines=lines):
                process = self.start(names, *arguments, stdout=subprocess.PIPE, stderr=self.terminal()[0])
                for _ in range(lines):
                    self.assertTrue(json.loads(process.stdout.readline()))
                time.sleep(0 if lines else 1.3)  # progress would be shown, were there any
                process.send_signal(end)
                self.assertEqual(process.wait(10), -end)
                self.assertEqual(process.stdout.read() if lines else b"", b"")

    def test_a_reader_that_goes(self):
        for arguments in self.WAYS:
            process = self.start(2, *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            process.stdout.readline()
            process.stdout.close()
            process.stdin.write(listed(*[SAMPLE] * 200))
            process.stdin.flush()  # and no end: it does not wait for one
            self.assertEqual((process.wait(10), process.stderr.read()), (-signal.SIGPIPE, b""))

    def test_a_full_disk(self):
        for arguments, count in itertools.product(self.WAYS, (1, 300)):
            with open("/dev/full", "wb") as full:
                process = self.start(0, *arguments, stdout=full, stderr=subprocess.PIPE)
            said = process.communicate(listed(*[SAMPLE] * count))[1]
            self.assertEqual((process.returncode, said.decode()), (1, complaints("standard output: No space left on device")))

    def test_progress_is_for_terminals_and_goes(self):
        terminal, shown = self.terminal()
        process = self.start(3, stdout=subprocess.DEVNULL, stderr=terminal)
        time.sleep(1.5)
        process.stdin.close()
        self.assertEqual(process.wait(10), 0)
        self.assertRegex(shown(), r"^(\r\x1b\[K)?3 files, [0-3] a second[^\n]*\r\x1b\[K$")
