// SPDX-License-Identifier: MIT
#pragma once

#include "app/shownFile.h"

#include <string>

namespace sonarin {

/// Writes the cover's bytes as stored to the file `target` ("-" for standard output). An existing file is
/// replaced only with `force`, the audio file itself never. Answers an empty text, or what went wrong.
[[nodiscard]] std::string writeCover(const ShownFile& file, const std::string& target, bool force);

} // namespace sonarin
