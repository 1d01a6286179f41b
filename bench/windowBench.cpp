// SPDX-License-Identifier: MIT
// windowBench: what the window costs beyond the engine, as ratios and shares in one run. Needs no display.
#include "app/window/AppController.h"
#include "app/window/cocoaUtils.h"
#include "platform/desktop/busSources.h"
#include "platform/desktop/qtPicture.h"
#include "tests/support/sampleBytes.h"
#include "tests/window/windowSupport.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QWindow>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <random>

namespace {

using namespace sonarin;

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

/// A JPEG picture of about 60 KB.
std::string picture() {
    std::mt19937 random(1);
    QImage image(400, 400, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, qRgb(x / 2, y / 2, static_cast<int>(random() % 256)));
        }
    }
    QByteArray content;
    QBuffer buffer(&content);
    image.save(&buffer, "JPG", 90);
    return content.toStdString();
}

/// From the new path to the painted widgets, and the engine's share of it.
void measureUpdates(const TestFolder& folder) {
    const std::string cover = picture();
    const std::string frames = sample::id3Frame("TIT2", sample::bytes("\0Title")) +
                               sample::id3Frame("TPE1", sample::bytes("\0Artist")) +
                               sample::id3Frame("APIC", sample::bytes("\0image/jpeg\0\3\0") + cover);
    std::vector<QString> paths;
    for (int i = 0; i < 200; ++i) {
        paths.push_back(pathOf(
            folder.write(std::to_string(i) + ".mp3", sample::id3Tag(frames) + sample::mpegAudio(200000))));
    }
    FixedSources sources;
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.gUpdateTimer->stop();
    controller.showMainWindow();
    runFor(100);
    std::vector<double> whole;
    std::vector<double> engine;
    QElapsedTimer timer;
    for (const QString& path : paths) {
        timer.start();
        controller.updateValuesForNewPath(path);
        controller.myWindow->grab(); // paints what has changed
        whole.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        audioTags record;
        timer.start();
        (void)amdGetAudioMetaDataForFile(cocoaUtils::textFromString(path), &record);
        engine.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::printf("update, with a cover of %zu KB: %.2f ms median, of which the engine's read %.2f ms\n",
                cover.size() / 1000, median(whole), median(engine));
}

double startMilliseconds(const QString& program, const QString& argument) {
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, {argument});
    process.waitForFinished();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// In turns, so that what else the machine does falls on both alike.
void measureStart() {
    constexpr int turns = 30;
    const QString self = QCoreApplication::applicationFilePath();
    std::vector<double> empty;
    std::vector<double> label;
    std::vector<double> filled;
    for (int i = 0; i < turns; ++i) {
        empty.push_back(startMilliseconds(self, QStringLiteral("--empty")));
        label.push_back(startMilliseconds(self, QStringLiteral("--label")));
        filled.push_back(startMilliseconds(self, QStringLiteral("--filled")));
    }
    std::printf(
        "start to a shown, filled window: %.1f ms, %.2fx an empty one (%.1f ms), %.2fx one with a single "
        "word in it (%.1f ms)\n",
        median(filled), median(filled) / median(empty), median(empty), median(filled) / median(label),
        median(label));
}

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

long residentKilobytes() {
    std::ifstream status("/proc/self/statm");
    long size = 0;
    long resident = 0;
    status >> size >> resident;
    return resident * 4;
}

/// Ticks as fast as answers come; a tick a fifth of a second then costs five times as much a second.
void measureFollowing(const TestFolder& folder) {
    SessionBus bus;
    BusSources sources(&bus);
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.gUpdateTimer->stop();
    BusProgram player({"org.mpris.MediaPlayer2.bench"});
    player.play(folder.write("followed.mp3", songFile("Followed")));
    controller.useCurrentiTunesSongForSync();
    const auto tick = [&] {
        controller.updateSelection();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    for (int i = 0; i < 2000; ++i) {
        tick();
    }
    constexpr int ticks = 20000;
    const long before = residentKilobytes();
    const double start = processorSeconds();
    for (int i = 0; i < ticks; ++i) {
        tick();
    }
    const double each = (processorSeconds() - start) / ticks;
    std::printf(
        "following an unchanged track: %.3f ms a tick, %.2f%% of one core; memory %+ld KB over %d ticks\n",
        each * 1e3, each * 5 * 100, residentKilobytes() - before, ticks);
}

/// Shows a window and ends when it has been shown. Mode is --empty, --label (one word, which takes the
/// system's fonts) or --filled.
int showAndEnd(int argc, char** argv, const std::string& mode) {
    QApplication application(argc, argv);
    std::unique_ptr<QWidget> empty;
    FixedSources sources;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<AppController> controller;
    QWidget* window = nullptr;
    if (mode != "--filled") {
        empty.reset(mode == "--label" ? new QLabel(QStringLiteral("Sonarin")) : new QWidget());
        empty->resize(620, 460);
        empty->show();
        window = empty.get();
    } else {
        decodePicturesWithQt();
        defaults = std::make_unique<UserDefaults>();
        controller = std::make_unique<AppController>(&sources, defaults.get());
        controller->applicationOpenFile(QStringLiteral(SONARIN_SAMPLES "/sample.mp3"));
        window = controller->myWindow;
    }
    (void)waitFor([&] { return window->windowHandle() != nullptr && window->windowHandle()->isExposed(); });
    window->grab();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const TestFolder folder;
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder.path("config")));
    if (argc == 2) {
        return showAndEnd(argc, argv, argv[1]);
    }
    TestBus::start();
    const QApplication application(argc, argv);
    decodePicturesWithQt();
    measureUpdates(folder);
    measureStart();
    measureFollowing(folder);
    TestBus::stop();
    return 0;
}
