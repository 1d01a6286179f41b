// SPDX-License-Identifier: MIT
#include "bench/printFiles.h"

#include "app/outputBuffer.h"
#include "app/shownFile.h"
#include "cli/jsonOutput.h"
#include "engine/fileEngine.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"

#include <fcntl.h>
#include <unistd.h>

namespace sonarin::bench {

namespace {

/// What the programs do at their start, once.
void startUp() {
    static const bool done = [] {
        initStringBundle(SvxStringFromCString(bundleIdentifier));
        svxStringInitString();
        return true;
    }();
    benchmark::DoNotOptimize(done);
}

} // namespace

void printAsJson(const std::vector<std::string>& paths, TagReading tags) {
    startUp();
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    FileSink sink(null);
    OutputBuffer out(sink);
    for (const std::string& path : paths) {
        appendJson(out, readShownFile(feMakePathText(path), {Pictures::find, nullptr, tags}));
        out.flush();
    }
    close(null);
}

void printFiles(benchmark::State& state, const std::vector<std::string>& paths) {
    for (auto unused : state) {
        printAsJson(paths);
    }
    state.counters["files"] = static_cast<double>(paths.size());
}

} // namespace sonarin::bench
