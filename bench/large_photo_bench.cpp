// SPDX-License-Identifier: MIT
// Renders one 1920 × 1080 frame from two 48-megapixel JPEG photographs (8000 × 6000) and
// reports, separately, reading the photographs (decoding, the rendering bitmaps) and
// rendering the frame: time and peak resident memory of each stage.
//
//   large_photo_bench [width=8000] [height=6000] [lines=50]
#include "bench_workload.h"
#include "process_memory.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "render/frame_render_controller.h"

#include <QCoreApplication>
#include <QImage>
#include <QTemporaryDir>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

using namespace plyra;
using Clock = std::chrono::steady_clock;

namespace {

// A photograph-like picture: smooth shading with fine texture, so that JPEG has work.
void writePhoto(const QString& path, int width, int height, int seed)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const double u = x * 0.0021 + seed;
            const double v = y * 0.0017 - seed;
            const int grain = ((x * 7919 + y * 104729 + seed) % 23) - 11;
            row[x] = qRgb(std::clamp(static_cast<int>(127 + 110 * std::sin(u + std::cos(v))) + grain, 0, 255),
                          std::clamp(static_cast<int>(127 + 110 * std::sin(v * 1.3 + seed)) + grain, 0, 255),
                          std::clamp(static_cast<int>(127 + 110 * std::cos(u * 0.7 - v)) + grain, 0, 255));
        }
    }
    if (!image.save(path, "JPEG", 90))
        std::fprintf(stderr, "could not write %s\n", qPrintable(path));
}

double seconds(Clock::time_point since)
{
    return std::chrono::duration<double>(Clock::now() - since).count();
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    const int width = argc > 1 ? std::atoi(argv[1]) : 8000;
    const int height = argc > 2 ? std::atoi(argv[2]) : 6000;
    const int lineCount = argc > 3 ? std::atoi(argv[3]) : 50;
    const QString first = dir.filePath(QStringLiteral("first.jpg"));
    const QString last = dir.filePath(QStringLiteral("last.jpg"));
    writePhoto(first, width, height, 1);
    writePhoto(last, width, height, 5);

    const double baseline = bench::residentMiB();
    bench::resetPeakResident();
    Clock::time_point start = Clock::now();
    MorphDocument document;
    document.setImageFromURL(first, 0);
    document.setImageFromURL(last, 1);
    const bool loaded = !document.ciimageInTrack(0).isNull() && !document.ciimageInTrack(1).isNull();
    const double reading = seconds(start);
    const double readingPeak = bench::peakResidentMiB();
    if (!loaded) {
        std::fprintf(stderr, "the photographs could not be read\n");
        return 1;
    }
    for (const MorphLine::Ptr& line : bench::benchLines(lineCount))
        document.addMorphLine(line);
    RunLoop::main().runUntilIdle();

    bench::resetPeakResident();
    start = Clock::now();
    FrameRenderController controller(document);
    controller.settings().setFrameSize({1920, 1080});
    controller.recalc();
    while (!controller.tick())
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    const double rendering = seconds(start);
    const double renderingPeak = bench::peakResidentMiB();
    if (!controller.bitmap()) {
        std::fprintf(stderr, "no frame was rendered\n");
        return 1;
    }
    std::printf("two %dx%d JPEG photographs (%.0f megapixels each), %d lines, one 1920x1080 frame\n", width, height,
                width * static_cast<double>(height) / 1e6, lineCount);
    std::printf("  before reading: %.0f MiB resident\n", baseline);
    std::printf("  reading both:   %.3f s, peak resident %.0f MiB\n", reading, readingPeak);
    std::printf("  rendering:      %.3f s, peak resident %.0f MiB\n", rendering, renderingPeak);
    return 0;
}
