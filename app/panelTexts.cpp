// SPDX-License-Identifier: MIT
#include "app/panelTexts.h"

#include "engine/fileEngine.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <array>

namespace sonarin {

namespace {

SvxStringRef plainNumber(std::uint32_t number) {
    return SvxStringCreateWithFormat("%li", {number});
}

SvxStringRef yearText(const audioTags& record) {
    return record.mp3Year != 0 ? plainNumber(record.mp3Year) : nullptr;
}

SvxStringRef trackText(const audioTags& record) {
    if (record.mp3TheTrack == 0) {
        return nullptr;
    }
    return record.mp3TrackAmount != 0
               ? SvxStringCreateWithFormat("%i of %i", {record.mp3TheTrack, record.mp3TrackAmount})
               : plainNumber(record.mp3TheTrack);
}

SvxStringRef samplingRateText(const audioTags& record) {
    if (record.mp3SamplingRate == 0) {
        return nullptr;
    }
    return SvxStringCreateWithFormat("%@ kHz",
                                     {SvxMakeFloatingFractionString(record.mp3SamplingRate / 1000.0)});
}

/// Both blanks before the sampling rate stay when there is none.
SvxStringRef bitrateEtcText(const audioTags& record) {
    SvxStringRef samplingRate = samplingRateText(record);
    if (record.mp3BitRate == 0) {
        return samplingRate;
    }
    return SvxStringCreateWithFormat(record.mp3HasVBR != 0 ? "%li kbps (VBR)  %@" : "%li kbps  %@",
                                     {record.mp3BitRate, samplingRate});
}

/// The entry of `texts` under `index`; absent outside.
template <std::size_t Size>
SvxStringRef entryOf(const std::array<const char*, Size>& texts, std::size_t index) {
    return index < texts.size() ? SvxStringFromCString(texts.at(index)) : nullptr;
}

constexpr std::array<const char*, 4> channelModes = {"Stereo", " Joint Stereo", "Dual Mono", "Mono"};
constexpr std::array<const char*, 5> tagVersions = {"", "ID3v1", "ID3v2", "ID3v3", "ID3v4"};

} // namespace

SvxStringRef panelWindowTitle(const SvxStringRef& path) noexcept {
    return SvxStringCreateWithFormat("Sonarin - %@", {feLastPathComponent(path)});
}

SvxStringRef panelFileSize(const HostFileAttributes& attributes) noexcept {
    return attributes.isRegular ? SvxStringMakeSizeString(attributes.size) : SvxStringFromCString("n.a.");
}

PanelFacts panelFacts(const audioTags& record) noexcept {
    PanelFacts facts;
    facts.id3DurationField = SvxStringMakeDurationString(record.mp3SongLen);
    facts.id3BitrateEtcField = bitrateEtcText(record);
    facts.id3SongTitleField = record.mp3SongTitleString;
    facts.id3ArtistField = record.mp3ArtistString;
    facts.id3AlbumField = record.mp3AlbumString;
    facts.id3YearField = yearText(record);
    facts.id3ComposerField = record.mp3ComposerString;
    facts.id3EncoderAppField = record.mp3EncoderAppString;
    facts.id3GenreField = record.mp3Genre2String;
    facts.id3CommentField = record.mp3CommentString;
    facts.id3TrackNumberField = trackText(record);
    facts.id3ChannelsField = entryOf(channelModes, record.mp3ChannelMode);
    facts.id3TagVersionField = entryOf(tagVersions, record.mp3TagVersion);
    return facts;
}

SvxStringRef panelCoverDetails(const audioTags& record, const HostPicture* picture) noexcept {
    if (!record.mp3CoverArt) {
        return SvxStringFromCString("");
    }
    const auto whole = [](double points) { return static_cast<std::int64_t>(std::max(points, 0.0)); };
    return SvxStringCreateWithFormat("%li x %li, %li bytes",
                                     {whole(picture != nullptr ? picture->widthInPoints() : 0.0),
                                      whole(picture != nullptr ? picture->heightInPoints() : 0.0),
                                      static_cast<std::int64_t>(record.mp3CoverArt.size())});
}

SvxStringRef panelLyrics(const audioTags& record) noexcept {
    return hasLyrics(record) ? record.mp3LyricsString : SvxStringFromCString(" ");
}

bool hasLyrics(const audioTags& record) noexcept {
    return SvxStringIsValid(record.mp3LyricsString);
}

bool canTellTwitter(const audioTags& record) noexcept {
    return SvxStringIsValid(record.mp3SongTitleString) && SvxStringIsValid(record.mp3ArtistString);
}

SvxStringRef withoutTerminators(const SvxStringRef& text) noexcept {
    SvxIndex length = SvxStringGetLength(text);
    while (length > 0 && SvxStringGetUniChar(text, length - 1) == u'\0') {
        --length;
    }
    return length == SvxStringGetLength(text) ? text : SvxStringCreateWithSubstring(text, 0, length);
}

} // namespace sonarin
