// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "text/SvxString.h"

#include <string_view>
#include <vector>

/// What the Find menu offers to look for in the cataloguer.
namespace sonarin {

/// The keys in the order of the menu.
enum class FindKey { song, album, artist, year, genre, composer };

/// The keys that the record has a value for; an empty text counts as a value, a year of 0 does not.
[[nodiscard]] std::vector<FindKey> findKeys(const audioTags& record);

/// The title of a menu entry in parts, the value as it stands: for who prints them and need not join them,
/// since a value may be of many megabytes.
struct FindEntryParts {
    std::string_view before;
    SvxStringRef value;
    std::string_view after;
};
[[nodiscard]] FindEntryParts findEntryParts(FindKey key, const audioTags& record) noexcept;

/// The title of the menu entry.
[[nodiscard]] SvxStringRef findEntryTitle(FindKey key, const audioTags& record) noexcept;

/// The URL that asks the cataloguer for all songs with the record's value, which it carries percent-escaped;
/// ASCII.
[[nodiscard]] SvxStringRef findUrl(FindKey key, const audioTags& record) noexcept;

} // namespace sonarin
