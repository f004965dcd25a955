// SPDX-License-Identifier: MIT
#include "engine/warp_field.h"

#include "engine/morph_test_support.h"
#include "engine/warp_field_internal.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace plyra {
namespace {

using namespace test;

const float kNan = std::numeric_limits<float>::quiet_NaN();

/// The field a morpher's lines give at time t, computed straight on a WarpField.
WarpLines warpLinesOf(const Morpher& morpher, float t)
{
    const std::size_t n = morpher.morphLines().size();
    WarpLines lines{std::vector<AffineTransform>(n), std::vector<AffineTransform>(n), std::vector<LineCoords>(n),
                    {}, {}};
    morpher.fillTransMatrixes(lines.toFirst.data(), 0.0f, t);
    morpher.fillTransMatrixes(lines.toLast.data(), 1.0f, t);
    morpher.fillDestLineCoordinates(lines.atTime.data(), t);
    for (const MorphLine::Ptr& line : morpher.morphLines()) {
        lines.dissolveStart.push_back(line->dissolveStartTime());
        lines.dissolveEnd.push_back(line->dissolveEndTime());
    }
    return lines;
}

std::vector<float> buffer(GridSize grid) { return std::vector<float>(4 * (grid.nx + 1) * (grid.ny + 1), 0.0f); }

TEST(WarpGridSize, NodesPerSideFromTheSpacingAndBoundedForNonsense)
{
    const struct { float width, height, spacing; GridSize grid; } cases[] = {
        {100, 50, 7, {16, 9}}, {1920, 1080, 7, {276, 156}}, {64, 48, 8, {9, 7}}, {200, 150, 6, {35, 26}},
        {0, 0, 7, {1, 1}}, {-100, 50, 7, {1, 9}}, {kNan, 50, 7, {1, 9}}, {100, 50, kNan, {1, 1}},
        {100, 50, 0, {kMaxGridSide, kMaxGridSide}}};
    for (const auto& c : cases)
        EXPECT_EQ(warpGridSize(c.width, c.height, c.spacing), c.grid) << c.width << " " << c.height << " " << c.spacing;
}

TEST(WarpField, StillLinesOrNoLinesSampleEveryNodeAtItsOwnPlaceWithCornersOnTheEdges)
{
    // 100 × 50 at spacing 7 gives 16 × 9 nodes, 100/15 apart in x, the last on the edges.
    const struct { std::vector<MorphLine::Ptr> lines; float t, w, h, spacing; GridSize grid; } cases[] = {
        {{staticLine({0.2f, 0.5f}, {0.8f, 0.5f})}, 0.3f, 64, 48, 5, {14, 11}},
        {{}, 0.25f, 64, 48, 5, {14, 11}},
        {{staticLine({0.1f, 0.1f}, {0.9f, 0.1f})}, 0.0f, 100, 50, 7, {16, 9}}};
    for (const auto& c : cases) {
        const auto field = computeField(c.lines, c.t, c.w, c.h, c.spacing);
        ASSERT_EQ(field.grid, c.grid);
        EXPECT_TRUE(c.t != 0.0f || field.node(0, 0).dissolve() == 0.0f); // at 0 no dissolve has started
        for (std::size_t j = 0; j < field.grid.ny; ++j)
            for (std::size_t i = 0; i < field.grid.nx; ++i) {
                const Node n = field.node(i, j);
                EXPECT_EQ(n.x0, c.w * (float(i) / float(field.grid.nx - 1))) << i << "," << j;
                EXPECT_EQ(n.y0, c.h * (float(j) / float(field.grid.ny - 1))) << i << "," << j;
                EXPECT_EQ(n.x1, n.x0) << i << "," << j;
                EXPECT_EQ(n.row(), std::floor(n.y0)) << i << "," << j;
                EXPECT_NEAR(n.dissolve(), c.t, 1e-5f) << i << "," << j;
            }
        EXPECT_EQ(field.job->maxDisplacement0(), (Rect{0, 0, 0, 0}));
        EXPECT_EQ(field.job->maxDisplacement1(), (Rect{0, 0, 0, 0}));
    }
}

TEST(WarpField, DissolveIntervalsAndInstantsGiveEveryNodeTheirFactor)
{
    // Instants (start = end) switch after their time, except at 0 where they always have.
    const struct { float start, end, t, f; } cases[] = {
        {0.2f, 0.6f, 0.1f, 0}, {0.2f, 0.6f, 0.2f, 0}, {0.2f, 0.6f, 0.4f, 0.5f}, {0.2f, 0.6f, 0.6f, 1},
        {0.2f, 0.6f, 0.8f, 1}, {0.5f, 0.5f, 0.5f, 0}, {0.5f, 0.5f, 0.51f, 1},  {0.5f, 0.5f, 0.2f, 0},
        {0, 0, 0, 1},          {0, 0, 0.5f, 1},       {0, 0, 1, 1}};
    for (const auto& c : cases) {
        const auto line = withDissolve(staticLine({0.2f, 0.5f}, {0.8f, 0.5f}), c.start, c.end);
        const auto field = computeField({line}, c.t, 64.0f, 48.0f, 8.0f);
        for (std::size_t j = 0; j < field.grid.ny; ++j)
            for (std::size_t i = 0; i < field.grid.nx; ++i)
                ASSERT_NEAR(field.node(i, j).dissolve(), c.f, c.start == c.end ? 0.0f : 1e-5f)
                    << c.start << "-" << c.end << " at " << c.t;
    }
    EXPECT_EQ(warp::dissolveFactor(0.5f, 0.50005f, 0.5f), 0.0f); // an instant, not an interval
    EXPECT_EQ(warp::dissolveFactor(0.6f, 0.2f, 0.4f), 0.0f);      // reversed span clamps to 0
    EXPECT_EQ(warp::dissolveFactor(0.2f, 0.6f, kNan), 1.0f);
}

TEST(WarpField, TranslatingLinesGiveBoundsInPixelsAndRowsBelowTheFrameDecode)
{
    // The line moves by 0.2 across the morph, so at t = 0.5 every point lies 0.1 to the
    // right of where it was on the first image and 0.1 left of where it will be.
    const float w = 64.0f, h = 48.0f;
    const auto field =
        computeField({makeLine({0.1f, 0.5f}, {0.6f, 0.5f}, {0.3f, 0.5f}, {0.8f, 0.5f})}, 0.5f, w, h, 4.0f);
    for (const auto& [d, x] : {std::pair{field.job->maxDisplacement0(), -0.1f * w},
                               std::pair{field.job->maxDisplacement1(), 0.1f * w}}) {
        EXPECT_NEAR(d.x, x, 1e-4f);
        EXPECT_NEAR(d.width, 0.0f, 1e-4f);
        EXPECT_EQ(std::pair(d.y, d.height), std::pair(0.0f, 0.0f));
    }
    EXPECT_NEAR(field.node(4, 4).x0, w * (4.0f / 16.0f) - 0.1f * w, 1e-4f);
    EXPECT_NEAR(field.node(4, 4).x1, w * (4.0f / 16.0f) + 0.1f * w, 1e-4f);
    // Rows below the frame: floor(−3.2) + 0.5 · 0.6 decodes, directly and from a field.
    const Node direct{0, 0, 0, static_cast<float>(static_cast<double>(std::floor(-3.2f)) + 0.5 * 0.6)};
    EXPECT_EQ(direct.row(), -4.0f);
    EXPECT_NEAR(direct.dissolve(), 0.6f, 1e-6f);
    // A line 0.128 lower on the last image: at t = 0.5 the bottom row samples the last
    // image 0.064 · 50 = 3.2 pixels below the frame.
    const auto lower = computeField({makeLine({0.2f, 0.5f}, {0.8f, 0.5f}, {0.2f, 0.372f}, {0.8f, 0.372f})}, 0.5f,
                                    100.0f, 50.0f, 7.0f);
    const Node n = lower.node(3, 0);
    EXPECT_EQ(n.row(), -4.0f);
    EXPECT_NEAR(n.dissolve(), 0.5f, 1e-5f);
    EXPECT_NEAR(n.y0, 3.2f, 1e-4f);
}

TEST(WarpField, LinesWeighByTheirLengthAndTheInverseSquareOfTheirDistance)
{
    // 10 × 10 at spacing 1; node (5, 4) lies 0.1 above line A (moves right by 0.1) and 0.4
    // below B (moves left by 0.1). Node (5, 5) lies 0.1 from C and D; D is twice as long.
    const float wA = 0.6f / 0.01f, wB = 0.6f / 0.16f;
    const struct { MorphLine::Ptr first, second; std::size_t j; float shift; } cases[] = {
        {makeLine({0.2f, 0.3f}, {0.8f, 0.3f}, {0.3f, 0.3f}, {0.9f, 0.3f}),
         makeLine({0.2f, 0.8f}, {0.8f, 0.8f}, {0.1f, 0.8f}, {0.7f, 0.8f}), 4, (wA * 0.1f - wB * 0.1f) / (wA + wB)},
        {makeLine({0.2f, 0.4f}, {0.8f, 0.4f}, {0.3f, 0.4f}, {0.9f, 0.4f}),
         makeLine({-0.1f, 0.6f}, {1.1f, 0.6f}, {-0.2f, 0.6f}, {1.0f, 0.6f}), 5, (0.1f - 2.0f * 0.1f) / 3.0f}};
    for (const auto& c : cases) {
        const Node n = computeField({c.first, c.second}, 0.0f, 10.0f, 10.0f, 1.0f).node(5, c.j);
        EXPECT_NEAR(n.x1 / 10.0f - 0.5f, c.shift, 1e-5f) << c.j;
        EXPECT_EQ(n.x0, 5.0f); // at time 0 the first image is sampled where the node is
    }
}

/// The field of `lines` over 10 × 10 at spacing 1, straight on a WarpField; `damaged` adds
/// two lines with non-finite numbers.
test::ComputedField fieldOf(const std::vector<MorphLine::Ptr>& lines, float t, bool damaged)
{
    WarpLines warp = warpLinesOf(*Morpher::create(Image(), Image(), lines), t);
    if (damaged) {
        const std::size_t n = warp.size() + 2;
        warp.toFirst.push_back({kNan, 0, 0, 1, 0, 0});
        warp.toFirst.resize(n);
        warp.toLast.resize(n);
        warp.atTime.push_back({{0.1f, 0.1f}, {0.2f, 0.2f}, 0.14f});
        warp.atTime.push_back({{0.1f, 0.1f}, {1e30f, 0.2f}, std::numeric_limits<float>::infinity()});
        warp.dissolveStart.resize(n, 0.0f);
        warp.dissolveEnd.resize(n, 1.0f);
    }
    test::ComputedField field{nullptr, warpGridSize(10.0f, 10.0f, 1.0f), {}};
    field.coords = buffer(field.grid);
    WarpField(warp, t, 10.0f, 10.0f, field.grid).compute(field.coords.data());
    return field;
}

TEST(WarpFieldDegenerate, NodesOnLinesCollapsedAndNonFiniteLinesGiveFiniteFields)
{
    // A node on a line (or its end) takes its displacement; a collapsed line counts only when
    // no other can, then moving all by its (−0.1, −0.3); non-finite lines take no part.
    const auto onA = makeLine({0.2f, 0.5f}, {0.8f, 0.5f}, {0.3f, 0.5f}, {0.9f, 0.5f});
    const auto farB = makeLine({0.2f, 0.1f}, {0.8f, 0.1f}, {0.1f, 0.1f}, {0.7f, 0.1f});
    const auto moving = makeLine({0.2f, 0.3f}, {0.8f, 0.3f}, {0.3f, 0.3f}, {0.9f, 0.3f});
    const auto point = makeLine({0.53f, 0.77f}, {0.53f, 0.77f}, {0.43f, 0.47f}, {0.43f, 0.47f});
    struct Spot { std::size_t i, j; float x1, tolerance, row = kNan; };
    const struct { std::vector<MorphLine::Ptr> lines; float t; bool damaged; std::vector<Spot> spots; } cases[] = {
        {{onA, farB}, 0, false, {{5, 5, 10 * (0.5f + 0.1f), 1e-5f}, {2, 5, 10 * (0.2f + 0.1f), 1e-5f},
                                 {8, 5, 10 * (0.8f + 0.1f), 1e-5f}}},
        {{moving, point}, 0, false, {}}, // x1 as with `moving` alone, within 1e-5
        {{point}, 0, false, {{4, 6, 4.0f - 1.0f, 1e-4f, std::floor(6.0f - 3.0f)}}},
        {{moving}, 0.4f, true, {}}}; // every float as with `moving` alone
    for (const auto& c : cases) {
        const auto field = fieldOf(c.lines, c.t, c.damaged);
        for (std::size_t k = 0; k < 4 * field.grid.nodeCount(); k += 4) {
            const Node n = field.node(k / 4 % field.grid.nx, k / 4 / field.grid.nx);
            ASSERT_TRUE(std::isfinite(n.x0) && std::isfinite(n.y0) && std::isfinite(n.x1) && std::isfinite(n.packed) &&
                        n.dissolve() >= 0.0f && n.dissolve() <= 1.0f)
                << c.lines.size() << " lines, node " << k / 4;
        }
        for (const Spot& s : c.spots) {
            EXPECT_NEAR(field.node(s.i, s.j).x1, s.x1, s.tolerance) << s.i << "," << s.j;
            EXPECT_TRUE(std::isnan(s.row) || field.node(s.i, s.j).row() == s.row) << s.i << "," << s.j;
        }
        const auto alone = fieldOf({moving}, c.t, false);
        EXPECT_TRUE(!c.damaged || field.coords == alone.coords);
        for (std::size_t k = 2; c.spots.empty() && !c.damaged && k < field.coords.size(); k += 4)
            EXPECT_NEAR(field.coords[k], alone.coords[k], 1e-5f) << "node " << k / 4;
    }
}

/// 100 seeded lines that move, stretch, turn and dissolve; some collapse or pass through nodes.
std::vector<MorphLine::Ptr> randomLines(unsigned seed, bool varyDissolve)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> position(-0.1f, 1.1f), time(0.0f, 1.0f);
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

TEST(WarpFieldSimd, MatchesTheScalarReferenceBitForBitOnEveryTarget)
{
    // Same operations in the same order, no fused multiply-add: the tolerance is zero, for
    // the stored nodes and for the plane of unrounded last-image y, whose whole part is
    // the row the nodes store.
    for (const bool varyDissolve : {true, false})
        for (const float t : {0.0f, 0.37f, 1.0f}) {
            const WarpLines lines = warpLinesOf(*Morpher::create(Image(), Image(), randomLines(1234, varyDissolve)), t);
            for (const GridSize grid : {GridSize{11, 11}, GridSize{23, 17}, GridSize{1, 1}, GridSize{40, 3}}) {
                const WarpField field(lines, t, 64.0f, 48.0f, grid);
                for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
                    hwy::SetSupportedTargetsForTest(target);
                    std::vector<float> scalar = buffer(grid), simd = buffer(grid);
                    std::vector<float> scalarY(grid.nodeCount()), simdY(grid.nodeCount());
                    const WarpFieldBounds scalarBounds = field.computeScalar(scalar.data(), scalarY.data());
                    const WarpFieldBounds simdBounds = field.compute(simd.data(), simdY.data());
                    EXPECT_EQ(std::memcmp(simd.data(), scalar.data(), simd.size() * sizeof(float)), 0)
                        << hwy::TargetName(target) << " t " << t << " grid " << grid.nx << "x" << grid.ny;
                    EXPECT_EQ(std::memcmp(simdY.data(), scalarY.data(), simdY.size() * sizeof(float)), 0)
                        << hwy::TargetName(target) << " t " << t << " grid " << grid.nx << "x" << grid.ny;
                    for (std::size_t k = 0; k < scalarY.size(); ++k)
                        ASSERT_EQ(std::floor(scalarY[k]), std::floor(scalar[4 * k + 3])) << "node " << k;
                    EXPECT_EQ(simdBounds.first, scalarBounds.first) << hwy::TargetName(target);
                    EXPECT_EQ(simdBounds.last, scalarBounds.last) << hwy::TargetName(target);
                }
                hwy::SetSupportedTargetsForTest(0);
            }
        }
}

} // namespace
} // namespace plyra
