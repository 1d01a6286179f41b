// SPDX-License-Identifier: MIT
#include "engine/mpegFrame.h"
#include "tests/support/readFile.h"
#include "tests/support/sampleBytes.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;
using sample::id3Frame;
using sample::id3Tag;
using sample::mpegAudio;

ReadResult readFile(const std::string& content, std::uint64_t sizeOnDisk = 0) {
    return readFileAs("x.mp3", content, sizeOnDisk);
}

std::string withXing(std::size_t distance, std::uint32_t header, std::uint32_t flags, std::uint32_t frames,
                     const std::string& magic = "Xing") {
    std::string audio = mpegAudio(5000, header);
    return audio.replace(distance, 12, magic + sample::bigEndian(flags) + sample::bigEndian(frames));
}

TEST(MpegStream, ComputesTheWorkedExamples) {
    const std::string tag = id3Tag("", 1990);
    ReadResult read = readFile(tag + mpegAudio(100), 5000000);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.record.mp3SongLen, 312);
    EXPECT_EQ(read.record.mp3BitRate, 128U);
    EXPECT_EQ(read.record.mp3HasVBR, 0);

    read = readFile(tag + withXing(36, 0xFFFB9000, 0xF, 10000), 5000000);
    EXPECT_EQ(read.record.mp3SongLen, 260);
    EXPECT_EQ(read.record.mp3BitRate, 153U);
    EXPECT_EQ(read.record.mp3HasVBR, 1);

    // Only 16 bits of the duration are kept, and positions go beyond 4 GiB.
    read = readFile(mpegAudio(100, 0xFFE31000), std::uint64_t{6} << 30U);
    EXPECT_EQ(read.record.mp3BitRate, 8U);
    EXPECT_EQ(read.record.mp3SongLen, static_cast<std::uint16_t>((std::uint64_t{6} << 30U) * 8 / 1000 / 8));
}

TEST(MpegStream, DecodesHeaders) {
    struct Case {
        std::uint32_t header;
        std::uint8_t version, layer, crc, mode;
        std::vector<std::uint32_t> bitRates, samplingRates;
    };
    const std::vector<std::uint32_t> lowRates = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
    for (const Case& c : std::vector<Case>{{0xFFFB0000,
                                            3,
                                            1,
                                            1,
                                            0,
                                            {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
                                            {44100, 48000, 32000}},
                                           {0xFFFC00C0,
                                            3,
                                            2,
                                            0,
                                            3,
                                            {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
                                            {44100, 48000, 32000}},
                                           {0xFFF20040, 2, 1, 0, 1, lowRates, {22050, 24000, 16000}},
                                           {0xFFF50080, 2, 2, 1, 2, lowRates, {22050, 24000, 16000}},
                                           {0xFFE300C0, 0, 1, 1, 3, lowRates, {11025, 12000, 8000}},
                                           {0xFFE400FF, 0, 2, 0, 3, lowRates, {11025, 12000, 8000}}}) {
        for (std::uint32_t i = 0; i < c.bitRates.size(); ++i) {
            const std::uint32_t word = c.header | ((i + 1) << 12U) | ((i % 3) << 10U);
            const auto [result, r] = readFile("no header yet \xFF\xFF\xFB" + mpegAudio(1000, word));
            EXPECT_EQ(result, 0);
            EXPECT_EQ(std::tuple(r.mp3Version, r.mp3Layer, r.mp3HasCRC, r.mp3ChannelMode, r.mp3BitRate,
                                 r.mp3SamplingRate),
                      std::tuple(c.version, c.layer, c.crc, c.mode, c.bitRates[i], c.samplingRates[i % 3]))
                << std::hex << word;
        }
    }
    for (const std::uint32_t header : {0xFFFF9000U, 0xFFF99000U, 0xFFEB9000U, 0xFFFB0000U, 0xFFFBF000U,
                                       0xFFFB9C00U, 0xFFDB9000U, 0xFEFB9000U}) {
        EXPECT_EQ(readFile(mpegAudio(1000, header)).result, -1) << std::hex << header;
    }
}

TEST(MpegStream, LooksForXingWhereTheModePutsIt) {
    struct Case {
        std::uint32_t header;
        std::size_t distance;
        std::uint8_t vbr;
    };
    for (const Case& c : std::vector<Case>{{0xFFFB9000, 36, 1},
                                           {0xFFFB90C0, 21, 1},
                                           {0xFFF39000, 21, 1},
                                           {0xFFF390C0, 13, 1},
                                           {0xFFE39040, 21, 1},
                                           {0xFFE390C0, 13, 1},
                                           {0xFFFA9000, 38, 0}, // a CRC is not allowed for
                                           {0xFFFB9000, 21, 0}}) {
        EXPECT_EQ(readFile(withXing(c.distance, c.header, 1, 30)).record.mp3HasVBR, c.vbr)
            << std::hex << c.header;
    }
    EXPECT_EQ(readFile(withXing(36, 0xFFFB9000, 0xE, 30)).record.mp3HasVBR, 0);
    EXPECT_EQ(readFile(withXing(36, 0xFFFB9000, 1, 0)).record.mp3HasVBR, 0);
    EXPECT_EQ(readFile(withXing(36, 0xFFFB9000, 1, 30, "Info")).record.mp3HasVBR, 0);
    EXPECT_EQ(readFile(withXing(36, 0xFFFB9000, 1, 30).substr(0, 47)).record.mp3BitRate, 128U);
}

TEST(MpegStream, AveragesInSinglePrecision) {
    struct Case {
        std::uint32_t frames;
        std::uint64_t bytes; ///< from the header to the file's end
        std::uint32_t bitRate;
        std::uint16_t seconds;
    };
    for (const Case& c : {Case{10000, 4997964, 153, 260},
                          {21, 7200, 105, 0},   // with doubles 104
                          {35, 46400, 405, 0},  // and 406
                          {1, 56480, 17296, 0}, // and 17297, as with floats to the end
                          {0xFFFFFFFF, 4964, 0, 0},
                          {1, std::uint64_t{16} << 30U, 0xFFFFFFFF, 0}}) {
        const ReadResult read = readFile(withXing(36, 0xFFFB9000, 1, c.frames), c.bytes + 36);
        EXPECT_EQ(read.record.mp3BitRate, c.bitRate);
        EXPECT_EQ(read.record.mp3SongLen, c.seconds) << c.bitRate;
        EXPECT_EQ(read.record.mp3HasVBR, 1);
    }
}

TEST(MpegStream, ReadsID3v1OnlyWithoutID3v2Text) {
    const std::string block = "TAG" + sample::padded("v1", 125);
    for (const auto& [tag, tags] : std::vector<std::pair<std::string, std::string>>{
             {id3Tag(id3Frame("TIT2", bytes("\0v2"))), "v2|-|-|-|-|"},
             {id3Tag(id3Frame("COMM", bytes("\0note"))), "-|-|-|-|note|"},
             {id3Tag(id3Frame("TCOM", bytes("\0Bach"))), "v1|-|-|Bach|-|"},
             {id3Tag(id3Frame("TIT2", bytes("\0"))), "v1|-|-|-|-|"}, // empty is no text
             {"", "v1|-|-|-|-|"}}) {
        const audioTags record = readFile(tag + mpegAudio(1000) + block).record;
        EXPECT_EQ(tagsOf(record).substr(0, tags.size()), tags);
        EXPECT_EQ(record.mp3TagVersion, tags[0] == 'v' && tags[1] == '1' ? 1 : 3);
    }
}

TEST(MpegStream, KeepsTagsOfAFileWithoutAFrame) {
    const ReadResult read = readFile(id3Tag(id3Frame("TIT2", bytes("\0kept"))) + std::string(500, 'x'));
    EXPECT_EQ(read.result, -1);
    EXPECT_EQ(plain(read.record.mp3SongTitleString), "kept");
    EXPECT_EQ(read.record.mp3BitRate, 0U);
    for (const std::string& content :
         {std::string(), bytes("\xFF\xFB\x90"), bytes("ID3\3\0\0\x7F\x7F\x7F\x7F") + "x"}) {
        EXPECT_EQ(readFile(content).result, -1);
    }
    EXPECT_EQ(readFile(bytes("\xFF\xFB\x90\0")).result, 0);
}

/// The quick search against the plain rule, one position after the other.
TEST(MpegStream, FindsTheFirstHeaderThatIsAcceptable) {
    const auto plainSearch = [](ByteView content) {
        for (std::size_t p = 0; p + 4 <= content.size(); ++p) {
            const std::uint32_t word = bigEndian32(content, p);
            const bool sync = (word >> 21U) == 0x7FF;
            const std::uint32_t version = (word >> 19U) & 3U;
            const std::uint32_t layer = (word >> 17U) & 3U;
            const std::uint32_t rate = (word >> 12U) & 15U;
            if (sync && version != 1 && (layer == 1 || layer == 2) && rate != 0 && rate != 15 &&
                ((word >> 10U) & 3U) != 3) {
                return p;
            }
        }
        return content.size() - 3;
    };
    std::mt19937 random(7);
    constexpr std::array<std::uint8_t, 8> likely = {0xFF, 0xFF, 0xFB, 0xE2, 0xFD, 0xF0, 0x00, 0x90};
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::uint8_t> content(4 + random() % 1600);
        for (std::uint8_t& byte : content) {
            byte = round % 3 == 0 ? static_cast<std::uint8_t>(random()) : round % 3 == 1 ? 0xFF : 0x00;
        }
        for (int i = 0; i < 3; ++i) {
            content[random() % content.size()] = likely[random() % likely.size()];
        }
        ASSERT_EQ(findMpegFrameHeader(content), plainSearch(content)) << round;
    }
    // Across the end of the read buffer.
    for (std::size_t before = 65530; before < 65540; ++before) {
        EXPECT_EQ(readFile(std::string(before, 'x') + mpegAudio(1000)).record.mp3BitRate, 128U);
    }
}

} // namespace

} // namespace sonarin
