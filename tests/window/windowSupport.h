// SPDX-License-Identifier: MIT
#pragma once

#include "app/window/AppController.h"
#include "tests/support/childProcess.h"
#include "tests/support/testFolder.h"

#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

/// What the tests of the window share: a bus of their own, programs on it, and a controller with real
/// widgets.
namespace sonarin {

/// Runs the event loop until the condition holds; false when it does not within that time.
bool waitFor(const std::function<bool()>& condition, int milliseconds = 5000);
/// Runs the event loop for that time.
void runFor(int milliseconds);

/// Waits until the file chosen last has been read, which a busy machine may leave to go on by itself.
void waitForFile(const AppController& controller);

/// The session bus of this test program. The address stays the same when it is started again.
class TestBus {
public:
    static void start();
    static void stop();
    static void signal(int number);
};

/// Whether a Sonarin is on the bus.
bool isOnTheBus();

/// Another program on the bus, under one or more names.
class BusProgram {
public:
    explicit BusProgram(const std::vector<std::string>& names);

    /// Tells it a property, in the words of tools/publisher.cpp.
    void tell(const QString& line);
    void play(const std::string& path, const QString& status = QStringLiteral("Playing"));
    void select(const QStringList& uris, int activeSince);
    void signal(int number) const { process_.signal(number); }
    /// How often it was asked for its properties so far.
    int timesAsked();

private:
    ChildProcess process_;
};

/// Answers what the test says.
class FixedSources final : public SelectionSources {
public:
    void ask(Question /*question*/) override { ++questions; }
    void forget() override {}
    Paths answer(Question question) override {
        return question == Question::fileManagerSelection ? finder
               : question == Question::playerSelection    ? selection
                                                          : track;
    }
    [[nodiscard]] bool isPlayerRunning() const override { return isRunning; }
    [[nodiscard]] Teller teller(Question /*question*/) const override { return who; }

    Paths finder;
    Paths selection;
    Paths track;
    bool isRunning = true;
    Teller who;
    int questions = 0;
};

/// Puts desktop entries of scripts into the user's data folder, which is `home`/data: one that takes the
/// cataloguer's URLs, and tag editors. Each writes what it is called with into a file.
void installPrograms(const TestFolder& home);
/// What the script of that name was called with since the last time, one argument a line; waits for the first
/// call.
std::string calledWith(const std::string& script, int milliseconds = 5000);

/// Where the preferences are stored.
QString preferencesFile();
/// Empties them.
void forgetPreferences();

QString pathOf(const std::string& path);
QString fileUri(const std::string& path);

/// An MPEG file with those texts in its tag.
std::string songFile(const std::string& title, const std::string& artist = "");

} // namespace sonarin
