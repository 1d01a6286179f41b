// SPDX-License-Identifier: MIT
#include "platform/desktop/iconTheme.h"
#include "platform/desktop/qtPicture.h"
#include "tests/support/sampleBytes.h"
#include "tests/window/windowTest.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QDropEvent>
#include <QImage>
#include <atomic>
#include <filesystem>
#include <vector>

namespace sonarin {

namespace {

using sample::bytes;
using sample::id3Frame;
using sample::id3Tag;
using sample::mpegAudio;

class PanelWindow : public WindowTest {
protected:
    bool show(const std::string& path) {
        const bool isAudio = controller->updateValuesForNewPath(pathOf(path));
        waitForFile(*controller);
        return isAudio;
    }
    bool showFile(const std::string& name, const std::string& content) {
        return show(folder.write(name, content));
    }
};

std::string cover(const char* format, int dotsPerMetre) {
    QImage image(500, 250, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    QByteArray content;
    QBuffer buffer(&content);
    image.save(&buffer, format);
    return content.toStdString();
}

std::string withCover(const std::string& picture) {
    return id3Tag(id3Frame("APIC", bytes("\0image/png\0\3\0") + picture)) + mpegAudio(5000);
}

TEST_F(PanelWindow, FillsEveryField) {
    const std::string path = std::string(SONARIN_SAMPLES) + "/sample.mp3";
    EXPECT_TRUE(show(path));
    const AppController& c = *controller;
    const std::vector<std::pair<QLabel*, const char*>> shown = {
        {c.fileNameField, "sample.mp3"},
        {c.fileSizeField, "27.6 KB"},
        {c.id3DurationField, "0:01"},
        {c.id3BitrateEtcField, "128 kbps  44.1 kHz"},
        {c.id3SongTitleField, "Prélude in One Second"},
        {c.id3ArtistField, "The Sample Makers"},
        {c.id3AlbumField, "Small Files"},
        {c.id3YearField, "2026"},
        {c.id3ComposerField, "A. Script"},
        {c.id3EncoderAppField, "LAME"},
        {c.id3GenreField, "Classical"},
        {c.id3CommentField, "Made by make-samples"},
        {c.id3TrackNumberField, "1 of 1"},
        {c.coverArtDetailsField, "96 x 96, 10787 bytes"},
        {c.id3ChannelsField, " Joint Stereo"},
        {c.id3TagVersionField, "ID3v3"},
    };
    for (const auto& [field, text] : shown) {
        EXPECT_EQ(field->text().toStdString(), text);
    }
    EXPECT_EQ(c.myWindow->windowTitle(), "Sonarin - sample.mp3");
    EXPECT_TRUE(c.fileNameField->toolTip().contains(pathOf(path)));
    EXPECT_TRUE(c.lyricsButton->isEnabled());
    EXPECT_EQ(c.lyricsWindow, nullptr); // not made before somebody wants it
    controller->showLyrics();
    EXPECT_TRUE(c.lyricsText->toPlainText().startsWith("One second,\n"));
    EXPECT_TRUE(c.twitterButton->isEnabled());
    EXPECT_TRUE(c.fileIconField->showsImage());
    EXPECT_EQ(c.renamePopup->numberOfItems(), 5);
    EXPECT_EQ(c.findInShelvixPopup->numberOfItems(), 7);
    EXPECT_EQ(c.findInShelvixPopup->itemTitleAtIndex(3),
              "Find all songs of artist \"The Sample Makers\" in Shelvix");
}

TEST_F(PanelWindow, ReadsAgainOnlyAfterAnotherPath) {
    const std::string a = folder.write("a.mp3", songFile("A", "Ann"));
    const std::string b = folder.write("b.mp3", songFile("B"));
    EXPECT_FALSE(controller->updateValuesForNewPath(QString()));
    EXPECT_TRUE(show(a));
    folder.write("a.mp3", songFile("changed"));
    EXPECT_FALSE(show(a));
    EXPECT_EQ(controller->id3SongTitleField->text(), "A");
    EXPECT_TRUE(show(b));
    EXPECT_FALSE(controller->twitterButton->isEnabled());
    EXPECT_EQ(controller->renamePopup->numberOfItems(), 2);
    EXPECT_TRUE(show(a));
    EXPECT_EQ(controller->id3SongTitleField->text(), "changed");
    EXPECT_FALSE(controller->updateValuesForNewPath(pathOf(a)));
    EXPECT_FALSE(controller->updateValuesForNewPath(QStringLiteral(""))); // a path, but of no audio file
    EXPECT_EQ(controller->fileSizeField->text(), "n.a.");
}

TEST_F(PanelWindow, ClearsTheFactsOfWhatItCannotRead) {
    controller->showLyrics();
    std::filesystem::create_directory(folder.path("folder.mp3"));
    ASSERT_EQ(mkfifo(folder.path("fifo.mp3").c_str(), 0600), 0);
    const std::string whole = songFile("kept", "Ann");
    struct Case {
        std::string path, size;
        bool isAudio;
        int renameItems;
    };
    for (const Case& c : std::vector<Case>{
             {folder.path("missing.mp3"), "n.a.", true, 1},
             {folder.path("folder.mp3"), "n.a.", true, 1},
             {folder.path("fifo.mp3"), "n.a.", true, 1},
             {folder.path(""), "n.a.", false, 1},
             {folder.write("a.txt", "abc"), "0.0 KB", false, 1},
             {folder.write("cut.mp3", whole.substr(0, whole.size() - 5000) + "xx"), "0.1 KB", true, 3}}) {
        show(std::string(SONARIN_SAMPLES) + "/sample.mp3");
        EXPECT_EQ(show(c.path), c.isAudio) << c.path;
        EXPECT_EQ(controller->fileSizeField->text().toStdString(), c.size) << c.path;
        for (const ValueLabel* field : {controller->id3SongTitleField, controller->id3DurationField,
                                        controller->id3ChannelsField, controller->coverArtDetailsField}) {
            EXPECT_EQ(field->text(), "") << c.path;
        }
        EXPECT_EQ(controller->lyricsText->toPlainText(), " ");
        EXPECT_FALSE(controller->lyricsButton->isEnabled());
        EXPECT_FALSE(controller->fileIconField->showsImage());
        EXPECT_EQ(controller->renamePopup->numberOfItems(), c.renameItems) << c.path;
        EXPECT_EQ(controller->twitterButton->isEnabled(), c.renameItems > 1) << c.path;
    }
}

TEST_F(PanelWindow, ShowsCoversInPoints) {
    struct Case {
        std::string picture;
        const char* size;
    };
    std::string huge = cover("PNG", 2835); // whose header says 60000 x 60000
    huge.replace(16, 8, sample::bigEndian(60000) + sample::bigEndian(60000));
    int count = 0;
    for (const Case& c : std::vector<Case>{{cover("PNG", 2835), "500 x 250"},
                                           {cover("PNG", 11811), "120 x 60"},
                                           {cover("PNG", 3780), "375 x 187"},
                                           {cover("BMP", 5669), "250 x 125"},
                                           {cover("JPG", 2835), "500 x 250"},
                                           {cover("JPG", 5906), "240 x 120"},
                                           {"\xFF\xD8\xFF\xE0" + std::string(200, 'x'), "0 x 0"},
                                           {huge, "0 x 0"}}) {
        showFile("c" + std::to_string(++count) + ".mp3", withCover(c.picture));
        const QString details =
            QStringLiteral("%1, %2 bytes").arg(QLatin1StringView(c.size)).arg(c.picture.size() + 1);
        EXPECT_EQ(controller->coverArtDetailsField->text().toStdString(), details.toStdString()) << count;
        EXPECT_EQ(controller->fileIconField->showsImage(), c.size[0] != '0') << count;
    }
}

TEST_F(PanelWindow, TakesNothingInATextForMarkUp) {
    const QSize before = controller->myWindow->sizeHint();
    const std::string title = "<img src=x> AC&DC\nsecond line " + std::string(3000, 'w');
    showFile("a[*]b.mp3", songFile(title, "<b>bold</b>"));
    EXPECT_EQ(controller->id3SongTitleField->text().toStdString(), title);
    EXPECT_EQ(controller->id3ArtistField->textFormat(), Qt::PlainText);
    EXPECT_EQ(controller->myWindow->windowTitle(), "Sonarin - a[*][*]b.mp3"); // how Qt shows a single one
    EXPECT_EQ(controller->myWindow->sizeHint(), before);
    EXPECT_TRUE(controller->fileNameField->toolTip().startsWith("<p"));
    EXPECT_EQ(plainToolTip("<i>&"), "<p style='white-space:pre-wrap'>&lt;i&gt;&amp;</p>");
    EXPECT_TRUE(controller->renamePopup->itemTitleAtIndex(1).contains("AC&DC\nsecond"));
    controller->myWindow->show();
    controller->renamePopup->menu()->aboutToShow();
    const QString entry = controller->renamePopup->menu()->actions().constFirst()->text();
    EXPECT_TRUE(entry.contains("AC&&DC") && entry.contains(u'…') && !entry.contains(u'\n'));
}

TEST_F(PanelWindow, CutsMegabytesOfLyrics) {
    controller->showLyrics();
    std::string lines;
    while (lines.size() < 10000000) {
        lines += "la la la\n";
    }
    showFile("l.mp3", id3Tag(id3Frame("USLT", bytes("\0eng\0") + lines)) + mpegAudio(2000));
    EXPECT_TRUE(controller->lyricsText->toPlainText().endsWith(
        "[Cut here: 200,000 of 10,000,007 characters are shown.]"));
    EXPECT_LT(controller->lyricsText->toPlainText().size(), 200100);
    showFile("line.mp3",
             id3Tag(id3Frame("USLT", bytes("\0eng\0short\n") + std::string(100000, 'l'))) + mpegAudio(2000));
    EXPECT_EQ(controller->lyricsText->toPlainText().right(51).toStdString(),
              "[Cut here: 10,006 of 100,005 characters are shown.]");
}

TEST_F(PanelWindow, TakesPathsFromOutside) {
    const std::string strange = folder.write("b\xFF \xC3\xA9#%.mp3", songFile("strange"));
    const std::string plain = folder.write("a.mp3", songFile("plain"));
    EXPECT_TRUE(controller->applicationOpenFile(pathOf(strange)));
    EXPECT_EQ(controller->id3SongTitleField->text(), "strange");
    EXPECT_TRUE(controller->myWindow->isVisible());
    EXPECT_FALSE(controller->applicationOpenFile(pathOf(strange)));

    controller->myWindow->hide();
    QMimeData text;
    text.setText(pathOf(plain));
    controller->openFileUserDataError(&text);
    EXPECT_EQ(controller->id3SongTitleField->text(), "plain");
    text.setText(fileUri(strange));
    controller->openFileUserDataError(&text);
    EXPECT_EQ(controller->id3SongTitleField->text(), "strange");
    text.setText(' ' + pathOf(plain)); // another path: white space counts
    controller->openFileUserDataError(&text);
    EXPECT_EQ(controller->id3SongTitleField->text(), "");
    EXPECT_TRUE(controller->myWindow->isVisible());

    QApplication::clipboard()->setText(pathOf(plain) + '\n');
    controller->pastePath();
    EXPECT_EQ(controller->id3SongTitleField->text(), "plain");
    controller->myWindow->hide();
    QApplication::clipboard()->setText(pathOf(strange));
    controller->showPastedPath();
    EXPECT_TRUE(waitFor([&] { return controller->id3SongTitleField->text() == "strange"; }));
    const QString shown = controller->lastPath;
    controller->myWindow->hide();
    controller->openFileUserDataError(nullptr);
    EXPECT_TRUE(controller->myWindow->isVisible());
    EXPECT_EQ(controller->lastPath, shown);

    // A drop is taken as a copy, or its source would delete what was dragged.
    text.setText(pathOf(strange));
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &text, Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(controller->myWindow, &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &text, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(controller->myWindow, &drop);
    EXPECT_EQ(controller->id3SongTitleField->text(), "strange");
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);

    QMimeData link; // as a browser gives it
    link.setText(QStringLiteral("https://example.org/a.mp3"));
    link.setUrls({QUrl(link.text())});
    QDragEnterEvent linkEnters(QPoint(5, 5), Qt::CopyAction, &link, Qt::LeftButton, Qt::NoModifier);
    linkEnters.ignore();
    QApplication::sendEvent(controller->myWindow, &linkEnters);
    EXPECT_FALSE(linkEnters.isAccepted());
}

TEST(Pictures, AreDecodedWholeOrNotAtAll) {
    for (const char* format : {"BMP", "PPM", "PNG", "JPG"}) {
        const std::string picture = cover(format, 2835);
        const auto* first = reinterpret_cast<const std::uint8_t*>(picture.data());
        std::atomic<bool> isWanted = true;
        const auto decoded = makeHostPicture({first, picture.size()}, &isWanted);
        const auto* shown = dynamic_cast<const QtPicture*>(decoded.get());
        ASSERT_NE(shown, nullptr) << format;
        EXPECT_GT(shown->image().pixelColor(499, 249).red(), 250) << format;
        EXPECT_LT(shown->image().pixelColor(499, 249).green(), 5) << format;
        isWanted = false;
        EXPECT_EQ(makeHostPicture({first, picture.size()}, &isWanted), nullptr) << format;
    }
}

TEST(IconThemes, AreSearchedAsTheyInherit) {
    const TestFolder folder;
    const auto addIcon = [&](const std::string& place, Qt::GlobalColor colour) {
        std::filesystem::create_directories(folder.path(place));
        QImage image(48, 48, QImage::Format_RGB32);
        image.fill(colour);
        image.save(QString::fromStdString(folder.path(place + "/sound.png")));
    };
    const auto addIndex = [&](const std::string& theme, const std::string& inherits) {
        (void)folder.write(theme + "/index.theme", "[Icon Theme]\nName=x\nDirectories=48,big\nInherits=" +
                                                       inherits + "\n[48]\nSize=48\n[big]\nSize=256\n");
    };
    addIcon("home/mine/48", Qt::red); // the user's addition to a theme of the system
    addIcon("system/mine/big", Qt::green);
    addIcon("system/parent/48", Qt::blue);
    addIcon("system/other/48", Qt::yellow);
    addIndex("system/mine", "parent");
    addIndex("system/parent", "mine"); // which leads nowhere
    std::filesystem::create_directory(folder.path("system/child"));
    addIndex("system/child", "parent");
    addIndex("system/other", "");
    const auto colour = [&](const QStringList& themes, int size) {
        const IconTheme theme = {
            themes,
            {QString::fromStdString(folder.path("home")), QString::fromStdString(folder.path("system"))}};
        const QImage icon = themeIcon(theme, QStringLiteral("sound"), size);
        return icon.isNull() ? QColor() : icon.pixelColor(5, 5);
    };
    EXPECT_EQ(colour({"mine"}, 48), QColor(Qt::red));
    EXPECT_EQ(colour({"mine"}, 200), QColor(Qt::green));
    EXPECT_EQ(colour({"child", "other"}, 48), QColor(Qt::blue));
    EXPECT_EQ(colour({"missing", "other"}, 48), QColor(Qt::yellow));
    EXPECT_EQ(colour({"missing"}, 48), QColor());
}

TEST_F(PanelWindow, ConnectsEveryActionOfItsInterface) {
    int connected = 0;
    for (const QObject* object : controller->myWindow->findChildren<QObject*>()) {
        const QByteArray method = object->property("action").toByteArray();
        if (!method.isEmpty()) {
            EXPECT_GE(controller->metaObject()->indexOfMethod(method + "()"), 0) << method.constData();
            ++connected;
        }
    }
    EXPECT_GE(connected, 6);
}

} // namespace

} // namespace sonarin
