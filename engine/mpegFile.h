// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"

#include <cstdint>

/// MPEG audio files (ISO/IEC 11172-3, ISO/IEC 13818-3 and the MPEG-2.5 extension, Layers II and III) with
/// ID3v1 and ID3v2 tags.
namespace sonarin {

/// Reads the file into a cleared record. 1 when a frame header was found; 0 when the file cannot be read or
/// holds none, in which case tags read before that stay in the record.
[[nodiscard]] std::uint8_t mp3GetFileInfo(const SvxStringRef& path, audioTags* record,
                                          const ReadOptions& options = {}) noexcept;

} // namespace sonarin
