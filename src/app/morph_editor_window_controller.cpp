// SPDX-License-Identifier: MIT
#include "app/morph_editor_window_controller.h"

#include "app/application_commands.h"
#include "app/document_render_windows.h"
#include "app/counterpart_prediction_toggle.h"
#include "app/document_toolbar.h"
#include "app/editor_zoom.h"
#include "app/face_finding.h"
#include "app/face_lines_command.h"
#include "app/image_chooser.h"
#include "app/image_problem_bar.h"
#include "app/line_color_well.h"
#include "app/localization.h"
#include "app/main_menu.h"
#include "app/textured_background.h"
#include "app/window_actions.h"
#include "editor/morph_editor.h"
#include "inspector/inspector_controller.h"
#include "inspector/inspector_selection.h"
#include "inspector/morph_line_inspector.h"
#include "model/morph_document.h"
#include "render/windows/preview_dock.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>

namespace plyra {
namespace {

constexpr int kStatusMessageMs = 8000;

QScrollArea* scrollAreaFor(MorphEditor* editor, const QString& name, QWidget* parent)
{
    auto* area = new QScrollArea(parent);
    area->setObjectName(name);
    area->setWidget(editor);
    area->setWidgetResizable(false);
    area->setAlignment(Qt::AlignCenter);
    // Scroll bars only while the image is larger than what can be seen.
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setFrameShape(QFrame::StyledPanel);
    return area;
}

} // namespace

MorphEditorWindowController::MorphEditorWindowController(std::unique_ptr<MorphDocument> document,
    const QString& filePath, const QString& untitledName, ApplicationCommands& commands)
    : m_document(std::move(document))
    , m_filePath(filePath)
    , m_untitledName(untitledName)
    , m_commands(commands)
{
    setObjectName(QStringLiteral("documentWindow"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_renderWindows = new DocumentRenderWindows(*m_document, this);
    m_renderWindows->setDocumentName(displayName(), m_filePath);
    buildEditors();
    buildFaceLines();
    buildActions();
    buildToolbar();
    buildMainMenu(menuBar(), *m_actions, m_commands);
    buildPreviewDrawer();
    registerInspector();
    m_textured = TexturedBackground::apply(*this, {menuBar(), m_toolbar});
    statusBar()->setSizeGripEnabled(true);
    // The widget tree holds the menus but not their items: each window's own menus are
    // localised here.
    localizeWindow(this);
    for (QAction* menu : menuBar()->actions())
        localizeMenu(menu->menu());
    observeDocument();
    updateTitle();
    refreshState();
    resize(1180, 720);
}

MorphEditorWindowController::~MorphEditorWindowController()
{
    NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
    m_document->undoManager().removeChangeObservers(this);
    // Everything that refers to the document goes before it does.
    closeDocumentWindows();
    delete m_faceLines;
    m_faceLines = nullptr;
    delete m_previewDock;
    m_previewDock = nullptr;
    delete m_editorSplitView;
    m_editorSplitView = nullptr;
    delete m_imageProblems;
    m_imageProblems = nullptr;
}

void MorphEditorWindowController::buildEditors()
{
    m_firstEditor = new MorphEditor;
    m_lastEditor = new MorphEditor;
    m_firstEditor->setObjectName(QStringLiteral("firstEditor"));
    m_lastEditor->setObjectName(QStringLiteral("lastEditor"));
    m_firstEditor->setAccessibleName(tr("First image"));
    m_lastEditor->setAccessibleName(tr("Last image"));
    m_firstEditor->setTrack(0);
    m_lastEditor->setTrack(1);
    m_firstEditor->setDataSource(m_document.get());
    m_lastEditor->setDataSource(m_document.get());

    m_editorSplitView = new QSplitter(Qt::Horizontal, this);
    m_editorSplitView->setObjectName(QStringLiteral("editorSplitView"));
    m_editorSplitView->setChildrenCollapsible(false);
    m_firstScrollArea = scrollAreaFor(m_firstEditor, QStringLiteral("firstScrollArea"), m_editorSplitView);
    m_lastScrollArea = scrollAreaFor(m_lastEditor, QStringLiteral("lastScrollArea"), m_editorSplitView);
    m_editorSplitView->addWidget(m_firstScrollArea);
    m_editorSplitView->addWidget(m_lastScrollArea);
    // Above the editors, the bar that names images which could not be shown.
    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_imageProblems = new ImageProblemBar(*m_document, central);
    column->addWidget(m_imageProblems);
    column->addWidget(m_editorSplitView, 1);
    setCentralWidget(central);

    for (MorphEditor* editor : {m_firstEditor, m_lastEditor})
        connect(editor, &MorphEditor::statusMessageRequested, this,
            [this](const QString& message) { statusBar()->showMessage(message, kStatusMessageMs); });

    m_zoom = new EditorZoom(
        std::array<EditorZoom::Editor, 2>{EditorZoom::Editor{m_firstEditor, m_firstScrollArea}, EditorZoom::Editor{m_lastEditor, m_lastScrollArea}},
        [this] { centerSelection(); },
        [this] { m_editorSplitView->repaint(); }, this);
    m_zoomLabel = new QLabel(statusBar());
    m_zoomLabel->setObjectName(QStringLiteral("zoomFactor"));
    // Read by its text, "Zoom 141 %".
    statusBar()->addPermanentWidget(m_zoomLabel);
    connect(m_zoom, &EditorZoom::zoomChanged, m_zoomLabel, [this] { m_zoomLabel->setText(m_zoom->zoomText()); });
}

void MorphEditorWindowController::buildActions()
{
    m_actions = new WindowActions(this);
    WindowActions& a = *m_actions;
    a.setHandler(Command::NewDocument, [this] { m_commands.newDocument(); });
    a.setHandler(Command::Open, [this] { m_commands.openDocument(); });
    a.setHandler(Command::ChooseFirstImage, [this] { chooseImage(0); });
    a.setHandler(Command::ChooseLastImage, [this] { chooseImage(1); });
    a.setHandler(Command::Close, [this] { close(); });
    a.setHandler(Command::Save, [this] { finishGestures(); m_commands.saveDocument(this); });
    a.setHandler(Command::SaveAs, [this] { finishGestures(); m_commands.saveDocumentAs(this); });
    a.setHandler(Command::Revert, [this] { m_commands.revertDocument(this); });
    a.setHandler(Command::Quit, [this] { m_commands.quit(); });
    a.setHandler(Command::Undo, [this] { undo(); });
    a.setHandler(Command::Redo, [this] { redo(); });
    a.setHandler(Command::Duplicate, [this] { finishGestures(); focusedEditor()->duplicateSelection(); });
    a.setHandler(Command::Delete, [this] { finishGestures(); focusedEditor()->clear(); });
    a.setHandler(Command::SelectAll, [this] { finishGestures(); focusedEditor()->selectAll(); });
    a.setHandler(Command::SelectNone, [this] { finishGestures(); focusedEditor()->selectNone(); });
    a.setHandler(Command::SelectAttached, [this] { finishGestures(); focusedEditor()->selectAttachedLines(); });
    a.setHandler(Command::AddFaceLines, [this] { finishGestures(); m_faceLines->run(); });
    new CounterpartPredictionToggle(a.action(Command::PredictCounterparts), {m_firstEditor, m_lastEditor}, this);
    a.setHandler(Command::PlaceSelectionByPrediction, [this] { finishGestures(); focusedEditor()->placeSelectionByPrediction(); });
    a.setHandler(Command::FlipSelectionHorizontally, [this] { finishGestures(); focusedEditor()->flipSelectionHorizontally(); });
    a.setHandler(Command::ZoomIn, [this] { zoomInEditors(); });
    a.setHandler(Command::ZoomOut, [this] { zoomOutEditors(); });
    a.setHandler(Command::ZoomToFit, [this] { finishGestures(); m_zoom->zoomToFit(); });
    a.setHandler(Command::ActualSize, [this] { finishGestures(); m_zoom->actualSize(); });
    a.setHandler(Command::CenterSelection, [this] { centerSelection(); });
    a.setHandler(Command::CustomizeToolbar, [this] { m_toolbar->customize(); });
    a.setHandler(Command::TogglePreview, [this] { togglePreviewDrawer(); });
    a.setHandler(Command::ToggleInspector, [this] { toggleInspectorPanel(); });
    a.setHandler(Command::ShowInspector, [this] { showInspectorPanel(); });
    a.setHandler(Command::ShowColors, [this] { m_toolbar->lineColorWell()->click(); });
    a.setHandler(Command::RenderImage, [this] { showFrameWindow(); });
    a.setHandler(Command::RenderMovie, [this] { showMovieWindow(); });
    a.setHandler(Command::HelpContents, [this] { m_commands.showHelp(QStringLiteral("index")); });
    a.setHandler(Command::HelpGettingStarted, [this] { m_commands.showHelp(QStringLiteral("getting-started")); });
    a.setHandler(Command::HelpEditors, [this] { m_commands.showHelp(QStringLiteral("editors")); });
    a.setHandler(Command::HelpTiming, [this] { m_commands.showHelp(QStringLiteral("timing")); });
    a.setHandler(Command::HelpRendering, [this] { m_commands.showHelp(QStringLiteral("rendering")); });
    a.setHandler(Command::CheckForUpdates, [this] { m_commands.checkForUpdates(); });
    a.setHandler(Command::About, [this] { m_commands.showAbout(); });

    const auto& lines = [this] { return m_document->morphLines(); };
    const auto& selection = [this] { return m_document->selectedLines(); };
    a.setEnabledRule(Command::Revert, [this] { return !m_filePath.isEmpty() && m_document->isEdited(); });
    a.setEnabledRule(Command::Undo, [this] { return m_document->undoManager().canUndo(); });
    a.setEnabledRule(Command::Redo, [this] { return m_document->undoManager().canRedo(); });
    a.setEnabledRule(Command::Duplicate, [selection] { return !selection().empty(); });
    a.setEnabledRule(Command::Delete, [selection] { return !selection().empty(); });
    a.setEnabledRule(Command::SelectAll, [lines, selection] { return lines().size() != selection().size(); });
    a.setEnabledRule(Command::SelectNone, [selection] { return !selection().empty(); });
    a.setEnabledRule(Command::SelectAttached, [this] { return canSelectAttached(); });
    a.setEnabledRule(Command::AddFaceLines,
        [this] { return m_commands.faceFinding().isAvailable && hasAnyImage() && !m_faceLines->isRunning(); });
    a.setEnabledRule(Command::PlaceSelectionByPrediction, [selection] { return !selection().empty(); });
    a.setEnabledRule(Command::FlipSelectionHorizontally, [selection] { return !selection().empty(); });
    a.setEnabledRule(Command::ZoomIn, [this] { return hasAnyImage(); });
    a.setEnabledRule(Command::ZoomOut, [this] { return hasAnyImage(); });
    a.setEnabledRule(Command::ZoomToFit, [this] { return hasAnyImage(); });
    a.setEnabledRule(Command::ActualSize, [this] { return hasAnyImage(); });
    a.setEnabledRule(Command::CenterSelection, [this] { return hasAnyImage(); });
    a.setEnabledRule(Command::RenderImage, [this] { return canRender(); });
    a.setEnabledRule(Command::RenderMovie, [this] { return canRender(); });
}

void MorphEditorWindowController::buildToolbar()
{
    m_toolbar = new DocumentToolbar(this, *m_actions);
    connect(m_toolbar->lineColorWell(), &LineColorWell::colorChosen, this, &MorphEditorWindowController::lineColorChosen);
    if (!m_commands.faceFinding().isAvailable)
        m_actions->action(Command::AddFaceLines)->setToolTip(tr("Face lines are not available in this build."));
}

void MorphEditorWindowController::buildFaceLines()
{
    const FaceFinding& finding = m_commands.faceFinding();
    m_faceLines = new FaceLinesCommand(*m_document, finding.makeFinder(), finding.runner, this);
    // The lines become a step of their own: a gesture in progress ends first, like
    // before any other command.
    m_faceLines->setBeforeAdding([this] { finishGestures(); });
    // "Finding the faces…" stays until the result replaces it.
    connect(m_faceLines, &FaceLinesCommand::statusChanged, this, [this](const QString& message) {
        statusBar()->showMessage(message, m_faceLines->isRunning() ? 0 : kStatusMessageMs);
    });
    connect(m_faceLines, &FaceLinesCommand::runningChanged, this, [this] { refreshState(); });
}

void MorphEditorWindowController::observeDocument()
{
    NotificationCenter& center = NotificationCenter::defaultCenter();
    for (const char* name : {kObjectsUpdatedNotification, kSelectionUpdatedNotification, kEditedStateChangedNotification})
        center.addObserver(name, [this](const Notification&) { refreshState(); }, this, m_document->notificationObject());
    // The undo manager reports every registration, several per mouse move of a drag:
    // the window's state follows once per event-loop pass.
    m_document->undoManager().addChangeObserver(this, [this] { scheduleRefresh(); });
}

void MorphEditorWindowController::scheduleRefresh()
{
    if (m_refreshScheduled)
        return;
    m_refreshScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshScheduled = false;
        refreshState();
    });
}

void MorphEditorWindowController::fitEditorsToNewImages()
{
    std::array<qint64, 2> keys{};
    for (unsigned track : {0u, 1u})
        if (const std::optional<DisplayImage> image = m_document->imageInTrack(track))
            keys[track] = image->raster.cacheKey();
    const std::array<qint64, 2> previous = m_imageKeys;
    m_imageKeys = keys;
    if (m_fitted && keys != previous)
        fitEditors({keys[0] != previous[0], keys[1] != previous[1]});
}

void MorphEditorWindowController::fitEditors(std::array<bool, 2> refit)
{
    m_zoom->fit(refit);
    centerSelection();
}

void MorphEditorWindowController::refreshState()
{
    // Face lines that waited for a change in the inspector to end.
    m_faceLines->addWaitingLines();
    fitEditorsToNewImages();
    m_actions->refresh();
    m_toolbar->lineColorWell()->setColor(m_document->lineColor()->toQColor());
    updateUndoTitles();
    setWindowModified(m_document->isEdited());
}

void MorphEditorWindowController::updateTitle()
{
    setWindowTitle(tr("%1[*] — Plyra").arg(displayName()));
    setWindowFilePath(m_filePath);
}

void MorphEditorWindowController::updateUndoTitles()
{
    const UndoManager& undo = m_document->undoManager();
    auto title = [](const char* plain, const char* withName, const std::string& name) {
        if (name.empty())
            return QCoreApplication::translate("WindowActions", plain);
        const QString translated = QCoreApplication::translate("UndoAction", name.c_str());
        return QCoreApplication::translate("WindowActions", withName).arg(translated);
    };
    m_actions->action(Command::Undo)->setText(title(QT_TRANSLATE_NOOP("WindowActions", "&Undo"),
        QT_TRANSLATE_NOOP("WindowActions", "&Undo %1"), undo.canUndo() ? undo.undoActionName() : std::string()));
    m_actions->action(Command::Redo)->setText(title(QT_TRANSLATE_NOOP("WindowActions", "&Redo"),
        QT_TRANSLATE_NOOP("WindowActions", "&Redo %1"), undo.canRedo() ? undo.redoActionName() : std::string()));
}

void MorphEditorWindowController::setFilePath(const QString& path)
{
    m_filePath = path;
    updateTitle();
    m_renderWindows->setDocumentName(displayName(), m_filePath);
}

QString MorphEditorWindowController::displayName() const
{
    if (m_filePath.isEmpty())
        return m_untitledName;
    return QFileInfo(m_filePath).completeBaseName();
}

void MorphEditorWindowController::buildPreviewDrawer()
{
    m_previewDock = new PreviewDock(*m_document, this);
    m_previewDock->setObjectName(QStringLiteral("previewDrawer"));
    addDockWidget(Qt::BottomDockWidgetArea, m_previewDock);
    QAction* toggle = m_actions->action(Command::TogglePreview);
    connect(m_previewDock, &QDockWidget::visibilityChanged, toggle, [this, toggle] { toggle->setChecked(m_previewDock->isOpen()); });
}

void MorphEditorWindowController::registerInspector()
{
    InspectorController* inspector = InspectorController::sharedInspectorController();
    inspector->registerInspector(MorphLineInspector::sharedInspector());
    QAction* toggle = m_actions->action(Command::ToggleInspector);
    toggle->setChecked(inspector->isPanelVisible());
    connect(inspector, &InspectorController::panelVisibilityChanged, toggle, &QAction::setChecked);
}

void MorphEditorWindowController::togglePreviewDrawer()
{
    m_previewDock->toggle();
}

void MorphEditorWindowController::showInspectorPanel()
{
    InspectorController::sharedInspectorController()->showPanel();
}

void MorphEditorWindowController::toggleInspectorPanel()
{
    InspectorController::sharedInspectorController()->togglePanel();
}

void MorphEditorWindowController::chooseImage(unsigned track)
{
    finishGestures();
    const QString start = ImageChooser::startFolder(m_document->imageURLInTrack(track), m_filePath);
    MorphEditor* editor = track == 0 ? m_firstEditor : m_lastEditor;
    ImageChooser::run(this, track, start, [editor](const QString& path) { editor->useImageFile(path); });
}

void MorphEditorWindowController::showFrameWindow()
{
    finishGestures();
    m_renderWindows->showFrameWindow();
}

void MorphEditorWindowController::showMovieWindow()
{
    finishGestures();
    m_renderWindows->showMovieWindow();
}

bool MorphEditorWindowController::mayCloseDocumentWindows()
{
    return m_renderWindows->mayCloseAll();
}

void MorphEditorWindowController::closeDocumentWindows()
{
    m_renderWindows->closeAll();
}

FrameWindow* MorphEditorWindowController::frameWindow() const
{
    return m_renderWindows->frameWindow();
}

MovieWindow* MorphEditorWindowController::movieWindow() const
{
    return m_renderWindows->movieWindow();
}

QVariantList MorphEditorWindowController::currentSelection() const
{
    return selectionOfLines(m_document->selectedLines());
}

const void* MorphEditorWindowController::documentNotificationObject() const
{
    return m_document->notificationObject();
}

UndoManager* MorphEditorWindowController::documentUndoManager()
{
    return &m_document->undoManager();
}

bool MorphEditorWindowController::documentHasBothImages() const
{
    return m_document->imageInTrack(0).has_value() && m_document->imageInTrack(1).has_value();
}

std::optional<float> MorphEditorWindowController::frameWindowTime() const
{
    return m_renderWindows->shownFrameTime();
}

QList<QAction*> MorphEditorWindowController::editActions() const
{
    return {m_actions->action(Command::Undo), m_actions->action(Command::Redo)};
}

MorphEditor* MorphEditorWindowController::focusedEditor() const
{
    return m_lastEditor->hasFocus() ? m_lastEditor : m_firstEditor;
}

void MorphEditorWindowController::finishGestures()
{
    m_firstEditor->finishGesture();
    m_lastEditor->finishGesture();
}

void MorphEditorWindowController::undo()
{
    finishGestures();
    m_document->undoManager().undo();
}

void MorphEditorWindowController::redo()
{
    finishGestures();
    m_document->undoManager().redo();
}

void MorphEditorWindowController::zoomInEditors()
{
    finishGestures();
    m_zoom->zoomIn();
}

void MorphEditorWindowController::zoomOutEditors()
{
    finishGestures();
    m_zoom->zoomOut();
}

void MorphEditorWindowController::centerSelection()
{
    m_firstEditor->centerSelectionInVisibleArea();
    m_lastEditor->centerSelectionInVisibleArea();
}

void MorphEditorWindowController::lineColorChosen(const QColor& color)
{
    m_document->setLineColor(LineColor::fromQColor(color));
}

bool MorphEditorWindowController::hasAnyImage() const
{
    return m_document->imageInTrack(0).has_value() || m_document->imageInTrack(1).has_value();
}

bool MorphEditorWindowController::canRender() const
{
    return hasAnyImage() && !m_document->morphLines().empty();
}

bool MorphEditorWindowController::canSelectAttached() const
{
    const auto& selection = m_document->selectedLines();
    return std::any_of(selection.begin(), selection.end(), [this](const MorphLine::Ptr& line) {
        const MorphLine::Ptr before = line->attachedLineAtStart();
        const MorphLine::Ptr after = line->attachedLineAtEnd();
        return (before && !m_document->isLineSelected(before.get())) || (after && !m_document->isLineSelected(after.get()));
    });
}

void MorphEditorWindowController::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (m_fitted)
        return;
    m_fitted = true;
    m_previewDock->keepToAThirdOfTheWindow();
    // Fitting needs the scroll areas' final sizes, known once the window is laid out.
    QTimer::singleShot(0, this, [this] { fitEditors({true, true}); });
}

void MorphEditorWindowController::closeEvent(QCloseEvent* event)
{
    // The document manager decides: it asks about unsaved changes and closes the window.
    event->ignore();
    finishGestures();
    QTimer::singleShot(0, this, [this] { m_commands.closeDocument(this); });
}

} // namespace plyra
