// SPDX-License-Identifier: MIT
#include "app/window/FileReading.h"

#include "app/window/cocoaUtils.h"
#include "platform/desktop/fileIcon.h"

#include <utility>

namespace sonarin {

FileReading::FileReading(QString shownPath)
    : path(std::move(shownPath)), text(cocoaUtils::textFromString(path)) {
    (void)feMakeFSRefFromPath(text, &hostPath);
}

void FileReading::run() {
    file = readShownFile(text, {Pictures::load, &progress});
    if (file.isRead() && progress.isWanted) {
        cover = amdGetCoverArt(file.record, &progress.isWanted);
    }
    if (!cover && progress.isWanted) {
        iconNames = iconNamesForFile(hostPath.path, cocoaUtils::stringFromText(feLastPathComponent(text)));
    }
}

} // namespace sonarin
