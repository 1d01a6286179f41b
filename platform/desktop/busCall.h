// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <functional>
#include <utility>

namespace sonarin {

/// Calls `take` with the finished call, unless `context` has gone by then. It may take it as a
/// QDBusPendingReply of what it expects.
inline void whenAnswered(const QDBusPendingCall& call, QObject* context,
                         std::function<void(const QDBusPendingCall& answer)> take) {
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, take = std::move(take)] {
        watcher->deleteLater();
        take(*watcher);
    });
}

} // namespace sonarin
