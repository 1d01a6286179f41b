// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/childProcess.h"
#include "tests/support/testFolder.h"

#include <memory>
#include <string>
#include <sys/types.h>

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
    void replace(const std::string& name, const std::string& by) const;
    [[nodiscard]] bool has(const std::string& name) const;
    /// Whatever hangs goes on.
    void answer() const;
    void hangAgain() const;

private:
    [[nodiscard]] dev_t device() const;

    TestFolder folder_;
    std::unique_ptr<ChildProcess> server_;
    bool isThere_ = false;
};

} // namespace sonarin
