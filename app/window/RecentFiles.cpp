// SPDX-License-Identifier: MIT
#include "app/window/RecentFiles.h"

#include "app/window/ValueLabel.h"
#include "app/window/cocoaUtils.h"
#include "platform/desktop/fileUri.h"

#include <QScreen>

namespace sonarin {

namespace {

constexpr QLatin1StringView recentFiles("recentFiles");
constexpr QLatin1StringView remembersFiles("remembersFiles");

} // namespace

RecentFiles::RecentFiles(QMenu* menu, UserDefaults* defaults, QObject* parent)
    : QObject(parent), menu_(menu), defaults_(defaults) {
    defaults_->registerDefault(remembersFiles, 1);
    menu_->setToolTipsVisible(true);
    connect(menu_, &QMenu::aboutToShow, this, &RecentFiles::fillIn);
    fillIn();
}

bool RecentFiles::isRemembering() const {
    return defaults_->integer(remembersFiles) != 0;
}

void RecentFiles::add(const QByteArray& path) {
    if (!isRemembering()) {
        return;
    }
    const QString uri = fileUriOfPath(path);
    const QStringList before = defaults_->value(recentFiles).toStringList();
    QStringList uris = before;
    uris.removeAll(uri);
    uris.prepend(uri);
    uris = uris.mid(0, mostRemembered);
    if (uris != before) {
        store(uris);
    }
}

void RecentFiles::store(const QStringList& uris) {
    defaults_->set(recentFiles, uris);
}

void RecentFiles::fillIn() {
    menu_->clear();
    const QStringList uris = defaults_->value(recentFiles).toStringList();
    for (const QString& uri : uris) {
        const auto path = pathOfFileUri(uri);
        if (!path) {
            continue;
        }
        const QString whole = cocoaUtils::pathText(*path);
        const QStringList parts = whole.split(u'/');
        QString name =
            withVisibleControls(parts.last() + QStringLiteral(" — ") + parts.value(parts.size() - 2));
        name = menu_->fontMetrics().elidedText(name, Qt::ElideMiddle,
                                               menu_->screen()->availableGeometry().width() / 3);
        QAction* entry = menu_->addAction(name.replace(u'&', QLatin1StringView("&&")));
        entry->setToolTip(plainToolTip(whole));
        connect(entry, &QAction::triggered, this, [this, opened = *path] { emit chosen(opened); });
    }
    if (uris.isEmpty()) {
        menu_->addAction(QStringLiteral("No File Yet"))->setEnabled(false);
    }
    menu_->addSeparator();
    QAction* remembers = menu_->addAction(QStringLiteral("&Remember Opened Files"));
    remembers->setCheckable(true);
    remembers->setChecked(isRemembering());
    connect(remembers, &QAction::toggled, this, [this](bool isOn) {
        defaults_->set(remembersFiles, isOn ? 1 : 0);
        if (!isOn) {
            store({});
        }
    });
    QAction* clear = menu_->addAction(QStringLiteral("&Clear List"));
    clear->setEnabled(!uris.isEmpty());
    connect(clear, &QAction::triggered, this, [this] { store({}); });
}

} // namespace sonarin

#include "moc_RecentFiles.cpp"
