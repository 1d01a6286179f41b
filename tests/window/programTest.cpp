// SPDX-License-Identifier: MIT
#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <csignal>
#include <vector>

namespace sonarin {

namespace {

const char* const song = SONARIN_SAMPLES "/sample.mp3";

TEST(Program, ASecondStartHandsOverToTheFirst) {
    ChildProcess first({SONARIN_PROGRAM});
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    ChildProcess second({SONARIN_PROGRAM, song});
    ASSERT_TRUE(second.hasEnded(10000));
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_FALSE(first.hasEnded(0));
    first.signal(SIGTERM); // as the end of a session does
    ASSERT_TRUE(first.hasEnded(10000));
    EXPECT_EQ(first.exitCode(), 0);
    EXPECT_TRUE(UserDefaults().value(QStringLiteral("windowGeometry")).isValid());
}

TEST(Program, ASecondStartReplacesAFirstThatHangs) {
    ChildProcess first({SONARIN_PROGRAM});
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    first.signal(SIGSTOP);
    ChildProcess second({SONARIN_PROGRAM, song});
    EXPECT_FALSE(second.hasEnded(6000)); // it has shown its own window by now
    first.signal(SIGCONT);
    EXPECT_TRUE(first.hasEnded(10000));
    EXPECT_EQ(first.exitCode(), 0);
    EXPECT_FALSE(second.hasEnded(500));
    EXPECT_TRUE(isOnTheBus());
    second.signal(SIGTERM);
    EXPECT_TRUE(second.hasEnded(10000));
}

TEST(Program, RunsWithoutABus) {
    ChildProcess alone({"env", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", SONARIN_PROGRAM, song});
    EXPECT_FALSE(alone.hasEnded(1500));
}

TEST(Program, SaysWhyItDoesNotStart) {
    struct Case {
        std::vector<std::string> command;
        int exitCode;
        const char* says;
    };
    for (const Case& c : std::vector<Case>{
             {{SONARIN_PROGRAM, "--foo"}, 2, "--foo"},
             {{"env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "QT_QPA_PLATFORM", SONARIN_PROGRAM},
              1,
              "display"}}) {
        ChildProcess program(c.command, ChildProcess::Errors::asOutput);
        ASSERT_TRUE(program.hasEnded(10000));
        EXPECT_EQ(program.exitCode(), c.exitCode);
        EXPECT_NE(program.read().find(c.says), std::string::npos) << c.says;
    }
}

} // namespace

} // namespace sonarin
