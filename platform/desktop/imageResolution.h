// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace sonarin {

/// Dots per inch, across and down; 0 where the file records none.
struct ImageResolution {
    double horizontal = 0;
    double vertical = 0;
};

/// The resolution that a PNG (pHYs chunk), JPEG (JFIF header) or BMP file records; none for other formats. A
/// decoder fills in the screen's where the file has none, so that the two cannot be told apart afterwards.
[[nodiscard]] ImageResolution recordedResolution(std::span<const std::uint8_t> bytes) noexcept;

} // namespace sonarin
