// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"

#include <cstdint>

namespace sonarin {

/// What the readers of the chunk formats find out about the sound.
struct miAudioInfo {
    std::uint16_t duration = 0;   ///< playing time in whole seconds, truncated; the low 16 bits
    std::uint32_t sampleRate = 0; ///< Hz
    std::uint32_t channels = 0;   ///< AIFF: the signed 16-bit count, widened with its sign
    std::uint32_t sampleSize = 0; ///< bits; AIFF: widened as above
};

/// Sets the record's duration, sampling rate and, for one or two channels, channel mode.
void miStoreInfo(const miAudioInfo& info, audioTags* record) noexcept;

} // namespace sonarin
