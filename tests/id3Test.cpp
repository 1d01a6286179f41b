// SPDX-License-Identifier: MIT
#include "engine/id3genres.h"
#include "engine/id3v1.h"
#include "engine/id3v2.h"
#include "tests/support/readBytes.h"
#include "tests/support/sampleBytes.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonarin {

namespace {

using sample::bytes;
using sample::id3Frame;
using sample::id3Tag;
using sample::padded;

struct TagResult {
    audioTags record;
    std::uint64_t end = 0;
};

TagResult readTag(const std::string& tag, const std::string& behind = std::string(300, 'z')) {
    startUpIn("C");
    OpenBytes file(tag + behind);
    TagResult result;
    mp3ReadV2Tags(&result.record, &result.end, &file.cache);
    return result;
}

TEST(ID3v2, FillsTheRecord) {
    const std::string frames = id3Frame("TIT2", bytes("\0Title")) + id3Frame("TPE1", bytes("\0Ann")) +
                               id3Frame("TPE1", bytes("\0Bob")) + id3Frame("TALB", bytes("\0Album")) +
                               id3Frame("TCOM", bytes("\0Composer")) + id3Frame("TENC", bytes("\0Encoder")) +
                               id3Frame("TCON", bytes("\0(17)Rock")) +
                               id3Frame("COMM", bytes("\0eng\0Nice\0")) +
                               id3Frame("USLT", bytes("\0eng\0la\0")) + id3Frame("YTDS", bytes("\0di da")) +
                               id3Frame("TRCK", bytes("\0001/2")) + id3Frame("TRCK", bytes("\0005/12")) +
                               id3Frame("TYER", bytes("\0001999")) + id3Frame("TYER", bytes("\0002004")) +
                               id3Frame("TXXX", bytes("\0k\0v")) + id3Frame("tit2", bytes("\0no"));
    for (const char version : {char{3}, char{4}, char{5}}) {
        const TagResult tag = readTag(id3Tag(frames, 50, version));
        EXPECT_EQ(tag.record.mp3TagVersion, version == 4 ? 4 : 3);
        EXPECT_EQ(tag.end, frames.size() + 60);
        EXPECT_EQ(plain(tag.record.mp3SongTitleString), "Title");
        EXPECT_EQ(plain(tag.record.mp3ArtistString), "Ann Bob");
        EXPECT_EQ(plain(tag.record.mp3AlbumString), "Album");
        EXPECT_EQ(plain(tag.record.mp3ComposerString), "Composer");
        EXPECT_EQ(plain(tag.record.mp3EncoderAppString), "Encoder");
        EXPECT_EQ(plain(tag.record.mp3Genre2String), "Rock");
        EXPECT_EQ(plain(tag.record.mp3CommentString), "Nice");
        EXPECT_EQ(plain(tag.record.mp3LyricsString), "la di da");
        EXPECT_EQ(tag.record.mp3TheTrack, 5);
        EXPECT_EQ(tag.record.mp3TrackAmount, 12);
        EXPECT_EQ(tag.record.mp3Year, 2004);
        EXPECT_EQ(tag.record.mp3Genre, 0);
    }
}

TEST(ID3v2, ReadsVersion2) {
    const TagResult tag = readTag(id3Tag(
        id3Frame("TT2", bytes("\0T")) + id3Frame("TP1", bytes("\0A")) + id3Frame("TAL", bytes("\0L")) +
            id3Frame("TCM", bytes("\0C")) + id3Frame("TEN", bytes("\0E")) + id3Frame("TCO", bytes("\0(13)")) +
            id3Frame("COM", bytes("\0eng\0c\0")) + id3Frame("ULT", bytes("\0eng\0l\0")) +
            id3Frame("TDS", bytes("\0d")) + id3Frame("TRK", bytes("\0007")) +
            id3Frame("TYE", bytes("\0001987")) + id3Frame("PIC", bytes("\0JPG\0\0") + std::string(100, 'j')),
        20, 2));
    const audioTags& record = tag.record;
    EXPECT_EQ(record.mp3TagVersion, 2);
    EXPECT_EQ(plain(record.mp3SongTitleString) + plain(record.mp3ArtistString) +
                  plain(record.mp3AlbumString) + plain(record.mp3ComposerString) +
                  plain(record.mp3EncoderAppString) + plain(record.mp3CommentString) +
                  plain(record.mp3LyricsString),
              "TALCEcl d");
    EXPECT_EQ(plain(record.mp3Genre2String), "Pop");
    EXPECT_EQ(record.mp3TheTrack, 7);
    EXPECT_EQ(record.mp3TrackAmount, 0);
    EXPECT_EQ(record.mp3Year, 1987);
    EXPECT_EQ(record.mp3CoverArt.size(), 101U);
}

TEST(ID3v2, WalksFramesAsTheirSizesSay) {
    const std::string title = id3Frame("TIT2", bytes("\0Title"));
    const auto titleOf = [](const std::string& tag, const std::string& behind = std::string(300, 'z')) {
        return plain(readTag(tag, behind).record.mp3SongTitleString);
    };
    EXPECT_EQ(titleOf(id3Tag(bytes("TXXX\0\0\0\0\0\0") + title)), "(absent)"); // an empty frame ends the walk
    EXPECT_EQ(titleOf(id3Tag(std::string(10, '\0') + title)), "(absent)");
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TXXX", std::string(300, 'x')) + title)),
              "Title"); // plain big-endian size
    EXPECT_EQ(titleOf(id3Tag(id3Frame("TXXX", std::string(300, 'x')) + title, 16, 4)), "Title");
    EXPECT_EQ(titleOf(id3Tag(bytes("TXXX\xFF\xFF\xFF\xF0\0\0") + title)), "(absent)");
    // A frame that begins within the tag is read whole; the next one begins beyond its end.
    const std::string longTitle = id3Frame("TIT2", bytes("\0") + std::string(50, 't'));
    EXPECT_EQ(titleOf(id3Tag(longTitle.substr(0, 20), 0), longTitle.substr(20) + title),
              std::string(50, 't'));
    // The extended header is skipped by its size alone, which in version 3 leaves four of its bytes.
    const std::string extended = sample::bigEndian(10) + std::string(6, '\0');
    EXPECT_EQ(titleOf(id3Tag(extended + title, 16, 4, 0x40)), "Title");
    EXPECT_EQ(titleOf(id3Tag(extended, 0, 3, 0x40), ""), "(absent)");
    // Major versions 0 and 1 hold nothing that is known, but are passed over.
    const TagResult unknown = readTag(id3Tag(title, 16, 1));
    EXPECT_EQ(unknown.record.mp3TagVersion, 0);
    EXPECT_EQ(unknown.end, title.size() + 26);
    EXPECT_FALSE(unknown.record.mp3SongTitleString);
    // The top bits of the size bytes count.
    EXPECT_EQ(readTag(bytes("ID3\3\0\0\0\0\0\x80")).end, 138U);
    EXPECT_EQ(readTag("ID3", "").end, 0U);
}

TEST(ID3v2, ResolvesGenreReferences) {
    for (const auto& [genre, expected] :
         std::vector<std::pair<std::string, std::string>>{{"(17)", "Rock"},
                                                          {"(4)Eurodisco", "Disco"},
                                                          {"(0)", "(0)"},
                                                          {"17", "17"},
                                                          {"Rock", "Rock"},
                                                          {"(125)", "(125)"},
                                                          {"(99)", "Acoustic"},
                                                          {"(-1)", "(absent)"},
                                                          {"(5))", "Funk"},
                                                          {"(ab)", "(ab)"},
                                                          {"()", "()"},
                                                          {"x(7)", "x(7)"}}) {
        EXPECT_EQ(plain(readTag(id3Tag(id3Frame("TCON", bytes("\0") + genre))).record.mp3Genre2String),
                  expected)
            << genre;
    }
    EXPECT_EQ(plain(mp3LoadGenreString(126)), "Dance Hall");
    for (const int number : {0, 127, -1, 65537}) {
        EXPECT_FALSE(mp3LoadGenreString(number));
    }
}

TEST(ID3v2, SplitsTrackTexts) {
    struct Case {
        const char* text;
        std::uint16_t track;
        std::uint16_t amount;
    };
    for (const Case& c : std::vector<Case>{{"3/12", 3, 12},
                                           {"7", 7, 0},
                                           {"/12", 0, 12},
                                           {"3/", 3, 0},
                                           {"1/2/3", 1, 2},
                                           {"65537/-1", 1, 65535}}) {
        std::uint16_t track = 99;
        std::uint16_t amount = 99;
        mp3DecodeTrackInfo(text(c.text), &track, &amount);
        EXPECT_EQ(track, c.track) << c.text;
        EXPECT_EQ(amount, c.amount) << c.text;
    }
    const TagResult unreadable =
        readTag(id3Tag(id3Frame("TRCK", bytes("\0003/4")) + id3Frame("TRCK", "\xE9\xE9") +
                       id3Frame("TYER", bytes("\0001990")) + id3Frame("TYER", "\xE9\xE9")));
    EXPECT_EQ(unreadable.record.mp3TheTrack, 0);
    EXPECT_EQ(unreadable.record.mp3TrackAmount, 0);
    EXPECT_EQ(unreadable.record.mp3Year, 0);
}

std::string id3v1(const std::string& title, const std::string& artist, const std::string& comment, int track,
                  int genre) {
    return "TAG" + padded(title, 30) + padded(artist, 30, ' ') + padded("Album \0", 30) + "1999" +
           (track != 0 ? padded(comment, 28) + bytes("\0") + static_cast<char>(track) : padded(comment, 30)) +
           static_cast<char>(genre);
}

audioTags readBlock(const std::string& content, audioTags record = {}) {
    startUpIn("C");
    OpenBytes file(content);
    mp3ReadV1Tag(&record, &file.cache, content.size());
    return record;
}

TEST(ID3v1, FillsAndOverwritesTheRecord) {
    audioTags before;
    before.mp3ArtistString = text("v2 artist");
    before.mp3ComposerString = text("v2 composer");
    before.mp3TrackAmount = 9;
    const audioTags record = readBlock(
        "xx" + id3v1("T\x8Atel", "", "A comment that is cut at 28 bytes", 200, 17), std::move(before));
    EXPECT_EQ(record.mp3TagVersion, 1);
    EXPECT_EQ(plain(record.mp3SongTitleString), "Tätel");
    EXPECT_EQ(plain(record.mp3ArtistString), "v2 artist"); // an all-blank one changes nothing
    EXPECT_EQ(plain(record.mp3ComposerString), "v2 composer");
    EXPECT_EQ(plain(record.mp3AlbumString), "Album");
    EXPECT_EQ(plain(record.mp3CommentString), "A comment that is cut at 28");
    EXPECT_EQ(record.mp3TheTrack, 200);
    EXPECT_EQ(record.mp3TrackAmount, 9);
    EXPECT_EQ(record.mp3Year, 1999);
    EXPECT_EQ(record.mp3Genre, 17);
    EXPECT_EQ(plain(record.mp3Genre2String), "Rock");

    const audioTags other = readBlock(id3v1("", "", std::string(30, 'c'), 0, 255));
    EXPECT_EQ(plain(other.mp3SongTitleString), ""); // present, though empty
    EXPECT_FALSE(other.mp3ArtistString);
    EXPECT_EQ(plain(other.mp3CommentString), std::string(30, 'c'));
    EXPECT_EQ(other.mp3TheTrack, 0);
    EXPECT_EQ(other.mp3Genre, -1);
    EXPECT_FALSE(other.mp3Genre2String);
    EXPECT_FALSE(readBlock(id3v1("", "", "", 0, 126)).mp3Genre2String);
    EXPECT_EQ(plain(readBlock(id3v1(bytes("a\0b  "), "", "", 0, 0)).mp3SongTitleString), bytes("a\0b"));

    for (const std::string& noBlock : {"tag" + std::string(125, ' '), id3v1("T", "", "", 0, 0).substr(1)}) {
        EXPECT_EQ(readBlock(noBlock).mp3TagVersion, 0);
    }
}

} // namespace

} // namespace sonarin
