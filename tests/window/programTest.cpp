// SPDX-License-Identifier: MIT
#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <csignal>

namespace sonarin {

namespace {

TEST(Program, ASecondStartHandsOverToTheFirst) {
    ChildProcess first({SONARIN_PROGRAM});
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    ChildProcess second({SONARIN_PROGRAM, SONARIN_SAMPLES "/sample.mp3"});
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
    ChildProcess second({SONARIN_PROGRAM, SONARIN_SAMPLES "/sample.mp3"});
    EXPECT_FALSE(second.hasEnded(6000)); // it has shown its own window by now
    first.signal(SIGCONT);
    EXPECT_TRUE(first.hasEnded(10000));
    EXPECT_EQ(first.exitCode(), 0);
    EXPECT_FALSE(second.hasEnded(500));
    EXPECT_TRUE(isOnTheBus());
    second.signal(SIGTERM);
    EXPECT_TRUE(second.hasEnded(10000));
}

TEST(Program, RefusesUnknownOptions) {
    ChildProcess program({SONARIN_PROGRAM, "--foo"}, ChildProcess::Errors::asOutput);
    ASSERT_TRUE(program.hasEnded(10000));
    EXPECT_EQ(program.exitCode(), 2);
    EXPECT_NE(program.read().find("--foo"), std::string::npos);
}

TEST(Program, RunsWithoutABus) {
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    ChildProcess alone({SONARIN_PROGRAM, SONARIN_SAMPLES "/sample.mp3"});
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_FALSE(alone.hasEnded(1500));
}

TEST(Program, SaysSoWithoutADisplay) {
    ChildProcess process(
        {"env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "QT_QPA_PLATFORM", SONARIN_PROGRAM},
        ChildProcess::Errors::asOutput);
    ASSERT_TRUE(process.hasEnded(10000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_NE(process.read().find("display"), std::string::npos);
}

} // namespace

} // namespace sonarin
