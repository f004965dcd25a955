// SPDX-License-Identifier: MIT
#include "engine/warp_field.h"

#include "engine/morph_test_support.h"
#include "engine/warp_field_internal.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace plyra {
namespace {

using test::computeField;
using test::makeLine;
using test::Node;
using test::staticLine;
using test::withDissolve;

constexpr float kDissolveTolerance = 1e-5f;

float gridU(std::size_t i, std::uint32_t n)
{
    return static_cast<float>(i) / static_cast<float>(n - 1);
}

/// The field a morpher's lines give at time t, computed straight on a WarpField.
WarpLines warpLinesOf(const Morpher& morpher, float t)
{
    const std::size_t n = morpher.morphLines().size();
    WarpLines lines;
    lines.toFirst.resize(n);
    lines.toLast.resize(n);
    lines.atTime.resize(n);
    morpher.fillTransMatrixes(lines.toFirst.data(), 0.0f, t);
    morpher.fillTransMatrixes(lines.toLast.data(), 1.0f, t);
    morpher.fillDestLineCoordinates(lines.atTime.data(), t);
    for (const MorphLine::Ptr& line : morpher.morphLines()) {
        lines.dissolveStart.push_back(line->dissolveStartTime());
        lines.dissolveEnd.push_back(line->dissolveEndTime());
    }
    return lines;
}

std::vector<float> buffer(GridSize grid)
{
    return std::vector<float>(4 * (grid.nx + 1) * (grid.ny + 1), 0.0f);
}

TEST(WarpGridSize, NodesPerSideFromTheSpacingAndBoundedForNonsense)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float width, height, spacing;
        GridSize grid;
    } cases[] = {{100, 50, 7, {16, 9}},       {1920, 1080, 7, {276, 156}}, {64, 48, 8, {9, 7}},
                 {200, 150, 6, {35, 26}},     {0, 0, 7, {1, 1}},           {-100, 50, 7, {1, 9}},
                 {nan, 50, 7, {1, 9}},        {100, 50, 0, {kMaxGridSide, kMaxGridSide}},
                 {100, 50, nan, {1, 1}}};
    for (const auto& c : cases)
        EXPECT_EQ(warpGridSize(c.width, c.height, c.spacing), c.grid) << c.width << " " << c.height << " " << c.spacing;
}

TEST(WarpField, StillLinesOrNoLinesSampleEveryNodeAtItsOwnPlace)
{
    const float w = 64.0f, h = 48.0f;
    const struct {
        std::vector<MorphLine::Ptr> lines;
        float t;
    } cases[] = {{{staticLine({0.2f, 0.5f}, {0.8f, 0.5f})}, 0.3f}, {{}, 0.25f}};
    for (const auto& c : cases) {
        const auto field = computeField(c.lines, c.t, w, h, 5.0f);
        ASSERT_EQ(field.grid, (GridSize{14, 11}));
        for (std::size_t j = 0; j < field.grid.ny; ++j) {
            for (std::size_t i = 0; i < field.grid.nx; ++i) {
                const Node n = field.node(i, j);
                EXPECT_EQ(n.x0, w * gridU(i, field.grid.nx)) << i << "," << j;
                EXPECT_EQ(n.y0, h * gridU(j, field.grid.ny)) << i << "," << j;
                EXPECT_EQ(n.x1, n.x0) << i << "," << j;
                EXPECT_EQ(n.row(), std::floor(n.y0)) << i << "," << j;
                EXPECT_NEAR(n.dissolve(), c.t, kDissolveTolerance) << i << "," << j;
            }
        }
        EXPECT_EQ(field.job->maxDisplacement0(), (Rect{0, 0, 0, 0}));
        EXPECT_EQ(field.job->maxDisplacement1(), (Rect{0, 0, 0, 0}));
    }
}

TEST(WarpField, GridOf100By50AtSpacing7HasItsCornersOnTheFrameEdges)
{
    const auto field = computeField({staticLine({0.1f, 0.1f}, {0.9f, 0.1f})}, 0.0f, 100.0f, 50.0f, 7.0f);
    ASSERT_EQ(field.grid, (GridSize{16, 9}));
    const Node topRight = field.node(15, 8);
    EXPECT_EQ(topRight.x0, 100.0f);
    EXPECT_EQ(topRight.y0, 50.0f);
    EXPECT_EQ(topRight.x1, 100.0f);
    EXPECT_EQ(topRight.row(), 50.0f);
    const Node second = field.node(1, 0);
    EXPECT_EQ(second.x0, 100.0f * (1.0f / 15.0f));
    EXPECT_EQ(second.y0, 0.0f);
    const Node origin = field.node(0, 0);
    EXPECT_EQ(origin.x0, 0.0f);
    EXPECT_EQ(origin.y0, 0.0f);
    EXPECT_EQ(origin.dissolve(), 0.0f); // at time 0 the dissolve has not started anywhere
}

TEST(WarpField, DissolveIntervalsAndInstantsGiveEveryNodeTheirFactor)
{
    // Instants (start = end) switch after their time, except at 0 where they always have.
    const struct {
        float start, end, t, f;
    } cases[] = {{0.2f, 0.6f, 0.1f, 0}, {0.2f, 0.6f, 0.2f, 0}, {0.2f, 0.6f, 0.4f, 0.5f}, {0.2f, 0.6f, 0.6f, 1},
                 {0.2f, 0.6f, 0.8f, 1}, {0.5f, 0.5f, 0.5f, 0}, {0.5f, 0.5f, 0.51f, 1},  {0.5f, 0.5f, 0.2f, 0},
                 {0, 0, 0, 1},          {0, 0, 0.5f, 1},       {0, 0, 1, 1}};
    for (const auto& c : cases) {
        const auto line = withDissolve(staticLine({0.2f, 0.5f}, {0.8f, 0.5f}), c.start, c.end);
        const auto field = computeField({line}, c.t, 64.0f, 48.0f, 8.0f);
        for (std::size_t j = 0; j < field.grid.ny; ++j)
            for (std::size_t i = 0; i < field.grid.nx; ++i)
                ASSERT_NEAR(field.node(i, j).dissolve(), c.f, c.start == c.end ? 0.0f : kDissolveTolerance) << c.start << "-" << c.end << " at " << c.t;
    }
}

TEST(WarpFieldDissolveFactor, IntervalInstantAndOutOfOrderTimes)
{
    // Bounds and the near-instant threshold the field cases above do not reach.
    using warp::dissolveFactor;
    EXPECT_EQ(dissolveFactor(0.2f, 0.6f, 0.1999f), 0.0f);
    EXPECT_NEAR(dissolveFactor(0.2f, 0.6f, 0.2001f), 0.00025f, 1e-6f);
    EXPECT_EQ(dissolveFactor(0.5f, 0.50005f, 0.5f), 0.0f); // an instant, not an interval
    EXPECT_EQ(dissolveFactor(0.5f, 0.50005f, 0.5002f), 1.0f);
    EXPECT_EQ(dissolveFactor(0.00005f, 0.00005f, 0.0f), 1.0f);
    EXPECT_EQ(dissolveFactor(0.6f, 0.2f, 0.4f), 0.0f); // reversed span clamps to 0
    EXPECT_EQ(dissolveFactor(0.2f, 0.6f, std::numeric_limits<float>::quiet_NaN()), 1.0f);
}

TEST(WarpField, NegativeLastImageRowStillDecodes)
{
    // The arithmetic of the packing itself: floor(−3.2) + 0.5 · 0.6.
    const float packed = static_cast<float>(static_cast<double>(std::floor(-3.2f)) + 0.5 * 0.6);
    const Node direct{0, 0, 0, packed};
    EXPECT_EQ(direct.row(), -4.0f);
    EXPECT_NEAR(direct.dissolve(), 0.6f, 1e-6f);

    // A line 0.128 lower on the last image: at t = 0.5 the bottom row samples the last
    // image 0.064 · 50 = 3.2 pixels below the frame.
    const auto field = computeField({makeLine({0.2f, 0.5f}, {0.8f, 0.5f}, {0.2f, 0.372f}, {0.8f, 0.372f})},
                                    0.5f, 100.0f, 50.0f, 7.0f);
    const Node n = field.node(3, 0);
    EXPECT_EQ(n.row(), -4.0f);
    EXPECT_NEAR(n.dissolve(), 0.5f, kDissolveTolerance);
    EXPECT_NEAR(n.y0, 3.2f, 1e-4f);
}

TEST(WarpField, DisplacementBoundsOfATranslatingLineInPixels)
{
    // The line moves by 0.2 across the morph, so at t = 0.5 every point lies 0.1 to the
    // right of where it was on the first image and 0.1 left of where it will be.
    const float w = 64.0f, h = 48.0f;
    const auto field = computeField({makeLine({0.1f, 0.5f}, {0.6f, 0.5f}, {0.3f, 0.5f}, {0.8f, 0.5f})},
                                    0.5f, w, h, 4.0f);
    for (const auto& [d, x] : {std::pair{field.job->maxDisplacement0(), -0.1f * w},
                               std::pair{field.job->maxDisplacement1(), 0.1f * w}}) {
        EXPECT_NEAR(d.x, x, 1e-4f);
        EXPECT_NEAR(d.width, 0.0f, 1e-4f);
        EXPECT_EQ(d.y, 0.0f);
        EXPECT_EQ(d.height, 0.0f);
    }
    EXPECT_NEAR(field.node(4, 4).x0, w * (4.0f / 16.0f) - 0.1f * w, 1e-4f);
    EXPECT_NEAR(field.node(4, 4).x1, w * (4.0f / 16.0f) + 0.1f * w, 1e-4f);
}

TEST(WarpField, LinesWeighByTheirLengthAndTheInverseSquareOfTheirDistance)
{
    // Frames of 10 × 10 at spacing 1; node (5, 4) lies 0.1 above line A (moves right by 0.1
    // on the last image) and 0.4 below line B (moves left by 0.1). Node (5, 5) lies 0.1
    // from C and D; D is twice as long as C.
    const float wA = 0.6f / 0.01f, wB = 0.6f / 0.16f;
    const struct {
        MorphLine::Ptr first, second;
        std::size_t j;
        float shift;
    } cases[] = {{makeLine({0.2f, 0.3f}, {0.8f, 0.3f}, {0.3f, 0.3f}, {0.9f, 0.3f}),
                  makeLine({0.2f, 0.8f}, {0.8f, 0.8f}, {0.1f, 0.8f}, {0.7f, 0.8f}), 4, (wA * 0.1f - wB * 0.1f) / (wA + wB)},
                 {makeLine({0.2f, 0.4f}, {0.8f, 0.4f}, {0.3f, 0.4f}, {0.9f, 0.4f}),
                  makeLine({-0.1f, 0.6f}, {1.1f, 0.6f}, {-0.2f, 0.6f}, {1.0f, 0.6f}), 5, (0.1f - 2.0f * 0.1f) / 3.0f}};
    for (const auto& c : cases) {
        const Node n = computeField({c.first, c.second}, 0.0f, 10.0f, 10.0f, 1.0f).node(5, c.j);
        EXPECT_NEAR(n.x1 / 10.0f - 0.5f, c.shift, 1e-5f) << c.j;
        EXPECT_EQ(n.x0, 5.0f); // at time 0 the first image is sampled where the node is
    }
}

void expectFinite(const test::ComputedField& field)
{
    for (std::size_t j = 0; j < field.grid.ny; ++j) {
        for (std::size_t i = 0; i < field.grid.nx; ++i) {
            const Node n = field.node(i, j);
            ASSERT_TRUE(std::isfinite(n.x0) && std::isfinite(n.y0) && std::isfinite(n.x1) && std::isfinite(n.packed))
                << i << "," << j;
            ASSERT_GE(n.dissolve(), 0.0f);
            ASSERT_LE(n.dissolve(), 1.0f);
        }
    }
}

TEST(WarpFieldDegenerate, ANodeOnALineTakesThatLinesDisplacement)
{
    // Node (5, 5) lies exactly on line A (distance 0); line B is far away.
    const auto lineA = makeLine({0.2f, 0.5f}, {0.8f, 0.5f}, {0.3f, 0.5f}, {0.9f, 0.5f});
    const auto lineB = makeLine({0.2f, 0.1f}, {0.8f, 0.1f}, {0.1f, 0.1f}, {0.7f, 0.1f});
    const auto field = computeField({lineA, lineB}, 0.0f, 10.0f, 10.0f, 1.0f);
    expectFinite(field);
    EXPECT_NEAR(field.node(5, 5).x1, 10.0f * (0.5f + 0.1f), 1e-5f);
    // The end points of a line are on it too.
    EXPECT_NEAR(field.node(2, 5).x1, 10.0f * (0.2f + 0.1f), 1e-5f);
    EXPECT_NEAR(field.node(8, 5).x1, 10.0f * (0.8f + 0.1f), 1e-5f);
}

TEST(WarpFieldDegenerate, ACollapsedLineCountsOnlyWhenNoOtherLineCan)
{
    const auto moving = makeLine({0.2f, 0.3f}, {0.8f, 0.3f}, {0.3f, 0.3f}, {0.9f, 0.3f});
    // A line whose ends coincide at every time, somewhere off the grid's nodes.
    const auto point = makeLine({0.53f, 0.77f}, {0.53f, 0.77f}, {0.43f, 0.47f}, {0.43f, 0.47f});
    const auto alone = computeField({moving}, 0.0f, 10.0f, 10.0f, 1.0f);
    const auto both = computeField({moving, point}, 0.0f, 10.0f, 10.0f, 1.0f);
    expectFinite(both);
    for (std::size_t j = 0; j < both.grid.ny; ++j)
        for (std::size_t i = 0; i < both.grid.nx; ++i)
            EXPECT_NEAR(both.node(i, j).x1, alone.node(i, j).x1, 1e-5f) << i << "," << j;

    // Collapsed lines alone still warp the frame, finitely: here everything moves by the
    // point's own translation (−0.1, −0.3).
    const auto only = computeField({point}, 0.0f, 10.0f, 10.0f, 1.0f);
    expectFinite(only);
    EXPECT_NEAR(only.node(4, 6).x1, 4.0f - 1.0f, 1e-4f);
    EXPECT_NEAR(only.node(4, 6).row(), std::floor(6.0f - 3.0f), 0.0f);
}

TEST(WarpFieldDegenerate, LinesWithNonFiniteNumbersTakeNoPart)
{
    const auto morpher = Morpher::create(Image(), Image(),
                                         {makeLine({0.2f, 0.3f}, {0.8f, 0.3f}, {0.3f, 0.3f}, {0.9f, 0.3f})});
    WarpLines good = warpLinesOf(*morpher, 0.4f);
    WarpLines damaged = good;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const auto add = [&](AffineTransform toFirst, LineCoords atTime) {
        damaged.toFirst.push_back(toFirst);
        damaged.toLast.push_back({});
        damaged.atTime.push_back(atTime);
        damaged.dissolveStart.push_back(0.0f);
        damaged.dissolveEnd.push_back(1.0f);
    };
    add({nan, 0, 0, 1, 0, 0}, {{0.1f, 0.1f}, {0.2f, 0.2f}, 0.14f});
    add({}, {{0.1f, 0.1f}, {1e30f, 0.2f}, inf});

    const GridSize grid{9, 7};
    std::vector<float> expected = buffer(grid), actual = buffer(grid);
    WarpField(good, 0.4f, 64.0f, 48.0f, grid).compute(expected.data());
    WarpField(damaged, 0.4f, 64.0f, 48.0f, grid).compute(actual.data());
    EXPECT_EQ(actual, expected);
}

/// 100 lines from a fixed seed with moves, stretches, turns, dissolve timings, a few
/// collapsed lines and a few passing exactly through grid nodes.
std::vector<MorphLine::Ptr> randomLines(unsigned seed, bool varyDissolve)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> position(-0.1f, 1.1f);
    std::uniform_real_distribution<float> time(0.0f, 1.0f);
    std::vector<MorphLine::Ptr> lines;
    for (int k = 0; k < 100; ++k) {
        Point s0{position(random), position(random)}, e0{position(random), position(random)};
        Point s1{position(random), position(random)}, e1{position(random), position(random)};
        if (k % 17 == 0)
            e1 = s1; // collapses at time 1
        if (k % 23 == 0)
            s0 = e0 = s1 = e1 = {0.25f, 0.5f}; // a point on a node (10 × 10 grid)
        if (k % 29 == 0) {
            s0 = s1 = {0.0f, 0.25f};
            e0 = e1 = {1.0f, 0.25f}; // along a row of nodes
        }
        MorphLine::Ptr line = makeLine(s0, e0, s1, e1);
        const float a = time(random), b = time(random);
        line->setStartPointStopMoveTime(std::max(a, b), nullptr);
        line->setStartPointBeginMoveTime(std::min(a, b), nullptr);
        const float c = time(random), d = time(random);
        if (varyDissolve)
            withDissolve(line, std::min(c, d), k % 7 == 0 ? std::min(c, d) : std::max(c, d));
        lines.push_back(line);
    }
    return lines;
}

void expectSimdMatchesScalar(const WarpField& field, GridSize grid, const char* target)
{
    std::vector<float> scalar = buffer(grid), simd = buffer(grid);
    const WarpFieldBounds scalarBounds = field.computeScalar(scalar.data());
    const WarpFieldBounds simdBounds = field.compute(simd.data());
    ASSERT_EQ(simd.size(), scalar.size());
    int differing = 0;
    for (std::size_t k = 0; k < simd.size(); ++k) {
        if (std::bit_cast<std::uint32_t>(simd[k]) != std::bit_cast<std::uint32_t>(scalar[k]) && ++differing < 5)
            ADD_FAILURE() << target << ": float " << k << " is " << simd[k] << ", scalar " << scalar[k];
    }
    EXPECT_EQ(differing, 0) << target;
    EXPECT_EQ(simdBounds.first, scalarBounds.first) << target;
    EXPECT_EQ(simdBounds.last, scalarBounds.last) << target;
}

TEST(WarpFieldSimd, MatchesTheScalarReferenceBitForBitOnEveryTarget)
{
    // The SIMD loop performs the scalar loop's operations in the same order with no fused
    // multiply-add, so the tolerance is zero.
    for (const bool varyDissolve : {true, false}) {
        for (const float t : {0.0f, 0.37f, 1.0f}) {
            const auto morpher = Morpher::create(Image(), Image(), randomLines(1234, varyDissolve));
            const WarpLines lines = warpLinesOf(*morpher, t);
            for (const GridSize grid : {GridSize{11, 11}, GridSize{23, 17}, GridSize{1, 1}, GridSize{40, 3}}) {
                const WarpField field(lines, t, 64.0f, 48.0f, grid);
                for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
                    hwy::SetSupportedTargetsForTest(target);
                    expectSimdMatchesScalar(field, grid, hwy::TargetName(target));
                }
                hwy::SetSupportedTargetsForTest(0);
            }
        }
    }
}

} // namespace
} // namespace plyra
