// SPDX-License-Identifier: MIT
// How exact and how fast a morphed frame is, on the benchmarks' 1920 × 1080 workload
// (two generated pictures, 50 lines from a fixed seed, grid spacing 7):
//   SampleFrame:  outputImage + conversion of one finished job at time 0.5, the sampling
//                 alone (the warp field is computed beforehand), on one thread and on all.
//   LastImageRows/exact, /whole: the same coordinates sampled with the unrounded last-image
//                 rows (the coordinates image's fifth channel) and without them, as frames
//                 were sampled before; one thread. Also timed interleaved after the rows,
//                 so that a busy machine slows both alike.
// and, printed after the rows, for this workload and for lines that move less:
//   - PSNR of the frame at 0.5 against the exact per-pixel evaluation of the same line
//     field in double precision (tests/engine/exact_frame_oracle.h), and of the same
//     frame sampled at whole last-image rows, as frames were before;
//   - the grid ceiling: the exact field at the grid's nodes only, bilinear between them,
//     in double, against the exact evaluation (no sampling through a grid of spacing 7
//     does better), and the frame against that ceiling (what the engine's own arithmetic
//     and its 8-bit output lose, about 59 dB for rounding to bytes alone);
//   - how many channels of the frames at times 0 and 1 differ from the first and the
//     last image, which they must equal (lines that end where they are drawn).

#include "bench_workload.h"
#include "engine/exact_frame_oracle.h"
#include "engine/image_conversion.h"
#include "engine/morph_calculation_job.h"
#include "engine/morpher.h"
#include "engine/sample_coords_filter.h"
#include "platform/image/renderer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include <time.h>
#include <optional>

namespace plyra {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr float kInterval = 7.0f;
constexpr int kLines = 50;

struct Workload {
    Image first = bench::texturedImage(kWidth, kHeight, 1);
    Image last = bench::texturedImage(kWidth, kHeight, 2);
    std::vector<MorphLine::Ptr> lines = bench::benchLines(kLines);
};

const Workload& workload()
{
    static const Workload w;
    return w;
}

/// A finished job of a workload at time t, ready for outputImage.
MorphCalculationJob::Ptr finishedJob(const Workload& w, float t)
{
    const Morpher::Ptr morpher = Morpher::create(w.first, w.last, w.lines);
    const auto job = MorphCalculationJob::create(t, {float(kWidth), float(kHeight)}, kInterval);
    job->setTrack0Image(w.first);
    job->setTrack1Image(w.last);
    morpher->processMorphCalculationJob(*job);
    return job;
}

Bitmap renderFrame(MorphCalculationJob& job, int threads)
{
    RenderOptions options;
    options.maxThreads = threads;
    std::optional<Bitmap> frame = bitmapFromImage(job.outputImage(), options);
    return frame ? std::move(*frame) : Bitmap();
}

void BM_SampleFrame(benchmark::State& state)
{
    const auto job = finishedJob(workload(), 0.5f);
    const int threads = static_cast<int>(state.range(0));
    renderFrame(*job, threads); // the coordinates image and the kernels, made once
    for (auto _ : state) {
        const Bitmap frame = renderFrame(*job, threads);
        benchmark::DoNotOptimize(frame.data());
    }
    state.SetLabel(threads == 0 ? "all cores" : "one thread");
}
BENCHMARK(BM_SampleFrame)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

/// The job's frame through its own coordinates image, with or without its fifth channel
/// (the unrounded last-image rows); both read the whole pictures, so that they differ in
/// nothing else.
Image sampledFrame(MorphCalculationJob& job, bool exactRows)
{
    job.outputImage(); // makes the coordinates image
    Image coords = job.coordsImage();
    if (!exactRows) {
        const FloatBitmap& nodes = *coords.floatBitmap();
        std::vector<float> values(nodes.data(), nodes.data() + nodes.floatsPerRow() * std::size_t(nodes.height()));
        coords = Image::fromFloatData(std::move(values), nodes.bytesPerRow(), nodes.width(), nodes.height());
    }
    SampleCoords2Filter filter;
    filter.setDefaults();
    filter.setValue(job.track0Image(), "inputImage1");
    filter.setValue(job.track1Image(), "inputImage2");
    filter.setValue(coords, "coordsImage");
    filter.setValue(job.interpolationFactor(), "resolution");
    filter.setExtent({0.0f, 0.0f, float(kWidth), float(kHeight)});
    return filter.outputImage();
}

Bitmap renderOnOneThread(const Image& frame)
{
    RenderOptions options;
    options.maxThreads = 1;
    return renderToBitmap(frame, {0.0f, 0.0f, float(kWidth), float(kHeight)}, options);
}

void BM_LastImageRows(benchmark::State& state, bool exactRows)
{
    const auto job = finishedJob(workload(), 0.5f);
    const Image frame = sampledFrame(*job, exactRows);
    renderOnOneThread(frame);
    for (auto _ : state)
        benchmark::DoNotOptimize(renderOnOneThread(frame).data());
}
BENCHMARK_CAPTURE(BM_LastImageRows, exact, true)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);
BENCHMARK_CAPTURE(BM_LastImageRows, whole, false)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(2.0);

/// This thread's processor time in milliseconds: unlike the clock on the wall, it does
/// not run on while other programs have the processor.
double threadMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) * 1e-6;
}

/// One-thread sampling times of both, alternating frame by frame: the smallest and the
/// middle of each, in milliseconds of processor time.
void printInterleavedTimes()
{
    const auto job = finishedJob(workload(), 0.5f);
    const Image frames[2] = {sampledFrame(*job, true), sampledFrame(*job, false)};
    constexpr int kRounds = 41;
    std::vector<double> times[2];
    for (int round = 0; round < kRounds; ++round)
        for (int k = 0; k < 2; ++k) {
            const double start = threadMilliseconds();
            benchmark::DoNotOptimize(renderOnOneThread(frames[k]).data());
            times[k].push_back(threadMilliseconds() - start);
        }
    for (auto& t : times)
        std::sort(t.begin(), t.end());
    std::printf("sampling one frame on one thread, %d alternating rounds, processor time: exact rows min %.2f ms, "
                "median %.2f ms; whole rows min %.2f ms, median %.2f ms; exact/whole %.3f (medians), %.3f (minima)\n",
                kRounds, times[0].front(), times[0][kRounds / 2], times[1].front(), times[1][kRounds / 2],
                times[0][kRounds / 2] / times[1][kRounds / 2], times[0].front() / times[1].front());
}

/// How many channels of a frame differ from a picture's.
long differingChannels(const Bitmap& frame, const Image& picture)
{
    const Bitmap& expected = *picture.bitmap();
    long differing = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (std::size_t c = 0; c < 4; ++c)
                differing += frame.pixel(x, y)[c] != expected.pixel(x, y)[c] ? 1 : 0;
    return differing;
}

/// The exact field at the grid's nodes only, interpolated bilinearly between them, all in
/// double: the best that sampling through a grid of this spacing can do.
test::ExactFrame gridCeiling(const Workload& w, double t)
{
    const GridSize grid = warpGridSize(float(kWidth), float(kHeight), kInterval);
    const test::ExactField field(w.lines, t);
    std::vector<test::ExactFieldValue> nodes;
    for (std::uint32_t j = 0; j < grid.ny; ++j)
        for (std::uint32_t i = 0; i < grid.nx; ++i)
            nodes.push_back(field.at({double(i) / (grid.nx - 1), double(j) / (grid.ny - 1)}));
    const auto cell = [](double centre, double nodesPerPixel, std::uint32_t n, std::uint32_t& k) {
        const double g = centre * nodesPerPixel;
        k = std::min(static_cast<std::uint32_t>(g), n - 2);
        return g - k;
    };
    return test::blendThroughField(*w.first.bitmap(), *w.last.bitmap(), kWidth, kHeight, [&](int x, int y) {
        std::uint32_t i = 0, j = 0;
        const double fx = cell(x + 0.5, double(grid.nx - 1) / kWidth, grid.nx, i);
        const double fy = cell(y + 0.5, double(grid.ny - 1) / kHeight, grid.ny, j);
        const auto mix = [&](double (*member)(const test::ExactFieldValue&)) {
            const auto at = [&](std::uint32_t a, std::uint32_t b) { return member(nodes[b * grid.nx + a]); };
            const double bottom = at(i, j) + (at(i + 1, j) - at(i, j)) * fx;
            const double top = at(i, j + 1) + (at(i + 1, j + 1) - at(i, j + 1)) * fx;
            return bottom + (top - bottom) * fy;
        };
        return test::ExactFieldValue{{mix([](const auto& n) { return n.first.x; }), mix([](const auto& n) { return n.first.y; })},
                                     {mix([](const auto& n) { return n.last.x; }), mix([](const auto& n) { return n.last.y; })},
                                     mix([](const auto& n) { return n.dissolve; })};
    });
}

/// PSNR of the colour channels of one double frame against another, in dB.
double psnrBetween(const test::ExactFrame& a, const test::ExactFrame& b)
{
    double sum = 0.0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (int c = 0; c < 3; ++c)
                sum += std::pow(a.pixel(x, y)[c] - b.pixel(x, y)[c], 2);
    return 10.0 * std::log10(255.0 * 255.0 / (sum / (3.0 * kWidth * kHeight)));
}

void printExactness()
{
    std::printf("1920x1080, %d lines, spacing %.0f, time 0.5; PSNR in dB (colour channels):\n", kLines, double(kInterval));
    std::printf("  line motion  frame/exact  whole rows/exact  grid ceiling/exact  frame/grid ceiling\n");
    // 0.04 is the workload of the rows above; the smaller motions are closer to lines
    // drawn on two photographs of the same kind of subject.
    for (const float motion : {0.04f, 0.02f, 0.01f, 0.005f}) {
        Workload w;
        w.lines = bench::benchLines(kLines, bench::kSeed, motion);
        const auto job = finishedJob(w, 0.5f);
        const Bitmap frame = renderFrame(*job, 0);
        const Bitmap wholeRows = renderToBitmap(sampledFrame(*job, false), {0.0f, 0.0f, float(kWidth), float(kHeight)});
        const test::ExactFrame exact = test::exactFrame(*w.first.bitmap(), *w.last.bitmap(), w.lines, 0.5, kWidth, kHeight);
        const test::ExactFrame ceiling = gridCeiling(w, 0.5);
        std::printf("  %11.3f  %11.2f  %16.2f  %18.2f  %18.2f\n", double(motion), test::psnr(frame, exact),
                    test::psnr(wholeRows, exact), psnrBetween(ceiling, exact), test::psnr(frame, ceiling));
    }
    const Workload& w = workload();
    for (const float t : {0.0f, 1.0f}) {
        const auto job = finishedJob(w, t);
        const Bitmap ends = renderFrame(*job, 0);
        const Bitmap wholeRows = renderToBitmap(sampledFrame(*job, false), {0.0f, 0.0f, float(kWidth), float(kHeight)});
        const Image& picture = t == 0.0f ? w.first : w.last;
        const test::ExactFrame exact = test::exactFrame(*picture.bitmap(), *picture.bitmap(), {}, 0.0, kWidth, kHeight);
        std::printf("frame at %.0f: %ld channels differ from the %s image; at whole last-image rows %ld (PSNR %.2f dB)\n",
                    double(t), differingChannels(ends, picture), t == 0.0f ? "first" : "last",
                    differingChannels(wholeRows, picture), test::psnr(wholeRows, exact));
    }
}

} // namespace
} // namespace plyra

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    plyra::printInterleavedTimes();
    plyra::printExactness();
    return 0;
}
