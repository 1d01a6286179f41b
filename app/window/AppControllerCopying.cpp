// SPDX-License-Identifier: MIT
// What is taken out of the window: texts, the path, the picture.
#include "app/coverFile.h"
#include "app/textOutput.h"
#include "app/window/AppController.h"
#include "app/window/auxiliaryWindow.h"
#include "app/window/cocoaUtils.h"
#include "platform/desktop/fileManager.h"
#include "platform/desktop/fileUri.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDrag>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QScreen>
#include <QVBoxLayout>
#include <filesystem>

namespace sonarin {

namespace {

/// The bytes of the absolute path.
QByteArray hostBytes(const QString& path) {
    std::error_code unknown;
    return QByteArray::fromStdString(std::filesystem::absolute(cocoaUtils::hostPath(path), unknown).string());
}

/// The name of the file without its extension, as far as a name with any extension can hold it.
QString pictureBaseName(const QString& path) {
    constexpr qsizetype mostBytes = 240;
    QString base = QFileInfo(path).completeBaseName();
    while (QFile::encodeName(base).size() > mostBytes) {
        base = startOf(base, base.size() - 1);
    }
    return base.isEmpty() ? QStringLiteral("cover") : base;
}

void copyText(const QString& text) {
    if (!text.isEmpty()) {
        QGuiApplication::clipboard()->setText(text);
    }
}

QString valueToCopy(const ValueLabel& value) {
    return value.hasSelectedText() ? value.text().mid(value.selectionStart(), value.selectedText().size())
                                   : value.text(); // the toolkit's selected text has line ends of its own
}

/// A menu that goes when it is closed.
QMenu* newMenu(QWidget* widget) {
    auto* menu = new QMenu(widget);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    return menu;
}

} // namespace

// --- texts ------------------------------------------------------------------------------------------------

/// What is selected in the value that has the keyboard, else all of it.
void AppController::copy() {
    if (const auto* value = qobject_cast<ValueLabel*>(QApplication::focusWidget())) {
        copyText(valueToCopy(*value));
    }
}

void AppController::copyAll() {
    if (lastPath.isNull()) {
        return;
    }
    StringSink sink;
    OutputBuffer out(sink);
    appendText(out, cocoaUtils::textFromString(lastPath), shownAttributes_,
               isFileRead_ ? &currentItem : nullptr, false);
    out.flush();
    copyText(QString::fromStdString(sink.text));
}

/// A path that is no text is copied as its URI, which can be pasted all the same.
void AppController::copyPath() {
    const QByteArray path = hostBytes(lastPath);
    const QString text = QString::fromUtf8(path);
    copyText(text.toUtf8() == path ? text : fileUriOfPath(path));
}

void AppController::addFileCommands(QMenu* menu) const {
    for (const char* name : {"copyAllAction", "copyPathAction", "revealAction"}) {
        menu->addAction(command(name));
    }
}

void AppController::showValueMenu(ValueLabel* value, const QPoint& place) {
    QMenu* menu = newMenu(value);
    QAction* copyValue = menu->addAction(QStringLiteral("Copy &Value"));
    copyValue->setEnabled(!value->text().isEmpty());
    connect(copyValue, &QAction::triggered, value, [value] { copyText(valueToCopy(*value)); });
    addFileCommands(menu);
    menu->popup(value->mapToGlobal(place));
}

void AppController::showInFinder() {
    if (bus_ == nullptr || !bus_->isConnected()) {
        say(QStringLiteral("Not shown: there is no session bus"));
        return;
    }
    showInFileManager(bus_->connection(), hostBytes(lastPath), this, [this](const QString& failure) {
        if (!failure.isEmpty()) {
            say(QStringLiteral("Not shown: ") + failure);
        }
    });
}

// --- the picture ------------------------------------------------------------------------------------------

void AppController::copyPicture() {
    if (fileIconField->showsImage()) {
        QGuiApplication::clipboard()->setImage(fileIconField->image());
    }
}

void AppController::showPictureMenu(const QPoint& place) {
    QMenu* menu = newMenu(fileIconField);
    for (const char* name : {"pictureAction", "copyPictureAction", "savePictureAction"}) {
        menu->addAction(command(name));
    }
    menu->addSeparator();
    addFileCommands(menu);
    menu->popup(fileIconField->mapToGlobal(place));
}

/// The stored picture and its name as a file: that of the audio file, with the extension of what the bytes
/// are.
AppController::TakenPicture AppController::takePicture() const {
    const ByteView bytes = currentItem.mp3CoverArt.view();
    const std::string_view extension = pictureExtension(bytes);
    return {{bytes.begin(), bytes.end()},
            cocoaUtils::textFromString(lastPath),
            pictureBaseName(lastPath) + u'.' +
                QLatin1StringView(extension.data(), static_cast<qsizetype>(extension.size()))};
}

/// What is saved is what was shown when it was asked for: the next file may come while a place is chosen.
void AppController::savePicture() {
    if (!currentItem.mp3CoverArt) {
        return;
    }
    const auto picture = std::make_shared<TakenPicture>(takePicture());
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString target =
        QFileDialog::getSaveFileName(myWindow, QStringLiteral("Save Picture"), folder + u'/' + picture->name);
    if (target.isEmpty()) {
        return;
    }
    const std::string hostTarget = QFile::encodeName(target).toStdString();
    const auto failure = std::make_shared<std::string>();
    const auto work = [failure, hostTarget, picture] {
        *failure = writeCover(picture->audioPath, picture->bytes, hostTarget, true);
    };
    const auto done = [this, failure, name = QFileInfo(target).fileName()] {
        say(failure->empty() ? QStringLiteral("Saved as ") + name
                             : QStringLiteral("Not saved: ") + QString::fromStdString(*failure));
    };
    sideWork_.start(hostTarget, work, done);
}

/// In a window of its own, as large as the screen allows.
void AppController::showPicture() {
    if (!fileIconField->showsImage()) {
        return;
    }
    constexpr double mostOfScreen = 0.85;
    pictureWindow_ = std::make_unique<QWidget>();
    auto* layout = new QVBoxLayout(pictureWindow_.get());
    auto* picture = new PictureView;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(picture);
    picture->setImage(fileIconField->image(), fileIconField->pixels());
    picture->setContextMenuPolicy(Qt::NoContextMenu);
    pictureWindow_->setWindowTitle(myWindow->windowTitle());
    pictureWindow_->resize(
        picture->sizeWithin(myWindow->screen()->availableGeometry().size() * mostOfScreen));
    connect(picture, &PictureView::opened, pictureWindow_.get(), &QWidget::close);
    closeByKey(pictureWindow_.get());
    keepOnTopIfWanted(pictureWindow_.get());
    pictureWindow_->show();
}

/// The file of a picture that is dragged away. It stays until the program ends, since some take it late.
QString AppController::fileToDrag() {
    if (!draggedFiles_) {
        draggedFiles_ = std::make_unique<QTemporaryDir>();
    }
    const TakenPicture picture = takePicture();
    const QString folder = draggedFiles_->filePath(QString::number(++timesDragged_));
    QFile file(folder + u'/' + picture.name);
    const auto size = static_cast<qint64>(picture.bytes.size());
    const bool isWritten = QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) &&
                           file.write(asCharacters(picture.bytes).data(), size) == size && file.flush();
    return isWritten ? file.fileName() : QString();
}

/// As a file, for folders and mails, and as a picture.
void AppController::dragPicture() {
    const QString file = fileToDrag();
    auto* data = new QMimeData;
    if (!file.isEmpty()) {
        data->setUrls({QUrl::fromLocalFile(file)});
    }
    data->setImageData(fileIconField->image());
    constexpr int thumbnail = 96;
    auto* drag = new QDrag(fileIconField);
    drag->setMimeData(data);
    drag->setPixmap(QPixmap::fromImage(
        fileIconField->image().scaled(thumbnail, thumbnail, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    drag->exec(Qt::CopyAction);
}

} // namespace sonarin
