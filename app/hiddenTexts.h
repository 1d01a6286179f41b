// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"

#include <bitset>

/// Texts of a tag that the usual reading leaves out.
namespace sonarin {

/// Which of the texts that a tag may give a record has; year and track count as texts, since they are shown
/// as such.
using TextSet = std::bitset<10>;
[[nodiscard]] TextSet textsIn(const audioTags& record) noexcept;

/// Whether reading by the standards may give more than the usual reading of a file of that type did.
[[nodiscard]] bool mayHideTexts(std::int32_t type, const audioTags& record) noexcept;

/// Whether the file, which is read once more for that, has texts by the standards besides those shown.
[[nodiscard]] bool hidesTexts(const SvxStringRef& path, const TextSet& shown,
                              ReadProgress* progress) noexcept;

} // namespace sonarin
