// SPDX-License-Identifier: MIT
#include "app/shownFile.h"
#include "app/window/AppController.h"
#include "app/window/TrayPresence.h"
#include "app/window/textColours.h"
#include "platform/desktop/appearance.h"
#include "platform/desktop/busSources.h"
#include "platform/desktop/desktopApplication.h"
#include "platform/desktop/fileIcon.h"
#include "platform/desktop/fileUri.h"
#include "platform/desktop/qtPicture.h"
#include "platform/desktop/quitSignals.h"
#include "platform/host/userHome.h"

#include <QApplication>
#include <QFontMetrics>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace sonarin {

namespace {

constexpr const char* usage =
    "Usage: sonarin [FILE...]\n"
    "       sonarin --show-pasted-path\n"
    "Opens the window and shows the files in it, the last one stays shown. A running Sonarin\n"
    "takes them over.\n"
    "  --show-pasted-path  shows the file whose path is on the clipboard\n"
    "  -h, --help          shows this\n"
    "  --version           shows the version\n";
constexpr std::string_view pastedPathOption = "--show-pasted-path";

/// Whether there is a display to open a window on; Qt would end the program without one.
bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

/// The toolkit has a paragraph for a display that cannot be reached, and ends with a signal.
void sayThatTheDisplayFails(QtMsgType type, const QMessageLogContext& /*place*/, const QString& /*text*/) {
    if (type == QtFatalMsg) {
        (void)std::fputs(
            "sonarin: the display cannot be reached; sonarin-info shows the same on a terminal\n", stderr);
        std::_Exit(1);
    }
}

bool hasOption(int argc, char** argv, std::string_view option) {
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        if (argv[i] == option) {
            return true;
        }
    }
    return false;
}

/// What is wrong with the call; empty when nothing is.
std::string findProblem(int argc, char** argv) {
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        const std::string_view argument(argv[i]);
        if (argument == pastedPathOption) {
            return argc == 2 ? "" : "--show-pasted-path stands alone";
        }
        if (argument.starts_with('-')) {
            return "there is no option " + std::string(argument);
        }
    }
    return {};
}

/// The files of the call as absolute paths, since a running program may have another working folder.
QList<QByteArray> absolutePaths(int argc, char** argv) {
    std::error_code unknown;
    const auto workingFolder = QByteArray::fromStdString(std::filesystem::current_path(unknown).string());
    QList<QByteArray> paths;
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (const auto path = pathOfFileUri(argument)) {
            paths.append(*path);
        } else {
            paths.append(argument.startsWith('/') ? argument : workingFolder + '/' + argument);
        }
    }
    return paths;
}

QStringList uris(const QList<QByteArray>& paths) {
    QStringList result;
    for (const QByteArray& path : paths) {
        result.append(fileUriOfPath(path));
    }
    return result;
}

void followAppearance(const Appearance& appearance, AppController& controller) {
    QObject::connect(&appearance, &Appearance::highContrastChanged, &controller,
                     [&controller](bool isWanted) {
                         preferHighContrast(isWanted);
                         QEvent changed(QEvent::PaletteChange);
                         for (QWidget* widget : controller.myWindow->findChildren<QWidget*>()) {
                             QCoreApplication::sendEvent(widget, &changed);
                         }
                     });
    // Nothing in the window moves but what the toolkit moves.
    QList<Qt::UIEffect> effects = {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo,
                                   Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip};
    effects.removeIf([](Qt::UIEffect effect) { return !QApplication::isEffectEnabled(effect); });
    QObject::connect(&appearance, &Appearance::motionChanged, &controller, [effects](bool isWanted) {
        for (const Qt::UIEffect effect : effects) {
            QApplication::setEffectEnabled(effect, isWanted);
        }
    });
}

void connectWaysIn(DesktopApplication& desktop, AppController& controller) {
    QObject::connect(&desktop, &DesktopApplication::activated, &controller,
                     [&controller] { controller.applicationShouldHandleReopenHasVisibleWindows(false); });
    QObject::connect(&desktop, &DesktopApplication::openRequested, &controller,
                     [&controller](const QList<QByteArray>& paths) { controller.openFiles(paths); });
    QObject::connect(&desktop, &DesktopApplication::textReceived, &controller,
                     [&controller](const QString& text) {
                         QMimeData pasteboard;
                         pasteboard.setText(text);
                         controller.openFileUserDataError(&pasteboard);
                     });
    QObject::connect(&desktop, &DesktopApplication::pastedPathRequested, &controller,
                     &AppController::showPastedPath);
}

int run(int argc, char** argv) {
    if (hasOption(argc, argv, "--help") || hasOption(argc, argv, "-h")) {
        (void)std::fputs(usage, stdout);
        return 0;
    }
    if (hasOption(argc, argv, "--version")) {
        (void)std::puts("sonarin " SONARIN_VERSION);
        return 0;
    }
    if (!hasDisplay()) {
        (void)std::fputs("sonarin: there is no display; sonarin-info shows the same on a terminal\n", stderr);
        return 1;
    }
    // The toolkit, and what is started from here, are to look where we do.
    qputenv("HOME", QByteArray::fromStdString(userHome().empty() ? "/" : userHome()));
    qInstallMessageHandler(sayThatTheDisplayFails);
    QApplication application(argc, argv); // takes the toolkit's own options out
    qInstallMessageHandler(nullptr);
    const std::string problem = findProblem(argc, argv);
    if (!problem.empty()) {
        (void)std::fputs(("sonarin: " + problem + '\n' + usage).c_str(), stderr);
        return 2;
    }
    const bool showsPastedPath = hasOption(argc, argv, pastedPathOption);
    const QList<QByteArray> paths = showsPastedPath ? QList<QByteArray>() : absolutePaths(argc, argv);
    if (!QFontMetrics(QApplication::font()).inFont(u'a')) { // not even where the families have names
        (void)std::fputs("sonarin: there are no fonts, so the window shows no texts; a package such as "
                         "fonts-dejavu-core brings some\n",
                         stderr);
    }
    QApplication::setDesktopFileName(QLatin1StringView(bundleIdentifier));
    QApplication::setWindowIcon(programIcon());
    QApplication::setQuitOnLastWindowClosed(AppController::applicationShouldTerminateAfterLastWindowClosed());

    SessionBus bus;
    DesktopApplication desktop(&bus, QLatin1StringView(bundleIdentifier));
    if (!desktop.takeName()) {
        switch (showsPastedPath ? desktop.handOverPastedPath() : desktop.handOver(uris(paths))) {
        case DesktopApplication::HandOver::done:
            return 0;
        case DesktopApplication::HandOver::refused:
            (void)std::fputs("sonarin: the running Sonarin does not take these files\n", stderr);
            return 1;
        case DesktopApplication::HandOver::noAnswer:
            desktop.takeNameAway();
        }
    }
    decodePicturesWithQt();
    BusSources sources(&bus);
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    controller.setSessionBus(&bus);
    const Appearance appearance(&bus);
    followAppearance(appearance, controller);
    const TrayPresence tray(&controller);
    controller.setWayBack([&] { return tray.isThere() || desktop.hasName(); });
    QObject::connect(&bus, &SessionBus::lost, &controller, [&] {
        if (!controller.myWindow->isVisible() && !tray.isThere()) {
            QCoreApplication::quit(); // nobody could bring the window back
        }
    });
    connectWaysIn(desktop, controller);
    QObject::connect(&desktop, &DesktopApplication::replaced,
                     QCoreApplication::quit); // two windows are one too many
    onQuitSignals(QCoreApplication::quit);
    controller.showMainWindow();
    QMetaObject::invokeMethod(
        &controller, [&] { showsPastedPath ? controller.showPastedPath() : controller.openFiles(paths); },
        Qt::QueuedConnection);
    return QApplication::exec();
}

} // namespace

} // namespace sonarin

int main(int argc, char** argv) {
    const int status = sonarin::run(argc, argv);
    if (!sonarin::SideWork::haveThreadsEnded(std::chrono::milliseconds(20))) {
        std::_Exit(status); // one hangs, and may come back to what would have been destroyed
    }
    return status;
}
