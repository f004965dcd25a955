// SPDX-License-Identifier: MIT
#include "engine/image_conversion.h"

#include "engine/sample_coords_filter.h"
#include "engine/sampling_test_support.h"
#include "platform/image/kernel.h"
#include "platform/log.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

// Fills every pixel it is asked for with opaque white: an image defined everywhere.
Image everywhereWhite(Rect extent)
{
    auto kernel = std::make_shared<const Kernel>("white", std::vector<KernelArgumentType>{}, [](const KernelCall& call) {
        for (int y = call.output.y; y < call.output.y + call.output.height; ++y)
            for (int x = call.output.x; x < call.output.x + call.output.width; ++x)
                for (int c = 0; c < 4; ++c)
                    call.output.at(x, y)[c] = 255;
    });
    return Image::fromKernel({kernel, {}, extent, nullptr, nullptr});
}

TEST(BitmapFromImage, NullImageGivesNothing)
{
    EXPECT_FALSE(bitmapFromImage(Image()).has_value());
}

TEST(BitmapFromImage, SizesAreTruncated)
{
    LogCapture log;
    const std::optional<Bitmap> bitmap = bitmapFromImage(everywhereWhite({0, 0, 99.7f, 50.2f}));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->width(), 99);
    EXPECT_EQ(bitmap->height(), 50);
    EXPECT_EQ(bitmap->pixel(98, 49), (std::array<std::uint8_t, 4>{255, 255, 255, 255}));
    EXPECT_TRUE(log.lines().empty());
}

TEST(BitmapFromImage, UncoveredPixelsAreTransparent)
{
    // The extent starts at x = 0.6: the bitmap starts at 0, where pixel 0's centre (0.5)
    // lies outside the image.
    const std::optional<Bitmap> bitmap = bitmapFromImage(everywhereWhite({0.6f, 0, 4, 4}));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->width(), 4);
    EXPECT_EQ(bitmap->pixel(0, 0), (std::array<std::uint8_t, 4>{0, 0, 0, 0}));
    EXPECT_EQ(bitmap->pixel(1, 0)[3], 255);

    const Bitmap frame = renderToBitmap(everywhereWhite({2, 3, 4.4f, 2.6f}), {0, 0, 8, 8});
    EXPECT_EQ(frame.pixel(0, 0)[3], 0);
    EXPECT_EQ(frame.pixel(7, 7)[3], 0);
    EXPECT_EQ(frame.pixel(2, 3)[3], 255);
    EXPECT_EQ(frame.pixel(5, 5)[3], 255); // centre (5.5, 5.5) inside [2, 6.4) × [3, 5.6)
    EXPECT_EQ(frame.pixel(6, 5)[3], 0);   // centre 6.5 beyond the right edge
    EXPECT_EQ(frame.pixel(2, 6)[3], 0);   // centre 6.5 beyond the top
}

TEST(BitmapFromImage, InfiniteExtentIsCutTo1024FromItsOrigin)
{
    LogCapture log;
    const std::optional<Bitmap> bitmap = bitmapFromImage(everywhereWhite(Rect::infinite()));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->width(), 1024);
    EXPECT_EQ(bitmap->height(), 1024);
    EXPECT_EQ(bitmap->pixel(1023, 0)[3], 255);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "-[NSBitmapImageRep bitmapWithCIImage:] Trimmed infinite rect to arbitrary finite rect");
}

TEST(BitmapFromImage, FilterOutputBecomesTheFrame)
{
    const Bitmap source = test::textureBitmap(40, 30);
    SampleCoords2Filter filter;
    filter.setDefaults();
    filter.setValue(Image::fromBitmap(source), "inputImage1");
    filter.setValue(test::identityCoords(6, 5, 40, 30, 0), "coordsImage");
    filter.setValue(8.0f, "resolution");
    filter.setExtent({0, 0, 40, 30});
    const std::optional<Bitmap> bitmap = bitmapFromImage(filter.outputImage());
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(bitmap->samePixels(source));
}

} // namespace
} // namespace plyra
