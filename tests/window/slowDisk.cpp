// SPDX-License-Identifier: MIT
#include "tests/window/slowDisk.h"

#include "tests/window/windowSupport.h"

#include <sys/stat.h>
#include <vector>

namespace sonarin {

SlowDisk::SlowDisk() {
    std::filesystem::create_directories(behind("folder"));
    std::filesystem::create_directory(folder_.path("the disk"));
    const auto device = [this] {
        struct stat status {};
        stat(folder_.path("the disk").c_str(), &status);
        return status.st_dev;
    };
    const dev_t before = device();
    server_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{SONARIN_SLOW_DISK, folder_.path("disk"), folder_.path("the disk")});
    isThere_ =
        waitFor([&] { return device() != before || server_->hasEnded(0); }, 10000) && !server_->hasEnded(0);
}

SlowDisk::~SlowDisk() {
    server_.reset();
    ChildProcess unmount({"fusermount3", "-uz", folder_.path("the disk")}, ChildProcess::Errors::hidden);
    unmount.hasEnded(5000);
}

std::string SlowDisk::write(const std::string& name, const std::string& content) const {
    (void)folder_.write("disk/" + name, content);
    return folder_.path("the disk/" + name);
}

std::string SlowDisk::song(const std::string& name, const std::string& title) const {
    return write(name, songFile(title, "Ann"));
}

} // namespace sonarin
