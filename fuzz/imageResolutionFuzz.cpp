// SPDX-License-Identifier: MIT
#include "platform/desktop/imageResolution.h"

/// The resolution that an image file of any bytes records, of which sizes are made afterwards.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto [horizontal, vertical] = sonarin::recordedResolution({bytes, size});
    if (!(horizontal >= 0 && horizontal < 1e10 && vertical >= 0 && vertical < 1e10)) {
        __builtin_trap();
    }
    return 0;
}
