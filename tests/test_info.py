# SPDX-License-Identifier: MIT
"""sonarin-info as a user runs it."""

import json
import os
import subprocess
import time
import zlib

from program import INFO, SAMPLE, SAMPLES, SOUND, Folder, complaints, run
from sample_bytes import chunk, frame, id3_tag, synchsafe


class Output(Folder):
    def test_colour_is_for_terminals(self):
        self.assertNotIn(b"\x1b", run(SAMPLE)[1])
        terminal, type_keys = self.terminal()
        subprocess.run([INFO, SAMPLE], stdout=terminal, env=dict(os.environ, TERM="xterm"), check=True)
        self.assertIn("\x1b[", type_keys())

    def test_failures_are_told_and_the_rest_goes_on(self):
        (self.folder / "folder.mp3").mkdir()
        os.mkfifo(self.folder / "fifo.mp3")
        writer = self.enterContext(subprocess.Popen(["sh", "-c", "exec 3> fifo.mp3"], cwd=self.folder))
        self.addCleanup(writer.kill)
        self.write("secret.mp3").chmod(0)
        rows = [("missing.mp3", 1, "n.a.", "No such file or directory"), ("folder.mp3", 1, "n.a.", "Is a directory"),
                ("fifo.mp3", 1, "n.a.", "Not a regular file"), ("/dev/zero", 0, "n.a.", "Not a regular file"),
                (self.write("a.txt"), 0, "0.4 KB", "Not an audio file, going by its name and type codes"),
                (self.write("empty.mp3", b""), 1, "0.0 KB", "The file is empty"), ("", 0, "n.a.", "No such file or directory"),
                *([("secret.mp3", 1, "0.4 KB", "Permission denied")] if os.geteuid() != 0 else []),  # root may read everything
                (self.write("zero.mp3", bytes(100)), 1, "0.1 KB", "No MPEG audio frame found"), (SAMPLE, 1, "27.6 KB", None)]
        time.sleep(0.2)
        status, shown, said = run("--json", *(path for path, *_ in rows), cwd=self.folder)
        self.assertEqual((status, said), (1, complaints(*(f"{path}: {cause}" for path, *_, cause in rows if cause))))
        self.assertEqual([(found["type"], found["panel"]["fileSizeField"], found["result"])
                          for found in map(json.loads, shown.splitlines())],
                         [(kind, size, -1 if cause else 0) for _, kind, size, cause in rows])
        self.assertIsNone(writer.poll())  # nobody has opened the other end
        # A reader that fails midway keeps what it has.
        self.expect(self.write("cut.mp3", SAMPLE.read_bytes()[:11100]), result=-1, mp3AlbumString="Small Files", id3AlbumField="")

    def test_covers(self):
        cover, song, mine = run("--cover", "-", SAMPLE)[1], SAMPLE.read_bytes(), b"mine" * 10000
        self.assertTrue(cover.startswith(b"\x89PNG"))
        self.assertEqual(cover[:-1], run("--cover", "-", SAMPLES / "sample.m4a")[1])  # what tells its size exactly
        self.write("plain.mp3")
        self.write("song.mp3", song)
        (self.folder / "link.png").symlink_to("song.mp3")
        itself = "song.mp3: The cover would replace the audio file itself"
        for target, before, call, complaint, after in (
                ("new.png", None, "song.mp3", None, cover), ("replaced.png", mine, "--force song.mp3", None, cover),
                ("kept.png", mine, "song.mp3", "song.mp3: kept.png: File exists (--force replaces it)", mine),
                ("none.png", None, "plain.mp3", "plain.mp3: The file holds no cover picture", None),
                # The audio file is never written, under whatever name it is met.
                ("song.mp3", song, "--force song.mp3", itself, song), ("link.png", song, "--force song.mp3", itself, song)):
            with self.subTest(target=target):
                path = self.write(target, before) if before else self.folder / target
                self.assertEqual(run("--cover", target, *call.split(), cwd=self.folder),
                                 (1, b"", complaints(complaint)) if complaint else (0, b"", ""))
                self.assertEqual(path.read_bytes() if path.exists() else None, after)
        for force, left in ("", []), ("--force", ["full.png"]):  # half a picture stays only where it may replace another
            full = f'trap "" XFSZ; ulimit -f 1; exec "$0" {force} --cover full.png song.mp3'
            failed = subprocess.run(["sh", "-c", full, INFO], cwd=self.folder, capture_output=True, text=True)
            self.assertEqual((failed.returncode, failed.stderr, [path.name for path in self.folder.glob("full*")]),
                             (1, complaints("song.mp3: full.png: File too large"), left))

    def test_usage(self):
        for problem, *calls in (
                ("no file is named", "", "--json", "--cover x", "-r"),
                ("unknown option or value: --bogus", "--bogus x"), ("unknown option or value: --b\\x1Bd", "sample.mp3 --b\x1bd"),
                ("--cover needs a value", "--cover", "sample.mp3 --cover"), ("--files0-from needs a value", "--files0-from"),
                ("--force goes with --cover", "--force sample.mp3"),
                ("--json and --cover do not go together", "--json --cover x sample.mp3"),
                ("--cover takes one file", "--cover x sample.mp3 x.mp3", "--cover x -r sample.mp3", "--cover - --files0-from -"),
                ("--files0-from takes no files besides", "--files0-from - sample.mp3"),
                ("--jobs takes a number from 1 to 1024", "--jobs 0 sample.mp3", "--jobs 2x sample.mp3", "--jobs 1025 x.mp3")):
            for call in calls:
                self.assertEqual(run(*call.split(), stdin=subprocess.DEVNULL, cwd=SAMPLES),
                                 (2, b"", complaints(f"{problem} (--help shows the usage)")), call)
        self.write("-x.mp3")
        for call, start in (("--help", b"Usage: sonarin"), ("--version", b"sonarin-info 0."), ("-- -x.mp3", b"Name      -x")):
            status, shown, _ = run(*call.split(), cwd=self.folder)
            self.assertEqual((status, shown[:len(start)]), (0, start))


class HostileFiles(Folder):
    """Sizes that lie must cost neither memory nor time."""

    def test_memory_and_exit_status(self):
        deflate = zlib.compressobj(9)
        bomb = b"\x20\0\0\0" + b"".join(deflate.compress(bytes(1 << 20)) for _ in range(64)) + deflate.flush()
        for name, status, *parts in (  # what stands one behind the other, and the places to go to in between
                *((f"{name}.mp3", 1, b"ID3\3\0\0\x7f\x7f\x7f\x7f" + name.encode() + b"\xff\xff\xff\xfa\0\0\0" + bytes(200))
                  for name in ("USLT", "APIC", "TIT2")),
                ("beyond four gibibytes.mp3", 0, SAMPLE.read_bytes(), (5 << 30) + 123),
                ("far sound.mp3", 0, id3_tag(b""), 1 << 42, SOUND), ("a hole.mp3", 1, id3_tag(b""), 1 << 42),
                ("far format.wav", 0, b"RIFF\xff\xff\xff\xffWAVE", (1 << 42) + 4,
                 b"fmt \x10\0\0\0\1\0\1\0\x44\xac\0\0\x44\xac\0\0\1\0\x08\0"),
                # Tags that are larger by their standards.
                ("bombs.mp3", 0, id3_tag(frame(b"APIC", bomb, 9, bits=7) * 40, 4), SOUND),
                ("values.mp3", 0, id3_tag(frame(b"TIT2", b"\0" + b"a\0" * 1000000, bits=7), 4), SOUND),
                ("genres.mp3", 0, id3_tag(frame(b"TCON", b"\0" + b"(1)\0" * 1000000, bits=7), 4), SOUND),
                ("unsynchronised.mp3", 0, id3_tag(b"TIT2\0\x10\0\0\0\0\0" + b"\xff\0" * (1 << 20), 3, 0x80), SOUND),
                ("comments.mp3", 0, id3_tag(frame(b"COMM", b"\0engd\0text") * 200000, 4), SOUND),
                ("joined.mp3", 0, id3_tag(frame(b"TPE1", b"\0ab") * 200000), SOUND)):
            with self.subTest(name=name), open(self.folder / name, "wb") as file:
                for part in parts:
                    file.write(part) if isinstance(part, bytes) else file.seek(part)
                file.truncate()
                for reading in ([], ["--by-standard"]):
                    process = os.posix_spawn(INFO, [INFO, "--json", *reading, file.name], os.environ, file_actions=[
                        (os.POSIX_SPAWN_OPEN, output, "/dev/null", os.O_WRONLY, 0) for output in (1, 2)])
                    _, ended, usage = os.wait4(process, 0)
                    self.assertEqual(os.waitstatus_to_exitcode(ended), status)
                    # The sanitizers' own shadow does not count as the program's memory; what is here when it starts does.
                    if os.environ.get("SONARIN_SANITIZED") != "ON":
                        self.assertLess(usage.ru_maxrss, 60 * 1024)
        self.assertEqual(len(self.expect(self.folder / "joined.mp3")["mp3ArtistString"]), 200000 * 3 - 1)

    def test_tags_that_share_their_pictures(self):
        """So many that they are not all read; those that are do not depend on whether pictures are wanted."""
        rest = chunk(b"SSND", b"\0\0\xff\xd8" * 100000)
        for _ in range(60):  # each reaches as far as the file but for two bytes
            picture = b"APIC" + synchsafe(len(rest) + 18, 8) + b"\0\0" + b"\0image/jpeg\0\3\0".ljust(20, b"\0")
            rest = chunk(b"ID3 ", id3_tag(frame(b"TPE1", b"\0A\0") + picture)) + rest
        common = chunk(b"COMM", b"\0\2\0\6\xba\xa8\0\x10\x40\x0e\xac\x44" + bytes(6))
        path = self.write("shared.aif", chunk(b"FORM", b"AIFF" + common + rest))
        record = self.expect(path)
        self.assertLess(len(record["mp3ArtistString"]), 2 * 60 - 1)
        self.assertEqual(len(run("--cover", "-", path)[1]), record["mp3CoverArt"])
