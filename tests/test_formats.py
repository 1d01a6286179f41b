# SPDX-License-Identifier: MIT
"""Files of real encoders and taggers, and what other programs say about them."""

import subprocess

from mutagen import mp3, mp4

from program import SAMPLES, Folder


class Samples(Folder):
    def test_in_two_languages(self):
        texts = {"mp3SongTitleString": "Prélude in One Second", "mp3ArtistString": "The Sample Makers", "mp3Year": 2026,
                 "mp3AlbumString": "Small Files", "mp3ComposerString": "A. Script", "mp3CommentString": "Made by make-samples",
                 "mp3LyricsString": "One second,\nthree notes,\nno words.", "mp3TheTrack": 1, "mp3TrackAmount": 1}
        id3 = {**texts, "mp3SongTitleString": "Prélude in One Second\0", "id3GenreField": "Classical", "mp3TagVersion": 3}
        for ending, kind, locale, facts in (
                ("aiff", 5, "POSIX", {**id3, "id3BitrateEtcField": "8.0 kHz"}), ("m4a", 2, "C", texts), ("mp3", 1, "C", id3),
                ("mp3", 1, "de_DE.UTF-8", {"id3BitrateEtcField": "128 kbps  44,1 kHz", "id3GenreField": "Klassik"}),
                ("wav", 4, "C", {name: None if name.endswith("String") else 0 for name in texts})):
            self.expect(SAMPLES / f"sample.{ending}", locale=locale, type=kind, result=0, mp3SongLen=1, **facts)


class Mpeg(Folder):
    def test_encoders(self):
        for command, sound, is_variable, channels in (
                ("lame -b 160", {}, False, " Joint Stereo"), ("lame -m s -b 192", {}, False, "Stereo"),
                ("lame -m m -b 64", {"channels": 1}, False, "Mono"), ("lame -V 2", {}, True, " Joint Stereo"),
                ("lame -V 4", {"rate": 22050, "channels": 1}, True, "Mono"),
                ("lame -b 32", {"rate": 11025}, False, " Joint Stereo"), ("twolame -b 256", {"rate": 48000}, False, "Stereo")):
            path = self.made(f"{command}.mp3", *command.split(), self.sound(**sound))
            theirs = mp3.MP3(path).info
            rates = {} if is_variable else {"mp3BitRate": round(theirs.bitrate / 1000), "mp3SongLen": int(theirs.length)}
            self.expect(path, result=0, mp3SamplingRate=theirs.sample_rate, mp3HasVBR=int(is_variable),
                        mp3Layer={3: 1, 2: 2}[theirs.layer], mp3Version={1: 3, 2: 2, 2.5: 0}[theirs.version],
                        id3ChannelsField=channels, **rates)


class Mpeg4(Folder):
    def test_movie_first_and_last(self):
        tags = [word for tag in ("title=Größe 日本", "artist=Ann", "genre=Rock", "date=2009-07-01", "track=3/12")
                for word in ("-metadata", tag)]
        # What stands before the movie header does not count, so little is left of the bit rate when that comes last.
        for name, kind, share, options in (("last.m4a", 2, 0, []), ("first.m4b", 3, 1, ["-movflags", "+faststart"]),
                                           ("x.m4r", 3, 0, ["-f", "ipod"]), ("x.aac", 2, 0, ["-f", "ipod"])):
            path = self.made(name, "ffmpeg", "-v", "error", "-i", self.sound(seconds=12), "-c:a", "aac", *tags, *options)
            theirs = mp4.MP4(path)
            found = self.expect(path, type=kind, result=0, mp3SongLen=int(theirs.info.length), mp3SongTitleString="Größe 日本",
                                mp3ArtistString="Ann", mp3EncoderAppString=theirs["\xa9too"][0], mp3Year=2009, mp3TheTrack=3,
                                mp3TrackAmount=12, mp3Genre2String=None)  # ffmpeg writes it as free text
            # Theirs leaves out the header, and counts in 1000 bits.
            self.assertLessEqual(abs(found["mp3BitRate"] - share * theirs.info.bitrate / 1024), 16, name)

    def test_taggers(self):
        path = self.write("x.m4a", (SAMPLES / "sample.m4a").read_bytes())
        cover = self.write("cover.jpg", b"\xff\xd8\xff\xe0" + bytes(5000))
        texts = "--title T --artist A --album B --genre Rock --comment note --composer C --lyrics la --year 1999 --tracknum 1/2"
        subprocess.run(["AtomicParsley", path, "--overWrite", *texts.split(), "--description", "about", "--artwork", "REMOVE_ALL",
                        "--artwork", cover], check=True, capture_output=True)
        self.expect(path, mp3SongTitleString="T", mp3ArtistString="A", mp3AlbumString="B", mp3Genre2String="Rock", mp3Genre=18,
                    mp3CommentString="note", mp3ComposerString="C", mp3LyricsString="la about", mp3Year=1999,
                    mp3CoverArt=5004, mp3CoverArtType="JPEG", id3TrackNumberField="1 of 2")
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
        rows = []
        for rate, channels in ((44100, 2), (22050, 1), (11025, 2), (8000, 2)):
            source = self.sound(seconds=7.3, rate=rate, channels=channels)
            for ending, kind, encoding in (*(("wav", 4, wave) for wave in waves), *(("aiff", 5, wave) for wave in waves[:4])):
                path = self.made(f"{rate} {encoding}.{ending}", "sox", source, *encoding.split())
                rows.append((path, {"type": kind, "result": 0, "mp3SongLen": 7, "mp3ChannelMode": {1: 3, 2: 0}[channels]}))
        for (path, _), found in zip(rows, self.expect_all(rows), strict=True):
            # In WAVE worked out from bytes per second, to which the headers of ADPCM blocks add.
            rate = int(path.name.partition(" ")[0])
            self.assertLessEqual(abs(found["mp3SamplingRate"] - rate), 0.03 * rate if "adpcm" in path.name else 0, path.name)
