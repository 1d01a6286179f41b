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
#include <map>
#include <set>
#include <vector>

namespace sonarin {

namespace {

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
    EXPECT_EQ(joined<std::uint32_t>({0, 59, 61, 600, 3600, 3601, 65535}, SvxStringMakeDurationString),
              "0:00|0:59|1:01|10:00|60:00|1:00:01|18:12:15|");
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
    const StringBundle unknown(folder, "xx");
    EXPECT_EQ(plain(german.localizedString("STR#513:33", "Localizable")), "Klassik");
    EXPECT_EQ(plain(german.localizedString("STR#1001:47", "Localizable")), "STR#1001:47");
    EXPECT_EQ(plain(german.localizedString("STR#1001:46", "NoSuchTable")), "STR#1001:46");
    EXPECT_EQ(plain(unknown.localizedString("STR#513:33", "Localizable")), "Classical");
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
        parseStringsFile("/* a */ \"k\" = \"v\"; // b\n\"q\\\"\" = \"\\n\\t\\\\ \\U00e9\\Ud83c\\Udfb5\";"),
        (Entries{{"k", "v"}, {"q\"", "\n\t\\ é🎵"}}));
    for (const char* broken : {"\"k\" = \"v\"", "\"k\" \"v\";", "\"k\" = \"\\Ud83c\";", "\"k", "\\", "/* "}) {
        EXPECT_TRUE(parseStringsFile(broken).empty()) << broken;
    }
}

TEST(HFSNames, AreCutAt255Units) {
    HFSUniStr255 name;
    for (const std::u16string& units :
         {std::u16string(254, u'a') + u"🎵", std::u16string(254, u'a') + u"é", std::u16string(u"né日")}) {
        utMakeHFSStringFromCFString(SvxStringFromUTF16(units), &name);
        EXPECT_EQ(name.view(), units.substr(0, 255));
    }
    utMakeHFSStringFromCFString(nullptr, &name);
    EXPECT_EQ(name.view(), u"");
}

} // namespace

} // namespace sonarin
