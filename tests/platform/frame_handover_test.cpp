// SPDX-License-Identifier: MIT
#include "platform/image/bitmap.h"
#include "platform/movie/rgba_image.h"

#include <gtest/gtest.h>

#include <cstring>

namespace plyra {
namespace {

TEST(FrameHandover, ABitmapsBufferBecomesAMovieFrameWithoutChange)
{
    Bitmap bitmap(5, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            bitmap.setPixel(x, y, {static_cast<std::uint8_t>(x * 40), static_cast<std::uint8_t>(y * 80), 7, 255});
    const Bitmap copy = bitmap;
    ASSERT_EQ(bitmap.bytesPerRow(), 20u);

    const RgbaImage frame = RgbaImage::adoptPixels(bitmap.releasePixels(), 5, 3);
    EXPECT_TRUE(bitmap.isEmpty());
    ASSERT_EQ(frame.width(), 5);
    ASSERT_EQ(frame.height(), 3);
    EXPECT_EQ(frame.bytes().size(), 60u); // the spare bytes after the last row are gone
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) {
            const auto expected = copy.pixel(x, y);
            EXPECT_EQ(0, std::memcmp(frame.pixel(x, y), expected.data(), 4)) << x << "," << y;
        }

    const RgbaImage tooSmall = RgbaImage::adoptPixels(std::vector<std::uint8_t>(10, 255), 5, 3);
    EXPECT_EQ(tooSmall.width(), 5);
    EXPECT_EQ(tooSmall.pixel(4, 2)[3], 0);
}

} // namespace
} // namespace plyra
