// SPDX-License-Identifier: MIT
// Tells on the session bus what is selected in Dolphin, as docs/selection-interface.md describes. Dolphin
// loads plug-ins for overlay icons with its first view; this one has no icons and answers questions about the
// views instead.
#include <KFileItem>
#include <KOverlayIconPlugin>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFile>
#include <QPointer>
#include <QUrl>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <dlfcn.h>
#include <time.h>

namespace {

const QString path = QStringLiteral("/org/sonarin/Selection1");
const QString interfaceName = QStringLiteral("org.sonarin.Selection1");

// What Dolphin's library lets be called of its class DolphinView; the class has no header to include. A
// version of Dolphin that lacks any of it has no views as far as this can tell.
class ViewFunctions {
public:
    [[nodiscard]] bool isActive(const QWidget* view) const {
        return isActive_ != nullptr && count_ != nullptr && items_ != nullptr && isActive_(view);
    }
    [[nodiscard]] int selectedCount(const QWidget* view) const { return count_(view); }
    [[nodiscard]] KFileItemList selectedItems(const QWidget* view) const { return items_(view); }

private:
    template <typename Function>
    static Function find(const char* symbol) {
        return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, symbol));
    }

    // A member function takes the object as its first argument, and QWidget is where a DolphinView begins.
    bool (*isActive_)(const QWidget*) = find<decltype(isActive_)>("_ZNK11DolphinView8isActiveEv");
    int (*count_)(const QWidget*) = find<decltype(count_)>("_ZNK11DolphinView18selectedItemsCountEv");
    KFileItemList (*items_)(const QWidget*) = find<decltype(items_)>("_ZNK11DolphinView13selectedItemsEv");
};

// Empty for what is no local file.
QString fileUri(const KFileItem& item) {
    bool local = false;
    const QUrl nearest = item.mostLocalUrl(&local); // of what is found in a search or on the desktop too
    const QUrl url = local ? nearest : item.targetUrl();
    const QString file = url.host().isEmpty() ? url.toLocalFile() : QString();
    if (!file.startsWith(QLatin1Char('/')) || file.contains(QChar::ReplacementCharacter)) {
        return {}; // Qt has lost the bytes of a name that is no UTF-8: that would be another file
    }
    return QStringLiteral("file://") + QString::fromLatin1(QFile::encodeName(file).toPercentEncoding("/"));
}

class Selection : public QDBusVirtualObject {
    Q_OBJECT

public:
    explicit Selection(QObject* parent);

    [[nodiscard]] QString introspect(const QString& at) const override;
    bool handleMessage(const QDBusMessage& question, const QDBusConnection& bus) override;

private:
    void noteUse(const QWindow* focused);
    [[nodiscard]] const QWidget* activeView() const;
    [[nodiscard]] QStringList selected() const;
    [[nodiscard]] QVariantMap properties() const;
    [[nodiscard]] QDBusMessage answer(const QDBusMessage& question) const;

    const ViewFunctions views_;
    QPointer<QWidget> window_; // that was used last
    qint64 activeSince_ = 0;
};

Selection::Selection(QObject* parent) : QDBusVirtualObject(parent) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    const auto name = QStringLiteral("org.sonarin.Selection1.FileManager.dolphin_%1");
    // The object is there already where two copies of this are installed.
    if (!bus.registerVirtualObject(path, this) ||
        !bus.registerService(name.arg(QCoreApplication::applicationPid()))) {
        return;
    }
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &Selection::noteUse);
    noteUse(QGuiApplication::focusWindow());
}

void Selection::noteUse(const QWindow* focused) {
    const auto windows = QApplication::topLevelWidgets();
    const auto used = std::find_if(windows.begin(), windows.end(), [focused](const QWidget* window) {
        return window->windowHandle() == focused && window->inherits("DolphinMainWindow");
    });
    if (focused == nullptr || used == windows.end()) {
        return;
    }
    window_ = *used;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    activeSince_ = qint64{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

// The view that is typed into in the window that was used last: every tab, and each half of one, has a view.
const QWidget* Selection::activeView() const {
    if (window_.isNull()) {
        return nullptr;
    }
    const auto widgets = window_->findChildren<QWidget*>();
    const auto view = std::find_if(widgets.begin(), widgets.end(), [this](const QWidget* widget) {
        return widget->inherits("DolphinView") && widget->isVisible() && views_.isActive(widget);
    });
    return view != widgets.end() ? *view : nullptr;
}

QStringList Selection::selected() const {
    const QWidget* view = activeView();
    const int count = view != nullptr ? views_.selectedCount(view) : 0;
    if (count <= 0) {
        return {};
    }
    if (count > 1) {
        return {QString(), QString()};
    }
    const KFileItemList items = views_.selectedItems(view);
    return {items.isEmpty() ? QString() : fileUri(items.first())};
}

QVariantMap Selection::properties() const {
    return {{QStringLiteral("Selected"), selected()},
            {QStringLiteral("ActiveSince"), activeSince_},
            {QStringLiteral("Program"), QStringLiteral("Dolphin")}};
}

QString Selection::introspect(const QString& /*at*/) const {
    return QStringLiteral("<interface name=\"org.sonarin.Selection1\">"
                          "<property name=\"Selected\" type=\"as\" access=\"read\"/>"
                          "<property name=\"ActiveSince\" type=\"x\" access=\"read\"/>"
                          "<property name=\"Program\" type=\"s\" access=\"read\"/>"
                          "</interface>");
}

bool Selection::handleMessage(const QDBusMessage& question, const QDBusConnection& bus) {
    if (question.interface() == QLatin1String("org.freedesktop.DBus.Introspectable")) {
        return false; // Qt asks `introspect`
    }
    return bus.send(answer(question));
}

QDBusMessage Selection::answer(const QDBusMessage& question) const {
    const QString member = question.member();
    const QVariantList arguments = question.arguments();
    if (question.interface() != QLatin1String("org.freedesktop.DBus.Properties") || arguments.isEmpty()) {
        return question.createErrorReply(QDBusError::UnknownMethod, member);
    }
    if (arguments.first() != interfaceName) {
        return question.createErrorReply(QDBusError::UnknownInterface, arguments.first().toString());
    }
    if (member == QLatin1String("GetAll")) {
        return question.createReply(QVariant(properties()));
    }
    if (member == QLatin1String("Set")) {
        return question.createErrorReply(QDBusError::PropertyReadOnly, member);
    }
    if (member == QLatin1String("Get") && arguments.size() == 2) {
        const QVariant value = properties().value(arguments.at(1).toString());
        if (value.isValid()) {
            return question.createReply(QVariant::fromValue(QDBusVariant(value)));
        }
    }
    return question.createErrorReply(QDBusError::UnknownProperty, member);
}

} // namespace

class DolphinPlugin : public KOverlayIconPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.sonarin.DolphinPlugin" FILE "sonarin_dolphin.json")

public:
    DolphinPlugin() {
        // The dialogs for files of other programs load these plug-ins as well.
        if (QCoreApplication::applicationName() == QLatin1String("dolphin")) {
            new Selection(this);
        }
    }

    QStringList getOverlays(const QUrl& /*item*/) override { return {}; }
};

#include "dolphinPlugin.moc"
