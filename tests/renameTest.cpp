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
#include <unistd.h>

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
    const std::u16string loneSurrogate = {u'a', 0xD800};
    const std::u16string escapedByte = {u'a', 0xDCFF};
    for (const SvxStringRef& name :
         {text(""), SvxStringRef(), text("."), text(".."), text("a/b"), text("../x"), text("/x"),
          text(bytes("\0")), text(bytes("tak\0en")), text("taken"), SvxStringFromUTF16(loneSurrogate),
          SvxStringFromUTF16(escapedByte)}) {
        EXPECT_NE(rename(path, name), 0) << plain(name);
        EXPECT_TRUE(fs::exists(path)) << plain(name);
    }
    EXPECT_EQ(rename(path, text("taken")), feHostError(EEXIST));
    EXPECT_EQ(fs::file_size(folder.path("taken")), 8U);
    EXPECT_EQ(rename(folder.path("missing"), text("x")), feHostError(ENOENT));

    EXPECT_EQ(rename(path, text(" new name ")), 0); // nothing is trimmed
    EXPECT_EQ(rename(folder.path(" new name "), text(" New Name ")), 0);
    EXPECT_EQ(rename(folder.path(" New Name "), text(bytes("Without\0 end\0"))), 0);
    EXPECT_TRUE(fs::exists(folder.path("Without end")));
    fs::create_directory(folder.path("folder"));
    EXPECT_EQ(rename(folder.path("folder/"), text("other")), 0);
    EXPECT_EQ(rename(folder.path("other"), text("taken")), feHostError(EEXIST));
}

TEST(Rename, CutsNamesAtTheirUnits) {
    const TestFolder folder;
    const std::string path = folder.write("old", "");
    EXPECT_EQ(rename(path, text(std::string(300, 'n'))), 0);
    EXPECT_TRUE(fs::exists(folder.path(std::string(255, 'n'))));
    std::string accents;
    for (int i = 0; i < 200; ++i) {
        accents += "\xC3\xA9"; // 200 units, but 400 bytes, which the disk refuses
    }
    EXPECT_EQ(rename(folder.path(std::string(255, 'n')), text(accents)), feHostError(ENAMETOOLONG));
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
    for (int round = 0; round < 200; ++round) {
        const TestFolder folder;
        std::vector<std::string> paths;
        for (const char* name : {"a", "b", "c", "d"}) {
            paths.push_back(folder.write(name, name));
        }
        std::vector<std::thread> racers;
        for (std::size_t i = 0; i < paths.size(); ++i) {
            racers.emplace_back([&, i] {
                const auto rename = i % 2 == 0 ? renameItemByLink
                                               : [](const std::string& from, const std::string& to) noexcept {
                                                     return renameItem(from, to, false);
                                                 };
                (void)rename(paths[i], folder.path("target"));
            });
        }
        for (std::thread& racer : racers) {
            racer.join();
        }
        ASSERT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 4);
        ASSERT_TRUE(fs::exists(folder.path("target")));
    }
}

TEST(Rename, LeavesTheFileWhereTheFolderIsReadOnly) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may write everywhere";
    }
    const TestFolder folder;
    const std::string path = folder.write("old", "");
    fs::permissions(folder.path(""), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(rename(path, text("new")), feHostError(EACCES));
    fs::permissions(folder.path(""), fs::perms::owner_all);
    EXPECT_TRUE(fs::exists(path));
}

} // namespace

} // namespace sonarin
