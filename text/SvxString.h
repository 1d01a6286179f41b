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
template <class Unit>
class SvxStringBuilder;

/// An immutable run of UTF-16 code units, in native byte order; any units are allowed, lone surrogates too.
///
/// A text whose units all lie below 0x100 keeps one byte for each ("narrow"), any other two ("wide"): most
/// tag texts are narrow, and a lyrics frame of 200 MB then costs 200 MB. The units follow the object in the
/// same block of memory, since dozens of texts are made for every file.
class SvxString { // NOLINT(*-special-member-functions): only the classes below make and destroy texts
public:
    SvxString(const SvxString&) = delete;
    SvxString& operator=(const SvxString&) = delete;

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
    template <class Unit>
    friend class SvxStringBuilder;

    SvxString() = default;
    static SvxString* allocate(std::size_t capacity, bool wide) noexcept;
    static SvxStringRef takeOver(SvxStringRef* text, std::size_t capacity, bool wide) noexcept;
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

private:
    friend class SvxString;
    template <class Unit>
    friend class SvxStringBuilder;

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

    SvxString* text_ = nullptr;
};

/// A text in the making. Its units can be set because nobody else holds it yet, and no longer once it is
/// finished. Unit is char for a narrow text, char16_t for a wide one.
template <class Unit>
class SvxStringBuilder {
public:
    /// Room for `capacity` units; none when memory runs out.
    explicit SvxStringBuilder(std::size_t capacity) noexcept
        : text_(SvxString::allocate(capacity, sizeof(Unit) == 2)) {}

    /// Goes on with the present `*text`, which becomes absent, with room for `capacity` units in all. A text
    /// of the same width that nobody else holds gives its storage, which grows by doubling; any other is
    /// copied. When memory runs out, there is no room and `*text` stays.
    SvxStringBuilder(SvxStringRef* text, std::size_t capacity) noexcept
        : text_(SvxString::takeOver(text, capacity, sizeof(Unit) == 2)) {}

    SvxStringBuilder(const SvxStringBuilder&) = delete;
    SvxStringBuilder& operator=(const SvxStringBuilder&) = delete;
    ~SvxStringBuilder() = default;

    /// Whether there is room; nothing else may be asked when there is none.
    explicit operator bool() const noexcept { return static_cast<bool>(text_); }
    [[nodiscard]] Unit* units() noexcept { return static_cast<Unit*>(text_.text_->units()); }

    /// The text of all units before `end`, which have been set; the room is given up.
    [[nodiscard]] SvxStringRef finish(const Unit* end) noexcept {
        text_.text_->count_ = static_cast<std::size_t>(end - units());
        return std::move(text_);
    }

private:
    SvxStringRef text_; ///< the only reference
};

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
