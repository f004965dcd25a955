// SPDX-License-Identifier: MIT
// Times the editors' prediction and transform handles, event by event, as a person
// meets them: on a document with 400 lines, the release that ends the drawing of a line
// until the other editor has painted its predicted counterpart; with 200 lines
// selected, one mouse move of a transform handle's drag including the repaint. Both
// editors are 1000 x 750 and show 1000 x 750 photos. Run it on one core (taskset -c 0).
#include "bench_workload.h"
#include "editor/morph_editor.h"
#include "editor/transform_frame.h"
#include "model/morph_document.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/run_loop.h"
#include "platform/undo_manager.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

using namespace plyra;

namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 750;

/// Counts the paints that reach a widget, so that a timing without a paint is refused.
class PaintCounter : public QObject {
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

struct Scene {
    QTemporaryDir dir;
    MorphDocument document;
    std::unique_ptr<QWidget> window;
    MorphEditor* first = nullptr;
    MorphEditor* last = nullptr;
    PaintCounter lastPaints;

    explicit Scene(int lines)
        : window(std::make_unique<QWidget>())
    {
        for (unsigned track : {0u, 1u}) {
            const QString path = dir.filePath(QStringLiteral("photo%1.jpg").arg(track));
            QImage photo(kWidth, kHeight, QImage::Format_RGB32);
            photo.fill(track == 0 ? QColor(90, 110, 130) : QColor(130, 110, 90));
            photo.save(path, "JPEG", 90);
            QString error;
            document.setImageFromFile(path, track, &error);
        }
        for (const MorphLine::Ptr& line : bench::benchLines(lines, bench::kSeed, 0.01f))
            document.addMorphLine(line);
        window->resize(2 * kWidth + 30, kHeight + 20);
        for (unsigned track : {0u, 1u}) {
            auto* editor = new MorphEditor(window.get());
            editor->setGeometry(10 + static_cast<int>(track) * (kWidth + 10), 10, kWidth, kHeight);
            editor->setTrack(track);
            editor->setDataSource(&document);
            (track == 0 ? first : last) = editor;
        }
        window->show();
        last->installEventFilter(&lastPaints);
        settle();
    }
    ~Scene()
    {
        first->setDataSource(nullptr);
        last->setDataSource(nullptr);
    }

    static void settle()
    {
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
        QCoreApplication::processEvents();
    }

    void send(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons buttons,
        Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent event(type, at, first->mapToGlobal(at), button, buttons, modifiers);
        QApplication::sendEvent(first, &event);
    }
};

void BM_ReleaseEndingADrawingUntilThePredictionIsPainted(benchmark::State& state)
{
    Scene scene(400);
    int step = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // The press solves the prediction for the gesture; only the release is timed.
        // Alt draws even on a line.
        scene.document.setSelectedLines({});
        const QPointF from(200.0 + 13.0 * (step % 37), 150.0 + 11.0 * (step % 31));
        ++step;
        scene.send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton, Qt::AltModifier);
        scene.send(QEvent::MouseMove, from + QPointF(40, 25), Qt::NoButton, Qt::LeftButton);
        Scene::settle();
        const int paintsBefore = scene.lastPaints.paints;
        state.ResumeTiming();

        scene.send(QEvent::MouseButtonRelease, from + QPointF(80, 50), Qt::LeftButton, Qt::NoButton);
        Scene::settle();

        state.PauseTiming();
        if (scene.lastPaints.paints == paintsBefore)
            state.SkipWithError("the other editor did not paint");
        scene.document.undoManager().undo();
        Scene::settle();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ReleaseEndingADrawingUntilThePredictionIsPainted)->Unit(benchmark::kMillisecond);

void BM_TransformDragMoveOf200Lines(benchmark::State& state)
{
    Scene scene(200);
    scene.document.setSelectedLines(scene.document.morphLines());
    Scene::settle();
    const ViewMapping mapping{static_cast<float>(kWidth), static_cast<float>(kHeight)};
    const std::optional<TransformFrame> frame = TransformFrame::ofSelection(scene.document, 0, mapping);
    const QPointF corner = mapping.toWidget(frame->handlePosition(FrameHandle::TopRight));
    scene.send(QEvent::MouseButtonPress, corner, Qt::LeftButton, Qt::LeftButton);
    PaintCounter firstPaints;
    scene.first->installEventFilter(&firstPaints);
    int step = 0;
    for (auto _ : state) {
        const QPointF p = corner + QPointF(-3.0 * (step % 29), 2.0 * (step % 17));
        ++step;
        const int paintsBefore = firstPaints.paints;
        scene.send(QEvent::MouseMove, p, Qt::NoButton, Qt::LeftButton);
        QCoreApplication::processEvents();
        if (firstPaints.paints == paintsBefore && step > 1)
            state.SkipWithError("the editor did not paint");
    }
    scene.send(QEvent::MouseButtonRelease, corner, Qt::LeftButton, Qt::NoButton);
    Scene::settle();
}
BENCHMARK(BM_TransformDragMoveOf200Lines)->Unit(benchmark::kMillisecond);

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
    return 0;
}
