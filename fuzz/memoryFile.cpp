// SPDX-License-Identifier: MIT
#include "fuzz/memoryFile.h"

#include "app/textOutput.h"
#include "cli/jsonOutput.h"
#include "engine/fileEngine.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <limits>

namespace sonarin {

namespace {

std::span<const std::uint8_t> served;

class Nowhere final : public OutputSink {
public:
    int write(std::string_view /*bytes*/) override { return 0; }
};

/// The first block at or behind the position that is a hole or is none; else the file's end.
std::uint64_t nextBlock(std::uint64_t position, bool isHole) {
    constexpr std::uint64_t blockSize = 64;
    while (position < served.size()) {
        const std::uint64_t start = position / blockSize * blockSize;
        const auto block = served.subspan(start, std::min(blockSize, served.size() - start));
        if (std::all_of(block.begin(), block.end(), [](std::uint8_t byte) { return byte == 0; }) == isHole) {
            return position;
        }
        position = start + blockSize;
    }
    return served.size();
}

} // namespace

void serveFile(std::span<const std::uint8_t> bytes) {
    [[maybe_unused]] static const bool isStarted = [] { // what the programs do at their start
        initStringBundle(SvxStringFromCString(bundleIdentifier));
        svxStringInitString();
        return true;
    }();
    served = bytes;
}

void printFile(const ShownFile& file, Form form) {
    static Nowhere nowhere;
    static OutputBuffer out(nowhere);
    if (form == Form::json) {
        appendJson(out, file);
    } else {
        appendText(out, file.path, file.attributes, file.isRead() ? &file.record : nullptr, true);
    }
    (void)out.takeAll();
}

std::int32_t feOpenExistingDataFile(const SvxStringRef& path, std::int32_t /*writeAccess*/) noexcept {
    return path ? 1 : 0;
}

std::int32_t feGetEOF(std::int32_t /*refNum*/, std::uint64_t* size) noexcept {
    *size = served.size();
    return fileNoErr;
}

std::int32_t feReadFromFile(std::int32_t /*refNum*/, std::uint64_t position, std::uint64_t count,
                            void* buffer) noexcept {
    if (position > served.size() || count > served.size() - position) {
        return fileEofErr;
    }
    std::copy_n(served.begin() + static_cast<std::ptrdiff_t>(position), count,
                static_cast<std::uint8_t*>(buffer));
    return fileNoErr;
}

std::uint64_t feNextData(std::int32_t /*refNum*/, std::uint64_t position) noexcept {
    const std::uint64_t next = nextBlock(position, false);
    return next < served.size() ? next : std::numeric_limits<std::int64_t>::max();
}

std::uint64_t feNextHole(std::int32_t /*refNum*/, std::uint64_t position) noexcept {
    return nextBlock(position, true);
}

std::int32_t feCloseFile(std::int32_t /*refNum*/) noexcept {
    return fileNoErr;
}

HostFileAttributes hostFileAttributes(const std::string& /*path*/) noexcept {
    return {true, served.size()};
}

HostTypeCodes hostTypeCodes(const std::string& /*path*/) noexcept {
    return {};
}

} // namespace sonarin
