// SPDX-License-Identifier: MIT
// Times the line editor: painting a 1000 x 750 editor that shows a 6000 x 4000 photo
// with 200 lines, 50 of them selected; handling one drag event of an end point with
// the document change, the notifications and the partial repaint that follow; and
// rescaling the photo after a zoom. Run it on one core (taskset -c 0) for the figures.
#include "bench_workload.h"
#include "editor/morph_editor.h"
#include "model/morph_document.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/run_loop.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

using namespace plyra;

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 750;

QImage photo(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const double u = x * 0.0031;
            const double v = y * 0.0047;
            row[x] = qRgb(int(127 + 120 * std::sin(u + std::cos(v))), int(127 + 120 * std::sin(v * 1.3 - u)),
                int(127 + 100 * std::cos(u * 2.1 + v)));
        }
    }
    return image;
}

/// A document with the photo and the lines, and an editor on it in a shown window.
struct Scene {
    QTemporaryDir dir;
    MorphDocument document;
    std::unique_ptr<MorphEditor> editor;

    Scene()
    {
        const QString path = dir.filePath(QStringLiteral("photo.jpg"));
        photo(6000, 4000).save(path, "JPEG", 90);
        QString error;
        document.setImageFromFile(path, 0, &error);
        const std::vector<MorphLine::Ptr> lines = bench::benchLines(200);
        for (const MorphLine::Ptr& line : lines)
            document.addMorphLine(line);
        document.setSelectedLines(std::vector<MorphLine::Ptr>(lines.begin(), lines.begin() + 50));
        editor = std::make_unique<MorphEditor>();
        editor->setDataSource(&document);
        editor->resize(kWidth, kHeight);
        editor->show();
        settle();
    }
    ~Scene() { editor->setDataSource(nullptr); }

    static void settle()
    {
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
        QCoreApplication::processEvents();
    }
};

std::unique_ptr<Scene> g_scene;

Scene& scene()
{
    if (!g_scene)
        g_scene = std::make_unique<Scene>();
    return *g_scene;
}

// The backing store of an opaque window on X11 is 32-bit RGB, as the target here.
void BM_PaintWholeEditor(benchmark::State& state)
{
    Scene& s = scene();
    QImage target(kWidth, kHeight, QImage::Format_RGB32);
    s.editor->render(&target); // the first paint makes the scaled copy
    for (auto _ : state) {
        s.editor->render(&target);
        benchmark::DoNotOptimize(target.constBits());
    }
}
BENCHMARK(BM_PaintWholeEditor)->Unit(benchmark::kMillisecond);

void BM_DragEndPointEvent(benchmark::State& state)
{
    Scene& s = scene();
    // Press on the end point of the first line, then move it back and forth.
    const MorphLine::Ptr line = s.document.morphLines().front();
    const Point end = line->endPointAtTime(0.0f);
    const QPointF at(end.x * kWidth, kHeight - end.y * kHeight);
    QMouseEvent press(QEvent::MouseButtonPress, at, s.editor->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(s.editor.get(), &press);
    int step = 0;
    for (auto _ : state) {
        const QPointF p = at + QPointF(3.0 * (step % 7), 2.0 * (step % 5));
        ++step;
        QMouseEvent move(QEvent::MouseMove, p, s.editor->mapToGlobal(p), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(s.editor.get(), &move);
        // The pass ends: notifications go out, the dirty region is painted.
        QCoreApplication::processEvents();
    }
    QMouseEvent release(QEvent::MouseButtonRelease, at, s.editor->mapToGlobal(at), Qt::LeftButton, Qt::NoButton, {});
    QApplication::sendEvent(s.editor.get(), &release);
    Scene::settle();
}
BENCHMARK(BM_DragEndPointEvent)->Unit(benchmark::kMillisecond);

void BM_RescaleAfterZoom(benchmark::State& state)
{
    Scene& s = scene();
    QImage target(kWidth, kHeight, QImage::Format_RGB32);
    int step = 0;
    for (auto _ : state) {
        // Each size differs from the last by more than a unit: a new scaled copy.
        s.editor->resize(kWidth + 2 * (step % 2), kHeight + 2 * (step % 2));
        ++step;
        s.editor->render(&target);
    }
    s.editor->resize(kWidth, kHeight);
}
BENCHMARK(BM_RescaleAfterZoom)->Unit(benchmark::kMillisecond);

void BM_PaintZoomedView(benchmark::State& state)
{
    // Zoomed to 20000 x 15000: only the visible part is scaled and kept.
    Scene& s = scene();
    QImage target(kWidth, kHeight, QImage::Format_RGB32);
    s.editor->resize(20000, 15000);
    const QRegion visible(QRect(9000, 7000, kWidth, kHeight));
    s.editor->render(&target, QPoint(), visible);
    for (auto _ : state) {
        s.editor->render(&target, QPoint(), visible);
        benchmark::DoNotOptimize(target.constBits());
    }
    s.editor->resize(kWidth, kHeight);
}
BENCHMARK(BM_PaintZoomedView)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    bindRunLoopToQtEventLoop();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_scene.reset(); // widgets go before the application
    return 0;
}
