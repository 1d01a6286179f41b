// SPDX-License-Identifier: MIT
#include "app/shownFile.h"

#include "engine/fileEngine.h"

#include <utility>

namespace sonarin {

ShownFile readShownFile(SvxStringRef path, Pictures pictures) noexcept {
    ShownFile file;
    file.path = std::move(path);
    FSRef ref;
    if (feMakeFSRefFromPath(file.path, &ref) == fileNoErr) {
        file.attributes = hostFileAttributes(ref.path);
    }
    if (file.attributes.isRegular) {
        file.result = amdGetAudioMetaDataForFile(file.path, &file.record, &file.type, pictures);
    } else {
        file.type = amdAudioFileType(file.path);
    }
    return file;
}

} // namespace sonarin
