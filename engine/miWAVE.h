// SPDX-License-Identifier: MIT
#pragma once

#include "engine/miAudioInfo.h"

/// RIFF WAVE files (Microsoft/IBM Multimedia Programming Interface and Data Specifications 1.0).
namespace sonarin {

/// Clears `*info` and fills it. True when the sound format was found: a PCM "fmt " chunk, or one of another
/// format with a "fact" chunk behind it. What was found until a failure stays in `*info`.
[[nodiscard]] bool miGetWAVInfo(const SvxStringRef& path, miAudioInfo* info,
                                const ReadOptions& options = {}) noexcept;

/// Reads the file into a cleared record; answers as miGetWAVInfo, and stores what was found in either case.
/// The usual reading knows no tags here; by the standard those of an "ID3 " or "id3 " chunk are read.
[[nodiscard]] bool waveGetFileInfo(const SvxStringRef& path, audioTags* record,
                                   const ReadOptions& options = {}) noexcept;

} // namespace sonarin
