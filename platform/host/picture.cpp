// SPDX-License-Identifier: MIT
#include "platform/host/picture.h"

namespace sonarin {

namespace {

constinit HostPictureDecoder currentDecoder = nullptr; // NOLINT(*-avoid-non-const-global-variables)

} // namespace

void setHostPictureDecoder(HostPictureDecoder decoder) noexcept {
    currentDecoder = decoder;
}

std::unique_ptr<HostPicture> makeHostPicture(std::span<const std::uint8_t> bytes) {
    return currentDecoder != nullptr ? currentDecoder(bytes) : nullptr;
}

} // namespace sonarin
