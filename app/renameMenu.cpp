// SPDX-License-Identifier: MIT
#include "app/renameMenu.h"

#include "text/stringEngine.h"

namespace sonarin {

namespace {

/// `start` and the name: a menu entry and the name that it offers are made the same way.
SvxStringRef formatName(std::string_view start, RenamePattern pattern, const audioTags& record,
                        std::int32_t type) {
    const std::string_view suffix = suffixForType(type);
    const SvxStringRef& title = record.mp3SongTitleString;
    switch (pattern) {
    case RenamePattern::songTitle:
        return SvxStringCreateWithFormat("%@%@.%@", {start, title, suffix});
    case RenamePattern::trackNumSongTitle:
        return SvxStringCreateWithFormat(record.mp3TheTrack < 10 ? "%@0%li - %@.%@" : "%@%li - %@.%@",
                                         {start, record.mp3TheTrack, title, suffix});
    case RenamePattern::artistSong:
        return SvxStringCreateWithFormat("%@%@ - %@.%@", {start, record.mp3ArtistString, title, suffix});
    case RenamePattern::artistAlbumSong:
        return SvxStringCreateWithFormat(
            "%@%@ - %@ - %@.%@", {start, record.mp3ArtistString, record.mp3AlbumString, title, suffix});
    }
    return nullptr;
}

} // namespace

std::string_view suffixForType(std::int32_t type) noexcept {
    switch (type) {
    case amdTypeMP3:
        return "mp3";
    case amdTypeM4A:
        return "m4a";
    case amdTypeM4P:
        return "m4p";
    case amdTypeAIFF:
        return "aiff";
    default:
        return "";
    }
}

std::vector<RenamePattern> renamePatterns(const audioTags& record) {
    std::vector<RenamePattern> patterns;
    if (!SvxStringIsValid(record.mp3SongTitleString)) {
        return patterns;
    }
    patterns.push_back(RenamePattern::songTitle);
    if (record.mp3TheTrack != 0) {
        patterns.push_back(RenamePattern::trackNumSongTitle);
    }
    if (SvxStringIsValid(record.mp3ArtistString)) {
        patterns.push_back(RenamePattern::artistSong);
        if (SvxStringIsValid(record.mp3AlbumString)) {
            patterns.push_back(RenamePattern::artistAlbumSong);
        }
    }
    return patterns;
}

SvxStringRef renameFileName(RenamePattern pattern, const audioTags& record, std::int32_t type) noexcept {
    return formatName("", pattern, record, type);
}

SvxStringRef renameEntryTitle(RenamePattern pattern, const audioTags& record, std::int32_t type) noexcept {
    return formatName("Rename to:   ", pattern, record, type);
}

} // namespace sonarin
