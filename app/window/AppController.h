// SPDX-License-Identifier: MIT
#pragma once

#include "app/findMenu.h"
#include "app/panelTexts.h"
#include "app/renameMenu.h"
#include "app/window/ConnectWindow.h"
#include "app/window/FileReading.h"
#include "app/window/FootLine.h"
#include "app/window/PictureView.h"
#include "app/window/PullDownButton.h"
#include "app/window/RecentFiles.h"
#include "app/window/SourceList.h"
#include "app/window/ValueLabel.h"
#include "engine/audioMetaData.h"
#include "platform/desktop/desktopPrograms.h"
#include "platform/desktop/selectionSources.h"
#include "platform/desktop/sessionBus.h"
#include "platform/desktop/sideWork.h"
#include "platform/desktop/userDefaults.h"

#include <QActionGroup>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace sonarin {

/// The one controller of the main window: it loads the interface files, follows the chosen source, fills the
/// panel for every new path, and carries out what the window's menus and buttons ask for. The methods without
/// arguments that stand under "actions" are called by name from the interface files.
///
/// Everything here belongs to the window's thread; what may hang on a disk is done beside it (see SideWork).
class AppController : public QObject {
    Q_OBJECT

public:
    /// `sources` and `defaults` must outlive the controller.
    AppController(SelectionSources* sources, UserDefaults* defaults, QObject* parent = nullptr);
    AppController(const AppController&) = delete;
    AppController& operator=(const AppController&) = delete;
    ~AppController() override;

    /// Says whether anything could bring a closed window back; where nothing can, closing it quits.
    void setWayBack(std::function<bool()> hasWayBack) { hasWayBack_ = std::move(hasWayBack); }

    /// The bus on which file managers are asked; must outlive the controller.
    void setSessionBus(const SessionBus* bus) { bus_ = bus; }
    /// Says something in the window's quiet line.
    void say(const QString& text) { followStatusField->say(text); }

    // --- files from outside -------------------------------------------------------------------------------
    bool applicationOpenFile(const QString& path);
    /// Opens one file after the other, behind those that are still to be opened.
    void openFiles(const QList<QByteArray>& paths);
    /// A request that hands over a path, or a "file:" URI, as plain text.
    void openFileUserDataError(const QMimeData* pasteboard);
    bool applicationShouldHandleReopenHasVisibleWindows(bool hasVisibleWindows);
    static bool applicationShouldTerminateAfterLastWindowClosed();

    // --- the panel ----------------------------------------------------------------------------------------
    /// Fills the window for the path (its bytes that are no UTF-8 as U+DC80 to U+DCFF). False for a null
    /// path, the path shown last, and what is no audio file.
    ///
    /// A file that has not been read after 100 ms goes on by itself: the window then shows its name, and the
    /// rest when it has been read; until then its name alone says whether it is an audio file. During that
    /// time the window's events go on, with the file before still shown, and a newer path takes this one's
    /// place.
    bool updateValuesForNewPath(const QString& path);
    /// How tags are read, as the user chose and is remembered.
    [[nodiscard]] TagReading tagReading() const;
    /// Whether a file is still being read.
    [[nodiscard]] bool isReading() const { return reading_ != nullptr; }
    /// Stores the audio type, and answers whether it is one.
    bool acceptPath(std::int32_t type);
    void setupFindInShelvixMenu();
    void setupRenameMenu();
    void enableTwitterButton();
    [[nodiscard]] SvxStringRef currentSuffix() const;

    // --- renaming -----------------------------------------------------------------------------------------
    /// Renames the file in its folder; false, and nothing changed, when it is gone or the name is refused.
    /// `*result` gets what feRenameFolder answers. For any thread.
    static bool renameFileAtPath(const QString& path, const SvxStringRef& newName, std::int32_t* result);

    // --- following ----------------------------------------------------------------------------------------
    void updateSelection();
    void takeAnswer();
    /// Says at the window's foot what is followed.
    void showFollowStatus();
    SelectionSources::Paths getFinderSelection();
    SelectionSources::Paths getITunesSelection();
    SelectionSources::Paths getITunesCurrentSong();
    bool isITunesRunning();

public slots:
    // --- actions ------------------------------------------------------------------------------------------
    void useFinderForSync() { useForSync(finderSelection); }
    void useiTunesSelectionForSync() { useForSync(iTunesSelection); }
    void useCurrentiTunesSongForSync() { useForSync(iTunesCurrentSong); }
    void showMainWindow();
    void showConnectors();
    void openDocument();
    void pastePath();
    /// As pastePath, for a program that may just have been started or is not in use.
    void showPastedPath();
    void performClose();
    void terminate();

    void renameToSongTitle() { rename(RenamePattern::songTitle); }
    void renameToTrackNumSongTitle() { rename(RenamePattern::trackNumSongTitle); }
    void renameToArtistSong() { rename(RenamePattern::artistSong); }
    void renameToArtistAlbumSong() { rename(RenamePattern::artistAlbumSong); }

    void svxFindSong() { find(FindKey::song); }
    void svxFindAlbum() { find(FindKey::album); }
    void svxFindArtist() { find(FindKey::artist); }
    void svxFindYear() { find(FindKey::year); }
    void svxFindGenre() { find(FindKey::genre); }
    void svxFindComposer() { find(FindKey::composer); }

    void editWithMediaRage();
    void editWithTheTagger();
    void editWithID3X();

    void showLyrics();
    void sendToTwitter();
    void showHelp();
    void poweredByShelvix();
    void donate();

    void pullDownFindMenu() { findInShelvixPopup->pullDown(); }
    void pullDownRenameMenu() { renamePopup->pullDown(); }
    void pullDownEditTagsMenu() { editTagsPopup->pullDown(); }

    void copy();
    void copyAll();
    void copyPath();
    void copyPicture();
    void savePicture();
    void showPicture();
    void showInFinder();
    void showAbout();
    void setKeptOnTop(bool isKept);
    void setReadByStandard(bool isByStandard);

public:
    // --- outlets, made by the interface files
    // ---------------------------------------------------------------
    QMainWindow* myWindow = nullptr;
    PictureView* fileIconField = nullptr;
    ValueLabel* fileNameField = nullptr;
    ValueLabel* fileSizeField = nullptr;
    ValueLabel* id3DurationField = nullptr;
    ValueLabel* id3BitrateEtcField = nullptr;
    ValueLabel* id3SongTitleField = nullptr;
    ValueLabel* id3ArtistField = nullptr;
    ValueLabel* id3AlbumField = nullptr;
    ValueLabel* id3YearField = nullptr;
    ValueLabel* id3ComposerField = nullptr;
    ValueLabel* id3EncoderAppField = nullptr;
    ValueLabel* id3GenreField = nullptr;
    ValueLabel* id3CommentField = nullptr;
    ValueLabel* id3TrackNumberField = nullptr;
    ValueLabel* coverArtDetailsField = nullptr;
    ValueLabel* id3ChannelsField = nullptr;
    ValueLabel* id3TagVersionField = nullptr;
    QCheckBox* syncCheckbox = nullptr;
    SourceList* syncMenu = nullptr;
    FootLine* followStatusField = nullptr;
    PullDownButton* findInShelvixPopup = nullptr;
    PullDownButton* renamePopup = nullptr;
    PullDownButton* editTagsPopup = nullptr;
    QPushButton* lyricsButton = nullptr;
    QPushButton* twitterButton = nullptr;
    // Those of the other windows are null until their window is shown for the first time.
    QWidget* lyricsWindow = nullptr;
    QPlainTextEdit* lyricsText = nullptr;
    QWidget* helpWindow = nullptr;
    QTextBrowser* helpWebView = nullptr;

    // --- state
    // ----------------------------------------------------------------------------------------------
    QTimer* gUpdateTimer = nullptr;
    QString lastPath;                           ///< null before the first file
    audioTags currentItem;                      ///< of the file at lastPath
    std::int32_t currentItemType = amdTypeNone; ///< an AudioFileType
    std::int32_t syncType = finderSelection;    ///< a SyncKind

    /// The sources to follow, as they are stored.
    enum SyncKind : std::int32_t { finderSelection = 5, iTunesSelection = 6, iTunesCurrentSong = 7 };

private slots:
    void openNext();
    void doLater();
    void updateCommands();
    void lookForEditors();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void loadInterface();
    void loadLyricsWindow();
    void loadHelpWindow();
    void connectActions(QObject* interface);
    void callAction(const QByteArray& method);
    void awakeFromNib();
    void setUpMenus();
    void setUpFollowing();
    void useForSync(SyncKind kind);
    void chooseSyncItem(int index);
    void showSyncKind();
    void startFollowing();
    [[nodiscard]] SelectionSources::Question question() const;
    [[nodiscard]] SelectionSources::Paths querySource();
    bool readAndShow(const QString& path);
    void startReading(const QString& path);
    void endReading();
    void showReading();
    void showRead();
    void showUnread();
    void lookForHiddenTexts(const FileReading& reading);
    void showName(const QString& path);
    void showIcon(const FileIcon& wanted);
    void clearFacts();
    void showFacts(const HostPicture* cover);
    void showLyricsText(const SvxStringRef& lyrics);
    void finishUpdate();
    void enableLyrics(bool isEnabled);
    bool takeDropped(const QMimeData* data);
    [[nodiscard]] bool isOurOwn(const QDropEvent* drop) const;
    void showValueMenu(ValueLabel* value, const QPoint& place);
    void addFileCommands(QMenu* menu) const;
    void showPictureMenu(const QPoint& place);
    struct TakenPicture {
        std::vector<std::uint8_t> bytes;
        SvxStringRef audioPath;
        QString name;
    };
    [[nodiscard]] TakenPicture takePicture() const;
    QString fileToDrag();
    void dragPicture();
    void noteOpened(const QString& path);
    void rememberOpened();
    void keepOnTopIfWanted(QWidget* window) const;
    void showFocus();
    void noteWhyMenusAreEmpty();
    [[nodiscard]] QAction* command(const char* name) const;
    void rename(RenamePattern pattern);
    void find(FindKey key);
    void openLink(const std::string& url);
    void openShownItem(const std::function<bool(const std::string& path)>& open, const QString& failure);
    void editWith(std::uint32_t creator, const QString& failure);
    void showAlert(const QString& title);
    void addInstalledEditors();

    struct FactField {
        const PanelFact* fact;
        ValueLabel* value;
    };
    std::vector<FactField> factFields_;

    SelectionSources* sources_;
    UserDefaults* defaults_;
    std::function<bool()> hasWayBack_;
    const SessionBus* bus_ = nullptr;
    std::unique_ptr<QActionGroup> syncKinds_;
    std::unique_ptr<RecentFiles> recentFiles_;
    QTimer pasteTimer_; ///< runs while a path is to be pasted as soon as the window has the keyboard
    int timesDragged_ = 0;
    std::vector<DesktopEditor> editors_;          ///< as they were found last
    std::unique_ptr<QTemporaryDir> draggedFiles_; ///< until the program ends, since they may be taken late
    std::unique_ptr<QMainWindow> mainWindow_;
    std::unique_ptr<QWidget> lyricsWindowOwner_;
    std::unique_ptr<QWidget> helpWindowOwner_;
    std::unique_ptr<QWidget> pictureWindow_;
    std::unique_ptr<ConnectWindow> connectWindow_;
    QElapsedTimer following_; ///< since the source was chosen
    QList<QByteArray> toOpen_;
    bool isRenaming_ = false;
    std::deque<std::function<void()>> later_;
    QString openFolder_ = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);

    std::shared_ptr<FileReading> reading_; ///< of the path chosen last; none once it is shown
    SideWork::JobRef readingJob_;
    std::shared_ptr<ReadProgress> hiddenTexts_; ///< while texts that the file shown hides are looked for
    SideWork::JobRef hiddenTextsJob_;
    QString openedPath_; ///< that was opened, not followed, and is still to be remembered
    HostFileAttributes shownAttributes_;
    bool isFileRead_ = false; ///< the panel shows the record
    bool isIconDue_ = false;  ///< is being looked up
    QTimer readingTimer_;     ///< runs while a file goes on being read by itself
    SideWork sideWork_;
};

} // namespace sonarin
