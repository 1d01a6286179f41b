# SPDX-License-Identifier: MIT
"""sonarin-info as a user runs it, on files made by real encoders and taggers."""

import os
import subprocess
import time
import zlib

from mutagen import id3, mp3

from program import INFO, SAMPLE, SAMPLES, SOUND, Folder, chunk, frame, id3_tag, read_json, run, synchsafe


class RealFiles(Folder):
    def test_encoders_and_what_another_reader_says(self):
        for command, sound, is_variable, channels in (
                ("lame -b 160", {}, False, " Joint Stereo"), ("lame -m s -b 192", {}, False, "Stereo"),
                ("lame -m m -b 64", {"channels": 1}, False, "Mono"), ("lame -V 2", {}, True, " Joint Stereo"),
                ("lame -V 4", {"rate": 22050, "channels": 1}, True, "Mono"),
                ("lame -b 32", {"rate": 11025}, False, " Joint Stereo"), ("twolame -b 256", {"rate": 48000}, False, "Stereo")):
            with self.subTest(command=command):
                path = self.made("x.mp3", *command.split(), self.sound(**sound))
                theirs = mp3.MP3(path).info
                rates = {} if is_variable else {"mp3BitRate": round(theirs.bitrate / 1000), "mp3SongLen": int(theirs.length)}
                self.expect(path, result=0, mp3SamplingRate=theirs.sample_rate, mp3HasVBR=int(is_variable),
                            mp3Layer={3: 1, 2: 2}[theirs.layer], mp3Version={1: 3, 2: 2, 2.5: 0}[theirs.version],
                            id3ChannelsField=channels, **rates)

    def test_tags_by_a_real_tagger(self):
        path = self.write("x.mp3", SOUND)
        cover = b"\xff\xd8\xff\xe0" + bytes(50000)
        tag = id3.ID3()
        for field in (id3.TIT2(1, "Größe 日本"), id3.TPE1(0, "Ann"),
                      id3.TALB(0, "Café"),  # Latin-1 beyond ASCII is not taken
                      id3.TRCK(0, "3/12"), id3.TYER(0, "1999"), id3.TCON(0, "(17)"), id3.USLT(0, "eng", "", "la\nla"),
                      id3.COMM(0, "eng", "iTunNORM", " 0000"), id3.COMM(0, "eng", "", "a comment"),
                      id3.APIC(0, "image/jpeg", 3, "", cover)):
            tag.add(field)
        # A size of 128 and more is not read as version 4 writes it.
        for version, cover_type, size in ((4, None, None), (3, "JPEG", len(cover) + 1)):
            tag.save(path, v2_version=version)
            self.expect(path, mp3TagVersion=version, mp3SongTitleString="Größe 日本\0", mp3ArtistString="Ann", mp3AlbumString=None,
                        mp3CommentString="a comment", mp3LyricsString="la\nla", mp3TheTrack=3, mp3TrackAmount=12,
                        mp3Year=1999, mp3Genre2String="Rock", mp3CoverArtType=cover_type, mp3CoverArt=size)
        self.assertEqual(run("--cover", "-", path).stdout[:-1], cover)

    def test_the_sample_in_another_locale(self):
        for locale, rate, genre in (("de_DE.UTF-8", "44,1", "Klassik"), ("POSIX", "44.1", "Classical")):
            self.expect(SAMPLE, locale=locale, id3BitrateEtcField=f"128 kbps  {rate} kHz", id3GenreField=genre)


class Output(Folder):
    def test_colour_is_for_terminals(self):
        self.assertNotIn(b"\x1b", run(SAMPLE).stdout)
        terminal, shown = self.terminal()
        subprocess.run([INFO, SAMPLE], stdout=terminal, env=dict(os.environ, TERM="xterm"), check=True)
        self.assertIn("\x1b[", shown())

    def test_failures_are_told_and_the_rest_goes_on(self):
        (self.folder / "folder.mp3").mkdir()
        os.mkfifo(self.folder / "fifo.mp3")
        self.write("secret.mp3", b"x").chmod(0)
        rows = [("missing.mp3", 1, "n.a.", "No such file or directory"), ("folder.mp3", 1, "n.a.", "Is a directory"),
                ("fifo.mp3", 1, "n.a.", "Not a regular file"), ("/dev/zero", 0, "n.a.", "Not a regular file"),
                (self.write("a.txt", b"x"), 0, "0.0 KB", "Not an audio file, going by its name and type codes"),
                (self.write("empty.mp3"), 1, "0.0 KB", "The file is empty"), ("", 0, "n.a.", "No such file or directory"),
                (self.write("zero.mp3", bytes(100)), 1, "0.1 KB", "No MPEG audio frame found"), (SAMPLE, 1, "27.6 KB", None)]
        if os.geteuid() != 0:  # who may read everything
            rows.append(("secret.mp3", 1, "0.0 KB", "Permission denied"))
        paths = [path for path, *_ in rows]
        self.assertEqual([(found["type"], found["panel"]["fileSizeField"], found["result"])
                          for found in read_json(*paths, cwd=self.folder)],
                         [(kind, size, -1 if cause else 0) for _, kind, size, cause in rows])
        done = run(*paths, cwd=self.folder)
        self.assertEqual((done.returncode, done.stderr.decode().splitlines()),
                         (1, [f"sonarin-info: {path}: {cause}" for path, *_, cause in rows if cause]))
        # A reader that fails midway keeps what it has.
        self.expect(self.write("cut.mp3", SAMPLE.read_bytes()[:11100]), result=-1, mp3AlbumString="Small Files", id3AlbumField="")

    def test_a_fifo_with_a_writer_is_left_alone(self):
        os.mkfifo(self.folder / "fifo.mp3")
        writer = subprocess.Popen(["sh", "-c", "exec 3> fifo.mp3"], cwd=self.folder)
        time.sleep(0.2)
        self.assertEqual(run("fifo.mp3", cwd=self.folder).returncode, 1)
        self.assertIsNone(writer.poll())
        writer.kill()
        writer.wait()

    def test_names_that_are_not_utf8(self):
        path = self.write(os.fsdecode(b"\xff\xe9 caf\xc3\xa9.mp3"), SOUND)
        self.expect(path, result=0, path=str(path))
        self.assertIn("\ufffd\ufffd café.mp3".encode(), run(path).stdout)

    def test_covers(self):
        cover = run("--cover", "-", SAMPLE).stdout
        self.assertTrue(cover.startswith(b"\x89PNG"))
        self.write("plain.mp3", SOUND)
        audio = self.write("audio.mp3", SAMPLE.read_bytes())
        (self.folder / "link.png").symlink_to(audio)
        mine = b"mine" * 10000
        for target, before, arguments, complaint, after in (
                ("new.png", None, [SAMPLE], "", cover),
                ("kept.png", mine, [SAMPLE], f"{SAMPLE}: kept.png: File exists (--force replaces it)", mine),
                ("replaced.png", mine, ["--force", SAMPLE], "", cover),
                ("none.png", None, ["plain.mp3"], "plain.mp3: The file holds no cover picture", None),
                # The audio file is never written, under whatever name it is met.
                *[(name, audio.read_bytes(), ["--force", "audio.mp3"],
                   "audio.mp3: The cover would replace the audio file itself", audio.read_bytes())
                  for name in ("audio.mp3", "link.png")]):
            with self.subTest(target=target):
                path = self.write(target, before) if before else self.folder / target
                done = run("--cover", target, *arguments, cwd=self.folder)
                self.assertEqual((done.returncode, done.stderr.decode()),
                                 (1, f"sonarin-info: {complaint}\n") if complaint else (0, ""))
                self.assertEqual(path.read_bytes() if path.exists() else None, after)

    def test_usage(self):
        for problem, calls in {
                "no file is named": ("", "--json", "--cover x", "-r"),
                "unknown option or value: --bogus": ("--bogus x",),
                "unknown option or value: --b\\x1Bad": ("sample.mp3 --b\x1bad",),
                "--cover needs a value": ("--cover", "sample.mp3 --cover"),
                "--files0-from needs a value": ("--files0-from",),
                "--force goes with --cover": ("--force sample.mp3",),
                "--json and --cover do not go together": ("--json --cover x sample.mp3",),
                "--cover takes one file": ("--cover x sample.mp3 sample.mp3", "--cover x -r sample.mp3",
                                           "--cover - --files0-from -"),
                "--files0-from takes no files besides": ("--files0-from - sample.mp3",),
                "--jobs takes a number from 1 to 1024": ("--jobs 0 sample.mp3", "--jobs 2x sample.mp3", "--jobs 2000 sample.mp3"),
        }.items():
            for call in calls:
                done = run(*call.split(), stdin=subprocess.DEVNULL, cwd=SAMPLES)
                self.assertEqual((done.returncode, done.stdout, done.stderr.decode()),
                                 (2, b"", f"sonarin-info: {problem} (--help shows the usage)\n"), call)
        self.write("-x.mp3", SOUND)
        for call, start in (("--help", b"Usage: sonarin"), ("--version", b"sonarin-info 0."), ("-- -x.mp3", b"Name      -x")):
            done = run(*call.split(), cwd=self.folder)
            self.assertEqual((done.returncode, done.stdout[:len(start)]), (0, start))


class HostileFiles(Folder):
    """Sizes that lie must cost neither memory nor time."""

    def test_memory_and_exit_status(self):
        deflate = zlib.compressobj(9)
        bomb = b"\x20\0\0\0" + b"".join(deflate.compress(bytes(1 << 20)) for _ in range(64)) + deflate.flush()
        lie = b"\xff\xff\xff\xfa\0\0\0" + bytes(200)
        form = b"RIFF\xff\xff\xff\xffWAVE"
        sound_format = b"fmt \x10\0\0\0\1\0\1\0\x44\xac\0\0\x44\xac\0\0\1\0\x08\0"
        for name, status, *parts in (  # what stands one behind the other, and the places to go to in between
                *[(f"{name}.mp3", 1, b"ID3\3\0\0\x7f\x7f\x7f\x7f" + name.encode() + lie) for name in ("USLT", "APIC", "TIT2")],
                ("beyond four gibibytes.mp3", 0, SAMPLE.read_bytes(), (5 << 30) + 123),
                # Holes larger than any disk.
                ("sound behind.mp3", 0, id3_tag(b""), 1 << 42, SOUND), ("nothing behind.mp3", 1, id3_tag(b""), 1 << 42),
                ("format behind.wav", 0, form, (1 << 42) + 4, sound_format),
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
                for options in ([], ["--by-standard"]):
                    process = subprocess.Popen([INFO, "--json", *options, file.name], stdout=subprocess.DEVNULL,
                                               stderr=subprocess.DEVNULL)
                    _, ended, usage = os.wait4(process.pid, 0)
                    process.returncode = os.waitstatus_to_exitcode(ended)
                    self.assertEqual(process.returncode, status)
                    # The sanitizers' own shadow does not count as the program's memory; what is here when it starts does.
                    if os.environ.get("SONARIN_SANITIZED") != "ON":
                        self.assertLess(usage.ru_maxrss, 60 * 1024)
        self.assertEqual(len(self.expect(file.name)["mp3ArtistString"]), 200000 * 3 - 1)

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
        self.assertEqual(len(run("--cover", "-", path).stdout), record["mp3CoverArt"])
