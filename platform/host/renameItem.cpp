// SPDX-License-Identifier: MIT
#include "platform/host/renameItem.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sonarin {

namespace {

/// Whether both names lead to the one entry of one item, which only a disk that folds letter case finds
/// twice.
bool isSameEntry(const std::string& a, const std::string& b) {
    struct stat first {};
    struct stat second {};
    return lstat(a.c_str(), &first) == 0 && lstat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino && (first.st_nlink == 1 || S_ISDIR(first.st_mode));
}

int renameFolder(const std::string& from, const std::string& to) {
    // A folder may replace an empty one, and making that fails when anything is there.
    constexpr mode_t ownerOnly = 0700;
    if (mkdir(to.c_str(), ownerOnly) != 0) {
        return errno;
    }
    if (std::rename(from.c_str(), to.c_str()) == 0) {
        return 0;
    }
    const int error = errno;
    rmdir(to.c_str());
    return error;
}

} // namespace

int renameItemByLink(const std::string& from, const std::string& to) noexcept {
    struct stat status {};
    if (lstat(from.c_str(), &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return renameFolder(from, to);
    }
    // Making a second name fails when anything has it; then the first one goes.
    if (link(from.c_str(), to.c_str()) != 0) {
        const bool isUnknown = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
        return isUnknown ? ENOTSUP : errno;
    }
    if (unlink(from.c_str()) == 0 || errno == ENOENT) {
        return 0;
    }
    const int error = errno;
    unlink(to.c_str());
    return error;
}

int renameItem(const std::string& from, const std::string& to, bool differsInCaseAlone) noexcept {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    const bool isMissing = errno == EINVAL || errno == ENOSYS; // in the file system, or in the kernel
    const int error = isMissing ? renameItemByLink(from, to) : errno;
    if (error == EEXIST && differsInCaseAlone && isSameEntry(from, to)) {
        return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
    }
    return error;
}

} // namespace sonarin
