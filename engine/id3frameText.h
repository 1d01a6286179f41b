// SPDX-License-Identifier: MIT
#pragma once

#include "engine/readCache.h"
#include "text/SvxString.h"

#include <cstdint>

namespace sonarin {

/// Decodes the text of one frame: the `count` bytes at `offset`, which for an ID3v2 frame are those behind
/// its encoding byte and one more. The text is stored in `*field` or joined to the text there after a blank;
/// when there is none, `*field` stays as it was.
void mp3ReadSvxStringFromFile(rcCacheRec* cache, std::uint64_t offset, std::uint32_t count,
                              SvxStringRef* field) noexcept;

} // namespace sonarin
