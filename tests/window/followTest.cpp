// SPDX-License-Identifier: MIT
#include "app/window/cocoaUtils.h"
#include "platform/desktop/busSources.h"
#include "platform/desktop/desktopApplication.h"
#include "tests/window/gioConnection.h"
#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <csignal>
#include <filesystem>
#include <memory>
#include <vector>

namespace sonarin {

namespace {

using Paths = QList<QByteArray>;
const QString syncKind = QStringLiteral("syncKindDefaultKey");

class Following : public testing::Test {
protected:
    Following() { forgetPreferences(); }

    std::string song(const std::string& title) { return folder.write(title + ".mp3", songFile(title)); }
    static Paths paths(const std::vector<std::string>& list) {
        Paths result;
        for (const std::string& path : list) {
            result.append(QByteArray::fromStdString(path));
        }
        return result;
    }

    TestFolder folder;
    UserDefaults defaults;
};

TEST_F(Following, StartsWithTheStoredKind) {
    struct Case {
        QVariant stored;
        int kind, item;
    };
    for (const Case& c : std::vector<Case>{{QVariant(), 5, 0},
                                           {0, 5, 0},
                                           {4, 5, 0},
                                           {5, 5, 0},
                                           {6, 6, 3},
                                           {7, 7, 2},
                                           {8, 5, 0},
                                           {"none", 5, 0}}) {
        forgetPreferences();
        FixedSources sources;
        UserDefaults stored;
        if (c.stored.isValid()) {
            stored.set(syncKind, c.stored);
        }
        const AppController controller(&sources, &stored);
        EXPECT_EQ(controller.syncType, c.kind);
        EXPECT_EQ(controller.syncMenu->currentIndex(), c.item);
        EXPECT_EQ(controller.syncMenu->count(), 4);
        EXPECT_TRUE(controller.syncCheckbox->isChecked());
        EXPECT_EQ(sources.questions, 0); // the first tick asks
        // No default is written, and a wrong value stays.
        EXPECT_EQ(UserDefaults().value(syncKind).toString(), c.stored.toString());
    }
}

/// An answer that changes each time must not make questions follow each other.
TEST_F(Following, AsksOnceATick) {
    FixedSources sources;
    AppController controller(&sources, &defaults);
    for (int i = 0; i < 40; ++i) {
        emit sources.answered();
        runFor(10);
    }
    EXPECT_LE(sources.questions, 4);
}

TEST_F(Following, TakesExactlyOnePath) {
    const std::string a = song("A");
    const std::string b = song("B");
    FixedSources sources;
    AppController controller(&sources, &defaults);
    const auto shown = [&] { return controller.id3SongTitleField->text().toStdString(); };
    sources.finder = paths({a});
    EXPECT_TRUE(waitFor([&] { return shown() == "A"; })); // by the timer
    sources.finder = paths({a, b});
    controller.updateSelection();
    EXPECT_EQ(shown(), "A");
    sources.finder = Paths();
    controller.updateSelection();
    sources.finder = std::nullopt;
    controller.updateSelection();
    EXPECT_EQ(shown(), "A");
    sources.finder = paths({b});
    controller.updateSelection();
    EXPECT_EQ(shown(), "B");

    sources.selection = Paths{QByteArray(), QByteArray::fromStdString(a)}; // one of two has a file
    controller.syncMenu->setCurrentIndex(3);
    emit controller.syncMenu->activated(3);
    EXPECT_EQ(controller.syncType, 6);
    EXPECT_EQ(UserDefaults().value(syncKind).toInt(), 6);
    EXPECT_EQ(shown(), "A"); // at once
    sources.track = paths({b});
    sources.isRunning = false;
    controller.useCurrentiTunesSongForSync();
    EXPECT_EQ(shown(), "A");
    sources.isRunning = true;
    controller.updateSelection();
    EXPECT_EQ(shown(), "B");

    controller.syncCheckbox->setChecked(false);
    const int asked = sources.questions;
    sources.finder = paths({a});
    controller.useFinderForSync();
    runFor(450);
    EXPECT_EQ(sources.questions, asked);
    EXPECT_EQ(shown(), "B");
    EXPECT_EQ(UserDefaults().value(syncKind).toInt(), 5);
    EXPECT_EQ(UserDefaults().value(QStringLiteral("finderSync")).toString(), "0");
    FixedSources others;
    EXPECT_FALSE(AppController(&others, &defaults).syncCheckbox->isChecked());
}

class OnTheBus : public Following {
protected:
    OnTheBus() : sources(&bus), controller(&sources, &defaults) {}

    bool shows(const std::string& title) {
        return waitFor([&] { return controller.id3SongTitleField->text().toStdString() == title; });
    }

    SessionBus bus;
    BusSources sources;
    AppController controller;
};

TEST_F(OnTheBus, FollowsTheTrackPlaying) {
    controller.useCurrentiTunesSongForSync();
    BusProgram first({"org.mpris.MediaPlayer2.first"});
    first.play(song("one"));
    EXPECT_TRUE(shows("one"));
    BusProgram second({"org.mpris.MediaPlayer2.second", "org.mpris.MediaPlayer2.second.instance7"});
    second.play(song("two"), QStringLiteral("Paused"));
    runFor(500);
    EXPECT_TRUE(shows("one")); // playing comes before paused
    second.play(song("two"));
    EXPECT_TRUE(shows("two")); // the one that changed last
    second.tell(QStringLiteral("m xesam:url http://radio.example/stream"));
    runFor(500);
    EXPECT_TRUE(shows("two")); // a stream is no file
    second.tell(QStringLiteral("s PlaybackStatus Stopped"));
    EXPECT_TRUE(shows("one"));
    // Players differ in what they encode.
    const std::string strange = folder.write("50% #1 \xC3\xA9.mp3", songFile("strange"));
    first.tell(QStringLiteral("m xesam:url file://") + pathOf(strange).replace(u'%', QStringLiteral("%25")));
    EXPECT_TRUE(shows("strange"));
}

TEST_F(OnTheBus, FollowsARealPlayer) {
    controller.useCurrentiTunesSongForSync();
    const ChildProcess mpv({"mpv", "--no-config", "--no-video", "--ao=null", "--loop=inf", "--really-quiet",
                            "--script=/usr/lib/mpv-mpris/mpris.so", SONARIN_SAMPLES "/sample.m4a"},
                           ChildProcess::Errors::hidden);
    EXPECT_TRUE(waitFor([&] { return controller.fileNameField->text() == "sample.m4a"; }, 20000));
    EXPECT_EQ(controller.id3SongTitleField->text(), "Prélude in One Second");
}

TEST_F(OnTheBus, BearsPlayersThatSayNonsense) {
    controller.useCurrentiTunesSongForSync();
    BusProgram bad({"org.mpris.MediaPlayer2.bad"});
    for (const char* line : {"ai Metadata", "as PlaybackStatus a b", "ai PlaybackStatus"}) {
        bad.tell(QLatin1StringView(line));
        runFor(250);
    }
    BusProgram good({"org.mpris.MediaPlayer2.good"});
    good.play(song("good"));
    EXPECT_TRUE(shows("good"));
}

TEST_F(OnTheBus, IsNotHeldUpByAPlayerThatHangs) {
    controller.useCurrentiTunesSongForSync();
    BusProgram frozen({"org.mpris.MediaPlayer2.frozen"});
    frozen.play(song("frozen"));
    EXPECT_TRUE(shows("frozen"));
    frozen.signal(SIGSTOP);
    BusProgram other({"org.mpris.MediaPlayer2.other"});
    other.play(song("other"), QStringLiteral("Paused"));
    EXPECT_TRUE(shows("other")); // an answer that does not come does not count
    frozen.signal(SIGCONT);
    EXPECT_TRUE(shows("frozen"));
}

TEST_F(OnTheBus, FollowsPublishedSelections) {
    BusProgram old({"org.sonarin.Selection1.FileManager.old"});
    BusProgram fresh({"org.sonarin.Selection1.FileManager.fresh"});
    const std::string one = song("one");
    const std::string two = song("two");
    old.select({fileUri(one)}, 10);
    fresh.select({fileUri(two)}, 20);
    EXPECT_TRUE(shows("two"));
    fresh.select({fileUri(one), fileUri(two)}, 20);
    runFor(500);
    EXPECT_TRUE(shows("two"));
    old.select({fileUri(one)}, 30);
    EXPECT_TRUE(shows("one"));

    BusProgram player({"org.sonarin.Selection1.Player.p"});
    player.select({QStringLiteral("http://radio.example/"), fileUri(two)}, 1);
    controller.useiTunesSelectionForSync();
    EXPECT_TRUE(shows("two"));
}

/// Many programs must not cost more than two; each has its turn, and who hangs loses it.
TEST_F(OnTheBus, AsksTwoProgramsATick) {
    std::vector<std::unique_ptr<BusProgram>> programs;
    const std::string one = song("one");
    for (int i = 0; i < 6; ++i) {
        const std::vector<std::string> name = {"org.sonarin.Selection1.FileManager.p" + std::to_string(i)};
        programs.push_back(std::make_unique<BusProgram>(name));
        programs.back()->select({fileUri(i == 3 ? one : song(std::to_string(i)))}, i == 3 ? 100 : i);
    }
    EXPECT_TRUE(shows("one"));
    programs[5]->signal(SIGSTOP);
    const auto asked = [&] {
        int questions = 0;
        for (int i = 0; i < 5; ++i) {
            questions += programs[static_cast<std::size_t>(i)]->timesAsked();
        }
        return questions;
    };
    const int before = asked();
    runFor(2000);
    EXPECT_LE(asked() - before, 22); // ten ticks, or eleven
    EXPECT_GE(asked() - before, 12);
    const std::string two = song("two");
    programs[0]->select({fileUri(two)}, 200);
    EXPECT_TRUE(shows("two"));
    programs[5]->signal(SIGCONT);
    programs[5]->select({fileUri(one)}, 300);
    EXPECT_TRUE(shows("one"));
}

TEST_F(OnTheBus, SaysWhatItFollows) {
    const auto says = [&](const char* text) {
        return waitFor([&] { return controller.followStatusField->text() == QString::fromUtf8(text); });
    };
    EXPECT_EQ(controller.followStatusField->text(), ""); // not before anybody could have answered
    EXPECT_TRUE(says("No file manager tells its selection: <a href=\"connect\">connect…</a>"));
    BusProgram files({"org.sonarin.Selection1.FileManager.f"});
    files.tell(QStringLiteral("s Program <b>Files & more"));
    files.select({}, 1);
    EXPECT_TRUE(says("&lt;b&gt;Files &amp; more, nothing selected"));
    files.tell(QStringLiteral("s Program Files"));
    files.select({fileUri(song("one"))}, 1);
    EXPECT_TRUE(says("Files, 1 selected"));
    files.select({QString()}, 1);
    EXPECT_TRUE(says("Files, 1 selected, which is no file on this computer"));
    files.select({QString(), QString()}, 1);
    EXPECT_TRUE(says("Files, 2 selected: nothing is shown"));
    files.signal(SIGSTOP);
    EXPECT_TRUE(says("The file manager does not answer"));
    controller.useCurrentiTunesSongForSync();
    EXPECT_TRUE(says("No player is running"));
    BusProgram player({"org.mpris.MediaPlayer2.vlc.instance7"});
    player.play(song("two"));
    EXPECT_TRUE(says("vlc, playing"));
    player.play(song("two"), QStringLiteral("Paused"));
    EXPECT_TRUE(says("vlc, paused"));
    player.play(song("two"), QStringLiteral("Stopped"));
    EXPECT_TRUE(says("Nothing is playing"));
    controller.syncCheckbox->setChecked(false);
    EXPECT_EQ(controller.followStatusField->text(), "");
}

TEST_F(Following, ConnectsByTheLinkAtTheFoot) {
    FixedSources sources;
    const AppController controller(&sources, &defaults);
    emit controller.followStatusField->linkActivated(QStringLiteral("connect"));
    auto* window = controller.myWindow->findChild<ConnectWindow*>();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(static_cast<std::size_t>(window->findChild<QListWidget*>()->count()),
              findConnectors(ConnectorFolders::ofThisUser()).size());
}

/// A check adds the connector at once, and takes it away.
TEST_F(Following, ChecksAddAndRemoveConnectors) {
    ConnectorFolders folders = ConnectorFolders::ofThisUser();
    folders.root = folder.path("");
    folders.data = folder.path("data");
    folders.searchPath = folder.path("");
    std::filesystem::permissions(folder.write("caja", ""), std::filesystem::perms::owner_all);
    std::filesystem::permissions(folder.write("nemo", ""), std::filesystem::perms::owner_all);
    std::filesystem::create_directories(folder.path("usr/lib/a/caja/extensions-2.0"));
    folder.write("usr/lib/a/caja/extensions-2.0/libcaja-python.so", "");
    ConnectWindow window(folders);
    auto* list = window.findChild<QListWidget*>();
    auto* note = window.findChild<QLabel*>(QStringLiteral("connectNote"));
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(1)->text(), "Nemo (first needs nemo-python)");
    EXPECT_FALSE(list->item(1)->flags().testFlag(Qt::ItemIsEnabled));
    const std::string added = folder.path("data/caja-python/extensions/sonarin_selection.py");
    list->item(0)->setCheckState(Qt::Checked);
    EXPECT_TRUE(waitFor([&] { return note->text() == "Caja is connected. Restart it with: caja -q"; }));
    EXPECT_TRUE(std::filesystem::exists(added));
    list->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_TRUE(waitFor([&] { return !std::filesystem::exists(added); }));
    std::filesystem::remove_all(folder.path("data"));
    folder.write("data", "no folder");
    list->item(0)->setCheckState(Qt::Checked);
    EXPECT_TRUE(waitFor([&] { return note->text().startsWith(u"Caja: "); }));
    EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
}

/// Also where a program was started, which makes a connection of GIO's.
TEST_F(OnTheBus, GoesOnWhenTheBusIsBack) {
    controller.useCurrentiTunesSongForSync();
    const GioConnection kept;
    ASSERT_TRUE(kept.endsTheProgramWithTheBus());
    controller.poweredByShelvix();
    EXPECT_NE(calledWith("browser"), "");
    TestBus::stop();
    EXPECT_TRUE(waitFor([&] { return kept.hasClosed(); }));
    runFor(500);
    TestBus::start();
    BusProgram player({"org.mpris.MediaPlayer2.p"});
    player.play(song("back"));
    EXPECT_TRUE(shows("back"));
}

/// A bus that takes connections and does not answer must not hold the window up.
TEST_F(OnTheBus, WaitsForABusThatHangsBesideTheWindow) {
    controller.useCurrentiTunesSongForSync();
    TestBus::stop();
    TestBus::start();
    TestBus::signal(SIGSTOP);
    controller.poweredByShelvix(); // which GIO asks the bus for
    qint64 longest = 0;
    QElapsedTimer pause;
    for (int i = 0; i < 350; ++i) {
        pause.start();
        runFor(10);
        longest = std::max(longest, pause.elapsed());
    }
    EXPECT_LT(longest, 1000);
    TestBus::signal(SIGCONT);
    EXPECT_NE(calledWith("browser"), "");
    BusProgram player({"org.mpris.MediaPlayer2.p"});
    player.play(song("back"));
    EXPECT_TRUE(shows("back"));
}

TEST_F(Following, TheRunningProgramTakesOver) {
    SessionBus bus;
    DesktopApplication running(&bus, QStringLiteral("org.sonarin.Test"));
    ASSERT_TRUE(running.takeName());
    Paths opened;
    QString text;
    int activations = 0;
    int pastedPaths = 0;
    QObject::connect(&running, &DesktopApplication::openRequested,
                     [&](const Paths& more) { opened += more; });
    QObject::connect(&running, &DesktopApplication::textReceived, [&](const QString& more) { text = more; });
    QObject::connect(&running, &DesktopApplication::activated, [&] { ++activations; });
    QObject::connect(&running, &DesktopApplication::pastedPathRequested, [&] { ++pastedPaths; });

    SessionBus otherBus;
    EXPECT_FALSE(DesktopApplication(&otherBus, QStringLiteral("org.sonarin.Test")).takeName());
    const auto call = [&](const char* method, const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.sonarin.Test"), QStringLiteral("/org/sonarin/Test"),
            QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(method));
        message.setArguments(arguments);
        const QDBusPendingCall pending = otherBus.connection().asyncCall(message);
        waitFor([&] { return pending.isFinished(); });
        return pending.reply().type() == QDBusMessage::ReplyMessage;
    };
    const QVariantMap nothing;
    EXPECT_TRUE(call("Open", {QStringList{"file:///a%20b.mp3", "file:///c.mp3"}, nothing}));
    EXPECT_TRUE(waitFor([&] { return opened == Paths{"/a b.mp3", "/c.mp3"}; }));
    EXPECT_TRUE(call("Activate", {nothing}));
    EXPECT_EQ(activations, 1);
    EXPECT_TRUE(call("ActivateAction", {"show-path", QVariantList{"/x"}, nothing}));
    EXPECT_EQ(text, "/x");
    EXPECT_TRUE(call("ActivateAction", {"show-pasted-path", QVariantList(), nothing}));
    EXPECT_EQ(pastedPaths, 1);
    EXPECT_FALSE(call("ActivateAction", {"show-pasted-path", QVariantList{"/x"}, nothing}));
    EXPECT_FALSE(call("Open", {"file:///a.mp3", nothing}));
    EXPECT_FALSE(call("Open", {QStringList{"http://a/b.mp3"}, nothing}));
    EXPECT_FALSE(call("Open", {QStringList(100000, "file:///a.mp3"), nothing}));
    EXPECT_FALSE(call("ActivateAction", {"show-path", QVariantList{1}, nothing}));
    EXPECT_FALSE(call("ActivateAction", {"show-path", QVariantList{QString(100000, u'x')}, nothing}));
    EXPECT_FALSE(call("ActivateAction", {"other", QVariantList{"/x"}, nothing}));
    EXPECT_EQ(opened.size(), 2);
}

} // namespace

} // namespace sonarin
