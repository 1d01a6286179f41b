// SPDX-License-Identifier: MIT
#include "engine/mpegFile.h"
#include "engine/mpegFrame.h"
#include "tests/support/readBytes.h"

#include <tuple>

namespace sonarin {

namespace {

using namespace sample;
using namespace std::string_literals;

std::string mpegFacts(const std::string& content) {
    return factsOf(readFileAs("x.mp3", content));
}

std::string withXing(std::uint32_t frames, std::uint32_t header = 0xFFFB9000, std::size_t distance = 36,
                     std::uint32_t flags = 1, const std::string& magic = "Xing") {
    return mpegAudio(5000, header).replace(distance, 12, magic + bigEndian(flags) + bigEndian(frames));
}

TEST(MpegStream, AveragesInSinglePrecision) {
    const std::string tag = id3Tag("", 1990);
    EXPECT_EQ(lengthOf(tag + mpegAudio(100), 5000000), "312 s of 128 kbit/s");
    EXPECT_EQ(lengthOf(tag + withXing(10000, 0xFFFB9000, 36, 0xF), 5000000), "260 s of ~153 kbit/s");
    // Only 16 bits of the duration are kept, and positions go beyond 4 GiB.
    EXPECT_EQ(lengthOf(mpegAudio(100, 0xFFE31000), std::uint64_t{6} << 30U), "19922 s of 8 kbit/s");
    EXPECT_EQ(lengthOf(withXing(21), 7236), "0 s of ~105 kbit/s");  // with doubles 104
    EXPECT_EQ(lengthOf(withXing(35), 46436), "0 s of ~405 kbit/s"); // and 406
    EXPECT_EQ(lengthOf(withXing(1), 56516),
              "0 s of ~17296 kbit/s"); // and 17297, as with floats to the end
    EXPECT_EQ(lengthOf(withXing(0xFFFFFFFF), 5000), "0 s of ~0 kbit/s");
    EXPECT_EQ(lengthOf(withXing(1), std::uint64_t{16} << 30U), "0 s of ~4294967295 kbit/s");
}

TEST(MpegStream, DecodesHeaders) {
    using Numbers = std::vector<std::uint32_t>;
    const Numbers layer2 = {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
    const Numbers layer3 = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
    const Numbers low = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
    for (const auto& [header, facts, bitRates, samplingRates] :
         std::vector<std::tuple<std::uint32_t, std::string, Numbers, Numbers>>{
             {0xFFFB0000, " version=3 layer=1 crc=1", layer3, {44100, 48000, 32000}},
             {0xFFFC00C0, " mode=3 version=3 layer=2", layer2, {44100, 48000, 32000}},
             {0xFFF20340, " mode=1 version=2 layer=1", low, {22050, 24000, 16000}},
             {0xFFF50080, " mode=2 version=2 layer=2 crc=1", low, {22050, 24000, 16000}},
             {0xFFE300C0, " mode=3 layer=1 crc=1", low, {11025, 12000, 8000}},
             {0xFFE400FF, " mode=3 layer=2", low, {11025, 12000, 8000}}}) {
        for (std::uint32_t i = 0; i < bitRates.size(); ++i) {
            const std::uint32_t word = header | ((i + 1) << 12U) | ((i % 3) << 10U);
            EXPECT_EQ(mpegFacts("no header yet \xFF\xFF\xFB" + mpegAudio(500, word)),
                      " kbit=" + std::to_string(bitRates[i]) +
                          " rate=" + std::to_string(samplingRates[i % 3]) + facts);
        }
    }
    for (const std::uint32_t header : {0xFFFF9000U, 0xFFF99000U, 0xFFEB9000U, 0xFFFB0000U, 0xFFFBF000U,
                                       0xFFFB9C00U, 0xFFDB9000U, 0xFEFB9000U}) {
        EXPECT_EQ(mpegFacts(mpegAudio(1000, header)), " result=-1") << std::hex << header;
    }
}

TEST(MpegStream, LooksForXingWhereTheModePutsIt) {
    expectEach([](const std::string& content) { return lengthOf(content); },
               {{"0 s of ~50 kbit/s", {withXing(30), withXing(30, 0xFFFB90C0, 21)}},
                {"0 s of ~25 kbit/s", {withXing(30, 0xFFF39000, 21), withXing(30, 0xFFF390C0, 13)}},
                {"2 s of ~12 kbit/s", {withXing(30, 0xFFE39040, 21), withXing(30, 0xFFE390C0, 13)}},
                {"0 s of 128 kbit/s",
                 {withXing(30, 0xFFFA9000, 38), // a CRC is not allowed for
                  withXing(30, 0xFFFB9000, 21), withXing(30, 0xFFFB9000, 36, 0xE), withXing(0),
                  withXing(30, 0xFFFB9000, 36, 1, "Info"), withXing(30).substr(0, 47)}}});
}

TEST(MpegStream, KeepsTagsAndReadsID3v1OnlyWithoutID3v2Text) {
    const std::string rest = mpegAudio(1000) + "TAG" + padded("v1", 125);
    const std::string facts = " kbit=128 rate=44100 version=3 layer=1 crc=1";
    const std::string title = id3Tag(textFrame("TIT2", "v2"));
    expectEach(mpegFacts, {{facts + " tag=3 title=v2", {title + rest}},
                           {facts + " tag=3 comment=note", {id3Tag(textFrame("COMM", "note")) + rest}},
                           {facts + " tag=3 title=note artist=note",
                            {id3Tag(textFrame("TIT2", "note") + textFrame("TPE1", "note")) + rest}},
                           {facts + " tag=3 album=note comment=note",
                            {id3Tag(textFrame("TALB", "note") + textFrame("COMM", "note")) + rest}},
                           {facts + " tag=1 title=v1 composer=Bach genre=Blues",
                            {id3Tag(textFrame("TCOM", "Bach")) + rest}},
                           {facts + " tag=1 title=v1 genre=Blues",
                            {rest, id3Tag(textFrame("TIT2", "")) + rest}}, // empty is no text
                           {" result=-1 tag=3 title=v2", {title + std::string(500, 'x')}},
                           {" result=-1", {"", "\xFF\xFB\x90"}},
                           {" result=-1 tag=3", {"ID3\3\0\0\x7F\x7F\x7F\x7Fx"s}},
                           {facts, {"\xFF\xFB\x90\0"s}}});
}

TEST(MpegStream, StoresWhetherItsRateVaries) {
    const TestFolder folder;
    for (const auto& [content, varies] : {std::pair(withXing(30), 1), {mpegAudio(100), 0}}) {
        audioTags record;
        record.mp3HasVBR = 9;
        EXPECT_EQ(mp3GetFileInfo(text(folder.write("x", content)), &record), 1);
        EXPECT_EQ(record.mp3HasVBR, varies);
    }
}

/// The quick search looks at blocks, and at more than two bytes only where these may begin a header.
TEST(MpegStream, FindsTheFirstHeaderThatIsAcceptable) {
    for (const std::string& fill : {"\0"s, "\xFF"s, "\xFF\xFB\xF0"s, "\xFF\xE1\x90\xFF\xFE"s}) {
        for (const std::uint32_t header : {0xFFE21000U, 0xFFE51000U, 0xFFF2A000U, 0xFFFB9000U, 0xFFFDE000U}) {
            for (std::size_t before = 0; before < 600; ++before) {
                const std::string start = repeated(before / fill.size() + 1, fill).substr(0, before);
                const std::string content = start + bigEndian(header) + std::string(before % 7, '\0');
                ASSERT_EQ(findMpegFrameHeader(viewOf(content)), before) << std::hex << header;
                const std::string cut = 'z' + content.substr(0, before + 3);
                ASSERT_EQ(findMpegFrameHeader(viewOf(cut)), before + 1) << std::hex << header;
            }
        }
    }
    // Across the end of the read buffer.
    for (std::size_t before = 65530; before < 65540; ++before) {
        EXPECT_EQ(readFileAs("x.mp3", std::string(before, 'x') + mpegAudio(1000)).record.mp3BitRate, 128U);
    }
}

} // namespace

} // namespace sonarin
