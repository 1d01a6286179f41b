// SPDX-License-Identifier: MIT
#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>

namespace sonarin {

namespace {

/// The program itself, as a user starts it.
class Program {
public:
    explicit Program(const QStringList& arguments) {
        process.start(QStringLiteral(SONARIN_PROGRAM), arguments);
    }
    ~Program() {
        process.kill();
        process.waitForFinished();
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    QProcess process;
};

bool isOnTheBus() {
    const QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("look"));
    const bool isThere = bus.interface()->isServiceRegistered(QStringLiteral("org.sonarin.Sonarin"));
    QDBusConnection::disconnectFromBus(QStringLiteral("look"));
    return isThere;
}

TEST(Program, ASecondStartHandsOverToTheFirst) {
    Program first({});
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    Program second({QStringLiteral(SONARIN_SAMPLES "/sample.mp3")});
    ASSERT_TRUE(second.process.waitForFinished(10000));
    EXPECT_EQ(second.process.exitCode(), 0);
    EXPECT_EQ(first.process.state(), QProcess::Running);
    first.process.terminate(); // as the end of a session does
    ASSERT_TRUE(first.process.waitForFinished(10000));
    EXPECT_EQ(first.process.exitStatus(), QProcess::NormalExit);
    EXPECT_TRUE(UserDefaults().value(QStringLiteral("windowGeometry")).isValid());
}

TEST(Program, RunsWithoutABus) {
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    Program alone({QStringLiteral(SONARIN_SAMPLES "/sample.mp3")});
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_FALSE(alone.process.waitForFinished(1500));
    EXPECT_EQ(alone.process.state(), QProcess::Running);
}

TEST(Program, SaysSoWithoutADisplay) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        environment.remove(QLatin1StringView(name));
    }
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SONARIN_PROGRAM), QStringList());
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_TRUE(process.readAllStandardError().contains("display"));
}

} // namespace

} // namespace sonarin
