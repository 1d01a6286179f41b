// SPDX-License-Identifier: MIT
#pragma once

#include "engine/byteBlock.h"
#include "engine/readOptions.h"
#include "platform/host/picture.h"
#include "text/SvxString.h"

#include <cstdint>
#include <memory>

/// The front of the engine: the record that every reader fills, the audio types, and the one call that reads
/// a file. Nothing throws, and the engine keeps no state between calls.
namespace sonarin {

/// A run of bytes of the file.
struct FilePlace {
    std::uint64_t position = 0;
    std::uint32_t size = 0;
};

/// The facts and tags of one audio file. A cleared record is `audioTags{}`: numbers 0, texts absent, no
/// picture. The record owns its texts and its picture.
struct audioTags {
    std::uint16_t mp3SongLen = 0;      ///< playing time in whole seconds, truncated; the low 16 bits
    std::uint32_t mp3BitRate = 0;      ///< kbit/s (1000 bits); the average where it varies
    std::uint32_t mp3SamplingRate = 0; ///< Hz
    std::uint8_t mp3ChannelMode = 0;   ///< 0 stereo, 1 joint stereo, 2 dual channel, 3 single channel
    std::uint8_t mp3Version = 0;       ///< MPEG audio version as coded: 0 MPEG-2.5, 2 MPEG-2, 3 MPEG-1
    std::uint8_t mp3Layer = 0;         ///< MPEG audio layer as coded: 1 Layer III, 2 Layer II
    std::uint8_t mp3HasCRC = 0;        ///< the protection bit as coded: 1 when no CRC follows the header
    std::uint8_t mp3HasVBR = 0;        ///< 1 when the bit rate varies
    std::uint16_t mp3TagVersion = 0;   ///< 0 no tag, 1 ID3v1, 2 to 4 the ID3v2 major version
    std::int16_t mp3Genre = 0;         ///< ID3v1 genre byte as signed, or the MPEG-4 "gnre" value
    std::uint16_t mp3Year = 0;
    std::uint16_t mp3TheTrack = 0;
    std::uint16_t mp3TrackAmount = 0; ///< 0 when unknown
    SvxStringRef mp3SongTitleString;
    SvxStringRef mp3ArtistString;
    SvxStringRef mp3AlbumString;
    SvxStringRef mp3ComposerString;
    SvxStringRef mp3CommentString;
    SvxStringRef mp3Genre2String; ///< the genre as text
    SvxStringRef mp3LyricsString;
    SvxStringRef mp3EncoderAppString;
    ByteBlock mp3CoverArt; ///< the bytes of one image file; none where Pictures::find was asked for
    /// Where those bytes stand in the audio file, unless it holds them in another form (compressed,
    /// unsynchronised); of size 0 without a picture.
    FilePlace mp3CoverArtPlace;
    /// "JPEG", "PNGf" or "BMPf" as a four-character code, by the standard "GIFf" and "TIFF" too; 0 for none
    /// of these.
    std::uint32_t mp3CoverArtType = 0;
};

enum AudioFileType : std::int32_t { // NOLINT(*-enum-size): codes are passed as 32-bit numbers
    amdTypeNone = 0,
    amdTypeMP3 = 1,
    amdTypeM4A = 2,
    amdTypeM4P = 3, ///< MPEG-4 audio of the protected, audiobook or ringtone kind
    amdTypeWAVE = 4,
    amdTypeAIFF = 5
};

/// The type of the file at `path`, by its name and its HFS type and creator codes alone; its contents are not
/// looked at, and a file that is missing is classified by its name.
[[nodiscard]] std::int32_t amdAudioFileType(const SvxStringRef& path) noexcept;

/// The type that a name alone gives a file, without asking the disk. Codes may change it to another one, or
/// give one to a file whose name gives none, but never take it away.
[[nodiscard]] std::int32_t amdAudioFileTypeOfName(const SvxStringRef& name) noexcept;

/// Reads the file into `*record`, which must be cleared. 0 for success, -1 for failure, which may leave a
/// partly filled record. `*type`, unless null, gets the AudioFileType that the file was taken for.
[[nodiscard]] std::int32_t amdGetAudioMetaDataForFile(const SvxStringRef& path, audioTags* record,
                                                      std::int32_t* type = nullptr,
                                                      const ReadOptions& options = {}) noexcept;

/// A new picture from the record's cover; null when there is none, or its bytes are no image that the program
/// can decode, or the picture is no longer wanted. The format is recognised by the bytes: mp3CoverArtType may
/// be wrong.
[[nodiscard]] std::unique_ptr<HostPicture>
amdGetCoverArt(const audioTags& record, const std::atomic<bool>* isWanted = nullptr) noexcept;

/// Releases the record's texts and picture and nulls their fields; numbers stay. Harmless when repeated.
void amdReleaseAudioMetaData(audioTags* record) noexcept;
void mp3DisposeTagsData(audioTags* record) noexcept;

// The candidate tests: `name` is the last path component, `type` and `creator` are HFS codes (0 for none).
[[nodiscard]] std::uint32_t mp3PossibleFile(const SvxStringRef& name, std::uint32_t type,
                                            std::uint32_t creator) noexcept;
/// Sets `*isM4P` only when it answers true.
[[nodiscard]] bool aacPossibleFile(const SvxStringRef& name, std::uint32_t type, std::uint32_t creator,
                                   bool* isM4P) noexcept;
[[nodiscard]] bool aiffPossibleFile(const SvxStringRef& name, std::uint32_t type,
                                    std::uint32_t creator) noexcept;
[[nodiscard]] bool wavePossibleFile(const SvxStringRef& name, std::uint32_t type,
                                    std::uint32_t creator) noexcept;

} // namespace sonarin
