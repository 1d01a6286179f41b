// SPDX-License-Identifier: MIT
#include "engine/chunkWalk.h"

#include "engine/fileEngine.h"

namespace sonarin {

bool ChunkWalk::readForm() noexcept {
    return rcReadUInt32FromCache(cache_, 0, rcByteOrderBig, &formId_) == fileNoErr &&
           rcReadUInt32FromCache(cache_, 4, sizeOrder_, &formSize_) == fileNoErr &&
           rcReadUInt32FromCache(cache_, 8, rcByteOrderBig, &formType_) == fileNoErr;
}

bool ChunkWalk::standsBeforePadding() const noexcept {
    return padding_ == ChunkPadding::byStandard && isBehindOddSize_ && rcByteInCache(cache_, position_) == 0;
}

bool ChunkWalk::next(Chunk* chunk) noexcept {
    if (standsBeforePadding()) {
        ++position_;
    }
    if (cache_->eof <= chunkHeaderSize || position_ >= cache_->eof - chunkHeaderSize) {
        return false;
    }
    const ByteView header = rcBytesInCache(cache_, position_, chunkHeaderSize);
    hasFailed_ = header.empty();
    if (hasFailed_) {
        return false;
    }
    chunk->id = bigEndian32(header);
    chunk->size = sizeOrder_ == rcByteOrderBig ? bigEndian32(header, 4) : littleEndian32(header, 4);
    chunk->position = position_;
    position_ += chunkHeaderSize + std::uint64_t{chunk->size};
    isBehindOddSize_ = chunk->size % 2 != 0;
    if (chunk->id == 0 && chunk->size == 0) { // a hole of a sparse file is nothing but such chunks
        const std::uint64_t hole = rcPastHole(cache_, position_) - position_;
        position_ += hole - hole % chunkHeaderSize;
    }
    return true;
}

} // namespace sonarin
