// SPDX-License-Identifier: MIT
#include "cli/orderedOutput.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

namespace sonarin {

namespace {

struct StringSink final : OutputSink {
    int write(std::string_view bytes) override {
        text += bytes;
        return error;
    }
    std::string text;
    int error = 0;
};

struct Outputs {
    StringSink out;
    StringSink err;
};

TEST(OrderedOutput, ComesOutByTurns) {
    Outputs sinks;
    OrderedOutput output(sinks.out, sinks.err, true, false);
    output.finish(2, "two", "2!");
    output.append(1, "o");
    output.append(1, "n");
    EXPECT_EQ(sinks.out.text, "");
    output.finish(0, "zero", "");
    EXPECT_EQ(sinks.out.text, "zero\non"); // what the next one has said so far
    output.finish(1, "e", "1!");
    output.finish(3, "", "3!"); // nothing but a complaint: no blank line
    output.finish(4, "four", "");
    output.end();
    EXPECT_EQ(sinks.out.text, "zero\none\ntwo\nfour");
    EXPECT_EQ(sinks.err.text, "1!2!3!");
    EXPECT_EQ(output.finished(), 5U);
}

TEST(OrderedOutput, HoldsMoreThanMemoryIsMeantFor) {
    Outputs sinks;
    OrderedOutput output(sinks.out, sinks.err, false, false);
    std::string expected = "first";
    for (std::uint64_t turn = 1; turn < 40; ++turn) {
        const std::string piece(300000, static_cast<char>('a' + turn % 26));
        output.append(turn, piece);
        output.append(turn, "-");
        output.finish(turn, piece, "");
        expected += piece + "-" + piece;
    }
    EXPECT_EQ(sinks.out.text, "");
    output.finish(0, "first", "");
    output.end();
    EXPECT_EQ(sinks.out.text, expected);
}

TEST(OrderedOutput, WaitsForWhoIsFarBehind) {
    constexpr std::uint64_t far = 25000;
    Outputs sinks;
    OrderedOutput output(sinks.out, sinks.err, false, false);
    std::thread ahead([&output] { output.finish(far, "far", ""); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(output.finished(), 0U);
    for (std::uint64_t turn = 0; turn < far; ++turn) {
        output.finish(turn, "", "");
    }
    ahead.join();
    EXPECT_EQ(sinks.out.text, "far");
}

TEST(OrderedOutput, ShowsProgressBelowTheOutput) {
    Outputs sinks;
    OrderedOutput output(sinks.out, sinks.err, false, true);
    output.tend("1 file");
    output.tend("2 files");
    EXPECT_EQ(sinks.err.text, "1 file\r\x1b[K2 files");
    output.finish(0, "x", "");
    EXPECT_EQ(sinks.err.text, "1 file\r\x1b[K2 files\r\x1b[K");
    output.tend("3 files");
    output.end();
    EXPECT_EQ(sinks.err.text, "1 file\r\x1b[K2 files\r\x1b[K3 files\r\x1b[K");
}

TEST(OrderedOutput, TellsThatNothingMoreIsTaken) {
    Outputs sinks;
    sinks.out.error = ENOSPC;
    OrderedOutput output(sinks.out, sinks.err, false, false);
    output.finish(0, "x", "");
    EXPECT_EQ(output.errorNumber(), ENOSPC);
    output.finish(2, std::string(9000000, 'x'), "");
    output.finish(200000, "nobody waits any more", "");
    EXPECT_EQ(sinks.out.text, "x");
}

} // namespace

} // namespace sonarin
