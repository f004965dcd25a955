// SPDX-License-Identifier: MIT
// Sampling one 1920 × 1080 frame through a warp grid at interval 7 (both images,
// bilinear, blended by the dissolve factor) into an 8-bit RGBA bitmap, against OpenCV
// doing only the sampling: cv::remap of both images with full-resolution float maps
// computed beforehand (INTER_LINEAR) and the per-pixel blend (cv::blendLinear).
// Everything is generated from fixed seeds, so every run measures the same work.

#include "engine/sample_coords_filter.h"
#include "engine/sample_coords_kernels_internal.h"
#include "platform/image/renderer.h"

#include <benchmark/benchmark.h>
#include <hwy/targets.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace plyra {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr float kInterval = 7.0f;

/// An opaque picture with detail at every scale, the same for every run.
Bitmap texture(unsigned seed)
{
    Bitmap bitmap(kWidth, kHeight);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> noise(0, 31);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const float fx = float(x);
            const float fy = float(y);
            const float r = 128 + 60 * std::sin(fx * 0.013f + float(seed)) + 30 * std::sin(fy * 0.21f);
            const float g = 128 + 70 * std::sin((fx + fy) * 0.031f) + 20 * std::sin(fx * 0.7f);
            const float b = 128 + 80 * std::cos(fy * 0.007f - float(seed));
            bitmap.setPixel(x, y, {std::uint8_t(r + float(noise(random))), std::uint8_t(g), std::uint8_t(b), 255});
        }
    return bitmap;
}

/// One grid node: positions in both images (output pixels) and the dissolve factor.
struct Node {
    float ax, ay, bx, by, f;
};

Node warpAt(float x, float y)
{
    return {x + 9 * std::sin(y * 0.01f), y + 7 * std::cos(x * 0.008f), x - 11 * std::cos(y * 0.012f),
            y + 6 * std::sin(x * 0.009f + 1), 0.5f + 0.45f * std::sin((x + y) * 0.002f)};
}

struct Workload {
    Bitmap first = texture(1);
    Bitmap last = texture(2);
    int nx = int(std::ceil(float(kWidth) / kInterval)) + 1;
    int ny = int(std::ceil(float(kHeight) / kInterval)) + 1;
    std::vector<Node> nodes;
    Image coords;

    Workload()
    {
        std::vector<float> packed;
        for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i) {
                const Node n = warpAt(float(i) * kWidth / float(nx - 1), float(j) * kHeight / float(ny - 1));
                nodes.push_back(n);
                packed.insert(packed.end(), {n.ax, n.ay, n.bx, std::floor(n.by) + 0.5f * n.f});
            }
        coords = Image::fromFloatData(std::move(packed), std::size_t(nx) * 16, nx, ny);
    }

    Image frame() const
    {
        SampleCoords2Filter filter;
        filter.setDefaults();
        filter.setValue(Image::fromBitmap(first), "inputImage1");
        filter.setValue(Image::fromBitmap(last), "inputImage2");
        filter.setValue(coords, "coordsImage");
        filter.setValue(kInterval, "resolution");
        filter.setExtent({0, 0, float(kWidth), float(kHeight)});
        return filter.outputImage();
    }
};

const Workload& workload()
{
    static const Workload w;
    return w;
}

/// OpenCV's inputs: the images, and per-pixel maps interpolated from the same grid
/// (texel coordinates, so pixel centres sit on whole numbers) with the dissolve weights.
struct OpenCvWorkload {
    cv::Mat first;
    cv::Mat last;
    cv::Mat mapAx, mapAy, mapBx, mapBy, weightA, weightB;

    OpenCvWorkload()
    {
        const Workload& w = workload();
        first = cv::Mat(kHeight, kWidth, CV_8UC4, const_cast<std::uint8_t*>(w.first.data())).clone();
        last = cv::Mat(kHeight, kWidth, CV_8UC4, const_cast<std::uint8_t*>(w.last.data())).clone();
        for (cv::Mat* m : {&mapAx, &mapAy, &mapBx, &mapBy, &weightA, &weightB})
            m->create(kHeight, kWidth, CV_32FC1);
        const float sx = float(w.nx - 1) / kWidth;
        const float sy = float(w.ny - 1) / kHeight;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                const float gx = (float(x) + 0.5f) * sx;
                const float gy = (float(y) + 0.5f) * sy;
                const int i = std::min(int(gx), w.nx - 2);
                const int j = std::min(int(gy), w.ny - 2);
                const float tx = gx - float(i);
                const float ty = gy - float(j);
                auto at = [&](float Node::*field) {
                    auto n = [&](int a, int b) { return w.nodes[std::size_t(b * w.nx + a)].*field; };
                    const float bottom = n(i, j) + (n(i + 1, j) - n(i, j)) * tx;
                    const float top = n(i, j + 1) + (n(i + 1, j + 1) - n(i, j + 1)) * tx;
                    return bottom + (top - bottom) * ty;
                };
                mapAx.at<float>(y, x) = at(&Node::ax) - 0.5f;
                mapAy.at<float>(y, x) = at(&Node::ay) - 0.5f;
                mapBx.at<float>(y, x) = at(&Node::bx) - 0.5f;
                mapBy.at<float>(y, x) = at(&Node::by) - 0.5f;
                weightB.at<float>(y, x) = at(&Node::f);
                weightA.at<float>(y, x) = 1.0f - weightB.at<float>(y, x);
            }
    }

    void sample(cv::Mat& a, cv::Mat& b, cv::Mat& out) const
    {
        cv::remap(first, a, mapAx, mapAy, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
        cv::remap(last, b, mapBx, mapBy, cv::INTER_LINEAR, cv::BORDER_REPLICATE);
        cv::blendLinear(a, b, weightA, weightB, out);
    }
};

const OpenCvWorkload& openCvWorkload()
{
    static const OpenCvWorkload w;
    return w;
}

Bitmap renderFrame(const Image& frame, int threads)
{
    RenderOptions options;
    options.maxThreads = threads;
    return renderToBitmap(frame, {0, 0, float(kWidth), float(kHeight)}, options);
}

void BM_PlyraSampling(benchmark::State& state, int threads, sampling::SamplingPath path)
{
    const Image frame = workload().frame();
    sampling::setSamplingPath(path);
    renderFrame(frame, threads); // builds nothing lazily later: levels, kernels
    for (auto _ : state)
        benchmark::DoNotOptimize(renderFrame(frame, threads));
    sampling::setSamplingPath(sampling::SamplingPath::Fastest);
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void BM_OpenCvRemapAndBlend(benchmark::State& state, int threads)
{
    const OpenCvWorkload& w = openCvWorkload();
    cv::setNumThreads(threads);
    cv::Mat a, b, out;
    w.sample(a, b, out);
    for (auto _ : state) {
        w.sample(a, b, out);
        benchmark::DoNotOptimize(out.data);
    }
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

BENCHMARK_CAPTURE(BM_PlyraSampling, one_thread, 1, sampling::SamplingPath::Fastest)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PlyraSampling, one_thread_scalar, 1, sampling::SamplingPath::Scalar)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PlyraSampling, all_threads, 0, sampling::SamplingPath::Fastest)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenCvRemapAndBlend, one_thread, 1)->Unit(benchmark::kMillisecond);

/// Best of several runs of one frame, in milliseconds.
template <typename F>
double bestMilliseconds(F run, int repeats)
{
    double best = 1e30;
    for (int k = 0; k < repeats; ++k) {
        const auto start = std::chrono::steady_clock::now();
        run();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

void printRatio()
{
    const Image frame = workload().frame();
    const OpenCvWorkload& w = openCvWorkload();
    cv::setNumThreads(1);
    cv::Mat a, b, out;
    const double ours = bestMilliseconds([&] { renderFrame(frame, 1); }, 15);
    const double oursThreaded = bestMilliseconds([&] { renderFrame(frame, 0); }, 15);
    const double openCv = bestMilliseconds([&] { w.sample(a, b, out); }, 15);
    std::printf("best of 15, one 1920x1080 frame: plyra one thread %.2f ms, all threads %.2f ms; "
                "OpenCV remap x2 + blend one thread %.2f ms; ratio plyra/OpenCV (one thread) %.2f\n",
                ours, oursThreaded, openCv, ours / openCv);
}

} // namespace
} // namespace plyra

int main(int argc, char** argv)
{
    // PLYRA_HWY_TARGETS=<Highway target bits> measures a narrower instruction set, e.g.
    // 4611686018427388416 (AVX2 + scalar) on a machine with AVX-512.
    if (const char* targets = std::getenv("PLYRA_HWY_TARGETS"))
        hwy::SetSupportedTargetsForTest(std::atoll(targets));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    plyra::printRatio();
    return 0;
}
