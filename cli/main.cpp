// SPDX-License-Identifier: MIT
#include "app/shownFile.h"
#include "cli/commandLine.h"
#include "cli/coverFile.h"
#include "cli/failureCause.h"
#include "cli/jsonOutput.h"
#include "cli/outputBuffer.h"
#include "cli/textOutput.h"
#include "engine/fileEngine.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"

#include <cstdlib>
#include <exception>
#include <malloc.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace sonarin {

namespace {

enum ExitStatus : int { exitAllRead = 0, exitNotRead = 1, exitUsage = 2 };

void complain(std::string_view message) {
    OutputBuffer err(STDERR_FILENO);
    err.append("sonarin-info: ");
    appendForTerminal(err, feMakePathText(message));
    err.append('\n');
    err.flush();
}

/// "<path>: <message>", safe for a terminal.
void complainAbout(const ShownFile& file, const std::string& message) {
    OutputBuffer err(STDERR_FILENO);
    err.append("sonarin-info: ");
    appendForTerminal(err, file.path);
    err.append(": ");
    appendForTerminal(err, feMakePathText(message));
    err.append('\n');
    err.flush();
}

bool wantsColour() {
    // The program has no second thread.
    const char* terminal = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe)
    const bool plain = terminal == nullptr || std::string_view(terminal) == "dumb" ||
                       std::getenv("NO_COLOR") != nullptr; // NOLINT(concurrency-mt-unsafe)
    return !plain && isatty(STDOUT_FILENO) == 1;
}

int showFiles(const CommandLine& call) {
    OutputBuffer out(STDOUT_FILENO);
    const bool asJson = call.action == CommandLine::Action::showJson;
    const bool inColour = !asJson && wantsColour();
    int status = exitAllRead;
    bool isFirst = true;
    for (const std::string& path : call.files) {
        const ShownFile file = readShownFile(feMakePathText(path), Pictures::find);
        if (asJson) {
            appendJson(out, file);
        } else {
            if (!isFirst) {
                out.append('\n');
            }
            appendText(out, file, inColour);
        }
        isFirst = false;
        if (!out.flush()) {
            complain("standard output: " + std::generic_category().message(out.errorNumber()));
            return exitNotRead;
        }
        if (!file.isRead()) {
            complainAbout(file, failureCause(file));
            status = exitNotRead;
        }
    }
    return status;
}

int writeCoverOf(const CommandLine& call) {
    const ShownFile file = readShownFile(feMakePathText(call.files.front()), Pictures::load);
    if (!file.isRead()) {
        complainAbout(file, failureCause(file));
    }
    const std::string failure = writeCover(file, call.coverTarget, call.force);
    if (!failure.empty()) {
        complainAbout(file, failure);
    }
    return file.isRead() && failure.empty() ? exitAllRead : exitNotRead;
}

int printAndExit(std::string_view text) {
    OutputBuffer out(STDOUT_FILENO);
    out.append(text);
    return out.flush() ? exitAllRead : exitNotRead;
}

int run(int argc, char** argv) {
    std::string problem;
    const auto call = parseCommandLine(argc, argv, &problem);
    if (!call) {
        complain(problem + " (--help shows the usage)");
        return exitUsage;
    }
    if (call->action == CommandLine::Action::help) {
        return printAndExit(usageText());
    }
    if (call->action == CommandLine::Action::version) {
        return printAndExit("sonarin-info " SONARIN_VERSION "\n");
    }
    // A read buffer and a cover come and go with every file: keep their memory instead of giving it back to
    // the system and asking for it again each time.
    mallopt(M_TRIM_THRESHOLD, 8 << 20); // NOLINT(concurrency-mt-unsafe): there is no second thread
    mallopt(M_MMAP_THRESHOLD, 1 << 20); // NOLINT(concurrency-mt-unsafe)
    mallopt(M_MXFAST, 0); // NOLINT(concurrency-mt-unsafe): or freeing the buffer walks all fast bins

    initStringBundle(bundleIdentifier);
    svxStringInitString();
    return call->action == CommandLine::Action::writeCover ? writeCoverOf(*call) : showFiles(*call);
}

} // namespace

} // namespace sonarin

int main(int argc, char** argv) {
    try {
        return sonarin::run(argc, argv);
    } catch (const std::exception& error) {
        sonarin::complain(error.what());
        return sonarin::exitNotRead;
    }
}
