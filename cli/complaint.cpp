// SPDX-License-Identifier: MIT
#include "cli/complaint.h"

#include "app/outputBuffer.h"
#include "app/textOutput.h"
#include "engine/fileEngine.h"
#include "text/stringEngine.h"

#include <unistd.h>
#include <utility>

namespace sonarin {

namespace {

std::string line(const SvxStringRef& path, std::string_view message) {
    constexpr SvxIndex longest = 4096; // the host's own limit
    StringSink sink;
    OutputBuffer out(sink);
    out.append("sonarin-info: ");
    if (path) {
        const bool isCut = SvxStringGetLength(path) > longest;
        appendForTerminal(out, isCut ? SvxStringCreateWithSubstring(path, 0, longest) : path);
        out.append(isCut ? "\xE2\x80\xA6: " : ": "); // U+2026
    }
    appendForTerminal(out, feMakePathText(message));
    out.append('\n');
    out.flush();
    return std::move(sink.text);
}

} // namespace

std::string complaintAbout(const SvxStringRef& path, std::string_view message) {
    return line(path, message);
}

std::string complaintOf(std::string_view message) {
    return line(nullptr, message);
}

void complain(std::string_view complaint) {
    (void)FileSink(STDERR_FILENO).write(complaint);
}

} // namespace sonarin
