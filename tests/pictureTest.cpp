// SPDX-License-Identifier: MIT
#include "engine/audioMetaData.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace sonarin {

namespace {

/// Stands for a toolkit's decoder: the picture is as wide as its bytes are many, unless they begin with 'x'.
class CountedPicture final : public HostPicture {
public:
    explicit CountedPicture(double width) : width_(width) {}
    [[nodiscard]] double widthInPoints() const noexcept override { return width_; }
    [[nodiscard]] double heightInPoints() const noexcept override { return 1; }

private:
    double width_;
};

std::unique_ptr<HostPicture> decode(std::span<const std::uint8_t> bytes) {
    return bytes[0] == 'x' ? nullptr : std::make_unique<CountedPicture>(static_cast<double>(bytes.size()));
}

audioTags withCover(std::uint8_t byte, std::uint32_t type) {
    audioTags record;
    record.mp3CoverArt = ByteBlock::allocate(120);
    std::fill_n(record.mp3CoverArt.data(), 120, byte);
    record.mp3CoverArtType = type;
    return record;
}

TEST(CoverArt, IsDecodedByItsBytesAlone) {
    EXPECT_FALSE(amdGetCoverArt(withCover('p', fourCC("JPEG")))); // without a decoder
    setHostPictureDecoder(decode);
    for (const std::uint32_t type : {fourCC("JPEG"), fourCC("BMPf"), std::uint32_t{0}}) {
        const auto picture = amdGetCoverArt(withCover('p', type));
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->widthInPoints(), 120);
    }
    EXPECT_FALSE(amdGetCoverArt(withCover('x', fourCC("JPEG"))));
    EXPECT_FALSE(amdGetCoverArt(audioTags()));
    setHostPictureDecoder(nullptr);
}

} // namespace

} // namespace sonarin
