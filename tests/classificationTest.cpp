// SPDX-License-Identifier: MIT
#include "platform/host/fileAttributes.h"
#include "tests/support/readBytes.h"

#include <sys/xattr.h>

namespace sonarin {

namespace {

using namespace sample;
using namespace std::string_literals;

/// An AppleDouble file with a comment entry before the Finder info.
std::string appleDouble(const std::string& typeAndCreator) {
    return "\x00\x05\x16\x07\x00\x02\x00\x00"s + std::string(16, '\0') + "\0\2"s + bigEndian(4) +
           bigEndian(50) + bigEndian(3) + bigEndian(9) + bigEndian(53) + bigEndian(32) + "abc" +
           padded(typeAndCreator, 32);
}

std::string typeOf(const std::string& path) {
    const std::vector<std::string> names = {"none", "MP3", "M4A", "M4P", "WAVE", "AIFF"};
    return names.at(static_cast<std::size_t>(amdAudioFileType(feMakePathText(path))));
}

TEST(Classification, GoesByNameWithoutCodes) {
    expectRows([](const std::string& name) { return typeOf("/nowhere/" + name); },
               {"missing.mp3 -> MP3", "Song.Mp3 -> MP3", ".mp3/ -> MP3", "\xFF.mp3 -> MP3", "a.m4a -> M4A",
                "a.AAC -> M4A", "book.m4b -> M4P", "a.M4P -> M4P", "a.m4r -> M4P", "Song.AIF -> AIFF",
                "song.aiff -> AIFF", "a.wav -> WAVE", "a.WAVE -> WAVE", "song.mp3  -> none", "mp3 -> none",
                "song.aifc -> none", "a.mp3.txt -> none", " -> none"});
    EXPECT_EQ(amdAudioFileType(SvxStringGetEmpty()), amdTypeNone);
    EXPECT_EQ(mp3PossibleFile(text("a.mp3"), 0, 0), 1U);
    EXPECT_EQ(mp3PossibleFile(text("a"), fourCC("MPEG"), 0), 1U);
    for (const std::uint32_t type : {0U, fourCC("M4A ")}) {
        bool isM4P = true;
        EXPECT_TRUE(aacPossibleFile(text("a.m4a"), type, 0, &isM4P));
        EXPECT_FALSE(isM4P);
    }
}

TEST(Classification, LooksAtTypeAndCreator) {
    const TestFolder folder;
    const auto type = [&folder](const std::string& nameAndCodes) {
        const std::string name = nameAndCodes.substr(0, nameAndCodes.find(':'));
        folder.write("._" + name, appleDouble(nameAndCodes.substr(name.size() + 1)));
        return typeOf(folder.write(name, ""));
    };
    expectRows(type,
               {"x:MPG3     -> MP3", "x.wav:MP3      -> MP3", "x:MPEG     -> MP3", "x:MPG2SJAM -> MP3",
                "x:MPG2sjam -> none", "x:PLAYmAmp -> MP3", "x.aif:PLAYxxxx -> AIFF", "x:Mp3 Audn -> MP3",
                "x:Mp3 TVOD -> MP3", "x:Mp3 hook -> none", "x.mp3:AIFFabcd -> MP3", "x.wav:AIFFabcd -> AIFF",
                "x:AIFCabcd -> AIFF", "x:WAVEabcd -> WAVE", "x.m4b:M4A abcd -> M4A", "x.m4b:M4A M4P  -> M4A",
                "x.wav:WAVEM4P  -> M4P", "x.m4a:abcdM4B  -> M4P", "x.m4a:M4P M4A  -> M4A"});
}

TEST(TypeCodes, ComeFromWhereverTheDiskKeepsThem) {
    const TestFolder folder;
    const std::string path = folder.write("old song", "");
    EXPECT_EQ(hostTypeCodes(path).type, 0U);
    for (const std::string& broken : {"short"s, appleDouble("MPG3").substr(0, 56), std::string(200, '\xFF'),
                                      appleDouble("MPG3").replace(24, 2, "\xFF\xFF").substr(0, 80)}) {
        folder.write("._old song", broken);
        (void)hostTypeCodes(path); // any bytes: an answer, no fault
    }
    folder.write("._old song", appleDouble("MPG3abcd").replace(24, 2, "\0\1"s)); // says that it ends before
    EXPECT_EQ(hostTypeCodes(path).type, 0U);
    folder.write("._old song", appleDouble("MPG3abcd").replace(46, 4, bigEndian(7))); // too short for both
    EXPECT_EQ(hostTypeCodes(path).type, 0U);
    folder.write("._old song", appleDouble("MPG3abcd"));
    EXPECT_EQ(hostTypeCodes(path).creator, fourCC("abcd"));
    // A Finder info without any code says nothing.
    for (const auto& [info, expected] :
         std::vector<std::pair<std::string, std::uint32_t>>{{padded("WAVEmine", 32), fourCC("WAVE")},
                                                            {padded("AIFFmine", 33), fourCC("AIFF")},
                                                            {padded("\0\0\0\0mine"s, 32), 0},
                                                            {std::string(32, '\0'), fourCC("MPG3")}}) {
        if (setxattr(path.c_str(), "user.com.apple.FinderInfo", info.data(), info.size(), 0) != 0) {
            GTEST_SKIP() << "no extended attributes in the temporary folder";
        }
        EXPECT_EQ(hostTypeCodes(path).type, expected);
    }
}

} // namespace

} // namespace sonarin
