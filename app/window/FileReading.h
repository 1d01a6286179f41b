// SPDX-License-Identifier: MIT
#pragma once

#include "app/shownFile.h"
#include "engine/fileEngine.h"
#include "platform/desktop/fileIcon.h"

#include <QString>
#include <memory>
#include <string>

namespace sonarin {

/// One file on its way into the panel. It is read beside the window (see SideWork): until that has ended only
/// the path and `progress` are the window's to look at; from then on all of it is, and it has no other owner.
struct FileReading {
    FileReading(QString shownPath, TagReading tagReading);
    FileReading(const FileReading&) = delete;
    FileReading& operator=(const FileReading&) = delete;
    ~FileReading() = default;

    /// Reads the file and decodes its cover. For the other thread.
    void run();

    const QString path;      ///< its bytes that are no UTF-8 as U+DC80 to U+DCFF
    const SvxStringRef text; ///< the same
    FSRef hostPath;          ///< the same; empty where it can be none
    const TagReading tags;
    ReadProgress progress;

    ShownFile file;
    std::unique_ptr<HostPicture> cover;
    FileIcon icon;       ///< where there is no cover
    std::string failure; ///< why it could not be read; else empty

    // The window's alone.
    bool hasEnded = false;
    bool isLeft = false; ///< goes on by itself, while the panel shows its name and no facts
};

} // namespace sonarin
