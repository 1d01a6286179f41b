// SPDX-License-Identifier: MIT
#include "engine/id3frameText.h"

#include "engine/fileEngine.h"
#include "engine/fileText.h"
#include "text/stringEngine.h"
#include "text/textDecoding.h"

#include <algorithm>
#include <array>
#include <limits>

namespace sonarin {

namespace {

/// Recognises a frame text's encoding by its bytes, R[0] to R[n - 1] in the comments; the encoding byte
/// before them is often wrong.
class FrameText {
public:
    FrameText(rcCacheRec* cache, std::uint64_t offset, std::uint32_t count) noexcept
        : cache_(cache), offset_(offset), count_(count) {}

    /// The text by the first rule that gives one.
    SvxStringRef read() {
        const std::uint32_t headLength = std::min(count_, static_cast<std::uint32_t>(head_.size()));
        if (!rcRangeIsInFile(*cache_, offset_, count_) ||
            rcReadFromCache(cache_, offset_, headLength, head_.data()) != fileNoErr) {
            return nullptr;
        }
        SvxStringRef text = leadingMarkRule();
        if (!text && count_ >= 6) {
            text = prefixRule();
        }
        return text ? text : asciiRule();
    }

private:
    [[nodiscard]] bool markAt(std::size_t index) const {
        return head_.at(index) == 0xFF && head_.at(index + 1) == 0xFE;
    }

    SvxStringRef leadingMarkRule() { return markAt(0) ? utf16(2, count_ - 2) : nullptr; }

    /// Comments and lyrics: a language code and a content descriptor stand before the text.
    SvxStringRef prefixRule() {
        if (head_[0] == 'e' && head_[1] == 'n' && head_[2] == 'g') {
            return englishText();
        }
        for (std::uint32_t i = 0; i + 1 < head_.size(); ++i) {
            if (markAt(i)) {
                return utf16(i + 2, count_ - i - 2);
            }
        }
        return nullptr;
    }

    SvxStringRef englishText() {
        if (head_[3] == 0) {
            return utf8(4, count_ - 6); // empty descriptor in a one-byte encoding
        }
        if (markAt(3) && head_[5] == 0 && head_[6] == 0) {
            // Empty descriptor in UTF-16; R[7] and R[8] are the text's own byte-order mark.
            return count_ >= 12 ? utf16(9, count_ - 11) : nullptr;
        }
        return utf8(3, count_ - 5); // descriptor, its terminator and the text together
    }

    SvxStringRef asciiRule() {
        if (count_ == 0) {
            return nullptr;
        }
        const bool isTerminated = count_ > 2 && rcByteInCache(cache_, offset_ + count_ - 2) == 0;
        FileBytes bytes(cache_, offset_, count_ - (isTerminated ? 2 : 1));
        return SvxStringFromSource(SvxEncoding::ascii, bytes);
    }

    SvxStringRef utf16(std::uint32_t start, std::uint32_t length) {
        FileBytes bytes(cache_, offset_ + start, length);
        return SvxStringFromSource(SvxEncoding::utf16LittleEndian, bytes);
    }

    SvxStringRef utf8(std::uint32_t start, std::uint32_t length) {
        return readUTF8Text(cache_, offset_ + start, length);
    }

    rcCacheRec* cache_;
    std::uint64_t offset_;
    std::uint32_t count_;
    std::array<std::uint8_t, 10> head_{}; ///< the first bytes, zero behind the end
};

} // namespace

void mp3ReadSvxStringFromFile(rcCacheRec* cache, std::uint64_t offset, std::uint32_t count,
                              SvxStringRef* field) noexcept {
    if (count > std::numeric_limits<std::uint32_t>::max() - 2) {
        return;
    }
    SvxStringRef text = FrameText(cache, offset, count).read();
    if (!text || containsITunesData(text)) {
        return;
    }
    if (SvxStringIsValid(*field)) {
        SvxStringAppendAfterBlank(field, text);
    } else {
        *field = std::move(text);
    }
}

} // namespace sonarin
