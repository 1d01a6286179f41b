// SPDX-License-Identifier: MIT
// draw-window FOLDER SUFFIX: pictures of the window with several files, in the theme's colours and in dark
// ones.
#include "platform/desktop/fileIcon.h"
#include "platform/desktop/qtPicture.h"
#include "tests/support/sampleBytes.h"
#include "tests/window/slowDisk.h"
#include "tests/window/windowSupport.h"

#include <QApplication>
#include <QStyleFactory>

namespace {

QPalette darkPalette() {
    QPalette dark(QColor(53, 53, 57), QColor(42, 42, 46));
    dark.setColor(QPalette::Base, QColor(30, 30, 33));
    dark.setColor(QPalette::PlaceholderText, QColor(255, 255, 255, 130));
    return dark;
}

std::string longTexts() {
    using namespace sonarin::sample;
    const auto text = [](const char* id, const std::string& value) {
        return id3Frame(id, std::string(1, '\0') + value);
    };
    std::string wide = bytes("\1\xFF\xFE");
    for (const char16_t unit : std::u16string(u"שלום עולם — 日本語のとても長いアーティスト名")) {
        wide += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8U)};
    }
    return id3Tag(
               text(
                   "TIT2",
                   "A title that goes on and on, until no window of a reasonable size could show all of it") +
               id3Frame("TPE1", wide + "\0") + text("TALB", "<b>AC&DC</b> [*]") +
               text("COMM", bytes("eng\0one line\nanother line\nand a third that does not end where the "
                                  "window ends, not "
                                  "for a long time\0")) +
               text("TCON", "Genre after genre after genre after genre") + text("TRCK", "3/12")) +
           mpegAudio(50000);
}

} // namespace

int main(int argc, char** argv) {
    using namespace sonarin;
    const TestFolder folder;
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.path("config")));
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setWindowIcon(programIcon());
    decodePicturesWithQt();
    FixedSources sources;
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.showMainWindow();

    const auto takeOf = [&](QWidget* window, const char* name) {
        runFor(200);
        const QString path =
            QStringLiteral("%1/%2%3.png")
                .arg(QLatin1StringView(argv[1]), QLatin1StringView(name), QLatin1StringView(argv[2]));
        return window->grab().save(path);
    };
    const auto take = [&](const char* name) { return takeOf(controller.myWindow, name); };
    bool isDone = take("empty");
    controller.updateValuesForNewPath(pathOf(SONARIN_SAMPLES "/sample.mp3"));
    isDone = take("sample") && isDone;
    controller.showLyrics();
    controller.showHelp();
    isDone = takeOf(controller.lyricsWindow, "lyrics") && takeOf(controller.helpWindow, "help") && isDone;
    QApplication::setPalette(darkPalette());
    isDone = take("dark") && isDone;
    controller.updateValuesForNewPath(pathOf(folder.write("long.mp3", longTexts())));
    isDone = take("long") && isDone;
    const SlowDisk disk;
    controller.updateValuesForNewPath(pathOf(disk.song("hang-read.mp3", "")));
    isDone = take("reading") && isDone;
    disk.answer();
    return isDone ? 0 : 1;
}
