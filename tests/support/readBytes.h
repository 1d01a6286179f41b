// SPDX-License-Identifier: MIT
#pragma once

#include "engine/fileEngine.h"
#include "engine/id3v2.h"
#include "engine/readCache.h"
#include "tests/support/readFile.h"
#include "text/stringEngine.h"
#include "tools/sampleBytes.h"
#include "tools/testFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

/// How the engine's readers are asked what they make of bytes.
namespace sonarin {

/// Bytes as a file that is open for the readers' lower functions.
class OpenBytes {
public:
    explicit OpenBytes(const std::string& content, std::uint32_t bufferSize = rcStandardBufferSize) {
        change(content);
        const SvxStringRef path = feMakePathText(folder_.path("bytes"));
        (void)rcOpenCache(&cache, feOpenExistingDataFile(path, 0), bufferSize);
    }
    /// Gives the file that is open another content.
    void change(const std::string& content) const { folder_.write("bytes", content); }
    OpenBytes(const OpenBytes&) = delete;
    OpenBytes& operator=(const OpenBytes&) = delete;
    ~OpenBytes() { rcCloseCacheAndFile(&cache); }

    rcCacheRec cache;

private:
    TestFolder folder_;
};

/// All that a record holds besides zeros and absent texts, as " seconds=10 rate=44100 title=Title"; a picture
/// that is not loaded as the bytes of `file` where it stands.
inline std::string factsOf(const audioTags& r, const std::string& file = {}) {
    const auto number = [](const std::string& name, std::int64_t value) {
        return value == 0 ? "" : " " + name + "=" + std::to_string(value);
    };
    const auto text = [](const std::string& name, const SvxStringRef& value) {
        return value ? " " + name + "=" + plain(value) : "";
    };
    const auto [position, size] = r.mp3CoverArtPlace;
    const std::string picture(r.mp3CoverArt ? asCharacters(r.mp3CoverArt.view())
                                            : std::string_view(file).substr(position, size));
    return number("seconds", r.mp3SongLen) + number("kbit", r.mp3BitRate) + number("vbr", r.mp3HasVBR) +
           number("rate", r.mp3SamplingRate) + number("mode", r.mp3ChannelMode) +
           number("version", r.mp3Version) + number("layer", r.mp3Layer) + number("crc", r.mp3HasCRC) +
           number("tag", r.mp3TagVersion) + number("code", r.mp3Genre) + number("year", r.mp3Year) +
           number("track", r.mp3TheTrack) + number("of", r.mp3TrackAmount) +
           text("title", r.mp3SongTitleString) + text("artist", r.mp3ArtistString) +
           text("album", r.mp3AlbumString) + text("composer", r.mp3ComposerString) +
           text("comment", r.mp3CommentString) + text("genre", r.mp3Genre2String) +
           text("lyrics", r.mp3LyricsString) + text("encoder", r.mp3EncoderAppString) +
           (size == 0 && r.mp3CoverArtType == 0
                ? ""
                : " picture=" + plain(fourCharacterText(r.mp3CoverArtType)) + ":" + picture);
}

/// The same of a file, behind the result where that is none of success.
inline std::string factsOf(const ReadResult& read) {
    return (read.result == 0 ? "" : " result=" + std::to_string(read.result)) + factsOf(read.record);
}

/// How long an MPEG stream lasts, and its bit rate, with "~" where that varies.
inline std::string lengthOf(const std::string& stream, std::uint64_t sizeOnDisk = 0,
                            TagReading tags = TagReading::usual) {
    const auto [result, r] = readFileAs("x.mp3", stream, sizeOnDisk, tags);
    return (result == 0 ? "" : std::to_string(result) + ": ") + std::to_string(r.mp3SongLen) + " s of " +
           std::string(r.mp3HasVBR, '~') + std::to_string(r.mp3BitRate) + " kbit/s";
}

/// The record of a tag at the start of a file in which `behind` follows it, and the place behind the tag.
inline std::pair<audioTags, std::uint64_t> readTag(const std::string& tag, const ReadOptions& options = {},
                                                   const std::string& behind = std::string(300, 'z')) {
    startUpIn("C");
    OpenBytes file(tag + behind);
    std::pair<audioTags, std::uint64_t> read;
    mp3ReadV2Tags(&read.first, &read.second, &file.cache, options);
    return read;
}

/// The place behind a tag that is all of a file, and what it gives.
inline std::string endAndFacts(const std::string& tag, const ReadOptions& options = {}) {
    const auto [record, end] = readTag(tag, options, "");
    return std::to_string(end) + factsOf(record);
}

inline ByteView viewOf(const std::string& bytes) {
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}; // NOLINT(*-reinterpret-cast)
}

/// What is expected, and what it is expected of.
using Expectations = std::vector<std::pair<std::string, std::vector<std::string>>>;

template <typename Answer>
void expectEach(Answer answer, const Expectations& expectations) {
    for (const auto& [expected, inputs] : expectations) {
        for (const std::string& input : inputs) {
            EXPECT_EQ(answer(input), expected) << testing::PrintToString(input);
        }
    }
}

/// The same for rows of "input -> expected".
template <typename Answer>
void expectRows(Answer answer, const std::vector<std::string>& rows) {
    for (const std::string& row : rows) {
        const std::string input = row.substr(0, row.find(" -> "));
        EXPECT_EQ(input + " -> " + answer(input), row);
    }
}

} // namespace sonarin
