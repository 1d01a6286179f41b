// SPDX-License-Identifier: MIT
// The information panel: what it shows for a path.
#include "app/hiddenTexts.h"
#include "app/window/AppController.h"
#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileIcon.h"
#include "platform/desktop/qtPicture.h"
#include "text/stringEngine.h"

#include <QApplication>
#include <QLocale>
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace sonarin {

namespace {

constexpr QLatin1StringView readsTagsByStandard("readsTagsByStandard");

/// A window title takes "[*]" for the mark of a changed document, unless it is doubled.
QString asWindowTitle(QString title) {
    constexpr qsizetype longest = 1000; // a display refuses what is longer by far
    title.truncate(longest);
    return withVisibleControls(title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

/// The length of the text up to where a line becomes too long.
qsizetype lengthToShow(const QString& text) {
    constexpr qsizetype longestLine = 10000;
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype found = text.indexOf(u'\n', start);
        const qsizetype end = found < 0 ? text.size() : found;
        if (end - start > longestLine) {
            return start + longestLine;
        }
        start = end + 1;
    }
    return text.size();
}

SvxStringRef cutInTheMiddle(const SvxStringRef& text, SvxIndex most) {
    const SvxIndex length = SvxStringGetLength(text);
    if (length <= most) {
        return text;
    }
    const SvxIndex tail = most / 3; // a text's start says more than its end
    const QString start = cocoaUtils::stringFromText(text, most - tail);
    const QString end = cocoaUtils::stringFromText(SvxStringCreateWithSubstring(text, length - tail, tail));
    return cocoaUtils::textFromString(startOf(start, start.size()) + u'…' + endOf(end, end.size()));
}

/// What the titles of the menus' entries are made of: each text as fields show it, cut to so many units.
/// Since what an entry has besides the others is one of the texts, entries stay different however short they
/// are. What an entry does is not cut.
audioTags recordToShow(const audioTags& record, qsizetype most) {
    constexpr std::array<SvxStringRef audioTags::*, 5> texts = {
        &audioTags::mp3SongTitleString, &audioTags::mp3ArtistString, &audioTags::mp3AlbumString,
        &audioTags::mp3ComposerString, &audioTags::mp3Genre2String};
    audioTags cut;
    cut.mp3Year = record.mp3Year;
    cut.mp3TheTrack = record.mp3TheTrack;
    for (const auto text : texts) {
        if (SvxStringIsValid(record.*text)) {
            cut.*text = cutInTheMiddle(withoutTerminators(record.*text), most);
        }
    }
    return cut;
}

void removeEntries(PullDownButton* menu) {
    while (menu->numberOfItems() >= 2) {
        menu->removeItemAtIndex(1);
    }
}

} // namespace

bool AppController::updateValuesForNewPath(const QString& path) {
    const QString& chosen = reading_ ? reading_->path : lastPath;
    if (path.isNull() || (!chosen.isNull() && path == chosen)) {
        return false;
    }
    return readAndShow(path);
}

bool AppController::readAndShow(const QString& path) {
    startReading(path);
    const std::shared_ptr<const FileReading> reading = reading_;
    if (!sideWork_.mustWaitItsTurn(readingJob_)) {
        const bool isLast = toOpen_.size() <= 1;
        sideWork_.waitUntil([this] { return !reading_ && !isIconDue_; },
                            isLast ? SideWork::Patience::usual : SideWork::Patience::little);
    }
    if (reading_ && !reading_->isLeft && !sideWork_.isWaiting()) {
        showUnread();
    }
    return (reading->hasEnded ? reading->file.type : amdAudioFileTypeOfName(reading->text)) != amdTypeNone;
}

/// The file shown is read again at once.
void AppController::setReadByStandard(bool isByStandard) {
    defaults_->set(readsTagsByStandard, isByStandard ? 1 : 0);
    const QString path = reading_ ? reading_->path : lastPath;
    if (!path.isNull()) {
        readAndShow(path);
    }
}

TagReading AppController::tagReading() const {
    return defaults_->integer(readsTagsByStandard) != 0 ? TagReading::byStandard : TagReading::usual;
}

bool AppController::acceptPath(std::int32_t type) {
    currentItemType = type;
    return currentItemType != amdTypeNone;
}

/// What was chosen before is of no interest any more; how long it takes to notice that is its own affair.
void AppController::startReading(const QString& path) {
    endReading();
    reading_ = std::make_shared<FileReading>(path, tagReading());
    const auto hasEnded = [this] {
        reading_->hasEnded = true;
        showReading();
    };
    readingJob_ = sideWork_.start(
        reading_->hostPath.path, [reading = reading_] { reading->run(); }, hasEnded);
    readingTimer_.start();
}

void AppController::endReading() {
    if (reading_) {
        reading_->progress.isWanted = false;
        sideWork_.forget(readingJob_);
        reading_ = nullptr;
    }
    if (hiddenTexts_) {
        hiddenTexts_->isWanted = false;
        sideWork_.forget(hiddenTextsJob_);
        hiddenTexts_ = nullptr;
    }
    readingTimer_.stop();
    followStatusField->setFile(QString());
}

/// Shows how far the reading has come. Its result does not change menus while somebody chooses from one.
void AppController::showReading() {
    const bool isChoosing = QApplication::activePopupWidget() != nullptr;
    if (reading_->hasEnded) {
        if (!reading_->isLeft || !isChoosing) {
            showRead();
        }
        return;
    }
    if (!reading_->isLeft) {
        showUnread();
    }
    const auto size = static_cast<double>(reading_->progress.size);
    const auto position = static_cast<double>(reading_->progress.position);
    if (size > 0) {
        shownAttributes_ = {true, reading_->progress.size};
        cocoaUtils::setStringValue(fileSizeField, panelFileSize({true, reading_->progress.size}));
    }
    followStatusField->setFile(
        position > 0 && position < size
            ? QStringLiteral("Reading… %1%").arg(static_cast<int>(100 * position / size))
            : QStringLiteral("Reading…"));
}

void AppController::showUnread() {
    reading_->isLeft = true;
    showName(reading_->path);
    shownAttributes_ = {};
    isFileRead_ = false;
    cocoaUtils::setStringValue(fileSizeField, nullptr);
    acceptPath(amdAudioFileTypeOfName(reading_->text));
    clearFacts();
    fileIconField->setIcon(drawnIcon(DrawnIcon::music));
    finishUpdate();
    showReading();
}

void AppController::showRead() {
    const std::shared_ptr<FileReading> reading = reading_;
    endReading();
    if (!reading->isLeft) {
        showName(reading->path);
    }
    shownAttributes_ = reading->file.attributes;
    isFileRead_ = reading->file.isRead();
    cocoaUtils::setStringValue(fileSizeField, panelFileSize(shownAttributes_));
    acceptPath(reading->file.type);
    currentItem = std::move(reading->file.record);
    if (isFileRead_) {
        showFacts(reading->cover.get());
        if (reading->path == openedPath_) {
            rememberOpened();
        }
    } else {
        clearFacts();
    }
    followStatusField->setFile(QString::fromStdString(reading->failure));
    const auto* decoded = dynamic_cast<const QtPicture*>(reading->cover.get());
    if (decoded != nullptr) {
        fileIconField->setImage(decoded->image(), decoded->pixels());
    } else {
        showIcon(reading->icon);
    }
    finishUpdate();
    if (isFileRead_ && reading->tags == TagReading::usual && mayHideTexts(currentItemType, currentItem)) {
        lookForHiddenTexts(*reading);
    }
}

/// Beside the window as well, and once the file is shown: nobody waits for it.
void AppController::lookForHiddenTexts(const FileReading& reading) {
    const auto progress = std::make_shared<ReadProgress>();
    const auto isFound = std::make_shared<bool>(false);
    const auto look = [text = reading.text, progress, isFound, shown = textsIn(currentItem)] {
        *isFound = hidesTexts(text, shown, progress.get());
    };
    const auto tell = [this, progress, isFound] {
        if (*isFound && progress == hiddenTexts_) {
            followStatusField->setFile(
                QStringLiteral("This tag has texts that are shown only when read by its standard"));
        }
    };
    hiddenTexts_ = progress;
    hiddenTextsJob_ = sideWork_.start(reading.hostPath.path, look, tell);
}

/// The theme may be on a disk that is slower than the file's.
void AppController::showIcon(const FileIcon& wanted) {
    const IconTheme theme = IconTheme::current();
    const std::optional<QImage> icon = knownIcon(wanted, theme);
    fileIconField->setIcon(icon.value_or(drawnIcon(wanted.drawn)));
    if (icon) {
        return;
    }
    const auto show = [this, wanted, theme, path = lastPath] {
        isIconDue_ = false;
        const std::optional<QImage> found = knownIcon(wanted, theme);
        if (found && path == lastPath && !fileIconField->showsImage()) {
            fileIconField->setIcon(*found);
        }
    };
    isIconDue_ = true;
    sideWork_.start(
        theme.folders.value(0).toStdString(), [wanted, theme] { lookUpIcon(wanted, theme); }, show);
}

/// From here on the record is empty, until the file has been read. A menu that was opened for the file before
/// is closed: what is chosen from it would be done with another one.
void AppController::showName(const QString& path) {
    while (QWidget* popup = QApplication::activePopupWidget()) {
        if (!popup->close()) {
            break;
        }
    }
    lastPath = path;
    amdReleaseAudioMetaData(&currentItem);
    currentItem = audioTags();
    const SvxStringRef text = cocoaUtils::textFromString(path);
    cocoaUtils::setStringValue(fileNameField, feLastPathComponent(text));
    fileNameField->setFixedToolTip(path);
    myWindow->setWindowTitle(asWindowTitle(cocoaUtils::stringFromText(panelWindowTitle(text))));
}

void AppController::finishUpdate() {
    setupFindInShelvixMenu();
    setupRenameMenu();
    noteWhyMenusAreEmpty();
    enableTwitterButton();
    updateCommands();
    showFollowStatus();
}

void AppController::clearFacts() {
    for (const FactField& field : factFields_) {
        cocoaUtils::setStringValue(field.value, nullptr);
    }
    showLyricsText(panelLyrics(audioTags()));
    enableLyrics(false);
}

void AppController::enableLyrics(bool isEnabled) {
    lyricsButton->setEnabled(isEnabled);
    command("lyricsAction")->setEnabled(isEnabled);
}

void AppController::showFacts(const HostPicture* cover) {
    enableLyrics(hasLyrics(currentItem));
    showLyricsText(panelLyrics(currentItem));
    for (const FactField& field : factFields_) {
        cocoaUtils::setStringValue(field.value, field.fact->text(currentItem, cover));
    }
}

/// Far more than any song has is cut, and a line that is far too long: laying them out would hold the window
/// up.
void AppController::showLyricsText(const SvxStringRef& lyrics) {
    if (lyricsText == nullptr) {
        return; // the window takes them when it is made
    }
    constexpr SvxIndex mostShown = 200000;
    QString shown = cocoaUtils::stringFromText(lyrics, mostShown);
    shown.truncate(lengthToShow(shown));
    const SvxIndex length = SvxStringGetLength(lyrics);
    if (length > shown.size()) {
        shown += QStringLiteral("\n\n[Cut here: %1 of %2 characters are shown.]")
                     .arg(QLocale().toString(shown.size()), QLocale().toString(qlonglong{length}));
    }
    lyricsText->setPlainText(shown);
}

void AppController::setupFindInShelvixMenu() {
    removeEntries(findInShelvixPopup);
    for (const FindKey key : findKeys(currentItem)) {
        const auto title = [this, key](qsizetype most) {
            return cocoaUtils::stringFromText(findEntryTitle(key, recordToShow(currentItem, most)));
        };
        findInShelvixPopup->addItemWithTitle(title, [this, key] { find(key); });
    }
}

void AppController::setupRenameMenu() {
    removeEntries(renamePopup);
    for (const RenamePattern pattern : renamePatterns(currentItem)) {
        const auto title = [this, pattern](qsizetype most) {
            const audioTags cut = recordToShow(currentItem, most);
            return cocoaUtils::stringFromText(renameEntryTitle(pattern, cut, currentItemType));
        };
        renamePopup->addItemWithTitle(title, [this, pattern] { rename(pattern); });
    }
}

void AppController::enableTwitterButton() {
    twitterButton->setEnabled(canTellTwitter(currentItem));
    command("twitterAction")->setEnabled(canTellTwitter(currentItem));
}

SvxStringRef AppController::currentSuffix() const {
    return SvxStringFromCString(suffixForType(currentItemType));
}

} // namespace sonarin
