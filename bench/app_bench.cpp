// SPDX-License-Identifier: MIT
// Timing program for the desktop application: how long from opening a document to a
// window that shows both images, and how long each of the six steps of zooming the
// editors of a 24-megapixel document takes (resize, centre, draw).
//
//   app_bench DEMO.plyra      (run with QT_QPA_PLATFORM=offscreen or on a display)
#include "app/document_manager.h"
#include "app/document_prompts.h"
#include "app/editor_zoom.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app/update_alerts.h"
#include "editor/morph_editor.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QScrollArea>
#include <QSplitter>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace plyra;

namespace {

class NoPrompts : public DocumentPrompts {
public:
    SaveAnswer askToSaveChanges(QWidget*, const QString&) override { return SaveAnswer::DontSave; }
    bool askToRevert(QWidget*, const QString&) override { return false; }
    QString askOpenPath(QWidget*, const QString&) override { return {}; }
    QString askSavePath(QWidget*, const QString&) override { return {}; }
    void showError(QWidget*, const QString& message, const QString& reason) override
    {
        std::fprintf(stderr, "%s %s\n", qPrintable(message), qPrintable(reason));
    }
};

class NoAlerts : public UpdateAlerts {
public:
    bool askToOpenHomePage(const QString&, const QString&) override { return false; }
    void showUpToDate() override { }
    void showNoUpdateAddress() override { }
    void openHomePage(const QUrl&) override { }
};

/// Counts the paints of a widget.
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

// Opens the document and waits until both editors have drawn with their images.
double openToShownMs(PlyraApplication& app, const QString& path)
{
    QElapsedTimer timer;
    timer.start();
    MorphEditorWindowController* window = app.documents().openDocument(path);
    PaintCounter first, last;
    window->firstEditor()->installEventFilter(&first);
    window->lastEditor()->installEventFilter(&last);
    // The editors are fitted once the window is laid out; their paints after that show
    // the images at their final size.
    while (first.paints < 1 || last.paints < 1 || window->firstEditor()->width() < 50)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    const double ms = timer.nsecsElapsed() / 1e6;
    app.documents().close(window);
    QCoreApplication::processEvents();
    return ms;
}

QString writePhoto(const QTemporaryDir& dir, const char* name, int width, int height, int seed)
{
    QImage photo(width, height, QImage::Format_RGB32);
    photo.fill(QColor(90 + seed * 40, 120, 160));
    QPainter painter(&photo);
    for (int i = 0; i < 400; ++i) {
        painter.setPen(QPen(QColor::fromHsv((i * 37 + seed * 90) % 360, 160, 200), 9));
        painter.drawLine((i * 977) % width, (i * 613) % height, (i * 331) % width, (i * 829) % height);
    }
    painter.end();
    const QString path = dir.filePath(QLatin1String(name));
    photo.save(path, "JPG", 90);
    return path;
}

void zoomSteps(PlyraApplication& app, const QTemporaryDir& dir)
{
    const QString a = writePhoto(dir, "a.jpg", 6000, 4000, 0);
    const QString b = writePhoto(dir, "b.jpg", 6000, 4000, 1);
    MorphEditorWindowController* window = app.documents().newDocumentWithImages(a, b);
    window->resize(1180, 720);
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    std::vector<double> steps;
    std::vector<double> paints;
    QElapsedTimer step;
    auto scrollArea = [](MorphEditor* editor) { return qobject_cast<QScrollArea*>(editor->parentWidget()->parentWidget()); };
    EditorZoom zoom({EditorZoom::Editor{window->firstEditor(), scrollArea(window->firstEditor())},
                        EditorZoom::Editor{window->lastEditor(), scrollArea(window->lastEditor())}},
        [window] { window->centerSelection(); },
        [&] {
            QElapsedTimer paint;
            paint.start();
            window->editorSplitView()->repaint();
            paints.push_back(paint.nsecsElapsed() / 1e6);
            steps.push_back(step.nsecsElapsed() / 1e6);
            step.restart();
        });
    for (const char* direction : {"in", "in", "out", "out"}) {
        steps.clear();
        paints.clear();
        step.start();
        const bool in = direction[1] == 'n';
        if (!(in ? zoom.zoomIn() : zoom.zoomOut()))
            continue;
        std::printf("zoom %-3s to %5dx%-5d steps (ms):", direction, window->firstEditor()->width(), window->firstEditor()->height());
        for (double ms : steps)
            std::printf(" %5.1f", ms);
        std::printf("   longest %.1f   (of which drawing:", *std::max_element(steps.begin(), steps.end()));
        for (double ms : paints)
            std::printf(" %.1f", ms);
        std::printf(")\n");
    }
    app.documents().close(window);
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: app_bench DEMO.plyra\n");
        return 2;
    }
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    PlyraApplication::configure(application);
    PlyraApplication app(std::make_unique<NoPrompts>(), std::make_unique<NoAlerts>());

    std::printf("open %s to both images shown (ms):", argv[1]);
    for (int run = 0; run < 6; ++run)
        std::printf(" %.1f", openToShownMs(app, QString::fromLocal8Bit(argv[1])));
    std::printf("   (the first is cold)\n");
    zoomSteps(app, dir);
    return 0;
}
