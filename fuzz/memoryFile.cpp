// SPDX-License-Identifier: MIT
#include "fuzz/memoryFile.h"

#include "app/outputBuffer.h"
#include "app/shownFile.h"
#include "app/textOutput.h"
#include "cli/jsonOutput.h"
#include "engine/fileEngine.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace sonarin {

MemoryFile::MemoryFile(const std::uint8_t* bytes, std::size_t size)
    : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    if (descriptor_ < 0 || write(descriptor_, bytes, size) != static_cast<ssize_t>(size)) {
        std::abort();
    }
}

MemoryFile::~MemoryFile() {
    close(descriptor_);
}

SvxStringRef MemoryFile::path() const {
    return feMakePathText("/proc/self/fd/" + std::to_string(descriptor_));
}

void startUp() {
    static const bool done = [] {
        initStringBundle(SvxStringFromCString(bundleIdentifier));
        svxStringInitString();
        return true;
    }();
    (void)done;
}

void printRecord(const SvxStringRef& path, audioTags&& record) {
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    ShownFile file;
    file.path = path;
    file.type = amdTypeMP3;
    file.result = 0;
    file.record = std::move(record);
    FileSink sink(nowhere);
    OutputBuffer out(sink);
    appendJson(out, file);
    appendText(out, file.path, file.attributes, file.isRead() ? &file.record : nullptr, false);
    out.flush();
}

int fuzzReader(const std::uint8_t* bytes, std::size_t size, Reader read) {
    startUp();
    const MemoryFile file(bytes, size);
    for (const TagReading tags : {TagReading::usual, TagReading::byStandard}) {
        audioTags record;
        read(file.path(), &record, {Pictures::load, nullptr, tags});
        printRecord(file.path(), std::move(record));
    }
    return 0;
}

} // namespace sonarin
