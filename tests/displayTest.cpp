// SPDX-License-Identifier: MIT
#include "app/shownFile.h"
#include "tests/support/testFolder.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringBundle.h"
#include "text/stringEngine.h"
#include "text/stringsFile.h"
#include "text/userLocale.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

namespace sonarin {

namespace {

TEST(Display, FormatsSizesAtTheirUnitBoundaries) {
    struct Case {
        std::uint64_t bytes;
        const char* english;
        const char* german;
    };
    const std::vector<Case> cases = {{0, "0.0 KB", "0,0 KB"},
                                     {500, "0.5 KB", "0,5 KB"},
                                     {1023, "1.0 KB", "1,0 KB"},
                                     {1048576, "1,024.0 KB", "1.024,0 KB"},
                                     {1049599, "1,025.0 KB", "1.025,0 KB"},
                                     {1049600, "1.0 MB", "1,0 MB"},
                                     {5000000, "4.8 MB", "4,8 MB"},
                                     {1073742847, "1,024.0 MB", "1.024,0 MB"},
                                     {1073742848, "1.0 GB", "1,0 GB"},
                                     {1099511628799, "1,024.0 GB", "1.024,0 GB"},
                                     {1099511628800, "1.0 TB", "1,0 TB"},
                                     {~std::uint64_t{0}, "16,777,216.0 TB", "16.777.216,0 TB"}};
    for (const Case& c : cases) {
        startUpIn("en_US.UTF-8");
        EXPECT_EQ(plain(SvxStringMakeSizeString(c.bytes)), c.english);
        startUpIn("de_DE.UTF-8");
        EXPECT_EQ(plain(SvxStringMakeSizeString(c.bytes)), c.german);
    }
    startUpIn("fr_FR.UTF-8");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(1024)), "1\u202F024,0");
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale::getRoot(), status); // which a program that starts with that has
    startUpIn("xx_YY.UTF-8");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(1024)), "1,024.0");
    startUpIn("C");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(0.25)), "0.2"); // half to even
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(0.75)), "0.8");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(-0.0)), "-0.0");
    EXPECT_EQ(plain(SvxMakeFloatingFractionString(0.0)), "0.0");
}

TEST(Display, FormatsDurations) {
    struct Case {
        std::uint32_t seconds;
        const char* expected;
    };
    for (const Case& c : std::vector<Case>{{0, "0:00"},
                                           {59, "0:59"},
                                           {61, "1:01"},
                                           {600, "10:00"},
                                           {3600, "60:00"},
                                           {3601, "1:00:01"},
                                           {65535, "18:12:15"}}) {
        EXPECT_EQ(plain(SvxStringMakeDurationString(c.seconds)), c.expected);
    }
    EXPECT_EQ(plain(SvxStringMakePaddedNumberString(9)), "09");
    EXPECT_EQ(plain(SvxStringMakePaddedNumberString(123)), "123");
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

/// The keys of a language's table that have a text.
std::set<std::string> keysOf(const std::string& language) {
    std::ifstream file(gCFBundleRef.load()->folder() + "/" + language + ".lproj/Localizable.strings");
    const std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::set<std::string> keys;
    for (const auto& [key, text] : parseStringsFile(content)) {
        if (!text.empty()) {
            keys.insert(key);
        }
    }
    return keys;
}

TEST(LocalizedStrings, AreCompleteInEveryLanguage) {
    startUpIn("C");
    const StringBundle* const own = gCFBundleRef;
    ASSERT_NE(own, nullptr);
    const auto english = keysOf("en");
    ASSERT_EQ(english.size(), 192 + 4);
    for (const std::string language : {"de", "fr", "ja"}) {
        EXPECT_EQ(keysOf(language), english) << language;
        const StringBundle bundle(own->folder(), language);
        EXPECT_EQ(plain(bundle.localizedString("STR#1001:47", "Localizable")), "STR#1001:47");
        EXPECT_EQ(plain(bundle.localizedString("STR#1001:46", "NoSuchTable")), "STR#1001:46");
    }
    for (int genre = 1; genre <= 192; ++genre) {
        EXPECT_EQ(english.count("STR#513:" + std::to_string(genre)), 1) << genre;
    }
    const StringBundle german(own->folder(), "de");
    EXPECT_EQ(plain(german.localizedString("STR#513:33", "Localizable")), "Klassik");
    const StringBundle unknown(own->folder(), "xx");
    EXPECT_EQ(plain(unknown.localizedString("STR#513:33", "Localizable")), "Classical");
    EXPECT_EQ(plain(iuGetIndCFString(513, -1)), "STR#513:-1");
    EXPECT_EQ(plain(SvxStringGetFromTable(513, 18)), "Rock");
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
        parseStringsFile("/* a */ \"k\" = \"v\"; // b\n\"q\\\"\" = \"\\n\\t\\\\ \\U00e9\\Ud83c\\Udfb5\";"),
        (Entries{{"k", "v"}, {"q\"", "\n\t\\ é🎵"}}));
    for (const char* broken : {"\"k\" = \"v\"", "\"k\" \"v\";", "\"k\" = \"\\Ud83c\";", "\"k", "\\", "/* "}) {
        EXPECT_TRUE(parseStringsFile(broken).empty()) << broken;
    }
}

TEST(HFSNames, AreCutAt255Units) {
    const std::string nearlyFull(254, 'a');
    HFSUniStr255 name;
    for (const auto& [value, units] : std::vector<std::pair<SvxStringRef, std::u16string>>{
             {text(nearlyFull + "🎵"), std::u16string(254, u'a') + u'\xD83C'},
             {text(nearlyFull + "é"), std::u16string(254, u'a') + u'é'},
             {text("né日"), u"né日"},
             {SvxStringGetEmpty(), u""}}) {
        utMakeHFSStringFromCFString(value, &name);
        EXPECT_EQ(name.view(), units);
    }
}

} // namespace

} // namespace sonarin
