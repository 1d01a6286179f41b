// SPDX-License-Identifier: MIT
#pragma once

#include "app/shownFile.h"

#include <cstdint>
#include <span>

namespace sonarin {

/// From now on every path is that of a file of these bytes, without type codes. This library stands in place
/// of engine/fileAccess.cpp and platform/host/fileAttributes.cpp, so that no input costs a call of the
/// system; what reads the files is what ships. As in a sparse file, an aligned run of zero bytes may be a
/// hole.
void serveFile(std::span<const std::uint8_t> bytes);

enum class Form : std::uint8_t { json, text };

/// Makes all that the programs show of the file in one of the forms, and drops it.
void printFile(const ShownFile& file, Form form);

} // namespace sonarin
