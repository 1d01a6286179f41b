# SPDX-License-Identifier: MIT
"""sonarin-info as a user runs it, on files made by real encoders and taggers."""

import json
import os
import pty
import subprocess
import time
import unittest
import zlib

from mutagen import id3, mp3

from program import INFO, SAMPLES, Folder, read_json, run

SAMPLE = SAMPLES / "sample.mp3"


class RealFiles(Folder):
    def test_encoders_and_what_another_reader_says(self):
        cases = [
            (["lame", "-b", "160"], {}, 0, " Joint Stereo"),
            (["lame", "-m", "s", "-b", "192"], {}, 0, "Stereo"),
            (["lame", "-m", "m", "-b", "64"], {"channels": 1}, 0, "Mono"),
            (["lame", "-V", "2"], {}, 1, None),
            (["lame", "-V", "4"], {"rate": 22050, "channels": 1}, 1, "Mono"),
            (["lame", "-b", "32"], {"rate": 11025}, 0, None),
            (["twolame", "-b", "256"], {"rate": 48000}, 0, "Stereo"),
        ]
        for command, sound, vbr, channels in cases:
            with self.subTest(command=command, sound=sound):
                path = self.encoded("x.mp3", *command, **sound)
                theirs = mp3.MP3(path).info
                [ours] = read_json(path)
                record = ours["record"]
                self.assertEqual(ours["result"], 0)
                self.assertEqual(record["mp3SamplingRate"], theirs.sample_rate)
                self.assertEqual(record["mp3HasVBR"], vbr)
                self.assertEqual({3: 1, 2: 2}[theirs.layer], record["mp3Layer"])
                self.assertEqual({1: 3, 2: 2, 2.5: 0}[theirs.version], record["mp3Version"])
                if channels:
                    self.assertEqual(ours["panel"]["id3ChannelsField"], channels)
                if not vbr:
                    self.assertEqual(record["mp3BitRate"], round(theirs.bitrate / 1000))
                    self.assertLessEqual(abs(record["mp3SongLen"] - theirs.length), 1)

    def test_tags_by_a_real_tagger(self):
        path = self.encoded("x.mp3", "lame", "-b", "128")
        cover = b"\xff\xd8\xff\xe0" + bytes(50000)
        for version in (3, 4):
            tag = id3.ID3()
            tag.add(id3.TIT2(encoding=1, text="Größe 日本"))
            tag.add(id3.TPE1(encoding=0, text="Ann"))
            tag.add(id3.TALB(encoding=0, text="Café"))  # Latin-1 beyond ASCII is not taken
            tag.add(id3.TRCK(encoding=0, text="3/12"))
            tag.add(id3.TYER(encoding=0, text="1999"))
            tag.add(id3.TCON(encoding=0, text="(17)"))
            tag.add(id3.COMM(encoding=0, lang="eng", desc="iTunNORM", text=" 0000"))
            tag.add(id3.COMM(encoding=0, lang="eng", desc="", text="a comment"))
            tag.add(id3.USLT(encoding=0, lang="eng", desc="", text="la\nla"))
            tag.add(id3.APIC(encoding=0, mime="image/jpeg", type=3, desc="", data=cover))
            tag.save(path, v2_version=version)
            record = read_json(path)[0]["record"]
            self.assertEqual(record["mp3SongTitleString"].rstrip("\0"), "Größe 日本")
            self.assertEqual(record["mp3ArtistString"], "Ann")
            self.assertIsNone(record["mp3AlbumString"])
            self.assertEqual(record["mp3CommentString"], "a comment")
            # A size of 128 and more is not read as version 4 writes it.
            self.assertEqual(record["mp3CoverArtType"], "JPEG" if version == 3 else None)
            self.assertEqual((record["mp3TagVersion"], record["mp3TheTrack"], record["mp3TrackAmount"],
                              record["mp3LyricsString"]), (version, 3, 12, "la\nla"))
            if version == 3:
                self.assertEqual(record["mp3CoverArt"], len(cover) + 1)
                self.assertEqual(run("--cover", "-", path).stdout[:-1], cover)

    def test_the_sample_in_another_locale(self):
        [found] = read_json(SAMPLE, locale="de_DE.UTF-8")
        self.assertEqual(found["panel"]["id3BitrateEtcField"], "128 kbps  44,1 kHz")
        self.assertEqual(found["panel"]["id3GenreField"], "Klassik")
        [found] = read_json(SAMPLE, locale="POSIX")
        self.assertEqual(found["panel"]["id3GenreField"], "Classical")


class Output(Folder):
    def test_colour_is_for_terminals(self):
        self.assertNotIn(b"\x1b", run(SAMPLE).stdout)
        try:
            main, side = pty.openpty()
        except OSError as missing:
            self.skipTest(str(missing))
        subprocess.run([INFO, SAMPLE], stdout=side, env=dict(os.environ, TERM="xterm"), check=True)
        self.assertIn(b"\x1b[", os.read(main, 4096))
        os.close(side)
        os.close(main)

    def test_failures_are_told_and_the_rest_goes_on(self):
        folder = self.folder / "folder.mp3"
        folder.mkdir()
        fifo = self.folder / "fifo.mp3"
        os.mkfifo(fifo)
        tagged = self.write("tagged.mp3", SAMPLE.read_bytes()[:27800][:11100])
        paths = [self.folder / "missing.mp3", folder, fifo, "/dev/zero", self.write("a.txt", b"x"),
                 self.write("empty.mp3", b""), self.write("zero.mp3", bytes(100)), "", SAMPLE]
        done = run("--json", *paths)
        found = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertEqual(done.returncode, 1)
        self.assertEqual([f["type"] for f in found], [1, 1, 1, 0, 0, 1, 1, 0, 1])
        self.assertEqual([f["result"] for f in found], [-1] * 8 + [0])
        self.assertEqual([f["panel"]["fileSizeField"] for f in found[:4]], ["n.a."] * 4)
        causes = done.stderr.decode().splitlines()
        self.assertEqual(len(causes), 8)
        for path, cause, word in zip(paths, causes, ("No such file", "directory", "regular", "regular", "audio file",
                                                     "empty", "frame", "No such file")):
            self.assertIn(f"{path}: ", cause)
            self.assertIn(word, cause)
        # A reader that fails midway keeps what it has.
        [found] = read_json(tagged)
        self.assertEqual(found["result"], -1)
        self.assertEqual(found["record"]["mp3AlbumString"], "Small Files")
        self.assertEqual(found["panel"]["id3AlbumField"], "")

    def test_a_fifo_with_a_writer_is_left_alone(self):
        fifo = self.folder / "fifo.mp3"
        os.mkfifo(fifo)
        writer = subprocess.Popen(["sh", "-c", f'exec 3> "{fifo}"; echo through'], stdout=subprocess.PIPE)
        time.sleep(0.2)
        self.assertEqual(run(fifo).returncode, 1)
        self.assertIsNone(writer.poll())
        writer.kill()
        writer.communicate()

    @unittest.skipIf(os.geteuid() == 0, "root may read everything")
    def test_a_file_without_permission(self):
        path = self.write("secret.mp3", SAMPLE.read_bytes())
        path.chmod(0)
        done = run(path)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"Permission denied", done.stderr)

    def test_names_that_are_not_utf8(self):
        path = os.path.join(os.fsencode(self.folder), b"\xff\xe9 caf\xc3\xa9.mp3")
        with open(path, "wb") as out:
            out.write(SAMPLE.read_bytes())
        [found] = read_json(path)
        self.assertEqual(found["result"], 0)
        self.assertEqual(os.fsencode(found["path"]), path)
        self.assertIn("\ufffd\ufffd café.mp3".encode(), run(path).stdout)

    def test_covers(self):
        target = self.folder / "cover.png"
        self.assertEqual(run("--cover", target, SAMPLE).returncode, 0)
        self.assertTrue(target.read_bytes().startswith(b"\x89PNG"))
        target.write_bytes(b"mine")
        done = run("--cover", target, SAMPLE)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"exists", done.stderr)
        self.assertEqual(target.read_bytes(), b"mine")
        self.assertEqual(run("--cover", target, "--force", SAMPLE).returncode, 0)
        self.assertTrue(target.read_bytes().startswith(b"\x89PNG"))
        plain = self.encoded("plain.mp3", "lame", "-b", "128")
        self.assertEqual(run("--cover", self.folder / "no.png", plain).returncode, 1)
        self.assertFalse((self.folder / "no.png").exists())
        # The audio file is never written, under whatever name it is met.
        audio = self.write("audio.mp3", SAMPLE.read_bytes())
        (self.folder / "link.png").symlink_to(audio)
        for name in (audio, self.folder / "link.png"):
            self.assertEqual(run("--cover", name, "--force", audio).returncode, 1)
        self.assertEqual(audio.read_bytes(), SAMPLE.read_bytes())

    def test_usage(self):
        for wrong in ([], ["--bogus", "x"], ["--json"], ["--cover", "x"], ["--cover"], ["--force", SAMPLE],
                      ["--cover", "x", SAMPLE, SAMPLE], ["--json", "--cover", "x", SAMPLE],
                      ["--files0-from", "-", SAMPLE], ["--files0-from"], ["--jobs", "0", SAMPLE], ["--jobs", "two", SAMPLE],
                      ["--jobs", "2000", SAMPLE], ["--cover", "-", "--files0-from", "-"], ["--cover", "-", "-r", SAMPLE], ["-r"]):
            done = run(*wrong, stdin=subprocess.DEVNULL)
            self.assertEqual(done.returncode, 2, wrong)
            self.assertTrue(done.stderr and not done.stdout)
        self.assertIn(b": --b\\x1Bad", run(SAMPLE, "--b\x1bad").stderr)
        self.assertIn(b": --cover needs", run(SAMPLE, "--cover").stderr)
        self.assertIn(b"Usage", run("--help").stdout)
        self.assertIn(b"0.", run("--version").stdout)
        self.assertEqual(run("--", self.write("-x.mp3", SAMPLE.read_bytes()).name, cwd=self.folder).returncode, 0)
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run([INFO, SAMPLE], stdout=full, stderr=subprocess.DEVNULL).returncode, 1)


class HostileFiles(Folder):
    """Sizes that lie must cost neither memory nor time."""

    def read_within(self, path, megabytes):
        """The exit status, which is the same in both ways of reading."""
        statuses = set()
        for options in (["--json"], ["--json", "--by-standard"]):
            process = subprocess.Popen([INFO, *options, path], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            statuses.add(process.returncode)
            # The sanitizers' own shadow does not count as the program's memory.
            if os.environ.get("SONARIN_SANITIZED") != "ON":
                self.assertLess(usage.ru_maxrss, megabytes * 1024)
        self.assertEqual(len(statuses), 1)
        return statuses.pop()

    def test_frames_and_tags_that_claim_gigabytes(self):
        for frame in (b"USLT", b"APIC", b"TIT2"):
            lie = b"ID3\3\0\0\x7f\x7f\x7f\x7f" + frame + b"\xff\xff\xff\xfa\0\0\0" + bytes(200)
            self.assertEqual(self.read_within(self.write("lie.mp3", lie), 60), 1)

    def test_sparse_file_beyond_four_gibibytes(self):
        path = self.write("large.mp3", SAMPLE.read_bytes())
        os.truncate(path, (5 << 30) + 123)
        self.assertEqual(self.read_within(path, 60), 0)

    def test_holes_larger_than_any_disk(self):
        frame, tag = b"\xff\xfb\x90\0" + bytes(400), b"ID3\3\0\0\0\0\0\0"
        form = b"RIFF\xff\xff\xff\xffWAVE"
        for name, start, far, end, status in (
                ("a.mp3", tag, 1 << 42, frame, 0), ("b.mp3", tag, 1 << 42, b"", 1),
                ("c.wav", form, (1 << 42) + 4, b"fmt \x10\0\0\0\1\0\1\0\x44\xac\0\0\x44\xac\0\0\1\0\x08\0", 0)):
            with self.subTest(name=name), open(self.folder / name, "wb") as file:
                file.write(start)
                file.truncate(far)
                file.seek(far)
                file.write(end)
                file.flush()
                self.assertEqual(self.read_within(file.name, 60), status)

    def test_tags_that_share_their_pictures(self):
        """So many that they are not all read; those that are do not depend on whether pictures are wanted."""
        common = b"COMM\0\0\0\x12\0\2\0\6\xba\xa8\0\x10\x40\x0e\xac\x44" + bytes(6)
        tag_size, count, sound = 53, 60, b"\0\0\xff\xd8" * 100000
        end = 12 + len(common) + count * (8 + tag_size) + 8 + len(sound)
        chunks = b""
        for number in range(count):
            picture = end - (12 + len(common) + number * (8 + tag_size) + 8 + 33) - 2
            frames = (b"TPE1\0\0\0\3\0\0\0A\0" + b"APIC" + picture.to_bytes(4, "big") + b"\0\0" +
                      b"\0image/jpeg\0\3\0".ljust(20, b"\0"))
            chunks += b"ID3 \0\0\0" + bytes([tag_size]) + b"ID3\3\0\0\0\0\0" + bytes([tag_size - 10]) + frames
        form = b"AIFF" + common + chunks + b"SSND" + len(sound).to_bytes(4, "big") + sound
        path = self.write("shared.aif", b"FORM" + len(form).to_bytes(4, "big") + form)
        record = read_json(path)[0]["record"]
        self.assertLess(len(record["mp3ArtistString"]), 2 * count - 1)
        self.assertEqual(len(run("--cover", "-", path).stdout), record["mp3CoverArt"])

    def test_a_tag_of_joined_frames(self):
        frames = (b"TPE1\0\0\0\3\0\0\0ab" * 200000)
        header = b"ID3\3\0\0" + bytes(len(frames) >> shift & 127 for shift in (21, 14, 7, 0))
        path = self.write("joined.mp3", header + frames + b"\xff\xfb\x90\0" + bytes(100))
        self.assertEqual(self.read_within(path, 60), 0)
        [found] = read_json(path)
        self.assertEqual(len(found["record"]["mp3ArtistString"]), 200000 * 3 - 1)

    def test_tags_that_are_larger_by_their_standards(self):
        def sized(content):
            return bytes(len(content) >> shift & 127 for shift in (21, 14, 7, 0)) + b"\0\0" + content

        deflate = zlib.compressobj(9)
        bomb = b"\x20\0\0\0" + b"".join(deflate.compress(bytes(1 << 20)) for _ in range(64)) + deflate.flush()
        for name, version, flags, frames, megabytes in (
                ("bombs", 4, 0, (b"APIC" + sized(bomb)[:4] + b"\0\x09" + bomb) * 40, 160),
                ("values", 4, 0, b"TIT2" + sized(b"\0" + b"a\0" * 1000000), 60),
                ("genres", 4, 0, b"TCON" + sized(b"\0" + b"(1)\0" * 1000000), 60),
                ("unsynchronised", 3, 0x80, b"TIT2\0\x10\0\0\0\0\0" + b"\xff\0" * (1 << 20), 60),
                ("comments", 4, 0, (b"COMM" + sized(b"\0engd\0text")) * 200000, 60)):
            with self.subTest(name=name):
                tag = b"ID3" + bytes((version, 0, flags)) + sized(frames)[:4] + frames
                path = self.write("hostile.mp3", tag + b"\xff\xfb\x90\0" + bytes(400))
                self.assertEqual(self.read_within(path, megabytes), 0)


if __name__ == "__main__":
    unittest.main()
