// SPDX-License-Identifier: MIT
#include "text/CMMCoreFunctions.h"

#include "text/stringEngine.h"

#include <algorithm>
#include <memory>

namespace sonarin {

const StringBundle* gCFBundleRef = nullptr;

const StringBundle* initStringBundle(const char* bundleIdentifier) noexcept {
    static const std::unique_ptr<StringBundle> bundle = StringBundle::find(bundleIdentifier);
    gCFBundleRef = bundle.get();
    return gCFBundleRef;
}

SvxStringRef iuGetIndCFString(std::int16_t table, std::int16_t index) noexcept {
    const SvxStringRef key = SvxStringCreateWithFormat("STR#%i:%i", {table, index});
    return gCFBundleRef != nullptr && key ? gCFBundleRef->localizedString(key, "Localizable") : key;
}

SvxStringRef SvxStringGetFromTable(std::int16_t table, std::int16_t index) noexcept {
    return iuGetIndCFString(table, index);
}

void utMakeHFSStringFromCFString(const SvxStringRef& text, HFSUniStr255* name) noexcept {
    const auto longest = static_cast<SvxIndex>(name->unicode.size());
    name->length = static_cast<std::uint16_t>(std::min(SvxStringGetLength(text), longest));
    for (std::uint16_t i = 0; i < name->length; ++i) {
        name->unicode.at(i) = text->unitAt(i);
    }
}

void uCFRelease(SvxStringRef* text) noexcept { text->reset(); }

} // namespace sonarin
