// SPDX-License-Identifier: MIT
#include "platform/host/picture.h"

namespace sonarin {

namespace {

constinit HostPictureDecoder currentDecoder = nullptr; // NOLINT(*-avoid-non-const-global-variables)

} // namespace

void setHostPictureDecoder(HostPictureDecoder decoder) noexcept {
    currentDecoder = decoder;
}

std::unique_ptr<HostPicture> makeHostPicture(std::span<const std::uint8_t> bytes,
                                             const std::atomic<bool>* isWanted) {
    return currentDecoder != nullptr ? currentDecoder(bytes, isWanted) : nullptr;
}

} // namespace sonarin
