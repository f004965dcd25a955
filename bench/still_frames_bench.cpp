// SPDX-License-Identifier: MIT
// Numbered PNG and TIFF frames against FFmpeg's own encoders, and movies in each
// container against QuickTime.
//
//   still_frames_bench [frames=48] [width=1920] [height=1080] [lines=50] [images=textured|photos]
//   still_frames_bench --movies [frames=48] [width] [height] [lines] [images]
//
// Frames: the document's frames are written as a numbered sequence (the whole render:
// morph, rendering, encoding on the workers, files), then encoded again alone from memory;
// FFmpeg then encodes the same frames, decoded from a lossless FFV1 copy, with its PNG
// (TIFF) encoder in one run. Times and bytes are compared; the goals are ratios of at
// most 1.0 in time and 1.15 in bytes (PNG).
// Movies: .mov (H.264), .mp4, .webm, and an MPEG-4 .mov plain, eased and held, and also
// ping-pong, with the time per computed frame and what ffprobe says of each file.
#include "bench_workload.h"

#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "platform/stills/png_encoder.h"
#include "platform/stills/tiff_encoder.h"
#include "render/movie_render_controller.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <atomic>
#include <cstring>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

using namespace plyra;

namespace {

struct Workload {
    int frames = 48;
    int width = 1920;
    int height = 1080;
    int lines = 50;
    bool photos = false;
};

double sizeOfFolder(const QString& folder, std::size_t* files = nullptr)
{
    double bytes = 0;
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files);
    for (const QFileInfo& entry : entries)
        bytes += static_cast<double>(entry.size());
    if (files)
        *files = static_cast<std::size_t>(entries.size());
    return bytes;
}

void makeDocument(MorphDocument& document, const Workload& w, const QTemporaryDir& dir)
{
    for (unsigned track : {0u, 1u}) {
        const QString path = dir.filePath(QStringLiteral("image%1.png").arg(track));
        QImage image;
        if (w.photos) {
            const char* names[] = {"ast_face.png", "hopper_face.png"};
            image = QImage(QStringLiteral(PLYRA_SOURCE_DIR "/tests/data/photos/") + QLatin1String(names[track]))
                        .scaled(w.width, w.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        } else {
            const Image textured = bench::texturedImage(w.width, w.height, 11 + track * 6);
            image = QImage(w.width, w.height, QImage::Format_RGBA8888);
            const Bitmap& pixels = *textured.bitmap();
            for (int y = 0; y < w.height; ++y)
                std::memcpy(image.scanLine(w.height - 1 - y), pixels.row(y), static_cast<std::size_t>(w.width) * 4);
        }
        image.save(path);
        document.setImageFromURL(path, track);
    }
    for (const MorphLine::Ptr& line : bench::benchLines(w.lines))
        document.addMorphLine(line);
    RunLoop::main().runUntilIdle();
}

// The whole render to `pattern`, or to a movie file; seconds.
double renderTo(MorphDocument& document, const Workload& w, const QString& path, const MovieTiming& timing = {},
                const char* codec = nullptr)
{
    MovieRenderController controller(document);
    controller.settings().setNumberOfFrames(static_cast<std::uint32_t>(w.frames));
    controller.settings().setFramesPerSecond(24.0f);
    controller.settings().setFrameSize({static_cast<float>(w.width), static_cast<float>(w.height)});
    controller.setTiming(timing);
    if (codec)
        controller.setCodec(std::string(codec));
    controller.setQuality(768);
    controller.setAppendBudget(std::chrono::milliseconds(1000));
    QString error;
    QElapsedTimer clock;
    clock.start();
    if (!controller.setOutputPath(path, &error) || !controller.recalc()) {
        std::fprintf(stderr, "cannot render: %s %s\n", qPrintable(error), qPrintable(controller.errorString()));
        return -1;
    }
    while (!controller.tick())
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    if (!controller.saveRenderedMovie(path, &error))
        std::fprintf(stderr, "cannot save: %s\n", qPrintable(error));
    return static_cast<double>(clock.nsecsElapsed()) * 1e-9;
}

// Encodes every frame again from memory, several at once on `threads`; seconds.
double encodeAlone(const std::vector<QImage>& frames, bool png, unsigned threads)
{
    std::atomic<std::size_t> next{0};
    QElapsedTimer clock;
    clock.start();
    std::vector<std::thread> workers;
    for (unsigned k = 0; k < threads; ++k)
        workers.emplace_back([&] {
            for (std::size_t i = next++; i < frames.size(); i = next++) {
                const QImage& f = frames[i];
                const PixelRows rows{f.constBits(), f.bytesPerLine(), f.width(), f.height()};
                if (!(png ? PngEncoder::encode(rows, 2835) : TiffEncoder::encode(rows, 72.0)))
                    std::fprintf(stderr, "could not encode frame %zu\n", i);
            }
        });
    for (std::thread& worker : workers)
        worker.join();
    return static_cast<double>(clock.nsecsElapsed()) * 1e-9;
}

double runFfmpeg(const QStringList& arguments)
{
    QElapsedTimer clock;
    clock.start();
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::ForwardedChannels);
    ffmpeg.start(QStringLiteral("ffmpeg"), QStringList{QStringLiteral("-y"), QStringLiteral("-loglevel"), QStringLiteral("error")} + arguments);
    ffmpeg.waitForFinished(-1);
    return static_cast<double>(clock.nsecsElapsed()) * 1e-9;
}

// The frames as FFmpeg gets them: a lossless FFV1 copy made from our own files.
std::vector<QImage> makeLosslessCopy(const QString& folder, const QString& pattern, const QString& copy, const Workload& w)
{
    std::vector<QImage> frames;
    for (int n = 1; n <= w.frames; ++n)
        frames.push_back(QImage(QDir(folder).filePath(pattern.arg(n, 4, 10, QLatin1Char('0'))))
                             .convertToFormat(QImage::Format_RGBA8888_Premultiplied));
    runFfmpeg({QStringLiteral("-framerate"), QStringLiteral("24"), QStringLiteral("-i"), QDir(folder).filePath(QStringLiteral("f_%04d.png")),
               QStringLiteral("-c:v"), QStringLiteral("ffv1"), QStringLiteral("-pix_fmt"), QStringLiteral("bgr0"), copy});
    return frames;
}

void compareStills(MorphDocument& document, const Workload& w, QTemporaryDir& dir)
{
    const QString copy = dir.filePath(QStringLiteral("lossless.mkv"));
    std::vector<QImage> frames;
    for (const char* extension : {"png", "tif"}) {
        const bool png = std::string(extension) == "png";
        const QString ours = dir.filePath(QStringLiteral("ours_%1").arg(QLatin1String(extension)));
        const QString theirs = dir.filePath(QStringLiteral("ffmpeg_%1").arg(QLatin1String(extension)));
        QDir().mkpath(ours);
        QDir().mkpath(theirs);
        const QString name = QStringLiteral("f_%1.") + QLatin1String(extension);
        const double render = renderTo(document, w, QDir(ours).filePath(QStringLiteral("f_%04d.") + QLatin1String(extension)));
        std::size_t files = 0;
        const double ourBytes = sizeOfFolder(ours, &files);
        if (frames.empty())
            frames = makeLosslessCopy(ours, name, copy, w);
        const unsigned threads = std::max(2u, std::thread::hardware_concurrency());
        const double alone = encodeAlone(frames, png, threads);
        const double ffmpeg = runFfmpeg({QStringLiteral("-i"), copy, QStringLiteral("-c:v"), QLatin1String(png ? "png" : "tiff"),
                                         QDir(theirs).filePath(QStringLiteral("f_%04d.") + QLatin1String(extension))});
        std::size_t theirFiles = 0;
        const double theirBytes = sizeOfFolder(theirs, &theirFiles);
        std::printf("%s: %zu frames %dx%d\n", extension, files, w.width, w.height);
        std::printf("  whole render to numbered files: %.2f s (%.0f ms a frame), %.1f MB\n", render, render * 1000 / files, ourBytes / 1e6);
        std::printf("  encoding alone from memory, %u threads: %.2f s (%.0f ms a frame)\n", threads, alone, alone * 1000 / files);
        std::printf("  FFmpeg (decode FFV1, encode %s, one run): %.2f s (%.0f ms a frame), %.1f MB, %zu files\n", png ? "png" : "tiff",
                    ffmpeg, ffmpeg * 1000 / theirFiles, theirBytes / 1e6, theirFiles);
        std::printf("  ratio time whole render / FFmpeg: %.2f, encoding alone / FFmpeg: %.2f (goal <= 1.0)\n", render / ffmpeg, alone / ffmpeg);
        std::printf("  ratio bytes / FFmpeg: %.2f%s\n", ourBytes / theirBytes, png ? " (goal <= 1.15)" : "");
    }
}

QString probe(const QString& path)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"), {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_packets"),
        QStringLiteral("-show_entries"), QStringLiteral("stream=codec_name,pix_fmt,width,height,nb_read_packets:format=format_name,duration,size"),
        QStringLiteral("-of"), QStringLiteral("compact"), path});
    ffprobe.waitForFinished(-1);
    return QString::fromUtf8(ffprobe.readAllStandardOutput()).trimmed().replace(QLatin1Char('\n'), QStringLiteral("\n    "));
}

void compareMovies(MorphDocument& document, const Workload& w, QTemporaryDir& dir)
{
    const struct { const char* name; const char* codec; MovieTiming timing; } movies[] = {
        {"h264.mov", "avc1", {}},
        {"h264.mp4", "avc1", {}},
        {"vp9.webm", "avc1", {}},
        {"mpeg4.mov", "mp4v", {}},
        {"mpeg4_eased_held.mov", "mp4v", {Easing::EaseInOut, 1.0, 1.0, false}},
        {"mpeg4_eased_held_pingpong.mov", "mp4v", {Easing::EaseInOut, 1.0, 1.0, true}},
    };
    for (const auto& movie : movies) {
        const QString path = dir.filePath(QLatin1String(movie.name));
        const double seconds = renderTo(document, w, path, movie.timing, movie.codec);
        std::printf("%s: %.2f s, %.0f ms a computed frame\n    %s\n", movie.name, seconds, seconds * 1000 / w.frames, qPrintable(probe(path)));
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    const bool movies = argc > 1 && std::string(argv[1]) == "--movies";
    const int offset = movies ? 2 : 1;
    auto arg = [&](int i, int fallback) { return argc > offset + i ? std::atoi(argv[offset + i]) : fallback; };
    Workload w;
    w.frames = arg(0, 48);
    w.width = arg(1, 1920);
    w.height = arg(2, 1080);
    w.lines = arg(3, 50);
    w.photos = argc > offset + 4 && std::string(argv[offset + 4]) == "photos";
    MorphDocument document;
    makeDocument(document, w, dir);
    std::printf("%s images, %d lines\n", w.photos ? "photographs" : "textured", w.lines);
    if (movies)
        compareMovies(document, w, dir);
    else
        compareStills(document, w, dir);
    return 0;
}
