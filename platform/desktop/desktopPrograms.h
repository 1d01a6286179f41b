// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The installed programs, by their desktop entries (freedesktop.org, version 1.5).
namespace sonarin {

/// Hands the URL to the program that the user's desktop has for its scheme. False, with nothing started, when
/// there is none. Does not wait for the program.
bool openUrl(const std::string& url);

/// An installed program that opens audio files.
struct DesktopEditor {
    std::string desktopId; ///< such as org.kde.kid3.desktop
    std::string name;      ///< in the user's language
};

/// The editors among the installed programs: those whose entry carries a creator code in the key
/// X-HFS-Creator and is meant for menus.
[[nodiscard]] std::vector<DesktopEditor> installedEditors();

/// Opens the file with the installed program whose entry lists the four-character creator code under
/// X-HFS-Creator (four characters, or 0x and eight hexadecimal digits). False when none does or it cannot be
/// started.
bool openFileWithCreator(const std::string& path, std::uint32_t creator);

/// Opens the file with the program of that desktop entry.
bool openFileWithProgram(const std::string& path, const std::string& desktopId);

} // namespace sonarin
