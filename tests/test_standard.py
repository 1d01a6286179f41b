# SPDX-License-Identifier: MIT
"""--by-standard: tags as the usual taggers write them, and what a tag library of their own makes of them."""

import hashlib
import itertools
import json
import re
import zlib

from mutagen import File, aiff, id3, mp3, wave

from program import Folder, run
from sample_bytes import frame, id3_tag, synchsafe

LATIN, WIDE = "Größe éà", "日本の🎵"
# With what a resynchronised picture must keep, and what an unsynchronised one must not have.
JPEG = b"\xff\xd8\xff\xe0" + bytes(range(256)) * 250 + b"\xff\x00\xff\xff\xe0\xff\xd9"
TINY = b"\x89PNG tiny"


def joined(field, member="text"):
    return " / ".join(str(text) for text in getattr(field, member, ()) if str(text)) or None


def theirs(path):
    """What mutagen says, under our names, and the picture."""
    tags = File(path).tags
    comment = min((remark for remark in tags.getall("COMM") if not remark.desc.startswith("iTun")),
                  key=lambda remark: remark.desc not in ("", "ID3v1 Comment"), default=None)
    lyrics = min(tags.getall("USLT"), key=lambda text: text.desc != "", default=None)
    picture = min(tags.getall("APIC"), key=lambda picture: picture.type != 3, default=None)
    track, amount = (*re.findall(r"\d+", str(tags.get("TRCK", ""))), 0, 0)[:2]
    return {"mp3SongTitleString": joined(tags.get("TIT2")), "mp3ArtistString": joined(tags.get("TPE1")),
            "mp3AlbumString": joined(tags.get("TALB")), "mp3ComposerString": joined(tags.get("TCOM")),
            "mp3Genre2String": joined(tags.get("TCON"), "genres"), "mp3CommentString": joined(comment),
            "mp3LyricsString": str(lyrics) if lyrics else None,
            "mp3Year": int(str(tags.get("TDRC", "0"))[:4]), "mp3TheTrack": int(track), "mp3TrackAmount": int(amount),
            "mp3CoverArt": len(picture.data) if picture else None}, picture.data if picture else b""


def unsynchronised(content):
    return re.sub(rb"\xff(?=[\xe0-\xff\x00]|$)", b"\xff\x00", content)


def frames(version, encoding, bits=None, flags=0, measured=0, step=lambda data: data):
    """What no tagger at hand writes, put together by hand; a measured one begins with its size before the step."""
    title, remark, back = (text.encode(("latin-1", "utf-16", "utf-16-be", "utf-8")[encoding]) for text in (LATIN, "über", "back"))
    start, end = bytes((encoding,)), b"\0\0" if encoding in (1, 2) else b"\0"
    image = start + (b"JPG" if version == 2 else b"image/jpeg\0")
    made = b""
    for old, name, data in (
            (b"COM", b"COMM", start + b"deu" + remark + end + b"no".ljust(200)), (b"TT2", b"TIT2", start + title),
            (b"TP1", b"TPE1", start + title + end), (b"TAL", b"TALB", b"\0Album"),
            (b"PIC", b"APIC", image + b"\x04" + back + end + TINY), (b"PIC", b"APIC", image + b"\x03" + title + end + JPEG),
            (b"COM", b"COMM", start + b"XXX" + end + title * 40), (b"TRK", b"TRCK", b"\x005/7"),
            (b"TCO", b"TCON", b"\0(17)(4)Live"), (b"TYE", b"TYER", b"\x001999")):
        data = (synchsafe(len(data), measured) if measured else b"") + step(data)
        made += old + synchsafe(len(data), 8)[1:] + data if version == 2 else frame(name, data, flags, bits or 11 - version)
    return made


def whole_tag(version, content, flags=0, extended=b"", padding=100, whole=lambda content: content):
    made = id3_tag(whole(extended + content + bytes(padding)), version, flags)
    return made + (b"3DI" + made[3:10] if flags & 0x10 else b"")


class Tags(Folder):
    def setUp(self):
        super().setUp()
        short = self.made("plain.mp3", *"lame --quiet -b 32 -t".split(), self.sound(seconds=0.4, channels=1))
        self.sounds = {"mp3": short.read_bytes()}
        odd = self.sound(seconds=0.010125, rate=8000, channels=1)  # 81 bytes, and a pad byte
        for kind in ("aiff", "wav"):
            self.sounds[kind] = self.made(f"plain.{kind}", "sox", odd, "-b", "8").read_bytes()

    def same(self, rows):
        """Compares what stands beside each path."""
        self.expect_all([(path, facts) for path, (facts, _) in rows], "--by-standard")
        for path, (_, picture) in rows:
            self.assertEqual(run("--by-standard", "--cover", "-", path)[1], picture, path.name)

    def test_mutagen(self):
        texts = [(3, 0, LATIN), (3, 1, LATIN), (3, 1, WIDE), (4, 0, LATIN), *itertools.product((4,), (1, 2, 3), (LATIN, WIDE))]
        genres = (["Rock"], ["(13)"], ["17", "RX", "Own"], ["(9)Heavy", "131", "(CR)"], [])
        rows = []
        for number, ((version, encoding, text), genre, (kind, open_file)) in enumerate(itertools.product(
                texts, genres, (("mp3", mp3.MP3), ("aiff", aiff.AIFF), ("wav", wave.WAVE)))):
            path = self.write(f"{number} version {version} encoding {encoding} {genre}.{kind}", self.sounds[kind])
            file = open_file(path)
            file.add_tags()
            for field in (
                    id3.TIT2(encoding, text), id3.TPE1(encoding, [text, "and", text] if version == 4 else [text]),
                    id3.TALB(encoding, text * 30), id3.TCOM(encoding, text), id3.TDRC(0, "2004-05-06"),
                    id3.TRCK(0, ["3/12", "3"][number % 2]), id3.COMM(0, "eng", "iTunNORM", " 00000"),
                    id3.COMM(encoding, "fra", text, "described"),
                    id3.COMM(encoding, ["eng", "deu", "XXX"][number % 3], "", text * (number % 50 + 1)),
                    id3.USLT(encoding, "eng", "", text + "\nsecond line"),
                    *([id3.TCON(encoding, genre if version == 4 else genre[:1])] if genre else []),
                    *([id3.APIC(encoding, "image/png", 0, "other", TINY),
                       id3.APIC(encoding, "image/jpeg", 3 if number % 3 else 5, text, JPEG)] if number % 4 else [])):
                file.tags.add(field)
            file.save(v2_version=version)
            rows.append((path, theirs(path)))
        self.same(rows)

    def test_by_hand(self):
        rows, usual = [], []
        for number, ((version, of_frames, of_tag), encoding) in enumerate(itertools.product((
                (2, {}, {}), (2, {}, {"flags": 0x80, "whole": unsynchronised}),
                (3, {}, {"flags": 0x80, "whole": unsynchronised}), (3, {}, {"flags": 0x80}),
                (3, {}, {"flags": 0x40, "extended": b"\0\0\0\6" + bytes(6)}), (3, {}, {"flags": 0x40}),
                (3, {"flags": 0x80, "measured": 8, "step": zlib.compress}, {}),
                (4, {}, {"flags": 0x40, "extended": b"\0\0\0\6\1\0"}), (4, {}, {"flags": 0x10, "padding": 0}),
                (4, {"flags": 2, "step": unsynchronised}, {}), (4, {"step": unsynchronised}, {"flags": 0x80}),
                (4, {"flags": 1, "measured": 7}, {}), (4, {"flags": 9, "measured": 7, "step": zlib.compress}, {}),
                (4, {"flags": 11, "measured": 7, "step": lambda data: unsynchronised(zlib.compress(data))}, {}),
                (4, {"bits": 8}, {}), (4, {"bits": 8}, {"padding": 0})), range(4))):
            made = frames(version, encoding, **of_frames)
            path = self.write(f"{number}.mp3", whole_tag(version, made, **of_tag) + self.sounds["mp3"])
            rows.append((path, theirs(path)))
            if version > 2:  # theirs takes what is grouped for a text
                made += frame(b"TIT2", b"\0not me", 0x20 if version == 3 else 0x40)
                path = self.write(f"{number} grouped.mp3", whole_tag(version, made, **of_tag) + self.sounds["mp3"])
                rows.append((path, rows[-1][1]))
            if "measured" not in of_frames:  # what zlib makes is its own affair
                usual.append((path, {}))
        self.same(rows)
        usual_texts = [[value for name, value in sorted(found.items()) if name.startswith("mp3") and name != "mp3SongLen"]
                       for found in self.expect_all(usual)]
        # What the usual reading said before there was another one.
        self.assertEqual(hashlib.sha256(json.dumps(usual_texts).encode()).hexdigest()[:16], "ac0e48e5abb8e369")

    def test_other_taggers(self):
        cover = self.made("drawn.png", "ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc=size=64x64", "-frames:v", "1")
        plain = self.write("plain.mp3", self.sounds["mp3"])
        metadata = [word for fact in (f"title={LATIN}", "artist=Ann", f"album={WIDE}", "genre=Rock", "comment=Über", "date=1999",
                                      "track=3/12") for word in ("-metadata", fact)]
        rows = []
        for number, command in enumerate((
                *(["eyeD3", "--quiet", f"--to-v{version}", "--encoding", encoding, "-t", LATIN, "-a", "Ann", "-G", "Rock",
                   "-A", LATIN if encoding == "latin1" else WIDE, "-n", "3", "-N", "12", "-Y", "1999",
                   "--add-comment", "Über::deu", "--add-image", f"{cover}:FRONT_COVER:Bild"]
                  for version, encoding in (("2.3", "latin1"), ("2.3", "utf16"), ("2.4", "utf8"), ("2.4", "utf16-be"),
                                            ("2.4", "latin1"), ("1.1", "latin1"))),
                *(["id3v2", *options, "-t", LATIN.encode("latin-1"), "-a", "Ann", "-A", "Album", "-g", "131", "-y", "1999",
                   "-c", "a comment", "-T", "3/12"] for options in (["-2"], ["-1"], [])),
                *(["ffmpeg", "-y", "-v", "error", "-i", plain, "-i", cover, "-map", "0:0", "-map", "1:0", "-c", "copy",
                   "-id3v2_version", version, "-write_id3v1", old, *metadata] for version, old in itertools.product("34", "01")),
                *(["lame", "--quiet", *options, "--tt", LATIN, "--ta", "Ann", "--tl", "Album", "--ty", "1999", "--tc", "Über",
                   "--tn", "3/12", "--tg", "Rock", self.sound(seconds=0.4, channels=1)]
                  for options in (["--id3v2-latin1", "--ti", cover], ["--id3v2-utf16", "--ti", cover], ["--id3v1-only"],
                                  ["--id3v2-only", "--pad-id3v2"])))):
            path = self.write(f"{number} {command[0]}.mp3", self.sounds["mp3"])
            rows.append((self.made(path.name, *command), theirs(path)))
        self.same(rows)

    def test_lengths(self):
        """As exact as whole seconds are, whatever the encoder added in front of and behind the sound."""
        for rate, options in itertools.product((44100, 22050, 8000), ("-V 5", "-b 32", "--abr 40", "-V 5 -t")):
            path = self.made(f"{rate} {options}.mp3", "lame", "--quiet", *options.split(), "--resample", str(rate / 1000),
                             self.sound(seconds=5, rate=rate, channels=1))
            info = mp3.MP3(path).info
            is_variable = options in ("-V 5", "--abr 40")
            found = self.expect(path, "--by-standard", mp3SongLen=int(info.length) if "-t" in options else 5,
                                mp3HasVBR=int(is_variable))
            if is_variable:
                self.assertLessEqual(abs(found["mp3BitRate"] - info.bitrate / 1000), 2, path.name)
