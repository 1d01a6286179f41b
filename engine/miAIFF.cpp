// SPDX-License-Identifier: MIT
#include "engine/miAIFF.h"

#include "engine/chunkWalk.h"
#include "engine/fileEngine.h"
#include "engine/id3standard.h"
#include "engine/id3v2.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace sonarin {

namespace {

/// The fields of a "COMM" chunk.
struct CommonChunk {
    std::int16_t channels;
    std::uint32_t sampleFrames;
    std::int16_t sampleSize; ///< bits
    std::uint32_t sampleRate;
    std::uint32_t compressionType; ///< AIFF-C only
};

struct CompressionFactor {
    std::uint32_t type;
    std::uint32_t factor; ///< uncompressed bytes for one stored byte
};

constexpr auto compressionFactors = std::to_array<CompressionFactor>({
    {fourCC("cdx2"), 2},
    {fourCC("alaw"), 2},
    {fourCC("ulaw"), 2},
    {fourCC("MAC3"), 3},
    {fourCC("ima4"), 4},
    {fourCC("cdx4"), 4},
    {fourCC("MAC6"), 6},
});

std::uint32_t compressionFactor(std::uint32_t type) {
    const auto* found = std::find_if(compressionFactors.begin(), compressionFactors.end(),
                                     [type](const CompressionFactor& known) { return known.type == type; });
    return found == compressionFactors.end() ? 1 : found->factor;
}

std::uint32_t wholeRate(double rate) {
    return static_cast<std::uint32_t>(
        std::clamp(rate, 0.0, static_cast<double>(std::numeric_limits<std::uint32_t>::max())));
}

/// Thirty bytes are read in plain AIFF too, where the chunk has 26.
std::optional<CommonChunk> readCommon(rcCacheRec* cache, const Chunk& chunk) {
    std::array<std::uint8_t, 30> bytes{};
    if (rcReadFromCache(cache, chunk.position, bytes.size(), bytes.data()) != fileNoErr) {
        return std::nullopt;
    }
    return CommonChunk{static_cast<std::int16_t>(bigEndian16(bytes, 8)), bigEndian32(bytes, 10),
                       static_cast<std::int16_t>(bigEndian16(bytes, 14)),
                       wholeRate(ConvertFromIeeeExtended(ByteView(bytes).subspan(16, 10))),
                       bigEndian32(bytes, 26)};
}

/// AIFF-C: seconds that the form's bytes would last uncompressed, all in 32 bits.
std::uint32_t compressedDuration(const CommonChunk& common, std::uint32_t formSize) {
    const std::uint32_t bytes = compressionFactor(common.compressionType) * formSize;
    const std::uint32_t samplesPerSecond = static_cast<std::uint32_t>(common.channels) * common.sampleRate;
    const std::uint32_t duration = divide(bytes, samplesPerSecond);
    return common.sampleSize == 16 ? duration / 2 : duration;
}

miAudioInfo infoOf(const CommonChunk& common, const ChunkWalk& form) {
    miAudioInfo info;
    info.duration = static_cast<std::uint16_t>(form.formType() == fourCC("AIFC")
                                                   ? compressedDuration(common, form.formSize())
                                                   : divide(common.sampleFrames, common.sampleRate));
    info.sampleRate = common.sampleRate;
    info.channels = static_cast<std::uint32_t>(common.channels);
    info.sampleSize = static_cast<std::uint32_t>(common.sampleSize);
    return info;
}

/// The chunks that hold a tag.
class TagChunks {
public:
    TagChunks(audioTags* record, rcCacheRec* cache, const ReadOptions& options)
        : record_(record), cache_(cache), options_(options) {}

    [[nodiscard]] bool isOne(const Chunk& chunk) const {
        return isUsual() ? chunk.id == fourCC("ID3 ") : id3IsTagChunk(chunk);
    }

    void take(const Chunk& chunk) {
        if (record_ == nullptr) {
            return;
        }
        if (!isUsual()) {
            id3ReadTagChunk(record_, chunk, cache_, options_.pictures);
            return;
        }
        std::uint64_t position = chunk.position + chunkHeaderSize;
        mp3ReadV2TagsWithin(&budget_, record_, &position, cache_, options_);
    }

private:
    [[nodiscard]] bool isUsual() const { return options_.tags == TagReading::usual; }

    audioTags* record_;
    rcCacheRec* cache_;
    const ReadOptions& options_;
    ReadBudget budget_{cache_->eof}; ///< a tag's size is not limited by its chunk's
};

} // namespace

bool miGetAIFFInfo(const SvxStringRef& path, miAudioInfo* info, audioTags* record,
                   const ReadOptions& options) noexcept {
    if (info != nullptr) {
        *info = {};
    }
    CachedFile file(path, options.progress);
    ChunkWalk walk(file.cache(), rcByteOrderBig, paddingFor(options.tags));
    if (!file || !walk.readForm() || walk.formId() != fourCC("FORM") ||
        (walk.formType() != fourCC("AIFF") && walk.formType() != fourCC("AIFC"))) {
        return false;
    }
    TagChunks tags(record, file.cache(), options);
    bool commFound = false;
    for (Chunk chunk; walk.next(&chunk);) {
        if (tags.isOne(chunk)) {
            tags.take(chunk);
        } else if (chunk.id == fourCC("COMM")) {
            const std::optional<CommonChunk> common = readCommon(file.cache(), chunk);
            if (!common) {
                return false;
            }
            commFound = true;
            if (info != nullptr) {
                *info = infoOf(*common, walk);
            }
        }
    }
    return commFound && !walk.hasFailed();
}

double ConvertFromIeeeExtended(ByteView bytes) noexcept {
    constexpr std::uint32_t largestExponent = 0x7FFF;
    constexpr int bias = 16383;
    const std::uint32_t signAndExponent = bigEndian16(bytes);
    const std::uint32_t exponent = signAndExponent & largestExponent;
    const std::uint32_t high = bigEndian32(bytes, 2);
    const std::uint32_t low = bigEndian32(bytes, 6);
    double value = 0.0;
    if (exponent == largestExponent) {
        value = std::numeric_limits<double>::infinity();
    } else if (exponent != 0 || high != 0 || low != 0) {
        const int power = static_cast<int>(exponent) - bias;
        value = std::ldexp(static_cast<double>(high), power - 31) +
                std::ldexp(static_cast<double>(low), power - 63);
    }
    return (signAndExponent & ~largestExponent) != 0 ? -value : value;
}

} // namespace sonarin
