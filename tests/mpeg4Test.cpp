// SPDX-License-Identifier: MIT
#include "engine/aacTags.h"
#include "engine/fileEngine.h"
#include "tests/support/readBytes.h"
#include "tests/support/readFile.h"
#include "tests/support/sampleBytes.h"
#include "tests/support/testFolder.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonarin {

namespace {

using sample::atom;
using sample::bigEndian;
using sample::bytes;
using sample::fileTypeAtom;
using sample::item;
using sample::longAtom;
using sample::movieAtom;

ReadResult readFile(const std::string& content, std::uint64_t sizeOnDisk = 0) {
    return readFileAs("x.m4a", content, sizeOnDisk);
}

/// A file with that item list. Something always follows the list, as in real files.
ReadResult readItems(const std::string& items) {
    return readFile(fileTypeAtom() + movieAtom(items) + atom("free", std::string(200, '\0')));
}

/// An item whose type begins with a copyright sign.
std::string signItem(const std::string& rest, const std::string& value) {
    return item('\xA9' + rest, value);
}

std::string withoutLast(std::string text, std::size_t count) {
    text.resize(text.size() - count);
    return text;
}

TEST(Mpeg4, EstimatesDurationAndBitRate) {
    struct Case {
        std::uint32_t timeScale, duration;
        std::uint64_t size;
        std::uint16_t seconds;
        std::uint32_t bitRate;
    };
    for (const Case& c : std::vector<Case>{{44100, 13230000, 5000000, 300, 136},
                                           {0, 13230000, 5000000, 0, 0},
                                           {44100, 44099, 5000000, 0, 0},
                                           {44100, 0, 5000000, 0, 0},
                                           {1, 65536, 5000000, 0, 0}, // only 16 bits of the duration are kept
                                           {1, 65537, 5000000, 1, 0}, // less than a byte a second, in 16.16
                                           {44100, 13230000, 0, 300, 0},             // less than 4096 bytes
                                           {44100, 13230000, 0xFFFFFFFF, 300, 0},    // negative in 32 bits
                                           {44100, 13230000, 0x1004C4B40, 300, 136}, // 5,000,000 + 4 GiB
                                           {600, 600 * 8, 4096 + 32 + 8 * 1024, 8, 8},
                                           {600, 600 * 8, 4096 + 32 + 8 * 1024 + 1024, 8, 16}}) {
        const ReadResult read = readFile(fileTypeAtom() + movieAtom("", c.timeScale, c.duration), c.size);
        EXPECT_EQ(read.result, 0);
        EXPECT_EQ(read.record.mp3SongLen, c.seconds) << c.timeScale << ' ' << c.duration;
        EXPECT_EQ(read.record.mp3BitRate, c.bitRate) << c.duration << ' ' << c.size;
        EXPECT_EQ(read.record.mp3SamplingRate, 0U);
    }
}

TEST(Mpeg4, FillsTheRecordFromItems) {
    const ReadResult read = readItems(
        signItem("nam", "Tit\xC3\xA9") + signItem("ART", "Ann") +
        signItem("alb", "Alb\x8Em") + // Mac OS Roman
        signItem("wrt", "Composer") + signItem("too", "Encoder") + signItem("gen", "ignored") +
        signItem("cmt", "one") + signItem("cmt", "itunsmpb 0") + signItem("cmt", "xiTunNORM") +
        signItem("cmt", "") + item("desc", "about") + signItem("lyr", "la") +
        signItem("day", "2009-07-01T07:00:00Z") + item("gnre", bigEndian(18, 2)) +
        item("trkn", bytes("\0\0\0\3\0\14\0\0")) + item("covr", "\xFF\xD8\xFF\xE0" + std::string(200, 'j')));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(tagsOf(read.record), "Tité|Ann|Albém|Composer|one xiTunNORM |Rock|about la|Encoder|2009|3/12");
    EXPECT_EQ(read.record.mp3Genre, 18);
    EXPECT_EQ(read.record.mp3CoverArt.size(), 204U);
    EXPECT_EQ(read.record.mp3CoverArtType, fourCC("JPEG"));
    EXPECT_EQ(read.record.mp3TagVersion, 0);
}

TEST(Mpeg4, TakesNumbersUnchecked) {
    EXPECT_EQ(readItems(signItem("day", "abcd")).record.mp3Year, 49 * 1000 + 50 * 100 + 51 * 10 + 52);
    const ReadResult large = readItems(item("gnre", bigEndian(5, 2)) + item("gnre", bigEndian(0xFFFE, 2)));
    EXPECT_EQ(large.record.mp3Genre, -2);
    EXPECT_FALSE(large.record.mp3Genre2String);
}

TEST(Mpeg4, LooksForAtomsUpToTheLimit) {
    struct Case {
        std::uint32_t type, limit;
        std::int32_t result;
        std::uint64_t position;
    };
    OpenBytes file(atom("free", "12345678") + longAtom("mdat", "1234") + atom("moov", ""));
    for (const Case& c : {Case{fourCC("free"), 0, 0, 0}, // the first is not asked where it stands
                          {fourCC("mdat"), 16, -1, 0},
                          {fourCC("mdat"), 17, 0, 16},
                          {fourCC("moov"), 36, -1, 0},
                          {fourCC("moov"), 37, 0, 36},
                          {fourCC("udta"), 100, fileEofErr, 0}}) {
        std::uint64_t position = 0;
        aacAtomHeader header;
        EXPECT_EQ(findQTAtom(c.type, &position, c.limit, &file.cache, &header), c.result);
        EXPECT_TRUE(c.result != 0 || (position == c.position && header.type == c.type)) << c.limit;
    }
}

TEST(Mpeg4, FindsTheMovieWhereverItIs) {
    const std::string movie = movieAtom(signItem("nam", "here"));
    const std::string mdat(70000, 'm');
    for (const std::string& file :
         {fileTypeAtom() + movie + atom("mdat", mdat), fileTypeAtom() + atom("mdat", mdat) + movie,
          fileTypeAtom() + longAtom("mdat", mdat) + movie, fileTypeAtom() + bytes("\0\0\0\6zz") + movie}) {
        EXPECT_EQ(plain(readFile(file).record.mp3SongTitleString), "here");
    }
    // Missing children are looked for beyond their parent.
    const std::string list =
        atom("udta", atom("meta", bytes("\0\0\0\0") + atom("ilst", signItem("nam", "far"))));
    const std::string header = atom("mvhd", sample::padded("", 100));
    EXPECT_EQ(plain(readFile(fileTypeAtom() + atom("moov", "") + header + list).record.mp3SongTitleString),
              "far");
    // A header with a 64-bit size counts as one byte long for what comes after it.
    EXPECT_EQ(readFile(fileTypeAtom() + atom("moov", longAtom("mvhd", std::string(100, '\0')) + list)).result,
              -1);
}

TEST(Mpeg4, FailsWithoutAnItemListAndKeepsWhatItHas) {
    const std::string header =
        atom("mvhd", std::string(12, '\0') + bigEndian(10) + bigEndian(50) + std::string(80, '\0'));
    const ReadResult withoutList = readFile(fileTypeAtom() + atom("moov", header) + std::string(8192, '\0'));
    EXPECT_EQ(withoutList.result, -1);
    EXPECT_EQ(withoutList.record.mp3SongLen, 5);
    EXPECT_EQ(withoutList.record.mp3BitRate, 8U);

    const std::string wrap = bytes("\0\0\0\1mdat") + bigEndian(~std::uint64_t{0} - 15, 8); // 16 bytes back
    for (const std::string& file :
         {std::string(), bytes("\0\0\0\x10"), atom("wide", "") + fileTypeAtom() + movieAtom(""),
          bytes("\0\0\0\0ftyp") + movieAtom(""),
          fileTypeAtom() + bytes("\0\0\0\1mdat") + std::string(100, '\0'),
          fileTypeAtom() + atom("free", "16 bytes") + wrap + movieAtom(""),
          fileTypeAtom() + withoutLast(atom("moov", header), 80)}) {
        EXPECT_EQ(readFile(file).result, -1);
    }
    // Positions beyond 4 GiB are not searched, and the search takes the size's low 32 bits for the end.
    const std::string farAway = bytes("\0\0\0\1mdat") + bigEndian(std::uint64_t{5} << 30U, 8);
    EXPECT_EQ(readFile(fileTypeAtom() + farAway, (std::uint64_t{5} << 30U) + 5000).result, -1);
    EXPECT_EQ(readFile(fileTypeAtom() + atom("free", std::string(100, '\0')) + movieAtom(""),
                       (std::uint64_t{1} << 32U) + 100)
                  .result,
              -1);
}

TEST(Mpeg4, EndsTheItemWalkWhereItMust) {
    const std::string title = signItem("nam", "in");
    const std::string artist = signItem("ART", "out");
    std::string endless = title;
    endless.replace(0, 4, 4, '\0');
    std::string claim = signItem("alb", "text");
    claim.replace(8, 4, bigEndian(0xFFFFFFFF));
    for (const auto& [items, tags] : std::vector<std::pair<std::string, std::string>>{
             {title + artist, "in|out|"},
             {endless + artist, "in|-|"},          // handled once
             {bytes("\0\0\0\4") + title, "in|-|"}, // sizes of 1 to 7 lead on, byte by byte
             {claim + title, "in|-|"}}) { // what cannot be read ends the walk for numbers, not for texts
        EXPECT_EQ(tagsOf(readItems(items).record).substr(0, tags.size()), tags);
    }
    // The atom behind the list is not taken for an item.
    const std::string list = bytes("\0\0\0\0") + atom("ilst", title) + artist;
    const std::string movie = atom("mvhd", std::string(100, '\0')) + atom("udta", atom("meta", list));
    EXPECT_EQ(tagsOf(readFile(fileTypeAtom() + atom("moov", movie)).record).substr(0, 5), "in|-|");

    // An item that is nothing but a header, whose value would stand behind the file's end, and a text of no
    // bytes.
    for (const auto& [type, expected] : std::vector<std::pair<std::string, std::string>>{{"\xA9"
                                                                                          "day",
                                                                                          "(absent)"},
                                                                                         {"gnre", "(absent)"},
                                                                                         {"trkn", "(absent)"},
                                                                                         {"\xA9"
                                                                                          "ART",
                                                                                          ""},
                                                                                         {"covr", ""}}) {
        const std::string items = atom(type, "") + withoutLast(signItem("nam", ""), 8);
        const ReadResult read = readFile(fileTypeAtom() + movieAtom(items));
        EXPECT_EQ(read.result, 0);
        EXPECT_EQ(plain(read.record.mp3SongTitleString), expected) << type;
    }
}

TEST(Mpeg4, ReadsTheTextOfOneItem) {
    struct Case {
        std::string content;
        std::int32_t result;
        std::string expected;
    };
    const std::string wanted = signItem("nam", "text");
    const std::string empty = signItem("nam", "");
    for (const Case& c : std::vector<Case>{{wanted, 0, "kept text"},
                                           {withoutLast(wanted, 1), fileEofErr, "kept"},
                                           {empty, 0, "kept "},
                                           {withoutLast(empty, 8), 0, "kept "}, // nothing is left to be read
                                           {withoutLast(empty, 9), fileEofErr, "kept"},
                                           {signItem("nam", "xx").replace(8, 4, bigEndian(15)), -2, "kept"},
                                           {signItem("nam", "xx").replace(8, 4, bigEndian(0)), -2, "kept"},
                                           {signItem("nam", "iTunes_CDDB"), 0, "kept"},
                                           {signItem("nam", "ITUNpgap 0"), 0, "kept"}}) {
        OpenBytes file(c.content);
        SvxStringRef field = text("kept");
        EXPECT_EQ(aacReadQuickTimeToSvxStringRef(&file.cache, 0, &field), c.result);
        EXPECT_EQ(plain(field), c.expected) << testing::PrintToString(c.content);
    }
}

TEST(Mpeg4, ReadsTextThatOverlapsOnlyInProportionToTheFile) {
    // Each item's value claims the next 500,000 bytes.
    const std::string value = bigEndian(500000 + 16) + "data" + std::string(8, '\0');
    std::string items;
    for (int i = 0; i < 10000; ++i) {
        items += atom("\xA9nam", value);
    }
    const ReadResult read = readFile(fileTypeAtom() + movieAtom(items) + std::string(600000, ' '));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(plain(read.record.mp3SongTitleString).size() / 500000, 3U); // of 840 KB and 1 MiB
}

} // namespace

} // namespace sonarin
