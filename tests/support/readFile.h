// SPDX-License-Identifier: MIT
#pragma once

#include "engine/fileEngine.h"
#include "tests/support/testFolder.h"

#include <filesystem>
#include <string>

namespace sonarin {

struct ReadResult {
    std::int32_t result = 0;
    audioTags record;
};

/// The texts, year and track of a record, in the order of their members.
inline std::string tagsOf(const audioTags& record) {
    std::string tags;
    for (const SvxStringRef& text :
         {record.mp3SongTitleString, record.mp3ArtistString, record.mp3AlbumString, record.mp3ComposerString,
          record.mp3CommentString, record.mp3Genre2String, record.mp3LyricsString,
          record.mp3EncoderAppString}) {
        tags += (text ? plain(text) : "-") + "|";
    }
    return tags + std::to_string(record.mp3Year) + "|" + std::to_string(record.mp3TheTrack) + "/" +
           std::to_string(record.mp3TrackAmount);
}

/// Reads a file of that name and content through the engine's front door; a size beyond the content leaves a
/// hole at its end.
inline ReadResult readFileAs(const std::string& name, const std::string& content,
                             std::uint64_t sizeOnDisk = 0, TagReading tags = TagReading::usual) {
    startUpIn("C");
    const TestFolder folder;
    const std::string path = folder.write(name, content);
    if (sizeOnDisk != 0) {
        std::filesystem::resize_file(path, sizeOnDisk);
    }
    ReadResult read;
    read.result = amdGetAudioMetaDataForFile(feMakePathText(path), &read.record, nullptr,
                                             {Pictures::load, nullptr, tags});
    return read;
}

} // namespace sonarin
