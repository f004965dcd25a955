// SPDX-License-Identifier: MIT
#pragma once

#include "inspector/inspectable_window.h"
#include "platform/notification_center.h"

#include <QMainWindow>
#include <QString>

#include <array>
#include <memory>

class QLabel;
class QScrollArea;
class QSplitter;

namespace plyra {

class ApplicationCommands;
class DocumentRenderWindows;
class DocumentToolbar;
class EditorZoom;
class FaceLinesCommand;
class FrameWindow;
class ImageProblemBar;
class MorphDocument;
class MorphEditor;
class MovieWindow;
class PreviewDock;
class WindowActions;

/// The main window of a document: the first-image and the last-image editors side by
/// side, the toolbar with the line colour, the menus, zoom, and the links to the
/// preview strip, the render windows and the inspector. It owns its document; closing
/// the window closes the document, through the application's document manager.
/// Threads: main thread only.
class MorphEditorWindowController : public QMainWindow, public InspectableWindow {
    Q_OBJECT

public:
    MorphEditorWindowController(std::unique_ptr<MorphDocument> document, const QString& filePath,
        const QString& untitledName, ApplicationCommands& commands);
    ~MorphEditorWindowController() override;

    MorphDocument& document() const { return *m_document; }
    QString filePath() const { return m_filePath; }
    void setFilePath(const QString& path);
    /// The package's name without ".plyra", or the untitled name.
    QString displayName() const;

    /// Asks about a finished movie that was not saved; false when the user cancelled.
    bool mayCloseDocumentWindows();
    /// Closes the render windows that belong to this document.
    void closeDocumentWindows();

    MorphEditor* firstEditor() const { return m_firstEditor; }
    MorphEditor* lastEditor() const { return m_lastEditor; }
    QSplitter* editorSplitView() const { return m_editorSplitView; }
    ImageProblemBar* imageProblems() const { return m_imageProblems; }
    WindowActions& actions() const { return *m_actions; }
    DocumentToolbar& toolbar() const { return *m_toolbar; }
    bool hasTexturedBackground() const { return m_textured; }
    FaceLinesCommand& faceLinesCommand() const { return *m_faceLines; }
    PreviewDock* previewDock() const { return m_previewDock; }
    /// The render windows, made on first request; null before.
    FrameWindow* frameWindow() const;
    MovieWindow* movieWindow() const;

    // What the inspector panel asks of the window in front.
    QVariantList currentSelection() const override;
    const void* documentNotificationObject() const override;
    UndoManager* documentUndoManager() override;
    bool documentHasBothImages() const override;
    std::optional<float> frameWindowTime() const override;
    QList<QAction*> editActions() const override;

    /// The commands of the window, as its menus and toolbar run them.
    void zoomInEditors();
    void zoomOutEditors();
    void centerSelection();
    void undo();
    void redo();
    /// Asks for a file to become the image of track 0 (first) or 1 (last).
    void chooseImage(unsigned track);
    void showFrameWindow();
    void showMovieWindow();
    void togglePreviewDrawer();
    void showInspectorPanel();
    void toggleInspectorPanel();

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void buildEditors();
    void buildActions();
    void buildToolbar();
    void buildPreviewDrawer();
    void buildFaceLines();
    void registerInspector();
    void observeDocument();
    void refreshState();
    void scheduleRefresh();
    /// Sizes the editors of the tracks in refit to their images.
    void fitEditors(std::array<bool, 2> refit);
    void fitEditorsToNewImages();
    void updateTitle();
    void updateUndoTitles();
    MorphEditor* focusedEditor() const;
    void finishGestures();
    void lineColorChosen(const QColor& color);
    bool hasAnyImage() const;
    bool canRender() const;
    bool canSelectAttached() const;

    std::unique_ptr<MorphDocument> m_document;
    QString m_filePath;
    QString m_untitledName;
    ApplicationCommands& m_commands;
    WindowActions* m_actions = nullptr;
    FaceLinesCommand* m_faceLines = nullptr;
    DocumentToolbar* m_toolbar = nullptr;
    QSplitter* m_editorSplitView = nullptr;
    ImageProblemBar* m_imageProblems = nullptr;
    MorphEditor* m_firstEditor = nullptr;
    MorphEditor* m_lastEditor = nullptr;
    QScrollArea* m_firstScrollArea = nullptr;
    QScrollArea* m_lastScrollArea = nullptr;
    EditorZoom* m_zoom = nullptr;
    QLabel* m_zoomLabel = nullptr;
    PreviewDock* m_previewDock = nullptr;
    DocumentRenderWindows* m_renderWindows = nullptr;
    bool m_textured = true;
    bool m_fitted = false;
    bool m_refreshScheduled = false;
    std::array<qint64, 2> m_imageKeys{};
};

} // namespace plyra
