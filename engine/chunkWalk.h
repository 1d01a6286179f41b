// SPDX-License-Identifier: MIT
#pragma once

#include "engine/readCache.h"

#include <cstdint>

/// Files that are one form of chunks: EA IFF 85 ("FORM", such as AIFF) and RIFF (such as WAVE).
namespace sonarin {

inline constexpr std::uint32_t chunkHeaderSize = 8;

struct Chunk {
    std::uint32_t id = 0;       ///< four-character code
    std::uint32_t size = 0;     ///< of the data behind the header, in bytes
    std::uint64_t position = 0; ///< of the header
};

enum class ChunkPadding : std::uint8_t {
    none,      ///< none is looked for: behind a chunk of odd size that has one, the walk is out of step
    byStandard ///< behind a chunk of odd size a zero byte is passed over
};

constexpr ChunkPadding paddingFor(TagReading reading) {
    return reading == TagReading::usual ? ChunkPadding::none : ChunkPadding::byStandard;
}

/// One pass over the chunks.
class ChunkWalk {
public:
    /// Sizes are of that byte order (EA IFF 85 big, RIFF little); identifiers read as big-endian codes in
    /// both.
    ChunkWalk(rcCacheRec* cache, rcByteOrder sizeOrder, ChunkPadding padding = ChunkPadding::none) noexcept
        : cache_(cache), sizeOrder_(sizeOrder), padding_(padding) {}

    /// Reads the form's identifier, size and type at the file's start. False when they cannot be read.
    [[nodiscard]] bool readForm() noexcept;
    [[nodiscard]] std::uint32_t formId() const noexcept { return formId_; }
    [[nodiscard]] std::uint32_t formSize() const noexcept { return formSize_; } ///< as stored
    [[nodiscard]] std::uint32_t formType() const noexcept { return formType_; }

    /// Goes on to the next chunk. False at the end of the file, and when a header cannot be read.
    [[nodiscard]] bool next(Chunk* chunk) noexcept;
    [[nodiscard]] bool hasFailed() const noexcept { return hasFailed_; }

private:
    [[nodiscard]] bool standsBeforePadding() const noexcept;

    rcCacheRec* cache_;
    rcByteOrder sizeOrder_;
    ChunkPadding padding_;
    bool isBehindOddSize_ = false;
    std::uint32_t formId_ = 0;
    std::uint32_t formSize_ = 0;
    std::uint32_t formType_ = 0;
    std::uint64_t position_ = 12; ///< of the next chunk; 64 bits, so that no size makes it wrap
    bool hasFailed_ = false;
};

} // namespace sonarin
