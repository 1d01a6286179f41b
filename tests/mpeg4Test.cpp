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
    const ReadResult read =
        readItems(item("\xA9nam", "Tit\xC3\xA9") +
                  item("\xA9"
                       "ART",
                       "Ann") +
                  item("\xA9"
                       "alb",
                       "Alb\x8Em") + // Mac OS Roman
                  item("\xA9wrt", "Composer") +
                  item("\xA9too", "Encoder") + item("\xA9gen", "ignored") +
                  item("\xA9"
                       "cmt",
                       "one") +
                  item("\xA9"
                       "cmt",
                       "itunsmpb 0") +
                  item("\xA9"
                       "cmt",
                       "xiTunNORM") +
                  item("\xA9"
                       "cmt",
                       "") +
                  item("desc", "about") + item("\xA9lyr", "la") +
                  item("\xA9"
                       "day",
                       "2009-07-01T07:00:00Z") +
                  item("gnre", bigEndian(18, 2)) + item("trkn", bytes("\0\0\0\3\0\14\0\0")) +
                  item("covr", "\xFF\xD8\xFF\xE0" + std::string(200, 'j')));
    const audioTags& r = read.record;
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(plain(r.mp3SongTitleString), "Tité");
    EXPECT_EQ(plain(r.mp3ArtistString), "Ann");
    EXPECT_EQ(plain(r.mp3AlbumString), "Albém");
    EXPECT_EQ(plain(r.mp3ComposerString), "Composer");
    EXPECT_EQ(plain(r.mp3EncoderAppString), "Encoder");
    EXPECT_EQ(plain(r.mp3CommentString), "one xiTunNORM ");
    EXPECT_EQ(plain(r.mp3LyricsString), "about la");
    EXPECT_EQ(r.mp3Year, 2009);
    EXPECT_EQ(r.mp3Genre, 18);
    EXPECT_EQ(plain(r.mp3Genre2String), "Rock");
    EXPECT_EQ(r.mp3TheTrack, 3);
    EXPECT_EQ(r.mp3TrackAmount, 12);
    EXPECT_EQ(r.mp3CoverArt.size(), 204U);
    EXPECT_EQ(r.mp3CoverArtType, fourCC("JPEG"));
    EXPECT_EQ(r.mp3TagVersion, 0);
}

TEST(Mpeg4, TakesNumbersUnchecked) {
    EXPECT_EQ(readItems(item("\xA9"
                             "day",
                             "abcd"))
                  .record.mp3Year,
              49 * 1000 + 50 * 100 + 51 * 10 + 52);
    const ReadResult large = readItems(item("gnre", bigEndian(0xFFFE, 2)));
    EXPECT_EQ(large.record.mp3Genre, -2);
    EXPECT_FALSE(large.record.mp3Genre2String);
    EXPECT_FALSE(
        readItems(item("gnre", bigEndian(5, 2)) + item("gnre", bigEndian(127, 2))).record.mp3Genre2String);
}

TEST(Mpeg4, FindsTheMovieWhereverItIs) {
    const std::string movie = movieAtom(item("\xA9nam", "here"));
    const std::string mdat(70000, 'm');
    for (const std::string& file :
         {fileTypeAtom() + movie + atom("mdat", mdat), fileTypeAtom() + atom("mdat", mdat) + movie,
          fileTypeAtom() + longAtom("mdat", mdat) + movie, fileTypeAtom() + bytes("\0\0\0\6zz") + movie}) {
        EXPECT_EQ(plain(readFile(file).record.mp3SongTitleString), "here");
    }
    // Missing children are looked for beyond their parent.
    const std::string list =
        atom("udta", atom("meta", bytes("\0\0\0\0") + atom("ilst", item("\xA9nam", "far"))));
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
    // The atom behind the list is not taken for an item.
    const std::string title = item("\xA9nam", "in");
    const std::string list = atom("ilst", title) + item("\xA9"
                                                        "ART",
                                                        "out");
    const std::string movie = atom("moov", atom("mvhd", std::string(100, '\0')) +
                                               atom("udta", atom("meta", bytes("\0\0\0\0") + list)));
    const ReadResult read = readFile(fileTypeAtom() + movie);
    EXPECT_EQ(plain(read.record.mp3SongTitleString), "in");
    EXPECT_FALSE(read.record.mp3ArtistString);

    // An item of size 0 is handled once; sizes of 1 to 7 lead on, byte by byte.
    std::string endless = title;
    endless.replace(0, 4, 4, '\0');
    EXPECT_EQ(plain(readItems(endless + item("\xA9"
                                             "ART",
                                             "no"))
                        .record.mp3SongTitleString),
              "in");
    EXPECT_FALSE(readItems(endless + item("\xA9"
                                          "ART",
                                          "no"))
                     .record.mp3ArtistString);
    EXPECT_EQ(plain(readItems(bytes("\0\0\0\4") + title).record.mp3SongTitleString), "in");

    // What cannot be read ends the walk for numbers, not for texts.
    const std::string cut = fileTypeAtom() + movieAtom(item("\xA9nam", "kept") + item("\xA9"
                                                                                      "day",
                                                                                      "2009"));
    EXPECT_EQ(readFile(withoutLast(cut, 1)).result, 0);
    EXPECT_EQ(readFile(withoutLast(cut, 1)).record.mp3Year, 0);
    EXPECT_EQ(plain(readFile(withoutLast(cut, 1)).record.mp3SongTitleString), "kept");
    std::string claim = item("\xA9nam", "text");
    claim.replace(8, 4, bigEndian(0xFFFFFFFF));
    EXPECT_EQ(plain(readItems(claim + title).record.mp3SongTitleString), "in");
    claim.replace(8, 4, bigEndian(15));
    EXPECT_EQ(plain(readItems(claim + title).record.mp3SongTitleString), "in");
}

TEST(Mpeg4, ReadsTheTextOfOneItem) {
    struct Case {
        std::string content;
        std::int32_t result;
        std::string expected;
    };
    const std::string wanted = item("\xA9nam", "text");
    const std::string empty = item("\xA9nam", "");
    for (const Case& c : std::vector<Case>{{wanted, 0, "kept text"},
                                           {withoutLast(wanted, 1), fileEofErr, "kept"},
                                           {empty, 0, "kept "},
                                           {withoutLast(empty, 8), 0, "kept "}, // nothing is left to be read
                                           {withoutLast(empty, 9), fileEofErr, "kept"},
                                           {item("\xA9nam", "xx").replace(8, 4, bigEndian(15)), -2, "kept"},
                                           {item("\xA9nam", "xx").replace(8, 4, bigEndian(0)), -2, "kept"},
                                           {item("\xA9nam", "iTunes_CDDB"), 0, "kept"},
                                           {item("\xA9nam", "ITUNpgap 0"), 0, "kept"}}) {
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
