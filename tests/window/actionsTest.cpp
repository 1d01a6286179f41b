// SPDX-License-Identifier: MIT
#include "tests/window/windowTest.h"

#include <QMessageBox>
#include <QRegularExpression>

namespace sonarin {

namespace {

class Actions : public WindowTest {
protected:
    /// Its title and further text, closed by its button; empty when the action shows none.
    static QString alertOf(const std::function<void()>& action, int milliseconds = 5000) {
        QString shown;
        const auto close = [&shown] {
            auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (alert != nullptr) {
                shown = alert->text() + '|' + alert->informativeText();
                alert->button(QMessageBox::Ok)->click();
            }
            return alert != nullptr;
        };
        (void)meanwhile(action, close, milliseconds);
        return shown;
    }
};

TEST_F(Actions, RenameByEveryPattern) {
    int item = 0;
    for (const std::string name : {"Song.mp3", "03 - Song.mp3", "Ann - Song.mp3", "Ann - Album - Song.mp3"}) {
        const std::string path = showFrames(textFrame("TIT2", "Song") + textFrame("TPE1", "Ann") +
                                            textFrame("TALB", "Album") + textFrame("TRCK", "3"));
        EXPECT_EQ(controller->renamePopup->itemTitleAtIndex(++item).toStdString(), "Rename to:   " + name);
        controller->renamePopup->activateItemAtIndex(item);
        EXPECT_TRUE(says("Renamed"));
        EXPECT_TRUE(fs::exists(folder.path(name)) && !fs::exists(path)) << name;
        EXPECT_EQ(controller->lastPath, pathOf(path)); // until the new path is chosen
        controller->renamePopup->activateItemAtIndex(item);
        EXPECT_TRUE(says("Not renamed: the file is no longer there"));
    }
}

TEST_F(Actions, RenameNeitherReplacesNorMoves) {
    const std::string taken = folder.write("Taken.mp3", "precious");
    const std::string wide =
        bytes("\1\xFF\xFE") + sample::utf16(std::string(200, '\xE9')); // each two bytes in a name
    for (const auto& [frame, outcome] : std::vector<std::pair<std::string, const char*>>{
             {textFrame("TIT2", "Taken"), "Not renamed: the name is taken"},
             {textFrame("TIT2", bytes("Tak\0en\0")), "Not renamed: the name is taken"},
             {textFrame("TIT2", "../../x"), "Not renamed: a name cannot hold a slash"},
             {id3Frame("TIT2", wide), "Not renamed: the name is too long"}}) {
        const std::string path = showFrames(frame);
        controller->renameToSongTitle();
        EXPECT_TRUE(says(outcome)) << foot();
        EXPECT_TRUE(fs::exists(path)) << outcome;
    }
    EXPECT_EQ(fs::file_size(taken), 8U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 2);
}

/// A text in UTF-16 keeps its terminator, which no file's name can hold.
TEST_F(Actions, RenameLeavesOutU0000) {
    showFrames(id3Frame("TIT2", bytes("\1\xFF\xFEN\0e\0w\0\0\0")));
    EXPECT_EQ(shownTitles(controller->renamePopup), QStringList("Rename to:   New.mp3"));
    controller->renameToSongTitle();
    EXPECT_TRUE(says("Renamed"));
    EXPECT_TRUE(fs::exists(folder.path("New.mp3")));
}

TEST_F(Actions, AreThereAsTheTagHasTexts) {
    struct Case {
        std::string frames;
        bool hasLyrics, canTwitter;
        int items; ///< of the menu, a note that it is empty not counted
        const char* firstTitle;
    };
    EXPECT_FALSE(command("lyricsAction")->isEnabled() || command("twitterAction")->isEnabled());
    const std::string title = textFrame("TIT2", "Song");
    const std::string artist = textFrame("TPE1", "Ann");
    for (const Case& c : std::vector<Case>{{artist, false, false, 1, "No title in the tag"},
                                           {title, false, false, 2, "Rename to:   Song.mp3"},
                                           {title + artist + id3Frame("USLT", bytes("\0eng\0la\0")), true,
                                            true, 3, "Rename to:   Song.mp3"},
                                           {title, false, false, 2, "Rename to:   Song.mp3"}}) {
        showFrames(c.frames);
        EXPECT_EQ(shownTitles(controller->renamePopup).value(0), c.firstTitle);
        EXPECT_EQ(controller->renamePopup->numberOfItems(), c.items);
        EXPECT_EQ(controller->renamePopup->menu()->actions().constFirst()->isEnabled(), c.items > 1);
        EXPECT_EQ(command("lyricsAction")->isEnabled(), c.hasLyrics);
        EXPECT_EQ(command("twitterAction")->isEnabled(), c.canTwitter);
    }
}

TEST_F(Actions, FindHandsOverEscapedUrls) {
    showFrames(textFrame("TIT2", "AC&DC / 50%") + id3Frame("TPE1", bytes("\1\xFF\xFE\xE9\0")) +
               textFrame("TALB", "A=b?") + textFrame("TYER", "1999") + textFrame("TCON", "Folk, Rock") +
               textFrame("TCOM", "$+:;@"));
    int item = 0;
    for (const std::string query : {"song=AC%26DC%20%2F%2050%25", "album=A%3Db%3F", "artist=%C3%A9",
                                    "year=1999", "genre=Folk%2C%20Rock", "composer=%24%2B%3A%3B%40"}) {
        controller->findInShelvixPopup->activateItemAtIndex(++item);
        EXPECT_EQ(calledWith("cataloguer"), "shelvix://find/audio/&" + query + '\n');
    }
    controller->sendToTwitter();
    EXPECT_EQ(calledWith("browser"),
              "http://twitter.com/home/?status=Listening+to:+%C3%A9+-+AC%26DC%20%2F%2050%25\n");
    showFrames(textFrame("TIT2", "alone"));
    controller->sendToTwitter();
    EXPECT_EQ(calledWith("browser", 300), "");
    controller->donate();
    EXPECT_NE(calledWith("browser").find("https://"), std::string::npos);
}

TEST_F(Actions, EditorsAreFoundByTheirCode) {
    const std::string path = showFrames(textFrame("TIT2", "x"), "a b \xC3\xA9.mp3");
    EXPECT_EQ(alertOf([&] { controller->editWithTheTagger(); }, 500), "");
    EXPECT_EQ(calledWith("tagger"), "--edit\n" + path + '\n');
    controller->editTagsPopup->activateItemAtIndex(1);
    EXPECT_EQ(calledWith("rage"), path + '\n');
    const auto failureOf = [](const char* name) {
        return QStringLiteral("The application %1 could not be found and launched.|")
            .arg(QLatin1StringView(name));
    };
    EXPECT_EQ(alertOf([&] { controller->editWithID3X(); }), failureOf("ID3X"));

    const auto installed = [this] { // besides what else this machine has
        emit controller->editTagsPopup->aboutToPullDown();
        runFor(300); // they are looked for beside the window
        emit controller->editTagsPopup->aboutToPullDown();
        QStringList titles;
        for (int i = 4; i < controller->editTagsPopup->numberOfItems(); ++i) {
            titles.append(controller->editTagsPopup->itemTitleAtIndex(i));
        }
        return titles;
    };
    const QStringList titles = installed();
    EXPECT_EQ(installed(), titles); // entries do not pile up
    EXPECT_EQ(
        titles.filter(QRegularExpression(QStringLiteral("^(category|keyword|tagger|rage|player|nosound)$"))),
        QStringList({"category", "keyword", "tagger"})); // "rage" is not for menus
    EXPECT_EQ(titles.constFirst(), "");                  // the line

    fs::remove(path);
    EXPECT_EQ(alertOf([&] { controller->editWithTheTagger(); }), failureOf("The Tagger"));
    const int tagger = 4 + static_cast<int>(titles.indexOf(QStringLiteral("tagger")));
    EXPECT_EQ(alertOf([&] { controller->editTagsPopup->activateItemAtIndex(tagger); }), failureOf("tagger"));
    controller->lastPath = QString();
    EXPECT_EQ(alertOf([&] { controller->editWithMediaRage(); }), failureOf("Media Rage"));
    EXPECT_EQ(calledWith("tagger", 300) + calledWith("rage", 300), "");
}

TEST_F(Actions, LyricsHaveTheirWindow) {
    const auto shown = [this] { return controller->lyricsText->toPlainText().toStdString(); };
    const auto lyrics = [](const std::string& text) { return id3Frame("USLT", bytes("\0eng\0") + text); };
    EXPECT_EQ(controller->lyricsWindow, nullptr); // not made before somebody wants it
    showFrames(lyrics(bytes("<b>la</b>\0")));
    controller->lyricsButton->click();
    EXPECT_TRUE(controller->lyricsWindow->isVisible());
    EXPECT_EQ(shown(), "<b>la</b>");
    showFrames(textFrame("TIT2", "x"));
    controller->showLyrics();
    EXPECT_EQ(shown(), " ");

    std::string lines;
    while (lines.size() < 10000000) {
        lines += "la la la\n";
    }
    showFrames(lyrics(lines));
    EXPECT_TRUE(shown().ends_with("[Cut here: 200,000 of 10,000,007 characters are shown.]"));
    EXPECT_LT(shown().size(), 200100U);
    showFrames(lyrics("short\n" + std::string(100000, 'l')));
    EXPECT_TRUE(shown().ends_with("[Cut here: 10,006 of 100,005 characters are shown.]")) << shown();
}

TEST_F(Actions, HelpHasItsWindow) {
    const auto showsHelp = [this] {
        controller->showHelp();
        return controller->helpWebView->toPlainText().contains("Renaming");
    };
    EXPECT_TRUE(showsHelp());
    EXPECT_TRUE(controller->helpWindow->isVisible());
    controller->helpWebView->setPlainText("mine");
    EXPECT_FALSE(showsHelp()); // visible already: nothing happens
    controller->helpWindow->close();
    EXPECT_TRUE(showsHelp());
}

} // namespace

} // namespace sonarin
