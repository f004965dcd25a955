// SPDX-License-Identifier: MIT
// Times a whole movie render against encoding the same frames alone, and measures the
// peak memory of a long render, or of renders of several lengths (each in a process of
// its own), which must not depend on the length.
//
//   movie_bench [frames=48] [width=1920] [height=1080] [lines=100] [codec=mp4v] [quality=768]
//   movie_bench --memory [frames=500] [width] [height] [lines] [codec] [quality]
//   movie_bench --memory-table [width=300] [height=300] [codec=mp4v] [frames...=1000 10000 100000]
#include "process_memory.h"

#include "model/morph_document.h"
#include "platform/movie/movie.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "render/movie_codecs.h"
#include "render/movie_render_controller.h"

#include <QCoreApplication>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <thread>

using namespace plyra;
using Clock = std::chrono::steady_clock;

namespace {

// A deterministic texture: smooth colour waves with fine detail, so encoders have work.
QImage texturedImage(int width, int height, int seed)
{
    QImage image(width, height, QImage::Format_RGBA8888);
    for (int y = 0; y < height; ++y) {
        uchar* row = image.scanLine(y);
        for (int x = 0; x < width; ++x) {
            const double u = x * 0.013 + seed;
            const double v = y * 0.017 - seed;
            row[x * 4 + 0] = static_cast<uchar>(127 + 120 * std::sin(u + 0.3 * std::cos(v * 1.7)));
            row[x * 4 + 1] = static_cast<uchar>(127 + 120 * std::sin(v * 1.3 + seed));
            row[x * 4 + 2] = static_cast<uchar>(((x / 16 + y / 16 + seed) % 2) ? 200 : 60);
            row[x * 4 + 3] = 255;
        }
    }
    return image;
}

void addLines(MorphDocument& document, int count)
{
    std::mt19937 random(1234);
    std::uniform_real_distribution<float> position(0.05f, 0.95f);
    std::uniform_real_distribution<float> shift(-0.05f, 0.05f);
    for (int i = 0; i < count; ++i) {
        auto line = MorphLine::create();
        const Point s{position(random), position(random)};
        const Point e{std::clamp(s.x + shift(random) * 3, 0.0f, 1.0f), std::clamp(s.y + shift(random) * 3, 0.0f, 1.0f)};
        line->setStartPoint(s, 0, nullptr);
        line->setEndPoint(e, 0, nullptr);
        line->setStartPoint({s.x + shift(random), s.y + shift(random)}, 1, nullptr);
        line->setEndPoint({e.x + shift(random), e.y + shift(random)}, 1, nullptr);
        document.addMorphLine(line);
    }
}

double renderMovie(MorphDocument& document, int frames, const std::string& codec, int quality, const QString& out)
{
    MovieRenderController controller(document);
    controller.settings().setNumberOfFrames(static_cast<std::uint32_t>(frames));
    controller.settings().setFramesPerSecond(24.0f);
    controller.setCodec(codec);
    controller.setQuality(quality);
    controller.setAppendBudget(std::chrono::milliseconds(1000));
    const Clock::time_point start = Clock::now();
    controller.recalc();
    while (!controller.tick())
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    QString error;
    if (!controller.saveRenderedMovie(out, &error))
        std::fprintf(stderr, "save failed: %s\n", qPrintable(error));
    return seconds;
}

double encodeOnly(const std::vector<RgbaImage>& frames, int count, const std::string& codec, int quality,
    const std::string& storage)
{
    const Clock::time_point start = Clock::now();
    std::unique_ptr<Movie> movie = Movie::createInStorage(storage);
    for (int i = 0; i < count; ++i)
        movie->addImage(frames[static_cast<std::size_t>(i) % frames.size()], {frameDurationValue(24.0f), 600, 0},
            AddImageAttributes{fourCharCode(codec), quality});
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Runs `--memory` once per frame count, each in a fresh process, and prints the peaks
// with their spread.
int memoryTable(int argc, char* argv[])
{
    const QString width = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("300");
    const QString height = argc > 3 ? QString::fromLocal8Bit(argv[3]) : QStringLiteral("300");
    const QString codec = argc > 4 ? QString::fromLocal8Bit(argv[4]) : QStringLiteral("mp4v");
    QStringList counts;
    for (int i = 5; i < argc; ++i)
        counts << QString::fromLocal8Bit(argv[i]);
    if (counts.isEmpty())
        counts = {QStringLiteral("1000"), QStringLiteral("10000"), QStringLiteral("100000")};
    const QRegularExpression peak(QStringLiteral("peak resident (\\d+) MiB"));
    double lowest = 1e300;
    double highest = 0;
    for (const QString& count : counts) {
        QProcess run;
        run.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        run.start(QString::fromLocal8Bit(argv[0]), {QStringLiteral("--memory"), count, width, height, QStringLiteral("20"), codec});
        run.waitForFinished(-1);
        const QString line = QString::fromUtf8(run.readAllStandardOutput()).trimmed();
        std::printf("%s\n", qPrintable(line));
        const QRegularExpressionMatch match = peak.match(line);
        if (!match.hasMatch())
            return 1;
        const double mib = match.captured(1).toDouble();
        lowest = std::min(lowest, mib);
        highest = std::max(highest, mib);
    }
    std::printf("peak resident from %.0f to %.0f MiB: the longest run needs %.1f %% more than the shortest\n", lowest,
                highest, (highest / lowest - 1.0) * 100.0);
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (argc > 1 && std::string(argv[1]) == "--memory-table")
        return memoryTable(argc, argv);
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    const bool memory = argc > 1 && std::string(argv[1]) == "--memory";
    const int argOffset = memory ? 2 : 1;
    auto arg = [&](int i, int fallback) { return argc > argOffset + i ? std::atoi(argv[argOffset + i]) : fallback; };
    const int frames = arg(0, memory ? 500 : 48);
    const int width = arg(1, 1920);
    const int height = arg(2, 1080);
    const int lineCount = arg(3, 100);
    const std::string codec = argc > argOffset + 4 ? argv[argOffset + 4] : "mp4v";
    const int quality = arg(5, 768);

    MorphDocument document;
    for (int track : {0, 1}) {
        const QString path = dir.filePath(QStringLiteral("image%1.png").arg(track));
        texturedImage(width, height, track * 7 + 1).save(path);
        document.setImageFromURL(path, static_cast<unsigned>(track));
    }
    addLines(document, lineCount);
    RunLoop::main().runUntilIdle();

    if (memory) {
        const double seconds = renderMovie(document, frames, codec, quality, dir.filePath(QStringLiteral("long.mov")));
        std::printf("movie %d frames %dx%d, %d lines, %s q%d: %.2f s (%.1f fps), peak resident %.0f MiB\n", frames,
            width, height, lineCount, codec.c_str(), quality, seconds, frames / seconds, bench::peakResidentMiB());
        return 0;
    }

    const double render = renderMovie(document, frames, codec, quality, dir.filePath(QStringLiteral("morph.mov")));
    // The same frames, decoded once from the movie just made, encoded again alone.
    std::unique_ptr<Movie> made = Movie::open(dir.filePath(QStringLiteral("morph.mov")).toStdString());
    std::vector<RgbaImage> images;
    for (std::int64_t t : made->frameTimes())
        if (auto image = made->frameImageAtTime({t, 600, 0}))
            images.push_back(std::move(*image));
    if (images.empty()) {
        std::fprintf(stderr, "could not decode the rendered movie\n");
        return 1;
    }
    const double encode = encodeOnly(images, frames, codec, quality, dir.filePath(QStringLiteral("encode.tmp")).toStdString());
    std::printf("movie %d frames %dx%d, %d lines, %s q%d\n", frames, width, height, lineCount, codec.c_str(), quality);
    std::printf("  whole render: %.3f s (%.1f fps)\n", render, frames / render);
    std::printf("  encoding alone: %.3f s (%.1f fps)\n", encode, frames / encode);
    std::printf("  ratio render / encode: %.2f (goal <= 1.25)\n", render / encode);
    return 0;
}
