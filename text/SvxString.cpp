// SPDX-License-Identifier: MIT
#include "text/SvxString.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

namespace sonarin {

namespace {

/// The bytes of a text with room for that many units; 0 when that is more than memory can have.
std::size_t blockSize(std::size_t units, bool wide) {
    constexpr std::size_t largest = std::numeric_limits<std::ptrdiff_t>::max() / 2 - sizeof(SvxString);
    return units > largest / 2 ? 0 : sizeof(SvxString) + (wide ? 2 * units : units);
}

} // namespace

// NOLINTBEGIN(cppcoreguidelines-no-malloc): it is realloc that lets a long text grow without a second copy

SvxString* SvxString::allocate(std::size_t capacity, bool wide) noexcept {
    const std::size_t size = blockSize(capacity, wide);
    void* block = size != 0 ? std::malloc(size) : nullptr;
    if (block == nullptr) {
        return nullptr;
    }
    auto* text = new (block) SvxString;
    text->capacity_ = capacity;
    text->wide_ = wide;
    return text;
}

void SvxStringRef::destroy(SvxString* text) noexcept {
    std::free(text);
}

/// `*text` itself, when it is of that width and held once, or a copy; the answer is the only reference.
SvxStringRef SvxString::takeOver(SvxStringRef* text, std::size_t capacity, bool wide) noexcept {
    SvxString*& old = text->text_;
    const bool isSole = old->wide_ == wide && old->isHeldOnce();
    if (isSole && capacity <= old->capacity_) {
        return std::exchange(*text, nullptr);
    }
    const std::size_t roomy = std::max(capacity, 2 * old->count_);
    const std::size_t size = blockSize(roomy, wide);
    if (isSole) {
        void* grown = size != 0 ? std::realloc(old, size) : nullptr;
        if (grown == nullptr) {
            return nullptr;
        }
        old = static_cast<SvxString*>(grown);
        old->capacity_ = roomy;
        return std::exchange(*text, nullptr);
    }
    SvxString* const copy = allocate(roomy, wide);
    if (copy != nullptr) {
        old->visit([copy](auto units) {
            if (copy->wide_) {
                copyUnits(units, static_cast<char16_t*>(copy->units()));
            } else {
                copyUnits(units, static_cast<char*>(copy->units()));
            }
        });
        *text = nullptr;
    }
    return SvxStringRef(copy);
}

// NOLINTEND(cppcoreguidelines-no-malloc)

} // namespace sonarin
