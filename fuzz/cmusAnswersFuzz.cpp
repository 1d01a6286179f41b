// SPDX-License-Identifier: MIT
#include "platform/desktop/programAnswers.h"

#include <cstdint>

/// What cmus answers through its socket, any number of answers behind one another.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    QByteArray received(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    while (const auto answer = sonarin::takeCmusAnswer(&received)) {
        (void)sonarin::fileInCmusStatus(*answer);
    }
    return 0;
}
