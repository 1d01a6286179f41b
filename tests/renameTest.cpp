// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "platform/host/renameItem.h"
#include "tests/support/sampleBytes.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <thread>
#include <tuple>
#include <vector>

namespace sonarin {

namespace {

namespace fs = std::filesystem;
using sample::bytes;

std::int32_t rename(const std::string& path, const SvxStringRef& name) {
    FSRef renamed;
    const std::int32_t result = feRenameFolder({path}, name, &renamed);
    EXPECT_EQ(result == 0, fs::exists(renamed.path) && !renamed.path.empty());
    return result;
}

TEST(Rename, TakesTheNameExactlyOrNotAtAll) {
    const TestFolder folder;
    const std::string path = folder.write("old", "content");
    folder.write("taken", "precious");
    for (const SvxStringRef& name : {text(""), SvxStringRef(), text("."), text(".."), text("a/b"),
                                     text("../x"), text("/x"), text(bytes("\0")), text(bytes("tak\0en")),
                                     SvxStringFromUTF16({u"a\xD800"}), SvxStringFromUTF16({u"a\xDCFF"})}) {
        EXPECT_NE(rename(path, name), 0) << plain(name);
        EXPECT_TRUE(fs::exists(path)) << plain(name);
    }
    fs::create_directory(folder.path("folder"));
    std::string accents;
    for (int i = 0; i < 200; ++i) {
        accents += "\xC3\xA9"; // 200 units, but 400 bytes, which the disk refuses
    }
    for (const auto& [from, to, result] : std::vector<std::tuple<std::string, std::string, std::int32_t>>{
             {"old", "taken", feHostError(EEXIST)},
             {"missing", "x", feHostError(ENOENT)},
             {"old", " new name ", 0}, // nothing is trimmed
             {" new name ", " New Name ", 0},
             {" New Name ", bytes("Without\0 end\0"), 0},
             {"Without end", std::string(300, 'n'), 0},
             {std::string(255, 'n'), accents, feHostError(ENAMETOOLONG)},
             {"folder/", "other", 0},
             {"other", "taken", feHostError(EEXIST)}}) {
        EXPECT_EQ(rename(folder.path(from), text(to)), result) << from;
    }
    EXPECT_EQ(fs::file_size(folder.path(std::string(255, 'n'))), 7U);
    EXPECT_EQ(fs::file_size(folder.path("taken")), 8U);
}

TEST(Rename, ReplacesNothingWhereTheDiskCannotTell) {
    const TestFolder folder;
    const std::string path = folder.write("old", "content");
    const std::string taken = folder.write("taken", "precious");
    EXPECT_EQ(renameItemByLink(path, taken), EEXIST);
    EXPECT_EQ(renameItemByLink(path, folder.path("new")), 0);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(fs::file_size(folder.path("new")), 7U);
    fs::create_directory(folder.path("a"));
    fs::create_directory(folder.path("b"));
    EXPECT_EQ(renameItemByLink(folder.path("a"), folder.path("b")), EEXIST);
    EXPECT_EQ(renameItemByLink(folder.path("a"), folder.path("c")), 0);
    EXPECT_FALSE(fs::exists(folder.path("a")));
}

/// Several programs want the same name at the same moment: one gets it, and no file is lost.
TEST(Rename, LosesNoFileInARace) {
    const std::vector<std::string> names = {"a", "b", "c", "d"};
    for (int round = 0; round < 200; ++round) {
        const TestFolder folder;
        for (const std::string& name : names) {
            folder.write(name, name);
        }
        std::vector<std::jthread> racers;
        for (const std::string& name : names) {
            racers.emplace_back([&folder, &name] {
                const std::string to = folder.path("target");
                (void)(name < "c" ? renameItemByLink(folder.path(name), to)
                                  : renameItem(folder.path(name), to, false));
            });
        }
        racers.clear(); // waits for them
        ASSERT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 4);
        ASSERT_TRUE(fs::exists(folder.path("target")));
    }
}

} // namespace

} // namespace sonarin
