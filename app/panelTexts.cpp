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

template <SvxStringRef audioTags::*member>
SvxStringRef asItStands(const audioTags& record, const HostPicture* /*cover*/) noexcept {
    return record.*member;
}

SvxStringRef durationText(const audioTags& record, const HostPicture* /*cover*/) noexcept {
    return SvxStringMakeDurationString(record.mp3SongLen);
}

SvxStringRef yearText(const audioTags& record, const HostPicture* /*cover*/) noexcept {
    return record.mp3Year != 0 ? plainNumber(record.mp3Year) : nullptr;
}

SvxStringRef trackText(const audioTags& record, const HostPicture* /*cover*/) noexcept {
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
SvxStringRef bitRateText(const audioTags& record, const HostPicture* /*cover*/) noexcept {
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

SvxStringRef channelsText(const audioTags& record, const HostPicture* /*cover*/) noexcept {
    constexpr std::array modes = {"Stereo", " Joint Stereo", "Dual Mono", "Mono"};
    return entryOf(modes, record.mp3ChannelMode);
}

SvxStringRef tagVersionText(const audioTags& record, const HostPicture* /*cover*/) noexcept {
    constexpr std::array versions = {"", "ID3v1", "ID3v2", "ID3v3", "ID3v4"};
    return entryOf(versions, record.mp3TagVersion);
}

/// The size of the picture in points, in whole numbers, and of its bytes. A picture that nobody can decode
/// has the size 0 x 0.
SvxStringRef coverText(const audioTags& record, const HostPicture* cover) noexcept {
    if (!record.mp3CoverArt) {
        return nullptr;
    }
    const auto whole = [](double points) { return static_cast<std::int64_t>(std::max(points, 0.0)); };
    return SvxStringCreateWithFormat("%li x %li, %li bytes",
                                     {whole(cover != nullptr ? cover->widthInPoints() : 0.0),
                                      whole(cover != nullptr ? cover->heightInPoints() : 0.0),
                                      static_cast<std::int64_t>(record.mp3CoverArt.size())});
}

// clang-format off
constexpr auto facts = std::to_array<PanelFact>({
    // name                  label       caption text JSON
    {"id3SongTitleField",    "Title",    false,   1,   3, asItStands<&audioTags::mp3SongTitleString>},
    {"id3ArtistField",       "Artist",   false,   2,   4, asItStands<&audioTags::mp3ArtistString>},
    {"id3AlbumField",        "Album",    false,   3,   5, asItStands<&audioTags::mp3AlbumString>},
    {"id3DurationField",     "Duration", true,    9,   1, durationText},
    {"id3BitrateEtcField",   "Bit rate", true,   10,   2, bitRateText},
    {"id3ChannelsField",     "Channels", true,   11,  12, channelsText},
    {"id3TagVersionField",   "Tag",      true,   13,  13, tagVersionText},
    {"coverArtDetailsField", "Cover",    true,    0,   0, coverText},
    {"id3TrackNumberField",  "Track",    true,    4,  11, trackText},
    {"id3YearField",         "Year",     true,    5,   6, yearText},
    {"id3GenreField",        "Genre",    true,    6,   9, asItStands<&audioTags::mp3Genre2String>},
    {"id3ComposerField",     "Composer", true,    7,   7, asItStands<&audioTags::mp3ComposerString>},
    {"id3EncoderAppField",   "Encoder",  true,   12,   8, asItStands<&audioTags::mp3EncoderAppString>},
    {"id3CommentField",      "Comment",  true,    8,  10, asItStands<&audioTags::mp3CommentString>},
});
// clang-format on

/// The facts that have a place, in the order of their places.
template <int PanelFact::*place>
constexpr auto inOrder = [] {
    constexpr auto hasPlace = [](const PanelFact& fact) { return fact.*place != 0; };
    std::array<const PanelFact*, std::ranges::count_if(facts, hasPlace)> ordered{};
    auto* next = ordered.begin();
    for (const PanelFact& fact : facts) {
        if (hasPlace(fact)) {
            *next++ = &fact;
        }
    }
    std::ranges::sort(ordered, {}, [](const PanelFact* fact) { return fact->*place; });
    return ordered;
}();

/// Whether each place is taken once.
template <int PanelFact::*place>
constexpr bool isCounted = [] {
    int last = 0;
    return std::ranges::all_of(inOrder<place>,
                               [&last](const PanelFact* fact) { return fact->*place == ++last; });
}();
static_assert(isCounted<&PanelFact::placeInText> && isCounted<&PanelFact::placeInJson>);

} // namespace

SvxStringRef panelWindowTitle(const SvxStringRef& path) noexcept {
    return SvxStringCreateWithFormat("Sonarin - %@", {feLastPathComponent(path)});
}

SvxStringRef panelFileSize(const HostFileAttributes& attributes) noexcept {
    return attributes.isRegular ? SvxStringMakeSizeString(attributes.size) : SvxStringFromCString("n.a.");
}

std::span<const PanelFact> panelFacts() noexcept {
    return facts;
}

std::span<const PanelFact* const> panelFactsInText() noexcept {
    return inOrder<&PanelFact::placeInText>;
}

std::span<const PanelFact* const> panelFactsInJson() noexcept {
    return inOrder<&PanelFact::placeInJson>;
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
