// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace sonarin {

/// Where the file systems of this process are mounted (proc(5), mountinfo): asks the kernel, never a disk.
[[nodiscard]] std::vector<std::string> hostMountPoints(const char* table = "/proc/self/mountinfo");

/// The innermost of the mount points that the absolute path lies below, as far as its text tells: links are
/// not followed. Empty when there is none.
[[nodiscard]] std::string mountPointOf(const std::string& path, const std::vector<std::string>& mountPoints);

} // namespace sonarin
