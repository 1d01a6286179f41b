// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>
#include <string_view>

/// Decoding of byte runs that need not be in memory as a whole.
namespace sonarin {

enum class SvxEncoding {
    ascii,             ///< a byte above 0x7F is invalid
    latin1,            ///< ISO-8859-1; never invalid
    macRoman,          ///< the published Mac OS Roman set (0xDB is the euro sign); never invalid
    utf8,              ///< as the Unicode standard defines it: no surrogates, no overlong forms
    utf16LittleEndian, ///< code units taken as they are; an odd byte at the end is ignored
    utf16BigEndian,    ///< the same
};

/// A run of bytes that is delivered in pieces, any of them more than once.
class SvxByteSource {
public:
    SvxByteSource() = default;
    SvxByteSource(const SvxByteSource&) = delete;
    SvxByteSource& operator=(const SvxByteSource&) = delete;
    virtual ~SvxByteSource() = default;

    /// The run's length in bytes.
    [[nodiscard]] virtual std::uint64_t size() const noexcept = 0;
    /// The bytes from `position` (below size()) on, as many as are at hand: 4, or what is left when that is
    /// less, up to 1 GiB. The view lives until the next call. Empty when they cannot be read.
    [[nodiscard]] virtual std::string_view pieceAt(std::uint64_t position) noexcept = 0;
};

/// The text of all bytes of `source`; absent when they are invalid in the encoding, cannot be read, or memory
/// runs out. The source is read twice: the first pass measures, so that the second fills storage of just the
/// right size and width.
[[nodiscard]] SvxStringRef SvxStringFromSource(SvxEncoding encoding, SvxByteSource& source) noexcept;

/// The length of the run of ASCII bytes that `bytes` begins with.
[[nodiscard]] std::size_t asciiRun(std::string_view bytes) noexcept;

} // namespace sonarin
