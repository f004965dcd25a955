// SPDX-License-Identifier: MIT
#include "platform/image/renderer.h"

#include "platform/image/kernel.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

namespace plyra {
namespace {

using Pixel = std::array<std::uint8_t, 4>;

Bitmap gradient(int width, int height)
{
    Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap.setPixel(x, y, {std::uint8_t(x * 3), std::uint8_t(y * 5), std::uint8_t(x + y), 255});
    return bitmap;
}

/// Copies its one sampler, read with the view's filter at each output pixel centre.
std::shared_ptr<const Kernel> copyKernel()
{
    return std::make_shared<const Kernel>(
        "copy", std::vector<KernelArgumentType>{KernelArgumentType::Sampler}, [](const KernelCall& call) {
            const SamplerView& view = call.samplers[0];
            for (int y = call.output.y; y < call.output.y + call.output.height; ++y)
                for (int x = call.output.x; x < call.output.x + call.output.width; ++x) {
                    const auto value = view.sample(float(x) + 0.5f, float(y) + 0.5f);
                    for (int c = 0; c < 4; ++c)
                        call.output.at(x, y)[c] = std::uint8_t(value[c] + 0.5f);
                }
        });
}

Image copyOf(const Sampler& sampler, Rect extent, RegionOfInterestCallback roi = nullptr)
{
    return Image::fromKernel({copyKernel(), {sampler}, extent, std::move(roi), nullptr});
}

TEST(ImageValue, EqualityIsIdentityAndBadDataGivesNoImage)
{
    const Bitmap pixels = gradient(4, 4);
    const Image a = Image::fromBitmap(pixels);
    const Image copy = a;
    EXPECT_TRUE(a == copy);
    EXPECT_FALSE(a == Image::fromBitmap(pixels));
    EXPECT_EQ(Image::fromBitmap(pixels, 10, 20).extent(), (Rect{10, 20, 4, 4}));
    EXPECT_TRUE(Image::fromBitmap(Bitmap()).isNull());

    std::vector<float> values(2 * 3 * 4, 0.5f);
    const Image image = Image::fromFloatData(values, 32, 2, 3);
    ASSERT_EQ(image.kind(), Image::Kind::FloatBitmap);
    EXPECT_EQ(image.floatBitmap()->pixel(1, 2)[3], 0.5f);
    EXPECT_TRUE(Image::fromFloatData(values, 32, 2, 4).isNull()); // too little data
    EXPECT_TRUE(Image::fromFloatData(values, 16, 2, 3).isNull()); // rows too short
    EXPECT_TRUE(Image::fromFloatData(values, 34, 2, 3).isNull()); // not whole floats
    EXPECT_TRUE(Image::fromFloatData(values, 32, 0, 3).isNull());
    EXPECT_FALSE(Image::fromFloatData(std::vector<float>(12 + 8, 1.0f), 48, 2, 2).isNull()); // padded rows
    EXPECT_TRUE(Image::fromKernel({copyKernel(), {1.0f}, {0, 0, 1, 1}, nullptr, nullptr}).isNull());
    EXPECT_TRUE(Image::fromKernel({nullptr, {}, {0, 0, 1, 1}, nullptr, nullptr}).isNull());
}

TEST(ImageReducedLevel, AveragesBlocksAndKeepsTheResult)
{
    Bitmap pixels(5, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            pixels.setPixel(x, y, {std::uint8_t(x * 10), std::uint8_t(y * 100), 0, 255});
    const Image image = Image::fromBitmap(pixels);
    const auto level1 = image.reducedLevel(1);
    ASSERT_EQ(level1->width(), 3);
    ASSERT_EQ(level1->height(), 2);
    EXPECT_EQ(level1->pixel(0, 0), (Pixel{5, 50, 0, 255}));
    EXPECT_EQ(level1->pixel(2, 0), (Pixel{40, 50, 0, 255})); // odd right edge: column 4 only
    EXPECT_EQ(level1->pixel(1, 1), (Pixel{25, 200, 0, 255})); // odd top edge: row 2 only
    EXPECT_EQ(image.reducedLevel(1), level1);
    EXPECT_EQ(image.reducedLevel(0)->pixel(4, 2), pixels.pixel(4, 2));
    EXPECT_EQ(image.reducedLevel(9)->width(), 1);
    EXPECT_FALSE(image.reducedLevel(-1));
    EXPECT_FALSE(Image().reducedLevel(0));
}

TEST(ImageRenderer, BitmapsComeOutBottomRowFirstAndTransparentOutside)
{
    const Bitmap pixels = gradient(4, 3);
    const Image image = Image::fromBitmap(pixels, 1, 1);
    const Bitmap out = renderToBitmap(image, {0, 0, 6, 5});
    ASSERT_EQ(out.width(), 6);
    ASSERT_EQ(out.height(), 5);
    EXPECT_EQ(out.pixel(1, 1), pixels.pixel(0, 0));
    EXPECT_EQ(out.pixel(4, 3), pixels.pixel(3, 2));
    EXPECT_EQ(out.pixel(0, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(out.pixel(5, 4), (Pixel{0, 0, 0, 0}));
    EXPECT_TRUE(renderToBitmap(image, {0, 0, 0.9f, 5}).isEmpty());
    EXPECT_TRUE(renderToBitmap(Image(), {0, 0, 2, 2}).samePixels(Bitmap(2, 2)));
    // Floats are clamped to bytes.
    const Image floats = Image::fromFloatData({-1.0f, 0.5f, 1.0f, 7.0f}, 16, 1, 1);
    EXPECT_EQ(renderToBitmap(floats, {0, 0, 1, 1}).pixel(0, 0), (Pixel{0, 128, 255, 255}));
}

TEST(ImageRenderer, SamplerMatrixPlacesTheImage)
{
    // Doubled in size and moved by (4, 2): output pixel (x, y) shows image pixel
    // ((x - 4) / 2, (y - 2) / 2).
    const Bitmap pixels = gradient(8, 8);
    const Sampler sampler(Image::fromBitmap(pixels), Matrix{2, 0, 0, 2, 4, 2}, SamplerFilter::Nearest);
    EXPECT_EQ(sampler.extent(), (Rect{4, 2, 16, 16}));
    const Bitmap out = renderToBitmap(copyOf(sampler, sampler.extent()), {0, 0, 24, 20});
    EXPECT_EQ(out.pixel(4, 2), pixels.pixel(0, 0));
    EXPECT_EQ(out.pixel(7, 9), pixels.pixel(1, 3));
    EXPECT_EQ(out.pixel(19, 17), pixels.pixel(7, 7));
    EXPECT_EQ(out.pixel(3, 2)[3], 0);
}

TEST(ImageRenderer, KernelsReadOnlyTheirRegionOfInterest)
{
    // The region (6.5, 6.5)–(9, 9) in pixel-centre terms needs texels 6…9 (bilinear
    // footprint included); everything outside them is poisoned, and reads anywhere,
    // clamped to that block, must never see it.
    Bitmap pixels = gradient(16, 16);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            if (x < 6 || x >= 10 || y < 6 || y >= 10)
                pixels.setPixel(x, y, {255, 0, 255, 255});
    const Sampler sampler(Image::fromBitmap(pixels), Matrix{}, SamplerFilter::Linear);
    const Image image = copyOf(sampler, {0, 0, 16, 16}, [](int, const Rect&, const std::shared_ptr<void>&) {
        return Rect{6.5f, 6.5f, 2.5f, 2.5f};
    });
    const Bitmap out = renderToBitmap(image, {0, 0, 16, 16});
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_NE(out.pixel(x, y), (Pixel{255, 0, 255, 255})) << x << "," << y;
    EXPECT_EQ(out.pixel(7, 7), pixels.pixel(7, 7));
}

TEST(ImageRenderer, KernelInputsAreRenderedOverTheRegionOfInterestOnly)
{
    std::mutex mutex;
    std::vector<std::array<int, 4>> requests;
    auto inner = std::make_shared<const Kernel>("fill", std::vector<KernelArgumentType>{}, [&](const KernelCall& call) {
        std::lock_guard guard(mutex);
        requests.push_back({call.output.x, call.output.y, call.output.width, call.output.height});
        for (int y = call.output.y; y < call.output.y + call.output.height; ++y)
            for (int x = call.output.x; x < call.output.x + call.output.width; ++x)
                call.output.at(x, y)[3] = 255;
    });
    const Image input = Image::fromKernel({inner, {}, {0, 0, 1000, 1000}, nullptr, nullptr});
    const Image outer = copyOf(Sampler(input), {0, 0, 1000, 1000},
                               [](int, const Rect& dest, const std::shared_ptr<void>&) { return dest; });
    RenderOptions options;
    options.tileRows = 5;
    renderToBitmap(outer, {100, 200, 20, 10}, options);
    ASSERT_EQ(requests.size(), 2u);
    for (const auto& r : requests) {
        // The tile plus the footprint of one texel around it.
        EXPECT_GE(r[0], 99);
        EXPECT_LE(r[0] + r[2], 121);
        EXPECT_GE(r[1], 199);
        EXPECT_LE(r[1] + r[3], 211);
    }
}

TEST(ImageRenderer, ShrinkingSamplersReadAReducedLevel)
{
    std::mutex mutex;
    std::vector<int> levels;
    auto probe = std::make_shared<const Kernel>(
        "probe", std::vector<KernelArgumentType>{KernelArgumentType::Sampler}, [&](const KernelCall& call) {
            std::lock_guard guard(mutex);
            levels.push_back(call.samplers[0].level);
        });
    const Image big = Image::fromBitmap(gradient(64, 64));
    for (float scale : {1.0f, 0.6f, 0.25f, 0.1f, 0.001f}) {
        const Image image =
            Image::fromKernel({probe, {Sampler(big, Matrix{scale, 0, 0, scale, 0, 0})}, {0, 0, 1, 1}, nullptr, nullptr});
        renderToBitmap(image, {0, 0, 1, 1});
    }
    EXPECT_EQ(levels, (std::vector<int>{0, 1, 2, 3, 6}));
}

TEST(ImageRenderer, TilesAndThreadsGiveTheSamePixels)
{
    const Sampler sampler(Image::fromBitmap(gradient(37, 23)), Matrix{1.7f, 0.2f, -0.3f, 1.1f, 5, 3},
                          SamplerFilter::Linear);
    const Image image = copyOf(sampler, {0, 0, 70, 40});
    RenderOptions whole;
    whole.maxThreads = 1;
    whole.tileRows = 1000;
    const Bitmap reference = renderToBitmap(image, {0, 0, 70, 40}, whole);
    for (int rows : {1, 7}) {
        for (int threads : {1, 2, 0}) {
            RenderOptions options;
            options.tileRows = rows;
            options.maxThreads = threads;
            EXPECT_TRUE(renderToBitmap(image, {0, 0, 70, 40}, options).samePixels(reference)) << rows << " " << threads;
        }
    }
}

TEST(ImageRenderer, OneImageRendersOnSeveralThreadsAtOnce)
{
    // The reduced levels are built on first use by whichever render gets there first; the
    // reference comes from a picture of its own so that none are built beforehand.
    const auto shrunk = [](const Image& big) {
        return copyOf(Sampler(big, Matrix{0.125f, 0, 0, 0.125f, 0, 0}, SamplerFilter::Linear), {0, 0, 32, 32});
    };
    const Bitmap reference = renderToBitmap(shrunk(Image::fromBitmap(gradient(256, 256))), {0, 0, 32, 32});
    const Image image = shrunk(Image::fromBitmap(gradient(256, 256)));
    std::vector<Bitmap> results(4);
    std::vector<std::thread> threads;
    for (std::size_t k = 0; k < results.size(); ++k)
        threads.emplace_back([&, k] { results[k] = renderToBitmap(image, {0, 0, 32, 32}); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Bitmap& result : results)
        EXPECT_TRUE(result.samePixels(reference));
}

} // namespace
} // namespace plyra
