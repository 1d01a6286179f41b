// SPDX-License-Identifier: MIT
#include "platform/host/fileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sonarin {

FileDescriptor::~FileDescriptor() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

FileDescriptor openWithoutWaiting(const std::string& path, bool writeAccess) noexcept {
    const int flags = (writeAccess ? O_RDWR : O_RDONLY) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor file(uninterrupted([&] {
        return open(path.c_str(), flags); // NOLINT(cppcoreguidelines-pro-type-vararg)
    }));
    if (file.get() == 0) {
        // Only where standard input is closed: 0 means "none" to those who keep the number.
        file = FileDescriptor(fcntl(0, F_DUPFD_CLOEXEC, 1)); // NOLINT(cppcoreguidelines-pro-type-vararg)
    }
    return file;
}

FileDescriptor openRegularFile(const std::string& path) noexcept {
    FileDescriptor file = openWithoutWaiting(path, false);
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return {};
    }
    return file;
}

} // namespace sonarin
