// SPDX-License-Identifier: MIT
#include "app/failureCause.h"

#include "engine/audioMetaData.h"
#include "engine/fileEngine.h"
#include "platform/host/errorText.h"
#include "platform/host/fileDescriptor.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace sonarin {

namespace {

/// What a reader of that type fails without.
const char* missingPart(std::int32_t type) {
    switch (type) {
    case amdTypeMP3:
        return "No MPEG audio frame found";
    case amdTypeM4A:
    case amdTypeM4P:
        return "No MPEG-4 movie header with an item list found";
    case amdTypeWAVE:
        return "No WAVE sound format found";
    default:
        return "No AIFF sound format found";
    }
}

} // namespace

std::string failureCause(const SvxStringRef& path, std::int32_t type) {
    FSRef ref;
    struct stat status {};
    if (feMakeFSRefFromPath(path, &ref) != fileNoErr) {
        return hostErrorText(ENOENT);
    }
    if (stat(ref.path.c_str(), &status) != 0) {
        return hostErrorText(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return hostErrorText(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return "Not a regular file";
    }
    if (type == amdTypeNone) {
        return "Not an audio file, going by its name and type codes";
    }
    if (!openRegularFile(ref.path)) {
        return hostErrorText(errno);
    }
    if (status.st_size == 0) {
        return "The file is empty";
    }
    return missingPart(type);
}

} // namespace sonarin
