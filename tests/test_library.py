# SPDX-License-Identifier: MIT
"""sonarin-info on whole libraries: folders, lists of names, several files at once, and how it ends."""

import itertools
import json
import os
import resource
import signal
import subprocess
import time

from program import INFO, SAMPLE, SOUND, Folder, frame, id3_tag, run

NO_MOVIE, NO_WAVE, NO_AIFF = (f"No {part} found" for part in (
    "MPEG-4 movie header with an item list", "WAVE sound format", "AIFF sound format"))
MISSING = "No such file or directory"


def listed(*paths):
    return b"".join(os.fsencode(path) + b"\0" for path in paths)


class Library(Folder):
    def shows(self, arguments, paths, *complaints, **options):
        """Compares the paths that are shown and what is said, both as below the test's folder."""
        done = run("--json", *arguments, cwd=self.folder, **options)
        shown = [json.loads(line)["path"] for line in done.stdout.splitlines()]
        self.assertEqual((shown, done.stderr.decode().splitlines(), done.returncode),
                         (paths, [f"sonarin-info: {complaint}" for complaint in complaints], 1 if complaints else 0))

    def plant(self, *names):
        for name in names:
            self.write(name, SOUND)

    def test_folders_in_the_order_of_their_names(self):
        self.plant("b/2.mp3", "b/10.mp3", "b/a/z.M4A", "b/a\n.mp3", "b/é.wav", "a.mp3", "c/notes.txt", "c/cover.jpg",
                   "c/noname", "c/._x.mp3", "c/x.mp3", "c/._lone.mp3", "other/o.aif", "other/._o.aif/in.mp3")
        try:
            os.setxattr(self.folder / "c/noname", "user.com.apple.FinderInfo", b"MPG3" + bytes(28))
        except OSError as unsupported:
            self.skipTest(str(unsupported))
        (self.folder / "b/link").symlink_to("../other")
        (self.folder / "b/loop").symlink_to("..")
        (self.folder / "b/file.mp3").symlink_to("../a.mp3")
        os.mkfifo(self.folder / "b/fifo.mp3")
        for jobs in ("1", "4"):
            self.shows(["-r", "--jobs", jobs, "."],
                       ["./a.mp3", "./b/10.mp3", "./b/2.mp3", "./b/a/z.M4A", "./b/a\n.mp3", "./b/file.mp3", "./b/é.wav",
                        "./c/._lone.mp3", "./c/noname", "./c/x.mp3", "./other/._o.aif/in.mp3", "./other/o.aif"],
                       f"./b/a/z.M4A: {NO_MOVIE}", f"./b/é.wav: {NO_WAVE}", f"./other/o.aif: {NO_AIFF}", locale="C.UTF-8")
        self.shows(["--recursive", "c/", "b/link", "a.mp3"],
                   ["c/._lone.mp3", "c/noname", "c/x.mp3", "b/link/._o.aif/in.mp3", "b/link/o.aif", "a.mp3"],
                   f"b/link/o.aif: {NO_AIFF}")
        self.shows(["c"], ["c"], "c: Is a directory")  # not asked to look inside

    def test_folders_that_cannot_be_read_are_passed_over(self):
        self.plant("a/1.mp3", "z.mp3")
        (self.folder / "b.mp3").symlink_to("nowhere")
        deep = "./a" + f"/{'d' * 250}" * 17  # which is more than a path can say
        subprocess.run(["mkdir", "-p", f"{deep}/deeper"], cwd=self.folder, check=True)
        self.shows(["-r", ".", "gone"], ["./a/1.mp3", "./b.mp3", "./z.mp3", "gone"],
                   f"{deep[:4096]}…: File name too long", f"./b.mp3: {MISSING}", f"gone: {MISSING}")
        if os.geteuid() != 0:
            (self.folder / "a").chmod(0)
            self.addCleanup((self.folder / "a").chmod, 0o700)
            self.shows(["-r", "a"], [], "a: Permission denied")

    def test_lists_of_names(self):
        names = ["1.mp3", "2.mp3", "sub/3.mp3"]
        self.plant(*names)
        self.write("list", listed(*names))
        self.shows(["--files0-from", "list"], names)
        long, longer = "x" * 100000, "y" * 1000000
        for options, content, shown, *complaints in (
                ([], listed(*names)[:-1], names), ([], b"", []), (["-r"], listed("sub"), names[2:]),
                ([], listed("", "gone.mp3", long, "1.mp3", longer, "", "2.mp3"), ["gone.mp3", long, "1.mp3", "2.mp3"],
                 "-: Name 1 is empty", f"gone.mp3: {MISSING}", f"{long[:4096]}…: File name too long",
                 f"{longer[:4096]}…: File name too long", "-: Name 6 is empty")):
            self.shows([*options, "--files0-from", "-"], shown, *complaints, input=content)
        for unreadable, cause in (("", MISSING), ("no", MISSING), ("sub", "Is a directory")):
            self.shows(["--files0-from", unreadable], [], f"{unreadable}: {cause}")
        read, write = os.pipe()
        os.set_blocking(read, False)
        waiting = subprocess.Popen([INFO, "--json", "--files0-from", "-"], cwd=self.folder, stdin=read, stdout=subprocess.PIPE)
        os.close(read)
        time.sleep(0.1)
        os.write(write, listed(*names))
        os.close(write)
        self.assertEqual(waiting.communicate()[0].count(b"\n"), 3)

    def test_many_files_come_in_order(self):
        self.plant("small.mp3")
        self.write("large.mp3", id3_tag(frame(b"USLT", b"\0eng\0" + b"la " * 100000)) + SOUND)
        self.write("slow.mp3", b"\xff" * 100000000)
        paths = ["slow.mp3", *["large.mp3", "small.mp3", "gone.mp3"] * 30, "slow.mp3"]

        def outcome(*arguments):
            done = run(*arguments, cwd=self.folder)
            return done.returncode, done.stdout, done.stderr

        status, shown, said = outcome("--jobs", "1", *paths)
        self.assertEqual((status, shown.count(b"\n\n"), said.count(b"\n")), (1, len(paths) - 1, 32))
        for jobs in ("2", "7"):
            self.assertEqual(outcome("--jobs", jobs, *paths), (status, shown, said))
        self.assertEqual(outcome(*paths, *paths), (status, shown + b"\n" + shown, said * 2))  # so many that it helps itself
        few = run("--json", "--jobs", "64", *["small.mp3"] * 80, cwd=self.folder,
                  preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (24, 24)))
        self.assertEqual((few.returncode, few.stdout.count(b"\n")), (0, 80))


class Endings(Folder):
    WAYS = ((), ("--jobs", "3"))

    def start(self, count, *arguments, **options):
        """One that waits for more names."""
        process = self.enterContext(subprocess.Popen([INFO, "--json", "--files0-from", "-", *arguments], stdin=subprocess.PIPE,
                                                     env=dict(os.environ, TERM="xterm"), **options))
        self.addCleanup(process.kill)
        self.feed(process, count)
        return process

    def feed(self, process, count):
        process.stdin.write(listed(*[SAMPLE] * count))
        process.stdin.flush()

    def test_signals(self):
        for arguments, end in itertools.product(self.WAYS, (signal.SIGINT, signal.SIGTERM)):
            with self.subTest(arguments=arguments, end=end):
                process = self.start(50, *arguments, stdout=subprocess.PIPE)
                for _ in range(50):
                    self.assertTrue(json.loads(process.stdout.readline()))
                process.send_signal(end)
                self.assertEqual((process.wait(10), process.stdout.read()), (-end, b""))

    def test_signals_while_nobody_reads(self):
        for arguments in self.WAYS:
            process = self.start(500, *arguments, stdout=subprocess.PIPE, stderr=self.terminal()[0])
            time.sleep(1.3)  # progress would be shown, were there any
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(10), -signal.SIGINT)

    def test_a_reader_that_goes(self):
        for arguments in self.WAYS:
            process = self.start(2, *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            process.stdout.readline()
            process.stdout.close()
            self.feed(process, 200)  # and no end: it does not wait for one
            self.assertEqual((process.wait(10), process.stderr.read()), (-signal.SIGPIPE, b""))

    def test_a_full_disk(self):
        for arguments, count in itertools.product(self.WAYS, (1, 300)):
            with open("/dev/full", "wb") as full:
                process = self.start(0, *arguments, stdout=full, stderr=subprocess.PIPE)
            said = process.communicate(listed(*[SAMPLE] * count))[1]
            self.assertEqual((process.returncode, said), (1, b"sonarin-info: standard output: No space left on device\n"))

    def test_progress_is_for_terminals_and_goes(self):
        terminal, shown = self.terminal()
        process = self.start(3, stdout=subprocess.DEVNULL, stderr=terminal)
        time.sleep(1.5)
        process.stdin.close()
        self.assertEqual(process.wait(10), 0)
        self.assertRegex(shown(), r"^(\r\x1b\[K)?3 files, [0-3] a second[^\n]*\r\x1b\[K$")
