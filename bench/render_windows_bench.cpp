// SPDX-License-Identifier: MIT
// Times the render windows as a person uses them, on the 1920 × 1080 workload with 100
// lines:
//  - the preview strip while a line is dragged: from the last change of the drag to all
//    five cells filled (the strip waits 0.1 s after the last change, then polls every 0.1 s);
//  - a 48-frame 1920 × 1080 movie in the movie window: the longest stall of the main
//    thread (how late a 5 ms timer fires) and the time to the complete, saved movie,
//    against plyra-render writing the same movie.
//
//   render_windows_bench [drags=10] [movies=3]
#include "bench_workload.h"

#include "engine/image_conversion.h"
#include "model/morph_document.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/qt/user_defaults.h"
#include "render/movie_render_controller.h"
#include "render/windows/movie_window.h"
#include "render/windows/preview_dock.h"
#include "render/windows/preview_strip_render.h"
#include "render/windows/preview_strip_view.h"
#include "render/windows/render_scheduler.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>
#include <QMainWindow>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace plyra;

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

// Runs the event loop until done() holds, looking every millisecond; the thread sleeps
// in between, as an application's main thread does.
void waitUntil(const std::function<bool()>& done)
{
    if (done())
        return;
    QEventLoop loop;
    QTimer check;
    check.setInterval(1);
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    check.start();
    loop.exec();
}

void pause(int ms)
{
    QElapsedTimer clock;
    clock.start();
    waitUntil([&] { return clock.elapsed() >= ms; });
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Times every event the main thread handles and keeps the longest, to tell what a stall was.
class TimingApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        if (m_depth++ > 0) {
            const bool handled = QApplication::notify(receiver, event);
            --m_depth;
            return handled;
        }
        QElapsedTimer clock;
        clock.start();
        const bool handled = QApplication::notify(receiver, event);
        --m_depth;
        const double ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        if (ms > m_longest) {
            m_longest = ms;
            m_longestWhat = QStringLiteral("event %1 to %2").arg(static_cast<int>(event->type())).arg(
                QString::fromLatin1(receiver->metaObject()->className()));
        }
        return handled;
    }

    void resetLongest()
    {
        m_longest = 0;
        m_longestWhat.clear();
    }
    double longest() const { return m_longest; }
    const QString& longestWhat() const { return m_longestWhat; }

private:
    int m_depth = 0;
    double m_longest = 0;
    QString m_longestWhat;
};

/// How late a 5 ms timer fires: the longest time the main thread did not get back to its loop.
class StallProbe {
public:
    StallProbe()
    {
        m_timer.setInterval(5);
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_longest = std::max(m_longest, m_clock.nsecsElapsed() / 1e6 - 5.0);
            m_clock.restart();
        });
    }
    void start()
    {
        m_longest = 0;
        m_clock.start();
        m_timer.start();
    }
    double stop()
    {
        m_timer.stop();
        return m_longest;
    }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_longest = 0;
};

void loadWorkload(MorphDocument& document, const QTemporaryDir& dir)
{
    for (unsigned track : {0u, 1u}) {
        const std::optional<Bitmap> bitmap = bitmapFromImage(bench::texturedImage(kWidth, kHeight, track * 7 + 1));
        const QImage bottomUp(bitmap->data(), kWidth, kHeight, static_cast<qsizetype>(bitmap->bytesPerRow()),
            QImage::Format_RGBA8888);
        const QString path = dir.filePath(QStringLiteral("image%1.png").arg(track));
        bottomUp.mirrored().save(path);
        document.setImageFromURL(path, track);
    }
    for (const MorphLine::Ptr& line : bench::benchLines(100))
        document.addMorphLine(line);
}

void benchPreviewDrag(MorphDocument& document, int drags)
{
    QMainWindow window;
    auto* dock = new PreviewDock(document, &window);
    window.addDockWidget(Qt::BottomDockWidgetArea, dock);
    window.resize(960, 300);
    window.show();
    dock->showStrip();
    waitUntil([&] { return dock->renderer().filledCellCount() == 5 && !dock->scheduler().isPolling(); });
    const QSize cell = dock->strip()->cellSize();

    const MorphLine::Ptr line = document.morphLines().front();
    const Point end = line->endPoint(1);
    std::vector<double> latencies;
    std::vector<double> stalls;
    StallProbe probe;
    for (int drag = 0; drag < drags; ++drag) {
        // A one-second drag: a move every 16 ms, as a mouse delivers them.
        probe.start();
        QElapsedTimer sinceLastChange;
        for (int step = 0; step < 60; ++step) {
            const float offset = 0.002f * static_cast<float>(step % 30) + 0.001f * static_cast<float>(drag);
            line->setEndPoint({end.x + offset, end.y - offset}, 1, &document.undoManager());
            sinceLastChange.start();
            pause(16);
        }
        bool started = false;
        const QMetaObject::Connection connection =
            QObject::connect(dock, &PreviewDock::renderStarted, [&] { started = true; });
        waitUntil([&] { return started && dock->renderer().filledCellCount() == 5; });
        latencies.push_back(static_cast<double>(sinceLastChange.nsecsElapsed()) / 1e6);
        QObject::disconnect(connection);
        stalls.push_back(probe.stop());
    }
    const double worst = *std::max_element(latencies.begin(), latencies.end());
    std::printf("preview strip, 5 cells of %dx%d, 100 lines, %d drags of 60 moves\n", cell.width(), cell.height(), drags);
    std::printf("  last change to all cells filled: median %.0f ms, worst %.0f ms (goal <= 300)\n", median(latencies), worst);
    std::printf("  beyond the two 100 ms timers: median %.0f ms, worst %.0f ms (goal <= 100)\n", median(latencies) - 200.0,
        worst - 200.0);
    std::printf("  longest main-thread stall during the drags: %.1f ms\n", *std::max_element(stalls.begin(), stalls.end()));
}

double windowMovie(MorphDocument& document, const QString& out, double* longestStall)
{
    MovieWindow window(document);
    window.setSizeToView(false);
    window.setFrameSize({static_cast<float>(kWidth), static_cast<float>(kHeight)});
    window.setNumberOfFrames(48);
    window.setFramesPerSecond(24.0f);
    StallProbe probe;
    QElapsedTimer clock;
    bool complete = false;
    QObject::connect(&window.scheduler(), &RenderScheduler::renderFinished, [&] { complete = true; });
    auto* app = static_cast<TimingApplication*>(QCoreApplication::instance());
    app->resetLongest();
    probe.start();
    clock.start();
    window.show();
    waitUntil([&] { return complete; });
    *longestStall = probe.stop();
    std::printf("  (run: longest event %.1f ms, %s; timer late by at most %.1f ms)\n", app->longest(),
        qPrintable(app->longestWhat()), *longestStall);
    if (!window.saveToPath(out))
        std::fprintf(stderr, "the window could not save the movie\n");
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    window.close();
    return seconds;
}

double cliMovie(const QString& package, const QString& out)
{
    QElapsedTimer clock;
    clock.start();
    QProcess cli;
    cli.start(QStringLiteral(PLYRA_RENDER_EXE),
        {package, QStringLiteral("-o"), out, QStringLiteral("--frames"), QStringLiteral("48"), QStringLiteral("--fps"),
            QStringLiteral("24"), QStringLiteral("--size"), QStringLiteral("1920x1080"), QStringLiteral("--quiet")});
    cli.waitForFinished(-1);
    if (cli.exitCode() != 0)
        std::fprintf(stderr, "plyra-render failed: %s\n", cli.readAllStandardError().constData());
    return static_cast<double>(clock.nsecsElapsed()) / 1e9;
}

void benchMovie(MorphDocument& document, const QTemporaryDir& dir, int runs)
{
    const QString package = dir.filePath(QStringLiteral("workload.plyra"));
    QString error;
    if (!document.writeToFile(package, &error))
        std::fprintf(stderr, "cannot write the workload package: %s\n", qPrintable(error));
    std::vector<double> window, cli, stalls;
    for (int run = 0; run < runs; ++run) {
        double stall = 0;
        window.push_back(windowMovie(document, dir.filePath(QStringLiteral("window.mov")), &stall));
        stalls.push_back(stall);
        cli.push_back(cliMovie(package, dir.filePath(QStringLiteral("cli.mov"))));
    }
    std::printf("movie, 48 frames of 1920x1080, 100 lines, %s, %d runs each, alternating\n",
        qPrintable(document.codecFormat()), runs);
    std::printf("  longest main-thread stall: median %.1f ms, worst %.1f ms (goal <= 50)\n", median(stalls),
        *std::max_element(stalls.begin(), stalls.end()));
    std::printf("  movie window to the saved movie: median %.2f s\n", median(window));
    std::printf("  plyra-render, same movie: median %.2f s\n", median(cli));
    std::printf("  ratio window / plyra-render: %.2f (goal <= 1.25)\n", median(window) / median(cli));
}

} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    TimingApplication app(argc, argv);
    bindRunLoopToQtEventLoop();
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    const int drags = argc > 1 ? std::atoi(argv[1]) : 10;
    const int movies = argc > 2 ? std::atoi(argv[2]) : 3;
    MorphDocument document;
    loadWorkload(document, dir);
    if (drags > 0)
        benchPreviewDrag(document, drags);
    if (movies > 0)
        benchMovie(document, dir, movies);
    return 0;
}
