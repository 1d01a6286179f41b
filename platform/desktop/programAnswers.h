// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QVariantMap>
#include <optional>

/// What the programs that are followed answer, taken apart. Any of them may answer anything.
namespace sonarin {

/// The digest of a selection: since when its window is in use, the first two URIs, the program's name.
[[nodiscard]] QVariant digestSelection(const QVariantMap& properties);

/// The digest of a player: its status, its track's URL, identity and title.
[[nodiscard]] QVariant digestPlayer(const QVariantMap& properties, const QVariantMap& metadata);

/// Takes the first whole answer of cmus from the front of what was received; nothing while there is none.
[[nodiscard]] std::optional<QByteArray> takeCmusAnswer(QByteArray* received);

/// The path of the file that the answer to "status" names; nothing where it names none.
[[nodiscard]] std::optional<QByteArray> fileInCmusStatus(const QByteArray& answer);

} // namespace sonarin
