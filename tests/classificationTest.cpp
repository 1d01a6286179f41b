// SPDX-License-Identifier: MIT
#include "engine/audioMetaData.h"
#include "engine/fileEngine.h"
#include "platform/host/fileAttributes.h"
#include "tests/support/sampleBytes.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <map>
#include <sys/xattr.h>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;

/// An AppleDouble file with a comment entry before the Finder info.
std::string appleDouble(const std::string& typeAndCreator) {
    return bytes("\x00\x05\x16\x07\x00\x02\x00\x00") + std::string(16, '\0') + bytes("\0\2") +
           sample::bigEndian(4) + sample::bigEndian(50) + sample::bigEndian(3) + sample::bigEndian(9) +
           sample::bigEndian(53) + sample::bigEndian(32) + "abc" + sample::padded(typeAndCreator, 32);
}

std::int32_t typeOf(const std::string& path) {
    return amdAudioFileType(feMakePathText(path));
}

TEST(Classification, GoesByNameWithoutCodes) {
    const std::map<std::int32_t, std::vector<std::string>> namesOfType = {
        {amdTypeMP3, {"missing.mp3", "Song.Mp3", ".mp3/", "\xFF.mp3"}},
        {amdTypeM4A, {"a.m4a", "a.AAC"}},
        {amdTypeM4P, {"book.m4b", "a.M4P", "a.m4r"}},
        {amdTypeAIFF, {"Song.AIF", "song.aiff"}},
        {amdTypeWAVE, {"a.wav", "a.WAVE"}},
        {amdTypeNone, {"song.mp3 ", "mp3", "song.aifc", "a.mp3.txt", ""}}};
    for (const auto& [type, names] : namesOfType) {
        for (const std::string& name : names) {
            EXPECT_EQ(typeOf("/nowhere/" + name), type) << name;
        }
    }
    EXPECT_EQ(amdAudioFileType(SvxStringGetEmpty()), amdTypeNone);
}

TEST(Classification, LooksAtTypeAndCreator) {
    struct Case {
        const char* name;
        std::string codes;
        std::int32_t type;
    };
    const TestFolder folder;
    for (const Case& c : std::vector<Case>{{"x", "MPG3    ", amdTypeMP3},
                                           {"x.wav", "MP3     ", amdTypeMP3},
                                           {"x", "MPEG    ", amdTypeMP3},
                                           {"x", "MPG2SJAM", amdTypeMP3},
                                           {"x", "MPG2sjam", amdTypeNone},
                                           {"x", "PLAYmAmp", amdTypeMP3},
                                           {"x.aif", "PLAYxxxx", amdTypeAIFF},
                                           {"x", "Mp3 Audn", amdTypeMP3},
                                           {"x", "Mp3 TVOD", amdTypeMP3},
                                           {"x", "Mp3 hook", amdTypeNone},
                                           {"x.mp3", "AIFFabcd", amdTypeMP3},
                                           {"x.wav", "AIFFabcd", amdTypeAIFF},
                                           {"x", "AIFCabcd", amdTypeAIFF},
                                           {"x", "WAVEabcd", amdTypeWAVE},
                                           {"x.m4b", "M4A abcd", amdTypeM4A},
                                           {"x.m4b", "M4A M4P ", amdTypeM4A},
                                           {"x.wav", "WAVEM4P ", amdTypeM4P},
                                           {"x.m4a", "abcdM4B ", amdTypeM4P},
                                           {"x.m4a", "M4P M4A ", amdTypeM4A}}) {
        folder.write(c.name, "");
        folder.write(std::string("._") + c.name, appleDouble(c.codes));
        EXPECT_EQ(typeOf(folder.path(c.name)), c.type) << c.name << " " << c.codes;
    }
}

TEST(TypeCodes, ComeFromWhereverTheDiskKeepsThem) {
    const TestFolder folder;
    const std::string path = folder.write("old song", "");
    const auto type = [&path] { return hostTypeCodes(path).type; };
    EXPECT_EQ(type(), 0U);
    for (const std::string& broken :
         {std::string("short"), appleDouble("MPG3").substr(0, 56), std::string(200, '\xFF'),
          appleDouble("MPG3").replace(24, 2, "\xFF\xFF").substr(0, 80)}) {
        folder.write("._old song", broken);
        (void)hostTypeCodes(path); // any bytes: an answer, no fault
    }
    folder.write("._old song", appleDouble("MPG3abcd"));
    EXPECT_EQ(type(), fourCC("MPG3"));
    EXPECT_EQ(hostTypeCodes(path).creator, fourCC("abcd"));

    const std::string info = sample::padded("WAVEmine", 32);
    if (setxattr(path.c_str(), "user.com.apple.FinderInfo", info.data(), info.size(), 0) != 0) {
        GTEST_SKIP() << "no extended attributes in the temporary folder";
    }
    EXPECT_EQ(type(), fourCC("WAVE"));
    const std::string longer = sample::padded("AIFFmine", 33);
    ASSERT_EQ(setxattr(path.c_str(), "user.com.apple.FinderInfo", longer.data(), longer.size(), 0), 0);
    EXPECT_EQ(type(), fourCC("AIFF"));
    // An empty Finder info says nothing.
    const std::string nothing(32, '\0');
    ASSERT_EQ(setxattr(path.c_str(), "user.com.apple.FinderInfo", nothing.data(), nothing.size(), 0), 0);
    EXPECT_EQ(type(), fourCC("MPG3"));
}

} // namespace

} // namespace sonarin
