// SPDX-License-Identifier: MIT
// windowBench: what the window costs beyond the engine, as ratios and shares in one run. Needs no display.
#include "app/window/AppController.h"
#include "app/window/cocoaUtils.h"
#include "platform/desktop/busSources.h"
#include "platform/desktop/qtPicture.h"
#include "platform/desktop/sideWork.h"
#include "tools/sampleBytes.h"
#include "tools/windowSupport.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QImageWriter>
#include <QLabel>
#include <QProcess>
#include <QWindow>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

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

double millisecondsOf(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// From the new path to the filled panel and to the painted widgets, the engine's share of it, and what it
/// takes to have the file read beside the window.
void measureUpdates(const TestFolder& folder, const char* kind, const std::string& cover) {
    std::string frames = sample::id3Frame("TIT2", sample::bytes("\0Title")) +
                         sample::id3Frame("TPE1", sample::bytes("\0Artist"));
    if (!cover.empty()) {
        frames += sample::id3Frame("APIC", sample::bytes("\0image/jpeg\0\3\0") + cover);
    }
    FixedSources sources;
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.gUpdateTimer->stop();
    controller.showMainWindow();
    runFor(100);
    SideWork sideWork;
    std::vector<double> filled;
    std::vector<double> painted;
    std::vector<double> engine;
    std::vector<double> handed;
    for (int i = 0; i < 200; ++i) {
        const QString path = pathOf(folder.write(kind + std::to_string(i) + ".mp3",
                                                 sample::id3Tag(frames) + sample::mpegAudio(200000)));
        filled.push_back(millisecondsOf([&] { controller.updateValuesForNewPath(path); }));
        painted.push_back(filled.back() + millisecondsOf([&] { controller.myWindow->grab(); }));
        engine.push_back(millisecondsOf([&] {
            audioTags record;
            (void)amdGetAudioMetaDataForFile(cocoaUtils::textFromString(path), &record);
        }));
        bool isDone = false;
        handed.push_back(millisecondsOf([&] {
            sideWork.start(
                path.toStdString(), [] {}, [&] { isDone = true; });
            sideWork.waitUntil([&] { return isDone; });
        }));
    }
    std::printf(
        "update, %s: %.2f ms to the filled panel (median), %.2fx what it takes without another thread; "
        "painted after %.2f ms; the engine reads for %.2f ms\n",
        kind, median(filled), median(filled) / (median(filled) - median(handed)), median(painted),
        median(engine));
}

/// How long the window takes to answer, and the next quick file to be shown, while one file after the other
/// hangs.
void measureHanging(const TestFolder& folder) {
    const SlowDisk disk;
    if (!disk.isThere) {
        std::puts("hanging disk: NOT MEASURED, FUSE does not work here");
        return;
    }
    FixedSources sources;
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.showMainWindow();
    QObject window;
    double longestAnswer = 0;
    std::atomic<bool> isOver = false;
    // Asks as the display or another program does: from outside, at any time.
    std::thread asker([&] {
        while (!isOver) {
            const auto asked = std::chrono::steady_clock::now();
            const auto answer = [&longestAnswer, asked] {
                const std::chrono::duration<double, std::milli> time =
                    std::chrono::steady_clock::now() - asked;
                longestAnswer = std::max(longestAnswer, time.count());
            };
            QMetaObject::invokeMethod(&window, answer, Qt::QueuedConnection);
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    });
    std::mt19937 random(1);
    std::vector<double> shown;
    const char* const names[] = {"hang-stat-", "hang-open-", "hang-read-"};
    for (int i = 0; i < 100; ++i) {
        const std::string number = std::to_string(i);
        const QString hanging = pathOf(disk.song(names[i % 3] + number + ".mp3", "late"));
        const QString quick = pathOf(folder.write("quick" + number + ".mp3", songFile(number)));
        QTimer::singleShot(0, &controller, [&] { controller.updateValuesForNewPath(hanging); });
        runFor(static_cast<int>(random() % 150));
        QElapsedTimer chosen;
        chosen.start();
        bool isChosen = false;
        QTimer::singleShot(0, &controller, [&] {
            controller.updateValuesForNewPath(quick);
            isChosen = true;
        });
        waitFor([&] {
            return isChosen && controller.id3SongTitleField->text() == QString::fromStdString(number);
        });
        shown.push_back(static_cast<double>(chosen.nsecsElapsed()) / 1e6);
        if (i % 10 == 9) {
            disk.answer(); // now and then
            runFor(50);
            disk.hangAgain();
        }
    }
    isOver = true;
    asker.join();
    runFor(20);
    std::printf(
        "hanging disk, 100 files: the window answers within %.0f ms, the next quick file is shown within "
        "%.0f ms (median %.0f)\n",
        longestAnswer, *std::max_element(shown.begin(), shown.end()), median(shown));
    disk.answer();
}

/// A photograph of 40 megapixels, as progressive JPEG, which takes longest to decode.
std::string photograph() {
    QImage image(7728, 5152, QImage::Format_RGB32);
    std::mt19937 random(1);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(
                x, y, qRgb((x / 8 + static_cast<int>(random() % 16)) % 256, y / 8 % 256, x * y / 2000 % 256));
        }
    }
    QByteArray content;
    QBuffer buffer(&content);
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(85);
    writer.setProgressiveScanWrite(true);
    writer.write(image);
    return content.toStdString();
}

/// How long the window stands still for a file that is heavy in one way.
void measureHeavy(const TestFolder& folder, const char* kind, const std::string& frame) {
    const QString path = pathOf(folder.write("heavy.mp3", sample::id3Tag(frame) + sample::mpegAudio(20000)));
    FixedSources sources;
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.showMainWindow();
    runFor(200);
    double longest = 0;
    QElapsedTimer pause;
    QTimer beat;
    beat.callOnTimeout([&] {
        longest = std::max(longest, static_cast<double>(pause.nsecsElapsed()) / 1e6);
        pause.restart();
    });
    pause.start();
    beat.start(1);
    const double filled = millisecondsOf([&] {
        QTimer::singleShot(0, &controller, [&] { controller.updateValuesForNewPath(path); });
        waitFor([&] { return controller.lastPath == path && !controller.isReading(); }, 60000);
    });
    controller.myWindow->grab();
    runFor(100);
    std::printf("%s: filled after %.0f ms, the window stands still for %.0f ms\n", kind, filled, longest);
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
    BusProgram player("org.mpris.MediaPlayer2.bench");
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
    startTestBus();
    const QApplication application(argc, argv);
    decodePicturesWithQt();
    measureUpdates(folder, "a cover of 71 KB", picture());
    measureUpdates(folder, "no cover", "");
    measureHeavy(folder, "a cover of 40 megapixels",
                 sample::id3Frame("APIC", sample::bytes("\0image/jpeg\0\3\0") + photograph()));
    measureHeavy(folder, "a title of 60 MB", sample::textFrame("TIT2", std::string(60000000, 't')));
    measureHanging(folder);
    measureStart();
    measureFollowing(folder);
    testBus.reset();
    return 0;
}
