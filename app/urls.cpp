// SPDX-License-Identifier: MIT
#include "app/urls.h"

#include "text/stringEngine.h"

namespace sonarin {

SvxStringRef twitterUrl(const audioTags& record) noexcept {
    return SvxStringCreateWithFormat(
        "http://twitter.com/home/?status=Listening+to:+%@+-+%@",
        {SvxStringConvertToURL(record.mp3ArtistString), SvxStringConvertToURL(record.mp3SongTitleString)});
}

} // namespace sonarin
