// SPDX-License-Identifier: MIT
#pragma once

#include "engine/fileEngine.h"
#include "engine/mp3tags.h"
#include "engine/readCache.h"
#include "tests/support/testFolder.h"

#include <string>

namespace sonarin {

/// Bytes as a file that is open for the readers' lower functions.
class OpenBytes {
public:
    explicit OpenBytes(const std::string& content) {
        const std::string path = folder_.write("bytes", content);
        opened =
            rcOpenCache(&cache, feOpenExistingDataFile(feMakePathText(path), 0), rcStandardBufferSize) == 0;
    }
    OpenBytes(const OpenBytes&) = delete;
    OpenBytes& operator=(const OpenBytes&) = delete;
    ~OpenBytes() { rcCloseCacheAndFile(&cache); }

    rcCacheRec cache;
    bool opened = false;

private:
    TestFolder folder_;
};

} // namespace sonarin
