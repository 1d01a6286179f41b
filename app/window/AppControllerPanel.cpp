// SPDX-License-Identifier: MIT
// The information panel: what it shows for a path.
#include "app/panelTexts.h"
#include "app/window/AppController.h"
#include "app/window/cocoaUtils.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileIcon.h"
#include "platform/desktop/qtPicture.h"
#include "text/stringEngine.h"

#include <QLocale>

namespace sonarin {

namespace {

/// A window title takes "[*]" for the mark of a changed document, unless it is doubled.
QString asWindowTitle(QString title) {
    return withVisibleControls(title.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

void removeEntries(PullDownButton* menu) {
    while (menu->numberOfItems() >= 2) {
        menu->removeItemAtIndex(1);
    }
}

} // namespace

bool AppController::updateValuesForNewPath(const QString& path) {
    if (path.isNull() || (!lastPath.isNull() && path == lastPath)) {
        return false;
    }
    lastPath = path;
    amdReleaseAudioMetaData(&currentItem);
    currentItem = audioTags();

    const SvxStringRef text = cocoaUtils::textFromString(path);
    cocoaUtils::setStringValue(fileNameField, feLastPathComponent(text));
    fileNameField->setFixedToolTip(path);
    myWindow->setWindowTitle(asWindowTitle(cocoaUtils::stringFromText(panelWindowTitle(text))));
    FSRef ref;
    const HostFileAttributes attributes =
        feMakeFSRefFromPath(text, &ref) == fileNoErr ? hostFileAttributes(ref.path) : HostFileAttributes();
    cocoaUtils::setStringValue(fileSizeField, panelFileSize(attributes));

    const bool isAudio = acceptPath(path);
    // Only regular files are opened: opening a FIFO would wake the program that waits at its other end.
    if (isAudio && attributes.isRegular && amdGetAudioMetaDataForFile(text, &currentItem) == 0) {
        showFacts();
    } else {
        clearFacts();
        fileIconField->setIcon(iconForFile(path));
    }
    finishUpdate();
    return isAudio;
}

bool AppController::acceptPath(const QString& path) {
    currentItemType = amdAudioFileType(cocoaUtils::textFromString(path));
    return currentItemType != amdTypeNone;
}

void AppController::finishUpdate() {
    setupFindInShelvixMenu();
    setupRenameMenu();
    enableTwitterButton();
}

void AppController::clearFacts() {
    for (ValueLabel* field :
         {id3DurationField, id3BitrateEtcField, id3SongTitleField, id3ArtistField, id3AlbumField,
          id3YearField, id3ComposerField, id3EncoderAppField, id3GenreField, id3CommentField,
          id3TrackNumberField, coverArtDetailsField, id3ChannelsField, id3TagVersionField}) {
        cocoaUtils::setStringValue(field, nullptr);
    }
    showLyricsText(panelLyrics(audioTags()));
    lyricsButton->setEnabled(false);
}

void AppController::showFacts() {
    lyricsButton->setEnabled(hasLyrics(currentItem));
    showLyricsText(panelLyrics(currentItem));
    const PanelFacts facts = panelFacts(currentItem);
    cocoaUtils::setStringValue(id3DurationField, facts.id3DurationField);
    cocoaUtils::setStringValue(id3SongTitleField, facts.id3SongTitleField);
    cocoaUtils::setStringValue(id3ArtistField, facts.id3ArtistField);
    cocoaUtils::setStringValue(id3AlbumField, facts.id3AlbumField);
    cocoaUtils::setStringValue(id3YearField, facts.id3YearField);
    cocoaUtils::setStringValue(id3ComposerField, facts.id3ComposerField);
    cocoaUtils::setStringValue(id3EncoderAppField, facts.id3EncoderAppField);
    cocoaUtils::setStringValue(id3GenreField, facts.id3GenreField);
    cocoaUtils::setStringValue(id3CommentField, facts.id3CommentField);
    cocoaUtils::setStringValue(id3TagVersionField, facts.id3TagVersionField);
    cocoaUtils::setStringValue(id3TrackNumberField, facts.id3TrackNumberField);
    cocoaUtils::setStringValue(id3BitrateEtcField, facts.id3BitrateEtcField);
    cocoaUtils::setStringValue(id3ChannelsField, facts.id3ChannelsField);
    showCover();
}

void AppController::showCover() {
    const std::unique_ptr<HostPicture> picture = amdGetCoverArt(currentItem);
    cocoaUtils::setStringValue(coverArtDetailsField, panelCoverDetails(currentItem, picture.get()));
    const auto* decoded = dynamic_cast<const QtPicture*>(picture.get());
    if (decoded != nullptr) {
        fileIconField->setImage(decoded->image());
    } else {
        fileIconField->setIcon(iconForFile(lastPath));
    }
}

/// Far more than any song has is cut: laying out megabytes would hold the window up.
void AppController::showLyricsText(const SvxStringRef& lyrics) {
    constexpr SvxIndex mostShown = 200000;
    QString shown = cocoaUtils::stringFromText(lyrics, mostShown);
    const SvxIndex length = SvxStringGetLength(lyrics);
    if (length > mostShown) {
        shown += QStringLiteral("\n\n[Cut here: %1 of %2 characters are shown.]")
                     .arg(QLocale().toString(qlonglong{mostShown}), QLocale().toString(qlonglong{length}));
    }
    lyricsText->setPlainText(shown);
}

void AppController::setupFindInShelvixMenu() {
    removeEntries(findInShelvixPopup);
    for (const FindKey key : findKeys(currentItem)) {
        findInShelvixPopup->addItemWithTitle(cocoaUtils::stringFromText(findEntryTitle(key, currentItem)),
                                             [this, key] { find(key); });
    }
}

void AppController::setupRenameMenu() {
    removeEntries(renamePopup);
    for (const RenamePattern pattern : renamePatterns(currentItem)) {
        renamePopup->addItemWithTitle(
            cocoaUtils::stringFromText(renameEntryTitle(pattern, currentItem, currentItemType)),
            [this, pattern] { rename(pattern); });
    }
}

void AppController::enableTwitterButton() {
    twitterButton->setEnabled(canTellTwitter(currentItem));
}

SvxStringRef AppController::currentSuffix() const {
    return SvxStringFromCString(suffixForType(currentItemType));
}

} // namespace sonarin
