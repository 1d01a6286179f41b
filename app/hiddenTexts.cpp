// SPDX-License-Identifier: MIT
#include "app/hiddenTexts.h"

#include "app/panelTexts.h"
#include "text/stringEngine.h"

#include <array>

namespace sonarin {

TextSet textsIn(const audioTags& record) noexcept {
    constexpr std::array<SvxStringRef audioTags::*, 8> texts = {
        &audioTags::mp3SongTitleString, &audioTags::mp3ArtistString,    &audioTags::mp3AlbumString,
        &audioTags::mp3ComposerString,  &audioTags::mp3CommentString,   &audioTags::mp3Genre2String,
        &audioTags::mp3LyricsString,    &audioTags::mp3EncoderAppString};
    TextSet set;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        set[i] = SvxStringGetLength(withoutTerminators(record.*texts.at(i))) != 0;
    }
    set[texts.size()] = record.mp3Year != 0;
    set[texts.size() + 1] = record.mp3TheTrack != 0;
    return set;
}

bool mayHideTexts(std::int32_t type, const audioTags& record) noexcept {
    // A WAVE file's tag is not looked for otherwise, and a block of ID3v1 stands in for a tag without texts.
    return !textsIn(record).all() &&
           (type == amdTypeWAVE || type == amdTypeAIFF || (type == amdTypeMP3 && record.mp3TagVersion != 0));
}

bool hidesTexts(const SvxStringRef& path, const TextSet& shown, ReadProgress* progress) noexcept {
    audioTags record;
    return amdGetAudioMetaDataForFile(path, &record, nullptr,
                                      {Pictures::find, progress, TagReading::byStandard}) == 0 &&
           (textsIn(record) & ~shown).any();
}

} // namespace sonarin
