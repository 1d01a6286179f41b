// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host/bytes.h"
#include "text/SvxString.h"

#include <string>
#include <string_view>

namespace sonarin {

/// Writes the cover of the audio file at `path` to the file `target` ("-" for standard output). An existing
/// file is replaced only with `force`, the audio file itself never. Answers an empty text, or what went
/// wrong.
[[nodiscard]] std::string writeCover(const SvxStringRef& path, ByteView cover, const std::string& target,
                                     bool force);

/// What a file with that picture's bytes should be called by: "jpg", "png" and the like; "bin" for a format
/// that is not known.
[[nodiscard]] std::string_view pictureExtension(ByteView picture) noexcept;

} // namespace sonarin
