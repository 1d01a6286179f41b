// SPDX-License-Identifier: MIT
#include "cli/orderedOutput.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace sonarin {

namespace {

struct Outputs {
    explicit Outputs(bool blankLineBetween = false, bool sharesTerminal = false)
        : output(out, err, blankLineBetween, sharesTerminal) {}
    StringSink out, err;
    OrderedOutput output;
};

TEST(OrderedOutput, ComesOutByTurns) {
    Outputs sinks(true);
    sinks.output.finish(2, "two", "2!");
    sinks.output.append(1, "o");
    sinks.output.append(1, "n");
    EXPECT_EQ(sinks.out.text, "");
    sinks.output.finish(0, "zero", "");
    EXPECT_EQ(sinks.out.text, "zero\non"); // what the next one has said so far
    sinks.output.finish(1, "e", "1!");
    sinks.output.finish(3, "", "3!"); // nothing but a complaint: no blank line
    sinks.output.finish(4, "four", "");
    sinks.output.end();
    EXPECT_EQ(sinks.out.text, "zero\none\ntwo\nfour");
    EXPECT_EQ(sinks.err.text, "1!2!3!");
    EXPECT_EQ(sinks.output.finished(), 5U);
}

TEST(OrderedOutput, HoldsMoreThanMemoryIsMeantFor) {
    Outputs sinks;
    std::string expected = "first";
    for (std::uint64_t turn = 1; turn < 40; ++turn) {
        const std::string piece(300000, static_cast<char>('a' + turn % 26));
        sinks.output.append(turn, piece);
        sinks.output.append(turn, "-");
        sinks.output.finish(turn, piece, "");
        expected += piece + "-" + piece;
    }
    EXPECT_EQ(sinks.out.text, "");
    sinks.output.finish(0, "first", "");
    EXPECT_EQ(sinks.out.text, expected);
}

TEST(OrderedOutput, WaitsForWhoIsFarBehind) {
    constexpr std::uint64_t far = 25000;
    Outputs sinks;
    std::thread ahead([&sinks] { sinks.output.finish(far, "far", ""); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(sinks.output.finished(), 0U);
    for (std::uint64_t turn = 0; turn < far; ++turn) {
        sinks.output.finish(turn, "", "");
    }
    ahead.join();
    EXPECT_EQ(sinks.out.text, "far");
}

TEST(OrderedOutput, ShowsProgressBelowTheOutput) {
    Outputs sinks(false, true);
    sinks.output.tend("1 file");
    sinks.output.tend("2 files");
    sinks.output.finish(0, "x", "");
    EXPECT_EQ(sinks.err.text, "1 file\r\x1b[K2 files\r\x1b[K");
    sinks.output.tend("3 files");
    sinks.output.end();
    EXPECT_EQ(sinks.err.text, "1 file\r\x1b[K2 files\r\x1b[K3 files\r\x1b[K");
}

TEST(OrderedOutput, TellsThatNothingMoreIsTaken) {
    struct : OutputSink {
        int write(std::string_view /*bytes*/) override {
            ++writes;
            return ENOSPC;
        }
        int writes = 0;
    } full;
    OrderedOutput output(full, full, false, false);
    output.finish(0, "x", "");
    EXPECT_EQ(output.errorNumber(), ENOSPC);
    output.finish(2, std::string(9000000, 'x'), "");
    output.finish(200000, "nobody waits any more", "");
    EXPECT_EQ(full.writes, 1);
}

} // namespace

} // namespace sonarin
