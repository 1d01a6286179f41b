// SPDX-License-Identifier: MIT
#include "tests/support/sampleBytes.h"
#include "tests/window/windowTest.h"

#include <QApplication>
#include <QMessageBox>
#include <QRegularExpression>
#include <filesystem>
#include <vector>

namespace sonarin {

namespace {

namespace fs = std::filesystem;
using sample::bytes;
using sample::id3Frame;
using sample::id3Tag;
using sample::mpegAudio;
using sample::textFrame;

class Actions : public WindowTest {
protected:
    std::string showFrames(const std::string& frames, const std::string& name = "x.mp3") {
        const std::string path = folder.write(name, id3Tag(frames) + mpegAudio(5000));
        controller->updateValuesForNewPath(QString());
        controller->lastPath = QString();
        controller->updateValuesForNewPath(pathOf(path));
        waitForFile(*controller);
        return path;
    }
    /// The alert that the action shows, closed by its button.
    static QString alertOf(const std::function<void()>& action) {
        QString shown;
        meanwhile(action, [&shown] {
            auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (alert != nullptr) {
                shown = alert->text() + '|' + alert->button(QMessageBox::Ok)->text() + '|' +
                        alert->informativeText();
                alert->button(QMessageBox::Ok)->click();
            }
        });
        return shown;
    }
};

TEST_F(Actions, RenameByEveryPattern) {
    const std::string frames = textFrame("TIT2", "Song") + textFrame("TPE1", "Ann") +
                               textFrame("TALB", "Album") + textFrame("TRCK", "3");
    const std::vector<std::pair<void (AppController::*)(), std::string>> cases = {
        {&AppController::renameToSongTitle, "Song.mp3"},
        {&AppController::renameToTrackNumSongTitle, "03 - Song.mp3"},
        {&AppController::renameToArtistSong, "Ann - Song.mp3"},
        {&AppController::renameToArtistAlbumSong, "Ann - Album - Song.mp3"}};
    for (const auto& [action, name] : cases) {
        const std::string path = showFrames(frames);
        (controller.get()->*action)();
        EXPECT_TRUE(fs::exists(folder.path(name))) << name;
        EXPECT_FALSE(fs::exists(path));
        EXPECT_EQ(controller->lastPath, pathOf(path)); // until the new path is chosen
        (controller.get()->*action)();                 // nothing is there any more
        EXPECT_TRUE(fs::exists(folder.path(name)));
    }
    showFrames(frames);
    EXPECT_EQ(controller->renamePopup->itemTitleAtIndex(2), "Rename to:   03 - Song.mp3");
    fs::remove(folder.path("03 - Song.mp3"));
    controller->renamePopup->activateItemAtIndex(2);
    EXPECT_TRUE(fs::exists(folder.path("03 - Song.mp3")));
}

TEST_F(Actions, RenameNeitherReplacesNorMoves) {
    const std::string taken = folder.write("Taken.mp3", "precious");
    for (const std::string& title :
         {std::string("Taken"), std::string("../../x"), std::string("a/b"), bytes("Tak\0en\0")}) {
        const std::string path = showFrames(textFrame("TIT2", title));
        controller->renameToSongTitle();
        EXPECT_TRUE(fs::exists(path)) << title;
    }
    EXPECT_EQ(fs::file_size(taken), 8U);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 2);
}

/// A text in UTF-16 keeps its terminator, which no file's name can hold.
TEST_F(Actions, RenameLeavesOutU0000) {
    showFrames(id3Frame("TIT2", bytes("\1\xFF\xFEN\0e\0w\0\0\0")));
    controller->renamePopup->menu()->aboutToShow();
    EXPECT_EQ(controller->renamePopup->menu()->actions().constFirst()->text(), "Rename to:   New.mp3");
    controller->renameToSongTitle();
    EXPECT_TRUE(fs::exists(folder.path("New.mp3")));
}

TEST_F(Actions, EmptyMenusSayWhy) {
    showFrames(textFrame("TPE1", "Ann"));
    emit controller->renamePopup->menu()->aboutToShow();
    EXPECT_EQ(controller->renamePopup->numberOfItems(), 1); // it is none of the items
    const QAction* note = controller->renamePopup->menu()->actions().value(0);
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->text(), "No title in the tag");
    EXPECT_FALSE(note->isEnabled());
    showFrames(textFrame("TIT2", "Song"));
    EXPECT_EQ(controller->renamePopup->menu()->actions().size(), 1);
    EXPECT_EQ(controller->renamePopup->itemTitleAtIndex(1), "Rename to:   Song.mp3");
}

/// The commands of the menu bar are as enabled as the buttons.
TEST_F(Actions, CommandsGoWithTheirButtons) {
    const QAction* lyrics = command("lyricsAction");
    const QAction* twitter = command("twitterAction");
    EXPECT_FALSE(lyrics->isEnabled() || twitter->isEnabled());
    showFrames(textFrame("TIT2", "Song") + textFrame("TPE1", "Ann") + id3Frame("USLT", bytes("\0eng\0la\0")));
    EXPECT_TRUE(lyrics->isEnabled() && twitter->isEnabled());
    showFrames(textFrame("TIT2", "Song"));
    EXPECT_FALSE(lyrics->isEnabled() || twitter->isEnabled());
}

TEST_F(Actions, FindHandsOverEscapedUrls) {
    showFrames(textFrame("TIT2", "AC&DC / 50%") + id3Frame("TPE1", bytes("\1\xFF\xFE\xE9\0")) +
               textFrame("TALB", "A=b?") + textFrame("TYER", "1999") + textFrame("TCON", "Folk, Rock") +
               textFrame("TCOM", "$+:;@"));
    const std::vector<std::pair<void (AppController::*)(), std::string>> cases = {
        {&AppController::svxFindSong, "song=AC%26DC%20%2F%2050%25"},
        {&AppController::svxFindAlbum, "album=A%3Db%3F"},
        {&AppController::svxFindArtist, "artist=%C3%A9"},
        {&AppController::svxFindYear, "year=1999"},
        {&AppController::svxFindGenre, "genre=Folk%2C%20Rock"},
        {&AppController::svxFindComposer, "composer=%24%2B%3A%3B%40"}};
    for (const auto& [action, query] : cases) {
        (controller.get()->*action)();
        EXPECT_EQ(calledWith("cataloguer"), "shelvix://find/audio/&" + query + '\n');
    }
    controller->findInShelvixPopup->activateItemAtIndex(4);
    EXPECT_EQ(calledWith("cataloguer"), "shelvix://find/audio/&year=1999\n");
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
    EXPECT_EQ(alertOf([&] { controller->editWithTheTagger(); }), QString());
    EXPECT_EQ(calledWith("tagger"), "--edit\n" + path + '\n');
    controller->editTagsPopup->activateItemAtIndex(1);
    EXPECT_EQ(calledWith("rage"), path + '\n');
    const QString missing = alertOf([&] { controller->editWithID3X(); });
    EXPECT_TRUE(missing.startsWith("The application ID3X could not be found and launched.|"))
        << missing.toStdString();
    EXPECT_TRUE(missing.endsWith('|'));

    fs::remove(path);
    EXPECT_TRUE(alertOf([&] { controller->editWithTheTagger(); }).startsWith("The application The Tagger"));
    controller->lastPath = QString();
    EXPECT_TRUE(alertOf([&] { controller->editWithMediaRage(); }).startsWith("The application Media Rage"));
    EXPECT_EQ(calledWith("tagger", 300) + calledWith("rage", 300), "");

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
    EXPECT_EQ(installed(), installed()); // entries do not pile up
    EXPECT_EQ(installed().filter(
                  QRegularExpression(QStringLiteral("^(category|keyword|tagger|rage|player|nosound)$"))),
              QStringList({"category", "keyword", "tagger"})); // "rage" is not for menus
    EXPECT_EQ(installed().constFirst(), "");                   // the line
    const int tagger = 4 + static_cast<int>(installed().indexOf(QStringLiteral("tagger")));
    EXPECT_TRUE(alertOf([&] {
                    controller->editTagsPopup->activateItemAtIndex(tagger);
                }).startsWith("The application tagger could not")); // the file has gone
}

TEST_F(Actions, LyricsAndHelpHaveTheirWindows) {
    showFrames(id3Frame("USLT", bytes("\0eng\0<b>la</b>\0")));
    controller->lyricsButton->click();
    EXPECT_TRUE(controller->lyricsWindow->isVisible());
    EXPECT_EQ(controller->lyricsText->toPlainText(), "<b>la</b>");
    showFrames(textFrame("TIT2", "x"));
    controller->showLyrics();
    EXPECT_EQ(controller->lyricsText->toPlainText(), " ");

    controller->showHelp();
    EXPECT_TRUE(controller->helpWindow->isVisible());
    EXPECT_TRUE(controller->helpWebView->toPlainText().contains("Renaming"));
    controller->helpWebView->setPlainText("mine");
    controller->showHelp(); // visible already: nothing happens
    EXPECT_EQ(controller->helpWebView->toPlainText(), "mine");
    controller->helpWindow->close();
    controller->showHelp();
    EXPECT_TRUE(controller->helpWebView->toPlainText().contains("Renaming"));
}

} // namespace

} // namespace sonarin
