// SPDX-License-Identifier: MIT
#include "app/findMenu.h"

#include "text/stringEngine.h"

#include <array>
#include <string_view>

namespace sonarin {

namespace {

constexpr std::string_view valuePlace = "%@";

struct FindRule {
    FindKey key;
    SvxStringRef audioTags::*value; ///< null for the year, the only number
    std::string_view titleFormat;
    std::string_view urlFormat;
};

constexpr auto findRules = std::to_array<FindRule>({
    {FindKey::song, &audioTags::mp3SongTitleString, "Find all songs \"%@\" in Shelvix",
     "shelvix://find/audio/&song=%@"},
    {FindKey::album, &audioTags::mp3AlbumString, "Find all songs of album \"%@\" in Shelvix",
     "shelvix://find/audio/&album=%@"},
    {FindKey::artist, &audioTags::mp3ArtistString, "Find all songs of artist \"%@\" in Shelvix",
     "shelvix://find/audio/&artist=%@"},
    {FindKey::year, nullptr, "Find all songs of %@ in Shelvix", "shelvix://find/audio/&year=%li"},
    {FindKey::genre, &audioTags::mp3Genre2String, "Find all songs of genre \"%@\" in Shelvix",
     "shelvix://find/audio/&genre=%@"},
    {FindKey::composer, &audioTags::mp3ComposerString, "Find all songs of composer \"%@\" in Shelvix",
     "shelvix://find/audio/&composer=%@"},
});

bool hasValue(const FindRule& rule, const audioTags& record) {
    return rule.value == nullptr ? record.mp3Year != 0 : SvxStringIsValid(record.*rule.value);
}

} // namespace

std::vector<FindKey> findKeys(const audioTags& record) {
    std::vector<FindKey> keys;
    for (const FindRule& rule : findRules) {
        if (hasValue(rule, record)) {
            keys.push_back(rule.key);
        }
    }
    return keys;
}

FindEntryParts findEntryParts(FindKey key, const audioTags& record) noexcept {
    const FindRule& rule = findRules[static_cast<std::size_t>(key)];
    const std::size_t place = rule.titleFormat.find(valuePlace);
    return {rule.titleFormat.substr(0, place),
            rule.value == nullptr ? SvxStringCreateWithFormat("%li", {record.mp3Year}) : record.*rule.value,
            rule.titleFormat.substr(place + valuePlace.size())};
}

SvxStringRef findEntryTitle(FindKey key, const audioTags& record) noexcept {
    const FindRule& rule = findRules[static_cast<std::size_t>(key)];
    return SvxStringCreateWithFormat(rule.titleFormat, {findEntryParts(key, record).value});
}

SvxStringRef findUrl(FindKey key, const audioTags& record) noexcept {
    const FindRule& rule = findRules[static_cast<std::size_t>(key)];
    if (rule.value == nullptr) {
        return SvxStringCreateWithFormat(rule.urlFormat, {record.mp3Year});
    }
    return SvxStringCreateWithFormat(rule.urlFormat, {SvxStringConvertToURL(record.*rule.value)});
}

} // namespace sonarin
