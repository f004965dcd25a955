// SPDX-License-Identifier: MIT
// Frames measured against the exact evaluation of the line field (exact_frame_oracle.h):
// the ends of the morph are the images themselves, the field's nodes are where the lines
// say, and a frame between is as close to the exact morph as its grid allows.

#include "engine/exact_frame_oracle.h"
#include "engine/image_conversion.h"
#include "engine/morph_test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>

namespace plyra {
namespace {

// Spacing 7 does not divide 240: node rows fall between whole pixels.
constexpr int kWidth = 320, kHeight = 240;
constexpr float kSpacing = 7.0f;

/// Detail at several scales, like a photograph: a few sines per channel and some noise.
Bitmap texture(unsigned seed)
{
    Bitmap bitmap(kWidth, kHeight);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> noise(0, 11);
    const float phase = float(seed) * 0.7f;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const float fx = float(x), fy = float(y);
            const float r = 110 + 60 * std::sin(fx * 0.05f + phase) + 40 * std::sin(fy * 0.23f);
            const float g = 110 + 70 * std::sin((fx + fy) * 0.09f) + 30 * std::cos(fx * 0.21f - phase);
            const float b = 110 + 80 * std::cos(fy * 0.04f - phase) + 25 * std::sin(fx * fy * 0.002f);
            bitmap.setPixel(x, y, {std::uint8_t(r + float(noise(random))), std::uint8_t(g + float(noise(random))),
                                   std::uint8_t(b + float(noise(random))), 255});
        }
    return bitmap;
}

/// 20 lines as drawn on two pictures of one kind of subject: the whole set turns by a few
/// degrees, grows by 6 % and shifts, and each end moves a little more on its own; some
/// lines dissolve earlier or later than others.
std::vector<MorphLine::Ptr> drawnLines()
{
    std::mt19937 random(42);
    std::uniform_real_distribution<float> where(0.1f, 0.9f), length(0.05f, 0.2f), angle(0.0f, 6.2831853f);
    std::uniform_real_distribution<float> nudge(-0.005f, 0.005f);
    const float turn = 0.05f, grow = 1.06f;
    const auto moved = [&](Point p) {
        const float x = p.x - 0.5f, y = p.y - 0.5f;
        return Point{0.52f + grow * (x * std::cos(turn) - y * std::sin(turn)) + nudge(random),
                     0.49f + grow * (x * std::sin(turn) + y * std::cos(turn)) + nudge(random)};
    };
    std::vector<MorphLine::Ptr> lines;
    for (int k = 0; k < 20; ++k) {
        const Point s{where(random), where(random)};
        const float a = angle(random), len = length(random);
        const Point e{s.x + len * std::cos(a), s.y + len * std::sin(a)};
        MorphLine::Ptr line = test::makeLine(s, e, moved(s), moved(e));
        if (k % 4 == 1)
            test::withDissolve(line, 0.2f, 0.6f);
        if (k % 4 == 3)
            test::withDissolve(line, 0.4f, 0.9f);
        lines.push_back(line);
    }
    return lines;
}

struct Pictures {
    Bitmap first = texture(1);
    Bitmap last = texture(2);
    std::vector<MorphLine::Ptr> lines = drawnLines();
};

const Pictures& pictures()
{
    static const Pictures p;
    return p;
}

MorphCalculationJob::Ptr finishedJob(const Image& first, const Image& last, float t)
{
    const auto morpher = Morpher::create(first, last, pictures().lines);
    const auto job = MorphCalculationJob::create(t, {float(kWidth), float(kHeight)}, kSpacing);
    job->setTrack0Image(first);
    job->setTrack1Image(last);
    morpher->processMorphCalculationJob(*job);
    return job;
}

Bitmap frame(const Image& first, const Image& last, float t)
{
    const std::optional<Bitmap> bitmap = bitmapFromImage(finishedJob(first, last, t)->outputImage());
    EXPECT_TRUE(bitmap.has_value());
    return bitmap.value_or(Bitmap());
}

TEST(ExactFrame, TheEndsOfTheMorphAreTheImagesThemselvesBitForBit)
{
    // Every line ends where it is drawn, so at time 1 every node reads the last image at its
    // own place, between whole rows as the grid puts it: not one byte may differ.
    const Pictures& p = pictures();
    const Image first = Image::fromBitmap(p.first), last = Image::fromBitmap(p.last);
    const struct { Image first, last; float t; const Bitmap& expected; } cases[] = {
        {first, last, 0.0f, p.first}, {first, last, 1.0f, p.last}, {Image(), last, 1.0f, p.last},
        {first, Image(), 0.0f, p.first}};
    for (const auto& c : cases)
        EXPECT_TRUE(frame(c.first, c.last, c.t).samePixels(c.expected)) << "time " << c.t << ", first image "
                                                                        << !c.first.isNull();
}

TEST(ExactFrame, EveryNodeOfAManyLineWarpLiesWhereTheExactFieldPutsIt)
{
    // Both images' positions (the last image's y unrounded) and the dissolve factor of every
    // node, against the field evaluated in double straight from the lines.
    const Pictures& p = pictures();
    for (const float t : {0.25f, 0.5f, 0.8f}) {
        const auto job = finishedJob(Image(), Image(), t);
        const GridSize grid = job->gridSize();
        const std::vector<float>& coords = job->coords();
        const std::vector<float>& lastY = job->exactLastY();
        ASSERT_EQ(lastY.size(), grid.nodeCount());
        const test::ExactField field(p.lines, t);
        for (std::uint32_t j = 0; j < grid.ny; ++j)
            for (std::uint32_t i = 0; i < grid.nx; ++i) {
                const test::ExactFieldValue e = field.at({double(i) / (grid.nx - 1), double(j) / (grid.ny - 1)});
                const std::size_t k = std::size_t{j} * grid.nx + i;
                const float* node = &coords[4 * k];
                const double actual[] = {node[0], node[1], node[2], lastY[k], 2.0 * (node[3] - std::floor(node[3]))};
                const double expected[] = {e.first.x * kWidth, e.first.y * kHeight, e.last.x * kWidth,
                                           e.last.y * kHeight, e.dissolve};
                for (int c = 0; c < 5; ++c)
                    ASSERT_NEAR(actual[c], expected[c], c < 4 ? 2e-3 : 1e-4)
                        << "time " << t << ", node " << i << "," << j << ", value " << c;
            }
    }
}

TEST(ExactFrame, AFrameBetweenIsWithin55DbOfTheExactMorph)
{
    const Pictures& p = pictures();
    const Bitmap middle = frame(Image::fromBitmap(p.first), Image::fromBitmap(p.last), 0.5f);
    const double psnr = test::psnr(middle, test::exactFrame(p.first, p.last, p.lines, 0.5, kWidth, kHeight));
    EXPECT_GE(psnr, 55.0);
    RecordProperty("psnr_dB", std::to_string(psnr));
}

} // namespace
} // namespace plyra
