// SPDX-License-Identifier: MIT
// What makes the window pleasant: room, keyboard, screen readers, copying, the line at the foot.
#include "app/window/textColours.h"
#include "tests/window/windowTest.h"

#include <QAccessible>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolTip>

namespace sonarin {

class Comfort : public WindowTest {
protected:
    Comfort() {
        controller->showMainWindow();
        (void)waitFor([this] { return controller->myWindow->isActiveWindow(); });
    }

    QString copiedBy(const char* name) {
        command(name)->trigger();
        return QGuiApplication::clipboard()->text();
    }
    /// Whether anything in that part of the picture differs from its ground.
    static bool hasInk(const QImage& image, const QRect& part) {
        const QImage cut = image.copy(part);
        QImage ground = cut;
        ground.fill(image.pixelColor(image.width() - 1, 0));
        return cut != ground;
    }
    static void press(int key, QWidget* widget) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }
};

TEST_F(Comfort, CaptionsAreWholeAtEverySize) {
    showFrames(textFrame("TIT2", std::string(300, 'w')) +
               textFrame("COMM", bytes("eng\0") + std::string(300, 'c')));
    const auto captions = controller->myWindow->findChildren<QLabel*>(QRegularExpression("FieldLabel$"));
    ASSERT_EQ(captions.size(), 11);
    for (const QSize& size : {QSize(420, 380), QSize(240, 700), QSize(620, 460), QSize(1900, 1000)}) {
        controller->myWindow->resize(size);
        runFor(20);
        QList<QWidget*> whole = {controller->twitterButton, controller->syncMenu};
        for (QLabel* caption : captions) {
            EXPECT_GE(caption->width(), caption->sizeHint().width()) << size.width();
            whole << caption << caption->buddy();
        }
        for (const QWidget* widget : whole) {
            EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry()))
                << size.width() << widget->objectName().toStdString();
        }
    }
}

TEST_F(Comfort, ReadsTagsByTheirStandardsWhenAskedTo) {
    const std::string hint = "This tag has texts that are shown only when read by its standard";
    const std::string path = showFrames(textFrame("TIT2", "Caf\xE9") + textFrame("TPE1", "Ann"));
    EXPECT_TRUE(says(hint));
    EXPECT_EQ(title(), "");
    showFrames(textFrame("TPE1", "Ann"), "y.mp3");
    runFor(100);
    EXPECT_NE(foot(), hint);
    show(path);
    EXPECT_FALSE(command("readByStandardAction")->isChecked());
    command("readByStandardAction")->trigger();
    EXPECT_TRUE(shows("Café"));
    openWindow(&sources);
    EXPECT_TRUE(command("readByStandardAction")->isChecked());
    show(path);
    EXPECT_EQ(title(), "Café");
    runFor(100);
    EXPECT_NE(foot(), hint);
}

TEST_F(Comfort, WeakTextsCanBeRead) {
    for (const QPalette& palette : {QPalette(QColor(240, 240, 240), QColor(239, 239, 239)),
                                    QPalette(QColor(53, 53, 57), QColor(42, 42, 46))}) {
        controller->myWindow->setPalette(palette);
        for (const QPalette& shown :
             {controller->fileNameField->palette(), controller->followStatusField->palette()}) {
            EXPECT_GE(contrast(shown.color(QPalette::PlaceholderText), shown.color(QPalette::Window)), 4.5);
        }
        preferHighContrast(true);
        EXPECT_EQ(weakText(palette, faint), palette.color(QPalette::WindowText));
        preferHighContrast(false);
    }
}

TEST_F(Comfort, TabReachesEveryValueThatThereIs) {
    showFrames(textFrame("TIT2", "Song") + textFrame("TYER", "1999"));
    for (const bool hasCover : {false, true}) {
        QSet<QString> reached;
        controller->syncCheckbox->setFocus();
        for (int i = 0; i < 60; ++i) {
            press(Qt::Key_Tab, QApplication::focusWidget());
            reached.insert(QApplication::focusWidget()->objectName());
        }
        for (const ValueLabel* value : controller->myWindow->findChildren<ValueLabel*>()) {
            EXPECT_EQ(reached.contains(value->objectName()), !value->text().isEmpty())
                << value->objectName().toStdString();
        }
        EXPECT_EQ(reached.contains("fileIconField"), hasCover);
        show(samplePath);
    }
}

TEST_F(Comfort, ScreenReadersKnowWhatIsWhat) {
    show(samplePath);
    for (const auto& [widget, role, name, value] :
         Table<QWidget*, QAccessible::Role, std::string, std::string>{
             {controller->id3YearField, QAccessible::EditableText, "Year", "2026"},
             {controller->id3SongTitleField, QAccessible::EditableText, "Title", "Prélude in One Second"},
             {controller->syncMenu, QAccessible::ComboBox, "What to follow", "File manager selection"},
             {controller->fileIconField, QAccessible::Graphic, "Cover", ""},
             {controller->renamePopup, QAccessible::ButtonMenu, "Rename", ""}}) {
        QAccessibleInterface* heard = QAccessible::queryAccessibleInterface(widget);
        EXPECT_EQ(heard->role(), role) << name;
        EXPECT_EQ(heard->text(QAccessible::Name).toStdString(), name);
        EXPECT_EQ(heard->text(QAccessible::Value).toStdString(), value);
        if (QAccessibleTextInterface* read = heard->textInterface(); role == QAccessible::EditableText) {
            EXPECT_EQ(read->text(0, read->characterCount()).toStdString(), value);
            EXPECT_TRUE(heard->state().readOnly && heard->state().focusable);
        }
    }
}

TEST_F(Comfort, CopiesWhatIsThere) {
    showFrames(textFrame("TPE1", "The Makers") + textFrame("COMM", bytes("eng\0one\ntwo")));
    for (const auto& [value, start, length, text] :
         Table<ValueLabel*, int, int, const char*>{{controller->id3ArtistField, 0, 0, "The Makers"},
                                                   {controller->id3ArtistField, 4, 3, "Mak"},
                                                   {controller->id3CommentField, 1, 5, "ne\ntw"}}) {
        value->setFocus();
        value->setSelection(start, length);
        EXPECT_EQ(copiedBy("copyAction"), text);
    }
    show(samplePath);
    ChildProcess printed("'" SONARIN_INFO "' '" + samplePath + "'");
    EXPECT_EQ(printed.exitCode(), 0);
    EXPECT_EQ(copiedBy("copyAllAction").toStdString(), printed.read());
    EXPECT_EQ(copiedBy("copyPathAction"), pathOf(samplePath));
    emit controller->id3YearField->customContextMenuRequested({1, 1});
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    menu->actions().constFirst()->trigger();
    menu->close();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "2026");

    const std::string strange = folder.write("b\xFF.mp3", songFile("strange"));
    show(strange);
    EXPECT_EQ(copiedBy("copyPathAction"), fileUri(strange)); // which Paste Path takes
}

TEST_F(Comfort, TheCoverComesOut) {
    show(samplePath);
    command("copyPictureAction")->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), QSize(96, 96));
    const std::string target = folder.path("saved.png");
    const auto save = [&](QFileDialog* dialog) {
        EXPECT_TRUE(dialog->selectedFiles().value(0).endsWith("sample.png"));
        showFrames(textFrame("TIT2", "the next file, without a picture"));
        dialog->findChild<QLineEdit*>()->setText(pathOf(target));
        QMetaObject::invokeMethod(dialog, "accept");
    };
    EXPECT_TRUE(meanwhile<QFileDialog>([this] { command("savePictureAction")->trigger(); }, save));
    EXPECT_TRUE(says("Saved as saved.png")) << foot();
    EXPECT_EQ(fs::file_size(target), 10787U);

    show(samplePath);
    press(Qt::Key_Return, controller->fileIconField);
    const auto isLarger = [](const QWidget* window) {
        return window->isVisible() && window->size() == QSize(192, 192);
    };
    EXPECT_TRUE(std::ranges::any_of(QApplication::topLevelWidgets(), isLarger));
}

TEST_F(Comfort, TextsAreDrawnWhereTheyAreLookedFor) {
    showFrames(textFrame("TIT2", std::string(3000, 'w')) +
               id3Frame("TCOM", bytes("\1\xFF\xFE\xD0\x05\xD1\x05"))); // Hebrew, and yet beside its caption
    const QImage hebrew = controller->id3ComposerField->grab().toImage();
    EXPECT_TRUE(hasInk(hebrew, QRect(1, 0, hebrew.width() / 4, hebrew.height())));
    EXPECT_FALSE(hasInk(hebrew, QRect(0, 0, 1, hebrew.height()))); // no ring
    ValueLabel* title = controller->id3SongTitleField;
    runFor(20);
    QHelpEvent asks(QEvent::ToolTip, QPoint(5, 5), title->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(title, &asks);
    EXPECT_TRUE(waitFor([] { return QToolTip::text().contains(QString(3000, u'w')); }));
    const QImage image = title->grab().toImage(); // of several lines, all of them full
    const QFontMetrics font = title->fontMetrics();
    ASSERT_GT(image.height(), 2 * font.lineSpacing());
    for (const int line : {0, 1}) {
        const int y = line * font.lineSpacing() + font.ascent() - 2;
        EXPECT_TRUE(hasInk(image, QRect(image.width() * 2 / 3, y, image.width() / 5, 1))) << line;
    }
    EXPECT_EQ(startOf(QStringLiteral("a😀"), 2), "a"); // no half of a character
    EXPECT_EQ(endOf(QStringLiteral("😀b"), 2), "b");
}

TEST_F(Comfort, LongEntriesAreCutWhereTheyDifferLeast) {
    const std::string title = "Begin" + std::string(2000, 't') + "End";
    showFrames(textFrame("TIT2", title) + textFrame("TPE1", std::string(2000, 'a')) +
               textFrame("TALB", "Album") + textFrame("TRCK", "3"));
    QMenu* menu = controller->renamePopup->menu();
    const QStringList shown = shownTitles(menu);
    ASSERT_EQ(shown.size(), 4);
    const int screenWidth = controller->myWindow->screen()->availableGeometry().width();
    for (const QString& entry : shown) {
        EXPECT_TRUE(entry.contains("Begin") && entry.endsWith("End.mp3")) << entry.toStdString();
        const int width = menu->fontMetrics().horizontalAdvance(entry);
        EXPECT_TRUE(width < screenWidth && width > screenWidth * 3 / 4) << width;
    }
    EXPECT_TRUE(shown[1].contains(" 03 - Begin"));
    EXPECT_TRUE(shown[3].contains(" - Album - Begin") && !shown[2].contains("Album"));
    EXPECT_TRUE(menu->actions().at(3)->toolTip().contains(pathOf(title + ".mp3")));
    EXPECT_TRUE(menu->toolTipsVisible());
    const auto lookAt = [](QMenu* opened) { // by a key
        EXPECT_EQ(opened->activeAction(), opened->actions().constFirst());
        opened->close();
    };
    EXPECT_TRUE(meanwhile<QMenu>([this] { controller->pullDownRenameMenu(); }, lookAt));
}

TEST_F(Comfort, TheFootSaysWhatGoesOn) {
    controller->syncCheckbox->setChecked(false);
    EXPECT_EQ(foot(), "Drop an audio file here, or turn on Follow");
    show(folder.write("broken.mp3", "no audio"));
    EXPECT_EQ(foot(), "No MPEG audio frame found");
    show(folder.write("a.txt", "text"));
    EXPECT_EQ(foot(), "Not an audio file, going by its name and type codes");
    controller->say(QStringLiteral("<b>AC&DC</b>"));
    EXPECT_EQ(foot(), "&lt;b&gt;AC&amp;DC&lt;/b&gt;");
    const QSize least = controller->myWindow->minimumSizeHint();
    controller->say(QStringLiteral("Not saved: %1: the disk is full").arg(QString(250, u'x')));
    EXPECT_EQ(controller->myWindow->minimumSizeHint(), least); // whatever it says, the window stays
    EXPECT_TRUE(foot().ends_with("the disk is full"));
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
    const auto entries = [&] { // above the line
        const QStringList titles = shownTitles(menu);
        return titles.mid(0, titles.indexOf(QString())).join(u'|');
    };
    const auto open = [this](const std::string& path) {
        controller->applicationOpenFile(pathOf(path));
        waitForFile(*controller);
    };
    EXPECT_EQ(entries(), "[No File Yet]");
    const std::string a = folder.write("a&b.mp3", songFile("A"));
    for (const std::string& path :
         {a, song("B"), folder.write("broken.mp3", "x"), folder.path("no.mp3"), a}) {
        open(path);
    }
    show(song("followed"));
    const QString in = QStringLiteral(" — ") + pathOf(folder.path("")).section(u'/', -2, -2);
    EXPECT_EQ(entries(), "a&&b.mp3" + in + "|B.mp3" + in);
    menu->actions().at(1)->trigger();
    EXPECT_TRUE(shows("B"));
    for (int i = 0; i < 12; ++i) {
        open(song(std::to_string(i)));
    }
    EXPECT_EQ(entries().split(u'|').size(), RecentFiles::mostRemembered);
    const auto switchOf = [&] { return menu->actions().at(menu->actions().size() - 2); };
    switchOf()->trigger();
    open(a);
    EXPECT_EQ(entries(), "[No File Yet]");
    EXPECT_FALSE(switchOf()->isChecked());
    EXPECT_FALSE(QFile::permissions(preferencesFile) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST(FileIcons, AreToldApartWithoutATheme) {
    const TestFolder folder;
    const IconTheme none;
    std::vector<QImage> seen = {QImage()};
    for (const std::string& path : {folder.write("a.mp3", ""), folder.path(""), folder.write("a.txt", ""),
                                    folder.write("a.xyz", ""), folder.path("missing.mp3")}) {
        const FileIcon icon = iconForFile(path, pathOf(path));
        lookUpIcon(icon, none);
        const QImage image = knownIcon(icon, none).value_or(QImage());
        EXPECT_EQ(std::count(seen.begin(), seen.end(), image), 0) << path;
        seen.push_back(image);
    }
}

} // namespace sonarin
