// SPDX-License-Identifier: MIT
#include "app/coverFile.h"
#include "app/failureCause.h"
#include "app/outputBuffer.h"
#include "app/shownFile.h"
#include "cli/commandLine.h"
#include "cli/complaint.h"
#include "cli/showFiles.h"
#include "engine/fileEngine.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"

#include <exception>
#include <string_view>
#include <unistd.h>

namespace sonarin {

namespace {

int writeCoverOf(const CommandLine& call) {
    const ShownFile file =
        readShownFile(feMakePathText(call.files.front()), readOptions(call, Pictures::load));
    if (!file.isRead()) {
        complain(complaintAbout(file.path, failureCause(file.path, file.type)));
    }
    const std::string failure =
        file.record.mp3CoverArt
            ? writeCover(file.path, file.record.mp3CoverArt.view(), call.coverTarget, call.force)
            : "The file holds no cover picture";
    if (!failure.empty()) {
        complain(complaintAbout(file.path, failure));
    }
    return file.isRead() && failure.empty() ? exitAllRead : exitNotRead;
}

int printAndExit(std::string_view text) {
    return FileSink(STDOUT_FILENO).write(text) == 0 ? exitAllRead : exitNotRead;
}

int run(int argc, char** argv) {
    std::string problem;
    const auto call = parseCommandLine(argc, argv, &problem);
    if (!call) {
        complain(complaintOf(problem + " (--help shows the usage)"));
        return exitUsage;
    }
    if (call->action == CommandLine::Action::help) {
        return printAndExit(usageText());
    }
    if (call->action == CommandLine::Action::version) {
        return printAndExit("sonarin-info " SONARIN_VERSION "\n");
    }
    initStringBundle(SvxStringFromCString(bundleIdentifier));
    svxStringInitString();
    return call->action == CommandLine::Action::writeCover ? writeCoverOf(*call) : showFiles(*call);
}

} // namespace

} // namespace sonarin

int main(int argc, char** argv) {
    try {
        return sonarin::run(argc, argv);
    } catch (const std::exception& error) {
        sonarin::complain(sonarin::complaintOf(error.what()));
        return sonarin::exitNotRead;
    }
}
