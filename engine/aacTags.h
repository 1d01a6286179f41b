// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/readCache.h"

#include <cstdint>

/// MPEG-4 audio files (ISO/IEC 14496-12 boxes, which QuickTime calls atoms) with the item list that iTunes
/// writes.
namespace sonarin {

/// The first eight bytes of an atom. A size of 1 says that the size stands behind the header in 64 bits; it
/// stays 1 here.
struct aacAtomHeader {
    std::uint32_t size = 0; ///< bytes, header included
    std::uint32_t type = 0; ///< four-character code
};

/// Converts both fields from big-endian to the host's order, in place.
void aacSwapAtom(aacAtomHeader* header) noexcept;

/// Looks through sibling atoms from `*position` on for one of that type, up to the first that begins at or
/// behind `limit`; the end of the parent does not stop it. 0 when found, with `*position` at
/// its start and its header in `*header`; -1 when there is none or a size leads nowhere; or an error of the
/// cache.
[[nodiscard]] std::int32_t findQTAtom(std::uint32_t type, std::uint64_t* position, std::uint32_t limit,
                                      rcCacheRec* cache, aacAtomHeader* header) noexcept;

/// Reads the text value of the item at `itemPosition` into `*field`, or joins it to the text there after a
/// blank; iTunes' own data is passed over. 0, an error of the cache, -2 for a value without room for a text,
/// -4 when no text can be made (out of memory, or a read error); unless 0, the field is unchanged.
std::int32_t aacReadQuickTimeToSvxStringRef(rcCacheRec* cache, std::uint64_t itemPosition,
                                            SvxStringRef* field) noexcept;

/// Reads the file into a cleared record. False when it cannot be read or has no item list; duration and bit
/// rate may be set all the same.
[[nodiscard]] bool aacGetFileInfo(const SvxStringRef& path, audioTags* record,
                                  const ReadOptions& options = {}) noexcept;

} // namespace sonarin
