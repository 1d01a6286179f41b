// SPDX-License-Identifier: MIT
// What the window's menus and buttons do with the file that is shown.
#include "app/panelTexts.h"
#include "app/renameOutcome.h"
#include "app/urls.h"
#include "app/window/AppController.h"
#include "app/window/auxiliaryWindow.h"
#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/desktopPrograms.h"
#include "text/stringEngine.h"

#include <QMessageBox>
#include <memory>
#include <unistd.h>
#include <utility>

/// The help page is in the program; what is linked from a library must be asked for, outside any namespace.
static void loadHelpPage() {
    Q_INIT_RESOURCE(help);
}

namespace sonarin {

void AppController::rename(RenamePattern pattern) {
    if (isRenaming_) {
        say(QStringLiteral("Renaming…"));
        return;
    }
    isRenaming_ = true;
    struct Renaming {
        SvxStringRef name;
        std::int32_t result = fileNoErr;
    };
    const auto renaming =
        std::make_shared<Renaming>(Renaming{renameFileName(pattern, currentItem, currentItemType)});
    const auto work = [renaming, path = lastPath] {
        (void)renameFileAtPath(path, renaming->name, &renaming->result);
    };
    const auto done = [this, renaming] {
        isRenaming_ = false;
        say(QString::fromStdString(renameOutcome(renaming->result, renaming->name)));
    };
    sideWork_.start(cocoaUtils::hostPath(lastPath), work, done);
    if (!sideWork_.waitUntil([this] { return !isRenaming_; })) {
        say(QStringLiteral("Renaming…"));
    }
}

bool AppController::renameFileAtPath(const QString& path, const SvxStringRef& newName, std::int32_t* result) {
    FSRef ref;
    FSRef renamed;
    *result = feMakeFSRefFromPath(cocoaUtils::textFromString(path), &ref);
    if (*result == fileNoErr) {
        *result = feRenameFolder(ref, newName, &renamed);
    }
    return *result == fileNoErr;
}

/// Beside the window, since the bus that may have to start the program may hang.
void AppController::openLink(const std::string& url) {
    sideWork_.start(
        {}, [url] { openUrl(url); }, nullptr);
}

void AppController::find(FindKey key) {
    openLink(cocoaUtils::stringFromText(findUrl(key, currentItem)).toStdString());
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

/// Has `open` open the item shown, beside the window, where the disk and the bus may hang; says so when it
/// does not, or the item is there no more.
void AppController::openShownItem(const std::function<bool(const std::string& path)>& open,
                                  const QString& failure) {
    struct Opening {
        bool hasFailed = true;
        bool isOver = false;
        bool isLate = false;
    };
    const auto opening = std::make_shared<Opening>();
    const std::string path = cocoaUtils::hostPath(lastPath);
    const auto work = [opening, path, open] {
        opening->hasFailed = access(path.c_str(), F_OK) != 0 || !open(path);
    };
    const auto done = [this, opening, failure] {
        opening->isOver = true;
        if (opening->hasFailed && opening->isLate) {
            later_.emplace_back([this, failure] { showAlert(failure); });
            QMetaObject::invokeMethod(this, "doLater", Qt::QueuedConnection);
        }
    };
    sideWork_.start(path, work, done);
    if (sideWork_.waitUntil([opening] { return opening->isOver; }) && opening->hasFailed) {
        showAlert(failure);
    }
    opening->isLate = !opening->isOver;
}

/// What may end in an alert, which stays until it is dismissed, must not do so within somebody's wait.
void AppController::doLater() {
    const std::function<void()> next = std::move(later_.front());
    later_.pop_front();
    next();
}

void AppController::editWith(std::uint32_t creator, const QString& failure) {
    openShownItem([creator](const std::string& path) { return openFileWithCreator(path, creator); }, failure);
}

void AppController::showAlert(const QString& title) {
    QMessageBox alert(QMessageBox::Warning, QStringLiteral("Sonarin"), title, QMessageBox::Ok, myWindow);
    alert.setTextFormat(Qt::PlainText);
    alert.exec();
}

/// The entries of programs may be on a disk that is slow; a menu shows what was found before.
void AppController::lookForEditors() {
    const auto found = std::make_shared<std::vector<DesktopEditor>>();
    const auto isOver = std::make_shared<bool>(false);
    const auto done = [this, found, isOver] {
        editors_ = *found;
        *isOver = true;
    };
    sideWork_.start(
        "/usr/share/applications", [found] { *found = installedEditors(); }, done);
    sideWork_.waitUntil([isOver] { return *isOver; }, SideWork::Patience::little);
}

/// The menu ends with the editors that are there, behind those that are always listed.
void AppController::addInstalledEditors() {
    const int fixedItems = 1 + static_cast<int>(editTagsPopup->property("itemTitles").toStringList().size());
    while (editTagsPopup->numberOfItems() > fixedItems) {
        editTagsPopup->removeItemAtIndex(fixedItems);
    }
    lookForEditors();
    if (!editors_.empty()) {
        editTagsPopup->addSeparator();
    }
    for (const DesktopEditor& editor : editors_) {
        const QString name = QString::fromStdString(editor.name);
        editTagsPopup->addItemWithTitle(name, [this, id = editor.desktopId, name] {
            openShownItem([id](const std::string& path) { return openFileWithProgram(path, id); },
                          QStringLiteral("The application %1 could not be found and launched.").arg(name));
        });
    }
}

void AppController::showLyrics() {
    loadLyricsWindow();
    keepOnTopIfWanted(lyricsWindow);
    bringToFront(lyricsWindow);
    showLyricsText(panelLyrics(currentItem));
}

void AppController::sendToTwitter() {
    if (canTellTwitter(currentItem)) {
        openLink(cocoaUtils::stringFromText(twitterUrl(currentItem)).toStdString());
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
    keepOnTopIfWanted(helpWindow);
    bringToFront(helpWindow);
}

void AppController::poweredByShelvix() {
    openLink(homeUrl);
}

void AppController::donate() {
    openLink(donationUrl);
}

} // namespace sonarin
