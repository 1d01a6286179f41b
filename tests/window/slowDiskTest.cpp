// SPDX-License-Identifier: MIT
// Files on a disk that does not answer, or late.
#include "tests/support/sampleBytes.h"
#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <csignal>
#include <filesystem>
#include <memory>
#include <sys/mount.h>
#include <sys/stat.h>
#include <vector>

namespace sonarin {

namespace {

namespace fs = std::filesystem;

/// The folder "disk" of the test's own, seen through tests/support/slow_disk.py.
class Disk {
public:
    Disk() {
        fs::create_directory(folder_.path("disk"));
        fs::create_directory(folder_.path("mounted"));
        const dev_t before = device();
        server_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{SONARIN_SLOW_DISK, folder_.path("disk"), folder_.path("mounted")});
        isThere_ = waitFor([&] { return device() != before || server_->hasEnded(0); }, 10000) &&
                   !server_->hasEnded(0);
    }
    /// What hangs on it ends with it.
    ~Disk() {
        server_.reset();
        ChildProcess unmount({"fusermount3", "-uz", folder_.path("mounted")}, ChildProcess::Errors::hidden);
        unmount.hasEnded(5000);
    }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    [[nodiscard]] bool isThere() const { return isThere_; }
    /// Puts a file onto the disk; answers its path there.
    [[nodiscard]] std::string write(const std::string& name, const std::string& content) const {
        (void)folder_.write("disk/" + name, content);
        return folder_.path("mounted/" + name);
    }
    [[nodiscard]] std::string song(const std::string& name, const std::string& title) const {
        return write(name, songFile(title, "Ann"));
    }
    [[nodiscard]] bool has(const std::string& name) const { return fs::exists(folder_.path("disk/" + name)); }
    void replace(const std::string& name, const std::string& by) const {
        fs::rename(folder_.path("disk/" + by), folder_.path("disk/" + name));
    }
    /// Whatever hangs goes on.
    void answer() const { (void)folder_.write("disk/answer", ""); }
    void hangAgain() const { fs::remove(folder_.path("disk/answer")); }

private:
    [[nodiscard]] dev_t device() const {
        struct stat status {};
        stat(folder_.path("mounted").c_str(), &status);
        return status.st_dev;
    }

    TestFolder folder_;
    std::unique_ptr<ChildProcess> server_;
    bool isThere_ = false;
};

class SlowDisk : public testing::Test {
protected:
    void SetUp() override {
        if (!disk.isThere()) {
            GTEST_SKIP() << "NO SLOW DISK: FUSE (/dev/fuse, fuse3, python3-fusepy) does not work here";
        }
        forgetPreferences();
        controller = std::make_unique<AppController>(&sources, &defaults);
        beat.callOnTimeout([this] { longestGap = std::max(longestGap, sinceBeat.restart()); });
        sinceBeat.start();
        beat.start(5);
    }
    void TearDown() override {
        disk.answer();
        controller.reset();
        EXPECT_TRUE(SideWork::haveThreadsEnded(std::chrono::seconds(10)));
        // Far less than a disk takes that does not answer, far more than the window needs.
        EXPECT_LT(longestGap, 1000);
    }

    bool show(const std::string& path) { return controller->updateValuesForNewPath(pathOf(path)); }
    [[nodiscard]] std::string title() const { return controller->id3SongTitleField->text().toStdString(); }
    [[nodiscard]] bool isReading() const { return !controller->readingField->isHidden(); }
    bool shows(const std::string& text) {
        return waitFor([&] { return title() == text && !isReading(); });
    }

    TestFolder folder;
    FixedSources sources;
    UserDefaults defaults;
    QTimer beat;
    QElapsedTimer sinceBeat;
    qint64 longestGap = 0; ///< milliseconds in which the window did nothing else
    Disk disk;
    std::unique_ptr<AppController> controller;
};

TEST_F(SlowDisk, LeavesWhatHangsBehind) {
    const std::string quick = folder.write("quick.mp3", songFile("quick", "Bob"));
    for (const char* name : {"hang-stat.mp3", "hang-open.mp3", "hang-read.mp3", "hang-codes.m4a"}) {
        const std::string path = disk.song(name, "late");
        EXPECT_TRUE(show(path)) << name;
        EXPECT_TRUE(isReading());
        EXPECT_EQ(controller->readingField->text(), "Reading…");
        EXPECT_EQ(controller->fileNameField->text().toStdString(), name);
        EXPECT_EQ(controller->lastPath, pathOf(path));
        EXPECT_EQ(title(), "");
        EXPECT_EQ(controller->renamePopup->numberOfItems(), 1);
        EXPECT_FALSE(controller->twitterButton->isEnabled());
        EXPECT_FALSE(show(path));

        EXPECT_TRUE(show(quick));
        EXPECT_EQ(title(), "quick");
        EXPECT_FALSE(isReading());
        disk.answer();
        runFor(100);
        EXPECT_EQ(title(), "quick"); // what came late is thrown away
        disk.hangAgain();
    }
    EXPECT_FALSE(show(disk.write("hang-stat.txt", "")));
}

TEST_F(SlowDisk, FillsThePanelWhenTheDiskAnswers) {
    EXPECT_TRUE(show(disk.song("hang-read.mp3", "late")));
    EXPECT_EQ(controller->fileSizeField->text(), "4.9 KB"); // which was known
    disk.answer();
    EXPECT_TRUE(shows("late"));
    EXPECT_EQ(controller->renamePopup->numberOfItems(), 3);
    EXPECT_TRUE(controller->twitterButton->isEnabled());
    EXPECT_FALSE(show(disk.song("hang-read.mp3", "late"))); // it is the file shown
}

TEST_F(SlowDisk, TakesTheFileThatIsChosenWhileItWaits) {
    const std::string quick = folder.write("quick.mp3", songFile("quick"));
    const std::string hanging = disk.song("hang-read.mp3", "late");
    show(quick);
    std::string shownMeanwhile;
    QTimer::singleShot(40, [&] {
        shownMeanwhile = controller->fileNameField->text().toStdString();
        EXPECT_FALSE(show(hanging));
        EXPECT_TRUE(show(quick));
    });
    EXPECT_TRUE(show(hanging));
    EXPECT_EQ(shownMeanwhile, "quick.mp3"); // until it is plain that the other one takes long
    EXPECT_EQ(title(), "quick");
    EXPECT_EQ(controller->lastPath, pathOf(quick));
    for (int i = 0; i < 10; ++i) { // back and forth
        show(hanging);
        EXPECT_TRUE(isReading());
        show(quick);
        EXPECT_EQ(title(), "quick");
    }
}

TEST_F(SlowDisk, BearsAThousandChoices) {
    const auto threads = [] {
        return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
    };
    const auto before = threads();
    std::ptrdiff_t most = 0;
    std::vector<std::string> songs;
    for (int i = 0; i < 1000; ++i) {
        songs.push_back(disk.song("late-100-" + std::to_string(i) + ".mp3", std::to_string(i)));
    }
    std::size_t chosen = 0;
    QTimer clicks;
    const auto click = [&] {
        if (chosen < songs.size()) {
            sources.finder = QList<QByteArray>{QByteArray::fromStdString(songs[chosen++])};
            controller->updateSelection();
            most = std::max(most, threads());
        }
    };
    clicks.callOnTimeout([&] { QMetaObject::invokeMethod(controller.get(), click, Qt::QueuedConnection); });
    clicks.start(10);
    EXPECT_TRUE(waitFor([&] { return title() == "999"; }, 60000));
    EXPECT_LE(most - before, 8);
}

TEST_F(SlowDisk, ShowsNothingOfAFileThatBreaks) {
    show(disk.write("broken-x.mp3", songFile(std::string(20000, 'x'))));
    EXPECT_FALSE(isReading());
    EXPECT_EQ(title(), "");
    EXPECT_EQ(controller->fileSizeField->text(), "24.5 KB");
}

TEST_F(SlowDisk, KeepsToTheFileThatItHasOpened) {
    const std::string path = disk.song("late-150-x.mp3", "old");
    QTimer::singleShot(50, [&] {
        (void)disk.song("new", "a longer new title");
        disk.replace("late-150-x.mp3", "new");
    });
    show(path);
    EXPECT_TRUE(shows("old"));
}

TEST_F(SlowDisk, DoesNotWaitForRenamesAndEditors) {
    show(disk.song("hang-rename.mp3", "new"));
    EXPECT_EQ(title(), "new");
    controller->renameToSongTitle();
    EXPECT_TRUE(disk.has("hang-rename.mp3"));
    const std::string edited = disk.song("hang-access.mp3", "edited");
    show(edited);
    controller->editWithTheTagger();
    EXPECT_EQ(calledWith("tagger", 200), "");
    disk.answer();
    EXPECT_EQ(calledWith("tagger"), "--edit\n" + edited + '\n');
    EXPECT_TRUE(waitFor([&] { return disk.has("new.mp3"); }));
    disk.hangAgain();

    // An alert that comes late does not stop what comes later.
    controller->editWithID3X();
    const std::string hanging = disk.song("hang-read.mp3", "read");
    show(hanging);
    bool isReadMeanwhile = false;
    QTimer look;
    look.callOnTimeout([&] {
        QWidget* alert = QApplication::activeModalWidget();
        if (alert != nullptr && shows("read")) {
            isReadMeanwhile = true;
            alert->close();
        }
    });
    look.start(50);
    disk.answer();
    EXPECT_TRUE(waitFor([&] { return isReadMeanwhile; }));
}

TEST_F(SlowDisk, OpensManyFilesOneAfterTheOther) {
    QList<QByteArray> paths;
    for (int i = 0; i < 200; ++i) {
        paths.append(QByteArray::fromStdString(disk.song("hang-read" + std::to_string(i) + ".mp3", "late")));
    }
    paths.append(QByteArray::fromStdString(folder.write("last.mp3", songFile("last"))));
    controller->openFiles(paths);
    EXPECT_TRUE(shows("last"));
}

/// Quitting, and handing over, while a read hangs.
TEST_F(SlowDisk, TheProgramEnds) {
    ChildProcess program({SONARIN_PROGRAM, disk.song("hang-open.mp3", "late")});
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    runFor(300);
    ChildProcess second({SONARIN_PROGRAM, disk.song("hang-read.mp3", "late")});
    EXPECT_TRUE(second.hasEnded(2000)); // three seconds are the limit of who hands over
    EXPECT_EQ(second.exitCode(), 0);
    program.signal(SIGTERM);
    EXPECT_TRUE(waitFor([] { return !isOnTheBus(); }, 2000));
    disk.answer(); // before that the system lets no process go
    EXPECT_TRUE(program.hasEnded(10000));
    EXPECT_EQ(program.exitCode(), 0);
}

} // namespace

} // namespace sonarin
