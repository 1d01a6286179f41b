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
#include <array>

namespace sonarin {

namespace {

struct FactField {
    ValueLabel* AppController::*field;
    SvxStringRef PanelFacts::*text;
};

/// All fact fields but the cover's, whose text needs the picture.
constexpr std::array<FactField, 13> factFields = {{
    {&AppController::id3DurationField, &PanelFacts::id3DurationField},
    {&AppController::id3SongTitleField, &PanelFacts::id3SongTitleField},
    {&AppController::id3ArtistField, &PanelFacts::id3ArtistField},
    {&AppController::id3AlbumField, &PanelFacts::id3AlbumField},
    {&AppController::id3YearField, &PanelFacts::id3YearField},
    {&AppController::id3ComposerField, &PanelFacts::id3ComposerField},
    {&AppController::id3EncoderAppField, &PanelFacts::id3EncoderAppField},
    {&AppController::id3GenreField, &PanelFacts::id3GenreField},
    {&AppController::id3CommentField, &PanelFacts::id3CommentField},
    {&AppController::id3TagVersionField, &PanelFacts::id3TagVersionField},
    {&AppController::id3TrackNumberField, &PanelFacts::id3TrackNumberField},
    {&AppController::id3BitrateEtcField, &PanelFacts::id3BitrateEtcField},
    {&AppController::id3ChannelsField, &PanelFacts::id3ChannelsField},
}};

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
    for (const FactField& fact : factFields) {
        cocoaUtils::setStringValue(this->*fact.field, nullptr);
    }
    cocoaUtils::setStringValue(coverArtDetailsField, nullptr);
    showLyricsText(panelLyrics(audioTags()));
    lyricsButton->setEnabled(false);
}

void AppController::showFacts() {
    lyricsButton->setEnabled(hasLyrics(currentItem));
    showLyricsText(panelLyrics(currentItem));
    const PanelFacts facts = panelFacts(currentItem);
    for (const FactField& fact : factFields) {
        cocoaUtils::setStringValue(this->*fact.field, facts.*fact.text);
    }
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
