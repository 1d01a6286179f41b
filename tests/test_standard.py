# SPDX-License-Identifier: MIT
"""--by-standard: tags as the usual taggers write them, and what a tag library of their own makes of them."""

import hashlib
import itertools
import json
import re
import struct
import subprocess
import unittest
import zlib

import mutagen
from mutagen import aiff, id3, mp3, wave

from program import Folder, read_json, run

LATIN, WIDE = "Größe éà", "日本の🎵"
# With what a resynchronised picture must keep, and what an unsynchronised one must not have.
JPEG = b"\xff\xd8\xff\xe0" + bytes(range(256)) * 250 + b"\xff\x00\xff\xff\xe0\xff\xd9"
TINY = b"\x89PNG tiny"
GENRES = {"Alt. Rock": "Alternative Rock", "Gangsta Rap": "Gangsta", "Fast-Fusion": "Fast Fusion"}
ENCODINGS = ("latin-1", "utf-16", "utf-16-be", "utf-8")


def joined(texts):
    return " / ".join(str(text) for text in texts if str(text)) or None


def first(frames, is_preferred):
    return next(iter(sorted(frames, key=lambda frame: not is_preferred(frame))), None)


def theirs(path):
    """What mutagen says."""
    tags = mutagen.File(path).tags
    texts = {name: joined(tags[frame].text) if frame in tags else None
             for name, frame in (("SongTitle", "TIT2"), ("Artist", "TPE1"), ("Album", "TALB"), ("Composer", "TCOM"))}
    comments = [frame for frame in tags.getall("COMM") if not frame.desc.startswith("iTun")]
    comment = first(comments, lambda frame: frame.desc in ("", "ID3v1 Comment"))
    lyrics = first(tags.getall("USLT"), lambda frame: frame.desc == "")
    picture = first(tags.getall("APIC"), lambda frame: frame.type == 3)
    genres = [GENRES.get(genre, genre) for genre in tags["TCON"].genres] if "TCON" in tags else []
    numbers = [int(number) for number in re.findall(r"\d+", str(tags.get("TRCK", "")))] + [0, 0]
    return {**texts, "Genre2": joined(genres), "Comment": joined(comment.text) if comment else None,
            "Lyrics": str(lyrics) if lyrics else None, "year": int(str(tags["TDRC"])[:4]) if "TDRC" in tags else 0,
            "track": numbers[:2], "picture": picture.data if picture else None}


def ours(path):
    [found] = read_json("--by-standard", path)
    record = found["record"]
    texts = {name: record[f"mp3{name}String"] or None
             for name in ("SongTitle", "Artist", "Album", "Composer", "Genre2", "Comment", "Lyrics")}
    cover = run("--by-standard", "--cover", "-", path).stdout if record["mp3CoverArt"] else None
    assert record["mp3CoverArt"] == (len(cover) if cover else None)
    return {**texts, "year": record["mp3Year"], "track": [record["mp3TheTrack"], record["mp3TrackAmount"]], "picture": cover}


def synchsafe(number, bits=7):
    return bytes(number >> bits * place & (1 << bits) - 1 for place in (3, 2, 1, 0))


def unsynchronised(content):
    return re.sub(rb"\xff(?=[\xe0-\xff\x00]|$)", b"\xff\x00", content)


class Tag:
    """Tags that no tagger at hand writes, put together by hand."""

    def __init__(self, version, bits=None):
        self.version = version
        self.bits = bits or {2: 8, 3: 8, 4: 7}[version]
        self.frames = b""

    def add(self, name, data, flags=0):
        if self.version == 2:
            self.frames += name + struct.pack(">I", len(data))[1:] + data
        else:
            self.frames += name + synchsafe(len(data), self.bits) + struct.pack(">H", flags) + data

    def texts(self, encoding, text, picture=JPEG, flags=0, form=lambda data: data):
        names = {"TIT2": b"TT2", "TPE1": b"TP1", "TALB": b"TAL", "COMM": b"COM", "APIC": b"PIC", "TYER": b"TYE",
                 "TRCK": b"TRK", "TCON": b"TCO"}
        end = b"\0\0" if encoding in (1, 2) else b"\0"
        coded = text.encode(ENCODINGS[encoding])
        start = bytes((encoding,))
        mime = b"JPG" if self.version == 2 else b"image/jpeg\0"
        for name, data in (("COMM", start + b"deu" + "über".encode(ENCODINGS[encoding]) + end + b"no".ljust(200)),
                           ("TIT2", start + coded), ("TPE1", start + coded + end), ("TALB", b"\0Album"),
                           ("APIC", start + mime + b"\x04" + "back".encode(ENCODINGS[encoding]) + end + TINY),
                           ("APIC", start + mime + b"\x03" + coded + end + picture),
                           ("COMM", start + b"XXX" + end + coded * 40), ("TRCK", b"\x005/7"), ("TCON", b"\0(17)(4)Live"),
                           ("TYER", b"\x001999")):
            self.add(names[name] if self.version == 2 else name.encode(), form(data), flags)

    def content(self, flags=0, extended=b"", padding=100, whole=lambda content: content):
        body = whole(extended + self.frames + bytes(padding))
        footer = b"3DI\x04\0" + bytes((flags,)) + synchsafe(len(body)) if flags & 0x10 else b""
        return b"ID3" + bytes((self.version, 0, flags)) + synchsafe(len(body)) + body + footer


class Tags(Folder):
    def setUp(self):
        super().setUp()
        self.sounds = {"mp3": self.encoded("plain.mp3", "lame", "--quiet", "-b", "32", "-t", seconds=0.4, channels=1).read_bytes()}
        for kind in ("aiff", "wav"):
            odd = self.sound(seconds=0.010125, rate=8000, channels=1)  # 81 bytes, and a pad byte
            self.sounds[kind] = self.made(f"plain.{kind}", "sox", odd, "-b", "8").read_bytes()

    def same(self, path, **subject):
        with self.subTest(path=path.name, **subject):
            self.assertEqual(ours(path), theirs(path))

    def test_mutagen(self):
        texts = [(3, 0, LATIN), (3, 1, LATIN), (3, 1, WIDE), (4, 0, LATIN), *itertools.product((4,), (1, 2, 3), (LATIN, WIDE))]
        genres = (["Rock"], ["(13)"], ["17", "RX", "Own"], ["(9)Heavy", "131", "(CR)"], [])
        combinations = list(itertools.product(texts, genres, ("mp3", "aiff", "wav")))
        self.assertGreaterEqual(len(combinations), 100)
        for number, ((version, encoding, text), genre, kind) in enumerate(combinations):
            path = self.write(f"{number}.{kind}", self.sounds[kind])
            file = {"mp3": mp3.MP3, "aiff": aiff.AIFF, "wav": wave.WAVE}[kind](path)
            file.add_tags()
            several = [text, "and", text] if version == 4 else [text]
            for frame in (id3.TIT2(encoding, text), id3.TPE1(encoding, several), id3.TALB(encoding, text * 30),
                          id3.TCOM(encoding, text), id3.TDRC(0, "2004-05-06"), id3.TRCK(0, ["3/12", "3"][number % 2]),
                          id3.COMM(0, "eng", "iTunNORM", " 00000"), id3.COMM(encoding, "fra", text, "described"),
                          id3.COMM(encoding, ["eng", "deu", "XXX"][number % 3], "", text * (number % 50 + 1)),
                          id3.USLT(encoding, "eng", "", text + "\nsecond line")):
                file.tags.add(frame)
            if genre:
                file.tags.add(id3.TCON(encoding, genre if version == 4 else genre[:1]))
            if number % 4:
                file.tags.add(id3.APIC(encoding, "image/png", 0, "other", TINY))
                file.tags.add(id3.APIC(encoding, "image/jpeg", 3 if number % 3 else 5, text, JPEG))
            file.save(v2_version=version)
            self.same(path, version=version, encoding=encoding, genre=genre)

    def test_by_hand(self):
        def grouped(tag):
            tag.add(b"TIT2", b"\0not me", 0x20 if tag.version == 3 else 0x40)

        def compressed(data):
            return struct.pack(">I", len(data)) + zlib.compress(data)

        def all_of(data):
            return synchsafe(len(data)) + unsynchronised(zlib.compress(data))

        forms = [(2, {}, {}), (2, {}, {"flags": 0x80, "whole": unsynchronised}),
                 (3, {}, {"flags": 0x80, "whole": unsynchronised}), (3, {}, {"flags": 0x80}),
                 (3, {}, {"flags": 0x40, "extended": b"\0\0\0\6" + bytes(6)}), (3, {}, {"flags": 0x40}),
                 (3, {"flags": 0x80, "form": compressed}, {}),
                 (4, {}, {"flags": 0x40, "extended": b"\0\0\0\6\1\0"}), (4, {}, {"flags": 0x10, "padding": 0}),
                 (4, {"flags": 2, "form": unsynchronised}, {}), (4, {"flags": 0, "form": unsynchronised}, {"flags": 0x80}),
                 (4, {"flags": 1, "form": lambda data: synchsafe(len(data)) + data}, {}),
                 (4, {"flags": 9, "form": lambda data: synchsafe(len(data)) + zlib.compress(data)}, {}),
                 (4, {"flags": 11, "form": all_of}, {}), (4, {"bits": 8}, {}), (4, {"bits": 8}, {"padding": 0})]
        usual_texts = []
        for number, ((version, frames, tag), encoding) in enumerate(itertools.product(forms, range(4))):
            made = Tag(version, frames.get("bits"))
            made.texts(encoding, LATIN, **{name: value for name, value in frames.items() if name != "bits"})
            path = self.write(f"{number}.mp3", made.content(**tag) + self.sounds["mp3"])
            self.same(path, version=version, frames=frames, tag=tag, encoding=encoding)
            if version > 2:  # theirs takes what is grouped for a text
                before = ours(path)
                grouped(made)
                path.write_bytes(made.content(**tag) + self.sounds["mp3"])
                self.assertEqual(ours(path), before)
            if "form" not in frames or frames["form"] == unsynchronised:  # what zlib makes is its own affair
                [usual] = read_json(path)
                usual_texts.append([value for name, value in sorted(usual["record"].items()) if name != "mp3SongLen"])
        # What the usual reading said before there was another one.
        self.assertEqual(hashlib.sha256(json.dumps(usual_texts).encode()).hexdigest()[:16], "ac0e48e5abb8e369")

    def test_other_taggers(self):
        sound = self.write("plain.mp3", self.sounds["mp3"])
        cover = self.write("cover.png", self.png())
        source = self.sound(seconds=0.4, channels=1)
        facts = {"title": LATIN, "artist": "Ann", "album": WIDE, "genre": "Rock", "comment": "Über", "date": "1999", "track": "3/12"}
        for number, (version, encoding) in enumerate([("2.3", "latin1"), ("2.3", "utf16"), ("2.4", "utf8"), ("2.4", "utf16-be"),
                                                      ("2.4", "latin1"), ("1.1", "latin1")]):
            path = self.write(f"eyed3-{number}.mp3", self.sounds["mp3"])
            subprocess.run(["eyeD3", "--quiet", f"--to-v{version}", "--encoding", encoding, "-t", LATIN, "-a", "Ann", "-G", "Rock",
                            "-A", LATIN if encoding == "latin1" else WIDE, "-n", "3", "-N", "12", "-Y", "1999",
                            "--add-comment", "Über::deu", "--add-image", f"{cover}:FRONT_COVER:Bild", path],
                           check=True, capture_output=True)
            self.same(path)
        for options in (["-2"], ["-1"], []):
            path = self.write(f"id3v2{''.join(options)}.mp3", self.sounds["mp3"])
            subprocess.run(["id3v2", *options, "-t", LATIN.encode("latin-1"), "-a", "Ann", "-A", "Album", "-g", "131", "-y", "1999",
                            "-c", "a comment", "-T", "3/12", path], check=True)
            self.same(path)
        for version, old in itertools.product("34", "01"):
            tags = [word for name, value in facts.items() for word in ("-metadata", f"{name}={value}")]
            self.same(self.made(f"ffmpeg-{version}{old}.mp3", "ffmpeg", "-v", "error", "-i", sound, "-i", cover, "-map", "0:0", "-map",
                                "1:0", "-c", "copy", "-id3v2_version", version, "-write_id3v1", old, *tags))
        for options in (["--id3v2-latin1"], ["--id3v2-utf16"], ["--id3v1-only"], ["--id3v2-only", "--pad-id3v2"]):
            path = self.folder / f"lame{''.join(options)}.mp3"
            subprocess.run(["lame", "--quiet", *options, "--tt", LATIN, "--ta", "Ann", "--tl", "Album", "--ty", "1999", "--tc", "Über",
                            "--tn", "3/12", "--tg", "Rock", *(["--ti", cover] if "-only" not in options[0] else []), source, path],
                           check=True)
            self.same(path)

    def png(self):
        return self.made("drawn.png", "ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=size=64x64", "-frames:v", "1").read_bytes()

    def test_lengths(self):
        """As exact as whole seconds are, whatever the encoder added in front of and behind the sound."""
        for number, (rate, options) in enumerate(itertools.product(
                (44100, 22050, 8000), (["-V", "5"], ["-b", "32"], ["--abr", "40"], ["-V", "5", "-t"]))):
            path = self.made(f"{number}.mp3", "lame", "--quiet", *options, "--resample", str(rate / 1000),
                             self.sound(seconds=5, rate=rate, channels=1))
            [found] = read_json("--by-standard", path)
            record, info = found["record"], mp3.MP3(path).info
            with self.subTest(rate=rate, options=options):
                self.assertEqual(record["mp3SongLen"], int(info.length) if "-t" in options else 5)
                self.assertEqual(record["mp3HasVBR"], int("-b" not in options and "-t" not in options))
                if record["mp3HasVBR"]:
                    self.assertLessEqual(abs(record["mp3BitRate"] - info.bitrate / 1000), 2)


if __name__ == "__main__":
    unittest.main()
