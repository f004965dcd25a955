// SPDX-License-Identifier: MIT
// The preview strip: cell times, blank cells at the start of a render, filling in cell
// order, the time tolerance, the lines over the cells, and the dock opening and closing.
#include "render_windows_support.h"

#include "engine/morpher.h"
#include "platform/qt/user_defaults.h"
#include "render/windows/preview_dock.h"
#include "render/windows/preview_strip_render.h"
#include "render/windows/preview_strip_view.h"
#include "render/windows/render_scheduler.h"

#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>

using namespace plyra;

namespace {

/// Lets a test hand its own jobs to the strip's render and consume them.
class ManualStripRender : public PreviewStripRender {
public:
    using PreviewStripRender::consumeFinishedJobs;
    using PreviewStripRender::jobs;
    using PreviewStripRender::newMorphJob;
    using PreviewStripRender::PreviewStripRender;
};

struct StripWindow {
    QMainWindow window;
    PreviewDock* dock;

    explicit StripWindow(MorphDocument& document)
        : dock(new PreviewDock(document, &window))
    {
        window.addDockWidget(Qt::BottomDockWidgetArea, dock);
        window.resize(700, 260);
    }
};

bool allFilled(const PreviewDock& dock)
{
    return dock.renderer().filledCellCount() == dock.renderer().cellCount() && !dock.scheduler().isPolling();
}

} // namespace

class PreviewDockTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { test::initRenderWindowTests(); }

    void cellTimesAndBlankStart();
    void cellsFillStrictlyInOrder();
    void timeTolerance_data();
    void timeTolerance();
    void drawsTheLinesAtEachCellsTime();
    void closedStripComputesNothing();
    void aStripAtTheSideStandsUpright();
};

void PreviewDockTest::cellTimesAndBlankStart()
{
    test::WindowTestDocument doc;
    StripWindow strip(*doc.document);
    QSignalSpy started(strip.dock, &PreviewDock::renderStarted);
    // The cells and jobs as each render starts, taken at that moment.
    QList<int> filledAtStart;
    std::vector<MorphCalculationJob::Ptr> firstJobs;
    connect(strip.dock, &PreviewDock::renderStarted, this, [&] {
        filledAtStart.append(strip.dock->renderer().filledCellCount());
        if (firstJobs.empty())
            firstJobs.assign(strip.dock->renderer().morphJobs().begin(), strip.dock->renderer().morphJobs().end());
    });
    strip.window.show();
    strip.dock->showStrip();
    QVERIFY(test::waitFor([&] { return started.count() >= 1; }));
    const PreviewStripRender& render = strip.dock->renderer();
    QCOMPARE(render.cellCount(), 5);
    QCOMPARE(firstJobs.size(), 5u);
    const float expected[] = {0.0f, 0.25f, 0.5f, 0.75f, 1.0f};
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(render.cellTime(i), expected[i]);
        QCOMPARE(firstJobs[static_cast<std::size_t>(i)]->time(), expected[i]);
    }
    // The jobs are rendered at the cells' size with the preview's grid.
    const QSize cell = strip.dock->strip()->cellSize();
    QCOMPARE(firstJobs[0]->destSize().width, static_cast<float>(cell.width()));
    QCOMPARE(firstJobs[0]->interpolationFactor(), 6.0f);
    QVERIFY(test::waitFor([&] { return allFilled(*strip.dock); }));
    QCOMPARE(render.cellImage(0).size(), cell);

    // A new render blanks every cell first.
    doc.addLine(0.2f, 0.2f, 0.6f, 0.7f, 0.1f, 0.0f);
    QVERIFY(test::waitFor([&] { return started.count() >= 2; }));
    QCOMPARE(filledAtStart, QList<int>({0, 0}));
    QVERIFY(test::waitFor([&] { return allFilled(*strip.dock); }));

    // "maxSampleInterval" from the user defaults sets the grid.
    UserDefaults::standard().setInteger(QStringLiteral("maxSampleInterval"), 9);
    QCOMPARE(render.previewInterpolationFactor(), 9.0f);
    UserDefaults::standard().setInteger(QStringLiteral("maxSampleInterval"), 1);
    QCOMPARE(render.previewInterpolationFactor(), 6.0f);
    UserDefaults::standard().remove(QStringLiteral("maxSampleInterval"));
}

void PreviewDockTest::cellsFillStrictlyInOrder()
{
    test::WindowTestDocument doc;
    ManualStripRender render(*doc.document);
    render.setCellSize({40.0f, 30.0f});
    std::vector<MorphCalculationJob::Ptr> jobs;
    for (std::uint32_t cell = 0; cell < 5; ++cell)
        jobs.push_back(render.newMorphJob(cell));
    const Morpher::Ptr morpher =
        Morpher::create(doc.document->ciimageInTrack(0), doc.document->ciimageInTrack(1), doc.document->morphLines());
    for (const MorphCalculationJob::Ptr& job : jobs) {
        job->setTrack0Image(doc.document->ciimageInTrack(0));
        job->setTrack1Image(doc.document->ciimageInTrack(1));
        render.jobs().push_back(job);
    }
    morpher->processMorphCalculationJob(*jobs[0]);
    morpher->processMorphCalculationJob(*jobs[2]); // cell 2 is done before cell 1
    render.consumeFinishedJobs();
    QVERIFY(!render.cellImage(0).isNull());
    QVERIFY(render.cellImage(1).isNull());
    QVERIFY(render.cellImage(2).isNull());
    QCOMPARE(render.jobs().size(), 5u);

    morpher->processMorphCalculationJob(*jobs[1]);
    render.consumeFinishedJobs();
    QCOMPARE(render.filledCellCount(), 3);
    for (int i : {3, 4})
        morpher->processMorphCalculationJob(*jobs[static_cast<std::size_t>(i)]);
    render.consumeFinishedJobs();
    QCOMPARE(render.filledCellCount(), 5);
    QVERIFY(render.jobs().empty()); // the render is complete
    QCOMPARE(render.cellImage(4).size(), QSize(40, 30));
}

void PreviewDockTest::timeTolerance_data()
{
    QTest::addColumn<float>("offset");
    QTest::addColumn<bool>("fills");
    QTest::newRow("half the tolerance") << 0.0005f << true;
    QTest::newRow("twice the tolerance") << 0.002f << false;
}

void PreviewDockTest::timeTolerance()
{
    QFETCH(float, offset);
    test::WindowTestDocument doc;
    ManualStripRender render(*doc.document);
    render.setCellCount(2);
    const Morpher::Ptr morpher =
        Morpher::create(doc.document->ciimageInTrack(0), doc.document->ciimageInTrack(1), doc.document->morphLines());
    for (float t : {0.0f + offset, 1.0f}) {
        auto job = MorphCalculationJob::create(t, {20.0f, 15.0f}, 6.0f);
        job->setTrack0Image(doc.document->ciimageInTrack(0));
        job->setTrack1Image(doc.document->ciimageInTrack(1));
        morpher->processMorphCalculationJob(*job);
        render.jobs().push_back(job);
    }
    render.consumeFinishedJobs();
    QTEST(!render.cellImage(0).isNull(), "fills");
    QVERIFY(!render.cellImage(1).isNull());
}

void PreviewDockTest::drawsTheLinesAtEachCellsTime()
{
    // Black images, so that only the lines show; the line runs across the middle at
    // track 0 and across the top quarter at track 1.
    test::WindowTestDocument doc{QSize(), QSize()};
    QImage black(64, 48, QImage::Format_RGB32);
    black.fill(Qt::black);
    const QString path = doc.dir.filePath(QStringLiteral("black.png"));
    QVERIFY(black.save(path));
    doc.document->setImageFromURL(path, 0);
    doc.addLine(0.1f, 0.5f, 0.9f, 0.5f, 0.0f, 0.25f);
    doc.document->setLineColor(LineColor::make(1.0f, 0.0f, 0.0f, 1.0f));
    StripWindow strip(*doc.document);
    strip.window.show();
    strip.dock->showStrip();
    QVERIFY(QTest::qWaitForWindowExposed(&strip.window));
    QVERIFY(test::waitFor([&] { return allFilled(*strip.dock); }));
    const QImage picture = strip.dock->strip()->grab().toImage();
    const std::vector<QRect> cells = strip.dock->strip()->cellRects();
    // A 1-point line falls on two rows of pixels when it lies between them.
    auto isRed = [&](QPointF p) {
        for (int dy = -1; dy <= 1; ++dy) {
            const QColor c = picture.pixelColor(p.toPoint() + QPoint(0, dy));
            if (c.red() > 100 && c.green() < 60)
                return true;
        }
        return false;
    };
    for (int i : {0, 4}) {
        const QRectF cell(cells[static_cast<std::size_t>(i)]);
        const float y = i == 0 ? 0.5f : 0.75f;
        QVERIFY2(isRed(PreviewStripView::mapToCell({0.5f, y}, cell)), "line missing at its time");
        QVERIFY2(!isRed(PreviewStripView::mapToCell({0.5f, i == 0 ? 0.75f : 0.5f}, cell)), "line at the other time");
    }
}

void PreviewDockTest::closedStripComputesNothing()
{
    test::WindowTestDocument doc;
    StripWindow strip(*doc.document);
    QSignalSpy started(strip.dock, &PreviewDock::renderStarted);
    strip.window.show();
    strip.dock->showStrip();
    QVERIFY(test::waitFor([&] { return started.count() >= 1; }));
    QVERIFY(test::waitFor([&] { return allFilled(*strip.dock); }));

    strip.dock->toggle();
    QVERIFY(!strip.dock->isOpen());
    started.clear();
    doc.addLine(0.3f, 0.3f, 0.6f, 0.6f);
    test::advance(300);
    QCOMPARE(started.count(), 0);

    // Reopening renders anew; closing while it renders lets the render finish.
    strip.dock->toggle();
    QVERIFY(strip.dock->isOpen());
    QVERIFY(test::waitFor([&] { return started.count() >= 1; }));
    strip.dock->toggle();
    QVERIFY(test::waitFor([&] { return !strip.dock->scheduler().isPolling(); }));
    QCOMPARE(strip.dock->renderer().filledCellCount(), 5);
    QCOMPARE(started.count(), 1);
}

void PreviewDockTest::aStripAtTheSideStandsUpright()
{
    test::WindowTestDocument doc({80, 40}, {80, 40});
    StripWindow strip(*doc.document);
    strip.window.resize(700, 700);
    strip.window.show();
    strip.window.addDockWidget(Qt::RightDockWidgetArea, strip.dock);
    QVERIFY(test::waitFor([&] { return strip.dock->strip()->isVertical(); }));
    strip.dock->strip()->resize(200, 600);
    const std::vector<QRect> cells = strip.dock->strip()->cellRects();
    QCOMPARE(cells.size(), 5u);
    for (std::size_t i = 1; i < cells.size(); ++i) {
        QCOMPARE(cells[i].x(), cells[0].x());
        QCOMPARE(cells[i].top(), cells[i - 1].bottom() + 1 + PreviewStripView::kSpacing);
    }
    // The cells keep the first image's proportions, 2 : 1, and stay inside the strip.
    QVERIFY(std::abs(cells[0].width() - 2 * cells[0].height()) <= 2);
    QVERIFY(strip.dock->strip()->rect().contains(cells.front().united(cells.back())));
}

QTEST_MAIN(PreviewDockTest)
#include "preview_dock_test.moc"
