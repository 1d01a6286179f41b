// SPDX-License-Identifier: MIT
// What the window's menus and buttons do with the file that is shown.
#include "app/panelTexts.h"
#include "app/urls.h"
#include "app/window/AppController.h"
#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/desktopPrograms.h"
#include "text/stringEngine.h"

namespace sonarin {

namespace {

/// The texts of URLs are ASCII.
void openUrlText(const SvxStringRef& url) {
    openUrl(cocoaUtils::stringFromText(url).toStdString());
}

} // namespace

void AppController::rename(RenamePattern pattern) {
    renameFileAtPath(lastPath, renameFileName(pattern, currentItem, currentItemType));
}

bool AppController::renameFileAtPath(const QString& path, const SvxStringRef& newName) {
    FSRef ref;
    FSRef renamed;
    return feMakeFSRefFromPath(cocoaUtils::textFromString(path), &ref) == fileNoErr &&
           feRenameFolder(ref, newName, &renamed) == fileNoErr;
}

void AppController::find(FindKey key) {
    openUrlText(findUrl(key, currentItem));
}

void AppController::showLyrics() {
    lyricsWindow->show();
    lyricsWindow->raise();
    lyricsWindow->activateWindow();
    showLyricsText(panelLyrics(currentItem));
}

void AppController::sendToTwitter() {
    if (canTellTwitter(currentItem)) {
        openUrlText(twitterUrl(currentItem));
    }
}

} // namespace sonarin
