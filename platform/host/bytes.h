// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

/// Numbers as they stand in files.
namespace sonarin {

using ByteView = std::span<const std::uint8_t>;

/// Each reads its bytes from `offset` on, which must lie within `bytes`.
constexpr std::uint32_t bigEndian16(ByteView bytes, std::size_t offset = 0) {
    return (std::uint32_t{bytes[offset]} << 8U) | bytes[offset + 1];
}

constexpr std::uint32_t bigEndian24(ByteView bytes, std::size_t offset = 0) {
    return (bigEndian16(bytes, offset) << 8U) | bytes[offset + 2];
}

constexpr std::uint32_t bigEndian32(ByteView bytes, std::size_t offset = 0) {
    return (bigEndian16(bytes, offset) << 16U) | bigEndian16(bytes, offset + 2);
}

constexpr std::uint64_t bigEndian64(ByteView bytes, std::size_t offset = 0) {
    return (std::uint64_t{bigEndian32(bytes, offset)} << 32U) | bigEndian32(bytes, offset + 4);
}

constexpr std::uint32_t littleEndian16(ByteView bytes, std::size_t offset = 0) {
    return bytes[offset] | (std::uint32_t{bytes[offset + 1]} << 8U);
}

constexpr std::uint32_t littleEndian32(ByteView bytes, std::size_t offset = 0) {
    return littleEndian16(bytes, offset) | (littleEndian16(bytes, offset + 2) << 16U);
}

constexpr std::uint64_t littleEndian64(ByteView bytes, std::size_t offset = 0) {
    return littleEndian32(bytes, offset) | (std::uint64_t{littleEndian32(bytes, offset + 4)} << 32U);
}

/// Four bytes of seven bits each (ID3v2). Top bits are not masked off: a byte above 0x7F adds its whole
/// value.
constexpr std::uint32_t synchsafe(ByteView bytes, std::size_t offset = 0) {
    return (std::uint32_t{bytes[offset]} << 21U) + (std::uint32_t{bytes[offset + 1]} << 14U) +
           (std::uint32_t{bytes[offset + 2]} << 7U) + bytes[offset + 3];
}

/// What is worked out with a divisor of 0 from a file is 0.
template <class Integer>
constexpr Integer divide(Integer dividend, std::type_identity_t<Integer> divisor) {
    return divisor == 0 ? 0 : dividend / divisor;
}

/// The 32-bit value of a four-character code, first character in the top byte: fourCC("TIT2").
consteval std::uint32_t fourCC(const char (&code)[5]) { // NOLINT(*-avoid-c-arrays)
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = (value << 8U) | static_cast<std::uint8_t>(code[i]);
    }
    return value;
}

/// The same bytes for functions that take characters.
inline std::string_view asCharacters(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; // NOLINT(*-reinterpret-cast)
}

} // namespace sonarin
