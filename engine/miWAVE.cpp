// SPDX-License-Identifier: MIT
#include "engine/miWAVE.h"

#include "engine/chunkWalk.h"
#include "engine/fileEngine.h"
#include "engine/id3standard.h"

#include <array>
#include <optional>

namespace sonarin {

namespace {

constexpr std::uint32_t formatPCM = 1;

/// The fields of a "fmt " chunk that are used.
struct WaveFormat {
    std::uint32_t tag;
    std::uint32_t channels;
    std::uint32_t samplesPerSecond;
    std::uint32_t averageBytesPerSecond;
    std::uint32_t bitsPerSample;
};

std::optional<WaveFormat> readFormat(rcCacheRec* cache, const Chunk& chunk) {
    std::array<std::uint8_t, 24> bytes{};
    if (rcReadFromCache(cache, chunk.position, bytes.size(), bytes.data()) != fileNoErr) {
        return std::nullopt;
    }
    return WaveFormat{littleEndian16(bytes, 8), littleEndian16(bytes, 10), littleEndian32(bytes, 12),
                      littleEndian32(bytes, 16), littleEndian16(bytes, 22)};
}

/// The sampling rate as the bytes per second give it; unchanged for sample sizes that are no whole bytes.
void storeFormat(const WaveFormat& format, miAudioInfo* info) {
    info->channels = format.channels;
    info->sampleSize = format.bitsPerSample;
    switch (format.bitsPerSample) {
    case 8:
    case 16:
    case 24:
    case 32:
        if (format.channels != 0) {
            info->sampleRate = format.averageBytesPerSecond / (format.bitsPerSample / 8) / format.channels;
        }
        break;
    default:
        break;
    }
}

/// The sound format of compressed samples, once the number of samples per channel is known.
void storeCompressed(const WaveFormat& format, std::uint32_t samples, miAudioInfo* info) {
    constexpr std::uint32_t uncompressedSize = 16;
    info->sampleRate = divide(format.averageBytesPerSecond * 8, format.bitsPerSample * format.channels);
    info->sampleSize = uncompressedSize;
    // ADPCM blocks carry headers, so their bytes per second give a rate that is too high (44.7 instead of
    // 44.1 kHz) and a duration that is too short. The rate in the format itself is exact.
    const std::uint32_t trueRate = format.samplesPerSecond != 0 ? format.samplesPerSecond : info->sampleRate;
    info->duration = static_cast<std::uint16_t>(divide(samples, trueRate));
}

bool readsAsWave(ChunkWalk* walk) {
    return walk->readForm() && walk->formId() == fourCC("RIFF") && walk->formType() == fourCC("WAVE");
}

/// Fills what is known about the sound; false when the format was not found.
bool readInfo(rcCacheRec* cache, ChunkWalk walk, miAudioInfo* info) {
    std::optional<WaveFormat> format;
    for (Chunk chunk; walk.next(&chunk);) {
        if (chunk.id == fourCC("fmt ")) {
            format = readFormat(cache, chunk);
            if (!format) {
                return false;
            }
            storeFormat(*format, info);
            if (format->tag == formatPCM) {
                info->duration =
                    static_cast<std::uint16_t>(divide(walk.formSize(), format->averageBytesPerSecond));
                return true;
            }
        } else if (chunk.id == fourCC("fact")) {
            std::uint32_t samples = 0;
            const std::uint64_t field = chunk.position + chunkHeaderSize;
            if (rcReadUInt32FromCache(cache, field, rcByteOrderLittle, &samples) != fileNoErr) {
                return false;
            }
            if (format) {
                storeCompressed(*format, samples, info);
                return true;
            }
        }
    }
    return false;
}

void readTags(rcCacheRec* cache, ChunkWalk walk, audioTags* record, Pictures pictures) {
    for (Chunk chunk; walk.next(&chunk);) {
        if (id3IsTagChunk(chunk)) {
            id3ReadTagChunk(record, chunk, cache, pictures);
        }
    }
}

} // namespace

bool miGetWAVInfo(const SvxStringRef& path, miAudioInfo* info, const ReadOptions& options) noexcept {
    *info = {};
    CachedFile file(path, options.progress);
    ChunkWalk walk(file.cache(), rcByteOrderLittle, paddingFor(options.tags));
    return file && readsAsWave(&walk) && readInfo(file.cache(), walk, info);
}

bool waveGetFileInfo(const SvxStringRef& path, audioTags* record, const ReadOptions& options) noexcept {
    miAudioInfo info;
    CachedFile file(path, options.progress);
    ChunkWalk walk(file.cache(), rcByteOrderLittle, paddingFor(options.tags));
    const bool isWave = file && readsAsWave(&walk);
    const bool isRead = isWave && readInfo(file.cache(), walk, &info);
    miStoreInfo(info, record);
    if (isWave && options.tags == TagReading::byStandard) {
        readTags(file.cache(), walk, record, options.pictures);
    }
    return isRead;
}

} // namespace sonarin
