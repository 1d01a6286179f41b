// SPDX-License-Identifier: MIT
#include "engine/id3genres.h"
#include "engine/id3v1.h"
#include "engine/id3v2.h"
#include "tests/support/readBytes.h"
#include "tests/support/readFile.h"
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
        EXPECT_EQ(tagsOf(tag.record), "Title|Ann Bob|Album|Composer|Nice|Rock|la di da|Encoder|2004|5/12");
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
    EXPECT_EQ(tag.record.mp3TagVersion, 2);
    EXPECT_EQ(tagsOf(tag.record), "T|A|L|C|c|Pop|l d|E|1987|7/0");
    EXPECT_EQ(tag.record.mp3CoverArt.size(), 101U);
}

TEST(ID3v2, WalksFramesAsTheirSizesSay) {
    const std::string absent = "(absent)";
    const std::string title = id3Frame("TIT2", bytes("\0Title"));
    const std::string title2 = id3Frame("TT2", bytes("\0Title"));
    const std::string other = id3Frame("TXXX", std::string(300, 'x'));
    const auto extended = [](const std::string& size, std::size_t rest) {
        return size + std::string(rest, '\0');
    };
    // A frame that begins within the tag is read whole; the next one begins beyond its end.
    const std::string longTitle = id3Frame("TIT2", bytes("\0") + std::string(50, 't'));
    for (const auto& [tag, expected] : std::vector<std::pair<std::string, std::string>>{
             {id3Tag(bytes("TXXX\0\0\0\0\0\0") + title), absent},            // an empty frame ends the walk,
             {id3Tag(id3Frame(std::string(4, '\0'), "x") + title), absent},  // and an id of zero bytes,
             {id3Tag(id3Frame(bytes("\0\0\0X"), "x") + title), "Title"},     // all four of them
             {id3Tag(id3Frame(bytes("\0XX"), "x") + title2, 16, 2), absent}, // or the first, in version 2
             {id3Tag(id3Frame(bytes("X\0\0"), "x") + title2, 16, 2), "Title"},
             {id3Tag(other + title), "Title"},        // sizes are plain numbers,
             {id3Tag(other + title, 16, 4), "Title"}, // in version 4 too
             {id3Tag(bytes("TXXX\xFF\xFF\xFF\xF0\0\0") + title), absent},
             {id3Tag(longTitle.substr(0, 20), 0) + longTitle.substr(20) + title, std::string(50, 't')},
             // The extended header is skipped by its size alone, which has seven bits a byte.
             {id3Tag(extended(bytes("\0\0\0\12"), 6) + title, 16, 4, 0x40), "Title"},
             {id3Tag(extended(bytes("\0\0\1\0"), 124) + title, 16, 3, 0x40), "Title"}}) {
        EXPECT_EQ(plain(readTag(tag).record.mp3SongTitleString), expected) << testing::PrintToString(tag);
    }
    EXPECT_FALSE(readTag(id3Tag(extended(bytes("\0\0\0\12"), 6), 0, 3, 0x40), "").record.mp3SongTitleString);
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
        "xx" + id3v1("T\x8Atel", "", "9 comment that is cut at 28 bytes", 200, 17), std::move(before));
    EXPECT_EQ(record.mp3TagVersion, 1);
    // An artist that is all blanks changes nothing, and the year ends before the comment's digit.
    EXPECT_EQ(tagsOf(record),
              "Tätel|v2 artist|Album|v2 composer|9 comment that is cut at 28|Rock|-|-|1999|200/9");
    EXPECT_EQ(record.mp3Genre, 17);

    const audioTags other = readBlock(id3v1("", "", std::string(30, 'c'), 0, 255));
    EXPECT_EQ(tagsOf(other),
              "|-|Album|-|" + std::string(30, 'c') + "|-|-|-|1999|0/0"); // a title, though empty
    EXPECT_EQ(other.mp3Genre, -1);
    EXPECT_FALSE(readBlock(id3v1("", "", "", 0, 126)).mp3Genre2String);
    EXPECT_EQ(plain(readBlock(id3v1(bytes("a\0b  "), "", "", 0, 0)).mp3SongTitleString), bytes("a\0b"));

    for (const std::string& noBlock : {"tag" + std::string(125, ' '), id3v1("T", "", "", 0, 0).substr(1)}) {
        EXPECT_EQ(readBlock(noBlock).mp3TagVersion, 0);
    }
}

} // namespace

} // namespace sonarin
