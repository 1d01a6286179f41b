// SPDX-License-Identifier: MIT
#pragma once

#include "tools/sampleBytes.h"
#include "tools/windowSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QRegularExpression>

namespace sonarin {

using sample::bytes;
using sample::id3Frame;
using sample::textFrame;
using Question = SelectionSources::Question;
template <class... Cells>
using Table = std::vector<std::tuple<Cells...>>;
inline const std::string samplePath = SONARIN_SAMPLES "/sample.mp3";

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

    void forgetPreferences() const { QSettings(preferencesFile, QSettings::IniFormat).clear(); }

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
    /// Every value that there is, and how many entries two menus have.
    [[nodiscard]] std::string panel() const {
        QString shown;
        for (const ValueLabel* value : controller->myWindow->findChildren<ValueLabel*>()) {
            if (!value->text().isEmpty()) {
                shown += value->objectName().remove("id3").remove("Field") + '=' + value->text() + '|';
            }
        }
        shown += QString("%1 names, %2 searches")
                     .arg(controller->renamePopup->numberOfItems() - 1)
                     .arg(controller->findInShelvixPopup->numberOfItems() - 1);
        return shown.toStdString();
    }
    /// The commands and buttons that can do nothing.
    [[nodiscard]] std::string greyed() const {
        const QRegularExpression names("^[a-z].*(Action|Button)$");
        QStringList found;
        for (const QObject* object : controller->myWindow->findChildren<QObject*>(names)) {
            if (!object->property("enabled").toBool()) {
                found << object->objectName();
            }
        }
        return found.join(' ').toStdString();
    }
    QAction* command(const char* name) const { return controller->myWindow->findChild<QAction*>(name); }
    /// The titles as the menu shows them; those that are greyed in brackets.
    static QStringList shownTitles(QMenu* menu) {
        emit menu->aboutToShow();
        QStringList titles;
        for (const QAction* action : menu->actions()) {
            titles << (action->isEnabled() || action->isSeparator() ? action->text()
                                                                    : '[' + action->text() + ']');
        }
        return titles;
    }
    /// Does `then` with the dialog, or the menu, that pops up while the action waits; false when none does.
    template <class Popup>
    static bool meanwhile(const std::function<void()>& action, const std::function<void(Popup*)>& then,
                          int milliseconds = 5000) {
        bool isDone = false;
        QTimer look;
        look.callOnTimeout([&] {
            QWidget* menu = QApplication::activePopupWidget();
            QWidget* dialog = QApplication::activeModalWidget();
            if (auto* popup = qobject_cast<Popup*>(menu != nullptr ? menu : dialog)) {
                look.stop(); // `then` may run the event loop as well
                then(popup);
                isDone = true;
            }
        });
        look.start(20);
        action();
        return waitFor([&] { return isDone; }, milliseconds);
    }

    const QString preferencesFile = qEnvironmentVariable("XDG_CONFIG_HOME") + "/sonarin/sonarin.conf";
    TestFolder folder;
    FixedSources sources;
    UserDefaults defaults;
    std::unique_ptr<AppController> controller;
};

} // namespace sonarin
