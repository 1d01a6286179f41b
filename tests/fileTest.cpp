// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"
#include "engine/readCache.h"
#include "platform/host/fileDescriptor.h"
#include "platform/host/mountPoints.h"
#include "tests/support/testFolder.h"
#include "text/stringEngine.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

namespace sonarin {

namespace {

std::string countedBytes(std::size_t size) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        content[i] = static_cast<char>(i % 251);
    }
    return content;
}

bool isOpen(std::int32_t refNum) {
    return fcntl(refNum, F_GETFD) != -1;
}

/// A cache over a file of the test's own.
class CacheTest : public testing::Test {
protected:
    std::int32_t open(const std::string& content, std::uint32_t size = rcStandardBufferSize) {
        path_ = folder_.write("file", content);
        return rcOpenCache(&cache, feOpenExistingDataFile(feMakePathText(path_), 0), size);
    }
    void TearDown() override { rcCloseCacheAndFile(&cache); }

    std::string path_;
    TestFolder folder_;
    rcCacheRec cache;
    std::array<char, 200> out{};
};

TEST_F(CacheTest, ServesReadsUpToTheFilesEnd) {
    ASSERT_EQ(open(countedBytes(1000)), 0);
    EXPECT_EQ(cache.bufferSize, 1000U);
    EXPECT_EQ(rcReadFromCache(&cache, 996, 4, out.data()), 0);
    EXPECT_EQ(out[3], static_cast<char>(999 % 251));
    EXPECT_EQ(cache.bufferPos, 0U);
    EXPECT_EQ(rcReadFromCache(&cache, 998, 4, out.data()), fileEofErr);
    EXPECT_EQ(cache.bufferPos, 998U);
    EXPECT_EQ(cache.validLength, 2U);
    EXPECT_EQ(rcReadFromCache(&cache, 1000, 0, out.data()), 0);
    constexpr std::uint64_t farthest = std::uint64_t{1} << 63U;
    for (const std::uint64_t position : {farthest - 5, farthest - 4, farthest, ~std::uint64_t{0} - 1}) {
        EXPECT_EQ(rcReadFromCache(&cache, position, 4, out.data()), fileEofErr) << position;
        EXPECT_EQ(rcReadPastCache(&cache, position, 4, out.data()), fileEofErr) << position;
        EXPECT_FALSE(rcRangeIsInFile(cache, position, 4));
    }
    EXPECT_EQ(rcReadFromCache(&cache, 0, 4, out.data()), 0);
    const std::int32_t refNum = cache.refNum;
    EXPECT_EQ(rcCloseCacheAndFile(&cache), 0);
    EXPECT_FALSE(isOpen(refNum));
    EXPECT_EQ(rcReadFromCache(&cache, 0, 4, out.data()), fileMemFullErr);
    EXPECT_EQ(rcReadIntoCache(&cache, 0), fileMemFullErr);
}

TEST_F(CacheTest, RefillsAtTheMissAndBypassesForMore) {
    const std::string content = countedBytes(1000);
    ASSERT_EQ(open(content, 100), 0);
    EXPECT_EQ(rcReadFromCache(&cache, 98, 4, out.data()), 0); // starts inside, ends beyond
    EXPECT_EQ(cache.bufferPos, 98U);
    EXPECT_EQ(rcReadFromCache(&cache, 300, 100, out.data()), 0); // exactly the buffer
    EXPECT_EQ(cache.bufferPos, 300U);
    EXPECT_EQ(rcReadFromCache(&cache, 500, 101, out.data()), 0); // one more
    EXPECT_EQ(cache.bufferPos, 300U);
    EXPECT_EQ(std::string(out.data(), 101), content.substr(500, 101));
    EXPECT_EQ(rcReadFromCache(&cache, 950, 101, out.data()), fileEofErr);
    EXPECT_EQ(rcBytesInCache(&cache, 380, 10).size(), 20U);
    EXPECT_TRUE(rcBytesInCache(&cache, 995, 6).empty());
}

TEST_F(CacheTest, FillsMoreAsLongAsReadsGoOn) {
    const std::string content = countedBytes(1000000);
    ASSERT_EQ(open(content), 0);
    struct Step {
        std::uint64_t position;
        std::uint32_t count;
        std::uint32_t filled;
    };
    std::string read(70000, '\0');
    for (const Step& step : {Step{0, 4096, 4096},
                             {4094, 4, 16384},
                             {4094 + 16384, 4, 65536},
                             {86013, 4, 65536},
                             {400000, 4, 4096},
                             {408193, 4, 4096},
                             {600000, 10000, 10000},
                             {610001, 1, 40000},
                             {100, 65536, 65536},
                             {0, 4, 65536}, // a little back
                             {999990, 10, 10}}) {
        ASSERT_EQ(rcReadFromCache(&cache, step.position, step.count, read.data()), 0) << step.position;
        EXPECT_EQ(read.substr(0, step.count), content.substr(step.position, step.count)) << step.position;
        EXPECT_EQ(cache.validLength, step.filled) << step.position;
    }
    EXPECT_EQ(rcReadIntoCache(&cache, 1000), 0);
    EXPECT_EQ(cache.validLength, 4096U);
    EXPECT_EQ(rcReadIntoCache(&cache, 1000 + 4096), 0);
    EXPECT_EQ(cache.validLength, 16384U);
}

TEST_F(CacheTest, EndsWhenNobodyWantsIt) {
    ReadProgress progress;
    cache.progress = &progress;
    std::vector<char> much(400000);
    ASSERT_EQ(open(countedBytes(500000)), 0);
    EXPECT_EQ(progress.position, 0U); // nothing that takes long
    EXPECT_EQ(rcReadPastCache(&cache, 1000, 400000, much.data()), 0);
    EXPECT_EQ(much[399999], static_cast<char>(400999 % 251));
    EXPECT_EQ(progress.position, 1000U + 5 * rcStandardBufferSize);
    progress.isWanted = false;
    EXPECT_EQ(rcReadPastCache(&cache, 0, 400000, much.data()), fileUnwantedErr);
    EXPECT_EQ(rcReadFromCache(&cache, 100, 4, out.data()), 0); // is there
    EXPECT_EQ(rcReadFromCache(&cache, 200000, 4, out.data()), fileUnwantedErr);
    EXPECT_TRUE(rcBytesInCache(&cache, 200000, 4).empty());
}

TEST_F(CacheTest, PassesOverHolesAndFourGibibytes) {
    ASSERT_EQ(open("begins"), 0);
    rcCloseCacheAndFile(&cache);
    constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;
    constexpr std::uint64_t goesOn = 5000 * mebibyte;
    std::filesystem::resize_file(path_, 6000 * mebibyte);
    std::fstream(path_, std::ios::binary | std::ios::in | std::ios::out).seekp(goesOn) << "goes on";
    ASSERT_EQ(rcOpenCache(&cache, feOpenExistingDataFile(feMakePathText(path_), 0), rcStandardBufferSize), 0);
    EXPECT_EQ(rcPastHole(&cache, 3), 3U);
    const std::uint64_t data = rcPastHole(&cache, mebibyte);
    EXPECT_GT(data, goesOn - mebibyte); // data comes in blocks, whose size is the file system's own
    EXPECT_LE(data, goesOn);
    EXPECT_EQ(rcReadFromCache(&cache, goesOn, 7, out.data()), 0);
    EXPECT_EQ(std::string(out.data(), 7), "goes on");
    EXPECT_EQ(rcPastHole(&cache, data + 1), data + 1);
    EXPECT_EQ(rcPastHole(&cache, 5500 * mebibyte), 6000 * mebibyte);
    EXPECT_EQ(rcPastHole(&cache, mebibyte), data); // back again
    EXPECT_EQ(rcPastHole(&cache, 6001 * mebibyte), 6001 * mebibyte);
    EXPECT_EQ(rcPastHole(&cache, ~std::uint64_t{0}), ~std::uint64_t{0});
}

TEST_F(CacheTest, ReadsIntegersInBothOrders) {
    struct Case {
        std::uint64_t position;
        std::int32_t order, result;
        std::uint16_t two;
        std::uint32_t four;
        std::uint64_t eight;
    };
    ASSERT_EQ(open("RIFF\1\2\3\4"), 0);
    for (const Case& c : {Case{0, rcByteOrderBig, 0, 0x5249, 0x52494646, 0x5249464601020304},
                          {0, rcByteOrderLittle, 0, 0x4952, 0x46464952, 0x0403020146464952},
                          {0, 0, 0, 9, 9, 9},
                          {7, rcByteOrderBig, fileEofErr, 9, 9, 9}}) {
        std::uint16_t two = 9;
        std::uint32_t four = 9;
        std::uint64_t eight = 9;
        EXPECT_EQ(rcReadUInt16FromCache(&cache, c.position, c.order, &two), c.result);
        EXPECT_EQ(rcReadUInt32FromCache(&cache, c.position, c.order, &four), c.result);
        EXPECT_EQ(rcReadUInt64FromCache(&cache, c.position, c.order, &eight), c.result);
        EXPECT_EQ(std::tuple(two, four, eight), std::tuple(c.two, c.four, c.eight)) << c.order;
    }
}

TEST_F(CacheTest, HoldsACharacterUnlessTheFileIsShorter) {
    for (const auto& [fileSize, asked, given] :
         {std::tuple(1U, 65536U, 1U), {3U, 1U, 3U}, {1000U, 1U, 4U}, {1000U, 3U, 4U}, {1000U, 5U, 5U}}) {
        ASSERT_EQ(open(countedBytes(fileSize), asked), 0);
        EXPECT_EQ(cache.bufferSize, given);
        rcCloseCacheAndFile(&cache);
    }
}

TEST_F(CacheTest, KnowsEmptyAndShrinkingFiles) {
    ASSERT_EQ(open(""), 0);
    EXPECT_EQ(rcReadFromCache(&cache, 0, 1, out.data()), fileEofErr);
    rcCloseCacheAndFile(&cache);

    ASSERT_EQ(open(countedBytes(1000), 100), 0);
    ASSERT_EQ(truncate(path_.c_str(), 200), 0);
    EXPECT_EQ(rcReadFromCache(&cache, 600, 4, out.data()), fileEofErr);
    EXPECT_EQ(cache.validLength, 0U);
    EXPECT_EQ(rcReadFromCache(&cache, 150, 50, out.data()), fileEofErr); // its refill no longer fits
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
        EXPECT_FALSE(isOpen(refNum)) << path;
    }
    EXPECT_EQ(feOpenExistingDataFile(text(folder.path("missing")), 0), 0);
    EXPECT_EQ(feOpenExistingDataFile(text(""), 0), 0);
    EXPECT_EQ(feOpenExistingDataFile(SvxStringGetEmpty(), 0), 0);
}

TEST(Files, AreOpenedForWritingWhenAsked) {
    const TestFolder folder;
    const SvxStringRef path = text(folder.write("file", "x"));
    for (const auto& [writeAccess, mode] : {std::pair(0, O_RDONLY), {1, O_RDWR}, {2, O_RDONLY}}) {
        const std::int32_t refNum = feOpenExistingDataFile(path, writeAccess);
        EXPECT_EQ(fcntl(refNum, F_GETFL) & O_ACCMODE, mode) << writeAccess;
        feCloseFile(refNum);
    }
}

TEST(Files, AreAskedAgainWhenASignalInterrupts) {
    for (const auto& [error, expected] : {std::pair(EINTR, 7), {ENOENT, -1}}) {
        int calls = 0;
        EXPECT_EQ(uninterrupted([&calls, cause = error] {
                      errno = cause;
                      return ++calls < 3 ? -1 : 7;
                  }),
                  expected);
    }
}

TEST(Files, NeverGetNumberZero) {
    const TestFolder folder;
    const SvxStringRef path = text(folder.write("file", "x"));
    const int standardInput = dup(0);
    close(0);
    const std::int32_t refNum = feOpenExistingDataFile(path, 0);
    EXPECT_GT(refNum, 0);
    feCloseFile(refNum);
    dup2(standardInput, 0);
    close(standardInput);
}

TEST(Paths, ComeBackAsTheyWere) {
    FSRef ref;
    for (const std::string path :
         {"/a/b.mp3", "/ä/日本/🎵.mp3", "/\xFF\x80/\xC3.mp3", "\xED\xA0\x80", "\xEF\xBB\xBF"}) {
        EXPECT_EQ(feMakeFSRefFromPath(feMakePathText(path), &ref), 0);
        EXPECT_EQ(ref.path, path);
    }
    for (const char16_t* none : {u"", u"a\xD800", u"a\xDC7F", u"a\xDD00"}) {
        EXPECT_EQ(feMakeFSRefFromPath(SvxStringFromUTF16(none), &ref), feHostError(ENOENT));
    }
    EXPECT_EQ(feMakeFSRefFromPath(SvxStringGetEmpty(), &ref), feHostError(ENOENT));
    EXPECT_EQ(feMakeFSRefFromPath(SvxStringFromUTF8(std::string("a\0b", 3)), &ref), 0);
    EXPECT_EQ(ref.path, "a");
}

TEST(Paths, HaveALastComponent) {
    for (const auto& [path, name] : std::vector<std::pair<std::string, std::string>>{
             {"/a/b.mp3", "b.mp3"}, {"b", "b"}, {"/a/b//", "b"}, {"/", "/"}, {"//", "/"}, {"", ""}}) {
        EXPECT_EQ(plain(feLastPathComponent(text(path))), name) << path;
    }
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
}

} // namespace

} // namespace sonarin
