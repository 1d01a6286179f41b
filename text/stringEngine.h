// SPDX-License-Identifier: MIT
#pragma once

#include "text/SvxString.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

/// The text value of the whole program and the plain functions over it.
///
/// Every function takes the absent value as a normal input. None throws: where memory runs out, a function
/// that makes a text answers the absent value. A search with `caseSensitive` false ignores letter case (full
/// Unicode case folding); every search takes canonically equivalent sequences as equal and matches whole
/// characters only, so 'e' is not found in 'é', however that is stored.
namespace sonarin {

// --- the absent value -----------------------------------------------------------------------------------

/// The absent value; not a text of length 0.
[[nodiscard]] SvxStringRef SvxStringGetEmpty() noexcept;
/// Stores the absent value in `*text`.
void SvxStringInvalidate(SvxStringRef* text) noexcept;
/// True for every present text, also one of length 0.
[[nodiscard]] bool SvxStringIsValid(const SvxStringRef& text) noexcept;
/// Gives the reference up and stores the absent value in `*text`. Answers 0.
std::int32_t SvxStringRelease(SvxStringRef* text) noexcept;

// --- making texts ---------------------------------------------------------------------------------------

/// Decodes `bytes` as Mac OS Roman, in which every byte is a character, zero bytes too.
[[nodiscard]] SvxStringRef SvxStringFromCString(std::string_view bytes) noexcept;
/// Decodes `bytes` as UTF-8, or as Mac OS Roman when they are not valid UTF-8. A byte-order mark stays.
[[nodiscard]] SvxStringRef SvxStringFromUTF8(std::string_view bytes) noexcept;
/// Decodes `bytes` as ISO-8859-1, in which every byte is a character, zero bytes too.
[[nodiscard]] SvxStringRef SvxStringFromLatin1(std::string_view bytes) noexcept;
/// Takes the code units as they are, in native byte order; a byte-order mark becomes part of the text.
[[nodiscard]] SvxStringRef SvxStringFromUTF16(std::u16string_view units) noexcept;
/// The `length` units from `start` on; absent when that range does not lie within a present text.
[[nodiscard]] SvxStringRef SvxStringCreateWithSubstring(const SvxStringRef& text, SvxIndex start,
                                                        SvxIndex length) noexcept;

/// The four characters of a four-character code such as 'JPEG' (0x4A504547), in Mac OS Roman; absent for 0.
[[nodiscard]] SvxStringRef fourCharacterText(std::uint32_t code) noexcept;

/// A value for one placeholder of SvxStringCreateWithFormat.
using SvxFormatValue = std::variant<SvxStringRef, std::int64_t, std::string_view>;
/// Makes a text from an ASCII format: "%@" stands for a text (or an ASCII literal), "%i" and "%li" for a
/// whole number in decimal. Values are taken in order; an absent text counts as empty.
[[nodiscard]] SvxStringRef SvxStringCreateWithFormat(std::string_view format,
                                                     std::initializer_list<SvxFormatValue> values) noexcept;

/// The parts between the text's U+0000, joined by `separator` (ASCII): empty ones are left out, and a
/// byte-order mark at a part's start. Absent when nothing is left.
[[nodiscard]] SvxStringRef SvxStringJoinParts(const SvxStringRef& text, std::string_view separator) noexcept;

/// Replaces `*text` by itself, one blank and `addition`. When nobody else holds the old text, its storage
/// grows in place, so that joining many pieces takes time linear in their sum. Nothing changes when memory
/// runs out.
void SvxStringAppendAfterBlank(SvxStringRef* text, const SvxStringRef& addition) noexcept;

// --- reading texts --------------------------------------------------------------------------------------

/// The number of UTF-16 code units; 0 when absent.
[[nodiscard]] SvxIndex SvxStringGetLength(const SvxStringRef& text) noexcept;
/// The code unit at `index`; 0 when absent or when `index` lies outside the text.
[[nodiscard]] char16_t SvxStringGetUniChar(const SvxStringRef& text, SvxIndex index) noexcept;
/// The index of the first `unit` from `start` up to `end`, which both lie within the text; else `end`.
[[nodiscard]] SvxIndex SvxStringFindUnit(const SvxStringRef& text, char unit, SvxIndex start,
                                         SvxIndex end) noexcept;
/// The leading decimal integer: white space (tab to carriage return, blank), one optional sign, ASCII digits.
/// 0 without digits; a number beyond 32 bits gives the nearest limit.
[[nodiscard]] std::int32_t SvxStringGetIntValue(const SvxStringRef& text) noexcept;
/// Whether both hold the same code units; two absent values are equal.
[[nodiscard]] bool SvxStringIsEqual(const SvxStringRef& a, const SvxStringRef& b) noexcept;

// --- searching ------------------------------------------------------------------------------------------

/// The index of the first match at or after `start`, or -1. An empty or absent needle never matches.
[[nodiscard]] SvxIndex SvxStringPosition(const SvxStringRef& text, const SvxStringRef& needle,
                                         std::uint32_t start, bool caseSensitive) noexcept;
[[nodiscard]] bool SvxStringBeginsWith(const SvxStringRef& text, const SvxStringRef& needle,
                                       bool caseSensitive) noexcept;
/// True when a match ends exactly at the text's end, whatever other matches lie before it.
[[nodiscard]] bool SvxStringEndsWith(const SvxStringRef& text, const SvxStringRef& needle,
                                     bool caseSensitive) noexcept;
[[nodiscard]] bool SvxStringContains(const SvxStringRef& text, const SvxStringRef& needle,
                                     bool caseSensitive) noexcept;
/// As above; the needle is a zero-terminated byte string in Mac OS Roman, null for none.
[[nodiscard]] bool SvxStringBeginsWithCString(const SvxStringRef& text, const char* needle,
                                              bool caseSensitive) noexcept;
[[nodiscard]] bool SvxStringEndsWithCString(const SvxStringRef& text, const char* needle,
                                            bool caseSensitive) noexcept;

// --- leaving the world of texts -------------------------------------------------------------------------

/// The number of bytes of the UTF-8 form, without a terminator. The form ends before the first U+0000; a text
/// with a lone surrogate has none, nor one whose form takes 4 GiB or more, which gives 0.
[[nodiscard]] std::uint32_t SvxStringGetUTF8Size(const SvxStringRef& text) noexcept;
/// Writes the UTF-8 form to `destination`, which must hold SvxStringGetUTF8Size bytes, without a terminator,
/// and its size to `*size`.
void SvxStringCopyToUTF8(const SvxStringRef& text, char* destination, std::uint32_t* size) noexcept;
/// The text percent-escaped for use as a value inside a URL: letters, digits and - _ . ! ~ * ' ( ) stand for
/// themselves, all else is written as its UTF-8 bytes (a lone surrogate as U+FFFD). Absent gives the empty
/// text.
[[nodiscard]] SvxStringRef SvxStringConvertToURL(const SvxStringRef& text) noexcept;

} // namespace sonarin
