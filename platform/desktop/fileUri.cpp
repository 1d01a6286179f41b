// SPDX-License-Identifier: MIT
#include "platform/desktop/fileUri.h"

namespace sonarin {

std::optional<QByteArray> pathOfFileUri(const QByteArray& uri) {
    constexpr qsizetype schemeLength = 5;
    if (uri.left(schemeLength).toLower() != "file:") {
        return std::nullopt;
    }
    QByteArray rest = uri.mid(schemeLength);
    if (rest.startsWith("//")) {
        const qsizetype pathStart = rest.indexOf('/', 2);
        const QByteArray host = rest.mid(2, pathStart - 2);
        if (pathStart < 0 || !(host.isEmpty() || host == "localhost")) {
            return std::nullopt;
        }
        rest = rest.mid(pathStart);
    }
    QByteArray path = QByteArray::fromPercentEncoding(rest);
    if (!path.startsWith('/') || path.contains('\0')) {
        return std::nullopt;
    }
    return path;
}

std::optional<QByteArray> pathOfFileUri(const QString& uri) {
    return pathOfFileUri(uri.toUtf8());
}

QString fileUriOfPath(const QByteArray& path) {
    return QStringLiteral("file://") + QString::fromLatin1(path.toPercentEncoding("/"));
}

} // namespace sonarin
