// SPDX-License-Identifier: MIT
#include "app/document_manager.h"
#include "app/document_toolbar.h"
#include "app/face_finding.h"
#include "app/image_chooser.h"
#include "app/image_problem_bar.h"
#include "app/line_color_well.h"
#include "app/morph_editor_window_controller.h"
#include "app/plyra_application.h"
#include "app/window_actions.h"
#include "app_test_support.h"
#include "editor/morph_editor.h"
#include "inspector/inspector_controller.h"
#include "inspector/inspector_panel.h"
#include "model/morph_document.h"
#include "platform/qt/user_defaults.h"
#include "platform/run_loop.h"
#include "render/windows/frame_window.h"
#include "render/windows/preview_dock.h"
#include "render/windows/preview_strip_view.h"
#include "render/windows/render_scheduler.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QMenu>
#include <QStatusBar>
#include <QMenuBar>
#include <QScrollArea>
#include <QTest>
#include <QToolBar>

using namespace plyra;
using namespace plyra::test;

// Counts the paint events of some widgets.
struct PaintCounter : QObject {
    int count = 0;
    explicit PaintCounter(std::initializer_list<QWidget*> widgets)
    {
        for (QWidget* widget : widgets)
            widget->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

class MorphEditorWindowControllerTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    ScriptedPrompts::Script m_script;
    std::unique_ptr<PlyraApplication> m_app;
    MorphEditorWindowController* m_window = nullptr;
    QString m_image;

    MorphDocument& document() { return m_window->document(); }

    static void endPass()
    {
        QCoreApplication::processEvents();
        RunLoop::main().runUntilIdle();
    }

    bool enabled(Command command) const
    {
        m_window->actions().refresh();
        return m_window->actions().action(command)->isEnabled();
    }

    bool toolbarEnabled(const char* identifier) const
    {
        m_window->actions().refresh();
        return m_window->toolbar().item(QLatin1String(identifier))->action->isEnabled();
    }

    MorphLine::Ptr addLine(Point start, Point end)
    {
        MorphLine::Ptr line = MorphLine::create();
        for (unsigned track : {0u, 1u}) {
            line->setStartPoint(start, track, nullptr);
            line->setEndPoint(end, track, nullptr);
        }
        document().addMorphLine(line);
        return line;
    }

    // A window whose Add Face Lines finds a face of points spread over each image, the
    // search running when the test runs the jobs.
    MorphEditorWindowController* windowFindingFaces(bool available, std::vector<std::function<void()>>& jobs)
    {
        FaceFinding finding;
        finding.isAvailable = available;
        finding.makeFinder = [] {
            return [](const Image&, const FaceLinesCommand::Stop&) {
                FaceLandmarks face;
                for (std::size_t i = 0; i < kFaceLandmarkCount; ++i)
                    face.points.push_back({0.1f + 0.8f * static_cast<float>(i % 22) / 22.0f, 0.1f + 0.8f * static_cast<float>(i / 22) / 22.0f});
                return std::optional(face);
            };
        };
        finding.runner = [&jobs](std::function<void()> job) { jobs.push_back(std::move(job)); };
        m_app->setFaceFinding(std::move(finding));
        MorphEditorWindowController* window = m_app->documents().newDocument();
        QString reason;
        for (unsigned track : {0u, 1u})
            window->document().setImageFromFile(m_image, track, &reason);
        endPass();
        return window;
    }

private slots:
    void initTestCase()
    {
        UserDefaults::standard().useFile(m_dir.filePath(QStringLiteral("defaults.ini")));
        PlyraApplication::configure(*qApp);
        m_image = writeTestImage(m_dir, QStringLiteral("image.png"), 300, 200);
    }

    void init()
    {
        m_script = {};
        m_app = std::make_unique<PlyraApplication>(std::make_unique<ScriptedPrompts>(m_script), std::make_unique<SilentUpdateAlerts>());
        m_window = m_app->documents().newDocument();
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
    }

    void cleanup()
    {
        m_script.saveAnswers.push_back(DocumentPrompts::SaveAnswer::DontSave);
        m_app.reset();
        endPass();
    }

    void toolbarItemsFollowImagesAndLines()
    {
        const char* render[] = {"showMorphFrameWindow", "showMorphMovieWindow"};
        const char* view[] = {"zoomIn", "zoomOut", "center"};
        for (const char* id : render)
            QVERIFY(!toolbarEnabled(id));
        for (const char* id : view)
            QVERIFY(!toolbarEnabled(id));
        QVERIFY(toolbarEnabled("togglePreviewDrawer"));
        QVERIFY(toolbarEnabled("inspector"));

        QString reason;
        QVERIFY(document().setImageFromFile(m_image, 1, &reason)); // the last image alone is enough
        for (const char* id : render)
            QVERIFY(!toolbarEnabled(id));
        for (const char* id : view)
            QVERIFY(toolbarEnabled(id));
        addLine({0.1f, 0.1f}, {0.4f, 0.4f});
        for (const char* id : render)
            QVERIFY(toolbarEnabled(id));
        QVERIFY(enabled(Command::RenderImage) && enabled(Command::RenderMovie));
    }

    void aNewImageIsFittedAndTheEmptyEditorFollows()
    {
        endPass(); // the window fits its editors once it is laid out
        QString reason;
        QVERIFY(document().setImageFromFile(m_image, 0, &reason)); // 300 x 200
        endPass();
        const QSize first = m_window->firstEditor()->size();
        QVERIFY(std::abs(first.width() * 2 - first.height() * 3) <= 3);
        const QSize content = MorphEditor::contentSizeOf(*qobject_cast<QScrollArea*>(m_window->firstEditor()->parentWidget()->parentWidget())).toSize();
        QVERIFY(first.width() == content.width() || first.height() == content.height());
        QCOMPARE(m_window->lastEditor()->size(), first);
    }

    void toolbarItemsAreTheWindowsActions()
    {
        QCOMPARE(m_window->toolbar().shownIdentifiers(), DocumentToolbar::defaultItems());
        const struct {
            const char* identifier;
            Command command;
            QString label, paletteLabel;
        } items[] = {
            {"togglePreviewDrawer", Command::TogglePreview, "Preview", "Preview"},
            {"showMorphFrameWindow", Command::RenderImage, "Render image", "Render morph image"},
            {"showMorphMovieWindow", Command::RenderMovie, "Render movie", "Render morph movie"},
            {"zoomIn", Command::ZoomIn, "Zoom in", "Zoom in editor"},
            {"zoomOut", Command::ZoomOut, "Zoom out", "Zoom out editor"},
            {"center", Command::CenterSelection, "Center", "Center selection"},
            {"inspector", Command::ShowInspector, "Inspector", "Inspector"},
        };
        for (const auto& expected : items) {
            const auto* item = m_window->toolbar().item(QLatin1String(expected.identifier));
            QCOMPARE(item->action, m_window->actions().action(expected.command));
            QCOMPARE(item->action->iconText(), expected.label);
            QCOMPARE(item->paletteLabel, expected.paletteLabel);
        }
        QCOMPARE(m_window->toolbar().item(QStringLiteral("lineColor"))->paletteLabel, QStringLiteral("Background colour"));
        QVERIFY(!m_window->toolbar().item(QStringLiteral("noSuchItem")));

        // Preview is one checkable action in the menu and the toolbar.
        QAction* preview = m_window->actions().action(Command::TogglePreview);
        auto* viewMenu = m_window->menuBar()->findChild<QMenu*>(QStringLiteral("viewMenu"));
        QVERIFY(viewMenu->actions().contains(preview) && m_window->toolbar().actions().contains(preview));
        QVERIFY(preview->isCheckable() && preview->isChecked());
        preview->trigger();
        QVERIFY(!m_window->previewDock()->isOpen() && !preview->isChecked());

        // The user's arrangement is kept for every document window.
        m_window->toolbar().setShownIdentifiers({QStringLiteral("zoomIn"), QStringLiteral("zoomOut"), QStringLiteral("bogus")});
        QCOMPARE(m_window->toolbar().shownIdentifiers(), (QStringList{"zoomIn", "zoomOut"}));
        MorphEditorWindowController* other = m_app->documents().newDocument();
        QCOMPARE(other->toolbar().shownIdentifiers(), (QStringList{"zoomIn", "zoomOut"}));
        other->toolbar().setShownIdentifiers(DocumentToolbar::defaultItems());
    }

    void theInspectorPanelUsesTheWindowsUndo()
    {
        InspectorController* inspector = InspectorController::sharedInspectorController();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        const QList<QAction*> panelActions = inspector->panel()->actions();
        QVERIFY(panelActions.contains(m_window->actions().action(Command::Undo)));
        QVERIFY(panelActions.contains(m_window->actions().action(Command::Redo)));
        QCOMPARE(panelActions.size(), 2);
    }

    void documentsDoNotDisturbEachOther()
    {
        // Two documents, each with an image, a line, its preview strip and its frame window.
        MorphEditorWindowController* other = m_app->documents().newDocument();
        QString reason;
        for (MorphEditorWindowController* window : {m_window, other}) {
            QVERIFY(window->document().setImageFromFile(m_image, 0, &reason));
            MorphLine::Ptr line = MorphLine::create();
            for (unsigned track : {0u, 1u}) {
                line->setStartPoint({0.2f, 0.2f}, track, nullptr);
                line->setEndPoint({0.6f, 0.6f}, track, nullptr);
            }
            window->document().addMorphLine(line);
            window->showFrameWindow();
            QCOMPARE(window->frameWindow()->documentDisplayName(), window->displayName());
        }
        endPass();
        std::vector<RenderScheduler*> schedulers;
        for (MorphEditorWindowController* window : {m_window, other})
            for (RenderScheduler* scheduler : {&window->previewDock()->scheduler(), &window->frameWindow()->scheduler()}) {
                scheduler->cancelDelayedRecalc();
                schedulers.push_back(scheduler);
            }
        PaintCounter paints({other->firstEditor(), other->lastEditor(), other->previewDock()->strip()});

        // A drag of the line's end in the last image of the first document.
        MorphEditor* editor = m_window->lastEditor();
        auto at = [editor](float x, float y) { return QPoint(qRound(x * editor->width()), qRound((1.0f - y) * editor->height())); };
        QTest::mousePress(editor, Qt::LeftButton, {}, at(0.6f, 0.6f));
        for (float x : {0.62f, 0.66f, 0.7f}) {
            QMouseEvent move(QEvent::MouseMove, at(x, 0.5f), editor->mapToGlobal(at(x, 0.5f)), Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(editor, &move);
            endPass();
        }
        QTest::mouseRelease(editor, Qt::LeftButton, {}, at(0.7f, 0.5f));
        endPass();

        QVERIFY(m_window->document().morphLines().front()->endPoint(1).x > 0.65f);
        QVERIFY(schedulers[0]->isRecalcPending() && schedulers[1]->isRecalcPending());
        QVERIFY(!schedulers[2]->isRecalcPending() && !schedulers[3]->isRecalcPending());
        QCOMPARE(paints.count, 0);
    }

    void selectionCommandsAreValidated()
    {
        QVERIFY(!enabled(Command::SelectAll)); // no lines
        QVERIFY(!enabled(Command::Delete));
        QVERIFY(!enabled(Command::SelectAttached));
        const MorphLine::Ptr a = addLine({0.1f, 0.1f}, {0.3f, 0.3f});
        const MorphLine::Ptr b = addLine({0.3f, 0.3f}, {0.5f, 0.2f}); // joined to a's end
        const MorphLine::Ptr c = addLine({0.7f, 0.7f}, {0.9f, 0.9f});
        QCOMPARE(a->attachedLineAtEnd(), b);
        QVERIFY(enabled(Command::SelectAll));
        QVERIFY(!enabled(Command::SelectAttached)); // empty selection
        document().insertObjectInSelectedLinesAtIndex(a, 0);
        QVERIFY(enabled(Command::SelectAttached));
        QVERIFY(enabled(Command::Delete));
        document().insertObjectInSelectedLinesAtIndex(b, 1);
        QVERIFY(!enabled(Command::SelectAttached)); // every neighbour is selected
        m_window->actions().action(Command::SelectAll)->trigger();
        QCOMPARE(document().selectedLines().size(), 3u);
        QCOMPARE(document().selectedLines().back(), c);
        QVERIFY(!enabled(Command::SelectAll));
        m_window->actions().action(Command::Delete)->trigger();
        QVERIFY(document().morphLines().empty());
    }

    void zoomKeepsTheAspectAndStopsAtFit()
    {
        m_window->resize(640, 480);
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        QString reason;
        QVERIFY(document().setImageFromFile(m_image, 0, &reason)); // 300 x 200
        QVERIFY(document().setImageFromFile(writeTestImage(m_dir, QStringLiteral("tall.png"), 120, 240), 1, &reason));
        endPass();
        const std::array<MorphEditor*, 2> editors{m_window->firstEditor(), m_window->lastEditor()};
        const std::array<QSize, 2> images{QSize(300, 200), QSize(120, 240)};
        auto sizes = [&] { return std::array<QSize, 2>{editors[0]->size(), editors[1]->size()}; };
        auto checkAspect = [&](const char* when) {
            for (std::size_t i = 0; i < 2; ++i) {
                const QSize s = editors[i]->size();
                // Both sides come from one scale: off by rounding only.
                const double error = std::abs(double(s.width()) * images[i].height() - double(s.height()) * images[i].width());
                QVERIFY2(error <= 0.5 * (images[i].width() + images[i].height()), when);
            }
        };
        auto key = [&](Qt::Key k, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
            QTest::keyClick(editors[0], k, modifiers);
            endPass();
        };
        const std::array<QSize, 2> fit = sizes();
        checkAspect("at fit");
        QVERIFY(m_window->findChild<QLabel*>(QStringLiteral("zoomFactor"))->text().startsWith(QStringLiteral("Zoom ")));
        // In twice, out three times: back at fit, never beyond, the aspect kept throughout.
        for (Qt::Key k : {Qt::Key_Plus, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Minus, Qt::Key_Minus}) {
            key(k);
            checkAspect(k == Qt::Key_Plus ? "zoomed in" : "zoomed out");
        }
        QCOMPARE(sizes(), fit);
        key(Qt::Key_1);
        QCOMPARE(sizes(), (std::array<QSize, 2>{images[0], images[1]}));
        QCOMPARE(m_window->findChild<QLabel*>(QStringLiteral("zoomFactor"))->text(), QStringLiteral("Zoom 100 %"));
        key(Qt::Key_0);
        QCOMPARE(sizes(), fit);
        // At fit the editors follow a growing window; zoomed in, they keep their size.
        m_window->resize(780, 580);
        QTRY_VERIFY(editors[0]->width() > fit[0].width());
        checkAspect("after growing");
        key(Qt::Key_Plus);
        const std::array<QSize, 2> zoomed = sizes();
        m_window->resize(700, 560);
        endPass();
        QCOMPARE(sizes(), zoomed);
        // Scroll bars only where the image does not fit.
        QVERIFY(qobject_cast<QScrollArea*>(editors[0]->parentWidget()->parentWidget())->horizontalScrollBar()->isVisible());
        key(Qt::Key_0);
        QVERIFY(!qobject_cast<QScrollArea*>(editors[0]->parentWidget()->parentWidget())->horizontalScrollBar()->isVisible());
        // Zooming out never enlarges: a small image at Actual Size, below fit, stays so.
        QVERIFY(document().setImageFromFile(writeTestImage(m_dir, QStringLiteral("small.png"), 40, 30), 1, &reason));
        endPass();
        key(Qt::Key_1);
        const QSize actual = editors[0]->size();
        key(Qt::Key_Minus);
        QCOMPARE(editors[1]->size(), QSize(40, 30));
        QVERIFY(editors[0]->width() <= actual.width());
    }

    void aNewWindowFitsTheScreen()
    {
        QWidget big;
        big.resize(5000, 4000);
        big.show();
        QVERIFY(QTest::qWaitForWindowExposed(&big));
        const QRect available = big.screen()->availableGeometry();
        QVERIFY(available.contains(big.frameGeometry()));
        // Stretched by the user over the screen's edge, as across two monitors: it stays so,
        // also when shown again.
        const QRect stretched(available.left() + 100, available.top() + 20, available.width() + 300, 100);
        big.setGeometry(stretched);
        QTRY_COMPARE(big.geometry(), stretched);
        big.hide();
        big.show();
        endPass();
        QCOMPARE(big.geometry(), stretched);
    }

    void theColourWellIsAnUndoableChange()
    {
        LineColorWell* well = m_window->toolbar().lineColorWell();
        QCOMPARE(well->color(), document().lineColor()->toQColor());
        emit well->colorChosen(QColor(10, 20, 200, 128));
        endPass();
        QCOMPARE(document().lineColor()->toQColor().blue(), 200);
        QCOMPARE(m_window->actions().action(Command::Undo)->text(), QStringLiteral("&Undo Change colour"));
        m_window->undo();
        endPass();
        QVERIFY(!document().storedLineColor());
        QCOMPARE(well->color(), document().lineColor()->toQColor());
    }

    void imagesThatCannotBeShownAreNamedWithTheirReason()
    {
        const ImageProblemBar* bar = m_window->imageProblems();
        QVERIFY(bar->message().isEmpty());
        QFile broken(m_dir.filePath(QStringLiteral("broken.png")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a picture");
        broken.close();
        document().setImageFromURL(broken.fileName(), 1);
        endPass();
        QCOMPARE(bar->message(), QStringLiteral("The last image “broken.png” could not be shown: it is not an image in a format "
                                                "Plyra can read.\nPlyra keeps the file in the document as it is."));
        m_window->undo();
        endPass();
        QVERIFY(bar->message().isEmpty());
    }

    void imagesAreChosenFromTheFileMenu()
    {
        // Where the dialog starts: beside the image it replaces (for one kept in a
        // package, beside the package), else beside the document.
        const QString home = m_dir.path();
        QDir(home).mkpath(QStringLiteral("photos"));
        QDir(home).mkpath(QStringLiteral("doc.plyra"));
        const QString fallback = ImageChooser::startFolder(QString(), QString());
        const struct {
            QString image, document, expected;
        } starts[] = {
            {home + "/photos/a.png", home + "/doc.plyra", home + "/photos"},
            {home + "/doc.plyra/Image_0.tiff", home + "/doc.plyra", home},
            {QString(), home + "/doc.plyra", home},
            {"/nowhere/at/all/a.png", QString(), fallback},
        };
        for (const auto& start : starts)
            QCOMPARE(ImageChooser::startFolder(start.image, start.document), start.expected);
        QVERIFY(ImageChooser::nameFilters().first().contains(QStringLiteral("*.pdf")));
        QVERIFY(ImageChooser::nameFilters().first().contains(QStringLiteral("*.png")));

        auto* fileMenu = m_window->menuBar()->findChild<QMenu*>(QStringLiteral("fileMenu"));
        QVERIFY(fileMenu->actions().contains(m_window->actions().action(Command::ChooseFirstImage)));
        QVERIFY(fileMenu->actions().contains(m_window->actions().action(Command::ChooseLastImage)));

        // A file that is not an image changes nothing and says why in the status bar.
        const QString notes = m_dir.filePath(QStringLiteral("notes.png"));
        QFile text(notes);
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("not a picture") > 0);
        text.close();
        const struct {
            Command command;
            unsigned track;
            QString title, file;
            bool used;
        } choices[] = {
            {Command::ChooseLastImage, 1, QStringLiteral("Choose Last Image"), notes, false},
            {Command::ChooseFirstImage, 0, QStringLiteral("Choose First Image"), m_image, true},
        };
        for (const auto& choice : choices) {
            m_window->actions().action(choice.command)->trigger();
            auto* dialog = m_window->findChild<QFileDialog*>(QStringLiteral("imageChooser"));
            QVERIFY(dialog && dialog->isVisible());
            QCOMPARE(dialog->windowTitle(), choice.title);
            QCOMPARE(dialog->windowModality(), Qt::WindowModal);
            dialog->selectFile(choice.file);
            static_cast<QDialog*>(dialog)->accept();
            endPass();
            QCOMPARE(document().imageURLInTrack(choice.track), choice.used ? choice.file : QString());
            QCOMPARE(m_window->statusBar()->currentMessage().contains(QStringLiteral("could not be used as the image")), !choice.used);
        }
        QVERIFY(document().ciimageInTrack(0));
        m_window->undo();
        endPass();
        QVERIFY(document().imageURLInTrack(0).isEmpty());
    }

    void texturedBackgroundFollowsTheUserDefault()
    {
        QVERIFY(m_window->hasTexturedBackground());
        UserDefaults::standard().setBoolean(QStringLiteral("texturedWindows"), false);
        MorphEditorWindowController* plain = m_app->documents().newDocument();
        QVERIFY(!plain->hasTexturedBackground());
        UserDefaults::standard().remove(QStringLiteral("texturedWindows"));
    }

    void predictCounterpartsIsRememberedAndReachesEveryWindow()
    {
        QAction* predict = m_window->actions().action(Command::PredictCounterparts);
        QVERIFY(predict->isCheckable() && predict->isChecked());
        QVERIFY(m_window->firstEditor()->predictsCounterparts());
        MorphEditorWindowController* other = m_app->documents().newDocument();
        predict->trigger();
        for (MorphEditorWindowController* window : {m_window, other}) {
            QVERIFY(!window->actions().action(Command::PredictCounterparts)->isChecked());
            QVERIFY(!window->firstEditor()->predictsCounterparts() && !window->lastEditor()->predictsCounterparts());
        }
        QVERIFY(!UserDefaults::standard().boolean(QStringLiteral("predictCounterparts")));
        QVERIFY(!m_app->documents().newDocument()->lastEditor()->predictsCounterparts());
        // The selection commands need a selection.
        QVERIFY(!enabled(Command::FlipSelectionHorizontally) && !enabled(Command::PlaceSelectionByPrediction)
            && !enabled(Command::Duplicate));
        document().setSelectedLines({addLine({0.1f, 0.1f}, {0.2f, 0.3f})});
        QVERIFY(enabled(Command::FlipSelectionHorizontally) && enabled(Command::PlaceSelectionByPrediction)
            && enabled(Command::Duplicate));
        UserDefaults::standard().remove(QStringLiteral("predictCounterparts"));
    }

    void faceLinesWithoutTheNetworksAreDisabledAndSayWhy()
    {
        std::vector<std::function<void()>> jobs;
        for (const bool available : {false, true}) {
            MorphEditorWindowController* window = windowFindingFaces(available, jobs);
            window->actions().refresh();
            QAction* action = window->toolbar().item(QStringLiteral("addFaceLines"))->action;
            QCOMPARE(action, window->actions().action(Command::AddFaceLines));
            QCOMPARE(action->isEnabled(), available);
            QCOMPARE(action->toolTip() == QStringLiteral("Face lines are not available in this build."), !available);
        }
    }

    // Drawing a chain of lines when the faces are found: the chain ends as it stands and
    // stays one step, the face lines are the next; one undo takes only them away.
    void faceLinesEndTheGestureInProgress()
    {
        std::vector<std::function<void()>> jobs;
        MorphEditorWindowController* window = windowFindingFaces(true, jobs);
        window->actions().action(Command::AddFaceLines)->trigger();
        QCOMPARE(jobs.size(), 1u);
        MorphEditor* editor = window->firstEditor();
        QTest::mouseClick(editor, Qt::LeftButton, {}, QPoint(editor->width() / 4, editor->height() / 4));
        QTest::mouseClick(editor, Qt::LeftButton, {}, QPoint(editor->width() / 2, editor->height() / 4));
        QVERIFY(editor->isGestureActive());
        QCOMPARE(window->document().morphLines().size(), 1u);
        jobs.front()();
        endPass();
        QVERIFY(!editor->isGestureActive());
        UndoManager& undo = window->document().undoManager();
        QCOMPARE(window->document().morphLines().size(), 40u);
        QCOMPARE(undo.undoActionName(), std::string("Add Face Lines"));
        window->undo();
        endPass();
        QCOMPARE(window->document().morphLines().size(), 1u);
        QVERIFY(undo.undoActionName() != "Add Face Lines");
        QTest::mouseClick(editor, Qt::LeftButton, {}, QPoint(editor->width() / 2, editor->height() / 2));
        QCOMPARE(window->document().morphLines().size(), 1u);
    }

    void menusUseStandardShortcuts()
    {
        QCOMPARE(m_window->actions().action(Command::Save)->shortcut(), QKeySequence(QKeySequence::Save));
        QCOMPARE(m_window->actions().action(Command::SelectAll)->shortcut(), QKeySequence(QStringLiteral("Ctrl+A")));
        QCOMPARE(m_window->actions().action(Command::Undo)->shortcut(), QKeySequence(QKeySequence::Undo));
        QCOMPARE(m_window->actions().action(Command::Quit)->shortcut(), QKeySequence(QKeySequence::Quit));
        QCOMPARE(m_window->actions().action(Command::SaveAs)->shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+S")));
        QCOMPARE(sharedMnemonics(m_window->menuBar()->actions(), QStringLiteral("menu bar")), QStringList());
        QStringList titles;
        for (QAction* menu : m_window->menuBar()->actions())
            titles.append(menu->text());
        QCOMPARE(titles, (QStringList{"&File", "&Edit", "&View", "&Render", "&Help"}));
    }
};

QTEST_MAIN(MorphEditorWindowControllerTest)
#include "morph_editor_window_controller_test.moc"
