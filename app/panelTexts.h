// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "platform/host/fileAttributes.h"
#include "text/SvxString.h"

#include <span>
#include <string_view>

/// What the information panel says about a file. The window and the terminal program show these texts
/// unchanged; an absent one shows as "".
namespace sonarin {

/// "Sonarin - " and the file's name.
[[nodiscard]] SvxStringRef panelWindowTitle(const SvxStringRef& path) noexcept;

/// The size of a regular file; "n.a." for anything else.
[[nodiscard]] SvxStringRef panelFileSize(const HostFileAttributes& attributes) noexcept;

/// One fact about a file that was read, and where it is shown. The lines of the text and the members of the
/// JSON stand in the order of their places, those of one place in the order of the facts.
struct PanelFact {
    std::string_view name;  ///< of the value in the window and of the member
    std::string_view label; ///< the value's caption, and the start of the line
    bool hasCaption;        ///< a value without one is called by the label where it is read aloud
    int placeInText;        ///< 0 for none
    int placeInJson;        ///< 0 for none
    /// `cover` is the decoded picture where the window shows one.
    SvxStringRef (*text)(const audioTags& record, const HostPicture* cover) noexcept;
};

/// All facts, in the order of the window.
[[nodiscard]] std::span<const PanelFact> panelFacts() noexcept;
/// Those that the other outputs have, in theirs.
[[nodiscard]] std::span<const PanelFact* const> panelFactsInText() noexcept;
[[nodiscard]] std::span<const PanelFact* const> panelFactsInJson() noexcept;

/// The lyrics, or one blank when there are none.
[[nodiscard]] SvxStringRef panelLyrics(const audioTags& record) noexcept;
[[nodiscard]] bool hasLyrics(const audioTags& record) noexcept;

/// A text without the zero characters at its end: a tag text in UTF-16 keeps its terminator.
[[nodiscard]] SvxStringRef withoutTerminators(const SvxStringRef& text) noexcept;

/// Whether there is something to tell the world: both title and artist are present.
[[nodiscard]] bool canTellTwitter(const audioTags& record) noexcept;

} // namespace sonarin
