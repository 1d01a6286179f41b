# SPDX-License-Identifier: MIT
"""sonarin-info on whole libraries: folders, lists of names, several files at once, and how it ends."""

import json
import os
import pty
import resource
import signal
import subprocess
import time

from program import INFO, SAMPLES, Folder, run

SAMPLE = (SAMPLES / "sample.mp3").read_bytes()
FINDER_INFO = b"MPG3" + bytes(28)


def listed(paths, end=b"\0"):
    return b"\0".join(map(os.fsencode, paths)) + end


class Library(Folder):
    def shown(self, *arguments, status=0, **options):
        """The paths that were shown, below the test's folder, and the complaints."""
        done = run("--json", *arguments, **options)
        self.assertEqual(done.returncode, status, done.stderr)
        paths = [json.loads(line)["path"] for line in done.stdout.splitlines()]
        return [path.removeprefix(f"{self.folder}/") for path in paths], done.stderr.decode()

    def plant(self, *names):
        for name in names:
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(SAMPLE)

    def test_folders_in_the_order_of_their_names(self):
        self.plant("b/2.mp3", "b/10.mp3", "b/a/z.M4A", "b/a\n.mp3", "b/é.wav", "a.mp3", "c/notes.txt", "c/cover.jpg",
                   "c/noname", "c/._x.mp3", "c/x.mp3", "c/._lone.mp3", "other/o.aif", "other/._o.aif/in.mp3")
        try:
            os.setxattr(self.folder / "c/noname", "user.com.apple.FinderInfo", FINDER_INFO)
        except OSError as unsupported:
            self.skipTest(str(unsupported))
        (self.folder / "b/link").symlink_to(self.folder / "other")
        (self.folder / "b/loop").symlink_to("..")
        (self.folder / "b/file.mp3").symlink_to("../a.mp3")
        os.mkfifo(self.folder / "b/fifo.mp3")
        expected = ["a.mp3", "b/10.mp3", "b/2.mp3", "b/a\n.mp3", "b/a/z.M4A", "b/file.mp3", "b/é.wav", "c/._lone.mp3",
                    "c/noname", "c/x.mp3", "other/._o.aif/in.mp3", "other/o.aif"]
        wrong = {"b/a/z.M4A", "b/é.wav", "other/o.aif"}  # in truth MPEG files
        for jobs in ("1", "4"):
            paths, complaints = self.shown("-r", "--jobs", jobs, self.folder, status=1)
            self.assertEqual(sorted(paths), sorted(expected))
            self.assertEqual([os.fsencode(path) for path in paths if "/" not in path[2:]],
                             [os.fsencode(path) for path in expected if "/" not in path[2:]])
            self.assertEqual(len(complaints.splitlines()), len(wrong))
        paths, _ = self.shown("--recursive", f"{self.folder}/c/", self.folder / "b/link", self.folder / "a.mp3", status=1)
        self.assertEqual(paths, ["c/._lone.mp3", "c/noname", "c/x.mp3", "b/link/._o.aif/in.mp3", "b/link/o.aif",
                                 "a.mp3"])
        self.assertEqual(self.shown(self.folder / "c", status=1)[0], ["c"])  # not asked to look inside

    def test_folders_that_cannot_be_read_are_passed_over(self):
        self.plant("a/1.mp3", "z.mp3")
        here = os.getcwd()
        self.addCleanup(os.chdir, here)
        os.chdir(self.folder / "a")
        for _ in range(20):  # deeper than a path can say
            os.mkdir("d" * 250)
            os.chdir("d" * 250)
        os.chdir(here)
        (self.folder / "b.mp3").symlink_to("nowhere")
        paths, complaints = self.shown("-r", self.folder, self.folder / "gone", status=1)
        self.assertEqual(paths, ["a/1.mp3", "b.mp3", "z.mp3", "gone"])
        for line, words in zip(complaints.splitlines(), ("File name too long", "b.mp3: No such", "gone: No such")):
            self.assertIn(words, line)
        if os.geteuid() != 0:
            (self.folder / "a").chmod(0)
            self.addCleanup((self.folder / "a").chmod, 0o700)
            self.assertIn("Permission denied", self.shown("-r", self.folder, status=1)[1])

    def test_lists_of_names(self):
        self.plant("1.mp3", "2.mp3", "sub/3.mp3")
        names = [self.folder / "1.mp3", self.folder / "2.mp3", self.folder / "sub/3.mp3"]
        short = ["1.mp3", "2.mp3", "sub/3.mp3"]
        file = self.write("list", listed(names))
        self.assertEqual(self.shown("--files0-from", file), (short, ""))
        self.assertEqual(self.shown("--files0-from", "-", input=listed(names, b"")), (short, ""))
        self.assertEqual(self.shown("--files0-from", "-", input=b""), ([], ""))
        self.assertEqual(self.shown("-r", "--files0-from", "-", input=listed([self.folder / "sub"])), (short[2:], ""))
        hostile = ["", self.folder / "gone.mp3", "x" * 100000, names[0], "y" * 1000000, "", names[1]]
        paths, complaints = self.shown("--files0-from", "-", input=listed(hostile), status=1)
        self.assertEqual(paths, ["gone.mp3", "x" * 100000, "1.mp3", "2.mp3"])
        for line, words in zip(complaints.splitlines(), ("-: Name 1 is empty", "gone.mp3: No such file", "…: File name too long",
                                                         "…: File name too long", "-: Name 6 is empty")):
            self.assertIn(words, line)
            self.assertLess(len(line), 5000)
        read, write = os.pipe()
        os.set_blocking(read, False)
        waiting = subprocess.Popen([INFO, "--json", "--files0-from", "-"], stdin=read, stdout=subprocess.PIPE)
        os.close(read)
        time.sleep(0.1)
        os.write(write, listed(names))
        os.close(write)
        self.assertEqual(waiting.communicate()[0].count(b"\n"), 3)
        for unreadable, words in (("", "No such file"), (self.folder / "no", "No such file"), (self.folder, "Is a directory")):
            self.assertIn(words, self.shown("--files0-from", unreadable, status=1)[1])

    def test_many_files_come_in_order(self):
        self.plant("small.mp3")
        lyrics = b"USLT" + (300005).to_bytes(4, "big") + b"\0\0\0eng\0" + b"la " * 100000
        size = bytes(len(lyrics) >> shift & 127 for shift in (21, 14, 7, 0))
        large = self.write("large.mp3", b"ID3\3\0\0" + size + lyrics + b"\xff\xfb\x90\0" + bytes(400))
        slow = self.write("slow.mp3", b"\xff" * 100000000)
        paths = [slow, *[large, self.folder / "small.mp3", self.folder / "gone.mp3"] * 30, slow]
        wanted = run("--jobs", "1", *paths)
        self.assertEqual(wanted.stdout.count(b"\n\n"), len(paths) - 1)
        for jobs in ("2", "7"):
            done = run("--jobs", jobs, *paths)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (1, wanted.stdout, wanted.stderr))
        few = run("--json", "--jobs", "64", *[self.folder / "small.mp3"] * 80,
                  preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (24, 24)))
        self.assertEqual((few.returncode, few.stdout.count(b"\n")), (0, 80))
        unasked = run(*paths, *paths)  # so many that it helps itself
        self.assertEqual(unasked.stdout, wanted.stdout + b"\n" + wanted.stdout)


class Endings(Folder):
    def start(self, *arguments, **options):
        process = subprocess.Popen([INFO, "--json", "--files0-from", "-", *arguments], stdin=subprocess.PIPE,
                                   env=dict(os.environ, TERM="xterm"), **options)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def feed(self, process, count):
        process.stdin.write(listed([SAMPLES / "sample.mp3"] * count))
        process.stdin.flush()

    def test_signals(self):
        for arguments in ((), ("--jobs", "3")):
            for end in (signal.SIGINT, signal.SIGTERM):
                with self.subTest(arguments=arguments, end=end):
                    process = self.start(*arguments, stdout=subprocess.PIPE)
                    self.feed(process, 50)
                    lines = [process.stdout.readline() for _ in range(50)]
                    process.send_signal(end)
                    self.assertEqual(process.wait(10), -end)
                    self.assertEqual(process.stdout.read(), b"")
                    self.assertTrue(all(json.loads(line) for line in lines))

    def test_signals_while_nobody_reads(self):
        try:
            main, side = pty.openpty()
        except OSError as missing:
            self.skipTest(str(missing))
        for arguments in ((), ("--jobs", "3")):
            process = self.start(*arguments, stdout=subprocess.PIPE, stderr=side)
            self.feed(process, 500)
            time.sleep(1.3)  # progress would be shown, were there any
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(10), -signal.SIGINT)
        os.close(side)
        os.close(main)

    def test_a_reader_that_goes(self):
        for arguments in ((), ("--jobs", "3")):
            process = self.start(*arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            self.feed(process, 2)
            process.stdout.readline()
            process.stdout.close()
            self.feed(process, 200)  # and no end: it does not wait for one
            self.assertEqual(process.wait(10), -signal.SIGPIPE)
            self.assertEqual(process.stderr.read(), b"")
            process.stdin = process.stdout = process.stderr = None

    def test_a_full_disk(self):
        for arguments in ((), ("--jobs", "3")):
            with open("/dev/full", "wb") as full:
                process = self.start(*arguments, stdout=full, stderr=subprocess.PIPE)
                said = process.communicate(listed([SAMPLES / "sample.mp3"] * 300))[1]
                self.assertEqual((process.returncode, said), (1, b"sonarin-info: standard output: No space left on device\n"))

    def test_progress_is_for_terminals_and_goes(self):
        try:
            main, side = pty.openpty()
        except OSError as missing:
            self.skipTest(str(missing))
        process = self.start(stdout=subprocess.DEVNULL, stderr=side)
        os.close(side)
        self.feed(process, 3)
        time.sleep(1.5)
        process.stdin.close()
        self.assertEqual(process.wait(10), 0)
        said = os.read(main, 4096)
        os.close(main)
        self.assertRegex(said, rb"^(\r\x1b\[K)?3 files, [0-3] a second")
        self.assertTrue(said.endswith(b"\r\x1b[K"), said)
        process.stdin = None


if __name__ == "__main__":
    import unittest
    unittest.main()
