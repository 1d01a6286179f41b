// SPDX-License-Identifier: MIT
#include "engine/miAIFF.h"
#include "tests/support/readFile.h"
#include "tests/support/sampleBytes.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;
using sample::commonChunk;
using sample::formatChunk;
using sample::id3Frame;
using sample::id3Tag;
using sample::iffChunk;
using sample::iffForm;
using sample::littleEndian;
using sample::riffChunk;
using sample::riffForm;
using sample::WaveFields;

const std::string rate44100 = bytes("\x40\x0E\xAC\x44\0\0\0\0\0\0");
const std::string soundData = riffChunk("data", std::string(100, '\0'));

ReadResult readWave(const std::string& chunks, std::uint32_t formSize = 1764036) {
    return readFileAs("x.wav", riffForm(chunks, formSize));
}

ReadResult readAiff(const std::string& content) {
    return readFileAs("x.aiff", content);
}

TEST(Wave, ReadsPCMAndCompressedFormatsWithTheirFact) {
    struct Case {
        std::int32_t result;
        WaveFields fields;
        std::string fact;
        std::uint32_t formSize;
        std::uint32_t rate;
        std::uint16_t seconds;
        std::uint8_t mode;
    };
    constexpr std::uint8_t mono = 3;
    const std::string fact = riffChunk("fact", littleEndian(441000));
    for (const Case& c : std::vector<Case>{
             {0, {1, 2, 9, 176400, 16}, "", 1764036, 44100, 10, 0},
             {0, {1, 1, 9, 22050, 8}, "", 1764036, 22050, 80, mono},
             {0, {1, 2, 9, 288000, 24}, "", 287999, 48000, 0, 0},
             {0, {1, 1, 9, 384000, 32}, "", 384000, 96000, 1, mono},
             {0, {1, 3, 9, 100, 16}, "", 65537 * 100, 16, 1, 0}, // 16 bits of seconds
             {0, {1, 2, 44100, 132300, 12}, "", 1764036, 0, 13, 0},
             {0, {1, 0, 44100, 176400, 16}, "", 1764036, 0, 10, 0},
             {0, {1, 0xFFFF, 44100, 176400, 16}, "", 1764036, 1, 10, 0},
             {0, {1, 2, 44100, 0, 16}, "", 1764036, 0, 0, 0},
             {0, {0x11, 2, 44100, 44359, 4}, fact, 0, 44359, 10, 0}, // by the format's own rate
             {0, {6, 1, 0, 8000, 8}, riffChunk("fact", littleEndian(80000)), 0, 8000, 10, mono}, // worked out
             {0, {6, 0, 0, 8000, 0}, fact, 0, 0, 0, 0},
             {-1, {0xFFFE, 1, 44100, 88200, 16}, "", 0, 44100, 0, mono}}) { // what was found stays
        const ReadResult read =
            readWave(riffChunk("JUNK", "1234") + formatChunk(c.fields) + c.fact + soundData, c.formSize);
        EXPECT_EQ(std::tuple(read.result, read.record.mp3SamplingRate, read.record.mp3SongLen,
                             read.record.mp3ChannelMode, read.record.mp3BitRate),
                  std::tuple(c.result, c.rate, c.seconds, c.mode, 0U))
            << c.fields.bytesPerSecond;
    }
    const std::string compressed = formatChunk({0xFFFE, 1, 44100, 88200, 16});
    for (const std::string& chunks : {fact + compressed + soundData, fact + soundData}) {
        EXPECT_EQ(readWave(chunks).result, -1);
    }
}

TEST(Wave, EndsItsWalkAtTheEndOfTheFile) {
    const std::string format = formatChunk({});
    for (const auto& [chunks, result] : std::vector<std::pair<std::string, std::int32_t>>{
             {riffChunk("odd ", "123") + format, 0}, // no pad byte
             {riffChunk("odd ", "123") + std::string(1, '\0') + format, -1},
             {"huge" + littleEndian(0xFFFFFFFF) + format, -1},
             {format.substr(0, 23), -1},
             {formatChunk({0x11}) + riffChunk("fact", "1234").substr(0, 11), -1}}) {
        EXPECT_EQ(readWave(chunks).result, result) << testing::PrintToString(chunks);
    }
    for (const std::string& content :
         {std::string(), std::string("RIFF"), std::string("RIFFxxxxWAV"),
          "RIFX" + riffForm(format, 0).substr(4), riffForm(format, 0).replace(8, 4, "WAVX")}) {
        EXPECT_EQ(readFileAs("x.wav", content).result, -1);
    }
}

TEST(Aiff, ReadsTheCommonChunk) {
    struct Case {
        std::string form;
        std::uint16_t channels, bits;
        std::string rate;
        std::string compression;
        std::uint32_t formSize;
        std::uint32_t expectedRate;
        std::uint16_t seconds;
        std::uint8_t mode;
    };
    const std::string infinite = bytes("\x7F\xFF\x80\0\0\0\0\0\0\0");
    const std::string minus = bytes("\xC0\x0E\xAC\x44\0\0\0\0\0\0");
    const std::string old = bytes("\x40\x0D\xAD\xDD\x17\x46\0\0\0\0"); // 22254.5454 Hz
    for (const Case& c :
         std::vector<Case>{{"AIFF", 2, 16, rate44100, "", 0, 44100, 10, 0},
                           {"AIFF", 1, 8, old, "", 0, 22254, 19, 3},
                           {"AIFF", 6, 24, rate44100, "", 0, 44100, 10, 0},
                           {"AIFF", 2, 16, infinite, "", 0, 0xFFFFFFFF, 0, 0},
                           {"AIFF", 2, 16, minus, "", 0, 0, 0, 0},
                           {"AIFF", 2, 16, std::string(10, '\0'), "", 0, 0, 0, 0},
                           {"AIFC", 2, 16, rate44100, "ima4", 441000, 44100, 10, 0},
                           {"AIFC", 1, 8, rate44100, "alaw", 441000, 44100, 20, 3},
                           {"AIFC", 1, 8, rate44100, "ulaw", 441000, 44100, 20, 3},
                           {"AIFC", 1, 8, rate44100, "cdx2", 441000, 44100, 20, 3},
                           {"AIFC", 1, 8, rate44100, "cdx4", 441000, 44100, 40, 3},
                           {"AIFC", 1, 8, rate44100, "MAC3", 441000, 44100, 30, 3},
                           {"AIFC", 1, 8, rate44100, "MAC6", 441000, 44100, 60, 3},
                           {"AIFC", 2, 16, rate44100, "NONE", 1764000, 44100, 10, 0},
                           {"AIFC", 1, 8, rate44100, "ima4", 0x40000001, 44100, 0, 3}, // 4 in 32 bits
                           {"AIFC", 0, 8, rate44100, "NONE", 441000, 44100, 0, 0},
                           {"AIFC", 0xFFFF, 8, rate44100, "NONE", 0xFFFFFFFF, 44100, 1, 0}}) {
        const std::string common =
            commonChunk(c.channels, 441000, c.bits, c.rate, sample::padded(c.compression, 4));
        const ReadResult read = readAiff(iffForm(c.form, iffChunk("FVER", "1234") + common, c.formSize));
        EXPECT_EQ(std::tuple(read.result, read.record.mp3SamplingRate, read.record.mp3SongLen,
                             read.record.mp3ChannelMode, read.record.mp3BitRate),
                  std::tuple(0, c.expectedRate, c.seconds, c.mode, 0U))
            << c.form << c.compression << c.channels;
    }
}

TEST(Aiff, ReadsTagsBeforeAndBehindTheCommonChunk) {
    const std::string common = commonChunk(1, 441000, 16, rate44100);
    const std::string tag = iffChunk("ID3 ", id3Tag(id3Frame("TIT2", bytes("\0Title"))));
    const std::string end = iffChunk("SSND", std::string(100, '\0'));
    for (const std::string& chunks : {tag + common + end, common + tag + end, common + end + tag}) {
        const ReadResult read = readAiff(iffForm("AIFF", chunks));
        EXPECT_EQ(read.result, 0);
        EXPECT_EQ(read.record.mp3SongLen, 10);
        EXPECT_EQ(read.record.mp3TagVersion, 3);
        EXPECT_EQ(plain(read.record.mp3SongTitleString), "Title");
    }
    const ReadResult withoutSound = readAiff(iffForm("AIFF", tag + end));
    EXPECT_EQ(withoutSound.result, -1);
    EXPECT_EQ(plain(withoutSound.record.mp3SongTitleString), "Title");
    EXPECT_EQ(withoutSound.record.mp3SamplingRate, 0U);
}

TEST(Aiff, FailsOnWhatItCannotReadToTheEnd) {
    const std::string common = commonChunk(1, 441000, 16, rate44100);
    const std::string brief = commonChunk(1, 441000, 16, rate44100, "");
    for (const auto& [content, result] : std::vector<std::pair<std::string, std::int32_t>>{
             {iffForm("AIFF", brief), -1}, // four more bytes are read than the chunk has
             {iffForm("AIFF", brief + iffChunk("SSND", "12345678")), 0},
             {iffForm("AIFF", common + brief), -1},
             {iffForm("AIFF", common + iffChunk("COMM", "")), 0},   // eight bytes are no chunk,
             {iffForm("AIFF", common + iffChunk("COMM", "c")), -1}, // nine are a cut one
             {iffForm("AIFF", common + "huge\xFF\xFF\xFF\xFF" + std::string(20, 'x')), 0},
             {iffForm("AIFX", common), -1},
             {"FORM", -1}}) {
        EXPECT_EQ(readAiff(content).result, result) << testing::PrintToString(content);
    }
}

TEST(Aiff, FillsWhatIsGiven) {
    const TestFolder folder;
    const std::string tag = iffChunk("ID3 ", id3Tag(id3Frame("TIT2", bytes("\0Title"))));
    const SvxStringRef path =
        text(folder.write("x", iffForm("AIFF", tag + commonChunk(1, 7, 24, rate44100))));
    miAudioInfo info;
    audioTags record;
    EXPECT_TRUE(miGetAIFFInfo(path, nullptr, nullptr));
    EXPECT_TRUE(miGetAIFFInfo(path, &info, nullptr));
    EXPECT_EQ(info.sampleSize, 24U);
    EXPECT_TRUE(miGetAIFFInfo(path, nullptr, &record));
    EXPECT_EQ(plain(record.mp3SongTitleString), "Title");
}

TEST(Aiff, ReadsTagsThatOverlapOnlyInProportionToTheFile) {
    // Each tag has one frame that reaches far behind its chunk.
    const std::string frame = "TIT2" + sample::bigEndian(30000) + std::string(2, '\0');
    const std::string chunk = iffChunk("ID3 ", bytes("ID3\3\0\0\x7F\x7F\x7F\x7F") + frame);
    std::string chunks;
    for (int i = 0; i < 2000; ++i) {
        chunks += chunk;
    }
    const ReadResult read = readAiff(iffForm("AIFF", chunks + std::string(40000, 'x')));
    EXPECT_GT(SvxStringGetLength(read.record.mp3SongTitleString), 29999);
    EXPECT_LT(SvxStringGetLength(read.record.mp3SongTitleString), 4000000);

    // Tags that keep to their chunks are all read, however laborious their texts.
    std::string comments;
    for (int i = 0; i < 25; ++i) {
        comments += id3Frame("COMM", bytes("\0eng\0") + std::string(65539, 'b') + bytes("\xFF\0"));
    }
    const std::string last = iffChunk("ID3 ", id3Tag(id3Frame("TIT2", bytes("\0last"))));
    const ReadResult honest = readAiff(iffForm("AIFF", iffChunk("ID3 ", id3Tag(comments)) + last));
    EXPECT_EQ(plain(honest.record.mp3SongTitleString), "last");
}

TEST(IeeeExtended, ConvertsTheTenBytes) {
    struct Case {
        std::string bytes;
        double value;
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const Case& c :
         std::vector<Case>{{rate44100, 44100.0},
                           {std::string(10, '\0'), 0.0},
                           {bytes("\x7F\xFF\0\0\0\0\0\0\0\1"), infinity},
                           {bytes("\xFF\xFF\x12\x34\0\0\0\0\0\0"), -infinity},
                           {bytes("\x7F\xFE\xFF\xFF\xFF\xFF\0\0\0\0"), infinity}, // beyond a double
                           {bytes("\xBF\xFE\x80\0\0\0\0\0\0\0"), -0.5},
                           {bytes("\x40\x1E\x80\0\0\0\x80\0\0\0"), 2147483648.5}}) {
        const ByteView view(reinterpret_cast<const std::uint8_t*>(c.bytes.data()),
                            10); // NOLINT(*-reinterpret-cast)
        EXPECT_EQ(ConvertFromIeeeExtended(view), c.value);
    }
}

} // namespace

} // namespace sonarin
