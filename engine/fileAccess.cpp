// SPDX-License-Identifier: MIT
// Apart from the paths, since the fuzz targets serve files from memory in place of these.
#include "engine/fileEngine.h"
#include "platform/host/fileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace sonarin {

namespace {

constexpr auto farthest = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

std::int32_t hostError() {
    return feHostError(errno);
}

} // namespace

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
        return feHostError(EINVAL);
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
    for (std::uint64_t done = 0; done < count;) {
        const ssize_t got = uninterrupted(
            [&] { return pread(refNum, out + done, count - done, static_cast<off_t>(position + done)); });
        if (got < 0) {
            return hostError();
        }
        if (got == 0) {
            std::uint64_t size = 0;
            const bool hasMore = feGetEOF(refNum, &size) == fileNoErr && position + done < size;
            return hasMore ? fileShortReadErr : fileEofErr;
        }
        done += static_cast<std::uint64_t>(got);
    }
    return fileNoErr;
}

std::uint64_t feNextData(std::int32_t refNum, std::uint64_t position) noexcept {
    const off_t found = lseek(refNum, static_cast<off_t>(position), SEEK_DATA);
    if (found >= 0) {
        return static_cast<std::uint64_t>(found);
    }
    return errno == ENXIO ? std::max(position, farthest) : position; // ENXIO: nothing but a hole is left
}

std::uint64_t feNextHole(std::int32_t refNum, std::uint64_t position) noexcept {
    const off_t found = lseek(refNum, static_cast<off_t>(position), SEEK_HOLE);
    return found >= 0 ? static_cast<std::uint64_t>(found) : farthest;
}

std::int32_t feCloseFile(std::int32_t refNum) noexcept {
    return close(refNum) == 0 ? fileNoErr : hostError();
}

} // namespace sonarin
