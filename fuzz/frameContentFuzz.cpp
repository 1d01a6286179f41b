// SPDX-License-Identifier: MIT
#include "engine/id3frameText.h"
#include "engine/id3picture.h"
#include "engine/id3v2.h"
#include "engine/readCache.h"
#include "fuzz/memoryFile.h"
#include "text/stringEngine.h"

/// The texts and the picture of one frame. The first byte says how many bytes the frame claims beyond the
/// end, the second how small the read buffer is, so that pieces end everywhere.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace sonarin;
    if (size < 3) {
        return 0;
    }
    serveFile({bytes, size});
    ShownFile file;
    file.path = SvxStringFromCString("frame.mp3");
    file.result = 0;
    CachedFile opened(file.path, nullptr, 16U + bytes[1]);
    if (!opened) {
        return 0;
    }
    const auto count = static_cast<std::uint32_t>(size - 2) + (bytes[0] == 0xFF ? 1U : 0U);
    audioTags& record = file.record;
    for (int i = 0; i < 2; ++i) { // the second time joins
        mp3ReadSvxStringFromFile(opened.cache(), 2, count, &record.mp3CommentString);
    }
    mp3DecodeTrackInfo(record.mp3CommentString, &record.mp3TheTrack, &record.mp3TrackAmount);
    mp3ReadCoverArt(&record, 2, count, opened.cache());
    printFile(file, size % 2 == 0 ? Form::json : Form::text);
    return 0;
}
