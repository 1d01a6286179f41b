// SPDX-License-Identifier: MIT
#include "app/shownFile.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringBundle.h"
#include "text/stringEngine.h"
#include "text/stringsFile.h"
#include "text/textDecoding.h"
#include "text/textSearch.h"
#include "text/unicodeVersion.h"
#include "text/userLocale.h"
#include "text/utf8Form.h"
#include "tools/sampleBytes.h"
#include "tools/testFolder.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <map>
#include <set>
#include <tuple>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;

TEST(TextValue, TellsAbsentFromEmpty) {
    SvxStringRef field = text("x");
    SvxStringRef kept = field;
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

/// For builds that do not look for leaks themselves.
TEST(TextValue, LeavesNoMemoryBehind) {
    const auto inLargeBlocks = [] { return mallinfo2().hblkhd; };
    const std::size_t before = inLargeBlocks();
    { const SvxStringRef large = text(std::string(50000000, 'x')); }
    EXPECT_EQ(inLargeBlocks(), before);
}

TEST(TextValue, DecodesBytes) {
    // 0xF0 is the private-use U+F8FF, and 0xDE and 0xDF are the ligatures fi and fl.
    EXPECT_EQ(joined<std::string>({"\x8A\xDB\xF0", bytes("a\0b"), "\xDE\xDF"}, SvxStringFromCString),
              bytes("ä€\xEF\xA3\xBF|a\0b|\xEF\xAC\x81\xEF\xAC\x82|"));
    EXPECT_EQ(plain(SvxStringFromLatin1("\xE9")), "é");
    EXPECT_EQ(joined<std::string>({"\xC3\xA9", "\xF0\x9F\x8E\xB5", "\xEF\xBF\xBF", "\xEF\xBB\xBFx"},
                                  SvxStringFromUTF8),
              "é|🎵|\xEF\xBF\xBF|\xEF\xBB\xBFx|");
    // What is no UTF-8, such as a surrogate or an overlong form, is Mac OS Roman.
    const std::string far(100, 'a');
    EXPECT_EQ(joined<std::string>({"\xE9", "\x80", "\xED\xA0\x80", "\xC0\xAF", far + "\xE2\x82"},
                                  SvxStringFromUTF8),
              "È|Ä|Ì†Ä|¿Ø|" + far + "‚Ç|");
}

TEST(TextValue, HandsOutUnitsAndRangesWithinTheTextAlone) {
    const std::vector<std::tuple<SvxStringRef, SvxIndex, SvxIndex, char16_t, std::string>> cases = {
        {text("aé日"), 1, 2, u'é', "é日"},    {text("a🎵"), 2, 1, 0xDFB5, "\xEF\xBF\xBD"},
        {text("abc"), 0, 0, 'a', ""},         {text("abc"), 3, 0, 0, ""},
        {text("abc"), 2, 2, 'c', "(absent)"}, {text("abc"), 4, 0, 0, "(absent)"},
        {text("abc"), 4, -1, 0, "(absent)"},  {text("abc"), 1, -1, 'b', "(absent)"},
        {text("abc"), -1, 1, 0, "(absent)"},  {nullptr, 0, 0, 0, "(absent)"}};
    for (const auto& [whole, start, length, unit, range] : cases) {
        EXPECT_EQ(SvxStringGetUniChar(whole, start), unit) << plain(whole) << start;
        EXPECT_EQ(plain(SvxStringCreateWithSubstring(whole, start, length)), range) << plain(whole) << start;
    }
}

/// Delivers four to six bytes at a time, and others when it is read again.
struct Drip : SvxByteSource {
    Drip(std::string first, std::string then) : now(std::move(first)), later(std::move(then)) {}
    [[nodiscard]] std::uint64_t size() const noexcept override { return now.size(); }
    [[nodiscard]] std::string_view pieceAt(std::uint64_t position) noexcept override {
        if (position == 0 && passes++ > 0) {
            now = later;
        }
        return std::string_view(now).substr(std::min<std::size_t>(position, now.size()), 4 + position % 3);
    }
    std::string now, later;
    int passes = 0;
};

TEST(TextValue, DecodesPieces) {
    for (const std::string content : {"plain text", "größer als 🎵🎵 und € mehr", "日本語のテキスト"}) {
        Drip source(content, content);
        EXPECT_EQ(plain(SvxStringFromSource(SvxEncoding::utf8, source)), content);
    }
    const std::string units = sample::utf16("Noten und noch mehr");
    Drip wide(units, units);
    EXPECT_EQ(plain(SvxStringFromSource(SvxEncoding::utf16LittleEndian, wide)), "Noten und noch mehr");
    // A file that changes between the passes must not be written past the storage measured for it.
    Drip shrinks("0123456789", "01");
    EXPECT_FALSE(SvxStringFromSource(SvxEncoding::ascii, shrinks));
    for (const std::string then : {"01", "ééééé", "0123€89x", "01234567\xE9x"}) {
        Drip changes("0123456789", then);
        EXPECT_FALSE(SvxStringFromSource(SvxEncoding::utf8, changes)) << then;
    }
    Drip grows("ééééé", "0123456789");
    EXPECT_FALSE(SvxStringFromSource(SvxEncoding::utf8, grows));
}

TEST(TextValue, FindsUnderCanonicalEquivalenceAndCase) {
    using Case = std::tuple<std::string, std::string, std::uint32_t, bool, int>;
    const std::string many(90, 'i');
    const std::string rare = std::string(90, 'x') + "ANItu" + std::string(90, 'x');
    const std::string manyMore(280, 'a');
    // Positions count the units as stored, no character is taken apart, and U+212A is the Kelvin sign.
    const std::vector<Case> cases = {
        {"3/12", "/", 0, true, 1},         {"xxITUNNORMx", "iTunNORM", 0, false, 2},
        {"12", "/", 0, true, -1},          {"xxITUNNORMx", "iTunNORM", 0, true, -1},
        {"a/b/c", "/", 2, true, 3},        {"un café noir", "cafe\u0301", 0, true, 3},
        {"abc", "c", 3, true, -1},         {"un cafe\u0301 noir", "CAFÉ", 0, false, 3},
        {"abc", "", 0, true, -1},          {"e\u0301 noir", "NOIR", 0, false, 3},
        {"café", "e", 0, true, -1},        {"cafe\u0301", "e", 0, true, -1},
        {"groß", "SS", 0, false, 3},       {"STRASSE", "straße", 0, false, 0},
        {"fe\uFB06", "ST", 0, false, 2},   {"\uFB01x", "fi", 0, false, 0},
        {"groß", "s", 0, false, -1},       {many + "itUN" + many, "iTun", 0, false, 90},
        {"가", "\u1100", 0, true, -1},     {"日" + many + "itUN", "iTun", 0, false, 91},
        {many, "ii", 0, true, 0},          {rare, "NiT", 0, false, 91},
        {rare, "Ani", 0, false, 90},       {"\uFB00x", "ff", 0, false, 0},
        {"日本", "本", 0, true, 1},        {"日i", "日i", 0, true, 0},
        {"e\u0300", "e", 0, true, -1},     {"\u212Am", "km", 0, false, 0},
        {"10 \u212Am", "km", 0, false, 3}, {many + manyMore + "b", manyMore + "b", 0, true, 90}};
    for (const auto& [whole, needle, start, caseSensitive, expected] : cases) {
        SCOPED_TRACE(whole + " / " + needle);
        EXPECT_EQ(SvxStringPosition(text(whole), text(needle), start, caseSensitive), expected);
        EXPECT_EQ(SvxStringContains(text(whole), text(needle), caseSensitive),
                  SvxStringPosition(text(whole), text(needle), 0, caseSensitive) >= 0);
    }
    EXPECT_EQ(SvxStringPosition(nullptr, text("a"), 0, true), -1);
    EXPECT_FALSE(SvxStringContains(text("a"), nullptr, true));
}

TEST(TextValue, TestsBeginningsAndEnds) {
    // Needles are in Mac OS Roman, where 0x83 is É.
    using Case = std::tuple<std::string, const char*, bool, bool, bool>;
    const std::vector<Case> cases = {
        {"song.mp3", ".MP3", false, false, true},  {"xiTunNORM", "iTunNORM", false, false, true},
        {"song.mp3", ".MP3", true, false, false},  {"iTunNORM 000", "iTunNORM", false, true, false},
        {"x.mp3.mp3", ".MP3", false, false, true}, {"song.mp3\u0301", ".MP3", false, false, false},
        {"mp3", ".MP3", false, false, false},      {"日本.mp3", ".MP3", false, false, true},
        {"song.mp3", "", false, false, false},     {"song.mp3", nullptr, false, false, false},
        {"É x", "\x83", true, true, false},        {"cafe\u0301", "\x83", false, false, true},
        {"e", "\x83", false, false, false},        {"Ä", "\x80", true, true, true},
        {"songxmp3", ".MP3", false, false, false}, {"xtunes", "iTunes", false, false, false},
        {"e\u0301", "\x83", false, true, true}};
    for (const auto& [whole, needle, caseSensitive, begins, ends] : cases) {
        EXPECT_EQ(SvxStringBeginsWithCString(text(whole), needle, caseSensitive), begins) << whole;
        EXPECT_EQ(SvxStringEndsWithCString(text(whole), needle, caseSensitive), ends) << whole;
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
            form = caseSensitive ? form : decompose.normalize(form.foldCase(), status);
            const std::u16string_view units(form.getBuffer(), static_cast<std::size_t>(form.length()));
            const bool isAscii = std::ranges::all_of(units, [](char16_t unit) { return unit < 0x80; });
            if (isAscii && units.size() > 1) {
                const std::u16string_view known = u"ss st ff fi fl";
                EXPECT_NE(known.find(units.substr(0, 2)), known.npos) << c;
            } else if (isAscii || c <= 0xFFFF) {
                EXPECT_EQ(asciiCounterpart(static_cast<char16_t>(c), caseSensitive), isAscii ? units[0] : c)
                    << c;
            }
        }
    }
}

TEST(TextValue, NamesTheVersionOfItsLibrary) {
    EXPECT_TRUE(unicodeVersion().starts_with(std::to_string(U_ICU_VERSION_MAJOR_NUM) + "."))
        << unicodeVersion();
}

TEST(TextValue, ReadsLeadingIntegers) {
    constexpr std::int32_t most = 2147483647;
    constexpr std::int32_t least = -most - 1;
    const std::vector<std::pair<std::string, std::int32_t>> cases = {
        {"12/15", 12},  {" 7", 7},  {"\t\v\r\n -3x", -3},   {"2147483647", most},
        {"abc", 0},     {"+5", 5},  {"-2147483647", -most}, {"2147483648", most},
        {"", 0},        {"+-5", 0}, {"-2147483649", least}, {"-99999999999999999999", least},
        {"\u00A07", 0}, {"٣", 0}};
    for (const auto& [number, expected] : cases) {
        EXPECT_EQ(SvxStringGetIntValue(text(number)), expected) << number;
    }
    EXPECT_EQ(SvxStringGetIntValue(nullptr), 0);
}

TEST(TextValue, LeavesAsUtf8AndAsUrl) {
    const std::string escaped = "$&+;:=?@, %#<>\"{}|\\^[]`\n\x7F";
    for (const auto& [given, utf8, url] : std::vector<std::tuple<SvxStringRef, std::string, std::string>>{
             {text("azAZ09-_.!~*'()"), "azAZ09-_.!~*'()", "azAZ09-_.!~*'()"},
             {text("AC/DC é€🎵"), "AC/DC é€🎵", "AC%2FDC%20%C3%A9%E2%82%AC%F0%9F%8E%B5"},
             {text(escaped), escaped,
              "%24%26%2B%3B%3A%3D%3F%40%2C%20%25%23%3C%3E%22%7B%7D%7C%5C%5E%5B%5D%60%0A%7F"},
             {text(bytes("ab\0cd")), "ab", "ab%00cd"},
             {SvxStringFromUTF16(u"ab\xD800"), "", "ab%EF%BF%BD"}, // a lone surrogate has no UTF-8 form
             {SvxStringFromUTF16({u"a\0\xDC00", 3}), "", "a%00%EF%BF%BD"}, // nor has one behind the end
             {SvxStringGetEmpty(), "", ""},
         }) {
        std::string copied(SvxStringGetUTF8Size(given) + 1, '#');
        std::uint32_t size = 99;
        SvxStringCopyToUTF8(given, copied.data(), &size);
        EXPECT_EQ(copied, utf8 + "#"); // no terminator
        EXPECT_EQ(size, utf8.size());
        EXPECT_EQ(plain(SvxStringConvertToURL(given)), url);
    }
    EXPECT_EQ(utf8SizeIn32Bits(0xFFFFFFFF), 0xFFFFFFFF);
    EXPECT_EQ(utf8SizeIn32Bits(0x100000002), 0); // nothing may be copied to where two bytes have room
}

TEST(TextValue, MakesNewTexts) {
    EXPECT_EQ(plain(SvxStringCreateWithFormat("%i of %li, %@%% %x", {3, 12, text("日")})),
              "3 of 12, 日%% %x");
    EXPECT_EQ(plain(SvxStringCreateWithFormat("<%@> %@", {SvxStringGetEmpty()})), "<> %@");

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

TEST(Display, FormatsSizesAtTheirUnitBoundaries) {
    const std::vector<std::uint64_t> sizes = {0,          500,           1023,          1048576,
                                              1049599,    1049600,       5000000,       1073742847,
                                              1073742848, 1099511628799, 1099511628800, ~std::uint64_t{0}};
    startUpIn("en_US.UTF-8");
    EXPECT_EQ(joined(sizes, SvxStringMakeSizeString),
              "0.0 KB|0.5 KB|1.0 KB|1,024.0 KB|1,025.0 KB|1.0 MB|4.8 MB|1,024.0 MB|1.0 GB|1,024.0 GB|1.0 "
              "TB|16,777,216.0 TB|");
    startUpIn("de_DE.UTF-8");
    EXPECT_EQ(joined(sizes, SvxStringMakeSizeString),
              "0,0 KB|0,5 KB|1,0 KB|1.024,0 KB|1.025,0 KB|1,0 MB|4,8 MB|1.024,0 MB|1,0 GB|1.024,0 GB|1,0 "
              "TB|16.777.216,0 TB|");
}

TEST(Display, FormatsNumbersAsTheUserDoes) {
    startUpIn("fr_FR.UTF-8");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(1024)), "1\u202F024,0");
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale::getRoot(), status); // which a program that starts with that has
    startUpIn("xx_YY.UTF-8");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(1024)), "1,024.0");
    startUpIn("C");
    EXPECT_EQ(joined<double>({0.25, 0.75, -0.0, 0.0}, SvxMakeFloatingFractionString),
              "0.2|0.8|-0.0|0.0|"); // half to even
}

TEST(Display, FormatsDurations) {
    EXPECT_EQ(joined<std::uint32_t>({0, 59, 61, 600, 3600, 3601, 3660, 7199, 7200, 65535},
                                    SvxStringMakeDurationString),
              "0:00|0:59|1:01|10:00|60:00|1:00:01|1:01:00|1:59:59|2:00:00|18:12:15|");
    EXPECT_EQ(joined<std::uint32_t>({9, 123}, SvxStringMakePaddedNumberString), "09|123|");
}

TEST(Display, FollowsTheLocaleVariables) {
    unsetenv("LC_ALL");
    unsetenv("LC_NUMERIC");
    setenv("LANG", "fr_FR.UTF-8", 1);
    EXPECT_EQ(userNumberLocale(), "fr_FR");
    setenv("LC_NUMERIC", "de_AT.UTF-8@euro", 1);
    EXPECT_EQ(userNumberLocale(), "de_AT");
    EXPECT_EQ(userLanguage(), "fr");
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_EQ(userNumberLocale(), "en_US");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(userNumberLocale(), "de_AT");
}

TEST(LocalizedStrings, AreCompleteInEveryLanguage) {
    startUpIn("C");
    const std::string folder = gCFBundleRef.load()->folder();
    std::map<std::string, std::set<std::string>> keys; ///< that have a text
    for (const std::string language : {"en", "de", "fr", "ja"}) {
        std::ifstream file(folder + "/" + language + ".lproj/Localizable.strings");
        const std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        for (const auto& [key, text] : parseStringsFile(content)) {
            if (!text.empty()) {
                keys[language].insert(key);
            }
        }
        EXPECT_EQ(keys[language], keys["en"]) << language;
    }
    ASSERT_EQ(keys["en"].size(), 192 + 4);
    for (int genre = 1; genre <= 192; ++genre) {
        EXPECT_EQ(keys["en"].count("STR#513:" + std::to_string(genre)), 1) << genre;
    }
    const StringBundle german(folder, "de");
    EXPECT_EQ(plain(german.localizedString("STR#513:33", "Localizable")), "Klassik");
    EXPECT_EQ(plain(german.localizedString("STR#1001:47", "Localizable")), "STR#1001:47");
    EXPECT_EQ(plain(german.localizedString("STR#1001:46", "NoSuchTable")), "STR#1001:46");
    EXPECT_EQ(plain(StringBundle(folder, "xx").localizedString("STR#513:33", "Localizable")), "Classical");
    EXPECT_EQ(
        joined<std::int16_t>({-1, 18}, [](std::int16_t index) { return SvxStringGetFromTable(513, index); }),
        "STR#513:-1|Rock|");
}

TEST(LocalizedStrings, ComeFromTheBundleThatWasAskedForLast) {
    const StringBundle* const none = nullptr;
    const SvxStringRef own = SvxStringFromCString(bundleIdentifier);
    for (const SvxStringRef& missing : {text("org.example.Missing"), text("")}) {
        EXPECT_EQ(initStringBundle(missing), none);
        EXPECT_EQ(gCFBundleRef, none);
        EXPECT_EQ(plain(iuGetIndCFString(513, 18)), "STR#513:18");
        EXPECT_EQ(plain(SvxStringGetFromEnglishTable(513, 18)), "STR#513:18");
        const StringBundle* const found = initStringBundle(own);
        EXPECT_EQ(found, gCFBundleRef);
        EXPECT_EQ(plain(SvxStringGetFromEnglishTable(513, 18)), "Rock");
        EXPECT_EQ(initStringBundle(SvxStringGetEmpty()), none);
        EXPECT_EQ(found, gCFBundleRef); // to ask for none changes nothing
    }
}

TEST(LocalizedStrings, ParseTheirSyntax) {
    using Entries = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(
        parseStringsFile("/* a */ \"k\" = \"v\"; // b\n\"q\\\"\" = \"\\n\\r\\t\\\\ \\U00e9\\Ud83c\\Udfb5\";"),
        (Entries{{"k", "v"}, {"q\"", "\n\r\t\\ é🎵"}}));
    EXPECT_EQ(parseStringsFile("/*/ \"a\" = \"b\"; */ /**/ \"k\" = \"v\";"), (Entries{{"k", "v"}}));
    for (const char* broken : {"\"k\" = \"v\"", "\"k\" \"v\";", "\"k\" = \"\\Ud83c\";",
                               "\"k\" = \"\\Ud83c\\U0041\";", "\"k\" = \"\\Ug\";", "\"k", "\\", "/* "}) {
        EXPECT_TRUE(parseStringsFile(broken).empty()) << broken;
    }
}

} // namespace

} // namespace sonarin
