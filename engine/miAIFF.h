// SPDX-License-Identifier: MIT
#pragma once

#include "engine/miAudioInfo.h"
#include "platform/host/bytes.h"

/// AIFF and AIFF-C files (Audio Interchange File Format 1.3; AIFF-C draft of 1991), with an ID3 tag in a
/// chunk of its own.
namespace sonarin {

/// Clears `*info` and fills it, and the record's tag fields from "ID3 " chunks; either may be null. True when
/// a "COMM" chunk was found and the file could be walked to its end; tag fields may be set all the same.
[[nodiscard]] bool miGetAIFFInfo(const SvxStringRef& path, miAudioInfo* info, audioTags* record,
                                 const ReadOptions& options = {}) noexcept;

/// The value of the ten bytes of a big-endian IEEE 754 80-bit extended number; infinity for a NaN.
[[nodiscard]] double ConvertFromIeeeExtended(ByteView bytes) noexcept;

} // namespace sonarin
