// SPDX-License-Identifier: MIT
#include "tests/window/windowTest.h"

#include <QMessageBox>

namespace sonarin {

using Actions = WindowTest;

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
    for (const auto& [frame, outcome] : Table<std::string, std::string>{
             {textFrame("TIT2", "Taken"), "Not renamed: the name is taken"},
             {textFrame("TIT2", bytes("Tak\0en\0")), "Not renamed: the name is taken"},
             {textFrame("TIT2", "../../x"), "Not renamed: a name cannot hold a slash"},
             {id3Frame("TIT2", wide), "Not renamed: the name is too long"},
             // A text in UTF-16 keeps its terminator, which no file's name can hold.
             {id3Frame("TIT2", bytes("\1\xFF\xFEN\0e\0w\0\0\0")), "Renamed"}}) {
        const std::string path = showFrames(frame);
        controller->renameToSongTitle();
        EXPECT_TRUE(says(outcome)) << foot();
        EXPECT_EQ(fs::exists(path), !fs::exists(folder.path("New.mp3"))) << outcome;
    }
    EXPECT_EQ(shownTitles(controller->renamePopup->menu()), QStringList("Rename to:   New.mp3"));
    EXPECT_EQ(fs::file_size(taken), 8U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 2);
}

TEST_F(Actions, AreThereAsTheTagHasTexts) {
    const std::string title = textFrame("TIT2", "Song");
    const std::string artist = textFrame("TPE1", "Ann");
    const std::string noPicture = "savePictureAction copyAction copyPictureAction pictureAction";
    const std::string noText = "savePictureAction copyAction copyPictureAction lyricsAction twitterAction "
                               "pictureAction lyricsButton twitterButton";
    EXPECT_EQ(greyed(),
              "revealAction savePictureAction copyAction copyAllAction copyPathAction "
              "copyPictureAction lyricsAction twitterAction pictureAction lyricsButton twitterButton");
    for (const auto& [frames, entries, greyedOut] : Table<std::string, std::string, std::string>{
             {artist, "[No title in the tag]", noText},
             {title + artist + id3Frame("USLT", bytes("\0eng\0la\0")),
              "Rename to:   Song.mp3|Rename to:   Ann - Song.mp3", noPicture},
             {title, "Rename to:   Song.mp3", noText}}) {
        showFrames(frames);
        EXPECT_EQ(shownTitles(controller->renamePopup->menu()).join('|').toStdString(), entries);
        EXPECT_EQ(greyed(), greyedOut) << entries;
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
    // What an alert says, which is then dismissed; empty when the action shows none.
    const auto alertOf = [](const std::function<void()>& action, int milliseconds = 5000) {
        std::string shown;
        const auto dismiss = [&shown](QMessageBox* alert) {
            shown = alert->text().toStdString();
            alert->button(QMessageBox::Ok)->click();
        };
        (void)meanwhile<QMessageBox>(action, dismiss, milliseconds);
        return shown;
    };
    const std::string path = showFrames(textFrame("TIT2", "x"), "a b \xC3\xA9.mp3");
    EXPECT_EQ(alertOf([&] { controller->editWithTheTagger(); }, 500), "");
    EXPECT_EQ(calledWith("tagger"), "--edit\n" + path + '\n');
    controller->editTagsPopup->activateItemAtIndex(1);
    EXPECT_EQ(calledWith("rage"), path + '\n');

    QMenu* menu = controller->editTagsPopup->menu();
    const auto installed = [&] { // behind the three that are always listed
        (void)shownTitles(menu);
        runFor(300); // they are looked for beside the window
        return shownTitles(menu).mid(3);
    };
    const QStringList titles = installed();
    EXPECT_EQ(installed(), titles); // entries do not pile up
    EXPECT_EQ(titles[0], "");       // the line
    EXPECT_EQ(titles.filter(QRegularExpression("^(category|keyword|tagger|rage|player|nosound)$")),
              QStringList({"category", "keyword", "tagger"})); // besides what this machine has; no "rage"

    const auto start = [this](int item) { controller->editTagsPopup->activateItemAtIndex(item); };
    const int tagger = 4 + static_cast<int>(titles.indexOf("tagger"));
    EXPECT_EQ(alertOf([&] { start(3); }), "The application ID3X could not be found and launched.");
    fs::remove(path);
    EXPECT_EQ(alertOf([&] { start(2); }), "The application The Tagger could not be found and launched.");
    EXPECT_EQ(alertOf([&] { start(tagger); }), "The application tagger could not be found and launched.");
    controller->lastPath = QString();
    EXPECT_EQ(alertOf([&] { start(1); }), "The application Media Rage could not be found and launched.");
    EXPECT_EQ(calledWith("tagger", 300) + calledWith("rage", 300), "");
}

TEST_F(Actions, LyricsAndHelpHaveTheirWindows) {
    EXPECT_EQ(controller->lyricsWindow, nullptr); // not made before somebody wants it
    const auto lyrics = [](const std::string& text) { return id3Frame("USLT", bytes("\0eng\0") + text); };
    const std::string lines = sample::repeated(1111112, "la la la\n");
    const std::string longLine = "short\n" + std::string(10000, 'l');
    for (const auto& [frames, shown] : Table<std::string, std::string>{
             {lyrics(bytes("<b>la</b>\0")), "<b>la</b>"},
             {textFrame("TIT2", "x"), " "},
             {lyrics(lines),
              lines.substr(0, 200000) + "\n\n[Cut here: 200,000 of 10,000,007 characters are shown.]"},
             {lyrics(longLine + std::string(90000, 'l')),
              longLine + "\n\n[Cut here: 10,006 of 100,005 characters are shown.]"}}) {
        showFrames(frames);
        controller->lyricsButton->click();
        EXPECT_TRUE(controller->lyricsText->toPlainText().toStdString() == shown) << shown.substr(0, 10);
    }
    EXPECT_TRUE(controller->lyricsWindow->isVisible());

    const auto help = [this] {
        controller->showHelp();
        return controller->helpWindow->isVisible() ? controller->helpWebView->toPlainText() : QString();
    };
    EXPECT_TRUE(help().contains("Renaming"));
    controller->helpWebView->setPlainText("mine");
    EXPECT_EQ(help(), "mine"); // visible already: nothing happens
    controller->helpWindow->close();
    EXPECT_TRUE(help().contains("Renaming"));
}

} // namespace sonarin
