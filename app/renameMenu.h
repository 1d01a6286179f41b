// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "text/SvxString.h"

#include <cstdint>
#include <string_view>
#include <vector>

/// The names that the Rename menu offers.
namespace sonarin {

/// The patterns in the order of the menu.
enum class RenamePattern { songTitle, trackNumSongTitle, artistSong, artistAlbumSong };

/// The extension of an audio type without the full stop; the empty text for WAVE and for no audio file.
[[nodiscard]] std::string_view suffixForType(std::int32_t type) noexcept;

/// The patterns whose values the record holds; an empty text counts as a value.
[[nodiscard]] std::vector<RenamePattern> renamePatterns(const audioTags& record);

/// The file name that the pattern makes of the record, every value as it stands.
[[nodiscard]] SvxStringRef renameFileName(RenamePattern pattern, const audioTags& record,
                                          std::int32_t type) noexcept;

/// The title of the menu entry that offers that name.
[[nodiscard]] SvxStringRef renameEntryTitle(RenamePattern pattern, const audioTags& record,
                                            std::int32_t type) noexcept;

} // namespace sonarin
