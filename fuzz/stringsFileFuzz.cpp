// SPDX-License-Identifier: MIT
#include "text/stringEngine.h"
#include "text/stringsFile.h"

#include <cstdint>

/// A strings table of any bytes, and the texts that are made from it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string content(bytes, bytes + size);
    for (const auto& [key, text] : sonarin::parseStringsFile(content)) {
        (void)sonarin::SvxStringFromUTF8(text);
    }
    return 0;
}
