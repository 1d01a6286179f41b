// SPDX-License-Identifier: MIT
#pragma once

#include "engine/fileEngine.h"
#include "engine/readCache.h"
#include "tests/support/testFolder.h"

#include <string>

namespace sonarin {

/// Bytes as a file that is open for the readers' lower functions.
class OpenBytes {
public:
    explicit OpenBytes(const std::string& content, std::uint32_t bufferSize = rcStandardBufferSize) {
        change(content);
        const SvxStringRef path = feMakePathText(folder_.path("bytes"));
        opened = rcOpenCache(&cache, feOpenExistingDataFile(path, 0), bufferSize) == 0;
    }
    /// Gives the file that is open another content.
    void change(const std::string& content) const { folder_.write("bytes", content); }
    OpenBytes(const OpenBytes&) = delete;
    OpenBytes& operator=(const OpenBytes&) = delete;
    ~OpenBytes() { rcCloseCacheAndFile(&cache); }

    rcCacheRec cache;
    bool opened = false;

private:
    TestFolder folder_;
};

} // namespace sonarin
