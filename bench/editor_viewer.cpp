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

namespace {

// Reads the document and images named on the command line; returns the zoom asked for.
double readArguments(const QStringList& args, MorphDocument& document)
{
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
    return zoom;
}

MorphEditor* addEditor(QMainWindow& window, QHBoxLayout* layout, MorphDocument& document, unsigned track)
{
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
    return editor;
}

void addMenu(QMainWindow& window, MorphDocument& document, MorphEditor* const* editors)
{
    QMenu* edit = window.menuBar()->addMenu(QStringLiteral("Edit"));
    // Commands end a gesture in progress first, as the document window does.
    auto finish = [editors] {
        for (int i = 0; i < 2; ++i)
            editors[i]->finishGesture();
    };
    edit->addAction(QStringLiteral("Undo"), QKeySequence::Undo, [=, &document] { finish(); document.undoManager().undo(); });
    edit->addAction(QStringLiteral("Redo"), QKeySequence::Redo, [=, &document] { finish(); document.undoManager().redo(); });
    edit->addAction(QStringLiteral("Select All"), QKeySequence::SelectAll, [=] { finish(); editors[0]->selectAll(); });
    edit->addAction(QStringLiteral("Select Attached"), QKeySequence(Qt::CTRL | Qt::Key_T), [=] { finish(); editors[0]->selectAttachedLines(); });
    edit->addAction(QStringLiteral("Zoom In"), QKeySequence::ZoomIn, [=] {
        for (int i = 0; i < 2; ++i)
            editors[i]->resize(editors[i]->size() * 2);
    });
    edit->addAction(QStringLiteral("Fit"), QKeySequence(Qt::CTRL | Qt::Key_0), [=] {
        for (int i = 0; i < 2; ++i)
            editors[i]->sizeToFit();
    });
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    bindRunLoopToQtEventLoop();
    MorphDocument document;
    const double zoom = readArguments(app.arguments().mid(1), document);
    QMainWindow window;
    auto* central = new QWidget;
    auto* layout = new QHBoxLayout(central);
    MorphEditor* editors[2] = {addEditor(window, layout, document, 0), addEditor(window, layout, document, 1)};
    window.setCentralWidget(central);
    addMenu(window, document, editors);
    window.resize(1300, 760);
    window.show();
    QTimer::singleShot(0, [&] {
        for (MorphEditor* editor : editors) {
            editor->sizeToFit();
            if (zoom > 0.0)
                editor->resize(editor->size() * zoom);
        }
    });
    const int status = app.exec();
    for (MorphEditor* editor : editors)
        editor->setDataSource(nullptr);
    return status;
}
