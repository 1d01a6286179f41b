# SPDX-License-Identifier: MIT
"""MPEG-4, WAVE and AIFF files of real encoders and taggers, and what other programs say about them."""

import itertools
import subprocess
import unittest

from mutagen import aiff, id3, mp4

from program import SAMPLES, Folder, read_json

JPEG = b"\xff\xd8\xff\xe0" + bytes(5000)


def soxi(option, path):
    return float(subprocess.run(["soxi", option, path], check=True, capture_output=True).stdout)


def channel_mode(channels):
    return {1: 3}.get(channels, 0)


class Mpeg4(Folder):
    def m4a(self, name="x.m4a", *options, **sound):
        return self.made(name, "ffmpeg", "-v", "error", "-i", self.sound(**sound), "-c:a", "aac",
                         "-metadata", "title=Größe 日本", "-metadata", "artist=Ann", "-metadata", "genre=Rock",
                         "-metadata", "date=2009-07-01", "-metadata", "track=3/12", *options)

    def test_movie_first_and_last(self):
        for name, options in (("last.m4a", []), ("first.m4b", ["-movflags", "+faststart"]),
                              ("x.m4r", ["-f", "ipod"]), ("x.aac", ["-f", "ipod"])):
            with self.subTest(name=name):
                path = self.m4a(name, *options, seconds=12)
                theirs = mp4.MP4(path)
                [ours] = read_json(path)
                record = ours["record"]
                self.assertEqual(ours["type"], 2 if name in ("last.m4a", "x.aac") else 3)
                self.assertEqual(ours["result"], 0)
                self.assertEqual(record["mp3SongLen"], int(theirs.info.length))
                # What stands before the movie header does not count, so little is left when that comes last.
                # (Theirs leaves out the header, and counts in 1000 bits.)
                expected = theirs.info.bitrate / 1024 if name.startswith("first") else 0
                self.assertLessEqual(abs(record["mp3BitRate"] - expected), 16)
                self.assertEqual(record["mp3SongTitleString"], "Größe 日本")
                self.assertEqual(record["mp3ArtistString"], "Ann")
                self.assertIsNone(record["mp3Genre2String"])  # ffmpeg writes it as free text
                self.assertEqual((record["mp3Year"], record["mp3TheTrack"], record["mp3TrackAmount"]), (2009, 3, 12))
                self.assertTrue(record["mp3EncoderAppString"].startswith("Lavf"))

    def test_taggers(self):
        path = self.m4a()
        cover = self.write("cover.jpg", JPEG)
        subprocess.run(["AtomicParsley", path, "--overWrite", "--title", "T", "--artist", "A", "--album", "B",
                        "--genre", "Rock", "--comment", "note", "--composer", "C", "--lyrics", "la", "--year", "1999",
                        "--tracknum", "1/2", "--description", "about", "--artwork", cover],
                       check=True, capture_output=True)
        [found] = read_json(path)
        record = found["record"]
        self.assertEqual([record["mp3" + name + "String"] for name in
                          ("SongTitle", "Artist", "Album", "Genre2", "Comment", "Composer")],
                         ["T", "A", "B", "Rock", "note", "C"])
        self.assertIn(record["mp3LyricsString"], ("la about", "about la"))
        self.assertEqual((record["mp3Genre"], record["mp3Year"], record["mp3CoverArt"]), (18, 1999, len(JPEG)))
        self.assertEqual(found["panel"]["id3TrackNumberField"], "1 of 2")

        tags = mp4.MP4(path)
        tags.clear()
        tags["\xa9nam"] = "only"
        tags["----:com.apple.iTunes:iTunNORM"] = [mp4.MP4FreeForm(b"0000")]
        tags["\xa9cmt"] = ["iTunSMPB 00", "mine"]
        tags.save()
        [found] = read_json(path)
        self.assertEqual(found["record"]["mp3SongTitleString"], "only")
        self.assertIsNone(found["record"]["mp3CoverArt"])
        self.assertIsNone(found["record"]["mp3CommentString"])  # of two values only the first is looked at


class Chunks(Folder):
    def test_wave_as_sox_writes_it(self):
        encodings = [["-b", "8"], ["-b", "16"], ["-b", "24"], ["-b", "32"], ["-e", "a-law"], ["-e", "u-law"],
                     ["-e", "ima-adpcm"], ["-e", "ms-adpcm"], ["-e", "float", "-b", "32"]]
        for encoding, (rate, channels) in itertools.product(encodings, [(44100, 2), (22050, 1), (8000, 2)]):
            with self.subTest(encoding=encoding, rate=rate):
                source = self.sound(seconds=7.3, rate=rate, channels=channels)
                path = self.made("x.wav", "sox", source, *encoding)
                [ours] = read_json(path)
                record = ours["record"]
                self.assertEqual((ours["type"], ours["result"]), (4, 0))
                self.assertEqual(record["mp3SongLen"], int(soxi("-D", path)))
                self.assertEqual(record["mp3ChannelMode"], channel_mode(channels))
                # The rate is worked out from bytes per second, to which the headers of ADPCM blocks add.
                allowed = 0.03 * rate if "adpcm" in encoding[1] else 0
                self.assertLessEqual(abs(record["mp3SamplingRate"] - soxi("-r", path)), allowed)

    def test_extensible_wave_without_a_fact_is_not_read(self):
        path = self.made("x.wav", "ffmpeg", "-v", "error", "-i", self.sound(), "-c:a", "pcm_s24le")
        [found] = read_json(path)
        self.assertEqual(found["result"], -1)
        self.assertEqual(found["record"]["mp3SamplingRate"], 44100)

    def test_aiff_as_sox_and_ffmpeg_write_it(self):
        for bits, (rate, channels) in itertools.product((8, 16, 24, 32), [(44100, 2), (22050, 1), (11025, 2)]):
            with self.subTest(bits=bits, rate=rate):
                source = self.sound(seconds=7.3, rate=rate, channels=channels)
                path = self.made("x.aiff", "sox", source, "-b", str(bits))
                [ours] = read_json(path)
                record = ours["record"]
                self.assertEqual((ours["type"], ours["result"]), (5, 0))
                self.assertEqual(record["mp3SongLen"], int(soxi("-D", path)))
                self.assertEqual(record["mp3SamplingRate"], rate)
                self.assertEqual(record["mp3ChannelMode"], channel_mode(channels))
        path = self.made("c.aif", "ffmpeg", "-v", "error", "-i", self.sound(seconds=7.3), "-c:a", "pcm_s16le")
        self.assertEqual(path.read_bytes()[8:12], b"AIFC")
        self.assertEqual(read_json(path)[0]["record"]["mp3SongLen"], 7)

    def test_aiff_tags(self):
        path = self.made("x.aiff", "sox", self.sound())
        tags = aiff.AIFF(path)
        tags.add_tags()
        tags.tags.add(id3.TIT2(encoding=1, text="Größe"))
        tags.tags.add(id3.APIC(encoding=0, mime="image/jpeg", type=3, desc="", data=JPEG))
        tags.save(v2_version=3)
        [found] = read_json(path)
        self.assertEqual(found["result"], 0)
        self.assertEqual(found["record"]["mp3SongTitleString"].rstrip("\0"), "Größe")
        self.assertEqual(found["record"]["mp3CoverArtType"], "JPEG")
        self.assertEqual(found["panel"]["id3TagVersionField"], "ID3v3")


class Samples(unittest.TestCase):
    def test_all_are_read(self):
        found = read_json(*sorted(SAMPLES.glob("sample.*")))
        self.assertEqual([f["type"] for f in found], [5, 2, 1, 4])
        for f in found:
            self.assertEqual((f["result"], f["record"]["mp3SongLen"]), (0, 1))
            if f["type"] != 4:
                self.assertEqual(f["record"]["mp3LyricsString"].count("\n"), 2)


if __name__ == "__main__":
    unittest.main()
