// SPDX-License-Identifier: MIT
#include "engine/fileText.h"

#include "text/stringEngine.h"

#include <algorithm>
#include <array>

namespace sonarin {

namespace {

using Test = bool (*)(const SvxStringRef& text, const SvxStringRef& needle, bool caseSensitive) noexcept;

bool findsITunesMark(const SvxStringRef& text, Test test) {
    // Nearly every text is done with after one search.
    static const SvxStringRef commonStart = SvxStringFromCString("iTun");
    if (!test(text, commonStart, false)) {
        return false;
    }
    static const std::array<SvxStringRef, 4> marks = {
        SvxStringFromCString("iTunNORM"), SvxStringFromCString("iTunes_CDDB"),
        SvxStringFromCString("iTunSMPB"), SvxStringFromCString("iTunPGAP")};
    return std::any_of(marks.begin(), marks.end(),
                       [&](const SvxStringRef& mark) { return test(text, mark, false); });
}

} // namespace

std::string_view FileBytes::pieceAt(std::uint64_t position) noexcept {
    // What fits into the buffer is taken whole, anything longer a buffer at a time.
    const auto wanted =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(size_ - position, cache_->bufferSize));
    return asCharacters(rcBytesInCache(cache_, offset_ + position, wanted)).substr(0, wanted);
}

SvxStringRef readUTF8Text(rcCacheRec* cache, std::uint64_t offset, std::uint64_t size) noexcept {
    FileBytes bytes(cache, offset, size);
    SvxStringRef text = SvxStringFromSource(SvxEncoding::utf8, bytes);
    return text ? text : SvxStringFromSource(SvxEncoding::macRoman, bytes);
}

bool containsITunesData(const SvxStringRef& text) noexcept {
    return findsITunesMark(text, SvxStringContains);
}

bool beginsWithITunesData(const SvxStringRef& text) noexcept {
    return findsITunesMark(text, SvxStringBeginsWith);
}

} // namespace sonarin
