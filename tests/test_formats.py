# SPDX-License-Identifier: MIT
"""MPEG-4, WAVE and AIFF files of real encoders and taggers, and what other programs say about them."""

import itertools
import subprocess

from mutagen import aiff, id3, mp4

from program import SAMPLES, Folder

JPEG = b"\xff\xd8\xff\xe0" + bytes(5000)


class Mpeg4(Folder):
    def m4a(self, name, *options, seconds=3):
        tags = [word for tag in ("title=Größe 日本", "artist=Ann", "genre=Rock", "date=2009-07-01", "track=3/12")
                for word in ("-metadata", tag)]
        return self.made(name, "ffmpeg", "-v", "error", "-i", self.sound(seconds=seconds), "-c:a", "aac", *tags, *options)

    def test_movie_first_and_last(self):
        # What stands before the movie header does not count, so little is left of the bit rate when that comes last.
        for name, kind, share, options in (("last.m4a", 2, 0, []), ("first.m4b", 3, 1, ["-movflags", "+faststart"]),
                                           ("x.m4r", 3, 0, ["-f", "ipod"]), ("x.aac", 2, 0, ["-f", "ipod"])):
            with self.subTest(name=name):
                path = self.m4a(name, *options, seconds=12)
                theirs = mp4.MP4(path)
                found = self.expect(path, type=kind, result=0, mp3SongLen=int(theirs.info.length), mp3SongTitleString="Größe 日本",
                                    mp3ArtistString="Ann", mp3Year=2009, mp3TheTrack=3, mp3TrackAmount=12,
                                    mp3Genre2String=None)  # ffmpeg writes it as free text
                # Theirs leaves out the header, and counts in 1000 bits.
                self.assertLessEqual(abs(found["mp3BitRate"] - share * theirs.info.bitrate / 1024), 16)
                self.assertEqual(found["mp3EncoderAppString"], theirs["\xa9too"][0])

    def test_taggers(self):
        path = self.m4a("x.m4a")
        texts = ("--title T --artist A --album B --genre Rock --comment note --composer C --lyrics la --year 1999 --tracknum 1/2 "
                 "--description about")
        subprocess.run(["AtomicParsley", path, "--overWrite", *texts.split(), "--artwork", self.write("cover.jpg", JPEG)],
                       check=True, capture_output=True)
        self.expect(path, mp3SongTitleString="T", mp3ArtistString="A", mp3AlbumString="B", mp3Genre2String="Rock", mp3Genre=18,
                    mp3CommentString="note", mp3ComposerString="C", mp3LyricsString="la about", mp3Year=1999,
                    mp3CoverArt=len(JPEG), id3TrackNumberField="1 of 2")
        tags = mp4.MP4(path)
        tags.clear()
        tags["\xa9nam"] = "only"
        tags["----:com.apple.iTunes:iTunNORM"] = [mp4.MP4FreeForm(b"0000")]
        tags["\xa9cmt"] = ["iTunSMPB 00", "mine"]  # of two values only the first is looked at
        tags.save()
        self.expect(path, mp3SongTitleString="only", mp3CoverArt=None, mp3CommentString=None)


class Chunks(Folder):
    def test_wave_and_aiff_as_sox_writes_them(self):
        waves = "-b 8", "-b 16", "-b 24", "-b 32", "-e a-law", "-e u-law", "-e ima-adpcm", "-e ms-adpcm", "-e float -b 32"
        for (name, kind, encoding), (rate, channels) in itertools.product(
                [*(("x.wav", 4, encoding) for encoding in waves), *(("x.aiff", 5, encoding) for encoding in waves[:4])],
                [(44100, 2), (22050, 1), (11025, 2), (8000, 2)]):
            with self.subTest(name=name, encoding=encoding, rate=rate):
                source = self.sound(seconds=7.3, rate=rate, channels=channels)
                found = self.expect(self.made(name, "sox", source, *encoding.split()), type=kind, result=0, mp3SongLen=7,
                                    mp3ChannelMode={1: 3, 2: 0}[channels])
                # In WAVE worked out from bytes per second, to which the headers of ADPCM blocks add.
                self.assertLessEqual(abs(found["mp3SamplingRate"] - rate), 0.03 * rate if "adpcm" in encoding else 0)

    def test_formats_that_only_ffmpeg_writes(self):
        for name, codec, facts in (
                ("x.wav", "pcm_s24le", {"result": -1, "mp3SamplingRate": 44100}),  # extensible, but without a fact
                ("x.aif", "pcm_s16le", {"result": 0, "mp3SongLen": 3, "mp3SamplingRate": 44100})):  # AIFF-C
            self.expect(self.made(name, "ffmpeg", "-v", "error", "-i", self.sound(), "-c:a", codec), **facts)

    def test_aiff_tags(self):
        path = self.made("x.aiff", "sox", self.sound())
        file = aiff.AIFF(path)
        file.add_tags()
        file.tags.add(id3.TIT2(1, "Größe"))
        file.tags.add(id3.APIC(0, "image/jpeg", 3, "", JPEG))
        file.save(v2_version=3)
        self.expect(path, result=0, mp3SongTitleString="Größe\0", mp3CoverArtType="JPEG", id3TagVersionField="ID3v3")


class Samples(Folder):
    def test_all_are_read(self):
        for ending, kind, lines in (("aiff", 5, 2), ("m4a", 2, 2), ("mp3", 1, 2), ("wav", 4, 0)):
            found = self.expect(SAMPLES / f"sample.{ending}", type=kind, result=0, mp3SongLen=1)
            self.assertEqual((found["mp3LyricsString"] or "").count("\n"), lines, ending)
