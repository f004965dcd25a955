// SPDX-License-Identifier: MIT
// Opens a document in the render windows for a look by eye: the frame window, the movie
// window and a main window with the preview strip docked at its bottom.
//
//   render_windows_tour [DOC.plyra] [--sheet frame|movie] [--grab DIR] [--frames N]
#include "model/morph_document.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/qt/user_defaults.h"
#include "render/windows/frame_window.h"
#include "render/windows/movie_window.h"
#include "render/windows/preview_dock.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

using namespace plyra;

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    bindRunLoopToQtEventLoop();
    QTemporaryDir dir;
    UserDefaults::standard().useFile(dir.filePath(QStringLiteral("defaults.ini")));
    QString path = QStringLiteral(PLYRA_SOURCE_DIR "/resources/demo/demo.plyra");
    QString sheet;
    int movieFrames = 20;
    const QStringList args = app.arguments();
    for (int i = 1; i < args.size(); ++i) {
        if (args[i] == QStringLiteral("--sheet") && i + 1 < args.size())
            sheet = args[++i];
        else if (args[i] == QStringLiteral("--grab"))
            ++i;
        else if (args[i] == QStringLiteral("--frames") && i + 1 < args.size())
            movieFrames = args[++i].toInt();
        else
            path = args[i];
    }
    MorphDocument document;
    QString error;
    if (!document.readFromFile(path, &error)) {
        std::fprintf(stderr, "cannot open %s: %s\n", qPrintable(path), qPrintable(error));
        return 1;
    }
    const QString name = QFileInfo(path).completeBaseName();

    QMainWindow main;
    main.setWindowTitle(name);
    auto* centre = new QLabel(QStringLiteral("(document window)"), &main);
    centre->setAlignment(Qt::AlignCenter);
    main.setCentralWidget(centre);
    auto* dock = new PreviewDock(document, &main);
    main.addDockWidget(Qt::BottomDockWidgetArea, dock);
    main.resize(900, 330);
    main.move(10, 560);
    main.show();
    dock->showStrip();

    FrameWindow frame(document);
    frame.setDocumentDisplayName(name);
    frame.setDocumentFilePath(path);
    frame.move(10, 10);
    frame.show();

    MovieWindow movie(document);
    movie.setNumberOfFrames(static_cast<std::uint32_t>(movieFrames));
    movie.setDocumentDisplayName(name);
    movie.setDocumentFilePath(path);
    movie.move(640, 10);
    movie.show();

    // --grab DIR: pictures of the windows as Qt draws them, taken after four seconds.
    if (const int at = args.indexOf(QStringLiteral("--grab")); at > 0 && at + 1 < args.size()) {
        const QString out = args[at + 1];
        QTimer::singleShot(4000, &app, [&, out] {
            frame.grab().save(out + QStringLiteral("/frame.png"));
            movie.grab().save(out + QStringLiteral("/movie.png"));
            main.grab().save(out + QStringLiteral("/preview.png"));
        });
    }
    if (sheet == QStringLiteral("frame"))
        QTimer::singleShot(1500, &frame, &FrameWindow::showSettings);
    else if (sheet == QStringLiteral("movie"))
        QTimer::singleShot(1500, &movie, &MovieWindow::showSettings);
    return app.exec();
}
