// SPDX-License-Identifier: MIT
#include "text/CMMCoreFunctions.h"

#include "text/stringEngine.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <string_view>

namespace sonarin {

const StringBundle* gCFBundleRef = nullptr;

const StringBundle* initStringBundle(const char* bundleIdentifier) noexcept {
    static const std::unique_ptr<StringBundle> bundle = StringBundle::find(bundleIdentifier);
    gCFBundleRef = bundle.get();
    return gCFBundleRef;
}

namespace {

SvxStringRef textIn(const StringBundle* bundle, std::int16_t table, std::int16_t index) {
    const std::string_view start = "STR#";
    std::array<char, 32> key{}; // two 16-bit numbers leave room to spare
    char* at = std::copy(start.begin(), start.end(), key.data());
    at = std::to_chars(at, at + 8, table).ptr;
    *at++ = ':';
    at = std::to_chars(at, at + 8, index).ptr;
    const std::string_view name(key.data(), static_cast<std::size_t>(at - key.data()));
    return bundle != nullptr ? bundle->localizedString(name, "Localizable") : SvxStringFromCString(name);
}

} // namespace

SvxStringRef iuGetIndCFString(std::int16_t table, std::int16_t index) noexcept {
    return textIn(gCFBundleRef, table, index);
}

SvxStringRef SvxStringGetFromTable(std::int16_t table, std::int16_t index) noexcept {
    return iuGetIndCFString(table, index);
}

SvxStringRef SvxStringGetFromEnglishTable(std::int16_t table, std::int16_t index) noexcept {
    if (gCFBundleRef == nullptr) {
        return textIn(nullptr, table, index);
    }
    static const StringBundle english(gCFBundleRef->folder(), "en");
    return textIn(&english, table, index);
}

void utMakeHFSStringFromCFString(const SvxStringRef& text, HFSUniStr255* name) noexcept {
    const auto longest = static_cast<SvxIndex>(name->unicode.size());
    name->length = static_cast<std::uint16_t>(std::min(SvxStringGetLength(text), longest));
    for (std::uint16_t i = 0; i < name->length; ++i) {
        name->unicode.at(i) = text->unitAt(i);
    }
}

void uCFRelease(SvxStringRef* text) noexcept {
    *text = nullptr;
}

} // namespace sonarin
