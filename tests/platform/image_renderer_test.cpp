// SPDX-License-Identifier: MIT
#include "platform/image/renderer.h"

#include "platform/image/kernel.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

namespace plyra {
namespace {

using Pixel = std::array<std::uint8_t, 4>;

template <typename PixelAt>
Bitmap pattern(int width, int height, PixelAt pixelAt)
{
    Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bitmap.setPixel(x, y, pixelAt(x, y));
    return bitmap;
}

Pixel gradientPixel(int x, int y) { return {std::uint8_t(x * 3), std::uint8_t(y * 5), std::uint8_t(x + y), 255}; }
Bitmap gradient(int width, int height) { return pattern(width, height, gradientPixel); }

/// A kernel with no inputs or one sampler, running `body` for each output tile.
std::shared_ptr<const Kernel> kernel(const char* name, bool withSampler, KernelFunction body)
{
    const auto signature = withSampler ? std::vector{KernelArgumentType::Sampler} : std::vector<KernelArgumentType>{};
    return std::make_shared<const Kernel>(name, signature, std::move(body));
}

/// Copies its one sampler, read with the view's filter at each output pixel centre.
std::shared_ptr<const Kernel> copyKernel()
{
    return kernel("copy", true, [](const KernelCall& call) {
        for (int y = call.output.y; y < call.output.y + call.output.height; ++y)
            for (int x = call.output.x; x < call.output.x + call.output.width; ++x) {
                const auto value = call.samplers[0].sample(float(x) + 0.5f, float(y) + 0.5f);
                for (int c = 0; c < 4; ++c)
                    call.output.at(x, y)[c] = std::uint8_t(value[c] + 0.5f);
            }
    });
}

Image copyOf(const Sampler& sampler, Rect extent, RegionOfInterestCallback roi = nullptr)
{
    return Image::fromKernel({copyKernel(), {sampler}, extent, std::move(roi), nullptr});
}

TEST(ImageReducedLevel, AveragesBlocksAndKeepsTheResult)
{
    const auto pixelAt = [](int x, int y) { return Pixel{std::uint8_t(x * 10), std::uint8_t(y * 100), 0, 255}; };
    const Bitmap pixels = pattern(5, 3, pixelAt);
    const Image image = Image::fromBitmap(pixels);
    const auto level1 = image.reducedLevel(1);
    ASSERT_EQ(std::pair(level1->width(), level1->height()), std::pair(3, 2));
    EXPECT_EQ(level1->pixel(0, 0), (Pixel{5, 50, 0, 255}));
    EXPECT_EQ(level1->pixel(2, 0), (Pixel{40, 50, 0, 255})); // odd right edge: column 4 only
    EXPECT_EQ(level1->pixel(1, 1), (Pixel{25, 200, 0, 255})); // odd top edge: row 2 only
    EXPECT_EQ(image.reducedLevel(1), level1);
    EXPECT_EQ(image.reducedLevel(0)->pixel(4, 2), pixels.pixel(4, 2));
    EXPECT_EQ(image.reducedLevel(9)->width(), 1);
    EXPECT_FALSE(image.reducedLevel(-1) || Image().reducedLevel(0));
}

TEST(ImageRenderer, BitmapsComeOutBottomRowFirstPlacedBySamplerMatricesAndBadDataGivesNoImage)
{
    const Bitmap pixels = gradient(4, 4);
    const Image image = Image::fromBitmap(pixels, 1, 1);
    const Bitmap out = renderToBitmap(image, {0, 0, 6, 5});
    ASSERT_EQ(std::pair(out.width(), out.height()), std::pair(6, 5));
    EXPECT_EQ(std::pair(out.pixel(1, 1), out.pixel(4, 3)), std::pair(pixels.pixel(0, 0), pixels.pixel(3, 2)));
    EXPECT_EQ(std::pair(out.pixel(0, 0), out.pixel(5, 4)), std::pair(Pixel{0, 0, 0, 0}, Pixel{0, 0, 0, 0}));
    EXPECT_TRUE(renderToBitmap(image, {0, 0, 0.9f, 5}).isEmpty());
    EXPECT_TRUE(renderToBitmap(Image(), {0, 0, 2, 2}).samePixels(Bitmap(2, 2)));
    const Image floats = Image::fromFloatData({-1.0f, 0.5f, 1.0f, 7.0f}, 16, 1, 1);
    EXPECT_EQ(renderToBitmap(floats, {0, 0, 1, 1}).pixel(0, 0), (Pixel{0, 128, 255, 255})); // clamped

    // Doubled in size and moved by (4, 2): output (x, y) shows image ((x - 4) / 2, (y - 2) / 2).
    const Bitmap big = gradient(8, 8);
    const Sampler sampler(Image::fromBitmap(big), Matrix{2, 0, 0, 2, 4, 2}, SamplerFilter::Nearest);
    EXPECT_EQ(sampler.extent(), (Rect{4, 2, 16, 16}));
    const Bitmap placed = renderToBitmap(copyOf(sampler, sampler.extent()), {0, 0, 24, 20});
    EXPECT_EQ((std::array{placed.pixel(4, 2), placed.pixel(7, 9), placed.pixel(19, 17)}),
              (std::array{big.pixel(0, 0), big.pixel(1, 3), big.pixel(7, 7)}));
    EXPECT_EQ(placed.pixel(3, 2)[3], 0);
    // Images are equal only to themselves; bad data gives no image.
    EXPECT_TRUE(image == Image(image));
    EXPECT_FALSE(image == Image::fromBitmap(pixels, 1, 1));
    EXPECT_EQ(Image::fromBitmap(pixels, 10, 20).extent(), (Rect{10, 20, 4, 4}));
    EXPECT_TRUE(Image::fromBitmap(Bitmap()).isNull());

    std::vector<float> values(2 * 3 * 4, 0.5f);
    const Image floatImage = Image::fromFloatData(values, 32, 2, 3);
    ASSERT_EQ(floatImage.kind(), Image::Kind::FloatBitmap);
    EXPECT_EQ(floatImage.floatBitmap()->pixel(1, 2)[3], 0.5f);
    // Too little data, rows too short, not whole floats, no width; padded rows are fine.
    for (const auto& [bytesPerRow, width, height] : {std::tuple{32, 2, 4}, {16, 2, 3}, {34, 2, 3}, {32, 0, 3}})
        EXPECT_TRUE(Image::fromFloatData(values, bytesPerRow, width, height).isNull()) << bytesPerRow;
    EXPECT_FALSE(Image::fromFloatData(std::vector<float>(12 + 8, 1.0f), 48, 2, 2).isNull());
    EXPECT_TRUE(Image::fromKernel({copyKernel(), {1.0f}, {0, 0, 1, 1}, nullptr, nullptr}).isNull());
    EXPECT_TRUE(Image::fromKernel({nullptr, {}, {0, 0, 1, 1}, nullptr, nullptr}).isNull());
}

TEST(ImageRenderer, KernelsReadAndPullTheirInputsOverTheRegionOfInterestOnly)
{
    // Region (6.5, 6.5)–(9, 9) needs texels 6…9 with the bilinear footprint; reads, clamped
    // to that block, never see the poison around it.
    const Bitmap pixels = pattern(16, 16, [](int x, int y) {
        return x < 6 || x >= 10 || y < 6 || y >= 10 ? Pixel{255, 0, 255, 255} : gradientPixel(x, y);
    });
    const auto roi = [](int, const Rect&, const std::shared_ptr<void>&) { return Rect{6.5f, 6.5f, 2.5f, 2.5f}; };
    const Sampler linear(Image::fromBitmap(pixels), Matrix{}, SamplerFilter::Linear);
    const Bitmap out = renderToBitmap(copyOf(linear, {0, 0, 16, 16}, roi), {0, 0, 16, 16});
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_NE(out.pixel(x, y), (Pixel{255, 0, 255, 255})) << x << "," << y;
    EXPECT_EQ(out.pixel(7, 7), pixels.pixel(7, 7));

    // A kernel input is rendered per tile, over the tile plus one texel of footprint.
    std::mutex mutex;
    std::vector<std::array<int, 4>> requests;
    const auto fill = kernel("fill", false, [&](const KernelCall& call) {
        const std::lock_guard guard(mutex);
        requests.push_back({call.output.x, call.output.y, call.output.width, call.output.height});
    });
    const Image outer = copyOf(Sampler(Image::fromKernel({fill, {}, {0, 0, 1000, 1000}, nullptr, nullptr})),
                               {0, 0, 1000, 1000},
                               [](int, const Rect& dest, const std::shared_ptr<void>&) { return dest; });
    renderToBitmap(outer, {100, 200, 20, 10}, {.tileRows = 5});
    ASSERT_EQ(requests.size(), 2u);
    for (const auto& r : requests)
        EXPECT_TRUE(r[0] >= 99 && r[0] + r[2] <= 121 && r[1] >= 199 && r[1] + r[3] <= 211) << r[0] << "," << r[1];
}

TEST(ImageRenderer, TilesThreadsAndConcurrentRendersGiveTheSamePixels)
{
    const Image image = copyOf(
        Sampler(Image::fromBitmap(gradient(37, 23)), Matrix{1.7f, 0.2f, -0.3f, 1.1f, 5, 3}, SamplerFilter::Linear),
        {0, 0, 70, 40});
    const Bitmap reference = renderToBitmap(image, {0, 0, 70, 40}, {.maxThreads = 1, .tileRows = 1000});
    for (int rows : {1, 7})
        for (int threads : {1, 2, 0})
            EXPECT_TRUE(renderToBitmap(image, {0, 0, 70, 40}, {.maxThreads = threads, .tileRows = rows})
                            .samePixels(reference))
                << rows << " " << threads;

    // One image on several threads at once: the reduced levels are built on first use by
    // whichever render gets there first; the reference comes from a picture of its own.
    const auto shrunk = [](const Image& big) {
        return copyOf(Sampler(big, Matrix{0.125f, 0, 0, 0.125f, 0, 0}, SamplerFilter::Linear), {0, 0, 32, 32});
    };
    const Bitmap small = renderToBitmap(shrunk(Image::fromBitmap(gradient(256, 256))), {0, 0, 32, 32});
    const Image shared = shrunk(Image::fromBitmap(gradient(256, 256)));
    std::vector<Bitmap> results(4);
    std::vector<std::thread> threads;
    for (std::size_t k = 0; k < results.size(); ++k)
        threads.emplace_back([&, k] { results[k] = renderToBitmap(shared, {0, 0, 32, 32}); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Bitmap& result : results)
        EXPECT_TRUE(result.samePixels(small));
}

} // namespace
} // namespace plyra
