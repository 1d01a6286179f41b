// SPDX-License-Identifier: MIT
#include "engine/fileEngine.h"

#include "platform/host/fileDescriptor.h"
#include "text/stringEngine.h"
#include "text/textDecoding.h"
#include "text/unicodeForms.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace sonarin {

namespace {

constexpr char16_t escapedByteBase = 0xDC00;
constexpr auto farthest = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

bool isEscapedByte(CodePoint unit) {
    return unit >= escapedByteBase + 0x80 && unit <= escapedByteBase + 0xFF;
}

std::int32_t hostError() {
    return -static_cast<std::int32_t>(errno);
}

std::u16string decodePath(std::string_view bytes) {
    std::u16string units(bytes.size(), u'\0');
    char16_t* out = units.data();
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t start = i;
        const CodePoint character = decodeUtf8(bytes, &i);
        if (character == malformed) {
            i = start + 1;
            *out++ = static_cast<char16_t>(escapedByteBase + unitOf(bytes[start]));
        } else {
            out = encodeUtf16(character, out);
        }
    }
    units.resize(static_cast<std::size_t>(out - units.data()));
    return units;
}

/// The bytes of a path up to the first U+0000, or none when a lone surrogate in it stands for no byte.
std::string encodePath(const SvxString& text) {
    std::string bytes;
    bool convertible = true;
    text.visit([&](auto units) {
        units = units.substr(0, units.find('\0'));
        if constexpr (sizeof(units[0]) == 1) {
            if (asciiRun(units) == units.size()) {
                bytes = units;
                return;
            }
        }
        forEachCharacter(units, [&](CodePoint character) {
            if (isEscapedByte(character)) {
                bytes += static_cast<char>(character - escapedByteBase);
                return true;
            }
            convertible = !isSurrogate(character);
            if (convertible) {
                bytes += encodeUtf8(character).view();
            }
            return convertible;
        });
    });
    return convertible ? bytes : std::string();
}

} // namespace

SvxStringRef feMakePathText(std::string_view bytes) noexcept {
    try {
        const bool isAscii = asciiRun(bytes) == bytes.size();
        return isAscii ? SvxStringFromUTF8(bytes) : SvxStringFromUTF16(decodePath(bytes));
    } catch (const std::exception&) {
        return nullptr;
    }
}

SvxStringRef feLastPathComponent(const SvxStringRef& path) noexcept {
    if (!path) {
        return nullptr;
    }
    const auto [start, length] = path->visit([](auto units) {
        using Units = decltype(units);
        const typename Units::value_type slash = '/';
        const std::size_t last = units.find_last_not_of(slash);
        if (last == Units::npos) {
            return std::pair<std::size_t, std::size_t>(
                0, std::min<std::size_t>(units.size(), 1)); // the root, or ""
        }
        const std::size_t before = units.find_last_of(slash, last);
        const std::size_t first = before == Units::npos ? 0 : before + 1;
        return std::pair<std::size_t, std::size_t>(first, last + 1 - first);
    });
    return SvxStringCreateWithSubstring(path, static_cast<SvxIndex>(start), static_cast<SvxIndex>(length));
}

std::int32_t feMakeFSRefFromPath(const SvxStringRef& path, FSRef* ref) noexcept {
    if (!path) {
        return -ENOENT;
    }
    try {
        ref->path = encodePath(*path);
    } catch (const std::exception&) {
        return fileMemFullErr;
    }
    return ref->path.empty() ? -ENOENT : fileNoErr;
}

std::int32_t feOpenExistingDataFile(const SvxStringRef& path, std::int32_t writeAccess) noexcept {
    FSRef ref;
    if (feMakeFSRefFromPath(path, &ref) != fileNoErr) {
        return 0;
    }
    FileDescriptor file = openWithoutWaiting(ref.path, writeAccess == 1);
    return file ? file.release() : 0;
}

std::int32_t feGetEOF(std::int32_t refNum, std::uint64_t* size) noexcept {
    struct stat status {};
    if (fstat(refNum, &status) != 0) {
        return hostError();
    }
    if (!S_ISREG(status.st_mode)) {
        return -EINVAL;
    }
    *size = static_cast<std::uint64_t>(status.st_size);
    return fileNoErr;
}

std::int32_t feReadFromFile(std::int32_t refNum, std::uint64_t position, std::uint64_t count,
                            void* buffer) noexcept {
    if (position > farthest || count > farthest - position) {
        return fileEofErr;
    }
    auto* out = static_cast<std::uint8_t*>(buffer);
    while (count > 0) {
        const ssize_t got = pread(refNum, out, count, static_cast<off_t>(position));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return hostError();
        }
        if (got == 0) {
            std::uint64_t size = 0;
            const bool hasMore = feGetEOF(refNum, &size) == fileNoErr && position < size;
            return hasMore ? fileShortReadErr : fileEofErr;
        }
        out += got;
        position += static_cast<std::uint64_t>(got);
        count -= static_cast<std::uint64_t>(got);
    }
    return fileNoErr;
}

std::uint64_t feNextData(std::int32_t refNum, std::uint64_t position) noexcept {
    if (position > farthest) {
        return position;
    }
    const off_t found = lseek(refNum, static_cast<off_t>(position), SEEK_DATA);
    if (found >= 0) {
        return static_cast<std::uint64_t>(found);
    }
    return errno == ENXIO ? farthest : position; // ENXIO: nothing but a hole is left
}

std::uint64_t feNextHole(std::int32_t refNum, std::uint64_t position) noexcept {
    const off_t found = position > farthest ? -1 : lseek(refNum, static_cast<off_t>(position), SEEK_HOLE);
    return found >= 0 ? static_cast<std::uint64_t>(found) : farthest;
}

std::int32_t feCloseFile(std::int32_t refNum) noexcept {
    return close(refNum) == 0 ? fileNoErr : hostError();
}

} // namespace sonarin
