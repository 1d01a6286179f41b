// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

/// "file:" URIs (RFC 8089). Paths are bytes, as POSIX has them.
namespace sonarin {

/// The path of a file on this machine; nothing for any other scheme or host, or for a URI with a zero byte.
/// Whatever is not percent-encoded is taken as it stands, "#" and "?" too: programs differ in what they
/// encode.
[[nodiscard]] std::optional<QByteArray> pathOfFileUri(const QByteArray& uri);
[[nodiscard]] std::optional<QByteArray> pathOfFileUri(const QString& uri);

/// The URI of an absolute path.
[[nodiscard]] QString fileUriOfPath(const QByteArray& path);

} // namespace sonarin
