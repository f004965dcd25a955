// SPDX-License-Identifier: MIT
// The single-frame window and the render-window behaviour all windows share: frame sizes
// under the ratio modes, coalesced and polled renders, hidden windows, the toolbar, the
// title, saving and its alert.
#include "render_windows_support.h"

#include "render/frame_render_controller.h"
#include "render/windows/frame_view.h"
#include "render/windows/frame_window.h"
#include "render/windows/progress_pie.h"
#include "render/windows/render_scheduler.h"
#include "render/windows/render_toolbar.h"

#include <QDoubleSpinBox>
#include <QFile>
#include <QFileDialog>
#include <QImageReader>
#include <QMessageBox>
#include <QProcess>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>

using namespace plyra;

namespace {

bool renderToEnd(FrameWindow& window)
{
    return test::waitFor([&] { return window.renderer().bitmap() && !window.scheduler().isPolling()
                                   && !window.scheduler().isRecalcPending(); });
}

/// Resizes the window so that its image view gets the given size.
void resizeViewTo(FrameWindow& window, QSize view)
{
    window.resize(window.size() + (view - window.viewSize()));
    QCoreApplication::processEvents();
}

} // namespace

class FrameWindowTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { test::initRenderWindowTests(); }

    void frameSizeFollowsTheView_data();
    void frameSizeFollowsTheView();
    void rendersShowsAndEnablesSave();
    void changesCoalesceIntoOneRender();
    void hiddenWindowComputesNothing();
    void timeThresholdTitleAndSlider();
    void saveDialogAndFailedSave();
    void savedFramesMatchPlyraRender();
};

void FrameWindowTest::frameSizeFollowsTheView_data()
{
    QTest::addColumn<QSize>("firstImage");
    QTest::addColumn<QSize>("lastImage");
    QTest::addColumn<FrameRatioMode>("mode");
    QTest::addColumn<QSize>("frame");
    // The view is 400 × 300.
    QTest::newRow("first image wider than the view") << QSize(200, 100) << QSize(64, 64) << FrameRatioMode::AsFirstImage << QSize(400, 200);
    QTest::newRow("square first image") << QSize(90, 90) << QSize(64, 32) << FrameRatioMode::AsFirstImage << QSize(300, 300);
    QTest::newRow("as last image") << QSize(90, 90) << QSize(64, 32) << FrameRatioMode::AsLastImage << QSize(400, 200);
    QTest::newRow("as last image without one") << QSize(90, 90) << QSize() << FrameRatioMode::AsLastImage << QSize(400, 300);
    QTest::newRow("free") << QSize(200, 100) << QSize(64, 64) << FrameRatioMode::Free << QSize(400, 300);
}

void FrameWindowTest::frameSizeFollowsTheView()
{
    QFETCH(QSize, firstImage);
    QFETCH(QSize, lastImage);
    QFETCH(FrameRatioMode, mode);
    QFETCH(QSize, frame);
    test::WindowTestDocument doc(firstImage, lastImage);
    FrameWindow window(*doc.document);
    window.setUsesDocumentFrameSize(false);
    window.controller().settings().setFrameRatioMode(mode);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    resizeViewTo(window, {400, 300});
    QCOMPARE(window.viewSize(), QSize(400, 300));
    const FrameSize size = window.frameSize();
    QCOMPARE(QSize(static_cast<int>(size.width), static_cast<int>(size.height)), frame);
    QVERIFY(renderToEnd(window));
    QCOMPARE(window.renderer().bitmap()->width(), frame.width());
    QCOMPARE(window.renderer().bitmap()->height(), frame.height());
}

void FrameWindowTest::rendersShowsAndEnablesSave()
{
    test::WindowTestDocument doc;
    FrameWindow window(*doc.document);
    QCOMPARE(window.toolbar()->shownIdentifiers(),
        QStringList({QStringLiteral("progressIndicator"), QStringLiteral("save"), QStringLiteral("timeSlider"),
            QStringLiteral("timeField"), QStringLiteral("showInfo")}));
    QAction* save = window.toolbar()->itemWithIdentifier(QStringLiteral("save"));
    // What the window shows as each render starts, taken at that moment.
    struct AtStart {
        bool saveEnabled;
        bool indicatorEnabled;
        QImage shown;
    };
    QList<AtStart> starts;
    connect(&window, &RenderWindow::renderStarted, this, [&] {
        starts.append({save->isEnabled(), window.toolbar()->progressIndicator()->isEnabled(), window.imageView()->image()});
    });
    window.show();
    QVERIFY(renderToEnd(window));
    // While the frame is outstanding Save is off and the indicator runs.
    QCOMPARE(starts.size(), 1);
    QVERIFY(!starts[0].saveEnabled);
    QVERIFY(starts[0].indicatorEnabled);
    QVERIFY(starts[0].shown.isNull());
    QVERIFY(save->isEnabled());
    QVERIFY(!window.toolbar()->progressIndicator()->isEnabled());
    QCOMPARE(window.toolbar()->progressIndicator()->fraction(), 1.0f);
    const QImage shown = window.imageView()->image();
    QCOMPARE(shown.size(), QSize(window.renderer().bitmap()->width(), window.renderer().bitmap()->height()));

    // A new render keeps the old frame on screen until the new one is there.
    window.setTime(0.9f);
    QVERIFY(test::waitFor([&] { return starts.size() == 2; }));
    QCOMPARE(starts[1].shown, shown);
    QVERIFY(!starts[1].saveEnabled);
    QVERIFY(renderToEnd(window));
    QVERIFY(window.imageView()->image() != shown);

    // Every accessible control has a name.
    for (QWidget* widget : window.findChildren<QWidget*>())
        if (widget->isVisible() && (widget->focusPolicy() != Qt::NoFocus || qobject_cast<QProgressBar*>(widget)))
            QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
}

void FrameWindowTest::changesCoalesceIntoOneRender()
{
    test::WindowTestDocument doc;
    FrameWindow window(*doc.document);
    window.show();
    QVERIFY(renderToEnd(window));
    QSignalSpy started(&window, &RenderWindow::renderStarted);
    // Two changes 50 ms apart: one render, 100 ms after the second.
    window.setTime(0.3f);
    test::advance(50);
    window.setTime(0.31f);
    test::advance(RenderScheduler::kRecalcDelayMs - 1);
    QCOMPARE(started.count(), 0);
    test::advance(1);
    QCOMPARE(started.count(), 1);
    test::advance(300);
    QCOMPARE(started.count(), 1);
    QVERIFY(renderToEnd(window));
    QCOMPARE(window.renderer().time(), 0.31f);

    // A document edit asks for one render too; a setting left as it was for none.
    started.clear();
    doc.addLine(0.2f, 0.2f, 0.8f, 0.3f, 0.05f, 0.0f);
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QVERIFY(renderToEnd(window));
    started.clear();
    window.setFrameSize(window.frameSize());
    window.setTime(0.3105f);
    test::advance(300);
    QCOMPARE(started.count(), 0);
}

void FrameWindowTest::hiddenWindowComputesNothing()
{
    test::WindowTestDocument doc;
    FrameWindow window(*doc.document);
    QSignalSpy started(&window, &RenderWindow::renderStarted);
    window.delayedRecalc();
    test::advance(300);
    QCOMPARE(started.count(), 0);
    QVERIFY(!window.renderer().morpher());

    // Closed again, the window stops and no longer follows the document.
    window.show();
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    window.close();
    QVERIFY(!window.scheduler().isPolling());
    QVERIFY(window.renderer().morphJobs().empty());
    started.clear();
    doc.addLine(0.1f, 0.1f, 0.5f, 0.5f);
    test::advance(300);
    QCOMPARE(started.count(), 0);

    // Shown again it renders anew.
    window.show();
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QVERIFY(renderToEnd(window));
}

void FrameWindowTest::timeThresholdTitleAndSlider()
{
    test::WindowTestDocument doc;
    FrameWindow window(*doc.document);
    window.setDocumentDisplayName(QStringLiteral("Faces"));
    QSignalSpy times(&window, &FrameWindow::timeChanged);
    QCOMPARE(window.time(), 0.5f);
    QCOMPARE(window.windowTitle(), QStringLiteral("Faces rendered image 50%"));
    window.show();
    QVERIFY(renderToEnd(window));
    QSignalSpy started(&window, &RenderWindow::renderStarted);

    window.setTime(0.5005f); // half the threshold: nothing at all
    test::advance(250);
    QCOMPARE(started.count(), 0);
    QCOMPARE(times.count(), 0);
    QCOMPARE(window.time(), 0.5f);
    window.setTime(0.502f); // twice the threshold: a new frame
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QCOMPARE(window.windowTitle(), QStringLiteral("Faces rendered image 50.2%"));
    QCOMPARE(times.count(), 1);
    QCOMPARE(times.last().at(0).toFloat(), 0.502f);

    window.setTime(0.75f);
    QCOMPARE(window.windowTitle(), QStringLiteral("Faces rendered image 75%"));
    QCOMPARE(window.timeSlider()->value(), 7500);

    // The slider moved by the keyboard sets the time.
    window.timeSlider()->setFocus();
    QTest::keyClick(window.timeSlider(), Qt::Key_PageUp);
    QCOMPARE(window.time(), 0.85f);
    QCOMPARE(window.windowTitle(), QStringLiteral("Faces rendered image 85%"));
    window.setDocumentDisplayName(QStringLiteral("Renamed"));
    QCOMPARE(window.windowTitle(), QStringLiteral("Renamed rendered image 85%"));
    window.close();
}

void FrameWindowTest::saveDialogAndFailedSave()
{
    QCOMPARE(RenderSaveDialog::startPath(QStringLiteral("/data/faces.plyra"), QStringLiteral("jpg")),
        QStringLiteral("/data/faces.jpg"));
    const SaveFileTypes jpeg{QStringLiteral("jpg"), {QStringLiteral("png")}, {}};
    QCOMPARE(RenderSaveDialog::pathWithRequiredExtension(QStringLiteral("/a/b"), jpeg), QStringLiteral("/a/b.jpg"));
    QCOMPARE(RenderSaveDialog::pathWithRequiredExtension(QStringLiteral("/a/b.PNG"), jpeg), QStringLiteral("/a/b.PNG"));
    QCOMPARE(RenderSaveDialog::pathWithRequiredExtension(QStringLiteral("/a/b.mov"), jpeg), QStringLiteral("/a/b.mov.jpg"));

    test::WindowTestDocument doc;
    FrameWindow window(*doc.document);
    window.setDocumentFilePath(doc.dir.filePath(QStringLiteral("faces.plyra")));
    window.show();
    QVERIFY(renderToEnd(window));

    // The dialog starts beside the document; a bare name gets the extension.
    window.save();
    auto* dialog = window.findChild<QFileDialog*>(QStringLiteral("saveDialog"));
    QVERIFY(dialog);
    QCOMPARE(dialog->windowModality(), Qt::WindowModal);
    QCOMPARE(dialog->directory().absolutePath(), QDir(doc.dir.path()).absolutePath());
    dialog->selectFile(doc.dir.filePath(QStringLiteral("chosen")));
    static_cast<QDialog*>(dialog)->accept();
    QVERIFY(QFile::exists(doc.dir.filePath(QStringLiteral("chosen.jpg"))));
    QCOMPARE(QImageReader(doc.dir.filePath(QStringLiteral("chosen.jpg"))).format(), QByteArray("jpeg"));

    // A folder that does not exist: the alert names the path, nothing is written.
    const QString bad = doc.dir.filePath(QStringLiteral("missing/frame.jpg"));
    QVERIFY(!window.saveToPath(bad));
    auto* alert = window.findChild<QMessageBox*>(QStringLiteral("saveFailedAlert"));
    QVERIFY(alert);
    QCOMPARE(alert->icon(), QMessageBox::Critical);
    QCOMPARE(alert->text(), QStringLiteral("Could not save to %1").arg(bad));
    QCOMPARE(alert->windowTitle(), QStringLiteral("Saving failed"));
    QCOMPARE(alert->standardButtons(), QMessageBox::Ok);
    alert->accept();
    window.close();
}

void FrameWindowTest::savedFramesMatchPlyraRender()
{
    test::WindowTestDocument doc({96, 64}, {96, 64});
    doc.addLine(0.2f, 0.3f, 0.7f, 0.8f, 0.1f, -0.05f);
    doc.addLine(0.6f, 0.1f, 0.9f, 0.4f, -0.05f, 0.1f);
    const QString package = doc.savePackage();
    FrameWindow window(*doc.document);
    window.setLocale(QLocale(QLocale::German));
    window.show();
    resizeViewTo(window, {300, 150});
    QVERIFY(renderToEnd(window));
    // A time typed in the window's language, exactly; the slider and the title follow.
    QSignalSpy started(&window, &RenderWindow::renderStarted);
    window.timeField()->setFocus();
    window.timeField()->selectAll();
    QTest::keyClicks(window.timeField(), QStringLiteral("37,25"));
    QTest::keyClick(window.timeField(), Qt::Key_Return);
    QCOMPARE(window.time(), 0.3725f);
    QCOMPARE(window.timeSlider()->value(), 3725);
    QVERIFY(window.windowTitle().endsWith(QStringLiteral(" 37,25%")));
    test::advance(RenderScheduler::kRecalcDelayMs);
    QCOMPARE(started.count(), 1);
    QVERIFY(renderToEnd(window));
    const QString fromWindow = doc.dir.filePath(QStringLiteral("window.jpg"));
    const QString png = doc.dir.filePath(QStringLiteral("window.png"));
    const QString tiff = doc.dir.filePath(QStringLiteral("window.tif"));
    QVERIFY(window.saveToPath(fromWindow));
    QVERIFY(window.saveToPath(png));
    QVERIFY(window.saveToPath(tiff));

    const QString fromCli = doc.dir.filePath(QStringLiteral("cli.jpg"));
    QProcess cli;
    cli.start(QStringLiteral(PLYRA_RENDER_EXE),
        {package, QStringLiteral("-o"), fromCli, QStringLiteral("--time"), QStringLiteral("0.3725"), QStringLiteral("--quiet")});
    QVERIFY(cli.waitForFinished(60000));
    QCOMPARE(cli.exitCode(), 0);
    QFile a(fromWindow), b(fromCli);
    QVERIFY(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    QCOMPARE(a.readAll(), b.readAll());

    // PNG and TIFF hold the rendered pixels exactly, at the document's size whatever the
    // window's.
    const QImage rendered = window.imageView()->image().convertToFormat(QImage::Format_RGBA8888);
    for (const QString& lossless : {png, tiff}) {
        QImage saved(lossless);
        QCOMPARE(saved.size(), QSize(96, 64));
        QCOMPARE(saved.convertToFormat(QImage::Format_RGBA8888), rendered);
    }
    window.close();
}

QTEST_MAIN(FrameWindowTest)
#include "frame_window_test.moc"
