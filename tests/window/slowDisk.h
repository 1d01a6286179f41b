// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/childProcess.h"
#include "tests/support/testFolder.h"

#include <filesystem>
#include <memory>
#include <string>

namespace sonarin {

/// A disk whose files are slow by their names, as tests/support/slow_disk.py says. What hangs on it goes on
/// when its owner goes.
class SlowDisk {
public:
    SlowDisk();
    SlowDisk(const SlowDisk&) = delete;
    SlowDisk& operator=(const SlowDisk&) = delete;
    ~SlowDisk();

    /// False where the system lets nobody make such a disk.
    [[nodiscard]] bool isThere() const { return isThere_; }
    /// Puts a file onto the disk; answers its path there.
    [[nodiscard]] std::string write(const std::string& name, const std::string& content) const;
    [[nodiscard]] std::string song(const std::string& name, const std::string& title) const;
    /// Where its files are, for who does not want to wait.
    [[nodiscard]] std::filesystem::path behind(const std::string& name) const {
        return folder_.path("disk/" + name);
    }
    /// Whatever hangs goes on.
    void answer() const { (void)folder_.write("disk/answer", ""); }
    void hangAgain() const { std::filesystem::remove(behind("answer")); }

private:
    TestFolder folder_;
    std::unique_ptr<ChildProcess> server_;
    bool isThere_ = false;
};

} // namespace sonarin
