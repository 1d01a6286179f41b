// SPDX-License-Identifier: MIT
#include "tests/support/sampleBytes.h"
#include "tests/support/testFolder.h"
#include "text/CMMCoreFunctions.h"
#include "text/stringEngine.h"
#include "text/textDecoding.h"
#include "text/textSearch.h"
#include "text/utf8Form.h"

#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;

TEST(TextValue, TellsAbsentFromEmpty) {
    SvxStringRef field = text("x");
    SvxStringRef kept = field;
    EXPECT_EQ(SvxStringRelease(&field), 0);
    EXPECT_EQ(SvxStringRelease(&field), 0);
    EXPECT_EQ(plain(kept), "x");
    uCFRelease(&kept);
    uCFRelease(nullptr);
    EXPECT_FALSE(SvxStringIsValid(kept));
    EXPECT_FALSE(SvxStringIsValid(SvxStringGetEmpty()));
    EXPECT_TRUE(SvxStringIsValid(text("")));
    EXPECT_EQ(SvxStringGetLength(text("")), 0);
    EXPECT_FALSE(SvxStringIsEqual(text(""), SvxStringGetEmpty()));
    EXPECT_TRUE(SvxStringIsEqual(SvxStringFromUTF16(u"abc"), text("abc")));
}

TEST(TextValue, DecodesBytes) {
    struct Case {
        std::string bytes;
        std::string expected;
    };
    for (const Case& c : std::vector<Case>{
             {"\x8A\xDB\xF0", "ä€\xEF\xA3\xBF"}, // 0xF0 is the private-use U+F8FF
             {bytes("a\0b"), bytes("a\0b")},
             {"\xDE\xDF", "\xEF\xAC\x81\xEF\xAC\x82"}, // the ligatures fi and fl
         }) {
        EXPECT_EQ(plain(SvxStringFromCString(c.bytes)), c.expected);
    }
    for (const Case& c : std::vector<Case>{
             {"\xC3\xA9", "é"},
             {"\xE9", "È"},                      // Mac OS Roman
             {"\xED\xA0\x80", "Ì†Ä"},            // a surrogate is no UTF-8
             {"\xC0\xAF", "¿Ø"},                 // nor is an overlong form
             {"\xEF\xBB\xBFx", "\xEF\xBB\xBFx"}, // a byte-order mark stays
             {"\xF0\x9F\x8E\xB5", "🎵"},
             {std::string(100, 'a') + "\xE2\x82", std::string(100, 'a') + "‚Ç"},
         }) {
        EXPECT_EQ(plain(SvxStringFromUTF8(c.bytes)), c.expected);
    }
    EXPECT_EQ(SvxStringGetLength(text("🎵")), 2);
    EXPECT_EQ(SvxStringGetUniChar(text("🎵"), 1), 0xDFB5);
    EXPECT_EQ(SvxStringGetUniChar(text("a"), 1), 0);
}

/// Delivers three to six bytes at a time, and can change or fail between the two passes.
class Drip : public SvxByteSource {
public:
    explicit Drip(std::string bytes) : bytes_(std::move(bytes)) {}
    std::string later;
    [[nodiscard]] std::uint64_t size() const noexcept override { return bytes_.size(); }
    [[nodiscard]] std::string_view pieceAt(std::uint64_t position) noexcept override {
        const std::string& now = position == 0 && passes_++ > 0 && !later.empty() ? (bytes_ = later) : bytes_;
        return std::string_view(now).substr(std::min<std::size_t>(position, now.size()), 4 + position % 3);
    }

private:
    std::string bytes_;
    int passes_ = 0;
};

TEST(TextValue, DecodesPieces) {
    for (const std::string content : {"plain text", "größer als 🎵🎵 und € mehr", "日本語のテキスト"}) {
        Drip source(content);
        EXPECT_EQ(plain(SvxStringFromSource(SvxEncoding::utf8, source)), content);
    }
    // A file that changes between the passes must not be written past the storage measured for it.
    Drip shrinks("0123456789");
    shrinks.later = "01";
    EXPECT_FALSE(SvxStringFromSource(SvxEncoding::ascii, shrinks));
    Drip widens("0123456789");
    widens.later = "0123\xE2\x82\xAC"
                   "89x";
    EXPECT_FALSE(SvxStringFromSource(SvxEncoding::utf8, widens));
}

TEST(TextValue, FindsUnderCanonicalEquivalenceAndCase) {
    struct Case {
        std::string text;
        std::string needle;
        std::uint32_t start;
        bool caseSensitive;
        int expected;
    };
    for (const Case& c : std::vector<Case>{
             {"3/12", "/", 0, true, 1},
             {"12", "/", 0, true, -1},
             {"a/b/c", "/", 2, true, 3},
             {"abc", "c", 3, true, -1},
             {"abc", "", 0, true, -1},
             {"xxITUNNORMx", "iTunNORM", 0, false, 2},
             {"xxITUNNORMx", "iTunNORM", 0, true, -1},
             {"un café noir", "cafe\u0301", 0, true, 3}, // decomposed needle, precomposed text
             {"un cafe\u0301 noir", "CAFÉ", 0, false, 3},
             {"e\u0301 noir", "NOIR", 0, false, 3}, // positions count the units as stored
             {"café", "e", 0, true, -1},            // no character is taken apart
             {"cafe\u0301", "e", 0, true, -1},
             {"STRASSE", "straße", 0, false, 0},
             {"groß", "SS", 0, false, 3},
             {"groß", "s", 0, false, -1},
             {"10 \u212Am", "km", 0, false, 3}, // Kelvin sign
             {"가", "\u1100", 0, true, -1},
             {std::string(90, 'i') + "itUN" + std::string(90, 'n'), "iTun", 0, false, 90},
             {"日" + std::string(90, 'i') + "itUN", "iTun", 0, false, 91},
             {std::string(300, 'a') + "b", std::string(280, 'a') + "b", 0, true, 20},
         }) {
        EXPECT_EQ(SvxStringPosition(text(c.text), text(c.needle), c.start, c.caseSensitive), c.expected)
            << c.text << " / " << c.needle;
        const bool inWhole = SvxStringPosition(text(c.text), text(c.needle), 0, c.caseSensitive) >= 0;
        EXPECT_EQ(SvxStringContains(text(c.text), text(c.needle), c.caseSensitive), inWhole);
    }
    EXPECT_EQ(SvxStringPosition(SvxStringGetEmpty(), text("a"), 0, true), -1);
    EXPECT_FALSE(SvxStringContains(text("a"), SvxStringGetEmpty(), true));
}

TEST(TextValue, TestsBeginningsAndEnds) {
    EXPECT_TRUE(SvxStringEndsWithCString(text("song.mp3"), ".MP3", false));
    EXPECT_FALSE(SvxStringEndsWithCString(text("song.mp3"), ".MP3", true));
    EXPECT_TRUE(SvxStringEndsWithCString(text("x.mp3.mp3"), ".MP3", false));
    EXPECT_FALSE(SvxStringEndsWithCString(text("mp3"), ".MP3", false));
    EXPECT_FALSE(SvxStringEndsWithCString(text("song.mp3\u0301"), ".MP3", false));
    EXPECT_TRUE(SvxStringEndsWithCString(text("日本.mp3"), ".MP3", false));
    EXPECT_FALSE(SvxStringEndsWithCString(text("song.mp3"), "", false));
    EXPECT_TRUE(SvxStringBeginsWithCString(text("iTunNORM 000"), "iTunNORM", false));
    EXPECT_FALSE(SvxStringBeginsWithCString(text("xiTunNORM"), "iTunNORM", false));
    EXPECT_TRUE(SvxStringBeginsWithCString(text("É x"), "\x83", true)); // É in Mac OS Roman
    EXPECT_TRUE(SvxStringEndsWith(text("cafe\u0301"), text("É"), false));
    EXPECT_FALSE(SvxStringEndsWith(SvxStringGetEmpty(), text("a"), false));
    EXPECT_FALSE(SvxStringBeginsWithCString(text("a"), nullptr, false));
    EXPECT_FALSE(SvxStringEndsWithCString(text("a"), nullptr, false));
}

/// The quick search rests on a short list of the characters that can stand for ASCII letters: all of Unicode
/// is asked whether the list is complete.
TEST(TextValue, KnowsEveryCharacterThatCountsAsAscii) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2& decompose = *icu::Normalizer2::getNFDInstance(status);
    for (const bool caseSensitive : {false, true}) {
        for (UChar32 c = 0x80; c <= 0x10FFFF; ++c) {
            icu::UnicodeString form = decompose.normalize(icu::UnicodeString(c), status);
            if (!caseSensitive) {
                form = decompose.normalize(form.foldCase(), status);
            }
            const bool isAscii =
                form.length() > 0 && std::all_of(form.getBuffer(), form.getBuffer() + form.length(),
                                                 [](char16_t unit) { return unit < 0x80; });
            if (isAscii && form.length() > 1) {
                const std::u16string start(form.getBuffer(), 2);
                EXPECT_TRUE(start == u"ss" || start == u"st" || start == u"ff" || start == u"fi" ||
                            start == u"fl");
            } else if (c <= 0xFFFF) {
                const auto unit = static_cast<char16_t>(c);
                EXPECT_EQ(asciiCounterpart(unit, caseSensitive), isAscii ? form.charAt(0) : unit) << c;
            } else {
                EXPECT_FALSE(isAscii) << c;
            }
        }
    }
}

TEST(TextValue, ReadsLeadingIntegers) {
    struct Case {
        std::string text;
        std::int32_t expected;
    };
    for (const Case& c : std::vector<Case>{{"12/15", 12},
                                           {"abc", 0},
                                           {" 7", 7},
                                           {"\t\v\r\n -3x", -3},
                                           {"+5", 5},
                                           {"+-5", 0},
                                           {"", 0},
                                           {"\u00A07", 0},
                                           {"٣", 0},
                                           {"2147483648", 2147483647},
                                           {"-99999999999999999999", -2147483647 - 1}}) {
        EXPECT_EQ(SvxStringGetIntValue(text(c.text)), c.expected) << c.text;
    }
    EXPECT_EQ(SvxStringGetIntValue(SvxStringGetEmpty()), 0);
}

TEST(TextValue, LeavesAsUtf8AndAsUrl) {
    const auto utf8 = [](const SvxStringRef& value) {
        std::string bytes(SvxStringGetUTF8Size(value) + 1, '#');
        std::uint32_t size = 99;
        SvxStringCopyToUTF8(value, bytes.data(), &size);
        EXPECT_EQ(size + 1, bytes.size());
        return bytes;
    };
    EXPECT_EQ(utf8(text("abc")), "abc#"); // no terminator
    EXPECT_EQ(utf8(text("é€🎵")), "é€🎵#");
    EXPECT_EQ(utf8(text(bytes("ab\0cd"))), "ab#");
    EXPECT_EQ(utf8(SvxStringFromUTF16(u"ab\xD800")), "#"); // a lone surrogate has no UTF-8 form
    EXPECT_EQ(utf8(SvxStringGetEmpty()), "#");
    EXPECT_EQ(utf8SizeIn32Bits(0xFFFFFFFF), 0xFFFFFFFF);
    EXPECT_EQ(utf8SizeIn32Bits(0x100000002), 0); // nothing may be copied to where two bytes have room

    EXPECT_EQ(plain(SvxStringConvertToURL(text("AC/DC & Friends"))), "AC%2FDC%20%26%20Friends");
    EXPECT_EQ(plain(SvxStringConvertToURL(text("Motörhead"))), "Mot%C3%B6rhead");
    EXPECT_EQ(plain(SvxStringConvertToURL(text("aZ09-_.!~*'()"))), "aZ09-_.!~*'()");
    EXPECT_EQ(plain(SvxStringConvertToURL(text("$&+;:=?@, %#<>\"{}|\\^[]`\n\x7F"))),
              "%24%26%2B%3B%3A%3D%3F%40%2C%20%25%23%3C%3E%22%7B%7D%7C%5C%5E%5B%5D%60%0A%7F");
    EXPECT_EQ(plain(SvxStringConvertToURL(SvxStringGetEmpty())), "");
}

TEST(TextValue, MakesNewTexts) {
    EXPECT_EQ(plain(SvxStringCreateWithFormat("%i of %li, %@%% %x", {3, 12, text("日")})),
              "3 of 12, 日%% %x");
    EXPECT_EQ(plain(SvxStringCreateWithFormat("<%@>", {SvxStringGetEmpty()})), "<>");
    EXPECT_EQ(plain(SvxStringCreateWithSubstring(text("aé日"), 1, 2)), "é日");
    EXPECT_FALSE(SvxStringCreateWithSubstring(text("abc"), 2, 2));
    EXPECT_FALSE(SvxStringCreateWithSubstring(text("abc"), -1, 1));

    SvxStringRef joined = text("a");
    const SvxStringRef shared = joined;
    for (const char* more : {"b", "日", "c"}) {
        SvxStringAppendAfterBlank(&joined, text(more));
    }
    EXPECT_EQ(plain(joined), "a b 日 c");
    SvxStringAppendAfterBlank(&joined, joined);
    EXPECT_EQ(plain(joined), "a b 日 c a b 日 c");
    EXPECT_EQ(plain(shared), "a"); // a text that somebody else holds never changes
}

} // namespace

} // namespace sonarin
