// SPDX-License-Identifier: MIT
#include "engine/id3frameText.h"
#include "engine/id3picture.h"
#include "tests/support/readBytes.h"
#include "tests/support/readFile.h"
#include "tests/support/sampleBytes.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <vector>

namespace sonarin {

namespace {

using sample::bytes;
using sample::utf16;

/// Decodes a frame's content, the bytes behind its encoding byte; `next` follows it in the file.
std::string decode(const std::string& content, const std::string& before = {}, const std::string& next = "X",
                   std::uint32_t bufferSize = rcStandardBufferSize) {
    OpenBytes file("?" + content + next, bufferSize);
    SvxStringRef field = before.empty() ? nullptr : text(before);
    mp3ReadSvxStringFromFile(&file.cache, 1, static_cast<std::uint32_t>(content.size() + 1), &field);
    return plain(field);
}

TEST(FrameText, IsRecognisedByItsBytes) {
    struct Case {
        std::string content;
        std::string expected;
    };
    const std::string mark = "\xFF\xFE";
    const std::string absent = "(absent)";
    for (const Case& c : std::vector<Case>{
             {"Hello", "Hello"},
             {bytes("Hello\0"), "Hello"},
             {bytes("Hello\0\0"), bytes("Hello\0")},
             {"", ""},
             {bytes("\0"), bytes("\0")}, // the terminator is dropped from three bytes on
             {bytes("a\0"), "a"},
             {"Caf\xE9", absent},
             {"Caf\xC3\xA9", absent},
             {"english", "lis"},
             {"eng", "eng"},
             {"engl", "engl"},
             {mark + utf16("Hi"), "Hi"},
             {mark + utf16("Hi") + bytes("\0\0"), bytes("Hi\0")},
             {mark, ""},
             {bytes("\xFE\xFF\0H\0i"), absent},
             {bytes("eng\0Nice"), "Nic"}, // the last byte is taken for a terminator
             {bytes("eng\0Nice\0"), "Nice"},
             {bytes("eng\0Caf\xE9\0"), "CafÈ"},
             {bytes("eng\0Caf\xC3\xA9\0"), "Café"},
             {"eng" + mark + bytes("\0\0") + mark + utf16("Note") + bytes("\0\0"), "Note"},
             {"eng" + mark + bytes("\0\0") + mark + utf16("Note"), "Not"},
             {"eng" + mark + bytes("\0\0") + mark, absent},    // too short for the rule
             {"eng" + mark + bytes("\0\0") + mark + "xx", ""}, // twelve bytes are enough
             {bytes("engdesc\0text\0"), bytes("desc\0text")},
             {"eng" + mark + utf16("d") + bytes("\0\0") + mark + utf16("t"),
              bytes("ˇ˛d\0\0\0ˇ˛t")}, // read as Mac OS Roman
             {"deu" + mark + bytes("\0\0") + mark + utf16("Text"), bytes("\0\xEF\xBB\xBFText")},
             {"ENG" + mark + bytes("\0\0") + mark + utf16("x"), bytes("\0\xEF\xBB\xBFx")},
             {"12345678" + mark + utf16("ab"), "ab"},    // a mark at 8 is still found
             {"123456789" + mark + utf16("ab"), absent}, // one at 9 is not
             {"eng" + bytes("\0") + "ITUNnorm 00\0", absent},
             {"my itunes_cddb", absent},
             {"iTunSMP", "iTunSMP"},
         }) {
        EXPECT_EQ(decode(c.content), c.expected) << testing::PrintToString(c.content);
        EXPECT_EQ(decode(c.content, "", "X", 1), c.expected) << testing::PrintToString(c.content);
    }
}

TEST(FrameText, JoinsWhatIsThereAndFailsUnchanged) {
    EXPECT_EQ(decode("Bob", "Ann"), "Ann Bob");
    EXPECT_EQ(decode(bytes("engiTunNORM\0 00\0"), "kept"), "kept");
    EXPECT_EQ(decode("Caf\xE9", "kept"), "kept");
    EXPECT_EQ(decode("end of file", "kept", ""), "kept"); // the byte behind the frame is missing

    OpenBytes file("?text");
    SvxStringRef field;
    for (const std::uint32_t count : {0U, 0xFFFFFFFFU, 0xFFFFFFFEU, 0xFFFFFFF0U}) {
        mp3ReadSvxStringFromFile(&file.cache, 1, count, &field);
        EXPECT_FALSE(field) << count;
    }
    mp3ReadSvxStringFromFile(&file.cache, ~std::uint64_t{0}, 4, &field);
    EXPECT_FALSE(field);
}

TEST(FrameText, ReadsLongTextsInPieces) {
    // Longer than the read buffer, with characters of several bytes across its boundaries.
    std::string longText;
    for (int i = 0; i < 30000; ++i) {
        longText += "aé日🎵";
    }
    const std::string broken = longText + "\xE9";
    EXPECT_TRUE(decode(bytes("eng\0") + longText + bytes("\0")) == longText);
    EXPECT_TRUE(decode(bytes("eng\0") + broken + bytes("\0")) == plain(SvxStringFromCString(broken)));
    EXPECT_TRUE(decode(std::string(200000, 'x')) == std::string(200000, 'x'));
    EXPECT_TRUE(decode("\xFF\xFE" + utf16(std::string(100001, 'y'))) == std::string(100001, 'y'));
}

struct Picture {
    std::int32_t result;
    std::string bytes;
    std::string type;
    friend bool operator==(const Picture&, const Picture&) = default;
};

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.result << " " << picture.type << " " << testing::PrintToString(picture.bytes);
}

TEST(FramePicture, StartsWhereItsFormatSays) {
    const std::string jpeg = "\xFF\xD8\xFF\xE0";
    const std::string png = "\x89PNG";
    const std::string rest(100, 'r');
    struct Case {
        std::string content;
        Picture expected;
    };
    const Picture none{-2, "", ""};
    for (const Case& c : std::vector<Case>{
             {bytes("image/jpeg\0\3\0") + jpeg + rest, {0, jpeg + rest, "JPEG"}},
             {bytes("image/jpg\0\3\0") + jpeg + rest, {0, jpeg + rest, "JPEG"}},
             {bytes("image/png\0\3\0") + png + rest, {0, png + rest, "PNGf"}},
             {bytes("image/bmp\0\3\0BM") + rest, {0, "BM" + rest, "BMPf"}},
             {bytes("image/jpeg\0\3\0") + png + rest, {0, png + rest, "PNGf"}}, // the bytes know better
             {bytes("image/png\0\3\0\0\0\xFF\xFE") + rest, {0, bytes("\0\0\xFF\xFE") + rest, "JPEG"}},
             {bytes("image/jpeg\0\3cover\0") + jpeg + rest, {0, bytes("over\0") + jpeg + rest, "JPEG"}},
             {bytes("JPG\0\0") + jpeg + rest, {0, jpeg + rest, "JPEG"}},
             {bytes("JPG\3\0") + jpeg + rest, none},
             {bytes("image/JPEG\0\3\0") + jpeg + rest, none},
             {bytes("PNG\3\0") + png + rest, {0, png + rest, "PNGf"}}, // found by looking everywhere
             {bytes("x\0\0") + jpeg + rest, {0, jpeg + rest, "JPEG"}},
             {rest + bytes("JPG\0zz"), {0, bytes("G\0zz"), "JPEG"}},
             {rest + png.substr(0, 3), none},
             {std::string(4092, 'x') + bytes("\0\0") + jpeg,
              {0, jpeg, "JPEG"}}, // across two fillings of the buffer
             {std::string(4094, 'x') + png + std::string(70000, 'r'),
              {0, png + std::string(70000, 'r'), "PNGf"}},
             {std::string(90000, 'x') + bytes("\0\0") + jpeg, {0, jpeg, "JPEG"}},
             {std::string(98, 'x'), {-1, "", ""}},
         }) {
        OpenBytes file("?" + c.content + "N");
        audioTags record;
        const auto count = static_cast<std::uint32_t>(c.content.size() + 1);
        const std::int32_t result = mp3ReadCoverArt(&record, 1, count, &file.cache);
        Picture expected = c.expected;
        expected.bytes += result == 0 ? "N" : ""; // the range goes one byte beyond the frame
        const std::string type =
            record.mp3CoverArtType == 0 ? "" : plain(fourCharacterText(record.mp3CoverArtType));
        EXPECT_EQ((Picture{result, std::string(asCharacters(record.mp3CoverArt.view())), type}), expected);

        OpenBytes sameFile("?" + c.content + "N", 1);
        audioTags unloaded;
        EXPECT_EQ(mp3ReadCoverArt(&unloaded, 1, count, &sameFile.cache, Pictures::find), result);
        EXPECT_FALSE(unloaded.mp3CoverArt);
        EXPECT_EQ(unloaded.mp3CoverArtType, record.mp3CoverArtType);
        EXPECT_EQ(unloaded.mp3CoverArtPlace.size, expected.bytes.size());
        EXPECT_EQ(("?" + c.content + "N").substr(unloaded.mp3CoverArtPlace.position, expected.bytes.size()),
                  expected.bytes);
    }
}

TEST(FramePicture, IsNoneWhenTheFileChangesMeanwhile) {
    const std::string start = bytes("image/png\0\3\0\x89PNG");
    for (const std::string& changed :
         {start + std::string(50000, 'p'), std::string(100016, 'q'), std::string()}) {
        OpenBytes file(start + std::string(100000, 'p'));
        file.change(changed); // the buffer still holds what the file began with
        audioTags record;
        EXPECT_EQ(mp3ReadCoverArt(&record, 0, 100000, &file.cache), -2);
        EXPECT_FALSE(record.mp3CoverArt);
        EXPECT_EQ(record.mp3CoverArtPlace.size, 0U);
    }
}

TEST(FramePicture, KeepsTheEarlierOneOnFailure) {
    OpenBytes file(bytes("image/png\0\3\0") + std::string(200, 'p'));
    audioTags record;
    ASSERT_EQ(mp3ReadCoverArt(&record, 0, 150, &file.cache), 0);
    EXPECT_EQ(mp3ReadCoverArt(&record, 20, 150, &file.cache), -2); // no start anywhere
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 250, &file.cache), -2);  // beyond the end
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, ~0U, &file.cache), -2);  // 4 GiB of nothing
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 99, &file.cache), -1);
    EXPECT_EQ(record.mp3CoverArt.size(), 138U);
    EXPECT_EQ(mp3ReadCoverArt(&record, 0, 160, &file.cache), 0);
    EXPECT_EQ(record.mp3CoverArt.size(), 148U);
}

TEST(Release, LeavesNothingButNumbers) {
    OpenBytes file(bytes("image/png\0\3\0") + std::string(200, 'p'));
    for (const auto release : {mp3DisposeTagsData, amdReleaseAudioMetaData}) {
        audioTags record;
        for (SvxStringRef* field :
             {&record.mp3SongTitleString, &record.mp3ArtistString, &record.mp3AlbumString,
              &record.mp3ComposerString, &record.mp3CommentString, &record.mp3Genre2String,
              &record.mp3LyricsString, &record.mp3EncoderAppString}) {
            *field = text("text");
        }
        record.mp3Year = 1999;
        ASSERT_EQ(mp3ReadCoverArt(&record, 0, 150, &file.cache), 0);
        for (int i = 0; i < 2; ++i) {
            release(&record);
            EXPECT_EQ(tagsOf(record), "-|-|-|-|-|-|-|-|1999|0/0");
            EXPECT_FALSE(record.mp3CoverArt);
            EXPECT_EQ(record.mp3CoverArtPlace.size, 0U);
            EXPECT_EQ(record.mp3CoverArtType, fourCC("PNGf"));
        }
    }
}

TEST(FramePicture, IsNoneWhenItsDecoderRunsOutOfMemory) {
    OpenBytes file(bytes("image/png\0\3\0") + std::string(200, 'p'));
    audioTags record;
    ASSERT_EQ(mp3ReadCoverArt(&record, 0, 150, &file.cache), 0);
    setHostPictureDecoder([](std::span<const std::uint8_t> /*bytes*/,
                             const std::atomic<bool>* /*isWanted*/) -> std::unique_ptr<HostPicture> {
        throw std::bad_alloc();
    });
    EXPECT_FALSE(amdGetCoverArt(record));
    setHostPictureDecoder(nullptr);
}

} // namespace

} // namespace sonarin
