// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace sonarin {

/// Lengths, positions and indices of texts, counted in UTF-16 code units. 64 bits wide, because one tag
/// frame may hold close to 4 GiB of text.
using SvxIndex = std::int64_t;

/// The UTF-16 code unit that one stored element stands for.
constexpr char16_t unitOf(char stored) noexcept {
    return static_cast<unsigned char>(stored);
}
constexpr char16_t unitOf(char16_t stored) noexcept {
    return stored;
}

class SvxStringRef;

/// An immutable run of UTF-16 code units, in native byte order; any units are allowed, lone surrogates too.
///
/// A text whose units all lie below 0x100 keeps one byte for each ("narrow"), any other two ("wide"): most
/// tag texts are narrow, and a lyrics frame of 200 MB then costs 200 MB. The units follow the object in the
/// same block of memory, since dozens of texts are made for every file.
class SvxString { // NOLINT(*-special-member-functions): only SvxStringRef makes and destroys texts
public:
    SvxString(const SvxString&) = delete;
    SvxString& operator=(const SvxString&) = delete;

    /// A new text of `count` units whose storage the caller sets through `*storage` before anybody reads it.
    /// Unit is char (narrow) or char16_t (wide). Absent when memory runs out.
    template <class Unit>
    static SvxStringRef make(std::size_t count, Unit** storage) noexcept;

    /// Calls `visitor` with the stored elements, a `std::string_view` (narrow) or a `std::u16string_view`.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return wide_ ? visitor(std::u16string_view(static_cast<const char16_t*>(units()), count_))
                     : visitor(std::string_view(static_cast<const char*>(units()), count_));
    }

    [[nodiscard]] bool isWide() const noexcept { return wide_; }
    [[nodiscard]] SvxIndex length() const noexcept { return static_cast<SvxIndex>(count_); }

    /// `index` must lie within the text.
    [[nodiscard]] char16_t unitAt(SvxIndex index) const {
        return visit([index](auto stored) { return unitOf(stored[static_cast<std::size_t>(index)]); });
    }

private:
    friend class SvxStringRef;

    SvxString() = default;
    static SvxString* allocate(std::size_t count, bool wide) noexcept;
    [[nodiscard]] const void* units() const noexcept { return this + 1; }
    [[nodiscard]] void* units() noexcept { return this + 1; }

    void retain() noexcept { std::atomic_ref(references_).fetch_add(1, std::memory_order_relaxed); }
    /// Whether nobody else holds the text: what others did with it before they let go is then done.
    bool isHeldOnce() noexcept { return std::atomic_ref(references_).load(std::memory_order_acquire) == 1; }
    /// Whether that was the last reference.
    bool release() noexcept {
        return isHeldOnce() || std::atomic_ref(references_).fetch_sub(1, std::memory_order_acq_rel) == 1;
    }

    std::size_t count_ = 0;
    std::size_t capacity_ = 0; ///< in units
    std::uint32_t references_ = 1;
    bool wide_ = false;
};

/// A reference to a text, or the absent value, which is not the same as a text of length 0. Copying retains,
/// destroying releases. Threads may share a text, but not one reference to it.
class SvxStringRef {
public:
    constexpr SvxStringRef() noexcept = default;
    constexpr SvxStringRef(std::nullptr_t) noexcept {} // NOLINT(*-explicit-*): the absent value
    SvxStringRef(const SvxStringRef& other) noexcept : text_(other.text_) { retain(); }
    SvxStringRef(SvxStringRef&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    SvxStringRef& operator=(const SvxStringRef& other) noexcept {
        SvxStringRef copy(other);
        std::swap(text_, copy.text_);
        return *this;
    }
    SvxStringRef& operator=(SvxStringRef&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~SvxStringRef() { release(); }

    explicit operator bool() const noexcept { return text_ != nullptr; }
    const SvxString& operator*() const noexcept { return *text_; }
    const SvxString* operator->() const noexcept { return text_; }

    /// Leaves out the units from `count` on, of a text that its maker alone holds.
    void truncate(std::size_t count) noexcept { text_->count_ = count; }

    /// Adds one blank and `addition`. The storage of a text that nobody else holds grows in place, by
    /// doubling; otherwise a new text is made. False when memory runs out, which changes nothing.
    bool appendAfterBlank(const SvxString& addition) noexcept;

private:
    friend class SvxString;

    explicit SvxStringRef(SvxString* owned) noexcept : text_(owned) {}
    void retain() const noexcept {
        if (text_ != nullptr) {
            text_->retain();
        }
    }
    void release() noexcept {
        if (text_ != nullptr && text_->release()) {
            destroy(text_);
        }
    }
    static void destroy(SvxString* text) noexcept;
    bool makeRoom(std::size_t count, bool wide) noexcept;

    SvxString* text_ = nullptr;
};

template <class Unit>
SvxStringRef SvxString::make(std::size_t count, Unit** storage) noexcept {
    SvxString* text = allocate(count, sizeof(Unit) == 2);
    *storage = text != nullptr ? static_cast<Unit*>(text->units()) : nullptr;
    return SvxStringRef(text);
}

/// Copies stored elements to units of the same or the greater width, answering the place behind them.
template <class Unit, class Units>
Unit* copyUnits(Units from, Unit* to) noexcept {
    if constexpr (sizeof(Unit) == sizeof(from[0])) {
        return std::copy(from.begin(), from.end(), to);
    }
    for (const auto stored : from) {
        *to++ = static_cast<Unit>(unitOf(stored));
    }
    return to;
}

} // namespace sonarin
