// SPDX-License-Identifier: MIT
#include "cli/coverFile.h"

#include "cli/complaint.h"
#include "cli/outputBuffer.h"
#include "engine/fileEngine.h"
#include "platform/host/fileDescriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sonarin {

namespace {

bool isSameFile(const std::string& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string writeAll(int descriptor, ByteView bytes) {
    const int error = FileSink(descriptor).write(asCharacters(bytes));
    return error == 0 ? std::string() : hostErrorText(error);
}

} // namespace

std::string writeCover(const ShownFile& file, const std::string& target, bool force) {
    if (!file.record.mp3CoverArt) {
        return "The file holds no cover picture";
    }
    if (target == "-") {
        return writeAll(STDOUT_FILENO, file.record.mp3CoverArt.view());
    }
    FSRef audio;
    if (feMakeFSRefFromPath(file.path, &audio) == fileNoErr && isSameFile(target, audio.path)) {
        return "The cover would replace the audio file itself";
    }
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | (force ? O_TRUNC : O_EXCL);
    const FileDescriptor out(open(target.c_str(), flags, 0666)); // NOLINT(cppcoreguidelines-pro-type-vararg)
    if (!out) {
        return target + ": " + hostErrorText(errno) + (errno == EEXIST ? " (--force replaces it)" : "");
    }
    std::string failure = writeAll(out.get(), file.record.mp3CoverArt.view());
    if (failure.empty()) {
        return failure;
    }
    if (!force) {
        unlink(target.c_str()); // made here, and half a picture is of no use
    }
    return target + ": " + failure;
}

} // namespace sonarin
