// SPDX-License-Identifier: MIT
#include "app/renameMenu.h"

#include "text/stringEngine.h"

namespace sonarin {

SvxStringRef suffixForType(std::int32_t type) noexcept {
    switch (type) {
    case amdTypeMP3:
        return SvxStringFromCString("mp3");
    case amdTypeM4A:
        return SvxStringFromCString("m4a");
    case amdTypeM4P:
        return SvxStringFromCString("m4p");
    case amdTypeAIFF:
        return SvxStringFromCString("aiff");
    default:
        return SvxStringFromCString("");
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
    const SvxStringRef suffix = suffixForType(type);
    const SvxStringRef& title = record.mp3SongTitleString;
    switch (pattern) {
    case RenamePattern::songTitle:
        return SvxStringCreateWithFormat("%@.%@", {title, suffix});
    case RenamePattern::trackNumSongTitle:
        return SvxStringCreateWithFormat(record.mp3TheTrack < 10 ? "0%li - %@.%@" : "%li - %@.%@",
                                         {record.mp3TheTrack, title, suffix});
    case RenamePattern::artistSong:
        return SvxStringCreateWithFormat("%@ - %@.%@", {record.mp3ArtistString, title, suffix});
    case RenamePattern::artistAlbumSong:
        return SvxStringCreateWithFormat("%@ - %@ - %@.%@",
                                         {record.mp3ArtistString, record.mp3AlbumString, title, suffix});
    }
    return nullptr;
}

SvxStringRef renameEntryTitle(RenamePattern pattern, const audioTags& record, std::int32_t type) noexcept {
    return SvxStringCreateWithFormat("Rename to:   %@", {renameFileName(pattern, record, type)});
}

} // namespace sonarin
