// SPDX-License-Identifier: MIT
#include "tests/support/readFile.h"

#include "engine/fileEngine.h"
#include "tests/support/testFolder.h"

#include <filesystem>

namespace sonarin {

std::string tagsOf(const audioTags& record) {
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

ReadResult readFileAs(const std::string& name, const std::string& content, std::uint64_t sizeOnDisk,
                      TagReading tags) {
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
