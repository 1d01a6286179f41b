// SPDX-License-Identifier: MIT
#include "text/CMMCoreFunctions.h"

#include "text/stringEngine.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace sonarin {

std::atomic<const StringBundle*> gCFBundleRef = nullptr;

namespace {

/// The bundle with that identifier, looked for until it is found.
const StringBundle* bundleNamed(const std::string& identifier) {
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<const StringBundle>> found;
    const std::lock_guard lock(mutex);
    std::unique_ptr<const StringBundle>& bundle = found[identifier];
    if (!bundle) {
        bundle = StringBundle::find(identifier);
    }
    return bundle.get();
}

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

const StringBundle* initStringBundle(const SvxStringRef& bundleIdentifier) noexcept {
    if (!bundleIdentifier) {
        return nullptr;
    }
    const StringBundle* bundle = nullptr;
    try {
        std::uint32_t size = SvxStringGetUTF8Size(bundleIdentifier);
        std::string identifier(size, '\0');
        SvxStringCopyToUTF8(bundleIdentifier, identifier.data(), &size);
        bundle = bundleNamed(identifier);
    } catch (const std::exception&) {
        // Out of memory: as if there were no bundle.
    }
    gCFBundleRef = bundle;
    return bundle;
}

SvxStringRef iuGetIndCFString(std::int16_t table, std::int16_t index) noexcept {
    return textIn(gCFBundleRef, table, index);
}

SvxStringRef SvxStringGetFromTable(std::int16_t table, std::int16_t index) noexcept {
    return iuGetIndCFString(table, index);
}

SvxStringRef SvxStringGetFromEnglishTable(std::int16_t table, std::int16_t index) noexcept {
    const StringBundle* bundle = gCFBundleRef;
    return textIn(bundle != nullptr ? &bundle->english() : nullptr, table, index);
}

void utMakeHFSStringFromCFString(const SvxStringRef& text, HFSUniStr255* name) noexcept {
    const auto longest = static_cast<SvxIndex>(name->unicode.size());
    name->length = static_cast<std::uint16_t>(std::min(SvxStringGetLength(text), longest));
    for (std::uint16_t i = 0; i < name->length; ++i) {
        name->unicode.at(i) = text->unitAt(i);
    }
}

void uCFRelease(SvxStringRef* text) noexcept {
    if (text != nullptr) {
        *text = nullptr;
    }
}

} // namespace sonarin
