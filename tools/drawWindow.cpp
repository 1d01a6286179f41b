// SPDX-License-Identifier: MIT
// draw-window FOLDER SUFFIX: pictures of the window with several files, in the theme's colours and in dark
// ones.
#include "app/window/textColours.h"
#include "platform/desktop/fileIcon.h"
#include "platform/desktop/qtPicture.h"
#include "tools/sampleBytes.h"
#include "tools/windowSupport.h"

#include <QApplication>
#include <QBuffer>
#include <QMessageBox>
#include <QPainter>
#include <QStyleFactory>
#include <QTimer>
#include <chrono>
#include <cstdlib>

namespace {

using sonarin::sample::textFrame;
using namespace sonarin; // NOLINT(google-build-using-namespace): a program of one file

QPalette darkPalette() {
    QPalette dark(QColor(53, 53, 57), QColor(42, 42, 46));
    dark.setColor(QPalette::Base, QColor(30, 30, 33));
    dark.setColor(QPalette::Link, QColor(110, 170, 255));
    return dark;
}

QPalette highContrastPalette() {
    QPalette palette(Qt::white, Qt::black, Qt::white, Qt::black, Qt::white, Qt::white, Qt::white, Qt::black,
                     Qt::black);
    palette.setColor(QPalette::Highlight, Qt::yellow);
    palette.setColor(QPalette::HighlightedText, Qt::black);
    palette.setColor(QPalette::Link, Qt::cyan);
    return palette;
}

std::string wideText(const char* id, const std::u16string& value) {
    std::string units = sample::bytes("\1\xFF\xFE");
    for (const char16_t unit : value) {
        units += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8U)};
    }
    return sample::id3Frame(id, units);
}

std::string longTexts() {
    return sample::id3Tag(
               textFrame(
                   "TIT2",
                   "A title that goes on and on, until no window of a reasonable size could show all of it") +
               wideText("TPE1", u"שלום עולם — " + std::u16string(200, u'x')) +
               textFrame("TALB", "<b>AC&DC</b> [*]") +
               textFrame("COMM",
                         sample::bytes("eng\0one line\nanother line\nand a third that does not end where the "
                                       "window ends, not for a long time\0")) +
               textFrame("TCON", "Genre after genre after genre after genre") + textFrame("TRCK", "3/12")) +
           sample::mpegAudio(50000);
}

std::string otherScripts(const std::u16string& title, const std::u16string& artist) {
    return sample::id3Tag(wideText("TIT2", title) + wideText("TPE1", artist) + wideText("TALB", title) +
                          wideText("TCOM", artist)) +
           sample::mpegAudio(50000);
}

/// A song with a picture of that size in it.
std::string withPicture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient ground(0, 0, width, height);
    ground.setColorAt(0, QColor(40, 90, 130));
    ground.setColorAt(1, QColor(230, 170, 90));
    painter.fillRect(image.rect(), ground);
    painter.end();
    QByteArray content;
    QBuffer buffer(&content);
    image.save(&buffer, "PNG");
    return sample::id3Tag(
               textFrame("TIT2", "With a picture") + textFrame("TPE1", "Somebody") +
               sample::id3Frame("APIC", sample::bytes("\0image/png\0\3\0") + content.toStdString())) +
           sample::mpegAudio(50000);
}

/// Takes the pictures, each after some time for the window to settle.
class Photographer {
public:
    Photographer(const char* folder, const char* suffix) : folder_(folder), suffix_(suffix) {}

    void take(QWidget* widget, const char* name) {
        runFor(200);
        const QString path =
            QStringLiteral("%1/%2%3.png")
                .arg(QLatin1StringView(folder_), QLatin1StringView(name), QLatin1StringView(suffix_));
        hasAll = widget != nullptr && widget->grab().save(path) && hasAll;
    }
    /// Some menus keep whoever opens them until they are closed.
    void takeMenu(const char* name, const std::function<void()>& open) {
        QTimer::singleShot(300, [this, name] {
            QWidget* menu = QApplication::activePopupWidget();
            take(menu, name);
            if (menu != nullptr) {
                menu->close();
            }
        });
        open();
        runFor(700);
    }

    bool hasAll = true;

private:
    const char* folder_;
    const char* suffix_;
};

void takeMenus(AppController& controller, Photographer& photographer) {
    for (const char* name : {"fileMenu", "recentMenu", "editMenu", "songMenu", "viewMenu", "helpMenu"}) {
        auto* menu = controller.myWindow->findChild<QMenu*>(QLatin1StringView(name));
        photographer.takeMenu(name, [menu] { menu->popup(QPoint(100, 100)); });
    }
    photographer.takeMenu("findMenu", [&] { controller.pullDownFindMenu(); });
    photographer.takeMenu("renameMenu", [&] { controller.pullDownRenameMenu(); });
    photographer.takeMenu("editTagsMenu", [&] { controller.pullDownEditTagsMenu(); });
    photographer.takeMenu(
        "valueMenu", [&] { emit controller.id3SongTitleField->customContextMenuRequested(QPoint(5, 5)); });
    photographer.takeMenu("pictureMenu",
                          [&] { emit controller.fileIconField->customContextMenuRequested(QPoint(5, 5)); });
}

} // namespace

int main(int argc, char** argv) {
    const TestFolder folder;
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.path("config")));
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QIcon::setThemeName(QStringLiteral("Adwaita"));
    QApplication::setWindowIcon(programIcon());
    decodePicturesWithQt();
    FixedSources sources;
    sources.who = {SelectionSources::Teller::State::selecting, QStringLiteral("Files")};
    UserDefaults defaults;
    Photographer photographer(argv[1], argv[2]);
    {
        AppController controller(&sources, &defaults);
        QMainWindow* window = controller.myWindow;
        const QPalette light = QApplication::palette();
        const auto show = [&](const std::string& path) {
            controller.applicationOpenFile(pathOf(path));
            waitForFile(controller);
        };
        const auto showFile = [&](const char* name, const std::string& content) {
            show(folder.write(name, content));
        };
        controller.syncCheckbox->setChecked(false);
        controller.showMainWindow();
        photographer.take(window, "empty");
        controller.syncCheckbox->setChecked(true);
        show(SONARIN_SAMPLES "/sample.mp3");
        photographer.take(window, "light");
        takeMenus(controller, photographer);
        controller.id3BitrateEtcField->setFocus();
        photographer.take(window, "focus");
        controller.showLyrics();
        photographer.take(controller.lyricsWindow, "lyrics");
        controller.showHelp();
        photographer.take(controller.helpWindow, "help");
        controller.showAbout();
        photographer.take(window->findChild<QMessageBox*>(), "about");
        window->findChild<QMessageBox*>()->close();

        QApplication::setPalette(darkPalette());
        photographer.take(window, "dark");
        takeMenus(controller, photographer); // once more, in the icons' other colour
        showFile("long.mp3", longTexts());
        photographer.take(window, "dark-long");
        preferHighContrast(true);
        QApplication::setPalette(highContrastPalette());
        photographer.take(window, "high-contrast");
        preferHighContrast(false);
        QApplication::setPalette(light);
        photographer.take(window, "long");
        photographer.takeMenu("long-renameMenu", [&] { controller.pullDownRenameMenu(); });

        window->resize(420, 380);
        photographer.take(window, "small-long");
        show(SONARIN_SAMPLES "/sample.mp3");
        photographer.take(window, "small");
        window->resize(260, 760);
        photographer.take(window, "narrow");
        showFile("picture.mp3", withPicture(900, 600));
        photographer.take(window, "narrow-picture");
        window->resize(700, 640);
        photographer.take(window, "tall");
        window->resize(1500, 900);
        photographer.take(window, "wide");
        show(SONARIN_SAMPLES "/sample.mp3");
        photographer.take(window, "wide-small-picture");
        window->resize(620, 460);

        showFile("cjk.mp3", otherScripts(u"日本語のとても長い曲名がここに入ります", u"東京シンフォニー"));
        photographer.take(window, "cjk");
        showFile("rtl.mp3", otherScripts(u"שיר ארוך מאוד", u"זמרת 2000"));
        photographer.take(window, "right-to-left-values");
        QApplication::setLayoutDirection(Qt::RightToLeft);
        photographer.take(window, "right-to-left");
        QApplication::setLayoutDirection(Qt::LeftToRight);
        showFile("latin.mp3",
                 sample::id3Tag(sample::textFrame("TIT2", "Caf\xE9") + sample::textFrame("TPE1", "Ann")) +
                     sample::mpegAudio(5000));
        (void)waitFor([&] { return controller.followStatusField->text().startsWith(u"This tag"); });
        photographer.take(window, "hidden-texts");
        showFile("broken.mp3", "no audio");
        photographer.take(window, "failed");
        const SlowDisk disk;
        controller.updateValuesForNewPath(pathOf(disk.song("hang-read.mp3", "")));
        photographer.take(window, "reading");
        disk.answer();
    }
    if (!SideWork::haveThreadsEnded(std::chrono::seconds(10))) {
        std::_Exit(1);
    }
    return photographer.hasAll ? 0 : 1;
}
