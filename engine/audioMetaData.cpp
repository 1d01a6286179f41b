// SPDX-License-Identifier: MIT
#include "engine/audioMetaData.h"

#include "engine/aacTags.h"
#include "engine/fileEngine.h"
#include "engine/miAIFF.h"
#include "engine/miWAVE.h"
#include "engine/mpegFile.h"
#include "platform/host/fileAttributes.h"
#include "text/stringEngine.h"

#include <algorithm>
#include <exception>
#include <initializer_list>

namespace sonarin {

namespace {

bool endsWithAny(const SvxStringRef& name, std::initializer_list<const char*> suffixes) {
    return std::any_of(suffixes.begin(), suffixes.end(),
                       [&](const char* suffix) { return SvxStringEndsWithCString(name, suffix, false); });
}

HostTypeCodes typeCodesOf(const SvxStringRef& path) {
    FSRef ref;
    return feMakeFSRefFromPath(path, &ref) == fileNoErr ? hostTypeCodes(ref.path) : HostTypeCodes{};
}

std::int32_t typeFor(const SvxStringRef& name, const HostTypeCodes& codes) {
    if (mp3PossibleFile(name, codes.type, codes.creator) != 0) {
        return amdTypeMP3;
    }
    bool isM4P = false;
    if (aacPossibleFile(name, codes.type, codes.creator, &isM4P)) {
        return isM4P ? amdTypeM4P : amdTypeM4A;
    }
    if (aiffPossibleFile(name, codes.type, codes.creator)) {
        return amdTypeAIFF;
    }
    return wavePossibleFile(name, codes.type, codes.creator) ? amdTypeWAVE : amdTypeNone;
}

} // namespace

std::int32_t amdAudioFileTypeOfName(const SvxStringRef& name) noexcept {
    return typeFor(name, {});
}

std::int32_t amdAudioFileType(const SvxStringRef& path) noexcept {
    const SvxStringRef name = feLastPathComponent(path);
    // The first test, once its name decides, says yes whatever the codes are: no need to ask the disk for
    // them.
    if (mp3PossibleFile(name, 0, 0) != 0) {
        return amdTypeMP3;
    }
    return typeFor(name, typeCodesOf(path));
}

std::uint32_t mp3PossibleFile(const SvxStringRef& name, std::uint32_t type, std::uint32_t creator) noexcept {
    switch (type) {
    case fourCC("MPG3"):
    case fourCC("MP3 "):
    case fourCC("MPEG"):
        return 1;
    case fourCC("MPG2"):
        if (creator == fourCC("SJAM")) {
            return 1;
        }
        break;
    case fourCC("PLAY"):
        if (creator == fourCC("mAmp")) {
            return 1;
        }
        break;
    case fourCC("Mp3 "):
        if (creator == fourCC("Audn") || creator == fourCC("TVOD")) {
            return 1;
        }
        break;
    default:
        break;
    }
    return SvxStringEndsWithCString(name, ".MP3", false) ? 1 : 0;
}

bool aacPossibleFile(const SvxStringRef& name, std::uint32_t type, std::uint32_t creator,
                     bool* isM4P) noexcept {
    if (type == fourCC("M4A ")) {
        *isM4P = false;
        return true;
    }
    if (creator == fourCC("M4P ") || creator == fourCC("M4B ")) {
        *isM4P = true;
        return true;
    }
    if (endsWithAny(name, {".M4A", ".aac"})) {
        *isM4P = false;
        return true;
    }
    if (endsWithAny(name, {".M4B", ".M4P", ".M4R"})) {
        *isM4P = true;
        return true;
    }
    return false;
}

bool aiffPossibleFile(const SvxStringRef& name, std::uint32_t type, std::uint32_t /*creator*/) noexcept {
    return type == fourCC("AIFF") || type == fourCC("AIFC") || endsWithAny(name, {".AIFF", ".AIF"});
}

bool wavePossibleFile(const SvxStringRef& name, std::uint32_t type, std::uint32_t /*creator*/) noexcept {
    return type == fourCC("WAVE") || endsWithAny(name, {".WAVE", ".WAV"});
}

std::int32_t amdGetAudioMetaDataForFile(const SvxStringRef& path, audioTags* record, std::int32_t* type,
                                        const ReadOptions& options) noexcept {
    const std::int32_t found = amdAudioFileType(path);
    if (type != nullptr) {
        *type = found;
    }
    switch (found) {
    case amdTypeMP3:
        return mp3GetFileInfo(path, record, options) != 0 ? 0 : -1;
    case amdTypeM4A:
    case amdTypeM4P:
        return aacGetFileInfo(path, record, options) ? 0 : -1;
    case amdTypeWAVE:
        return waveGetFileInfo(path, record, options) ? 0 : -1;
    case amdTypeAIFF: {
        miAudioInfo info;
        if (!miGetAIFFInfo(path, &info, record, options)) {
            return -1;
        }
        miStoreInfo(info, record);
        return 0;
    }
    default:
        return -1;
    }
}

std::unique_ptr<HostPicture> amdGetCoverArt(const audioTags& record,
                                            const std::atomic<bool>* isWanted) noexcept {
    try {
        return record.mp3CoverArt ? makeHostPicture(record.mp3CoverArt.view(), isWanted) : nullptr;
    } catch (const std::exception&) { // of the decoder, such as from want of memory
        return nullptr;
    }
}

void amdReleaseAudioMetaData(audioTags* record) noexcept {
    mp3DisposeTagsData(record);
}

void mp3DisposeTagsData(audioTags* record) noexcept {
    SvxStringRelease(&record->mp3SongTitleString);
    SvxStringRelease(&record->mp3ArtistString);
    SvxStringRelease(&record->mp3AlbumString);
    SvxStringRelease(&record->mp3ComposerString);
    SvxStringRelease(&record->mp3CommentString);
    SvxStringRelease(&record->mp3Genre2String);
    SvxStringRelease(&record->mp3LyricsString);
    SvxStringRelease(&record->mp3EncoderAppString);
    record->mp3CoverArt = ByteBlock();
    record->mp3CoverArtPlace = {};
}

} // namespace sonarin
