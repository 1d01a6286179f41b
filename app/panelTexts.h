// SPDX-License-Identifier: MIT
#pragma once

#include "engine/audioMetaData.h"
#include "platform/host/fileAttributes.h"
#include "text/SvxString.h"

/// What the information panel says about a file. The window and the terminal program show these texts
/// unchanged; an absent one shows as "".
namespace sonarin {

/// "Sonarin - " and the file's name.
[[nodiscard]] SvxStringRef panelWindowTitle(const SvxStringRef& path) noexcept;

/// The size of a regular file; "n.a." for anything else.
[[nodiscard]] SvxStringRef panelFileSize(const HostFileAttributes& attributes) noexcept;

/// The texts of the fact fields, by the name of their outlets. The details of the cover picture need the
/// decoded picture and stand apart.
struct PanelFacts {
    SvxStringRef id3DurationField;
    SvxStringRef id3BitrateEtcField;
    SvxStringRef id3SongTitleField;
    SvxStringRef id3ArtistField;
    SvxStringRef id3AlbumField;
    SvxStringRef id3YearField;
    SvxStringRef id3ComposerField;
    SvxStringRef id3EncoderAppField;
    SvxStringRef id3GenreField;
    SvxStringRef id3CommentField;
    SvxStringRef id3TrackNumberField;
    SvxStringRef id3ChannelsField;
    SvxStringRef id3TagVersionField;
};

/// The facts of a file that was read.
[[nodiscard]] PanelFacts panelFacts(const audioTags& record) noexcept;

/// The size of the cover picture in points, in whole numbers, and of its bytes; "" without a cover. A picture
/// that nobody can decode has the size 0 x 0.
[[nodiscard]] SvxStringRef panelCoverDetails(const audioTags& record, const HostPicture* picture) noexcept;

/// The lyrics, or one blank when there are none.
[[nodiscard]] SvxStringRef panelLyrics(const audioTags& record) noexcept;
[[nodiscard]] bool hasLyrics(const audioTags& record) noexcept;

/// A text without the zero characters at its end: a tag text in UTF-16 keeps its terminator.
[[nodiscard]] SvxStringRef withoutTerminators(const SvxStringRef& text) noexcept;

/// Whether there is something to tell the world: both title and artist are present.
[[nodiscard]] bool canTellTwitter(const audioTags& record) noexcept;

} // namespace sonarin
