// SPDX-License-Identifier: MIT
// A document window and its frame window on a screen of two device pixels per unit
// (QT_SCALE_FACTOR=2), and moved to a screen of three: preview cells and frames are made
// in device pixels and drawn pixel for pixel, the strip leaves the editors most of the
// window, and the zoom factor counts device pixels.
#include "app/document_manager.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app/window_actions.h"
#include "app_test_support.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "render/frame_render_controller.h"
#include "render/windows/frame_view.h"
#include "render/windows/frame_window.h"
#include "render/windows/preview_dock.h"
#include "render/windows/preview_strip_render.h"
#include "render/windows/preview_strip_view.h"
#include "render/windows/render_scheduler.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QWindow>

using namespace plyra;
using namespace plyra::test;

namespace {

QSize pixels(FrameSize size)
{
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

} // namespace

class HiDpiTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    ScriptedPrompts::Script m_script;
    std::unique_ptr<PlyraApplication> m_app;
    MorphEditorWindowController* m_window = nullptr;

    void endPass()
    {
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
    }

    bool previewIsDone()
    {
        PreviewDock* dock = m_window->previewDock();
        return QTest::qWaitFor([&] { return !dock->scheduler().isRecalcPending() && !dock->scheduler().isPolling(); }, 20000);
    }

    QString zoomText() const { return m_window->findChild<QLabel*>(QStringLiteral("zoomFactor"))->text(); }

private slots:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::primaryScreen()->devicePixelRatio(), 2.0);
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        PlyraApplication::configure(*qApp);
        m_app = std::make_unique<PlyraApplication>(std::make_unique<ScriptedPrompts>(m_script), std::make_unique<SilentUpdateAlerts>());
        const QString image = writeTestImage(m_dir, QStringLiteral("image.png"), 300, 200);
        m_window = m_app->documents().newDocumentWithImages(image, image);
        QVERIFY(m_window);
        MorphLine::Ptr line = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            line->setStartPoint({0.2f, 0.2f}, track, nullptr);
            line->setEndPoint({0.6f, 0.7f}, track, nullptr);
        }
        m_window->document().addMorphLine(line);
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        endPass();
    }

    void cleanupTestCase()
    {
        m_script.saveAnswers.push_back(DocumentPrompts::SaveAnswer::DontSave);
        m_app.reset();
        endPass();
    }

    void previewCellsAreMadeInDevicePixels()
    {
        QVERIFY(previewIsDone());
        PreviewDock* dock = m_window->previewDock();
        QCOMPARE(pixels(dock->renderer().cellSize()), dock->strip()->cellSize() * 2);
    }

    void theStripTakesAtMostAThirdOfTheWindow()
    {
        PreviewDock* dock = m_window->previewDock();
        QVERIFY(dock->isOpen());
        QVERIFY2(dock->height() <= m_window->height() / 3, qPrintable(QStringLiteral("%1 of %2").arg(dock->height()).arg(m_window->height())));
        // Closed, the window made smaller, and opened again later.
        QAction* preview = m_window->actions().action(Command::TogglePreview);
        preview->trigger();
        QVERIFY(!dock->isOpen());
        m_window->resize(m_window->width(), m_window->height() * 3 / 4);
        endPass();
        preview->trigger();
        endPass();
        QVERIFY(dock->isOpen());
        QTRY_VERIFY2(dock->height() <= m_window->height() / 3, qPrintable(QStringLiteral("%1 of %2").arg(dock->height()).arg(m_window->height())));
    }

    void aFrameMadeToTheViewIsDrawnPixelForPixel()
    {
        m_window->showFrameWindow();
        FrameWindow* frames = m_window->frameWindow();
        QVERIFY(QTest::qWaitForWindowExposed(frames));
        // Saving is at the document's size by default; this frame follows the view.
        frames->setUsesDocumentFrameSize(false);
        frames->controller().settings().setSizeToView(true);
        frames->controller().settings().setFrameRatioMode(FrameRatioMode::Free);
        frames->recalc();
        QVERIFY(QTest::qWaitFor([&] { return frames->renderer().bitmap() && !frames->scheduler().isPolling()
                                          && !frames->scheduler().isRecalcPending(); }, 20000));
        const QSize view = frames->viewSize();
        QCOMPARE(pixels(frames->frameSize()), view * 2);
        QCOMPARE(frames->imageView()->image().size(), view * 2);
        QCOMPARE(frames->imageView()->imageRect(), QRectF(frames->imageView()->contentsRect()));
    }

    void aScreenOfAnotherScaleIsFollowed()
    {
        const QList<QScreen*> screens = QGuiApplication::screens();
        QCOMPARE(screens.size(), 2);
        QVERIFY(previewIsDone());
        const QString zoomBefore = zoomText();
        m_window->windowHandle()->setScreen(screens[1]);
        endPass();
        QCOMPARE(m_window->devicePixelRatioF(), 3.0);
        QVERIFY(previewIsDone());
        PreviewDock* dock = m_window->previewDock();
        QCOMPARE(pixels(dock->renderer().cellSize()), dock->strip()->cellSize() * 3);
        QVERIFY(zoomText() != zoomBefore);
        // The frame window makes its frames anew in the new screen's device pixels.
        FrameWindow* frames = m_window->frameWindow();
        frames->windowHandle()->setScreen(screens[1]);
        endPass();
        QVERIFY(QTest::qWaitFor([&] { return !frames->scheduler().isPolling() && !frames->scheduler().isRecalcPending(); }, 20000));
        QCOMPARE(pixels(frames->frameSize()), frames->viewSize() * 3);
    }
};

int main(int argc, char** argv)
{
    // Two screens: two device pixels per unit, and (at one and a half times the dots per
    // inch) three.
    QTemporaryDir config;
    const QString screens = config.filePath(QStringLiteral("screens.json"));
    QFile file(screens);
    if (file.open(QIODevice::WriteOnly))
        file.write(R"({"screens": [{"name": "one", "x": 0, "y": 0, "width": 1600, "height": 1000, "logicalDpi": 96},
                                   {"name": "two", "x": 1600, "y": 0, "width": 1600, "height": 1000, "logicalDpi": 144}]})");
    file.close();
    qputenv("QT_QPA_PLATFORM", QStringLiteral("offscreen:configfile=%1").arg(screens).toLocal8Bit());
    qputenv("QT_SCALE_FACTOR", "2");
    QApplication app(argc, argv);
    HiDpiTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "hidpi_test.moc"
