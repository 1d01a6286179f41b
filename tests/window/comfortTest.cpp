// SPDX-License-Identifier: MIT
// What makes the window pleasant: room, keyboard, screen readers, copying, the line at the foot.
#include "app/renameOutcome.h"
#include "app/window/textColours.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileIcon.h"
#include "tests/support/sampleBytes.h"
#include "tests/window/windowTest.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QToolTip>
#include <cerrno>
#include <filesystem>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;
using sample::id3Frame;
using sample::id3Tag;
using sample::mpegAudio;
using sample::textFrame;

class Comfort : public WindowTest {
protected:
    Comfort() {
        controller->showMainWindow();
        (void)waitFor([this] { return controller->myWindow->isActiveWindow(); });
    }

    void show(const std::string& path) {
        controller->applicationOpenFile(pathOf(path));
        waitForFile(*controller);
    }
    void showSample() { show(SONARIN_SAMPLES "/sample.mp3"); }
    void showFrames(const std::string& frames, const std::string& name = "x.mp3") {
        show(folder.write(name, id3Tag(frames) + mpegAudio(5000)));
    }
    [[nodiscard]] QString foot() const { return controller->followStatusField->text(); }
    static QString copied() { return QGuiApplication::clipboard()->text(); }
    static void press(int key, QWidget* widget) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QApplication::sendEvent(widget, &event);
        }
    }
    /// The titles as the menu shows them.
    static QStringList shownTitles(const PullDownButton& button) {
        emit button.menu()->aboutToShow();
        QStringList titles;
        for (const QAction* action : button.menu()->actions()) {
            titles.append(action->text());
        }
        return titles;
    }
};

TEST_F(Comfort, CaptionsAreWholeAtEverySize) {
    showFrames(textFrame("TIT2", std::string(300, 'w')) +
               textFrame("COMM", "eng" + std::string(1, '\0') + std::string(300, 'c')));
    const auto captions = controller->myWindow->findChild<QWidget*>("panelView")
                              ->findChildren<QLabel*>(QRegularExpression(QStringLiteral("FieldLabel$")));
    ASSERT_EQ(captions.size(), 11);
    for (const QSize& size : {QSize(420, 380), QSize(240, 700), QSize(620, 460), QSize(1900, 1000)}) {
        controller->myWindow->resize(size);
        runFor(20);
        for (const QLabel* caption : captions) {
            EXPECT_GE(caption->width(), caption->sizeHint().width()) << size.width();
            EXPECT_TRUE(caption->parentWidget()->rect().contains(caption->geometry())) << size.width();
            const auto* value = qobject_cast<ValueLabel*>(caption->buddy());
            EXPECT_TRUE(caption->parentWidget()->rect().contains(value->geometry()))
                << size.width() << value->objectName().toStdString();
        }
        for (const QWidget* button : {static_cast<QWidget*>(controller->twitterButton),
                                      static_cast<QWidget*>(controller->syncMenu)}) {
            EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry())) << size.width();
        }
    }
    showSample();
    EXPECT_LE(controller->fileIconField->sizeWithin({1000, 1000}).width(), 2 * 96);
}

TEST_F(Comfort, TextsStayBesideTheirCaptions) {
    showFrames(id3Frame("TCOM", bytes("\1\xFF\xFE\xD0\x05\xD1\x05"))); // Hebrew
    const QImage image = controller->id3ComposerField->grab().toImage();
    const QColor ground = image.pixelColor(image.width() - 1, 0);
    int left = image.width();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < left; ++x) {
            left = image.pixelColor(x, y) != ground ? x : left;
        }
    }
    EXPECT_LT(left, image.width() / 4);
    EXPECT_GT(left, 0); // something was painted, and no ring
}

TEST_F(Comfort, ReadsTagsByTheirStandardsWhenAskedTo) {
    const QString hint = QStringLiteral("This tag has texts that are shown only when read by its standard");
    EXPECT_FALSE(command("readByStandardAction")->isChecked());
    showFrames(textFrame("TIT2", "Caf\xE9") + textFrame("TPE1", "Ann"));
    EXPECT_EQ(controller->id3SongTitleField->text(), "");
    EXPECT_TRUE(waitFor([&] { return foot() == hint; }));
    showFrames(textFrame("TPE1", "Bob"), "y.mp3");
    runFor(100);
    EXPECT_NE(foot(), hint);

    showFrames(textFrame("TIT2", "Caf\xE9") + textFrame("TPE1", "Ann"));
    command("readByStandardAction")->trigger();
    waitForFile(*controller);
    EXPECT_EQ(controller->id3SongTitleField->text(), "Café");
    EXPECT_EQ(controller->id3ArtistField->text(), "Ann");
    runFor(100);
    EXPECT_NE(foot(), hint);
    controller = std::make_unique<AppController>(&sources, &defaults);
    EXPECT_TRUE(command("readByStandardAction")->isChecked());
    show(folder.path("x.mp3"));
    EXPECT_EQ(controller->id3SongTitleField->text(), "Café");
}

TEST_F(Comfort, WeakTextsCanBeRead) {
    for (const QPalette& palette : {QPalette(QColor(240, 240, 240), QColor(239, 239, 239)),
                                    QPalette(QColor(53, 53, 57), QColor(42, 42, 46))}) {
        controller->myWindow->setPalette(palette);
        for (const QWidget* field : {static_cast<QWidget*>(controller->fileNameField),
                                     static_cast<QWidget*>(controller->followStatusField)}) {
            EXPECT_GE(contrast(field->palette().color(QPalette::PlaceholderText),
                               field->palette().color(QPalette::Window)),
                      4.5);
        }
        preferHighContrast(true);
        EXPECT_EQ(weakText(palette, faint), palette.color(QPalette::WindowText));
        preferHighContrast(false);
    }
}

TEST_F(Comfort, TabReachesEveryValueThatThereIs) {
    showFrames(textFrame("TIT2", "Song") + textFrame("TYER", "1999"));
    const auto reached = [this] {
        QSet<QString> names;
        controller->syncCheckbox->setFocus();
        for (int i = 0; i < 60; ++i) {
            press(Qt::Key_Tab, QApplication::focusWidget());
            names.insert(QApplication::focusWidget()->objectName());
        }
        return names;
    };
    const QSet<QString> names = reached();
    for (const ValueLabel* value : controller->myWindow->findChildren<ValueLabel*>()) {
        EXPECT_EQ(names.contains(value->objectName()), !value->text().isEmpty())
            << value->objectName().toStdString();
    }
    EXPECT_FALSE(names.contains("fileIconField"));
    showSample();
    EXPECT_TRUE(reached().contains("fileIconField"));
}

TEST_F(Comfort, ScreenReadersKnowWhatIsWhat) {
    showSample();
    struct Case {
        QWidget* widget;
        QAccessible::Role role;
        const char* name;
        const char* value;
    };
    for (const Case& c : std::vector<Case>{
             {controller->id3YearField, QAccessible::EditableText, "Year", "2026"},
             {controller->id3SongTitleField, QAccessible::EditableText, "Title", "Prélude in One Second"},
             {controller->syncMenu, QAccessible::ComboBox, "What to follow", "File manager selection"},
             {controller->fileIconField, QAccessible::Graphic, "Cover", ""},
             {controller->renamePopup, QAccessible::ButtonMenu, "Rename", ""}}) {
        QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(c.widget);
        ASSERT_NE(heard, nullptr);
        EXPECT_EQ(heard->role(), c.role) << c.name;
        EXPECT_EQ(heard->text(QAccessible::Name).toStdString(), c.name);
        EXPECT_EQ(heard->text(QAccessible::Value).toStdString(), c.value);
        if (c.role == QAccessible::EditableText) {
            QAccessibleTextInterface* read = heard->textInterface();
            ASSERT_NE(read, nullptr);
            EXPECT_EQ(read->text(0, read->characterCount()).toStdString(), c.value);
            EXPECT_TRUE(heard->state().readOnly && heard->state().focusable);
        }
    }
}

TEST_F(Comfort, CopiesWhatIsThere) {
    EXPECT_FALSE(command("copyAction")->isEnabled() || command("copyAllAction")->isEnabled());
    const std::string path = SONARIN_SAMPLES "/sample.mp3";
    show(path);
    EXPECT_FALSE(command("copyAction")->isEnabled());
    controller->id3ArtistField->setFocus();
    EXPECT_TRUE(command("copyAction")->isEnabled());
    command("copyAction")->trigger();
    EXPECT_EQ(copied(), "The Sample Makers");
    controller->id3ArtistField->setSelection(4, 6);
    command("copyAction")->trigger();
    EXPECT_EQ(copied(), "Sample");
    showFrames(textFrame("COMM", bytes("eng\0one\ntwo")));
    controller->id3CommentField->setFocus();
    controller->id3CommentField->setSelection(1, 5);
    command("copyAction")->trigger();
    EXPECT_EQ(copied(), "ne\ntw");
    show(path);
    ChildProcess printed({SONARIN_INFO, path});
    QString all;
    for (std::string line = printed.read(); !line.empty(); line = printed.read()) {
        all += QString::fromStdString(line);
    }
    command("copyAllAction")->trigger();
    EXPECT_EQ(copied().remove(u'\n'), all.remove(u'\n'));
    command("copyPathAction")->trigger();
    EXPECT_EQ(copied(), pathOf(path));
    meanwhile([this] { emit controller->id3YearField->customContextMenuRequested(QPoint(1, 1)); },
              [] {
                  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                  ASSERT_NE(menu, nullptr);
                  menu->actions().constFirst()->trigger();
                  menu->close();
              });
    EXPECT_EQ(copied(), "2026");

    const std::string strange = folder.write("b\xFF.mp3", songFile("strange"));
    show(strange);
    command("copyPathAction")->trigger();
    EXPECT_EQ(copied(), fileUri(strange)); // which Paste Path takes
}

TEST_F(Comfort, TheCoverComesOut) {
    for (const char* name : {"copyPictureAction", "savePictureAction", "pictureAction"}) {
        EXPECT_FALSE(command(name)->isEnabled());
    }
    showSample();
    command("copyPictureAction")->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(96, 96));
    QString suggested;
    const std::string target = folder.path("saved.png");
    meanwhile([this] { command("savePictureAction")->trigger(); },
              [&] {
                  auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                  ASSERT_NE(dialog, nullptr);
                  suggested = dialog->selectedFiles().value(0);
                  showFrames(textFrame("TIT2", "the next file, without a picture"));
                  dialog->findChild<QLineEdit*>()->setText(QString::fromStdString(target));
                  QMetaObject::invokeMethod(dialog, "accept");
              });
    EXPECT_TRUE(waitFor([&] { return foot() == "Saved as saved.png"; })) << foot().toStdString();
    EXPECT_TRUE(suggested.endsWith("sample.png")) << suggested.toStdString();
    EXPECT_EQ(std::filesystem::file_size(target), 10787U);
    EXPECT_EQ(QImage(QString::fromStdString(target)).size(), QSize(96, 96));

    showSample();
    press(Qt::Key_Return, controller->fileIconField);
    QWidget* larger = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        larger =
            window != controller->myWindow && window->findChild<PictureView*>() != nullptr ? window : larger;
    }
    ASSERT_NE(larger, nullptr);
    EXPECT_TRUE(larger->isVisible());
    EXPECT_EQ(larger->size(), QSize(192, 192));
}

TEST_F(Comfort, LongWordsAreCutInSight) {
    showFrames(textFrame("TIT2", std::string(3000, 'w')));
    const ValueLabel* title = controller->id3SongTitleField;
    runFor(20);
    QHelpEvent asks(QEvent::ToolTip, QPoint(5, 5), title->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(controller->id3SongTitleField, &asks);
    EXPECT_TRUE(waitFor([] { return QToolTip::text().contains(QString(3000, u'w')); }));
    QToolTip::hideText();
    const QImage image =
        controller->id3SongTitleField->grab().toImage(); // of several lines, all of them full
    ASSERT_GT(image.height(), 2 * title->fontMetrics().lineSpacing());
    const auto isInk = [&](int line) {
        const int y = line * title->fontMetrics().lineSpacing() + title->fontMetrics().ascent() - 2;
        int ink = 0;
        for (int x = image.width() * 2 / 3; x < image.width() * 9 / 10; ++x) {
            ink += image.pixelColor(x, y) != image.pixelColor(0, 0) ? 1 : 0;
        }
        return ink > 0;
    };
    EXPECT_TRUE(isInk(0) && isInk(1));
    EXPECT_EQ(startOf(QStringLiteral("a😀"), 2), "a"); // no half of a character
    EXPECT_EQ(endOf(QStringLiteral("😀b"), 2), "b");
}

TEST_F(Comfort, LongEntriesAreCutWhereTheyDifferLeast) {
    const std::string artist(2000, 'a');
    const std::string title = "Begin" + std::string(2000, 't') + "End";
    showFrames(textFrame("TIT2", title) + textFrame("TPE1", artist) + textFrame("TALB", "Album") +
               textFrame("TRCK", "3"));
    const QStringList shown = shownTitles(*controller->renamePopup);
    ASSERT_EQ(shown.size(), 4);
    const int screenWidth = controller->myWindow->screen()->availableGeometry().width();
    for (const QString& entry : shown) {
        EXPECT_TRUE(entry.contains("Begin") && entry.endsWith("End.mp3")) << entry.toStdString();
        const int width = controller->renamePopup->menu()->fontMetrics().horizontalAdvance(entry);
        EXPECT_LT(width, screenWidth);
        EXPECT_GT(width, screenWidth * 3 / 4); // the screen's width first
    }
    EXPECT_TRUE(shown[1].contains(" 03 - Begin"));
    EXPECT_TRUE(shown[3].contains(" - Album - Begin") && !shown[2].contains("Album"));
    EXPECT_TRUE(controller->renamePopup->menu()->actions().at(3)->toolTip().contains(pathOf(title + ".mp3")));
    EXPECT_TRUE(controller->renamePopup->menu()->toolTipsVisible());
}

TEST_F(Comfort, AKeyOpensAMenuWithItsFirstEntryChosen) {
    showSample();
    QString chosen;
    meanwhile([this] { controller->pullDownRenameMenu(); },
              [&] {
                  QMenu* menu = controller->renamePopup->menu();
                  chosen = menu->activeAction() != nullptr ? menu->activeAction()->text() : QString();
                  menu->close();
              });
    EXPECT_EQ(chosen, "Rename to:   Prélude in One Second.mp3");
}

TEST_F(Comfort, TheFootSaysWhatGoesOn) {
    controller->syncCheckbox->setChecked(false);
    EXPECT_EQ(foot(), "Drop an audio file here, or turn on Follow");
    show(folder.write("broken.mp3", "no audio"));
    EXPECT_EQ(foot(), "No MPEG audio frame found");
    show(folder.write("a.txt", "text"));
    EXPECT_EQ(foot(), "Not an audio file, going by its name and type codes");
    (void)folder.write("Taken.mp3", "precious");
    std::string wide;
    for (int i = 0; i < 200; ++i) {
        wide += bytes("\xE9\0"); // two bytes in a name
    }
    for (const auto& [title, says] : std::vector<std::pair<std::string, const char*>>{
             {"Taken", "Not renamed: the name is taken"},
             {"a/b", "Not renamed: a name cannot hold a slash"},
             {"\x01\xFF\xFE" + wide, "Not renamed: the name is too long"},
             {"New", "Renamed"}}) {
        showFrames(title[0] == 1 ? id3Frame("TIT2", title) : textFrame("TIT2", title),
                   std::to_string(title.size()) + ".mp3");
        controller->renameToSongTitle();
        EXPECT_EQ(foot().toStdString(), says);
    }
    controller->renameToSongTitle();
    EXPECT_EQ(foot(), "Not renamed: the file is no longer there");
    EXPECT_EQ(renameOutcome(feHostError(ESHUTDOWN), nullptr),
              "Not renamed: Cannot send after transport endpoint shutdown"); // its number is 108
    EXPECT_EQ(renameOutcome(feHostError(EINVAL), nullptr), "Not renamed: no file can have that name");
    controller->say(QStringLiteral("<b>AC&DC</b>"));
    EXPECT_EQ(foot(), "&lt;b&gt;AC&amp;DC&lt;/b&gt;");
    const QSize least = controller->myWindow->minimumSizeHint();
    controller->say(QStringLiteral("Not saved: %1: the disk is full").arg(QString(250, u'x')));
    EXPECT_EQ(controller->myWindow->minimumSizeHint(), least); // whatever it says, the window stays
    EXPECT_TRUE(foot().endsWith("the disk is full"));
}

TEST_F(Comfort, ASettingThatCannotBeStoredIsSaidOnce) {
    const QByteArray config = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.write("config", "no folder")));
    UserDefaults unwritable;
    qputenv("XDG_CONFIG_HOME", config);
    int times = 0;
    unwritable.whenNotStored([&times] { ++times; });
    unwritable.set(QStringLiteral("a"), 1);
    unwritable.set(QStringLiteral("b"), 2);
    EXPECT_EQ(times, 1);
    EXPECT_EQ(unwritable.integer(QStringLiteral("b")), 2);
}

TEST_F(Comfort, OpenedFilesAreRemembered) {
    auto* menu = controller->myWindow->findChild<QMenu*>("recentMenu");
    const auto entries = [&] {
        emit menu->aboutToShow();
        QStringList names;
        for (const QAction* action : menu->actions()) {
            names.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        }
        return names.mid(0, names.indexOf(QStringLiteral("-"))).join(u'|');
    };
    EXPECT_EQ(entries(), "No File Yet");
    const std::string a = folder.write("a&b.mp3", songFile("A"));
    const std::string b = folder.write("b.mp3", songFile("B"));
    for (const std::string& path : {a, b, folder.write("broken.mp3", "x"), folder.path("missing.mp3"), a}) {
        show(path);
    }
    controller->updateValuesForNewPath(pathOf(folder.write("followed.mp3", songFile("F"))));
    waitForFile(*controller);
    const QString in = QStringLiteral(" — ") + QString::fromStdString(folder.path("")).section(u'/', -2, -2);
    EXPECT_EQ(entries(), "a&&b.mp3" + in + '|' + "b.mp3" + in);
    menu->actions().at(1)->trigger();
    waitForFile(*controller);
    EXPECT_EQ(controller->id3SongTitleField->text(), "B");
    for (int i = 0; i < 12; ++i) {
        show(folder.write(std::to_string(i) + ".mp3", songFile("x")));
    }
    EXPECT_EQ(entries().split(u'|').size(), RecentFiles::mostRemembered);
    const auto switchOf = [&] { return menu->actions().at(menu->actions().size() - 2); };
    switchOf()->trigger();
    show(a);
    EXPECT_EQ(entries(), "No File Yet");
    EXPECT_FALSE(switchOf()->isChecked());
    const QString stored = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                           QStringLiteral("/sonarin/sonarin.conf");
    EXPECT_EQ(QFile::permissions(stored) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(Comfort, TheViewMenuChoosesWhatIsFollowed) {
    command("followTrackAction")->trigger();
    EXPECT_EQ(controller->syncType, AppController::iTunesCurrentSong);
    EXPECT_EQ(controller->syncMenu->currentIndex(), 2);
    EXPECT_EQ(defaults.integer(QStringLiteral("syncKindDefaultKey")), 7);
    command("followAction")->trigger();
    EXPECT_FALSE(controller->syncCheckbox->isChecked());
    emit controller->syncMenu->activated(3);
    EXPECT_TRUE(command("followPlayerAction")->isChecked());
}

TEST(FileIcons, AreToldApartWithoutATheme) {
    const TestFolder folder;
    const IconTheme none;
    std::vector<QImage> seen;
    for (const std::string& path : {folder.write("a.mp3", ""), folder.path(""), folder.write("a.txt", ""),
                                    folder.write("a.xyz", ""), folder.path("missing.mp3")}) {
        const FileIcon icon = iconForFile(path, pathOf(path));
        lookUpIcon(icon, none);
        const QImage image = knownIcon(icon, none).value_or(QImage());
        EXPECT_FALSE(image.isNull());
        EXPECT_EQ(std::count(seen.begin(), seen.end(), image), 0) << path;
        seen.push_back(image);
    }
}

} // namespace

} // namespace sonarin
