// SPDX-License-Identifier: MIT
#pragma once

#include "engine/readCache.h"
#include "text/textDecoding.h"

/// What the tag readers of all formats have in common: texts that stand in the file, and which of them are
/// none of the user's.
namespace sonarin {

/// A range of the file, decoded out of the cache's buffer piece by piece: a long text costs its own memory
/// only. The range must lie within the file.
class FileBytes final : public SvxByteSource {
public:
    FileBytes(rcCacheRec* cache, std::uint64_t offset, std::uint64_t size) noexcept
        : cache_(cache), offset_(offset), size_(size) {}

    [[nodiscard]] std::uint64_t size() const noexcept override { return size_; }
    [[nodiscard]] std::string_view pieceAt(std::uint64_t position) noexcept override;

private:
    rcCacheRec* cache_;
    std::uint64_t offset_;
    std::uint64_t size_;
};

/// The text of a range as SvxStringFromUTF8 reads it: Mac OS Roman where it is no UTF-8. Absent when it
/// cannot be read or memory runs out.
[[nodiscard]] SvxStringRef readUTF8Text(rcCacheRec* cache, std::uint64_t offset, std::uint64_t size) noexcept;

/// iTunes keeps data of its own (volume, gaps, CD identity) in comments. Whether the text holds the mark of
/// such data, in any letter case.
[[nodiscard]] bool containsITunesData(const SvxStringRef& text) noexcept;
[[nodiscard]] bool beginsWithITunesData(const SvxStringRef& text) noexcept;

} // namespace sonarin
