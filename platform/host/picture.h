// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

/// Pictures as the program knows them. Who can decode one is settled at run time: the window brings its
/// toolkit's decoder along, the terminal program has none.
namespace sonarin {

/// A decoded picture. A point is 1/72 inch: pixels × 72 ÷ the resolution that the file records in dots per
/// inch.
class HostPicture {
public:
    HostPicture() = default;
    HostPicture(const HostPicture&) = delete;
    HostPicture& operator=(const HostPicture&) = delete;
    virtual ~HostPicture() = default;

    [[nodiscard]] virtual double widthInPoints() const noexcept = 0;
    [[nodiscard]] virtual double heightInPoints() const noexcept = 0;
};

/// Makes a picture of the bytes of an image file, whose format it recognises by the bytes themselves; null
/// for anything else, or soon after `isWanted` (unless null) became false. The bytes are the caller's and
/// need not outlive the call. May be called in any thread.
using HostPictureDecoder = std::unique_ptr<HostPicture> (*)(std::span<const std::uint8_t> bytes,
                                                            const std::atomic<bool>* isWanted);

/// Sets the decoder for the whole program, before there are threads; null for none, as at the start.
void setHostPictureDecoder(HostPictureDecoder decoder) noexcept;

/// The picture in `bytes`; null when they are no image, or nobody can decode it.
[[nodiscard]] std::unique_ptr<HostPicture> makeHostPicture(std::span<const std::uint8_t> bytes,
                                                           const std::atomic<bool>* isWanted = nullptr);

} // namespace sonarin
