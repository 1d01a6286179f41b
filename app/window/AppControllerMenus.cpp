// SPDX-License-Identifier: MIT
// The menu bar: its commands' state, and what they show about the program itself.
#include "app/window/AppController.h"
#include "app/window/MenuIcons.h"
#include "platform/desktop/desktopPrograms.h"
#include "text/unicodeVersion.h"

#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QWindow>

namespace sonarin {

namespace {

constexpr QLatin1StringView keptOnTop("keptOnTop");

/// Only the compositor of a Wayland session says which window is above which.
bool canBeKeptOnTop() {
    return !QGuiApplication::platformName().startsWith(QLatin1StringView("wayland"));
}

} // namespace

QAction* AppController::command(const char* name) const {
    return myWindow->findChild<QAction*>(QLatin1StringView(name));
}

void AppController::setUpMenus() {
    auto* recentMenu = myWindow->findChild<QMenu*>(QStringLiteral("recentMenu"));
    recentMenu->menuAction()->setProperty("iconName", recentMenu->property("iconName"));
    recentFiles_ = std::make_unique<RecentFiles>(recentMenu, defaults_);
    connect(recentFiles_.get(), &RecentFiles::chosen, this,
            [this](const QByteArray& path) { openFiles({path}); });

    QAction* keepOnTop = command("keepOnTopAction");
    keepOnTop->setVisible(canBeKeptOnTop());
    keepOnTop->setChecked(defaults_->integer(keptOnTop) != 0);
    keepOnTopIfWanted(myWindow);
    connect(keepOnTop, &QAction::toggled, this, &AppController::setKeptOnTop);

    QAction* byStandard = command("readByStandardAction");
    byStandard->setChecked(tagReading() == TagReading::byStandard);
    connect(byStandard, &QAction::toggled, this, &AppController::setReadByStandard);

    for (ValueLabel* value : myWindow->findChildren<ValueLabel*>()) {
        connect(value, &QWidget::customContextMenuRequested, this,
                [this, value](const QPoint& place) { showValueMenu(value, place); });
    }
    connect(fileIconField, &QWidget::customContextMenuRequested, this, &AppController::showPictureMenu);
    connect(fileIconField, &PictureView::opened, this, &AppController::showPicture);
    connect(fileIconField, &PictureView::dragged, this, &AppController::dragPicture);
    connect(fileIconField, &PictureView::imageChanged, this, &AppController::updateCommands);
    connect(qApp, &QApplication::focusChanged, this, [this] {
        updateCommands();
        showFocus();
    });
    new MenuIcons(myWindow->findChildren<QAction*>(), myWindow);
}

/// A command that would do nothing is greyed.
void AppController::updateCommands() {
    const auto* value = qobject_cast<ValueLabel*>(QApplication::focusWidget());
    const bool isThere = !lastPath.isNull();
    command("copyAction")->setEnabled(value != nullptr && !value->text().isEmpty());
    command("copyAllAction")->setEnabled(isThere);
    command("copyPathAction")->setEnabled(isThere);
    command("revealAction")->setEnabled(isThere);
    command("copyPictureAction")->setEnabled(fileIconField->showsImage());
    command("pictureAction")->setEnabled(fileIconField->showsImage());
    command("savePictureAction")->setEnabled(static_cast<bool>(currentItem.mp3CoverArt));
}

void AppController::setKeptOnTop(bool isKept) {
    defaults_->set(keptOnTop, isKept ? 1 : 0);
    for (QWidget* window :
         {static_cast<QWidget*>(myWindow), lyricsWindow, helpWindow, pictureWindow_.get()}) {
        keepOnTopIfWanted(window);
    }
}

/// The program's other windows must not be covered by the one that is kept.
void AppController::keepOnTopIfWanted(QWidget* window) const {
    if (window == nullptr || !canBeKeptOnTop()) {
        return;
    }
    Qt::WindowFlags flags = window->windowFlags();
    flags.setFlag(Qt::WindowStaysOnTopHint, defaults_->integer(keptOnTop) != 0);
    window->overrideWindowFlags(flags); // the other way would close the window for a moment
    if (QWindow* handle = window->windowHandle()) {
        handle->setFlags(flags);
    }
}

/// A value that gets the keyboard is scrolled to, wherever the keyboard was before.
void AppController::showFocus() {
    QWidget* focus = QApplication::focusWidget();
    auto* scroller = myWindow->findChild<QScrollArea*>();
    if (focus != nullptr && scroller->widget()->isAncestorOf(focus)) {
        scroller->ensureWidgetVisible(focus);
    }
}

void AppController::noteWhyMenusAreEmpty() {
    const QString other = lastPath.isNull() ? QStringLiteral("No file yet")
                          : isReading()     ? QStringLiteral("Still reading")
                          : !isFileRead_    ? QStringLiteral("No tag was read")
                                            : QString();
    renamePopup->setEmptyNote(!other.isNull() ? other : QStringLiteral("No title in the tag"));
    findInShelvixPopup->setEmptyNote(!other.isNull() ? other
                                                     : QStringLiteral("Nothing in the tag to search for"));
}

void AppController::showAbout() {
    const QString text =
        QStringLiteral("<h3>Sonarin %1</h3><p>The facts and the tags of one audio file at a time.</p>"
                       "<p>Free software under the MIT licence.</p><p>With Qt %2, ICU %3 and GLib %4.</p>")
            .arg(QLatin1StringView(SONARIN_VERSION), QLatin1StringView(qVersion()),
                 QString::fromStdString(unicodeVersion()), QString::fromStdString(desktopLibraryVersion()));
    auto* about = new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About Sonarin"), text,
                                  QMessageBox::Close, myWindow);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->setTextFormat(Qt::RichText);
    constexpr int side = 64;
    about->setIconPixmap(QApplication::windowIcon().pixmap(side, side));
    about->open();
}

} // namespace sonarin
