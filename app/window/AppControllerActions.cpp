// SPDX-License-Identifier: MIT
// What the window's menus and buttons do with the file that is shown.
#include "app/panelTexts.h"
#include "app/urls.h"
#include "app/window/AppController.h"
#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/desktopPrograms.h"
#include "text/stringEngine.h"

#include <QMessageBox>
#include <unistd.h>

/// The help page is in the program; what is linked from a library must be asked for, outside any namespace.
static void loadHelpPage() {
    Q_INIT_RESOURCE(help);
}

namespace sonarin {

namespace {

/// The texts of URLs are ASCII.
void openUrlText(const SvxStringRef& url) {
    openUrl(cocoaUtils::stringFromText(url).toStdString());
}

/// The bytes of the path of an item that exists; empty otherwise.
std::string existingItem(const QString& path) {
    FSRef ref;
    const bool isThere = feMakeFSRefFromPath(cocoaUtils::textFromString(path), &ref) == fileNoErr &&
                         access(ref.path.c_str(), F_OK) == 0;
    return isThere ? ref.path : std::string();
}

void bringToFront(QWidget* window) {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
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

void AppController::editWithMediaRage() {
    editWith(0x4D6564A8, // "Med" and the registered sign of Mac OS Roman
             QStringLiteral("The application Media Rage could not be found and launched."));
}

void AppController::editWithTheTagger() {
    editWith(fourCC("Tagr"), QStringLiteral("The application The Tagger could not be found and launched."));
}

void AppController::editWithID3X() {
    editWith(fourCC("id3x"), QStringLiteral("The application ID3X could not be found and launched."));
}

void AppController::editWith(std::uint32_t creator, const QString& failure) {
    const std::string path = existingItem(lastPath);
    if (path.empty() || !openFileWithCreator(path, creator)) {
        showAlert(failure);
    }
}

void AppController::showAlert(const QString& title) {
    QMessageBox alert(QMessageBox::Warning, QStringLiteral("Sonarin"), title, QMessageBox::Ok, myWindow);
    alert.setTextFormat(Qt::PlainText);
    alert.exec();
}

/// The menu ends with the editors that are there, behind those that are always listed.
void AppController::addInstalledEditors() {
    const int fixedItems = 1 + static_cast<int>(editTagsPopup->property("itemTitles").toStringList().size());
    while (editTagsPopup->numberOfItems() > fixedItems) {
        editTagsPopup->removeItemAtIndex(fixedItems);
    }
    const std::vector<DesktopEditor> editors = installedEditors();
    if (!editors.empty()) {
        editTagsPopup->addSeparator();
    }
    for (const DesktopEditor& editor : editors) {
        const QString name = QString::fromStdString(editor.name);
        editTagsPopup->addItemWithTitle(name, [this, id = editor.desktopId, name] {
            const std::string path = existingItem(lastPath);
            if (path.empty() || !openFileWithProgram(path, id)) {
                showAlert(QStringLiteral("The application %1 could not be found and launched.").arg(name));
            }
        });
    }
}

void AppController::showLyrics() {
    loadLyricsWindow();
    bringToFront(lyricsWindow);
    showLyricsText(panelLyrics(currentItem));
}

void AppController::sendToTwitter() {
    if (canTellTwitter(currentItem)) {
        openUrlText(twitterUrl(currentItem));
    }
}

void AppController::showHelp() {
    loadHelpWindow();
    if (helpWindow->isVisible() && !helpWindow->isMinimized()) {
        return;
    }
    loadHelpPage();
    helpWebView->setSource(QUrl(QStringLiteral("qrc:/help.html")));
    helpWebView->reload();
    bringToFront(helpWindow);
}

void AppController::poweredByShelvix() {
    openUrl(homeUrl);
}

void AppController::donate() {
    openUrl(donationUrl);
}

} // namespace sonarin
