// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The installed programs, by their desktop entries (freedesktop.org, version 1.5). For any thread but the
/// window's: what starts programs asks the session bus, which may hang, and so may the disks that hold the
/// entries.
namespace sonarin {

/// Hands the URL to the program that the user's desktop has for its scheme, if there is one. Does not wait
/// for the program.
void openUrl(const std::string& url);

/// An installed program that opens audio files.
struct DesktopEditor {
    std::string desktopId; ///< such as org.kde.kid3.desktop
    std::string name;      ///< in the user's language
};

/// The editors of tags among the installed programs, by name: those whose entry is meant for menus and either
/// carries a creator code in the key X-HFS-Creator, or names an audio type and has the category
/// AudioVideoEditing or a keyword of tag editors.
[[nodiscard]] std::vector<DesktopEditor> installedEditors();

/// Opens the file with the installed program whose entry lists the four-character creator code under
/// X-HFS-Creator (four characters, or 0x and eight hexadecimal digits). False when none does or it cannot be
/// started.
bool openFileWithCreator(const std::string& path, std::uint32_t creator);

/// The version of the library that starts them, such as "2.74.6".
[[nodiscard]] std::string desktopLibraryVersion();

/// Opens the file with the program of that desktop entry.
bool openFileWithProgram(const std::string& path, const std::string& desktopId);

} // namespace sonarin
