// SPDX-License-Identifier: MIT
#include "app/hiddenTexts.h"

#include "app/panelTexts.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace sonarin {

namespace {

/// The units of a text but for those that readers put between values.
std::ptrdiff_t contentLength(const SvxStringRef& text) {
    if (!text) {
        return 0;
    }
    return text->visit([](auto units) {
        return std::count_if(units.begin(), units.end(), [](auto stored) {
            const char16_t unit = unitOf(stored);
            return unit != u' ' && unit != u'/' && unit != u'\0';
        });
    });
}

} // namespace

TagTexts textsIn(const audioTags& record) noexcept {
    return {{record.mp3SongTitleString, record.mp3ArtistString, record.mp3AlbumString,
             record.mp3ComposerString, record.mp3CommentString, record.mp3LyricsString,
             record.mp3EncoderAppString},
            {record.mp3Year != 0, record.mp3TheTrack != 0,
             SvxStringGetLength(withoutTerminators(record.mp3Genre2String)) != 0}};
}

bool mayHideTexts(std::int32_t type, const audioTags& record) noexcept {
    // A WAVE file's tag is not looked for otherwise, and a block of ID3v1 stands in for a tag without texts.
    return type == amdTypeWAVE || type == amdTypeAIFF || (type == amdTypeMP3 && record.mp3TagVersion != 0);
}

bool hidesTexts(const SvxStringRef& path, const TagTexts& shown, ReadProgress* progress) noexcept {
    audioTags record;
    if (amdGetAudioMetaDataForFile(path, &record, nullptr,
                                   {Pictures::find, progress, TagReading::byStandard}) != 0) {
        return false;
    }
    const TagTexts found = textsIn(record);
    const auto hasMore = [](const SvxStringRef& theirs, const SvxStringRef& ours) {
        return contentLength(theirs) > contentLength(ours);
    };
    const auto isNew = [](bool theirs, bool ours) { return theirs && !ours; };
    return !std::equal(found.texts.begin(), found.texts.end(), shown.texts.begin(), std::not_fn(hasMore)) ||
           !std::equal(found.isThere.begin(), found.isThere.end(), shown.isThere.begin(), std::not_fn(isNew));
}

} // namespace sonarin
