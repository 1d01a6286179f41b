// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/sampleBytes.h"
#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <filesystem>
#include <memory>
#include <vector>

namespace sonarin {

namespace fs = std::filesystem;
using sample::bytes;
using sample::id3Frame;
using sample::textFrame;

/// A test with a window of its own, which follows nothing by itself and has no stored preferences.
class WindowTest : public testing::Test {
protected:
    WindowTest() {
        forgetPreferences();
        openWindow(&sources);
    }
    void openWindow(SelectionSources* followed) {
        controller.reset();
        controller = std::make_unique<AppController>(followed, &defaults);
        controller->gUpdateTimer->stop();
    }

    /// Whether it is an audio file that was not shown before.
    bool choose(const std::string& path) { return controller->updateValuesForNewPath(pathOf(path)); }
    /// The same for a file that is read before anything else is done.
    bool show(const std::string& path) {
        const bool isAudio = choose(path);
        waitForFile(*controller);
        return isAudio;
    }
    /// Shows an MPEG file with those frames in its tag, whatever is shown already.
    std::string showFrames(const std::string& frames, const std::string& name = "x.mp3") {
        const std::string path = folder.write(name, sample::id3Tag(frames) + sample::mpegAudio(5000));
        controller->lastPath = QString();
        show(path);
        return path;
    }
    std::string song(const std::string& title) { return folder.write(title + ".mp3", songFile(title)); }

    [[nodiscard]] std::string title() const { return controller->id3SongTitleField->text().toStdString(); }
    [[nodiscard]] std::string foot() const { return controller->followStatusField->text().toStdString(); }
    bool shows(const std::string& text) {
        return waitFor([&] { return title() == text && !controller->isReading(); });
    }
    bool says(const std::string& text) {
        return waitFor([&] { return foot() == text; });
    }
    [[nodiscard]] QAction* command(const char* name) const {
        return controller->myWindow->findChild<QAction*>(QLatin1StringView(name));
    }
    /// The titles as the menu shows them.
    static QStringList shownTitles(const PullDownButton* button) {
        emit button->menu()->aboutToShow();
        QStringList titles;
        for (const QAction* action : button->menu()->actions()) {
            titles.append(action->text());
        }
        return titles;
    }
    /// Does `then` again and again until it answers that it is done, with what pops up while the action
    /// waits.
    static bool meanwhile(const std::function<void()>& action, const std::function<bool()>& then,
                          int milliseconds = 5000) {
        bool isDone = false;
        QTimer look;
        look.setSingleShot(true); // `then` may run the event loop as well
        look.callOnTimeout([&] {
            isDone = then();
            if (!isDone) {
                look.start();
            }
        });
        look.start(20);
        action();
        return waitFor([&] { return isDone; }, milliseconds);
    }

    TestFolder folder;
    FixedSources sources;
    UserDefaults defaults;
    std::unique_ptr<AppController> controller;
};

} // namespace sonarin
