// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "engine/readCache.h"

#include <cstdint>
#include <optional>
#include <span>

/// What all ways of reading an ID3v2 tag have in common: which frames are looked for, and the walk over them.
namespace sonarin {

/// "ID3", major version, revision, flags, synchsafe size (ID3v2.3, section 3.1).
inline constexpr std::uint32_t tagHeaderSize = 10;

enum class FrameKind : std::uint8_t {
    text,
    genre,
    remark, ///< a comment, or lyrics: a language and a descriptor stand before the text
    track,
    year,
    recordingTime, ///< in place of the year, since version 2.4
    picture
};

/// What a frame's content is and where it goes.
struct FrameRule {
    std::uint32_t id = 0; ///< as read: 24 bits in version 2, 32 bits later
    FrameKind kind = FrameKind::text;
    SvxStringRef audioTags::*field = nullptr; ///< for texts
};

struct Frame {
    std::uint32_t id = 0;
    std::uint32_t size = 0;  ///< of its data, as a plain number
    std::uint32_t flags = 0; ///< 16 bits; 0 in version 2
    std::uint64_t dataPosition = 0;
};

/// How the frames of a tag are laid out (ID3v2.2, section 3.2; ID3v2.3, section 3.3).
struct FrameLayout {
    std::uint32_t headerSize;
    std::uint32_t paddedId;           ///< the bits of an id that are all zero in padding, where the walk ends
    Frame (*decode)(ByteView header); ///< all but the place of its data
    std::span<const FrameRule> rules;
};
extern const FrameLayout version2Layout;
extern const FrameLayout version3Layout; ///< and of version 2.4

/// One way of reading frames.
class FrameReading {
public:
    FrameReading() = default;
    FrameReading(const FrameReading&) = delete;
    FrameReading& operator=(const FrameReading&) = delete;
    virtual ~FrameReading() = default;

    /// The size of the frame's data in bytes; nothing ends the walk.
    [[nodiscard]] virtual std::optional<std::uint32_t> sizeOf(const Frame& frame) = 0;
    /// Takes a frame that is looked for, its size now as above.
    virtual void take(const FrameRule& rule, const Frame& frame) = 0;
};

/// Reads the frames from `position` up to the first that begins at or behind `end`. Answers the result of the
/// last header's reading.
std::int32_t walkFrames(const FrameLayout& layout, rcCacheRec* cache, std::uint64_t position,
                        std::uint64_t end, FrameReading& reading) noexcept;

} // namespace sonarin
