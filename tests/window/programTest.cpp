// SPDX-License-Identifier: MIT
#include "tests/window/windowTest.h"

namespace sonarin {

const std::string startAlone = "'" SONARIN_PROGRAM "' ";
const std::string startWithSong = startAlone + "'" SONARIN_SAMPLES "/sample.mp3'";

TEST(Program, ASecondStartHandsOverOrReplacesAFirstThatHangs) {
    ChildProcess first(startAlone);
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    EXPECT_EQ(ChildProcess(startWithSong).exitCode(), 0);
    EXPECT_EQ(first.exitCode(0), std::nullopt);
    first.signal(SIGSTOP);
    ChildProcess second(startWithSong);
    EXPECT_EQ(second.exitCode(6000), std::nullopt); // it has shown its own window by now
    first.signal(SIGCONT);
    EXPECT_EQ(first.exitCode(), 0);
    EXPECT_EQ(second.exitCode(500), std::nullopt);
    EXPECT_TRUE(isOnTheBus());
    second.signal(SIGTERM); // as the end of a session does
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_TRUE(UserDefaults().value(QStringLiteral("windowGeometry")).isValid());
}

TEST(Program, RunsWithoutABusAndSaysWhyItDoesNotStart) {
    ChildProcess alone("env DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere " + startWithSong);
    EXPECT_EQ(alone.exitCode(1500), std::nullopt);
    const std::string noDisplay = "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM ";
    for (const auto& [command, code, says] : Table<std::string, int, const char*>{
             {startAlone + "--foo", 2, "--foo"}, {noDisplay + startAlone, 1, "display"}}) {
        ChildProcess started(command + " 2>&1");
        EXPECT_EQ(started.exitCode(), code);
        EXPECT_NE(started.read().find(says), std::string::npos) << says;
    }
}

} // namespace sonarin
