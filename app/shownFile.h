// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "platform/host/fileAttributes.h"
#include "text/SvxString.h"

#include <cstdint>

namespace sonarin {

/// Identifies the program on the desktop and names its resource bundle.
inline constexpr const char* bundleIdentifier = "org.sonarin.Sonarin";

/// One file as the window or the terminal shows it.
struct ShownFile {
    SvxStringRef path;
    HostFileAttributes attributes;
    std::int32_t type = amdTypeNone; ///< an AudioFileType
    std::int32_t result = -1;        ///< of amdGetAudioMetaDataForFile; -1 for what is no audio file
    audioTags record;                ///< as the reader left it, also when it failed

    /// Whether the fact fields show the record; they stay empty otherwise.
    [[nodiscard]] bool isRead() const { return result == 0; }
};

/// Reads the file at `path`. Only regular files are ever opened: opening a FIFO would wake the program that
/// waits at its other end.
[[nodiscard]] ShownFile readShownFile(SvxStringRef path, const ReadOptions& options) noexcept;

} // namespace sonarin
