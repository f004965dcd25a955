// SPDX-License-Identifier: MIT
// Whole frames, from lines to pixels: morpher, warp field, sampling and conversion together.

#include "engine/image_conversion.h"
#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "engine/morph_test_support.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <thread>

namespace plyra {
namespace {

using test::makeLine;
using test::staticLine;
using test::withDissolve;

// 64 × 48 at spacing 3: node rows exactly 3 pixels apart fall on the last image's whole
// rows, so a field without motion samples every pixel at its own centre.
constexpr int kWidth = 64, kHeight = 48;
constexpr float kSpacing = 3.0f;

using Pixel = std::array<std::uint8_t, 4>;

Bitmap texture(int seed)
{
    Bitmap bitmap(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            bitmap.setPixel(x, y, {static_cast<std::uint8_t>((x * 13 + y * 7 + seed * 31) % 256),
                                   static_cast<std::uint8_t>((x * x + y * 3 * seed) % 256),
                                   static_cast<std::uint8_t>((x * y + seed * 90) % 256), 255});
    return bitmap;
}

/// Three horizontal lines moving by (dx, dy) in unit coordinates: so does every point.
std::vector<MorphLine::Ptr> translatingLines(float dx, float dy)
{
    std::vector<MorphLine::Ptr> lines;
    for (const float y : {0.2f, 0.5f, 0.8f})
        lines.push_back(makeLine({0.2f, y}, {0.7f, y}, {0.2f + dx, y + dy}, {0.7f + dx, y + dy}));
    return lines;
}

/// Renders the frame at time t on the calling thread.
Bitmap frame(const Image& first, const Image& last, const std::vector<MorphLine::Ptr>& lines, float t)
{
    const Morpher::Ptr morpher = Morpher::create(first, last, lines);
    const auto job = MorphCalculationJob::create(t, {float(kWidth), float(kHeight)}, kSpacing);
    job->setTrack0Image(first);
    job->setTrack1Image(last);
    morpher->processMorphCalculationJob(*job);
    const std::optional<Bitmap> bitmap = bitmapFromImage(job->outputImage());
    EXPECT_TRUE(bitmap.has_value());
    return bitmap.value_or(Bitmap());
}

/// Counts the channels in [x0, x1) × [y0, y1) that are off by more than 1, reporting three.
template <typename Expected>
int mismatches(const Bitmap& actual, int x0, int y0, int x1, int y1, Expected expected)
{
    int bad = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            for (int c = 0; c < 4; ++c)
                if (const int a = actual.pixel(x, y)[c], e = expected(x, y)[c]; std::abs(a - e) > 1 && bad++ < 3)
                    ADD_FAILURE() << "pixel " << x << "," << y << " channel " << c << ": " << a << ", not " << e;
    return bad;
}

/// The expected pixels of a whole picture, moved by (dx, dy).
auto shifted(const Bitmap& pixels, int dx = 0, int dy = 0)
{
    return [&pixels, dx, dy](int x, int y) { return pixels.pixel(x + dx, y + dy); };
}

TEST(FramePixels, StillLinesGiveTheFirstImageAtTime0AndTheLastAtTime1OrAlone)
{
    const Bitmap firstPixels = texture(1), lastPixels = texture(2);
    const Image first = Image::fromBitmap(firstPixels), last = Image::fromBitmap(lastPixels);
    const struct { Image first; float t; const Bitmap& expected; } cases[] = {
        {first, 0.0f, firstPixels}, {first, 1.0f, lastPixels}, {Image(), 0.5f, lastPixels}};
    for (const auto& c : cases) {
        const Bitmap result = frame(c.first, last, translatingLines(0.0f, 0.0f), c.t);
        ASSERT_EQ(std::pair(result.width(), result.height()), std::pair(kWidth, kHeight));
        EXPECT_EQ(mismatches(result, 0, 0, kWidth, kHeight, shifted(c.expected)), 0) << c.t;
    }
}

TEST(FramePixels, TranslatingLinesShiftTheFirstImageAndTheLastAlsoWhenItIsAlone)
{
    // At time 1 the lines stand 8 pixels right and 6 above their start; with the dissolve
    // held back to the very end, the frame shows the first image moved by that much.
    const Bitmap firstPixels = texture(3);
    std::vector<MorphLine::Ptr> lines = translatingLines(8.0f / kWidth, 6.0f / kHeight);
    for (auto& line : lines)
        withDissolve(line, 1.0f, 1.0f);
    const Bitmap result = frame(Image::fromBitmap(firstPixels), Image::fromBitmap(texture(4)), lines, 1.0f);
    EXPECT_EQ(mismatches(result, 8, 6, kWidth, kHeight, shifted(firstPixels, -8, -6)), 0);
    // Beyond the picture's edge the edge pixels repeat.
    EXPECT_EQ(mismatches(result, 0, 6, 8, kHeight, [&](int, int y) { return firstPixels.pixel(0, y - 6); }), 0);
    // At time 0 the last image is read 8 right and 6.5 above, between two rows; alone, even
    // undissolved.
    const Bitmap lastPixels = texture(5);
    lines = translatingLines(8.0f / kWidth, 6.5f / kHeight);
    const auto between = [&](int x, int y) {
        const Pixel a = lastPixels.pixel(x + 8, y + 6), b = lastPixels.pixel(x + 8, y + 7);
        return Pixel{std::uint8_t((a[0] + b[0] + 1) / 2), std::uint8_t((a[1] + b[1] + 1) / 2),
                     std::uint8_t((a[2] + b[2] + 1) / 2), 255};
    };
    for (const Image& first : {Image::fromBitmap(texture(6)), Image()}) {
        for (auto& line : lines)
            withDissolve(line, 0.0f, first.isNull() ? 1.0f : 0.0f);
        const Bitmap moved = frame(first, Image::fromBitmap(lastPixels), lines, 0.0f);
        EXPECT_EQ(mismatches(moved, 0, 0, kWidth - 8, kHeight - 7, between), 0) << first.isNull();
    }
}

TEST(FramePixels, TheDissolveFactorBlendsTheTwoImages)
{
    Bitmap firstPixels(kWidth, kHeight), lastPixels(kWidth, kHeight);
    firstPixels.fill({200, 100, 40, 255});
    lastPixels.fill({0, 100, 240, 255});
    const Image first = Image::fromBitmap(firstPixels), last = Image::fromBitmap(lastPixels);
    const Bitmap quarter = frame(first, last, translatingLines(0.0f, 0.0f), 0.25f);
    EXPECT_EQ(mismatches(quarter, 0, 0, kWidth, kHeight, [](int, int) { return Pixel{150, 100, 90, 255}; }), 0);
    // At t = 0.5, around a line dissolved in the first half the last image shows already;
    // around one dissolving in the second half, still the first.
    const auto early = withDissolve(staticLine({0.05f, 0.1f}, {0.05f, 0.9f}), 0.0f, 0.5f);
    const auto late = withDissolve(staticLine({0.95f, 0.1f}, {0.95f, 0.9f}), 0.5f, 1.0f);
    const Bitmap half = frame(first, last, {early, late}, 0.5f);
    const Pixel nearEarly = half.pixel(3, 24), nearLate = half.pixel(60, 24), middle = half.pixel(32, 24);
    EXPECT_LT(nearEarly[0], 20);
    EXPECT_GT(nearLate[0], 180);
    EXPECT_GT(middle[0], nearEarly[0]);
    EXPECT_LT(middle[0], nearLate[0]);
}

TEST(FramePixels, WorkersComputeFramesTheMainThreadOnlyPolls)
{
    const Bitmap firstPixels = texture(8), lastPixels = texture(9);
    const Morpher::Ptr morpher =
        Morpher::create(Image::fromBitmap(firstPixels), Image::fromBitmap(lastPixels), translatingLines(0.0f, 0.0f));
    std::vector<MorphCalculationJob::Ptr> jobs;
    for (const float t : {0.0f, 0.5f, 1.0f})
        jobs.push_back(MorphCalculationJob::create(t, {float(kWidth), float(kHeight)}, kSpacing));
    morpher->runMorphCalculationJobs(jobs);
    std::vector<std::optional<Bitmap>> frames(jobs.size());
    for (std::size_t done = 0; done < jobs.size(); std::this_thread::yield()) {
        done = 0;
        for (std::size_t k = 0; k < jobs.size(); ++k) {
            if (!frames[k] && jobs[k]->isDone())
                frames[k] = bitmapFromImage(jobs[k]->outputImage());
            done += frames[k] ? 1 : 0;
        }
    }
    morpher->clearJobQueue();
    EXPECT_EQ(mismatches(*frames[0], 0, 0, kWidth, kHeight, shifted(firstPixels)), 0);
    EXPECT_EQ(mismatches(*frames[2], 0, 0, kWidth, kHeight, shifted(lastPixels)), 0);
    // Halfway, each pixel lies between the two pictures' values.
    const auto mean = [&](int x, int y) {
        const Pixel a = firstPixels.pixel(x, y), b = lastPixels.pixel(x, y);
        return Pixel{std::uint8_t((a[0] + b[0] + 1) / 2), std::uint8_t((a[1] + b[1] + 1) / 2),
                     std::uint8_t((a[2] + b[2] + 1) / 2), 255};
    };
    EXPECT_EQ(mismatches(*frames[1], 0, 0, kWidth, kHeight, mean), 0);
}

} // namespace
} // namespace plyra
