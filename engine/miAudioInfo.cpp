// SPDX-License-Identifier: MIT
#include "engine/miAudioInfo.h"

#include "engine/mpegFrame.h"

namespace sonarin {

void miStoreInfo(const miAudioInfo& info, audioTags* record) noexcept {
    constexpr std::uint8_t stereo = 0;
    record->mp3SongLen = info.duration;
    record->mp3SamplingRate = info.sampleRate;
    if (info.channels == 1) {
        record->mp3ChannelMode = singleChannel;
    } else if (info.channels == 2) {
        record->mp3ChannelMode = stereo;
    }
}

} // namespace sonarin
