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
        SvxStringRef (*decode)(std::string_view bytes) noexcept;
        std::string bytes, expected;
    };
    for (const Case& c : std::vector<Case>{
             {SvxStringFromCString, "\x8A\xDB\xF0", "ä€\xEF\xA3\xBF"}, // 0xF0 is the private-use U+F8FF
             {SvxStringFromCString, bytes("a\0b"), bytes("a\0b")},
             {SvxStringFromCString, "\xDE\xDF", "\xEF\xAC\x81\xEF\xAC\x82"}, // the ligatures fi and fl
             {SvxStringFromUTF8, "\xC3\xA9", "é"},
             {SvxStringFromUTF8, "\xE9", "È"},                      // Mac OS Roman
             {SvxStringFromUTF8, "\xED\xA0\x80", "Ì†Ä"},            // a surrogate is no UTF-8
             {SvxStringFromUTF8, "\xC0\xAF", "¿Ø"},                 // nor is an overlong form
             {SvxStringFromUTF8, "\xEF\xBB\xBFx", "\xEF\xBB\xBFx"}, // a byte-order mark stays
             {SvxStringFromUTF8, "\xF0\x9F\x8E\xB5", "🎵"},
             {SvxStringFromUTF8, std::string(100, 'a') + "\xE2\x82", std::string(100, 'a') + "‚Ç"},
             {SvxStringFromLatin1, "\xE9", "é"},
         }) {
        EXPECT_EQ(plain(c.decode(c.bytes)), c.expected);
    }
}

TEST(TextValue, HandsOutUnitsAndRangesWithinTheTextAlone) {
    struct Case {
        std::string text;
        SvxIndex start, length;
        char16_t unit; ///< at the start
        std::string range;
    };
    for (const Case& c : std::vector<Case>{{"aé日", 1, 2, u'é', "é日"},
                                           {"a🎵", 2, 1, 0xDFB5, "\xEF\xBF\xBD"},
                                           {"abc", 0, 0, 'a', ""},
                                           {"abc", 3, 0, 0, ""},
                                           {"abc", 2, 2, 'c', "(absent)"},
                                           {"abc", 4, 0, 0, "(absent)"},
                                           {"abc", 4, -1, 0, "(absent)"},
                                           {"abc", 1, -1, 'b', "(absent)"},
                                           {"abc", -1, 1, 0, "(absent)"}}) {
        EXPECT_EQ(SvxStringGetUniChar(text(c.text), c.start), c.unit) << c.text << c.start;
        EXPECT_EQ(plain(SvxStringCreateWithSubstring(text(c.text), c.start, c.length)), c.range)
            << c.text << c.start;
    }
    EXPECT_EQ(SvxStringGetUniChar(SvxStringGetEmpty(), 0), 0);
    EXPECT_FALSE(SvxStringCreateWithSubstring(SvxStringGetEmpty(), 0, 0));
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
    struct Case {
        std::string text;
        const char* needle; ///< in Mac OS Roman, where 0x83 is É
        bool caseSensitive, begins, ends;
    };
    for (const Case& c : std::vector<Case>{{"song.mp3", ".MP3", false, false, true},
                                           {"song.mp3", ".MP3", true, false, false},
                                           {"x.mp3.mp3", ".MP3", false, false, true},
                                           {"mp3", ".MP3", false, false, false},
                                           {"song.mp3\u0301", ".MP3", false, false, false},
                                           {"日本.mp3", ".MP3", false, false, true},
                                           {"song.mp3", "", false, false, false},
                                           {"song.mp3", nullptr, false, false, false},
                                           {"iTunNORM 000", "iTunNORM", false, true, false},
                                           {"xiTunNORM", "iTunNORM", false, false, true},
                                           {"É x", "\x83", true, true, false},
                                           {"cafe\u0301", "\x83", false, false, true},
                                           {"e", "\x83", false, false, false}}) {
        EXPECT_EQ(SvxStringBeginsWithCString(text(c.text), c.needle, c.caseSensitive), c.begins) << c.text;
        EXPECT_EQ(SvxStringEndsWithCString(text(c.text), c.needle, c.caseSensitive), c.ends) << c.text;
    }
    EXPECT_FALSE(SvxStringBeginsWith(text("a"), SvxStringGetEmpty(), false));
    EXPECT_FALSE(SvxStringEndsWith(SvxStringGetEmpty(), text("a"), false));
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
                                           {"2147483647", 2147483647},
                                           {"2147483648", 2147483647},
                                           {"-2147483647", -2147483647},
                                           {"-2147483649", -2147483647 - 1},
                                           {"-99999999999999999999", -2147483647 - 1}}) {
        EXPECT_EQ(SvxStringGetIntValue(text(c.text)), c.expected) << c.text;
    }
    EXPECT_EQ(SvxStringGetIntValue(SvxStringGetEmpty()), 0);
}

TEST(TextValue, LeavesAsUtf8AndAsUrl) {
    struct Case {
        SvxStringRef text;
        std::string utf8, url;
    };
    const std::string escaped = "$&+;:=?@, %#<>\"{}|\\^[]`\n\x7F";
    for (const Case& c : std::vector<Case>{
             {text("azAZ09-_.!~*'()"), "azAZ09-_.!~*'()", "azAZ09-_.!~*'()"},
             {text("AC/DC é€🎵"), "AC/DC é€🎵", "AC%2FDC%20%C3%A9%E2%82%AC%F0%9F%8E%B5"},
             {text(escaped), escaped,
              "%24%26%2B%3B%3A%3D%3F%40%2C%20%25%23%3C%3E%22%7B%7D%7C%5C%5E%5B%5D%60%0A%7F"},
             {text(bytes("ab\0cd")), "ab", "ab%00cd"},
             {SvxStringFromUTF16(u"ab\xD800"), "", "ab%EF%BF%BD"}, // a lone surrogate has no UTF-8 form
             {SvxStringFromUTF16({u"a\0\xDC00", 3}), "", "a%00%EF%BF%BD"}, // nor has one behind the end
             {SvxStringGetEmpty(), "", ""},
         }) {
        std::string copied(SvxStringGetUTF8Size(c.text) + 1, '#');
        std::uint32_t size = 99;
        SvxStringCopyToUTF8(c.text, copied.data(), &size);
        EXPECT_EQ(copied, c.utf8 + "#"); // no terminator
        EXPECT_EQ(size, c.utf8.size());
        EXPECT_EQ(plain(SvxStringConvertToURL(c.text)), c.url);
    }
    EXPECT_EQ(utf8SizeIn32Bits(0xFFFFFFFF), 0xFFFFFFFF);
    EXPECT_EQ(utf8SizeIn32Bits(0x100000002), 0); // nothing may be copied to where two bytes have room
}

TEST(TextValue, MakesNewTexts) {
    EXPECT_EQ(plain(SvxStringCreateWithFormat("%i of %li, %@%% %x", {3, 12, text("日")})),
              "3 of 12, 日%% %x");
    EXPECT_EQ(plain(SvxStringCreateWithFormat("<%@>", {SvxStringGetEmpty()})), "<>");

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
