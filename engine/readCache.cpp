// SPDX-License-Identifier: MIT
#include "engine/readCache.h"

#include "engine/fileEngine.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>

namespace sonarin {

namespace {

/// By subtraction, so that nothing is missed near 2^64: a position before the buffer wraps to far behind it.
bool holds(const rcCacheRec& cache, std::uint64_t position, std::uint64_t count) {
    const std::uint64_t offset = position - cache.bufferPos;
    return offset <= cache.validLength && count <= cache.validLength - offset;
}

/// How much the next filling asks for. Reading goes on where it skips no more than was read at once; and a
/// short way back, as from a text's last byte to its first, is no sign that it has come to another place.
std::uint32_t nextFillSize(const rcCacheRec& cache, std::uint64_t position) {
    constexpr std::uint64_t firstFillSize = 4096;
    constexpr std::uint64_t growth = 4;
    const std::uint64_t reach = std::uint64_t{cache.validLength} + cache.fillSize;
    std::uint64_t next = 0;
    if (position - cache.bufferPos <= reach) {
        next = growth * cache.fillSize;
    } else if (cache.bufferPos - position <= cache.fillSize) {
        next = cache.fillSize;
    }
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(std::max(next, firstFillSize), cache.bufferSize));
}

/// The one place where the file is read, and where a reading that nobody wants any more ends.
std::int32_t readFromFile(rcCacheRec* cache, std::uint64_t position, std::uint32_t count, void* destination) {
    if (cache->progress != nullptr) {
        if (!cache->progress->isWanted.load(std::memory_order_relaxed)) {
            return fileUnwantedErr;
        }
        if (count == rcStandardBufferSize) { // as only what takes long is read
            cache->progress->position.store(position, std::memory_order_relaxed);
        }
    }
    return feReadFromFile(cache->refNum, position, count, destination);
}

std::int32_t refill(rcCacheRec* cache, std::uint64_t position, std::uint32_t count) {
    if (!cache->buffer) {
        return fileMemFullErr;
    }
    const std::uint64_t left = position < cache->eof ? cache->eof - position : 0;
    cache->fillSize = std::max(nextFillSize(*cache, position), count);
    cache->bufferPos = position;
    cache->validLength = static_cast<std::uint32_t>(std::min<std::uint64_t>(cache->fillSize, left));
    const std::int32_t result = readFromFile(cache, position, cache->validLength, cache->buffer.get());
    if (result != fileNoErr) {
        cache->validLength = 0;
    }
    return result;
}

/// Whether all there is stands in the buffer.
bool isMemory(const rcCacheRec& cache) {
    return cache.refNum == 0 && cache.buffer;
}

/// Makes the buffer, which is large enough, hold the range, refilling it when it does not.
std::int32_t provide(rcCacheRec* cache, std::uint64_t position, std::uint32_t count) {
    if (!cache->buffer) {
        return fileMemFullErr;
    }
    if (holds(*cache, position, count)) {
        return fileNoErr;
    }
    if (isMemory(*cache)) {
        return fileEofErr;
    }
    const std::int32_t result = refill(cache, position, count);
    if (result != fileNoErr) {
        return result;
    }
    return holds(*cache, position, count) ? fileNoErr : fileEofErr;
}

template <class Integer, class Number>
std::int32_t readInteger(rcCacheRec* cache, std::uint64_t position, std::int32_t byteOrder, Integer* value,
                         Number (*big)(ByteView, std::size_t), Number (*little)(ByteView, std::size_t)) {
    std::array<std::uint8_t, sizeof(Integer)> bytes{};
    const std::int32_t result = rcReadFromCache(cache, position, bytes.size(), bytes.data());
    if (result != fileNoErr) {
        return result;
    }
    if (byteOrder == rcByteOrderBig) {
        *value = static_cast<Integer>(big(bytes, 0));
    } else if (byteOrder == rcByteOrderLittle) {
        *value = static_cast<Integer>(little(bytes, 0));
    }
    return fileNoErr;
}

} // namespace

std::int32_t rcOpenCache(rcCacheRec* cache, std::int32_t refNum, std::uint32_t size) noexcept {
    cache->refNum = refNum;
    const std::int32_t result = feGetEOF(refNum, &cache->eof);
    if (result != fileNoErr) {
        return result;
    }
    cache->bufferSize =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(cache->eof, std::max(size, rcSmallestBufferSize)));
    cache->buffer.reset(new (std::nothrow)
                            std::uint8_t[cache->bufferSize]); // not zeroed: it is filled at once
    if (!cache->buffer) {
        return fileMemFullErr;
    }
    return rcReadIntoCache(cache, 0);
}

void rcOpenMemory(rcCacheRec* cache, ByteBlock bytes) noexcept {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    cache->eof = size;
    cache->bufferSize = size;
    cache->validLength = size;
    cache->buffer = bytes.release();
    cache->dataEnd = std::numeric_limits<std::uint64_t>::max();
}

std::int32_t rcReadFromCache(rcCacheRec* cache, std::uint64_t position, std::uint32_t count,
                             void* destination) noexcept {
    if (!cache->buffer) {
        return fileMemFullErr;
    }
    if (count > cache->bufferSize && !isMemory(*cache)) {
        return rcReadPastCache(cache, position, count, destination);
    }
    const std::int32_t result = provide(cache, position, count);
    if (result == fileNoErr && count > 0) {
        std::memcpy(destination, cache->buffer.get() + (position - cache->bufferPos), count);
    }
    return result;
}

std::int32_t rcReadPastCache(rcCacheRec* cache, std::uint64_t position, std::uint32_t count,
                             void* destination) noexcept {
    if (isMemory(*cache)) {
        return rcReadFromCache(cache, position, count, destination);
    }
    const std::uint32_t piece = std::max(cache->bufferSize, 1U);
    auto* out = static_cast<std::uint8_t*>(destination);
    for (; count > piece; position += piece, count -= piece, out += piece) {
        const std::int32_t result = readFromFile(cache, position, piece, out);
        if (result != fileNoErr) {
            return result;
        }
    }
    return readFromFile(cache, position, count, out);
}

std::int32_t rcReadIntoCache(rcCacheRec* cache, std::uint64_t position) noexcept {
    return refill(cache, position, 0);
}

std::optional<std::uint8_t> rcByteInCache(rcCacheRec* cache, std::uint64_t position) noexcept {
    const ByteView bytes = rcBytesInCache(cache, position, 1);
    return bytes.empty() ? std::nullopt : std::optional(bytes.front());
}

ByteView rcBytesInCache(rcCacheRec* cache, std::uint64_t position, std::uint32_t count) noexcept {
    if (count > cache->bufferSize || provide(cache, position, count) != fileNoErr) {
        return {};
    }
    const std::uint64_t start = position - cache->bufferPos;
    return {cache->buffer.get() + start, static_cast<std::size_t>(cache->validLength - start)};
}

std::uint64_t rcPastHole(rcCacheRec* cache, std::uint64_t position) noexcept {
    if (position < cache->dataStart || position >= cache->dataEnd) {
        cache->dataStart = std::max(std::min(feNextData(cache->refNum, position), cache->eof), position);
        cache->dataEnd = feNextHole(cache->refNum, cache->dataStart);
    }
    return std::max(position, cache->dataStart);
}

bool rcRangeIsInFile(const rcCacheRec& cache, std::uint64_t position, std::uint64_t count) noexcept {
    return position <= cache.eof && count <= cache.eof - position;
}

std::int32_t rcReadUInt16FromCache(rcCacheRec* cache, std::uint64_t position, std::int32_t byteOrder,
                                   std::uint16_t* value) noexcept {
    return readInteger(cache, position, byteOrder, value, bigEndian16, littleEndian16);
}

std::int32_t rcReadUInt32FromCache(rcCacheRec* cache, std::uint64_t position, std::int32_t byteOrder,
                                   std::uint32_t* value) noexcept {
    return readInteger(cache, position, byteOrder, value, bigEndian32, littleEndian32);
}

std::int32_t rcReadUInt64FromCache(rcCacheRec* cache, std::uint64_t position, std::int32_t byteOrder,
                                   std::uint64_t* value) noexcept {
    return readInteger(cache, position, byteOrder, value, bigEndian64, littleEndian64);
}

std::int32_t rcCloseCacheAndFile(rcCacheRec* cache) noexcept {
    const std::int32_t refNum = cache->refNum;
    *cache = {};
    return refNum == 0 ? fileNoErr : feCloseFile(refNum);
}

CachedFile::CachedFile(const SvxStringRef& path, ReadProgress* progress, std::uint32_t bufferSize) noexcept {
    cache_.progress = progress;
    const std::int32_t refNum = feOpenExistingDataFile(path, 0);
    isOpen_ = refNum != 0 && rcOpenCache(&cache_, refNum, bufferSize) == fileNoErr;
}

} // namespace sonarin
