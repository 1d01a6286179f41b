// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace sonarin {

/// Renames a file or folder within one folder, never over another item, whatever other programs do meanwhile.
/// With `differsInCaseAlone`, a disk that folds letter case may find the item itself under the new name. 0,
/// or the host's error number: EEXIST when something has the new name, ENOTSUP when the disk offers no safe
/// way.
[[nodiscard]] int renameItem(const std::string& from, const std::string& to,
                             bool differsInCaseAlone) noexcept;

/// What renameItem does where the disk cannot rename without replacing; apart, for tests.
[[nodiscard]] int renameItemByLink(const std::string& from, const std::string& to) noexcept;

} // namespace sonarin
