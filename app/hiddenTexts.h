// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"

#include <array>

/// Texts of a tag that the usual reading leaves out.
namespace sonarin {

/// The texts that a tag may give, as a record has them; year, track count and genre as to whether they are
/// there, since the same one may be written in several ways.
struct TagTexts {
    std::array<SvxStringRef, 7> texts;
    std::array<bool, 3> isThere = {};
};
[[nodiscard]] TagTexts textsIn(const audioTags& record) noexcept;

/// Whether reading by the standards may give more than the usual reading of a file of that type did.
[[nodiscard]] bool mayHideTexts(std::int32_t type, const audioTags& record) noexcept;

/// Whether the file, which is read once more for that, has texts by the standards besides those shown, or
/// longer ones, whatever the values in them are joined with.
[[nodiscard]] bool hidesTexts(const SvxStringRef& path, const TagTexts& shown,
                              ReadProgress* progress) noexcept;

} // namespace sonarin
