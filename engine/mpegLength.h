// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/mpegFrame.h"
#include "engine/readCache.h"

#include <cstdint>

namespace sonarin {

/// Replaces the record's duration, average bit rate and mp3HasVBR by what the header says that an encoder put
/// into the first frame, at `frame`, in place of sound: "Xing" (variable bit rate) or "Info" (constant), with
/// the LAME encoder's extension, or "VBRI". The silence that an encoder says it added does not count. Without
/// such a header nothing changes.
void mp3StoreLength(rcCacheRec* cache, std::uint64_t frame, const MpegFrameHeader& header,
                    audioTags* record) noexcept;

} // namespace sonarin
