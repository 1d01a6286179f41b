// SPDX-License-Identifier: MIT
#pragma once

#include "app/outputBuffer.h"
#include "engine/audioMetaData.h"
#include "platform/host/fileAttributes.h"
#include "text/SvxString.h"

namespace sonarin {

/// Appends what the panel shows of the file, one line per field that is not empty; no facts without a record.
void appendText(OutputBuffer& out, const SvxStringRef& path, const HostFileAttributes& attributes,
                const audioTags* record, bool inColour);

/// Appends a text in UTF-8 so that it stays one line and cannot steer a terminal: control characters, line
/// separators and the marks that reorder text are written as \n, \t, \x1B or \u{202E}, lone surrogates as
/// U+FFFD.
void appendForTerminal(OutputBuffer& out, const SvxStringRef& text);

} // namespace sonarin
