// SPDX-License-Identifier: MIT
#include "engine/miAIFF.h"
#include "engine/miWAVE.h"
#include "tests/support/readBytes.h"

namespace sonarin {

namespace {

using namespace sample;
using namespace std::string_literals;

const std::string rate44100 = "\x40\x0E\xAC\x44\0\0\0\0\0\0"s;
const std::string tagChunk = iffChunk("ID3 ", id3Tag(textFrame("TIT2", "Title")));

std::string waveFacts(const std::string& content) {
    return factsOf(readFileAs("x.wav", content));
}

std::string aiffFacts(const std::string& content) {
    return factsOf(readFileAs("x.aiff", content));
}

TEST(Wave, ReadsPCMAndCompressedFormatsWithTheirFact) {
    const std::string sound = riffChunk("data", std::string(100, '\0'));
    const std::string fact = riffChunk("fact", littleEndian(441000));
    const auto wave = [&](const WaveFields& fields, std::uint32_t formSize = 1764036,
                          const std::string& behind = "") {
        return riffForm(riffChunk("JUNK", "1234") + formatChunk(fields) + behind + sound, formSize);
    };
    const WaveFields other = {0xFFFE, 1, 44100, 88200, 16};
    expectEach(
        waveFacts,
        {{" seconds=10 rate=44100", {wave({1, 2, 9, 176400, 16})}},
         {" seconds=80 rate=22050 mode=3", {wave({1, 1, 9, 22050, 8})}},
         {" rate=48000", {wave({1, 2, 9, 288000, 24}, 287999)}},
         {" seconds=1 rate=96000 mode=3", {wave({1, 1, 9, 384000, 32}, 384000)}},
         {" seconds=1 rate=16", {wave({1, 3, 9, 100, 16}, 65537 * 100)}}, // 16 bits of seconds
         {" seconds=13", {wave({1, 2, 44100, 132300, 12})}},
         {" seconds=10", {wave({1, 0, 44100, 176400, 16})}},
         {" seconds=10 rate=1", {wave({1, 0xFFFF, 44100, 176400, 16})}},
         {"", {wave({1, 2, 44100, 0, 16}), wave({6, 0, 0, 8000, 0}, 0, fact)}},
         {" seconds=10 rate=44359", {wave({0x11, 2, 44100, 44359, 4}, 0, fact)}}, // by the format's own rate
         // worked out
         {" seconds=10 rate=8000 mode=3",
          {wave({6, 1, 0, 8000, 8}, 0, riffChunk("fact", littleEndian(80000)))}},
         // what was found stays
         {" result=-1 rate=44100 mode=3", {wave(other, 0), riffForm(fact + formatChunk(other) + sound, 0)}},
         {" result=-1", {riffForm(fact + sound, 0)}}});
}

TEST(Wave, EndsItsWalkAtTheEndOfTheFile) {
    const std::string format = formatChunk({});
    const std::string odd = riffChunk("odd ", "123");
    const std::string cutFact = riffChunk("fact", "1234").substr(0, 11);
    expectEach(waveFacts,
               {{" seconds=10 rate=44100", {riffForm(odd + format, 1764036)}}, // no pad byte
                {" result=-1",
                 {riffForm(odd + '\0' + format, 0), riffForm("huge\xFF\xFF\xFF\xFF" + format, 0),
                  riffForm(format.substr(0, 23), 0), "", "RIFF", "RIFFxxxxWAV",
                  "RIFX" + riffForm(format, 0).substr(4), riffForm(format, 0).replace(8, 4, "WAVX")}},
                {" result=-1 rate=44100", {riffForm(formatChunk({0x11}) + cutFact, 0)}}});
}

TEST(Aiff, ReadsTheCommonChunk) {
    const auto plain = [](std::uint16_t channels, std::uint16_t bits, const std::string& rate) {
        return iffForm("AIFF", iffChunk("FVER", "1234") + commonChunk(channels, 441000, bits, rate));
    };
    const auto compressed = [](std::uint16_t channels, std::uint16_t bits, const std::string& type,
                               std::uint32_t formSize) {
        return iffForm("AIFC", commonChunk(channels, 441000, bits, rate44100, type), formSize);
    };
    const std::string infinite = "\x7F\xFF\x80\0\0\0\0\0\0\0"s;
    const std::string minus = "\xC0\x0E\xAC\x44\0\0\0\0\0\0"s;
    const std::string old = "\x40\x0D\xAD\xDD\x17\x46\0\0\0\0"s; // 22254.5454 Hz
    expectEach(aiffFacts, {{" seconds=10 rate=44100",
                            {plain(2, 16, rate44100), plain(6, 24, rate44100),
                             compressed(2, 16, "ima4", 441000), compressed(2, 16, "NONE", 1764000)}},
                           {" seconds=19 rate=22254 mode=3", {plain(1, 8, old)}},
                           {" rate=4294967295", {plain(2, 16, infinite)}},
                           {"", {plain(2, 16, minus), plain(2, 16, std::string(10, '\0'))}},
                           {" seconds=20 rate=44100 mode=3",
                            {compressed(1, 8, "alaw", 441000), compressed(1, 8, "ulaw", 441000),
                             compressed(1, 8, "cdx2", 441000)}},
                           {" seconds=30 rate=44100 mode=3", {compressed(1, 8, "MAC3", 441000)}},
                           {" seconds=40 rate=44100 mode=3", {compressed(1, 8, "cdx4", 441000)}},
                           {" seconds=60 rate=44100 mode=3", {compressed(1, 8, "MAC6", 441000)}},
                           {" rate=44100 mode=3", {compressed(1, 8, "ima4", 0x40000001)}}, // 4 in 32 bits
                           {" rate=44100", {compressed(0, 8, "NONE", 441000)}},
                           {" seconds=1 rate=44100", {compressed(0xFFFF, 8, "NONE", 0xFFFFFFFF)}}});
}

TEST(Aiff, ReadsTagsOnBothSidesAndFailsOnWhatItCannotReadToTheEnd) {
    const std::string common = commonChunk(1, 441000, 16, rate44100);
    const std::string brief = commonChunk(1, 441000, 16, rate44100, "");
    const std::string sound = iffChunk("SSND", "12345678");
    const auto aiff = [](const std::string& chunks) { return iffForm("AIFF", chunks); };
    expectEach(aiffFacts,
               {{" seconds=10 rate=44100 mode=3 tag=3 title=Title",
                 {aiff(tagChunk + common + sound), aiff(common + tagChunk + sound),
                  aiff(common + sound + tagChunk)}},
                {" result=-1 tag=3 title=Title", {aiff(tagChunk + sound)}},
                {" seconds=10 rate=44100 mode=3",
                 {aiff(brief + sound), aiff(common + iffChunk("COMM", "")), // eight bytes are no chunk
                  aiff(common + "huge\xFF\xFF\xFF\xFF" + std::string(20, 'x'))}},
                {" result=-1",
                 {aiff(brief), // four more bytes are read than the chunk has
                  aiff(common + brief), aiff(common + iffChunk("COMM", "c")), // nine bytes are a cut one
                  iffForm("AIFX", common), iffForm("AIFF", common).replace(0, 1, "f"), "FORM"}}});
}

TEST(ChunkFormats, FillWhatIsGiven) {
    const TestFolder folder;
    const std::string content = iffForm("AIFF", tagChunk + commonChunk(1, 7, 24, rate44100));
    const SvxStringRef path = text(folder.write("x", content));
    miAudioInfo info;
    audioTags record;
    EXPECT_TRUE(miGetAIFFInfo(path, nullptr, nullptr));
    EXPECT_TRUE(miGetAIFFInfo(path, &info, nullptr));
    EXPECT_EQ(info.sampleSize, 24U);
    EXPECT_FALSE(miGetWAVInfo(path, &info));
    EXPECT_EQ(info.sampleSize, 0U);
    const std::string wave = formatChunk({0x11, 2, 44100, 44359, 4}) + riffChunk("fact", littleEndian(1));
    EXPECT_TRUE(miGetWAVInfo(text(folder.write("y", riffForm(wave, 0))), &info));
    EXPECT_EQ(info.sampleSize, 16U);
    EXPECT_TRUE(miGetAIFFInfo(path, nullptr, &record));
    EXPECT_EQ(factsOf(record), " tag=3 title=Title");
}

TEST(Aiff, ReadsTagsThatOverlapOnlyInProportionToTheFile) {
    // Each tag has one frame that reaches far behind its chunk.
    const std::string frame = "TIT2" + bigEndian(30000) + std::string(2, '\0');
    const std::string chunk = iffChunk("ID3 ", "ID3\3\0\0\x7F\x7F\x7F\x7F"s + frame);
    const ReadResult read =
        readFileAs("x.aiff", iffForm("AIFF", repeated(2000, chunk) + std::string(40000, 'x')));
    EXPECT_GT(SvxStringGetLength(read.record.mp3SongTitleString), 29999);
    EXPECT_LT(SvxStringGetLength(read.record.mp3SongTitleString), 4000000);

    // Tags that keep to their chunks are all read, however laborious their texts.
    const std::string comment = id3Frame("COMM", "\0eng\0"s + std::string(65539, 'b') + "\xFF\0"s);
    const std::string chunks = iffChunk("ID3 ", id3Tag(repeated(25, comment))) + tagChunk;
    EXPECT_EQ(plain(readFileAs("x.aiff", iffForm("AIFF", chunks)).record.mp3SongTitleString), "Title");
}

TEST(IeeeExtended, ConvertsTheTenBytes) {
    const auto convert = [](const std::string& bytes) {
        return std::to_string(ConvertFromIeeeExtended(viewOf(bytes)));
    };
    expectRows(convert, {"\x40\x0E\xAC\x44\0\0\0\0\0\0 -> 44100.000000"s, "\0\0\0\0\0\0\0\0\0\0 -> 0.000000"s,
                         "\xBF\xFE\x80\0\0\0\0\0\0\0 -> -0.500000"s,
                         "\x40\x1E\x80\0\0\0\x80\0\0\0 -> 2147483648.500000"s,
                         "\x7F\xFF\0\0\0\0\0\0\0\1 -> inf"s, "\xFF\xFF\x12\x34\0\0\0\0\0\0 -> -inf"s,
                         "\x7F\xFE\xFF\xFF\xFF\xFF\0\0\0\0 -> inf"s}); // beyond a double
}

} // namespace

} // namespace sonarin
