// SPDX-License-Identifier: MIT
#include "app/window/AppController.h"

#include "app/shownFile.h"
#include "app/window/FollowStatus.h"
#include "app/window/accessibility.h"
#include "app/window/auxiliaryWindow.h"
#include "app/window/cocoaUtils.h"
#include "platform/desktop/desktopPrograms.h"
#include "platform/desktop/fileUri.h"
#include "text/CMMCoreFunctions.h"
#include "text/displayFormat.h"
#include "text/stringEngine.h"
#include "ui_HelpWindow.h"
#include "ui_LyricsWindow.h"
#include "ui_MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMetaMethod>
#include <QTextDocument>
#include <chrono>

namespace sonarin {

namespace {

// Preference keys.
constexpr QLatin1StringView syncKindDefaultKey("syncKindDefaultKey");
constexpr QLatin1StringView finderSync("finderSync");
constexpr QLatin1StringView windowGeometry("windowGeometry");

/// A file that is audio by its Macintosh codes may have any name.
constexpr QLatin1StringView
    openFilters("Audio files (*.mp3 *.m4a *.aac *.m4b *.m4p *.m4r *.wav *.wave *.aif *.aiff);;All files (*)");

/// The item of the menu and the command that stand for a sync kind; item 1 is the line between the others.
struct SyncItem {
    AppController::SyncKind kind;
    int index;
    const char* command;
};
constexpr std::array<SyncItem, 3> syncItems = {{
    {AppController::finderSelection, 0, "followFileManagerAction"},
    {AppController::iTunesCurrentSong, 2, "followTrackAction"},
    {AppController::iTunesSelection, 3, "followPlayerAction"},
}};

/// The path that a text is meant for.
QString pathFromText(const QString& text) {
    const auto path = pathOfFileUri(text);
    return path ? cocoaUtils::pathText(*path) : text;
}

/// Accepts a drop as a copy whatever is proposed: after a move its source would delete what was dragged.
void acceptCopy(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

/// The files on this computer of a drop or of a file manager's copy.
QList<QByteArray> filesIn(const QMimeData* data) {
    QList<QByteArray> paths;
    for (const QUrl& url : data != nullptr ? data->urls() : QList<QUrl>()) {
        const auto path = pathOfFileUri(QString::fromUtf8(url.toEncoded()));
        if (path) {
            paths.append(*path);
        }
    }
    return paths;
}

/// Not a link to the web, which comes as text as well.
bool isForUs(const QMimeData* data) {
    return data->hasUrls() ? !filesIn(data).isEmpty() : data->hasText();
}

} // namespace

AppController::AppController(SelectionSources* sources, UserDefaults* defaults, QObject* parent)
    : QObject(parent), sources_(sources), defaults_(defaults) {
    initStringBundle(SvxStringFromCString(bundleIdentifier));
    svxStringInitString();
    describeToScreenReaders();
    loadInterface();
    awakeFromNib();
}

AppController::~AppController() {
    disconnect(qApp, nullptr, this, nullptr); // the focus still changes while the window goes
    endReading();
    defaults_->keep(windowGeometry, myWindow->saveGeometry());
}

void AppController::loadInterface() {
    mainWindow_ = std::make_unique<QMainWindow>();
    myWindow = mainWindow_.get();
    Ui::MainWindow main;
    main.setupUi(myWindow);
    main.panelView->adopt();
    fileIconField = main.fileIconField;
    fileNameField = main.fileNameField;
    fileSizeField = main.fileSizeField;
    for (const PanelFact& fact : panelFacts()) {
        factFields_.push_back({&fact, main.panelView->valueOf(fact)});
    }
    const auto value = [&main](const char* name) {
        return main.panelView->findChild<ValueLabel*>(QLatin1StringView(name));
    };
    id3DurationField = value("id3DurationField");
    id3BitrateEtcField = value("id3BitrateEtcField");
    id3SongTitleField = value("id3SongTitleField");
    id3ArtistField = value("id3ArtistField");
    id3AlbumField = value("id3AlbumField");
    id3YearField = value("id3YearField");
    id3ComposerField = value("id3ComposerField");
    id3EncoderAppField = value("id3EncoderAppField");
    id3GenreField = value("id3GenreField");
    id3CommentField = value("id3CommentField");
    id3TrackNumberField = value("id3TrackNumberField");
    coverArtDetailsField = value("coverArtDetailsField");
    id3ChannelsField = value("id3ChannelsField");
    id3TagVersionField = value("id3TagVersionField");
    syncCheckbox = main.syncCheckbox;
    syncMenu = main.syncMenu;
    followStatusField = main.followStatusField;
    findInShelvixPopup = main.findInShelvixPopup;
    renamePopup = main.renamePopup;
    editTagsPopup = main.editTagsPopup;
    lyricsButton = main.lyricsButton;
    twitterButton = main.twitterButton;

    connectActions(myWindow);
}

void AppController::loadLyricsWindow() {
    if (lyricsWindow != nullptr) {
        return;
    }
    lyricsWindowOwner_ = std::make_unique<QWidget>();
    lyricsWindow = lyricsWindowOwner_.get();
    Ui::LyricsWindow lyrics;
    lyrics.setupUi(lyricsWindow);
    lyricsText = lyrics.lyricsText;
    lyricsText->document()->setDocumentMargin(12);
    closeByKey(lyricsWindow);
}

void AppController::loadHelpWindow() {
    if (helpWindow != nullptr) {
        return;
    }
    helpWindowOwner_ = std::make_unique<QWidget>();
    helpWindow = helpWindowOwner_.get();
    Ui::HelpWindow help;
    help.setupUi(helpWindow);
    helpWebView = help.helpWebView;
    connect(helpWebView, &QTextBrowser::anchorClicked, this,
            [this](const QUrl& link) { openLink(link.toEncoded().toStdString()); });
    closeByKey(helpWindow);
}

/// A button or command with the property "action" calls the method of that name; a menu has lists of titles
/// and methods.
void AppController::connectActions(QObject* interface) {
    const auto connectOne = [this](auto* sender, auto signal) {
        const QByteArray method = sender->property("action").toByteArray();
        if (!method.isEmpty()) {
            connect(sender, signal, this, [this, method] { callAction(method); });
        }
    };
    for (auto* action : interface->findChildren<QAction*>()) {
        connectOne(action, &QAction::triggered);
    }
    for (auto* button : interface->findChildren<QAbstractButton*>()) {
        connectOne(button, &QAbstractButton::clicked);
    }
    for (auto* menu : interface->findChildren<PullDownButton*>()) {
        const QStringList methods = menu->property("itemActions").toStringList();
        const QStringList titles = menu->property("itemTitles").toStringList();
        qsizetype next = 0;
        for (const QString& title : titles) {
            const QByteArray method = methods.value(next++).toLatin1();
            menu->addItemWithTitle(title, [this, method] { callAction(method); });
        }
    }
}

void AppController::callAction(const QByteArray& method) {
    QMetaObject::invokeMethod(this, method.constData());
}

void AppController::awakeFromNib() {
    defaults_->registerDefault(finderSync, QStringLiteral("1"));
    defaults_->registerDefault(syncKindDefaultKey, static_cast<int>(finderSelection));

    pasteTimer_.setSingleShot(true);
    pasteTimer_.callOnTimeout(this, &AppController::pastePath);
    gUpdateTimer = new QTimer(this);
    gUpdateTimer->callOnTimeout(this, &AppController::updateSelection);
    gUpdateTimer->start(std::chrono::milliseconds(200));
    connect(sources_, &SelectionSources::answered, this, &AppController::takeAnswer, Qt::QueuedConnection);

    setUpFollowing();
    setUpMenus();

    readingTimer_.setInterval(std::chrono::milliseconds(100));
    readingTimer_.callOnTimeout(this, &AppController::showReading);

    connect(editTagsPopup, &PullDownButton::aboutToPullDown, this, &AppController::addInstalledEditors);
    QTimer::singleShot(std::chrono::seconds(1), this, SLOT(lookForEditors()));
    myWindow->restoreGeometry(defaults_->value(windowGeometry).toByteArray());
    myWindow->installEventFilter(this);
    syncCheckbox->setFocus();
    defaults_->whenNotStored(
        [this] { say(QStringLiteral("The settings cannot be stored, and will be forgotten")); });
    showFollowStatus();
    clearFacts();
    constexpr int iconSize = 256;
    fileIconField->setIcon(QApplication::windowIcon().pixmap(iconSize, iconSize).toImage());
    noteWhyMenusAreEmpty();
    enableTwitterButton();
    updateCommands();
}

// --- following --------------------------------------------------------------------------------------------

void AppController::setUpFollowing() {
    syncMenu->insertSeparator(1);
    syncType = defaults_->integer(syncKindDefaultKey);
    const bool isKnown = std::any_of(syncItems.begin(), syncItems.end(),
                                     [this](const SyncItem& item) { return item.kind == syncType; });
    if (!isKnown) {
        syncType = finderSelection;
    }
    syncKinds_ = std::make_unique<QActionGroup>(nullptr);
    for (const SyncItem& item : syncItems) {
        QAction* choose = syncKinds_->addAction(command(item.command));
        connect(choose, &QAction::triggered, this, [this, index = item.index] { chooseSyncItem(index); });
    }
    connect(syncMenu, &QComboBox::activated, this, &AppController::chooseSyncItem);
    showSyncKind();

    syncCheckbox->setChecked(defaults_->integer(finderSync) != 0);
    QAction* follow = command("followAction");
    follow->setChecked(syncCheckbox->isChecked());
    connect(follow, &QAction::toggled, syncCheckbox, &QCheckBox::setChecked);
    connect(syncCheckbox, &QCheckBox::toggled, this, [this, follow](bool isOn) {
        follow->setChecked(isOn);
        defaults_->set(finderSync, isOn ? QStringLiteral("1") : QStringLiteral("0"));
        startFollowing();
        showFollowStatus();
    });
    connect(followStatusField, &QLabel::linkActivated, this, &AppController::showConnectors);
    following_.start();
}

void AppController::chooseSyncItem(int index) {
    for (const SyncItem& chosen : syncItems) {
        if (chosen.index == index) {
            useForSync(chosen.kind);
            showSyncKind();
        }
    }
}

void AppController::showSyncKind() {
    for (const SyncItem& item : syncItems) {
        if (item.kind == syncType) {
            syncMenu->setCurrentIndex(item.index);
            command(item.command)->setChecked(true);
        }
    }
}

void AppController::useForSync(SyncKind kind) {
    syncType = kind;
    startFollowing();
    defaults_->set(syncKindDefaultKey, static_cast<int>(kind));
    updateSelection();
}

/// What was selected while nobody looked is of no interest.
void AppController::startFollowing() {
    sources_->forget();
    following_.start();
}

void AppController::updateSelection() {
    if (!syncCheckbox->isChecked()) {
        return;
    }
    sources_->ask(question());
    takeAnswer();
}

SelectionSources::Question AppController::question() const {
    using Question = SelectionSources::Question;
    return syncType == iTunesSelection     ? Question::playerSelection
           : syncType == iTunesCurrentSong ? Question::trackPlaying
                                           : Question::fileManagerSelection;
}

/// Shows what the chosen source says, unless somebody is choosing from a menu that this would change.
void AppController::takeAnswer() {
    if (!syncCheckbox->isChecked() || QApplication::activePopupWidget() != nullptr) {
        return;
    }
    const SelectionSources::Paths paths = querySource();
    if (paths && paths->size() == 1 && !paths->first().isEmpty()) {
        updateValuesForNewPath(cocoaUtils::pathText(paths->first()));
    }
    showFollowStatus();
}

void AppController::showFollowStatus() {
    constexpr qint64 timeToAnswer = 1000; // milliseconds that programs have before it is said that none does
    QString status;
    if (syncCheckbox->isChecked()) {
        const SelectionSources::Teller teller = sources_->teller(question());
        const bool isNobodyThere = teller.program.isEmpty();
        if (!isNobodyThere || following_.elapsed() > timeToAnswer) {
            status = followStatus(question(), teller, sources_->answer(question()));
        }
    }
    if (!syncCheckbox->isChecked() && lastPath.isNull()) {
        status = QStringLiteral("Drop an audio file here, or turn on Follow");
    }
    followStatusField->setFollowing(status);
}

void AppController::showConnectors() {
    if (!connectWindow_) {
        connectWindow_ = std::make_unique<ConnectWindow>(ConnectorFolders::ofThisUser(), myWindow);
    }
    connectWindow_->refresh();
    connectWindow_->show();
    connectWindow_->activateWindow();
}

SelectionSources::Paths AppController::querySource() {
    switch (syncType) {
    case finderSelection:
        return getFinderSelection();
    case iTunesSelection:
        return getITunesSelection();
    case iTunesCurrentSong:
        return getITunesCurrentSong();
    default:
        return std::nullopt;
    }
}

SelectionSources::Paths AppController::getFinderSelection() {
    SelectionSources::Paths paths = sources_->answer(SelectionSources::Question::fileManagerSelection);
    return paths && paths->isEmpty() ? std::nullopt : paths;
}

SelectionSources::Paths AppController::getITunesSelection() {
    if (!isITunesRunning()) {
        return std::nullopt;
    }
    SelectionSources::Paths paths = sources_->answer(SelectionSources::Question::playerSelection);
    if (!paths || paths->isEmpty()) {
        return std::nullopt;
    }
    paths->removeAll(QByteArray()); // tracks without a file
    return paths;
}

SelectionSources::Paths AppController::getITunesCurrentSong() {
    if (!isITunesRunning()) {
        return std::nullopt;
    }
    SelectionSources::Paths paths = sources_->answer(SelectionSources::Question::trackPlaying);
    if (!paths) {
        return QList<QByteArray>();
    }
    paths->removeAll(QByteArray());
    return paths;
}

bool AppController::isITunesRunning() {
    return sources_->isPlayerRunning();
}

// --- files from outside -----------------------------------------------------------------------------------

bool AppController::applicationOpenFile(const QString& path) {
    showMainWindow();
    noteOpened(path);
    return updateValuesForNewPath(path);
}

/// A file is remembered once it was read, which one that is shown already has been.
void AppController::noteOpened(const QString& path) {
    openedPath_ = path;
    if (path == lastPath && isFileRead_) {
        rememberOpened();
    }
}

void AppController::rememberOpened() {
    recentFiles_->add(QByteArray::fromStdString(cocoaUtils::hostPath(openedPath_)));
    openedPath_ = QString();
}

void AppController::openFiles(const QList<QByteArray>& paths) {
    const bool isOpening = !toOpen_.isEmpty();
    toOpen_ += paths;
    if (!isOpening) {
        openNext();
    }
}

/// One at a time, so that many of them do not hold the window up.
void AppController::openNext() {
    if (toOpen_.isEmpty()) {
        return;
    }
    applicationOpenFile(cocoaUtils::pathText(QByteArray(toOpen_.first())));
    toOpen_.removeFirst();
    if (!toOpen_.isEmpty()) {
        QMetaObject::invokeMethod(this, "openNext", Qt::QueuedConnection);
    }
}

void AppController::openFileUserDataError(const QMimeData* pasteboard) {
    showMainWindow();
    constexpr qsizetype longestPath = 12288; // every byte escaped
    if (pasteboard != nullptr && pasteboard->hasText() && pasteboard->text().size() <= longestPath) {
        const QString path = pathFromText(pasteboard->text());
        noteOpened(path);
        updateValuesForNewPath(path);
    }
}

bool AppController::applicationShouldHandleReopenHasVisibleWindows(bool /*hasVisibleWindows*/) {
    showMainWindow();
    return true;
}

bool AppController::applicationShouldTerminateAfterLastWindowClosed() {
    return false;
}

void AppController::showMainWindow() {
    bringToFront(myWindow);
    qunsetenv("XDG_ACTIVATION_TOKEN"); // is good for one activation, and not for programs started from here
}

void AppController::openDocument() {
    QList<QByteArray> paths;
    const QStringList names =
        QFileDialog::getOpenFileNames(myWindow, QStringLiteral("Open"), openFolder_, openFilters);
    for (const QString& name : names) {
        paths.append(QFile::encodeName(name));
    }
    if (!names.isEmpty()) {
        openFolder_ = QFileInfo(names.first()).path();
    }
    openFiles(paths);
}

/// A text that was copied from a terminal or an editor often ends with one line end too many.
void AppController::pastePath() {
    const QMimeData* clipboard = QGuiApplication::clipboard()->mimeData();
    if (takeDropped(clipboard)) {
        return;
    }
    QMimeData pasteboard;
    if (clipboard != nullptr && clipboard->hasText()) {
        QString text = clipboard->text();
        if (text.endsWith(u'\n')) {
            text.chop(text.endsWith(QLatin1StringView("\r\n")) ? 2 : 1);
        }
        pasteboard.setText(text);
    }
    openFileUserDataError(&pasteboard);
}

/// The clipboard is told to the window that has the keyboard; on Wayland to no other.
void AppController::showPastedPath() {
    constexpr std::chrono::seconds patience(2);
    showMainWindow();
    if (myWindow->isActiveWindow()) {
        pastePath();
    } else {
        pasteTimer_.start(patience);
    }
}

void AppController::performClose() {
    QWidget* window = QApplication::activeWindow();
    (window != nullptr ? window : myWindow)->close();
}

void AppController::terminate() {
    QCoreApplication::quit();
}

/// Shows the files of a drop or of a file manager's copy, one after the other. False when there are none.
bool AppController::takeDropped(const QMimeData* data) {
    const QList<QByteArray> paths = filesIn(data);
    openFiles(paths);
    return !paths.isEmpty();
}

/// The cover on its way out, which passes over the window.
bool AppController::isOurOwn(const QDropEvent* drop) const {
    const auto* source = qobject_cast<const QWidget*>(drop->source());
    return source != nullptr && source->window() == myWindow;
}

bool AppController::eventFilter(QObject* watched, QEvent* event) {
    if (watched != myWindow) {
        return QObject::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::DragEnter: {
        auto* drag = static_cast<QDropEvent*>(event); // NOLINT(*-static-cast-downcast): by its type
        if (isForUs(drag->mimeData()) && !isOurOwn(drag)) {
            acceptCopy(drag);
        }
        return true;
    }
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event); // NOLINT(*-static-cast-downcast): by its type
        if (!takeDropped(drop->mimeData())) {
            openFileUserDataError(drop->mimeData());
        }
        acceptCopy(drop);
        return true;
    }
    case QEvent::WindowActivate:
        if (pasteTimer_.isActive()) {
            pasteTimer_.start(0);
        }
        break;
    case QEvent::Close:
        defaults_->keep(windowGeometry, myWindow->saveGeometry());
        if (hasWayBack_ && !hasWayBack_()) {
            QMetaObject::invokeMethod(this, "terminate", Qt::QueuedConnection);
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace sonarin

#include "moc_AppController.cpp"
