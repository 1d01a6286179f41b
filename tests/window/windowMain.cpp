// SPDX-License-Identifier: MIT
#include "platform/desktop/qtPicture.h"
#include "tools/windowSupport.h"

#include <gtest/gtest.h>

#include <QApplication>

/// Real widgets on Qt's offscreen platform, preferences in a folder of the tests' own, and a bus of their
/// own.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const sonarin::TestFolder home;
    qputenv("HOME", QByteArray::fromStdString(home.path("")));
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(home.path("config")));
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(home.path("data")));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    sonarin::installPrograms(home);
    sonarin::startTestBus();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    sonarin::decodePicturesWithQt();
    const int result = RUN_ALL_TESTS();
    sonarin::testBus.reset();
    (void)sonarin::SideWork::haveThreadsEnded(std::chrono::seconds(5));
    return result;
}
