// SPDX-License-Identifier: MIT
// A manual tool: a window with the two line editors on a document, for looking at and
// trying the editors by hand (and for screenshots).
//   editor_viewer [DOC.plyra] [--first IMAGE] [--last IMAGE] [--zoom FACTOR]
#include "editor/morph_editor.h"
#include "model/morph_document.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/undo_manager.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenuBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>

#include <cstdio>

using namespace plyra;

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    bindRunLoopToQtEventLoop();
    MorphDocument document;
    QStringList args = app.arguments().mid(1);
    double zoom = 0.0;
    QString error;
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (arg == QLatin1String("--first") && i + 1 < args.size())
            document.setImageFromFile(args[++i], 0, &error);
        else if (arg == QLatin1String("--last") && i + 1 < args.size())
            document.setImageFromFile(args[++i], 1, &error);
        else if (arg == QLatin1String("--zoom") && i + 1 < args.size())
            zoom = args[++i].toDouble();
        else if (!document.readFromFile(arg, &error))
            std::fprintf(stderr, "%s\n", qPrintable(error));
    }
    document.undoManager().removeAllActions();

    QMainWindow window;
    auto* central = new QWidget;
    auto* layout = new QHBoxLayout(central);
    MorphEditor* editors[2];
    for (unsigned track : {0u, 1u}) {
        auto* area = new QScrollArea;
        area->setAlignment(Qt::AlignCenter);
        auto* editor = new MorphEditor;
        editor->setAccessibleName(track == 0 ? QStringLiteral("First image") : QStringLiteral("Last image"));
        editor->setTrack(track);
        editor->setDataSource(&document);
        area->setWidget(editor);
        layout->addWidget(area);
        QObject::connect(editor, &MorphEditor::statusMessageRequested, window.statusBar(),
            [&window](const QString& text) { window.statusBar()->showMessage(text, 5000); });
        editors[track] = editor;
    }
    window.setCentralWidget(central);
    QMenu* edit = window.menuBar()->addMenu(QStringLiteral("Edit"));
    auto finish = [&editors] {
        for (MorphEditor* editor : editors)
            editor->finishGesture();
    };
    edit->addAction(QStringLiteral("Undo"), QKeySequence::Undo, [&] { finish(); document.undoManager().undo(); });
    edit->addAction(QStringLiteral("Redo"), QKeySequence::Redo, [&] { finish(); document.undoManager().redo(); });
    edit->addAction(QStringLiteral("Select All"), QKeySequence::SelectAll, [&] { finish(); editors[0]->selectAll(); });
    edit->addAction(QStringLiteral("Select Attached"), QKeySequence(Qt::CTRL | Qt::Key_T), [&] { finish(); editors[0]->selectAttachedLines(); });
    edit->addAction(QStringLiteral("Zoom In"), QKeySequence::ZoomIn, [&] {
        for (MorphEditor* editor : editors)
            editor->resize(editor->size() * 2);
    });
    edit->addAction(QStringLiteral("Fit"), QKeySequence(Qt::CTRL | Qt::Key_0), [&] {
        for (MorphEditor* editor : editors)
            editor->sizeToFit();
    });
    window.resize(1300, 760);
    window.show();
    QTimer::singleShot(0, [&] {
        for (MorphEditor* editor : editors) {
            editor->sizeToFit();
            if (zoom > 0.0)
                editor->resize(editor->size() * zoom);
        }
    });
    return app.exec();
}
