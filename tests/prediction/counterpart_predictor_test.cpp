// SPDX-License-Identifier: MIT
#include "prediction/counterpart_predictor.h"
#include "prediction/line_counterparts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace plyra {
namespace {

using Model = CounterpartPredictor::Model;

constexpr double kPi = 3.14159265358979323846;

PlaneAffine similarity(double scale, double degrees, double tx, double ty)
{
    const double c = scale * std::cos(degrees * kPi / 180.0);
    const double s = scale * std::sin(degrees * kPi / 180.0);
    return {c, -s, s, c, tx, ty};
}

// A gentle bulge about (cx, cy): points move outward by up to a few percent.
PlanePoint bulge(PlanePoint p, PlanePoint centre, double radius, double strength)
{
    const double dx = p.x - centre.x;
    const double dy = p.y - centre.y;
    const double f = 1.0 + strength * std::exp(-(dx * dx + dy * dy) / (radius * radius));
    return {centre.x + f * dx, centre.y + f * dy};
}

std::vector<PlanePoint> randomPoints(std::size_t count, PixelSize size, unsigned seed, double margin = 0.1)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> x(margin * size.width, (1.0 - margin) * size.width);
    std::uniform_real_distribution<double> y(margin * size.height, (1.0 - margin) * size.height);
    std::vector<PlanePoint> points;
    for (std::size_t i = 0; i < count; ++i)
        points.push_back({x(rng), y(rng)});
    return points;
}

template <typename Map>
std::vector<PointPair> pairsThrough(const std::vector<PlanePoint>& sources, Map map)
{
    std::vector<PointPair> pairs;
    for (const PlanePoint& p : sources)
        pairs.push_back({p, map(p)});
    return pairs;
}

double distance(PlanePoint a, PlanePoint b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

TEST(CounterpartPredictor, AnExactSimilarityIsReproduced)
{
    struct Row {
        const char* name;
        PlaneAffine map;
        std::size_t knownPoints;
    };
    const Row rows[] = {
        {"shift", similarity(1.0, 0.0, 40.0, -25.0), 2},
        {"half size, turned 30°", similarity(0.5, 30.0, 300.0, 20.0), 2},
        {"larger, turned -12°", similarity(1.3, -12.0, -60.0, 30.0), 7},
        {"spline allowed on exact data", similarity(0.9, 8.0, 30.0, 10.0), 16},
    };
    const PixelSize size{800.0, 600.0};
    for (const Row& row : rows) {
        const auto map = [&](PlanePoint p) { return row.map.apply(p); };
        const CounterpartPredictor predictor(pairsThrough(randomPoints(row.knownPoints, size, 1), map), size, size);
        for (const PlanePoint& p : randomPoints(50, size, 2, 0.3)) {
            const PlanePoint expected = map(p);
            // Only points that stay inside the target image: the rest are clamped.
            if (expected.x < 0 || expected.y < 0 || expected.x > size.width || expected.y > size.height)
                continue;
            EXPECT_LT(distance(predictor.predict(p), expected), 1e-6) << row.name;
        }
    }
}

TEST(CounterpartPredictor, ModelFollowsTheEvidence)
{
    const PixelSize size{400.0, 400.0};
    const auto shift = [](PlanePoint p) { return PlanePoint{p.x + 10.0, p.y}; };
    std::vector<PlanePoint> onALine;
    for (int i = 0; i < 10; ++i)
        onALine.push_back({20.0 + 30.0 * i, 100.0 + 0.5 * i});
    struct Row {
        const char* name;
        std::vector<PointPair> pairs;
        Model model;
    };
    const Row rows[] = {
        {"nothing known", {}, Model::UnitPosition},
        {"one point", {{{10, 10}, {30, 40}}, {{10, 10}, {30, 40}}}, Model::Shift},
        {"two points", pairsThrough(randomPoints(2, size, 3), shift), Model::Similarity},
        {"five points", pairsThrough(randomPoints(5, size, 3), shift), Model::Similarity},
        {"six points", pairsThrough(randomPoints(6, size, 3), shift), Model::Spline},
        {"ten points on a line", pairsThrough(onALine, shift), Model::Similarity},
    };
    for (const Row& row : rows)
        EXPECT_EQ(CounterpartPredictor(row.pairs, size, size).model(), row.model) << row.name;

    // No pair: the same place relative to each image, whatever their sizes.
    const CounterpartPredictor none({}, {400, 200}, {100, 300});
    const PlanePoint p = none.predict({200, 50});
    EXPECT_DOUBLE_EQ(p.x, 50.0);
    EXPECT_DOUBLE_EQ(p.y, 75.0);
}

TEST(CounterpartPredictor, SplineBendsInsideAndGivesWayFarOutside)
{
    const PixelSize size{1000.0, 1000.0};
    const auto warp = [](PlanePoint p) { return bulge(p, {500, 500}, 250, 0.15); };
    std::vector<PlanePoint> grid;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            grid.push_back({350.0 + 100.0 * i, 350.0 + 100.0 * j});
    const std::vector<PointPair> pairs = pairsThrough(grid, warp);
    const CounterpartPredictor predictor(pairs, size, size);
    ASSERT_EQ(predictor.model(), Model::Spline);
    const PlaneAffine base = *fitSimilarity(pairs);
    // Through the known points, and closer to the truth than the similarity between them.
    for (const PointPair& pair : pairs)
        EXPECT_LT(distance(predictor.predict(pair.source), pair.target), 0.05);
    const PlanePoint inside{480, 530};
    EXPECT_LT(distance(predictor.predict(inside), warp(inside)), 0.25 * distance(base.apply(inside), warp(inside)));
    // The weight falls from 1 at the hull to 0 one spread (here 158) outside it.
    EXPECT_DOUBLE_EQ(predictor.splineWeight({648, 500}), 1.0);
    EXPECT_GT(predictor.splineWeight({700, 500}), 0.0);
    EXPECT_LT(predictor.splineWeight({700, 500}), 1.0);
    const PlanePoint far{900, 500};
    EXPECT_DOUBLE_EQ(predictor.splineWeight(far), 0.0);
    EXPECT_LT(distance(predictor.predict(far), base.apply(far)), 1e-9);
}

TEST(CounterpartPredictor, NearlyCoincidentPointsCannotMakeItExplode)
{
    const PixelSize size{1000.0, 1000.0};
    std::vector<PointPair> pairs = pairsThrough(randomPoints(10, size, 5), [](PlanePoint p) { return p; });
    // Two known points a hundredth of a pixel apart, their counterparts 30 pixels apart.
    pairs.push_back({{500.0, 500.0}, {485.0, 500.0}});
    pairs.push_back({{500.01, 500.0}, {515.0, 500.0}});
    const CounterpartPredictor predictor(pairs, size, size);
    ASSERT_EQ(predictor.model(), Model::Spline);
    for (const PlanePoint& p : randomPoints(40, size, 6)) {
        const PlanePoint q = predictor.predict(p);
        ASSERT_TRUE(std::isfinite(q.x) && std::isfinite(q.y));
        if (distance(p, {500, 500}) > 50.0) {
            EXPECT_LT(distance(q, p), 3.0) << p.x << ", " << p.y;
        }
    }
}

TEST(CounterpartPredictor, PredictionsStayInsideTheTargetImage)
{
    const PixelSize source{400.0, 400.0};
    const PixelSize target{200.0, 100.0};
    const auto enlarge = [](PlanePoint p) { return PlanePoint{3.0 * p.x - 100.0, 3.0 * p.y - 100.0}; };
    const CounterpartPredictor predictor(pairsThrough(randomPoints(8, source, 7), enlarge), source, target);
    for (const PlanePoint& p : randomPoints(100, source, 8, 0.0)) {
        const PlanePoint q = predictor.predict(p);
        EXPECT_TRUE(q.x >= 0.0 && q.x <= target.width && q.y >= 0.0 && q.y <= target.height);
    }
}

TEST(ConvexHull, DistanceOutside)
{
    const ConvexHull square({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {5, 5}, {10, 5}});
    EXPECT_EQ(square.corners().size(), 4u);
    const ConvexHull segment({{0, 0}, {10, 0}, {5, 0}});
    const ConvexHull point({{3, 4}, {3, 4}});
    struct Row {
        const ConvexHull& hull;
        PlanePoint p;
        double distance;
    };
    const Row rows[] = {
        {square, {5, 5}, 0.0}, {square, {10, 3}, 0.0}, {square, {13, 5}, 3.0}, {square, {13, 14}, 5.0},
        {square, {-2, 5}, 2.0}, {segment, {5, 2}, 2.0}, {segment, {-3, 4}, 5.0}, {point, {0, 0}, 5.0},
    };
    for (const Row& row : rows)
        EXPECT_DOUBLE_EQ(row.hull.distanceOutside(row.p), row.distance) << row.p.x << ", " << row.p.y;
}

MorphLine::Ptr lineOf(Point s0, Point e0, Point s1, Point e1)
{
    const MorphLine::Ptr line = MorphLine::create();
    line->setStartPoint(s0, 0, nullptr);
    line->setEndPoint(e0, 0, nullptr);
    line->setStartPoint(s1, 1, nullptr);
    line->setEndPoint(e1, 1, nullptr);
    return line;
}

TEST(LineCounterparts, ImagesOfDifferentAspectBothWays)
{
    // The first image 800 × 400, the last 300 × 600: the last shows the first's content
    // at half size, turned by 90°, shifted. One line pair fixes that similarity.
    const TrackSizes sizes{{800.0, 400.0}, {300.0, 600.0}};
    const PlaneAffine pixels = similarity(0.5, 90.0, 250.0, 100.0);
    const auto unitMap = [&](Point u) {
        const PlanePoint q = pixels.apply({u.x * 800.0, u.y * 400.0});
        return Point{static_cast<float>(q.x / 300.0), static_cast<float>(q.y / 600.0)};
    };
    const Point a{0.2f, 0.3f};
    const Point b{0.7f, 0.6f};
    const std::vector<MorphLine::Ptr> lines{lineOf(a, b, unitMap(a), unitMap(b))};
    const LineCounterparts forward(lines, 0, sizes);
    const LineCounterparts backward(lines, 1, sizes);
    EXPECT_EQ(forward.model(), Model::Similarity);
    for (const Point p : {Point{0.5f, 0.5f}, Point{0.3f, 0.8f}, Point{0.9f, 0.1f}}) {
        const Point q = forward.counterpart(p);
        EXPECT_NEAR(q.x, unitMap(p).x, 1e-6f);
        EXPECT_NEAR(q.y, unitMap(p).y, 1e-6f);
        const Point back = backward.counterpart(q);
        EXPECT_NEAR(back.x, p.x, 1e-6f);
        EXPECT_NEAR(back.y, p.y, 1e-6f);
    }
}

TEST(LineCounterparts, SplineNeedsFourLinesAndSixDistinctPoints)
{
    const TrackSizes sizes{{100.0, 100.0}, {100.0, 100.0}};
    const auto same = [](Point a, Point b) { return lineOf(a, b, {a.x + 0.01f, a.y}, {b.x + 0.01f, b.y}); };
    // A chain of four lines has five distinct points; three separate lines have six.
    const std::vector<Point> corners{{0.2f, 0.2f}, {0.8f, 0.2f}, {0.8f, 0.8f}, {0.2f, 0.8f}, {0.5f, 0.5f}};
    std::vector<MorphLine::Ptr> chain;
    for (std::size_t i = 0; i + 1 < corners.size(); ++i)
        chain.push_back(same(corners[i], corners[i + 1]));
    const std::vector<MorphLine::Ptr> three{same({0.1f, 0.1f}, {0.3f, 0.2f}), same({0.7f, 0.1f}, {0.9f, 0.3f}),
        same({0.4f, 0.8f}, {0.6f, 0.9f})};
    std::vector<MorphLine::Ptr> four = three;
    four.push_back(same({0.4f, 0.4f}, {0.5f, 0.6f}));
    EXPECT_EQ(LineCounterparts(chain, 0, sizes).model(), Model::Similarity);
    EXPECT_EQ(LineCounterparts(three, 0, sizes).model(), Model::Similarity);
    EXPECT_EQ(LineCounterparts(four, 0, sizes).model(), Model::Spline);
}

} // namespace
} // namespace plyra
