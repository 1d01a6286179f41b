// SPDX-License-Identifier: MIT
#include "platform/desktop/fileUri.h"

namespace sonarin {

std::optional<QByteArray> pathOfFileUri(const QString& uri) {
    constexpr QLatin1StringView scheme("file:");
    if (!uri.startsWith(scheme, Qt::CaseInsensitive)) {
        return std::nullopt;
    }
    QString rest = uri.mid(scheme.size());
    if (rest.startsWith(QLatin1StringView("//"))) {
        const qsizetype pathStart = rest.indexOf(u'/', 2);
        const QString host = rest.mid(2, pathStart - 2);
        if (pathStart < 0 || !(host.isEmpty() || host == QLatin1StringView("localhost"))) {
            return std::nullopt;
        }
        rest = rest.mid(pathStart);
    }
    QByteArray path = QByteArray::fromPercentEncoding(rest.toUtf8());
    if (!path.startsWith('/') || path.contains('\0')) {
        return std::nullopt;
    }
    return path;
}

QString fileUriOfPath(const QByteArray& path) {
    return QStringLiteral("file://") + QString::fromLatin1(path.toPercentEncoding("/"));
}

} // namespace sonarin
