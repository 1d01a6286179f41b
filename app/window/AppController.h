// SPDX-License-Identifier: MIT
#pragma once

#include "app/findMenu.h"
#include "app/renameMenu.h"
#include "app/window/ConnectWindow.h"
#include "app/window/FileReading.h"
#include "app/window/PictureView.h"
#include "app/window/PullDownButton.h"
#include "app/window/ValueLabel.h"
#include "engine/audioMetaData.h"
#include "platform/desktop/selectionSources.h"
#include "platform/desktop/sideWork.h"
#include "platform/desktop/userDefaults.h"

#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QMainWindow>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QStandardPaths>
#include <QTextBrowser>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>

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
    /// Stores the audio type, and answers whether it is one.
    bool acceptPath(std::int32_t type);
    void setupFindInShelvixMenu();
    void setupRenameMenu();
    void enableTwitterButton();
    [[nodiscard]] SvxStringRef currentSuffix() const;

    // --- renaming -----------------------------------------------------------------------------------------
    /// Renames the file in its folder; false, and nothing changed, when it is gone or the name is refused.
    /// For any thread.
    static bool renameFileAtPath(const QString& path, const SvxStringRef& newName);

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
    void copy();
    void pastePath();
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

    void pullDownFindMenu() { findInShelvixPopup->showMenu(); }
    void pullDownRenameMenu() { renamePopup->showMenu(); }
    void pullDownEditTagsMenu() { editTagsPopup->showMenu(); }

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
    ValueLabel* readingField = nullptr;
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
    QComboBox* syncMenu = nullptr;
    QLabel* followStatusField = nullptr;
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

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void loadInterface();
    void loadLyricsWindow();
    void loadHelpWindow();
    void connectActions(QObject* interface);
    void callAction(const QByteArray& method);
    void awakeFromNib();
    void useForSync(SyncKind kind);
    void startFollowing();
    [[nodiscard]] SelectionSources::Question question() const;
    [[nodiscard]] SelectionSources::Paths querySource();
    void startReading(const QString& path);
    void endReading();
    void showReading();
    void showRead();
    void showUnread();
    void showName(const QString& path);
    void showIcon(const QStringList& names);
    void clearFacts();
    void showFacts(const HostPicture* cover);
    void showLyricsText(const SvxStringRef& lyrics);
    void finishUpdate();
    void enableLyrics(bool isEnabled);
    bool takeDropped(const QMimeData* data);
    void rename(RenamePattern pattern);
    void find(FindKey key);
    void withShownItem(const std::function<void(const std::string& path)>& then);
    void editWith(std::uint32_t creator, const QString& failure);
    void showAlert(const QString& title);
    void addInstalledEditors();

    SelectionSources* sources_;
    UserDefaults* defaults_;
    std::function<bool()> hasWayBack_;
    QAction* lyricsAction_ = nullptr;
    QAction* twitterAction_ = nullptr;
    std::unique_ptr<QMainWindow> mainWindow_;
    std::unique_ptr<QWidget> lyricsWindowOwner_;
    std::unique_ptr<QWidget> helpWindowOwner_;
    std::unique_ptr<ConnectWindow> connectWindow_;
    QElapsedTimer following_; ///< since the source was chosen
    QList<QByteArray> toOpen_;
    bool isRenaming_ = false;
    std::deque<std::function<void()>> later_;
    QString openFolder_ = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);

    std::shared_ptr<FileReading> reading_; ///< of the path chosen last; none once it is shown
    SideWork::JobRef readingJob_;
    bool isIconDue_ = false; ///< is being looked up
    QTimer readingTimer_;    ///< runs while a file goes on being read by itself
    SideWork sideWork_;
};

} // namespace sonarin
