// SPDX-License-Identifier: MIT
#include "app/shownFile.h"
#include "app/window/AppController.h"
#include "app/window/TrayPresence.h"
#include "platform/desktop/busSources.h"
#include "platform/desktop/desktopApplication.h"
#include "platform/desktop/fileIcon.h"
#include "platform/desktop/fileUri.h"
#include "platform/desktop/qtPicture.h"
#include "platform/desktop/quitSignals.h"

#include <QApplication>
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
    "Opens the window and shows the files in it, the last one stays shown. A running Sonarin\n"
    "takes them over.\n"
    "  --help      shows this\n"
    "  --version   shows the version\n";

/// Whether there is a display to open a window on; Qt would end the program without one.
bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

/// The first argument that looks like an option; null when there is none.
const char* unknownOption(int argc, char** argv) {
    for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
        if (std::string_view(argv[i]).starts_with('-')) {
            return argv[i];
        }
    }
    return nullptr;
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
}

int run(int argc, char** argv) {
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--help" || first == "-h") {
        (void)std::fputs(usage, stdout);
        return 0;
    }
    if (first == "--version") {
        (void)std::puts("sonarin " SONARIN_VERSION);
        return 0;
    }
    if (!hasDisplay()) {
        (void)std::fputs("sonarin: there is no display; sonarin-info shows the same on a terminal\n", stderr);
        return 1;
    }
    QApplication application(argc, argv); // takes the toolkit's own options out
    if (const char* option = unknownOption(argc, argv)) {
        (void)std::fputs((std::string("sonarin: there is no option ") + option + '\n' + usage).c_str(),
                         stderr);
        return 2;
    }
    const QList<QByteArray> paths = absolutePaths(argc, argv);
    QApplication::setDesktopFileName(QLatin1StringView(bundleIdentifier));
    QApplication::setWindowIcon(programIcon());
    QApplication::setQuitOnLastWindowClosed(AppController::applicationShouldTerminateAfterLastWindowClosed());

    SessionBus bus;
    DesktopApplication desktop(&bus, QLatin1StringView(bundleIdentifier));
    if (!desktop.takeName() && desktop.handOver(uris(paths))) {
        return 0;
    }
    decodePicturesWithQt();
    BusSources sources(&bus);
    UserDefaults defaults;
    AppController controller(&sources, &defaults);
    const TrayPresence tray(&controller);
    controller.setWayBack([&] { return tray.isThere() || desktop.hasName(); });
    QObject::connect(&bus, &SessionBus::lost, &controller, [&] {
        if (!controller.myWindow->isVisible() && !tray.isThere()) {
            QCoreApplication::quit(); // nobody could bring the window back
        }
    });
    connectWaysIn(desktop, controller);
    onQuitSignals(QCoreApplication::quit);
    controller.showMainWindow();
    QMetaObject::invokeMethod(
        &controller, [&] { controller.openFiles(paths); }, Qt::QueuedConnection);
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
