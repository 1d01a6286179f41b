// SPDX-License-Identifier: MIT
#include "text/SvxString.h"

#include <algorithm>
#include <array>
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

#if defined(__SANITIZE_ADDRESS__)
constexpr bool keepsBlocks = false; // a text used after its release is to be found
#elif defined(__has_feature)
constexpr bool keepsBlocks = !__has_feature(address_sanitizer);
#else
constexpr bool keepsBlocks = true;
#endif

/// The size of every short text's block, so that any of them can hold the next one.
constexpr std::size_t shortBlockSize = 128;

/// Blocks of short texts that a thread released, kept for its next ones: dozens come and go with every file.
class ShortBlocks {
public:
    /// A kept block; null when there is none.
    void* take() { return count_ == 0 ? nullptr : blocks_[--count_]; }

    bool keep(void* block) {
        if (!keepsBlocks || count_ == blocks_.size()) {
            return false;
        }
        blocks_[count_++] = block;
        return true;
    }

private:
    std::array<void*, 64> blocks_{};
    std::size_t count_ = 0;
};

constinit thread_local ShortBlocks shortBlocks; // NOLINT(*-avoid-non-const-global-variables)

// NOLINTBEGIN(cppcoreguidelines-no-malloc): it is realloc that lets a long text grow without a second copy

/// Frees what a thread kept when it ends. Apart from the blocks themselves, so that using those needs no
/// check whether they are there yet.
class ShortBlocksOwner {
public:
    ShortBlocksOwner() = default;
    ShortBlocksOwner(const ShortBlocksOwner&) = delete;
    ShortBlocksOwner& operator=(const ShortBlocksOwner&) = delete;
    ~ShortBlocksOwner() {
        while (void* block = shortBlocks.take()) {
            std::free(block);
        }
    }
    /// Not static: calling it makes the owner of this thread.
    [[nodiscard]] void* newBlock() const noexcept { // NOLINT(*-convert-member-functions-to-static)
        return std::malloc(shortBlockSize);
    }
};

thread_local const ShortBlocksOwner shortBlocksOwner;

} // namespace

SvxString* SvxString::allocate(std::size_t capacity, bool wide) noexcept {
    const std::size_t size = blockSize(capacity, wide);
    if (size == 0) {
        return nullptr;
    }
    const bool isShort = size <= shortBlockSize;
    void* block = isShort ? shortBlocks.take() : nullptr;
    if (block == nullptr) {
        block = isShort ? shortBlocksOwner.newBlock() : std::malloc(size);
    }
    if (block == nullptr) {
        return nullptr;
    }
    auto* text = new (block) SvxString;
    text->capacity_ = isShort ? (shortBlockSize - sizeof(SvxString)) / (wide ? 2 : 1) : capacity;
    text->wide_ = wide;
    return text;
}

void SvxStringRef::destroy(SvxString* text) noexcept {
    const bool isShort = blockSize(text->capacity_, text->wide_) == shortBlockSize;
    if (!isShort || !shortBlocks.keep(text)) {
        std::free(text);
    }
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
