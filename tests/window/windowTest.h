// SPDX-License-Identifier: MIT
#pragma once

#include "tests/window/windowSupport.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QTimer>

namespace sonarin {

/// A test with a window of its own, which follows nothing by itself and has no stored preferences.
class WindowTest : public testing::Test {
protected:
    WindowTest() {
        forgetPreferences();
        controller = std::make_unique<AppController>(&sources, &defaults);
        controller->gUpdateTimer->stop();
    }

    [[nodiscard]] QAction* command(const char* name) const {
        return controller->myWindow->findChild<QAction*>(QLatin1StringView(name));
    }
    /// Does something with what pops up while the action waits for it.
    static void meanwhile(const std::function<void()>& action, const std::function<void()>& then) {
        QTimer::singleShot(100, then);
        action();
        runFor(150);
    }

    TestFolder folder;
    FixedSources sources;
    UserDefaults defaults;
    std::unique_ptr<AppController> controller;
};

} // namespace sonarin
