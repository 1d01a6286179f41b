// SPDX-License-Identifier: MIT
#include "platform/host/fileDescriptor.h"
#include "platform/host/mountPoints.h"
#include "platform/host/renameItem.h"
#include "tests/support/readBytes.h"
#include "text/stringEngine.h"
#include "tools/sampleBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace sonarin {

namespace {

namespace fs = std::filesystem;
using sample::bytes;

std::string countedBytes(std::size_t size) {
    std::string content(size, '\0');
    std::generate(content.begin(), content.end(), [i = 0]() mutable { return static_cast<char>(i++ % 251); });
    return content;
}

TEST(Cache, FillsItsBufferWhereAReadMisses) {
    /// Position, count, result, and how many bytes the buffer holds afterwards.
    using Reads = std::vector<std::tuple<std::uint64_t, std::uint32_t, std::int32_t, std::uint32_t>>;
    // More as long as reads go on, and no less a little way back.
    const Reads growing = {{0, 4096, 0, 4096},        {4094, 4, 0, 16384},   {4094 + 16384, 4, 0, 65536},
                           {86013, 4, 0, 65536},      {400000, 4, 0, 4096},  {408193, 4, 0, 4096},
                           {600000, 10000, 0, 10000}, {610001, 1, 0, 40000}, {100, 65536, 0, 65536},
                           {0, 4, 0, 65536},          {999990, 10, 0, 10}};
    const std::string content = countedBytes(1000000);
    using Case = std::tuple<std::uint32_t, std::size_t, std::size_t, Reads>;
    for (const auto& [bufferSize, fileSize, laterSize, reads] :
         {Case{65536, 0, 0, {{0, 1, fileEofErr, 0}}},
          {65536, 1000, 1000, {{996, 4, 0, 1000}, {998, 4, fileEofErr, 2}, {1000, 0, 0, 2}}},
          {100, 1000, 1000, {{98, 4, 0, 100}, {960, 4, 0, 40}, {300, 100, 0, 100}}},
          // More than the buffer holds goes past it.
          {100, 1000, 1000, {{500, 101, 0, 100}, {950, 101, fileEofErr, 100}}},
          // What there was no longer fits when it is filled again.
          {100, 1000, 200, {{600, 4, fileEofErr, 0}, {150, 50, fileEofErr, 0}}},
          {65536, 1000000, 1000000, growing}}) {
        OpenBytes file(content.substr(0, fileSize), bufferSize);
        file.change(content.substr(0, laterSize));
        for (const auto& [position, count, result, filled] : reads) {
            std::string bytes(count, '\0');
            SCOPED_TRACE(position);
            EXPECT_EQ(rcReadFromCache(&file.cache, position, count, bytes.data()), result);
            EXPECT_TRUE(result != 0 || bytes == content.substr(position, count));
            EXPECT_EQ(file.cache.validLength, filled);
        }
    }
}

TEST(Cache, ServesNothingBehindTheEndOrOnceClosed) {
    OpenBytes file(countedBytes(1000), 100);
    rcCacheRec& cache = file.cache;
    EXPECT_EQ(rcBytesInCache(&cache, 80, 10).size(), 20U);
    EXPECT_TRUE(rcBytesInCache(&cache, 995, 6).empty());
    std::uint32_t out = 0;
    constexpr std::uint64_t farthest = std::uint64_t{1} << 63U;
    for (const std::uint64_t position : {farthest - 5, farthest - 4, farthest, ~std::uint64_t{0} - 1}) {
        EXPECT_EQ(rcReadFromCache(&cache, position, 4, &out), fileEofErr) << position;
        EXPECT_EQ(rcReadPastCache(&cache, position, 4, &out), fileEofErr) << position;
        EXPECT_FALSE(rcRangeIsInFile(cache, position, 4)) << position;
    }
    EXPECT_EQ(rcReadIntoCache(&cache, 0), 0);
    EXPECT_EQ(cache.validLength, 100U);
    const std::int32_t refNum = cache.refNum;
    EXPECT_EQ(rcCloseCacheAndFile(&cache), 0);
    EXPECT_EQ(fcntl(refNum, F_GETFD), -1);
    EXPECT_EQ(rcReadFromCache(&cache, 0, 4, &out), fileMemFullErr);
    EXPECT_EQ(rcReadIntoCache(&cache, 0), fileMemFullErr);
}

TEST(Cache, EndsWhenNobodyWantsIt) {
    OpenBytes file(countedBytes(500000));
    ReadProgress progress;
    file.cache.progress = &progress;
    std::string out(400000, '\0');
    EXPECT_EQ(rcReadFromCache(&file.cache, 5000, 4, out.data()), 0);
    EXPECT_EQ(progress.position, 0U); // nothing that takes long
    EXPECT_EQ(rcReadPastCache(&file.cache, 1000, 400000, out.data()), 0);
    EXPECT_EQ(out.back(), static_cast<char>(400999 % 251));
    EXPECT_EQ(progress.position, 1000U + 5 * rcStandardBufferSize);
    progress.isWanted = false;
    EXPECT_EQ(rcReadPastCache(&file.cache, 0, 400000, out.data()), fileUnwantedErr);
    EXPECT_EQ(rcReadFromCache(&file.cache, 5000, 4, out.data()), 0); // is there
    EXPECT_EQ(rcReadFromCache(&file.cache, 200000, 4, out.data()), fileUnwantedErr);
    EXPECT_TRUE(rcBytesInCache(&file.cache, 200000, 4).empty());
}

TEST(Cache, PassesOverHolesAndFourGibibytes) {
    constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;
    constexpr std::uint64_t goesOn = 5000 * mebibyte;
    const TestFolder folder;
    const std::string path = folder.write("file", "begins");
    fs::resize_file(path, 6000 * mebibyte);
    std::fstream(path, std::ios::binary | std::ios::in | std::ios::out).seekp(goesOn) << "goes on";
    CachedFile file(text(path));
    std::string read(7, '\0');
    EXPECT_EQ(rcReadFromCache(file.cache(), goesOn, 7, read.data()), 0);
    EXPECT_EQ(read, "goes on");
    const std::uint64_t data = rcPastHole(file.cache(), mebibyte);
    EXPECT_GT(data, goesOn - mebibyte); // data comes in blocks, whose size is the file system's own
    EXPECT_LE(data, goesOn);
    constexpr std::uint64_t last = ~std::uint64_t{0};
    const std::vector<std::pair<std::uint64_t, std::uint64_t>> cases = {
        {data + 1, data + 1}, {5500 * mebibyte, 6000 * mebibyte}, {3, 3},
        {mebibyte, data},     {6001 * mebibyte, 6001 * mebibyte}, {last, last}};
    for (const auto& [from, to] : cases) {
        EXPECT_EQ(rcPastHole(file.cache(), from), to);
    }
}

TEST(Cache, ReadsIntegersInBothOrders) {
    using Integers = std::tuple<std::uint16_t, std::uint32_t, std::uint64_t>;
    using Case = std::tuple<std::uint64_t, std::int32_t, std::int32_t, Integers>;
    OpenBytes file("RIFF\1\2\3\4");
    for (const auto& [position, order, result, expected] :
         {Case{0, rcByteOrderBig, 0, {0x5249, 0x52494646, 0x5249464601020304}},
          {0, rcByteOrderLittle, 0, {0x4952, 0x46464952, 0x0403020146464952}},
          {0, 0, 0, {9, 9, 9}},
          {7, rcByteOrderBig, fileEofErr, {9, 9, 9}}}) {
        Integers read(9, 9, 9);
        EXPECT_EQ(rcReadUInt16FromCache(&file.cache, position, order, &std::get<0>(read)), result);
        EXPECT_EQ(rcReadUInt32FromCache(&file.cache, position, order, &std::get<1>(read)), result);
        EXPECT_EQ(rcReadUInt64FromCache(&file.cache, position, order, &std::get<2>(read)), result);
        EXPECT_EQ(read, expected) << order;
    }
}

TEST(Cache, ThatWasNeverOpenedClosesNothing) {
    rcCacheRec cache;
    const int standardInput = fcntl(0, F_GETFD);
    EXPECT_EQ(rcCloseCacheAndFile(&cache), 0);
    EXPECT_EQ(fcntl(0, F_GETFD), standardInput);
}

TEST(Cache, HoldsACharacterUnlessTheFileIsShorter) {
    for (const auto& [fileSize, asked, given] :
         {std::tuple(1U, 65536U, 1U), {3U, 1U, 3U}, {1000U, 1U, 4U}, {1000U, 3U, 4U}, {1000U, 5U, 5U}}) {
        EXPECT_EQ(OpenBytes(countedBytes(fileSize), asked).cache.bufferSize, given) << asked;
    }
}

TEST(Files, AreOpenedOnlyWhenTheyAreFiles) {
    const TestFolder folder;
    ASSERT_EQ(mkfifo(folder.path("fifo.mp3").c_str(), 0600), 0);
    for (const std::string& path : {folder.path("fifo.mp3"), folder.path(""), std::string("/dev/zero")}) {
        const std::int32_t refNum = feOpenExistingDataFile(text(path), 0); // does not wait for a writer
        ASSERT_NE(refNum, 0);
        rcCacheRec cache;
        EXPECT_EQ(rcOpenCache(&cache, refNum, rcStandardBufferSize), feHostError(EINVAL));
        EXPECT_EQ(rcCloseCacheAndFile(&cache), 0);
        EXPECT_EQ(fcntl(refNum, F_GETFD), -1) << path;
    }
    for (const SvxStringRef& none : {text(folder.path("missing")), text(""), SvxStringRef()}) {
        EXPECT_EQ(feOpenExistingDataFile(none, 0), 0);
    }
}

TEST(Files, AreOpenedForWritingWhenAskedAndNeverAsNumberZero) {
    const TestFolder folder;
    const SvxStringRef path = text(folder.write("file", "x"));
    const int standardInput = dup(0);
    close(0);
    for (const auto& [writeAccess, mode] : {std::pair(0, O_RDONLY), {1, O_RDWR}, {2, O_RDONLY}}) {
        const std::int32_t refNum = feOpenExistingDataFile(path, writeAccess);
        EXPECT_GT(refNum, 0);
        EXPECT_EQ(fcntl(0, F_GETFD), -1);
        EXPECT_EQ(fcntl(refNum, F_GETFL) & O_ACCMODE, mode) << writeAccess;
        feCloseFile(refNum);
    }
    dup2(standardInput, 0);
    close(standardInput);
}

/// As the kernel's own files do.
TEST(Files, MayDeliverLessThanTheySay) {
    const FileDescriptor file = openRegularFile("/sys/devices/system/cpu/online");
    std::array<std::uint8_t, 5000> bytes{};
    if (!file) {
        GTEST_SKIP() << "no /sys";
    }
    EXPECT_EQ(feReadFromFile(file.get(), 0, bytes.size(), bytes.data()), fileShortReadErr);
    EXPECT_EQ(feReadFromFile(file.get(), 4096, 1, bytes.data()), fileEofErr);
    // The list of what is mapped comes a page at a time.
    EXPECT_EQ(feReadFromFile(openRegularFile("/proc/self/maps").get(), 0, bytes.size(), bytes.data()), 0);
    EXPECT_EQ(std::ranges::count(bytes, 0), 0);
}

TEST(Files, AreClosedWithTheirOwner) {
    const int number = openRegularFile("/proc/self/exe").get();
    EXPECT_EQ(openRegularFile("/proc/self/exe").get(), number);
}

TEST(Files, AreAskedAgainWhenASignalInterrupts) {
    int calls = 0;
    const auto everyThirdWorks = [&calls] { return ++calls % 3 == 0 ? 7 : -1; };
    errno = EINTR;
    EXPECT_EQ(uninterrupted(everyThirdWorks), 7);
    errno = ENOENT;
    EXPECT_EQ(uninterrupted(everyThirdWorks), -1);
}

TEST(Paths, ComeBackAsTheyWere) {
    FSRef ref;
    for (const std::string path : {"/a/b.mp3", "/ä/日本/🎵.mp3", "/\xFF\x80/\xC3.mp3", "/\xE2\x82.mp3",
                                   "\xED\xA0\x80", "\xEF\xBB\xBF"}) {
        EXPECT_EQ(feMakeFSRefFromPath(feMakePathText(path), &ref), 0);
        EXPECT_EQ(ref.path, path);
    }
    for (const char16_t* none : {u"", u"a\xD800", u"a\xDC7F", u"a\xDD00"}) {
        EXPECT_EQ(feMakeFSRefFromPath(SvxStringFromUTF16(none), &ref), feHostError(ENOENT));
    }
    EXPECT_EQ(feMakeFSRefFromPath(nullptr, &ref), feHostError(ENOENT));
    EXPECT_EQ(feMakeFSRefFromPath(SvxStringFromUTF16({u"a\0b", 3}), &ref), 0);
    EXPECT_EQ(ref.path, "a");
}

TEST(Paths, HaveALastComponent) {
    EXPECT_EQ(joined<std::string>({"/a/b.mp3", "b", "/a/b//", "/", "//", ""},
                                  [](const std::string& path) { return feLastPathComponent(text(path)); }),
              "b.mp3|b|b|/|/||");
}

TEST(MountPoints, AreFoundByTheWholeNamesOfFolders) {
    const std::vector<std::string> points = {"/", "/mnt", "/mnt/a b", "/mnt/a", "/proc"};
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/mnt/a/x.mp3", "/mnt/a"}, {"/mnt/ab/x.mp3", "/mnt"}, {"/mnt/a b/c", "/mnt/a b"},
        {"/mnt", "/mnt"},           {"/home/x", "/"},          {"x", ""}};
    for (const auto& [path, point] : cases) {
        EXPECT_EQ(mountPointOf(path, points), point) << path;
    }
    EXPECT_EQ(mountPointOf("/proc/self/mountinfo", hostMountPoints()), "/proc");
    const TestFolder folder;
    const std::string table = folder.write("mountinfo", "36 35 98:0 / /a\\040b\\134 rw - ext4 x\n");
    EXPECT_EQ(hostMountPoints(table.c_str()), std::vector<std::string>{"/a b\\"});
}

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
    for (const SvxStringRef& name :
         {text(""), SvxStringRef(), text("."), text(".."), text("a/b"), text("../x"), text("/x"),
          text(bytes("\0")), SvxStringFromUTF16({u"a\xD800"}), SvxStringFromUTF16({u"a\xDCFF"})}) {
        EXPECT_EQ(rename(path, name), feHostError(EINVAL)) << plain(name);
    }
    fs::create_directory(folder.path("folder"));
    std::string accents;
    for (int i = 0; i < 200; ++i) {
        accents += "\xC3\xA9"; // 200 units, but 400 bytes, which the disk refuses
    }
    for (const auto& [from, to, result] : std::vector<std::tuple<std::string, std::string, std::int32_t>>{
             {"old", "taken", feHostError(EEXIST)},
             {"old", bytes("tak\0en"), feHostError(EEXIST)},
             {"missing", "x", feHostError(ENOENT)},
             {"old", " new name ", 0}, // nothing is trimmed
             {" new name ", " New Name ", 0},
             {" New Name ", bytes("Without\0 end\0"), 0},
             {"Without end", std::string(300, 'n'), 0},
             {std::string(255, 'n'), accents, feHostError(ENAMETOOLONG)},
             {"folder/", "né日", 0},
             {"né日", std::string(254, 'n') + "🎵", feHostError(EINVAL)}, // of which half a pair is left
             {"né日", "other", 0},
             {"other", "taken", feHostError(EEXIST)}}) {
        EXPECT_EQ(rename(folder.path(from), text(to)), result) << from;
    }
    EXPECT_EQ(fs::file_size(folder.path(std::string(255, 'n'))), 7U);
    EXPECT_EQ(fs::file_size(folder.path("taken")), 8U);
}

TEST(Rename, ReplacesNothingWhereTheDiskCannotTell) {
    const TestFolder folder;
    folder.write("old", "content");
    folder.write("taken", "precious");
    fs::create_directory(folder.path("a"));
    fs::create_directory(folder.path("b"));
    for (const auto& [from, to, error] : {std::tuple("old", "taken", EEXIST),
                                          {"old", "new", 0},
                                          {"a", "b", EEXIST},
                                          {"b", "b/c", EINVAL},
                                          {"a", "c", 0}}) {
        EXPECT_EQ(renameItemByLink(folder.path(from), folder.path(to)), error) << from << to;
        EXPECT_EQ(fs::exists(folder.path(from)), error != 0);
    }
    EXPECT_EQ(fs::file_size(folder.path("new")), 7U);
    EXPECT_TRUE(fs::is_empty(folder.path("b")));
    // A link to the folder shows an item under a second path, as a disk that folds letter case does.
    fs::create_directory_symlink(folder.path(""), folder.path("link"));
    fs::create_hard_link(folder.path("new"), folder.path("b/hard"));
    for (const auto& [from, to, error] : {std::tuple("taken", "link/taken", 0),
                                          {"c", "link/c", 0},
                                          {"new", "link/taken", EEXIST},
                                          {"new", "b/hard", EEXIST},
                                          {"taken", "c", EEXIST}}) {
        EXPECT_EQ(renameItem(folder.path(from), folder.path(to), true), error) << from << to;
        EXPECT_EQ(renameItem(folder.path(from), folder.path(to), false), EEXIST) << from << to;
        EXPECT_TRUE(fs::exists(folder.path(from)));
    }
}

/// Several programs want the same name at the same moment: one gets it, and no file is lost.
TEST(Rename, LosesNoFileInARace) {
    for (int round = 0; round < 200; ++round) {
        const TestFolder folder;
        const std::string target = folder.path("target");
        std::vector<std::jthread> racers;
        for (const std::string name : {"a", "b", "c", "d"}) {
            racers.emplace_back([&target, byLink = name < "c", path = folder.write(name, name)] {
                (void)(byLink ? renameItemByLink(path, target) : renameItem(path, target, false));
            });
        }
        racers.clear(); // waits for them
        ASSERT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 4);
        ASSERT_TRUE(fs::exists(target));
    }
}

} // namespace

} // namespace sonarin
