// SPDX-License-Identifier: MIT
// Files on a disk that does not answer, or late.
#include "tests/window/windowTest.h"

namespace sonarin {

class OnASlowDisk : public WindowTest {
protected:
    void SetUp() override {
        if (!disk.isThere) {
            GTEST_SKIP() << "NO SLOW DISK: FUSE (/dev/fuse, fuse3, python3-fusepy) does not work here";
        }
        controller->gUpdateTimer->start();
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

    QTimer beat;
    QElapsedTimer sinceBeat;
    qint64 longestGap = 0; ///< milliseconds in which the window did nothing else
    SlowDisk disk;
};

TEST_F(OnASlowDisk, LeavesWhatHangsBehind) {
    const std::string quick = song("quick");
    for (const auto& [name, knownSize, later] :
         Table<std::string, std::string, std::string>{{"hang-stat.mp3", "", "late"},
                                                      {"hang-open.mp3", "|fileSize=4.9 KB", "late"},
                                                      {"hang-read.mp3", "|fileSize=4.9 KB", "late"},
                                                      {"hang-codes.m4a", "|fileSize=4.9 KB", ""}}) {
        const std::string path = disk.song(name, "late");
        const std::string reading = "fileName=" + name + knownSize + "|0 names, 0 searches";
        for (const bool doesWait : {false, true}) {
            EXPECT_TRUE(choose(path));
            EXPECT_EQ(foot(), "Reading…");
            EXPECT_TRUE(waitFor([&] { return panel() == reading; })) << panel();
            EXPECT_EQ(controller->lastPath, pathOf(path));
            EXPECT_FALSE(choose(path));
            EXPECT_TRUE(doesWait || choose(quick));
            disk.answer();
            runFor(100);
            EXPECT_TRUE(shows(doesWait ? later : "quick")); // what comes too late is thrown away
            disk.hangAgain();
        }
        EXPECT_EQ(panel().ends_with("2 names, 2 searches"), later == "late") << panel();
        EXPECT_FALSE(choose(path)); // it is the file shown
    }
    EXPECT_FALSE(choose(disk.write("hang-stat.txt", "")));
}

/// Two at a time of one disk, so that the one behind the one that hangs is read.
TEST_F(OnASlowDisk, LeavesNoMoreThanTwoReadingsOfADiskBehind) {
    choose(disk.song("hang-read-1.mp3", "late"));
    choose(disk.song("late-150-2.mp3", "two"));
    EXPECT_TRUE(shows("two"));
    choose(disk.song("hang-read-3.mp3", "late"));
    runFor(500); // called off before it reaches the disk, it would not hang
    choose(disk.song("late-1-6.mp3", "six"));
    EXPECT_TRUE(controller->isReading());
    choose(song("other"));
    EXPECT_TRUE(shows("other"));
    EXPECT_FALSE(SideWork::haveThreadsEnded(std::chrono::milliseconds(0)));
    choose(disk.song("folder/late-1-7.mp3", "in another folder")); // which might be a link to elsewhere
    EXPECT_TRUE(shows("in another folder"));
    choose(disk.song("late-1-8.mp3", "eight"));
    disk.answer();
    EXPECT_TRUE(shows("eight"));
}

TEST_F(OnASlowDisk, SaysHowFarALongSearchIs) {
    choose(disk.write("late-20-x.mp3", std::string(4000000, 'x')));
    const auto share = [&] { return foot().ends_with('%') ? std::stoi(foot().substr(foot().find(' '))) : 0; };
    EXPECT_TRUE(waitFor([&] { return share() > 0; }));
    const int before = share();
    EXPECT_TRUE(waitFor([&] { return share() > before; }));
    choose(song("quick"));
    // Called off, it does not go on to the end.
    controller.reset();
    EXPECT_TRUE(SideWork::haveThreadsEnded(std::chrono::milliseconds(300)));
}

TEST_F(OnASlowDisk, TakesTheFileThatIsChosenWhileItWaits) {
    const std::string quick = song("quick");
    const std::string hanging = disk.song("hang-read.mp3", "late");
    choose(quick);
    std::string shownMeanwhile;
    QTimer::singleShot(40, [&] {
        shownMeanwhile = controller->fileNameField->text().toStdString();
        EXPECT_FALSE(choose(hanging));
        EXPECT_TRUE(choose(quick));
    });
    EXPECT_TRUE(choose(hanging));
    EXPECT_EQ(shownMeanwhile, "quick.mp3"); // until it is plain that the other one takes long
    EXPECT_EQ(title(), "quick");
    EXPECT_EQ(controller->lastPath, pathOf(quick));
    for (int i = 0; i < 10; ++i) { // back and forth
        choose(hanging);
        choose(quick);
        EXPECT_EQ(title(), "quick");
    }
}

TEST_F(OnASlowDisk, BearsAThousandChoices) {
    const auto threads = [] {
        return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
    };
    const auto before = threads();
    std::ptrdiff_t most = 0;
    int chosen = 0;
    const auto click = [&] {
        if (chosen < 1000) {
            const std::string number = std::to_string(chosen++);
            sources.answers[Question::fileManagerSelection] = {
                QByteArray::fromStdString(disk.song("late-100-" + number + ".mp3", number))};
            controller->updateSelection();
            most = std::max(most, threads());
        }
    };
    QTimer clicks;
    clicks.callOnTimeout(controller.get(), click, Qt::QueuedConnection);
    clicks.start(10);
    EXPECT_TRUE(waitFor([&] { return title() == "999"; }, 60000));
    EXPECT_LE(most - before, 8);
}

TEST_F(OnASlowDisk, ShowsAFileAsItWasOpenedOrNothingOfIt) {
    choose(disk.write("broken-x.mp3", songFile(std::string(20000, 'x'))));
    EXPECT_FALSE(controller->isReading());
    EXPECT_EQ(panel(), "fileName=broken-x.mp3|fileSize=24.5 KB|1 names, 1 searches"); // as read before
    const std::string path = disk.song("late-150-x.mp3", "old");
    QTimer::singleShot(50, [&] {
        (void)disk.song("new", "a longer new title");
        fs::rename(disk.behind("new"), disk.behind("late-150-x.mp3"));
    });
    choose(path);
    EXPECT_TRUE(shows("old"));
}

TEST_F(OnASlowDisk, DoesNotWaitForRenamesAndEditors) {
    choose(disk.song("hang-rename.mp3", "new"));
    controller->renameToSongTitle();
    EXPECT_TRUE(fs::exists(disk.behind("hang-rename.mp3")));
    const std::string edited = disk.song("hang-access.mp3", "edited");
    choose(edited);
    controller->editWithTheTagger();
    EXPECT_EQ(calledWith("tagger", 200), "");
    disk.answer();
    EXPECT_EQ(calledWith("tagger"), "--edit\n" + edited + '\n');
    EXPECT_TRUE(waitFor([&] { return fs::exists(disk.behind("new.mp3")); }));
    disk.hangAgain();

    // An alert that comes late does not stop what comes later.
    controller->editWithID3X();
    choose(disk.song("hang-read.mp3", "read"));
    const auto closeAlert = [this](QDialog* alert) {
        EXPECT_TRUE(shows("read"));
        alert->close();
    };
    EXPECT_TRUE(meanwhile<QDialog>([this] { disk.answer(); }, closeAlert));
}

TEST_F(OnASlowDisk, OpensManyFilesOneAfterTheOther) {
    QList<QByteArray> paths;
    for (int i = 0; i < 200; ++i) {
        paths.append(QByteArray::fromStdString(disk.song("hang-read" + std::to_string(i) + ".mp3", "late")));
    }
    paths.append(QByteArray::fromStdString(song("last")));
    controller->openFiles(paths);
    EXPECT_TRUE(shows("last"));
}

/// Quitting, and handing over, while a read hangs.
TEST_F(OnASlowDisk, TheProgramEnds) {
    const std::string start = "'" SONARIN_PROGRAM "' '";
    ChildProcess program(start + disk.song("hang-open.mp3", "late") + "'");
    ASSERT_TRUE(waitFor(isOnTheBus, 20000));
    runFor(300);
    ChildProcess second(start + disk.song("hang-read.mp3", "late") + "'");
    EXPECT_EQ(second.exitCode(2000), 0); // three seconds are the limit of who hands over
    sinceBeat.restart();                 // it was the test that waited
    program.signal(SIGTERM);
    EXPECT_TRUE(waitFor([] { return !isOnTheBus(); }, 2000));
    disk.answer(); // before that the system lets no process go
    EXPECT_EQ(program.exitCode(), 0);
}

} // namespace sonarin
