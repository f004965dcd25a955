// SPDX-License-Identifier: MIT
// A document of two 24-megapixel photographs and 2,000 lines, saved as a package: how long
// autosave holds the main thread for each recovery copy (the snapshot it gathers; the
// writing is on the writer's thread), how long the writer takes, and how long a save of
// the package takes without and with foreign files to carry over (a note, a photograph and
// a 200 MB movie in a subfolder).
//
//   recovery_bench [width=6000] [height=4000] [lines=2000] [edits=20]
#include "bench_workload.h"
#include "model/morph_document.h"
#include "platform/qt/timer.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "recovery/autosave.h"
#include "recovery/recovery_store.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <ctime>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace plyra;
using Clock = std::chrono::steady_clock;

namespace {

void writePhoto(const QString& path, int width, int height, int seed)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] = qRgb((x / 7 + seed * 40) & 255, (y / 5 + x / 11) & 255, ((x ^ y) + seed) & 255);
    }
    image.save(path, "JPEG", 90);
}

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The processor time of this thread: a busy machine stretches the wall time.
double threadMilliseconds()
{
    timespec now {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The median of three saves of the package, each after one more line.
double saveMilliseconds(MorphDocument& document, const QString& package)
{
    std::vector<double> times;
    for (int i = 0; i < 3; ++i) {
        document.addMorphLine(bench::benchLines(1, bench::kSeed + 100 + static_cast<unsigned>(i)).front());
        const Clock::time_point start = Clock::now();
        if (!document.writeToFile(package))
            std::fprintf(stderr, "the save failed\n");
        times.push_back(millisecondsSince(start));
    }
    return median(times);
}

void addForeignFiles(const QString& package, const QString& photo)
{
    QFile notes(package + QStringLiteral("/notes.txt"));
    if (notes.open(QIODevice::WriteOnly))
        notes.write("what the morph is for\n");
    QFile::copy(photo, package + QStringLiteral("/original.jpg"));
    QDir().mkpath(package + QStringLiteral("/renders"));
    QFile movie(package + QStringLiteral("/renders/final.mov"));
    if (movie.open(QIODevice::WriteOnly)) {
        const QByteArray block(1 << 20, 'm');
        for (int i = 0; i < 200; ++i)
            movie.write(block);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    const int width = argc > 1 ? std::atoi(argv[1]) : 6000;
    const int height = argc > 2 ? std::atoi(argv[2]) : 4000;
    const int lineCount = argc > 3 ? std::atoi(argv[3]) : 2000;
    const int edits = argc > 4 ? std::atoi(argv[4]) : 20;
    const QString first = dir.filePath(QStringLiteral("first.jpg"));
    writePhoto(first, width, height, 1);
    writePhoto(dir.filePath(QStringLiteral("last.jpg")), width, height, 5);

    const QString package = dir.filePath(QStringLiteral("bench.plyra"));
    {
        MorphDocument source;
        source.setImageFromURL(first, 0);
        source.setImageFromURL(dir.filePath(QStringLiteral("last.jpg")), 1);
        for (const MorphLine::Ptr& line : bench::benchLines(lineCount))
            source.addMorphLine(line);
        if (!source.writeToFile(package)) {
            std::fprintf(stderr, "the package could not be written\n");
            return 1;
        }
    }
    MorphDocument document;
    if (!document.readFromFile(package) || !document.imageInTrack(0) || !document.imageInTrack(1)) {
        std::fprintf(stderr, "the package could not be read\n");
        return 1;
    }
    const double plainSave = saveMilliseconds(document, package);
    addForeignFiles(package, first);
    const double carryingSave = saveMilliseconds(document, package);

    ManualClock clock;
    RecoveryStore store(dir.filePath(QStringLiteral("state/Plyra/recovery")));
    Autosave autosave(store);
    autosave.watch(document, [&package] { return Autosave::Description{package, QStringLiteral("bench")}; });
    std::vector<double> stalls;
    std::vector<double> processorStalls;
    std::vector<double> writes;
    for (int i = 0; i < edits; ++i) {
        document.addMorphLine(bench::benchLines(1, bench::kSeed + 1000 + static_cast<unsigned>(i)).front());
        RunLoop::main().runUntilIdle();
        const Clock::time_point start = Clock::now();
        const double processorStart = threadMilliseconds();
        clock.advance(static_cast<int>(autosave.delay().count()));
        processorStalls.push_back(threadMilliseconds() - processorStart);
        stalls.push_back(millisecondsSince(start));
        autosave.writer().waitUntilIdle();
        writes.push_back(millisecondsSince(start));
    }
    document.addMorphLine(bench::benchLines(1, bench::kSeed + 5000).front());
    RunLoop::main().runUntilIdle();
    Clock::time_point start = Clock::now();
    autosave.writeAllNow();
    const double atTermination = millisecondsSince(start);
    autosave.unwatch(document, true);

    std::printf("two %dx%d photographs (%.0f megapixels each), %d lines\n", width, height,
                width * static_cast<double>(height) / 1e6, lineCount);
    std::printf("  save:                        %.0f ms\n", plainSave);
    std::printf("  save with foreign files:     %.0f ms (%.2f x)\n", carryingSave, carryingSave / plainSave);
    std::printf("  autosave, main thread:       longest %.1f ms, median %.1f ms (%d copies, the first included)\n",
                *std::max_element(stalls.begin(), stalls.end()), median(stalls), edits);
    std::printf("  autosave, main thread CPU:   longest %.1f ms, median %.1f ms\n",
                *std::max_element(processorStalls.begin(), processorStalls.end()), median(processorStalls));
    std::printf("  autosave, copy written:      longest %.0f ms, median %.0f ms\n",
                *std::max_element(writes.begin(), writes.end()), median(writes));
    std::printf("  copy at a termination signal: %.0f ms\n", atTermination);
    return autosave.writer().writtenCount() == edits + 1 ? 0 : 1;
}
