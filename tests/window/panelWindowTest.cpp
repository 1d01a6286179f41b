// SPDX-License-Identifier: MIT
#include "platform/desktop/qtPicture.h"
#include "tests/window/windowTest.h"

#include <QBuffer>
#include <QDropEvent>

namespace sonarin {

using PanelWindow = WindowTest;

static std::string picture(const char* format, int dotsPerMetre = 2835, QColor colour = Qt::red) {
    QImage image(500, 250, QImage::Format_RGB32);
    image.fill(colour);
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    QByteArray content;
    QBuffer buffer(&content);
    image.save(&buffer, format);
    return content.toStdString();
}

TEST_F(PanelWindow, FillsEveryField) {
    EXPECT_TRUE(show(samplePath));
    EXPECT_EQ(panel(), "SongTitle=Prélude in One Second|Artist=The Sample Makers|Album=Small Files|"
                       "fileName=sample.mp3|fileSize=27.6 KB|Duration=0:01|BitrateEtc=128 kbps  44.1 kHz|"
                       "Channels= Joint Stereo|TagVersion=ID3v3|coverArtDetails=96 x 96, 10787 bytes|"
                       "TrackNumber=1 of 1|Year=2026|Genre=Classical|Composer=A. Script|EncoderApp=LAME|"
                       "Comment=Made by make-samples|4 names, 6 searches");
    EXPECT_EQ(greyed(), "copyAction");
    EXPECT_EQ(controller->fileNameField->toolTip(), plainToolTip(pathOf(samplePath)));
    EXPECT_EQ(shownTitles(controller->findInShelvixPopup->menu())[2],
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
    EXPECT_EQ(panel(), "fileSize=n.a.|0 names, 0 searches");
}

TEST_F(PanelWindow, ClearsTheFactsOfWhatItCannotRead) {
    controller->showLyrics();
    fs::create_directories(folder.path("folder.mp3"));
    fs::create_directories(folder.path("folder"));
    const std::string whole = songFile("kept", "Ann");
    const std::string cut = whole.substr(0, whole.size() - 5000) + "xx";
    for (const auto& [path, isAudio, facts] : Table<std::string, bool, std::string>{
             {folder.path("missing.mp3"), true, "missing.mp3|fileSize=n.a.|0 names, 0 searches"},
             {folder.path("folder.mp3"), true, "folder.mp3|fileSize=n.a.|0 names, 0 searches"},
             {folder.path("folder/"), false, "folder|fileSize=n.a.|0 names, 0 searches"},
             {folder.write("a.txt", "abc"), false, "a.txt|fileSize=0.0 KB|0 names, 0 searches"},
             {folder.write("cut.mp3", cut), true, "cut.mp3|fileSize=0.1 KB|2 names, 2 searches"}}) {
        show(samplePath);
        EXPECT_TRUE(controller->lyricsText->toPlainText().startsWith("One second,\n"));
        EXPECT_EQ(show(path), isAudio) << path;
        EXPECT_EQ(panel(), "fileName=" + facts);
        EXPECT_EQ(controller->lyricsText->toPlainText(), " ");
        EXPECT_FALSE(controller->lyricsButton->isEnabled() || controller->fileIconField->showsImage());
        EXPECT_EQ(controller->twitterButton->isEnabled(), facts.starts_with("cut")) << path;
    }
}

TEST_F(PanelWindow, ShowsCoversInPointsWholeOrNotAtAll) {
    std::string huge = picture("PNG"); // whose header says 60000 x 60000
    huge.replace(16, 8, sample::bigEndian(60000) + sample::bigEndian(60000));
    for (const auto& [cover, size] :
         Table<std::string, std::string>{{picture("PNG"), "500 x 250"},
                                         {picture("PNG", 11811), "120 x 60"},
                                         {picture("PNG", 3780), "375 x 187"},
                                         {picture("BMP", 5669), "250 x 125"},
                                         {picture("JPG"), "500 x 250"},
                                         {picture("JPG", 5906), "240 x 120"},
                                         {picture("PPM"), "500 x 250"},
                                         {"\xFF\xD8\xFF\xE0" + std::string(200, 'x'), "0 x 0"},
                                         {huge, "0 x 0"}}) {
        showFrames(id3Frame("APIC", bytes("\0image/png\0\3\0") + cover));
        EXPECT_EQ(controller->coverArtDetailsField->text().toStdString(),
                  size + ", " + std::to_string(cover.size() + 1) + " bytes");
        const QColor last = controller->fileIconField->image().copy(499, 249, 1, 1).pixelColor(0, 0);
        EXPECT_EQ(controller->fileIconField->showsImage(), size != "0 x 0") << size;
        EXPECT_EQ(last.red() > 250 && last.green() < 5, size != "0 x 0") << size;
        std::atomic<bool> isWanted = false;
        const ByteView stored(reinterpret_cast<const std::uint8_t*>(cover.data()), cover.size());
        EXPECT_EQ(makeHostPicture(stored, &isWanted), nullptr) << size;
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
    EXPECT_EQ(plainToolTip("<i>&"), "<p style='white-space:pre-wrap'>&lt;i&gt;&amp;</p>");
    EXPECT_TRUE(controller->renamePopup->itemTitleAtIndex(1).contains("AC&DC\nsecond"));
    controller->myWindow->show();
    const QString entry = shownTitles(controller->renamePopup->menu())[0];
    EXPECT_TRUE(entry.contains("AC&&DC") && entry.contains(u'…') && !entry.contains(u'\n'));
}

TEST_F(PanelWindow, TakesPathsFromOutside) {
    const std::string strange = folder.write("b\xFF \xC3\xA9#%.mp3", songFile("strange"));
    const std::string plain = song("plain");
    QMimeData text;
    const auto handOver = [&](const QString& content) {
        return [&, content] {
            text.setText(content);
            controller->openFileUserDataError(&text);
        };
    };
    const auto send = [&](QDropEvent&& event) {
        event.ignore();
        QApplication::sendEvent(controller->myWindow, &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    };
    const Qt::DropActions either = Qt::CopyAction | Qt::MoveAction;
    QApplication::clipboard()->setText(pathOf(plain) + '\n');
    for (const auto& [way, shown] : Table<std::function<void()>, std::string>{
             {[&] { controller->pastePath(); }, "plain"},
             {[&] { EXPECT_TRUE(controller->applicationOpenFile(pathOf(strange))); }, "strange"},
             {[&] { EXPECT_FALSE(controller->applicationOpenFile(pathOf(strange))); }, "strange"},
             {handOver(pathOf(plain)), "plain"},
             {handOver(fileUri(strange)), "strange"},
             {[&] { controller->openFileUserDataError(nullptr); }, "strange"},
             {handOver(' ' + pathOf(plain)), ""}, // another path: white space counts
             {[&] { controller->showPastedPath(); }, "plain"}}) {
        controller->myWindow->hide();
        way();
        EXPECT_TRUE(shows(shown)) << shown;
        EXPECT_TRUE(controller->myWindow->isVisible()) << shown;
    }

    // A drop is taken as a copy, or its source would delete what was dragged.
    text.setText(pathOf(strange));
    EXPECT_EQ(send(QDragEnterEvent({5, 5}, either, &text, Qt::LeftButton, Qt::NoModifier)), Qt::CopyAction);
    QDropEvent drop(QPointF(5, 5), either, &text, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(Qt::MoveAction);
    EXPECT_EQ(send(std::move(drop)), Qt::CopyAction);
    EXPECT_TRUE(shows("strange"));
    text.setText(QStringLiteral("https://example.org/a.mp3"));
    text.setUrls({QUrl(text.text())}); // as a browser gives it
    EXPECT_EQ(send(QDragEnterEvent({5, 5}, either, &text, Qt::LeftButton, Qt::NoModifier)), Qt::IgnoreAction);
}

TEST(IconThemes, AreSearchedAsTheyInherit) {
    const TestFolder folder;
    for (const auto& [theme, parent, place, colour] : Table<std::string, std::string, std::string, QColor>{
             {"mine", "parent", "home/mine/48", "red"}, // the user's addition to a theme of the system
             {"mine", "parent", "system/mine/big", "green"},
             {"parent", "mine", "system/parent/48", "blue"}, // the two inherit for ever
             {"other", "", "system/other/48", "yellow"},
             {"child", "parent", "system/child/unlisted", "black"}}) {
        folder.write(place + "/sound.png", picture("PNG", 2835, colour));
        (void)folder.write("system/" + theme + "/index.theme",
                           "[Icon Theme]\nName=x\nDirectories=48,big\nInherits=" + parent +
                               "\n[48]\nSize=48\n[big]\nSize=256\n");
    }
    const QStringList folders = {pathOf(folder.path("home")), pathOf(folder.path("system"))};
    for (const auto& [themes, size, colour] :
         Table<QStringList, int, QColor>{{{"mine"}, 48, "red"},
                                         {{"mine"}, 200, "green"},
                                         {{"child", "other"}, 48, "blue"},
                                         {{"missing", "other"}, 48, "yellow"},
                                         {{"missing"}, 48, QColor()}}) {
        const QImage icon = themeIcon({themes, folders}, QStringLiteral("sound"), size);
        EXPECT_EQ(icon.isNull() ? QColor() : icon.pixelColor(5, 5), colour) << themes[0].toStdString();
    }
}

TEST_F(PanelWindow, ConnectsEveryActionOfItsInterface) {
    for (const QObject* object : controller->myWindow->findChildren<QObject*>()) {
        const QByteArray method = object->property("action").toByteArray();
        EXPECT_TRUE(method.isEmpty() || controller->metaObject()->indexOfMethod(method + "()") >= 0)
            << method.constData();
    }
}

} // namespace sonarin
