// SPDX-License-Identifier: MIT
// How well and how fast a new line's counterpart is predicted. Accuracy: a fixture
// portrait and a copy of it warped by a known smooth map (a similarity, with or without
// a gentle bulge) make a pair whose true correspondence is exact; from 1, 4, 8 or 16
// true line pairs the counterparts of 30 further lines are predicted and their errors
// reported in pixels and as a fraction of the image diagonal. Speed: solving for a
// document of 400 lines (800 points) and predicting one point from it.
//   prediction_bench [--write-pair DIR] [benchmark options]
#include "bench_workload.h"
#include "prediction/line_counterparts.h"

#include <QImage>
#include <QString>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

using namespace plyra;

namespace {

using Warp = std::function<PlanePoint(PlanePoint)>;

constexpr double kPi = 3.14159265358979323846;

/// First image to last: scale 0.92, turned by 7°, shifted; then, if asked, a bulge about
/// the middle of the face that moves points outward by up to 1.5 % of the diagonal.
Warp knownWarp(double width, double height, bool bulge)
{
    const double c = 0.92 * std::cos(7.0 * kPi / 180.0);
    const double s = 0.92 * std::sin(7.0 * kPi / 180.0);
    const PlanePoint centre{0.5 * width, 0.55 * height};
    const double radius = 0.3 * std::hypot(width, height);
    return [=](PlanePoint p) {
        PlanePoint q{c * p.x - s * p.y + 0.07 * width, s * p.x + c * p.y - 0.02 * height};
        if (bulge) {
            const double dx = q.x - centre.x;
            const double dy = q.y - centre.y;
            const double f = 1.0 + 0.12 * std::exp(-(dx * dx + dy * dy) / (radius * radius));
            q = {centre.x + f * dx, centre.y + f * dy};
        }
        return q;
    };
}

/// The inverse of a smooth warp at q, by Newton's method with a numerical Jacobian.
PlanePoint invert(const Warp& warp, PlanePoint q)
{
    PlanePoint p = q;
    for (int i = 0; i < 30; ++i) {
        const PlanePoint f = warp(p);
        const double h = 1e-4;
        const PlanePoint fx = warp({p.x + h, p.y});
        const PlanePoint fy = warp({p.x, p.y + h});
        const double a = (fx.x - f.x) / h, b = (fy.x - f.x) / h, c = (fx.y - f.y) / h, d = (fy.y - f.y) / h;
        const double det = a * d - b * c;
        const double rx = q.x - f.x, ry = q.y - f.y;
        p = {p.x + (d * rx - b * ry) / det, p.y + (a * ry - c * rx) / det};
    }
    return p;
}

/// The last image of the pair: each pixel samples the first image where the warp came
/// from (image rows run down, the plane's y up).
QImage warpedCopy(const QImage& first, const Warp& warp)
{
    QImage last(first.size(), QImage::Format_RGB32);
    last.fill(Qt::black);
    const int h = first.height();
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < first.width(); ++x) {
            const PlanePoint p = invert(warp, {x + 0.5, h - y - 0.5});
            const int sx = static_cast<int>(std::floor(p.x));
            const int sy = h - 1 - static_cast<int>(std::floor(p.y));
            if (first.valid(sx, sy))
                last.setPixel(x, y, first.pixel(sx, sy));
        }
    return last;
}

struct TruePair {
    Point first[2];
    Point last[2];
};

/// Lines of 15 to 60 pixels within the middle 80 % of the image, with their true
/// counterparts in unit coordinates.
std::vector<TruePair> truePairs(int count, unsigned seed, const Warp& warp, double width, double height)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> x(0.1 * width, 0.9 * width), y(0.1 * height, 0.9 * height);
    std::uniform_real_distribution<double> length(15.0, 60.0), angle(0.0, 2.0 * kPi);
    std::vector<TruePair> pairs;
    for (int i = 0; i < count; ++i) {
        const PlanePoint a{x(random), y(random)};
        const double t = angle(random), l = length(random);
        const PlanePoint b{a.x + l * std::cos(t), a.y + l * std::sin(t)};
        TruePair pair;
        int k = 0;
        for (const PlanePoint& p : {a, b}) {
            const PlanePoint q = warp(p);
            pair.first[k] = {static_cast<float>(p.x / width), static_cast<float>(p.y / height)};
            pair.last[k++] = {static_cast<float>(q.x / width), static_cast<float>(q.y / height)};
        }
        pairs.push_back(pair);
    }
    return pairs;
}

MorphLine::Ptr lineOf(const TruePair& pair)
{
    const MorphLine::Ptr line = MorphLine::create();
    line->setStartPoint(pair.first[0], 0, nullptr);
    line->setEndPoint(pair.first[1], 0, nullptr);
    line->setStartPoint(pair.last[0], 1, nullptr);
    line->setEndPoint(pair.last[1], 1, nullptr);
    return line;
}

double percentile(std::vector<double> values, double fraction)
{
    std::sort(values.begin(), values.end());
    const double at = fraction * static_cast<double>(values.size() - 1);
    const auto low = static_cast<std::size_t>(std::floor(at));
    const std::size_t high = std::min(low + 1, values.size() - 1);
    return values[low] + (at - static_cast<double>(low)) * (values[high] - values[low]);
}

void reportAccuracy(const QImage& photo, const char* writePairTo)
{
    const double w = photo.width();
    const double h = photo.height();
    const double diagonal = std::hypot(w, h);
    const TrackSizes sizes{{w, h}, {w, h}};
    std::printf("Prediction accuracy, %dx%d portrait (diagonal %.1f px), 30 further lines (60 points)\n",
        photo.width(), photo.height(), diagonal);
    std::printf("%-22s %6s %10s %10s %10s %10s\n", "warp", "pairs", "median px", "p95 px", "median %", "p95 %");
    for (bool bulge : {false, true}) {
        const Warp warp = knownWarp(w, h, bulge);
        if (writePairTo && bulge)
            warpedCopy(photo, warp).save(QString::fromUtf8(writePairTo) + QStringLiteral("/warped.png"));
        const std::vector<TruePair> all = truePairs(16 + 30, 7, warp, w, h);
        const std::vector<TruePair> further(all.end() - 30, all.end());
        for (int known : {1, 4, 8, 16}) {
            std::vector<MorphLine::Ptr> lines;
            for (int i = 0; i < known; ++i)
                lines.push_back(lineOf(all[static_cast<std::size_t>(i)]));
            const LineCounterparts counterparts(lines, 0, sizes);
            std::vector<double> errors;
            for (const TruePair& pair : further)
                for (int k = 0; k < 2; ++k) {
                    const Point q = counterparts.counterpart(pair.first[k]);
                    errors.push_back(std::hypot((q.x - pair.last[k].x) * w, (q.y - pair.last[k].y) * h));
                }
            const double median = percentile(errors, 0.5), p95 = percentile(errors, 0.95);
            std::printf("%-22s %6d %10.3g %10.3g %9.3g%% %9.3g%%\n", bulge ? "similarity + bulge" : "similarity",
                known, median, p95, 100.0 * median / diagonal, 100.0 * p95 / diagonal);
        }
    }
    std::printf("\n");
}

std::vector<MorphLine::Ptr> documentLines()
{
    // 400 lines whose ends move a little between the images, as a face morph's do.
    return bench::benchLines(400, bench::kSeed, 0.01f);
}

void BM_SolveFor400Lines(benchmark::State& state)
{
    const std::vector<MorphLine::Ptr> lines = documentLines();
    const TrackSizes sizes{{1000.0, 750.0}, {1000.0, 750.0}};
    for (auto _ : state) {
        const LineCounterparts counterparts(lines, 0, sizes);
        benchmark::DoNotOptimize(counterparts.model());
    }
}
BENCHMARK(BM_SolveFor400Lines)->Unit(benchmark::kMillisecond);

void BM_PredictOnePointFrom400Lines(benchmark::State& state)
{
    const LineCounterparts counterparts(documentLines(), 0, {{1000.0, 750.0}, {1000.0, 750.0}});
    float x = 0.3f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(counterparts.counterpart({x, 0.4f}));
        x = x > 0.7f ? 0.3f : x + 0.001f;
    }
}
BENCHMARK(BM_PredictOnePointFrom400Lines)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    const char* writePairTo = nullptr;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], "--write-pair") == 0)
            writePairTo = argv[i + 1];
    const QImage photo = QImage(QStringLiteral(PLYRA_PHOTO_DIR "/hopper_face.png")).convertToFormat(QImage::Format_RGB32);
    if (photo.isNull()) {
        std::fprintf(stderr, "cannot read the fixture portrait\n");
        return 1;
    }
    if (writePairTo)
        photo.save(QString::fromUtf8(writePairTo) + QStringLiteral("/original.png"));
    reportAccuracy(photo, writePairTo);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
