// SPDX-License-Identifier: MIT
#include "app/window/FileReading.h"

#include "app/failureCause.h"
#include "app/window/cocoaUtils.h"

#include <utility>

namespace sonarin {

FileReading::FileReading(QString shownPath, TagReading tagReading)
    : path(std::move(shownPath)), text(cocoaUtils::textFromString(path)), tags(tagReading) {
    (void)feMakeFSRefFromPath(text, &hostPath);
}

void FileReading::run() {
    file = readShownFile(text, {Pictures::load, &progress, tags});
    if (file.isRead() && progress.isWanted) {
        cover = amdGetCoverArt(file.record, &progress.isWanted);
    }
    if (!file.isRead() && progress.isWanted) {
        failure = failureCause(text, file.type);
    }
    if (!cover && progress.isWanted) {
        icon = iconForFile(hostPath.path, cocoaUtils::stringFromText(feLastPathComponent(text)));
    }
}

} // namespace sonarin
