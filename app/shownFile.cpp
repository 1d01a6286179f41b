// SPDX-License-Identifier: MIT
#include "app/shownFile.h"

#include "engine/fileEngine.h"

#include <utility>

namespace sonarin {

ShownFile readShownFile(SvxStringRef path, const ReadOptions& options) noexcept {
    ShownFile file;
    file.path = std::move(path);
    FSRef ref;
    if (feMakeFSRefFromPath(file.path, &ref) == fileNoErr) {
        file.attributes = hostFileAttributes(ref.path);
        if (options.progress != nullptr) {
            options.progress->size = file.attributes.size;
        }
    }
    if (file.attributes.isRegular) {
        file.result = amdGetAudioMetaDataForFile(file.path, &file.record, &file.type, options);
    } else {
        file.type = amdAudioFileType(file.path);
    }
    return file;
}

} // namespace sonarin
