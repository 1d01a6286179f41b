// SPDX-License-Identifier: MIT
#include "platform/desktop/iconTheme.h"
#include "platform/desktop/qtPicture.h"
#include "tests/window/windowTest.h"

#include <QBuffer>
#include <QClipboard>
#include <QDropEvent>
#include <QImage>
#include <atomic>

namespace sonarin {

namespace {

class PanelWindow : public WindowTest {
protected:
    QMimeData* textOf(const QString& content) {
        text.setText(content);
        return &text;
    }
    QMimeData text;
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

TEST_F(PanelWindow, FillsEveryField) {
    const std::string path = SONARIN_SAMPLES "/sample.mp3";
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
    for (const auto& [field, fact] : shown) {
        EXPECT_EQ(field->text().toStdString(), fact);
    }
    EXPECT_EQ(c.myWindow->windowTitle(), "Sonarin - sample.mp3");
    EXPECT_TRUE(c.fileNameField->toolTip().contains(pathOf(path)));
    EXPECT_TRUE(c.lyricsButton->isEnabled() && c.twitterButton->isEnabled());
    EXPECT_TRUE(c.fileIconField->showsImage());
    EXPECT_EQ(c.renamePopup->numberOfItems(), 5);
    EXPECT_EQ(c.findInShelvixPopup->numberOfItems(), 7);
    EXPECT_EQ(c.findInShelvixPopup->itemTitleAtIndex(3),
              "Find all songs of artist \"The Sample Makers\" in Shelvix");
}

TEST_F(PanelWindow, ReadsAgainOnlyAfterAnotherPath) {
    const std::string a = song("A");
    EXPECT_FALSE(controller->updateValuesForNewPath(QString()));
    EXPECT_TRUE(show(a));
    (void)folder.write("A.mp3", songFile("changed"));
    EXPECT_FALSE(show(a));
    EXPECT_EQ(title(), "A");
    EXPECT_TRUE(show(song("B")));
    EXPECT_TRUE(show(a));
    EXPECT_EQ(title(), "changed");
    EXPECT_FALSE(controller->updateValuesForNewPath(QStringLiteral(""))); // a path, but of no audio file
    EXPECT_EQ(controller->fileSizeField->text(), "n.a.");
}

TEST_F(PanelWindow, ClearsTheFactsOfWhatItCannotRead) {
    controller->showLyrics();
    fs::create_directory(folder.path("folder.mp3"));
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
        show(SONARIN_SAMPLES "/sample.mp3");
        EXPECT_TRUE(controller->lyricsText->toPlainText().startsWith("One second,\n"));
        EXPECT_EQ(show(c.path), c.isAudio) << c.path;
        EXPECT_EQ(controller->fileSizeField->text().toStdString(), c.size) << c.path;
        for (const ValueLabel* field : {controller->id3SongTitleField, controller->id3DurationField,
                                        controller->id3ChannelsField, controller->coverArtDetailsField}) {
            EXPECT_EQ(field->text(), "") << c.path;
        }
        EXPECT_EQ(controller->lyricsText->toPlainText(), " ");
        EXPECT_FALSE(controller->lyricsButton->isEnabled() || controller->fileIconField->showsImage());
        EXPECT_EQ(controller->renamePopup->numberOfItems(), c.renameItems) << c.path;
        EXPECT_EQ(controller->twitterButton->isEnabled(), c.renameItems > 1) << c.path;
    }
}

TEST_F(PanelWindow, ShowsCoversInPoints) {
    std::string huge = cover("PNG", 2835); // whose header says 60000 x 60000
    huge.replace(16, 8, sample::bigEndian(60000) + sample::bigEndian(60000));
    for (const auto& [picture, size] : std::vector<std::pair<std::string, std::string>>{
             {cover("PNG", 2835), "500 x 250"},
             {cover("PNG", 11811), "120 x 60"},
             {cover("PNG", 3780), "375 x 187"},
             {cover("BMP", 5669), "250 x 125"},
             {cover("JPG", 2835), "500 x 250"},
             {cover("JPG", 5906), "240 x 120"},
             {"\xFF\xD8\xFF\xE0" + std::string(200, 'x'), "0 x 0"},
             {huge, "0 x 0"}}) {
        showFrames(id3Frame("APIC", bytes("\0image/png\0\3\0") + picture));
        EXPECT_EQ(controller->coverArtDetailsField->text().toStdString(),
                  size + ", " + std::to_string(picture.size() + 1) + " bytes");
        EXPECT_EQ(controller->fileIconField->showsImage(), size != "0 x 0") << size;
    }
}

TEST_F(PanelWindow, TakesNothingInATextForMarkUp) {
    const QSize before = controller->myWindow->sizeHint();
    const std::string markUp = "<img src=x> AC&DC\nsecond line " + std::string(3000, 'w');
    show(folder.write("a[*]b.mp3", songFile(markUp, "<b>bold</b>")));
    EXPECT_EQ(title(), markUp);
    EXPECT_EQ(controller->id3ArtistField->textFormat(), Qt::PlainText);
    EXPECT_EQ(controller->myWindow->windowTitle(), "Sonarin - a[*][*]b.mp3"); // how Qt shows a single one
    EXPECT_EQ(controller->myWindow->sizeHint(), before);
    EXPECT_TRUE(controller->fileNameField->toolTip().startsWith("<p"));
    EXPECT_EQ(plainToolTip("<i>&"), "<p style='white-space:pre-wrap'>&lt;i&gt;&amp;</p>");
    EXPECT_TRUE(controller->renamePopup->itemTitleAtIndex(1).contains("AC&DC\nsecond"));
    controller->myWindow->show();
    const QString entry = shownTitles(controller->renamePopup).constFirst();
    EXPECT_TRUE(entry.contains("AC&&DC") && entry.contains(u'…') && !entry.contains(u'\n'));
}

TEST_F(PanelWindow, TakesPathsFromOutside) {
    const std::string strange = folder.write("b\xFF \xC3\xA9#%.mp3", songFile("strange"));
    const std::string plain = song("plain");
    QApplication::clipboard()->setText(pathOf(plain) + '\n');
    controller->pastePath();
    EXPECT_TRUE(shows("plain"));
    const auto takeText = [this](const QString& content) {
        return [this, content] { controller->openFileUserDataError(textOf(content)); };
    };
    const std::vector<std::pair<std::function<void()>, const char*>> ways = {
        {[&] { EXPECT_TRUE(controller->applicationOpenFile(pathOf(strange))); }, "strange"},
        {[&] { EXPECT_FALSE(controller->applicationOpenFile(pathOf(strange))); }, "strange"},
        {takeText(pathOf(plain)), "plain"},
        {takeText(fileUri(strange)), "strange"},
        {[this] { controller->openFileUserDataError(nullptr); }, "strange"},
        {takeText(' ' + pathOf(plain)), ""}, // another path: white space counts
        {[this] { controller->showPastedPath(); }, "plain"}};
    for (const auto& [way, shown] : ways) {
        controller->myWindow->hide();
        way();
        EXPECT_TRUE(shows(shown)) << shown;
        EXPECT_TRUE(controller->myWindow->isVisible()) << shown;
    }

    // A drop is taken as a copy, or its source would delete what was dragged.
    const Qt::DropActions either = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(QPoint(5, 5), either, textOf(pathOf(strange)), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(controller->myWindow, &enter);
    QDropEvent drop(QPointF(5, 5), either, &text, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(controller->myWindow, &drop);
    EXPECT_TRUE(shows("strange"));
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);

    text.setText(QStringLiteral("https://example.org/a.mp3"));
    text.setUrls({QUrl(text.text())}); // as a browser gives it
    QDragEnterEvent linkEnters(QPoint(5, 5), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    linkEnters.ignore();
    QApplication::sendEvent(controller->myWindow, &linkEnters);
    EXPECT_FALSE(linkEnters.isAccepted());
}

TEST(Pictures, AreDecodedWholeOrNotAtAll) {
    for (const char* format : {"BMP", "PPM", "PNG", "JPG"}) {
        const std::string picture = cover(format, 2835);
        const std::span<const std::uint8_t> content(reinterpret_cast<const std::uint8_t*>(picture.data()),
                                                    picture.size());
        std::atomic<bool> isWanted = true;
        const auto decoded = makeHostPicture(content, &isWanted);
        const auto* shown = dynamic_cast<const QtPicture*>(decoded.get());
        ASSERT_NE(shown, nullptr) << format;
        EXPECT_GT(shown->image().pixelColor(499, 249).red(), 250) << format;
        EXPECT_LT(shown->image().pixelColor(499, 249).green(), 5) << format;
        isWanted = false;
        EXPECT_EQ(makeHostPicture(content, &isWanted), nullptr) << format;
    }
}

TEST(IconThemes, AreSearchedAsTheyInherit) {
    const TestFolder folder;
    const std::vector<std::pair<const char*, Qt::GlobalColor>> icons = {
        {"home/mine/48", Qt::red}, // the user's addition to a theme of the system
        {"system/mine/big", Qt::green},
        {"system/parent/48", Qt::blue},
        {"system/other/48", Qt::yellow}};
    for (const auto& [place, colour] : icons) {
        fs::create_directories(folder.path(place));
        QImage image(48, 48, QImage::Format_RGB32);
        image.fill(colour);
        image.save(QString::fromStdString(folder.path(place) + "/sound.png"));
    }
    fs::create_directory(folder.path("system/child"));
    const std::vector<std::pair<std::string, std::string>> parents = {
        {"mine", "parent"}, {"parent", "mine"}, {"child", "parent"}, {"other", ""}}; // the first two for ever
    for (const auto& [theme, parent] : parents) {
        (void)folder.write("system/" + theme + "/index.theme",
                           "[Icon Theme]\nName=x\nDirectories=48,big\nInherits=" + parent +
                               "\n[48]\nSize=48\n[big]\nSize=256\n");
    }
    struct Case {
        QStringList themes;
        int size;
        QColor colour;
    };
    for (const Case& c : std::vector<Case>{{{"mine"}, 48, Qt::red},
                                           {{"mine"}, 200, Qt::green},
                                           {{"child", "other"}, 48, Qt::blue},
                                           {{"missing", "other"}, 48, Qt::yellow},
                                           {{"missing"}, 48, QColor()}}) {
        const QStringList folders = {QString::fromStdString(folder.path("home")),
                                     QString::fromStdString(folder.path("system"))};
        const QImage icon = themeIcon({c.themes, folders}, QStringLiteral("sound"), c.size);
        EXPECT_EQ(icon.isNull() ? QColor() : icon.pixelColor(5, 5), c.colour) << c.themes[0].toStdString();
    }
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
