// SPDX-License-Identifier: MIT
#pragma once

#include "engine/byteBlock.h"
#include "engine/readOptions.h"
#include "text/SvxString.h"

#include <cstdint>
#include <memory>
#include <optional>

/// One buffer over one open file: the many small reads of a parser become one or two reads of the file.
///
/// The facts of nearly every file stand in its first few KiB, so that filling the buffer begins small. It
/// grows as long as each filling goes on where the one before ended: what is read through is read in large
/// pieces.
///
/// Operations answer 0, fileMemFullErr, fileEofErr, fileShortReadErr, fileUnwantedErr or a host error (see
/// fileEngine.h). Positions are bytes from the file's start, 64 bits wide.
namespace sonarin {

inline constexpr std::uint32_t rcStandardBufferSize = 65536;
/// A text is decoded out of the buffer, of which its longest character takes so much.
inline constexpr std::uint32_t rcSmallestBufferSize = 4;

/// Owned by the reader that opened it, for the reading of one file. While valid, the buffer holds the file's
/// bytes from bufferPos to bufferPos + validLength.
struct rcCacheRec {
    std::int32_t refNum = 0;                ///< the open file; 0 for none, and for bytes in memory
    std::uint32_t bufferSize = 0;           ///< capacity of the buffer in bytes
    std::unique_ptr<std::uint8_t[]> buffer; // NOLINT(*-avoid-c-arrays): the size is known at run time only
    std::uint64_t bufferPos = 0;            ///< position of the buffer's first byte
    std::uint32_t validLength = 0;          ///< bytes of the buffer that hold file data
    std::uint64_t eof = 0;                  ///< the file's size when the cache was opened
    std::uint32_t fillSize = 0;             ///< bytes that the last filling asked for, but for the file's end
    std::uint64_t dataStart = 0;            ///< between here and
    std::uint64_t dataEnd = 0;              ///< here the file has no hole (see rcPastHole)
    ReadProgress* progress = nullptr;       ///< asked and told at every read of the file, unless null
};

enum rcByteOrder : std::int32_t { // NOLINT(*-enum-size): callers may pass any number
    rcByteOrderBig = 7,
    rcByteOrderLittle = 13
};

/// Sets the cache up over the open file `refNum`, which belongs to the cache from then on, also when this
/// fails. The buffer has `size` bytes, rcSmallestBufferSize at the least, or the file's size when that is
/// less, and is filled from position 0 on.
[[nodiscard]] std::int32_t rcOpenCache(rcCacheRec* cache, std::int32_t refNum, std::uint32_t size) noexcept;

/// Sets the cache up over bytes in memory, which belong to it from then on. Positions count from the first.
void rcOpenMemory(rcCacheRec* cache, ByteBlock bytes) noexcept;

/// Copies `count` bytes at `position` to `destination`. More than the buffer holds goes straight from the
/// file to the destination; anything else is served from the buffer, which on a miss is refilled from
/// `position`.
[[nodiscard]] std::int32_t rcReadFromCache(rcCacheRec* cache, std::uint64_t position, std::uint32_t count,
                                           void* destination) noexcept;

/// The same, but always straight from the file, in pieces no larger than the buffer.
[[nodiscard]] std::int32_t rcReadPastCache(rcCacheRec* cache, std::uint64_t position, std::uint32_t count,
                                           void* destination) noexcept;

/// Refills the buffer from `position`: with four times as much as the last time, up to the whole buffer,
/// where that lies in or not far behind what it holds; with as much where it lies a little before; else with
/// 4 KiB.
[[nodiscard]] std::int32_t rcReadIntoCache(rcCacheRec* cache, std::uint64_t position) noexcept;

/// The byte at `position`; nothing when it cannot be had.
[[nodiscard]] std::optional<std::uint8_t> rcByteInCache(rcCacheRec* cache, std::uint64_t position) noexcept;

/// The bytes at `position` as they lie in the buffer: at least `count` of them (refilled as above on a miss),
/// and all that the buffer holds behind them. Empty when they cannot be had or `count` exceeds the buffer.
/// The view lives until the next operation on the cache.
[[nodiscard]] ByteView rcBytesInCache(rcCacheRec* cache, std::uint64_t position,
                                      std::uint32_t count) noexcept;

/// The first position at or behind `position` that is not in a hole: the bytes in between are zero, were
/// never written, and need not be read. Behind the last data that is the file's end.
[[nodiscard]] std::uint64_t rcPastHole(rcCacheRec* cache, std::uint64_t position) noexcept;

/// Whether the file held `count` bytes at `position` when the cache was opened.
[[nodiscard]] bool rcRangeIsInFile(const rcCacheRec& cache, std::uint64_t position,
                                   std::uint64_t count) noexcept;

/// Reads an unsigned integer of the given byte order into `*value`, which keeps its value on an error and for
/// any byte order but the two.
[[nodiscard]] std::int32_t rcReadUInt16FromCache(rcCacheRec* cache, std::uint64_t position,
                                                 std::int32_t byteOrder, std::uint16_t* value) noexcept;
[[nodiscard]] std::int32_t rcReadUInt32FromCache(rcCacheRec* cache, std::uint64_t position,
                                                 std::int32_t byteOrder, std::uint32_t* value) noexcept;
[[nodiscard]] std::int32_t rcReadUInt64FromCache(rcCacheRec* cache, std::uint64_t position,
                                                 std::int32_t byteOrder, std::uint64_t* value) noexcept;

/// Frees the buffer, clears the cache and closes the file; answers the result of closing.
std::int32_t rcCloseCacheAndFile(rcCacheRec* cache) noexcept;

/// The file at a path with a cache over it, open for one reader; both are closed on every way out.
class CachedFile {
public:
    /// `progress`, unless null, must outlive this.
    explicit CachedFile(const SvxStringRef& path, ReadProgress* progress = nullptr,
                        std::uint32_t bufferSize = rcStandardBufferSize) noexcept;
    CachedFile(const CachedFile&) = delete;
    CachedFile& operator=(const CachedFile&) = delete;
    ~CachedFile() { rcCloseCacheAndFile(&cache_); }

    /// Whether the file could be opened and its beginning read.
    explicit operator bool() const noexcept { return isOpen_; }
    [[nodiscard]] rcCacheRec* cache() noexcept { return &cache_; }

private:
    rcCacheRec cache_;
    bool isOpen_ = false;
};

} // namespace sonarin
