// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"
#include "text/stringBundle.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string_view>

/// Localized strings by table and index, and small conversions.
namespace sonarin {

/// The program's own bundle; null until initStringBundle has found it. Lives as long as the process.
extern std::atomic<const StringBundle*> gCFBundleRef;

/// Finds the bundle with that identifier and keeps it in gCFBundleRef: null when there is none. Answers what
/// it found. A bundle that was found once stays, for those who still read from it. Absent does nothing.
const StringBundle* initStringBundle(const SvxStringRef& bundleIdentifier) noexcept;

/// The localized text under the key "STR#table:index" of the strings table "Localizable". A missing key, and
/// a missing bundle, answer the key itself.
[[nodiscard]] SvxStringRef iuGetIndCFString(std::int16_t table, std::int16_t index) noexcept;
/// The same under the name that the engine uses.
[[nodiscard]] SvxStringRef SvxStringGetFromTable(std::int16_t table, std::int16_t index) noexcept;

/// The same in English, whatever the user's language.
[[nodiscard]] SvxStringRef SvxStringGetFromEnglishTable(std::int16_t table, std::int16_t index) noexcept;

/// A file name in the form of an HFS Unicode name: at most 255 UTF-16 code units.
struct HFSUniStr255 {
    std::uint16_t length = 0;
    std::array<char16_t, 255> unicode{};

    [[nodiscard]] std::u16string_view view() const noexcept { return {unicode.data(), length}; }
};

/// Fills `*name` with the text's first 255 units, without a mark where it was cut; absent gives length 0.
void utMakeHFSStringFromCFString(const SvxStringRef& text, HFSUniStr255* name) noexcept;

/// Gives a reference up; absent is fine, and so is null.
void uCFRelease(SvxStringRef* text) noexcept;

} // namespace sonarin
