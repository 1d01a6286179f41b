// SPDX-License-Identifier: MIT
#pragma once

#include "app/outputBuffer.h"
#include "app/shownFile.h"

namespace sonarin {

/// Appends one line with one JSON object (RFC 8259, UTF-8): what the record holds and what the panel shows.
/// Control characters are escaped, a lone surrogate is written as its \uXXXX escape.
void appendJson(OutputBuffer& out, const ShownFile& file);

} // namespace sonarin
