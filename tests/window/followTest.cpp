// SPDX-License-Identifier: MIT
#include "platform/desktop/busSources.h"
#include "platform/desktop/desktopApplication.h"
#include "tests/window/gioConnection.h"
#include "tests/window/windowTest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <csignal>
#include <numeric>

namespace sonarin {

namespace {

using Paths = QList<QByteArray>;
const QString syncKind = QStringLiteral("syncKindDefaultKey");

class Following : public WindowTest {
protected:
    static QByteArray bytesOf(const std::string& path) { return QByteArray::fromStdString(path); }
    [[nodiscard]] QVariant stored(const QString& key) const { return UserDefaults().value(key); }
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
        UserDefaults preferences;
        if (c.stored.isValid()) {
            preferences.set(syncKind, c.stored);
        }
        const AppController started(&sources, &preferences);
        EXPECT_EQ(started.syncType, c.kind);
        EXPECT_EQ(started.syncMenu->currentIndex(), c.item);
        EXPECT_EQ(started.syncMenu->count(), 4);
        EXPECT_TRUE(started.syncCheckbox->isChecked());
        EXPECT_EQ(sources.questions, 0); // the first tick asks
        EXPECT_EQ(stored(syncKind).toString(),
                  c.stored.toString()); // no default is written, a wrong value stays
    }
}

/// An answer that changes each time must not make questions follow each other.
TEST_F(Following, AsksOnceATick) {
    controller->gUpdateTimer->start();
    for (int i = 0; i < 40; ++i) {
        emit sources.answered();
        runFor(10);
    }
    EXPECT_LE(sources.questions, 4);
}

TEST_F(Following, TakesExactlyOnePath) {
    const std::string a = song("A");
    const std::string b = song("B");
    const Paths onlyA = {bytesOf(a)};
    const Paths onlyB = {bytesOf(b)};
    controller->gUpdateTimer->start();
    sources.finder = onlyA;
    EXPECT_TRUE(shows("A")); // by the timer
    controller->gUpdateTimer->stop();
    const std::vector<std::pair<SelectionSources::Paths, const char*>> answers = {
        {Paths{onlyA + onlyB}, "A"}, {Paths(), "A"}, {std::nullopt, "A"}, {onlyB, "B"}};
    for (const auto& [answer, shown] : answers) {
        sources.finder = answer;
        controller->updateSelection();
        EXPECT_TRUE(shows(shown));
    }

    sources.selection = Paths{QByteArray(), bytesOf(a)}; // one of two has a file
    controller->syncMenu->setCurrentIndex(3);
    emit controller->syncMenu->activated(3);
    EXPECT_EQ(controller->syncType, 6);
    EXPECT_EQ(stored(syncKind).toInt(), 6);
    EXPECT_TRUE(shows("A")); // at once
    sources.track = onlyB;
    for (const bool isRunning : {false, true}) {
        sources.isRunning = isRunning;
        controller->useCurrentiTunesSongForSync();
        EXPECT_TRUE(shows(isRunning ? "B" : "A"));
    }

    controller->gUpdateTimer->start();
    controller->syncCheckbox->setChecked(false);
    const int asked = sources.questions;
    sources.finder = onlyA;
    controller->useFinderForSync();
    runFor(450);
    EXPECT_EQ(sources.questions, asked);
    EXPECT_EQ(title(), "B");
    EXPECT_EQ(stored(syncKind).toInt(), 5);
    EXPECT_EQ(stored(QStringLiteral("finderSync")).toString(), "0");
    openWindow(&sources);
    EXPECT_FALSE(controller->syncCheckbox->isChecked());
}

class OnTheBus : public Following {
protected:
    OnTheBus() : busSources(&bus) {
        openWindow(&busSources);
        controller->gUpdateTimer->start();
    }
    ~OnTheBus() override { controller.reset(); }

    SessionBus bus;
    BusSources busSources;
};

TEST_F(OnTheBus, FollowsTheTrackPlaying) {
    controller->useCurrentiTunesSongForSync();
    BusProgram first({"org.mpris.MediaPlayer2.first"});
    first.play(song("one"));
    EXPECT_TRUE(shows("one"));
    BusProgram second({"org.mpris.MediaPlayer2.second", "org.mpris.MediaPlayer2.second.instance7"});
    second.play(song("two"), QStringLiteral("Paused"));
    runFor(500);
    EXPECT_EQ(title(), "one"); // playing comes before paused
    second.play(song("two"));
    EXPECT_TRUE(shows("two")); // the one that changed last
    second.tell(QStringLiteral("m xesam:url http://radio.example/stream"));
    runFor(500);
    EXPECT_EQ(title(), "two"); // a stream is no file
    second.tell(QStringLiteral("s PlaybackStatus Stopped"));
    EXPECT_TRUE(shows("one"));
    // Players differ in what they encode.
    const std::string strange = folder.write("50% #1 \xC3\xA9.mp3", songFile("strange"));
    first.tell(QStringLiteral("m xesam:url file://") + pathOf(strange).replace(u'%', QStringLiteral("%25")));
    EXPECT_TRUE(shows("strange"));
}

TEST_F(OnTheBus, BearsPlayersThatSayNonsense) {
    controller->useCurrentiTunesSongForSync();
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
    controller->useCurrentiTunesSongForSync();
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

TEST_F(OnTheBus, FollowsThePlayersSelection) {
    BusProgram player({"org.sonarin.Selection1.Player.p"});
    player.select({QStringLiteral("http://radio.example/"), fileUri(song("one"))}, 1);
    controller->useiTunesSelectionForSync();
    EXPECT_TRUE(shows("one"));
}

/// Many programs must not cost more than two; each has its turn, and who hangs loses it.
TEST_F(OnTheBus, AsksTwoProgramsATick) {
    std::vector<std::unique_ptr<BusProgram>> programs;
    const QString one = fileUri(song("one"));
    for (int i = 0; i < 6; ++i) {
        const std::vector<std::string> name = {"org.sonarin.Selection1.FileManager.p" + std::to_string(i)};
        programs.push_back(std::make_unique<BusProgram>(name));
        programs.back()->select({i == 3 ? one : fileUri(song(std::to_string(i)))}, i == 3 ? 100 : i);
    }
    EXPECT_TRUE(shows("one"));
    programs[5]->signal(SIGSTOP);
    const auto asked = [&] {
        return std::accumulate(programs.begin(), programs.end() - 1, 0,
                               [](int sum, const auto& program) { return sum + program->timesAsked(); });
    };
    const int before = asked();
    runFor(2000);
    const int questions = asked() - before;
    EXPECT_LE(questions, 22); // ten ticks, or eleven
    EXPECT_GE(questions, 12);
    programs[0]->select({fileUri(song("two"))}, 200);
    EXPECT_TRUE(shows("two"));
    programs[5]->signal(SIGCONT);
    programs[5]->select({one}, 300);
    EXPECT_TRUE(shows("one"));
}

TEST_F(OnTheBus, SaysWhatItFollows) {
    EXPECT_EQ(foot(), ""); // not before anybody could have answered
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
    files.select({fileUri(song("two")), QString()}, 1);
    EXPECT_TRUE(says("Files, 2 selected: nothing is shown"));
    EXPECT_TRUE(shows("one"));
    files.signal(SIGSTOP);
    EXPECT_TRUE(says("The file manager does not answer"));
    controller->useCurrentiTunesSongForSync();
    EXPECT_TRUE(says("No player is running"));
    BusProgram player({"org.mpris.MediaPlayer2.vlc.instance7"});
    player.play(song("two"));
    EXPECT_TRUE(says("vlc, playing"));
    player.play(song("two"), QStringLiteral("Paused"));
    EXPECT_TRUE(says("vlc, paused"));
    player.play(song("two"), QStringLiteral("Stopped"));
    EXPECT_TRUE(says("Nothing is playing"));
    controller->syncCheckbox->setChecked(false);
    EXPECT_EQ(foot(), "");
}

TEST_F(Following, ConnectsByTheLinkAtTheFoot) {
    emit controller->followStatusField->linkActivated(QStringLiteral("connect"));
    auto* window = controller->myWindow->findChild<ConnectWindow*>();
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
    for (const char* program : {"caja", "nemo"}) {
        fs::permissions(folder.write(program, ""), fs::perms::owner_all);
    }
    fs::create_directories(folder.path("usr/lib/a/caja/extensions-2.0"));
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
    EXPECT_TRUE(fs::exists(added));
    list->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_TRUE(waitFor([&] { return !fs::exists(added); }));
    fs::remove_all(folder.path("data"));
    folder.write("data", "no folder");
    list->item(0)->setCheckState(Qt::Checked);
    EXPECT_TRUE(waitFor([&] { return note->text().startsWith(u"Caja: "); }));
    EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
}

/// Also where a program was started, which makes a connection of GIO's.
TEST_F(OnTheBus, GoesOnWhenTheBusIsBack) {
    controller->useCurrentiTunesSongForSync();
    const auto hasGioLostIt = keepGioConnection();
    controller->poweredByShelvix();
    EXPECT_NE(calledWith("browser"), "");
    TestBus::stop();
    EXPECT_TRUE(waitFor(hasGioLostIt));
    runFor(100);
    TestBus::start();
    BusProgram player({"org.mpris.MediaPlayer2.p"});
    player.play(song("back"));
    EXPECT_TRUE(shows("back"));
}

/// A bus that takes connections and does not answer must not hold the window up.
TEST_F(OnTheBus, WaitsForABusThatHangsBesideTheWindow) {
    controller->useCurrentiTunesSongForSync();
    TestBus::stop();
    TestBus::start();
    TestBus::signal(SIGSTOP);
    controller->poweredByShelvix(); // which GIO asks the bus for
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
    QString taken;
    QObject::connect(&running, &DesktopApplication::openRequested,
                     [&](const Paths& paths) { taken = "open " + paths.join('|'); });
    QObject::connect(&running, &DesktopApplication::textReceived,
                     [&](const QString& text) { taken = "text " + text; });
    QObject::connect(&running, &DesktopApplication::activated, [&] { taken = "activate"; });
    QObject::connect(&running, &DesktopApplication::pastedPathRequested, [&] { taken = "paste"; });

    SessionBus otherBus;
    EXPECT_FALSE(DesktopApplication(&otherBus, QStringLiteral("org.sonarin.Test")).takeName());
    struct Case {
        const char* method;
        QVariantList arguments;
        QString taken; ///< empty when it is refused
    };
    for (const Case& c : std::vector<Case>{
             {"Open", {QStringList{"file:///a%20b.mp3", "file:///c.mp3"}}, "open /a b.mp3|/c.mp3"},
             {"Activate", {}, "activate"},
             {"ActivateAction", {"show-path", QVariantList{"/x"}}, "text /x"},
             {"ActivateAction", {"show-pasted-path", QVariantList()}, "paste"},
             {"ActivateAction", {"show-pasted-path", QVariantList{"/x"}}, ""},
             {"Open", {"file:///a.mp3"}, ""},
             {"Open", {QStringList{"http://a/b.mp3"}}, ""},
             {"Open", {QStringList(100000, "file:///a.mp3")}, ""},
             {"ActivateAction", {"show-path", QVariantList{1}}, ""},
             {"ActivateAction", {"show-path", QVariantList{QString(100000, u'x')}}, ""},
             {"ActivateAction", {"other", QVariantList{"/x"}}, ""}}) {
        taken.clear();
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.sonarin.Test"), QStringLiteral("/org/sonarin/Test"),
            QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(c.method));
        message.setArguments(c.arguments + QVariantList{QVariantMap()});
        const QDBusPendingCall pending = otherBus.connection().asyncCall(message);
        EXPECT_TRUE(waitFor([&] { return pending.isFinished(); }));
        runFor(20); // files are opened behind the answer
        EXPECT_EQ(pending.reply().type() == QDBusMessage::ReplyMessage, !c.taken.isEmpty()) << c.method;
        EXPECT_EQ(taken, c.taken) << c.method;
    }
}

} // namespace

} // namespace sonarin
