// SPDX-License-Identifier: MIT
#include "gio/gio.h" // before Qt's headers, whose keywords it does not bear
#include "platform/desktop/busSources.h"
#include "platform/desktop/desktopApplication.h"
#include "tests/window/windowTest.h"

#include <QDBusMessage>

namespace sonarin {

using Paths = QList<QByteArray>;
const QString syncKind = QStringLiteral("syncKindDefaultKey");

using Following = WindowTest;

static QString stored(const QString& key) {
    return UserDefaults().value(key).toString();
}

TEST_F(Following, StartsWithTheStoredKind) {
    const std::map<int, int> items = {{5, 0}, {6, 3}, {7, 2}};
    for (const QVariant& kind : {QVariant(), QVariant(0), QVariant(4), QVariant(5), QVariant(6), QVariant(7),
                                 QVariant(8), QVariant("none")}) {
        forgetPreferences();
        UserDefaults preferences;
        if (kind.isValid()) {
            preferences.set(syncKind, kind);
        }
        const AppController started(&sources, &preferences);
        const int expected = items.contains(kind.toInt()) ? kind.toInt() : 5;
        EXPECT_EQ(started.syncType, expected);
        EXPECT_EQ(started.syncMenu->currentIndex(), items.at(expected));
        EXPECT_TRUE(started.syncCheckbox->isChecked());
        EXPECT_EQ(sources.questions, 0);              // the first tick asks
        EXPECT_EQ(stored(syncKind), kind.toString()); // no default is written, a wrong value stays
    }
}

TEST_F(Following, TakesExactlyOnePath) {
    const QByteArray a = QByteArray::fromStdString(song("A"));
    const QByteArray b = QByteArray::fromStdString(song("B"));
    SelectionSources::Paths& selected = sources.answers[Question::fileManagerSelection];
    controller->gUpdateTimer->start();
    for (int i = 0; i < 40; ++i) { // answers that change each time must not make questions follow each other
        emit sources.answered();
        runFor(10);
    }
    EXPECT_LE(sources.questions, 4); // one a tick
    selected = Paths{a};
    EXPECT_TRUE(shows("A"));
    controller->gUpdateTimer->stop();
    for (const auto& [answer, shown] : Table<SelectionSources::Paths, const char*>{
             {Paths{a, b}, "A"}, {Paths(), "A"}, {std::nullopt, "A"}, {Paths{b}, "B"}}) {
        selected = answer;
        controller->updateSelection();
        EXPECT_TRUE(shows(shown));
    }

    sources.answers[Question::playerSelection] = Paths{QByteArray(), a}; // one of two has a file
    emit controller->syncMenu->activated(3);
    EXPECT_TRUE(shows("A")); // at once
    EXPECT_TRUE(command("followPlayerAction")->isChecked());
    EXPECT_EQ(stored(syncKind), "6");
    sources.answers[Question::trackPlaying] = Paths{b};
    for (const bool isRunning : {false, true}) {
        sources.isRunning = isRunning;
        command("followTrackAction")->trigger();
        EXPECT_TRUE(shows(isRunning ? "B" : "A"));
    }
    EXPECT_EQ(controller->syncMenu->currentIndex(), 2);

    controller->gUpdateTimer->start();
    command("followAction")->trigger();
    EXPECT_FALSE(controller->syncCheckbox->isChecked());
    const int asked = sources.questions;
    selected = Paths{a};
    controller->useFinderForSync();
    runFor(450);
    EXPECT_EQ(sources.questions, asked);
    EXPECT_EQ(title(), "B");
    EXPECT_EQ(stored(syncKind) + stored("finderSync"), "50");
    openWindow(&sources);
    EXPECT_FALSE(controller->syncCheckbox->isChecked());
}

class OnTheBus : public Following {
protected:
    OnTheBus() : busSources(&bus) {
        openWindow(&busSources);
        controller->gUpdateTimer->start();
        controller->useCurrentiTunesSongForSync();
    }
    ~OnTheBus() override { controller.reset(); }

    SessionBus bus;
    BusSources busSources;
};

TEST_F(OnTheBus, FollowsTheTrackPlaying) {
    BusProgram bad("org.mpris.MediaPlayer2.bad");
    for (const char* nonsense : {"ai Metadata", "as PlaybackStatus a b", "ai PlaybackStatus"}) {
        bad.tell(nonsense);
        runFor(250);
    }
    BusProgram first("org.mpris.MediaPlayer2.first");
    first.play(song("one"));
    EXPECT_TRUE(shows("one"));
    BusProgram second("org.mpris.MediaPlayer2.second org.mpris.MediaPlayer2.second.instance7");
    second.play(song("two"), "Paused");
    runFor(500);
    EXPECT_EQ(title(), "one"); // playing comes before paused
    first.signal(SIGSTOP);
    EXPECT_TRUE(shows("two")); // an answer that does not come does not count
    first.signal(SIGCONT);
    EXPECT_TRUE(shows("one"));
    second.play(song("two"));
    EXPECT_TRUE(shows("two")); // the one that changed last
    second.tell("m xesam:url http://radio.example/stream");
    runFor(500);
    EXPECT_EQ(title(), "two"); // a stream is no file
    second.tell("s PlaybackStatus Stopped");
    EXPECT_TRUE(shows("one"));
    // Players differ in what they encode.
    const std::string strange = folder.write("50% #1 \xC3\xA9.mp3", songFile("strange"));
    first.tell("m xesam:url file://" + pathOf(strange).replace("%", "%25"));
    EXPECT_TRUE(shows("strange"));
}

/// Many programs must not cost more than two; each has its turn, and who hangs loses it.
TEST_F(OnTheBus, AsksTwoProgramsATick) {
    controller->useFinderForSync();
    std::deque<BusProgram> programs;
    for (int i = 0; i < 6; ++i) {
        const std::string number = std::to_string(i);
        programs.emplace_back("org.sonarin.Selection1.FileManager.p" + number)
            .select({fileUri(song(number))}, i == 3 ? 100 : i);
    }
    EXPECT_TRUE(shows("3"));
    programs[5].signal(SIGSTOP);
    const auto asked = [&] {
        int questions = 0;
        std::for_each_n(programs.begin(), 5, [&](auto& each) { questions += std::stoi(each.tell("asked")); });
        return questions;
    };
    const int before = asked();
    runFor(2000);
    const int questions = asked() - before;
    EXPECT_LE(questions, 22); // ten ticks, or eleven
    EXPECT_GE(questions, 12);
    programs[0].select({fileUri(song("0"))}, 200);
    EXPECT_TRUE(shows("0"));
    programs[5].signal(SIGCONT);
    programs[5].select({fileUri(song("5"))}, 300);
    EXPECT_TRUE(shows("5"));
}

TEST_F(OnTheBus, SaysWhatItFollows) {
    controller->useFinderForSync();
    EXPECT_EQ(foot(), ""); // not before anybody could have answered
    EXPECT_TRUE(says("No file manager tells its selection: <a href=\"connect\">connect…</a>"));
    BusProgram files("org.sonarin.Selection1.FileManager.f");
    for (const auto& [program, uris, said] : Table<QString, QStringList, const char*>{
             {"<b>Files & more", {}, "&lt;b&gt;Files &amp; more, nothing selected"},
             {"Files", {fileUri(song("one"))}, "Files, 1 selected"},
             {"Files", {QString()}, "Files, 1 selected, which is no file on this computer"},
             {"Files", {fileUri(song("two")), QString()}, "Files, 2 selected: nothing is shown"}}) {
        files.tell("s Program " + program);
        files.select(uris, 1);
        EXPECT_TRUE(says(said)) << foot();
    }
    EXPECT_TRUE(shows("one"));
    files.signal(SIGSTOP);
    EXPECT_TRUE(says("The file manager does not answer"));
    BusProgram list("org.sonarin.Selection1.Player.p");
    list.select({"http://radio.example/", fileUri(song("listed"))}, 1);
    controller->useiTunesSelectionForSync();
    EXPECT_TRUE(shows("listed"));
    controller->useCurrentiTunesSongForSync();
    EXPECT_TRUE(says("No player is running"));
    BusProgram player("org.mpris.MediaPlayer2.vlc.instance7");
    for (const auto& [status, said] : Table<const char*, const char*>{
             {"Playing", "vlc, playing"}, {"Paused", "vlc, paused"}, {"Stopped", "Nothing is playing"}}) {
        player.play(song("two"), status);
        EXPECT_TRUE(says(said)) << foot();
    }
    controller->syncCheckbox->setChecked(false);
    EXPECT_EQ(foot(), "");
}

/// A check adds the connector at once, and takes it away.
TEST_F(Following, ChecksAddAndRemoveConnectors) {
    emit controller->followStatusField->linkActivated(QStringLiteral("connect"));
    const auto* own = controller->myWindow->findChild<ConnectWindow*>();
    EXPECT_TRUE(own->isVisible());
    ConnectorFolders folders = ConnectorFolders::ofThisUser();
    EXPECT_EQ(own->findChild<QListWidget*>()->count(), std::ssize(findConnectors(folders)));

    folders.root = folders.searchPath = folder.path("");
    folders.data = folder.path("data");
    for (const char* program : {"caja", "nemo"}) {
        fs::permissions(folder.write(program, ""), fs::perms::owner_all);
    }
    folder.write("usr/lib/a/caja/extensions-2.0/libcaja-python.so", "");
    ConnectWindow window(folders);
    auto* list = window.findChild<QListWidget*>();
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(1)->text(), "Nemo (first needs nemo-python)");
    EXPECT_FALSE(list->item(1)->flags().testFlag(Qt::ItemIsEnabled));
    const auto notes = [&](const QString& start) {
        const auto* note = window.findChild<QLabel*>(QStringLiteral("connectNote"));
        return waitFor([&] { return note->text().startsWith(start); });
    };
    const std::string added = folder.path("data/caja-python/extensions/sonarin_selection.py");
    list->item(0)->setCheckState(Qt::Checked);
    EXPECT_TRUE(notes("Caja is connected. Restart it with: caja -q") && fs::exists(added));
    list->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_TRUE(waitFor([&] { return !fs::exists(added); }));
    fs::remove_all(folder.path("data"));
    folder.write("data", "no folder");
    list->item(0)->setCheckState(Qt::Checked);
    EXPECT_TRUE(notes("Caja: "));
    EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
}

/// Unless told otherwise, the connection that GIO makes for itself ends the program when it is closed.
TEST_F(OnTheBus, OutlivesGiosOwnConnection) {
    const std::shared_ptr<GDBusConnection> gio(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr),
                                               g_object_unref);
    testBus.reset();
    EXPECT_TRUE(waitFor([&] { return g_dbus_connection_is_closed(gio.get()) != 0; }));
    runFor(100);
    startTestBus();
}

/// Although the bus takes connections for a time and does not answer, which must not hold the window up.
TEST_F(OnTheBus, GoesOnWhenTheBusIsBack) {
    testBus.reset();
    runFor(100);
    startTestBus();
    testBus->signal(SIGSTOP);
    controller->poweredByShelvix(); // which GIO asks the bus for
    qint64 longest = 0;
    QElapsedTimer pause;
    for (int i = 0; i < 350; ++i) {
        pause.start();
        runFor(10);
        longest = std::max(longest, pause.elapsed());
    }
    EXPECT_LT(longest, 1000);
    testBus->signal(SIGCONT);
    EXPECT_NE(calledWith("browser"), "");
    BusProgram player("org.mpris.MediaPlayer2.p");
    player.play(song("another"));
    EXPECT_TRUE(shows("another"));
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
    // What is taken is empty where it is refused.
    for (const auto& [method, arguments, expected] : Table<const char*, QVariantList, QString>{
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
        QDBusMessage message = QDBusMessage::createMethodCall("org.sonarin.Test", "/org/sonarin/Test",
                                                              "org.freedesktop.Application", method);
        message.setArguments(arguments + QVariantList{QVariantMap()});
        const QDBusPendingCall pending = otherBus.connection().asyncCall(message);
        EXPECT_TRUE(waitFor([&] { return pending.isFinished(); }));
        runFor(20); // files are opened behind the answer
        EXPECT_EQ(pending.reply().type() == QDBusMessage::ReplyMessage, !expected.isEmpty()) << method;
        EXPECT_EQ(taken, expected) << method;
    }
}

} // namespace sonarin
