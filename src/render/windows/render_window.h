// SPDX-License-Identifier: MIT
#pragma once

#include "render/render_settings.h"
#include "render/windows/render_save_dialog.h"

#include <QMainWindow>

#include <functional>
#include <memory>

namespace plyra {

class MorphDocument;
class RenderController;
class RenderScheduler;
class RenderSettingsSheet;
class RenderToolbar;
struct SheetSettings;

/// The common window of a render: its toolbar (progress, Save, Settings), the settings
/// sheet, the save dialog, and the render cycle: every change of the document or the
/// settings leads to one recalculation 0.1 s after the last of a burst, which only a
/// visible window carries out; a 0.1 s timer polls the render without waiting. Closing
/// the window stops its render; it asks first only when a finished result that was
/// never saved would be lost, never about the document.
/// Threads: main thread.
class RenderWindow : public QMainWindow {
    Q_OBJECT

public:
    ~RenderWindow() override;

    MorphDocument& document() const { return m_document; }
    RenderController& controller() const { return *m_controller; }
    RenderScheduler& scheduler() const { return *m_scheduler; }
    RenderToolbar* toolbar() const { return m_toolbar; }

    /// The document's name for titles, and its file (empty while never saved) for the
    /// save dialog's start; the document window sets both again after Save As.
    void setDocumentDisplayName(const QString& name);
    QString documentDisplayName() const { return m_displayName; }
    void setDocumentFilePath(const QString& path) { m_documentPath = path; }
    QString documentFilePath() const { return m_documentPath; }

    // Settings; a setter that changes what the frames look like asks for a recalculation.
    void setNumberOfFrames(std::uint32_t frames);
    void setFramesPerSecond(float fps);
    void setFrameSize(FrameSize size);
    void setTimeRange(MorphTimeRange range);
    void setReverse(bool reverse);
    void setSizeToView(bool sizeToView);
    bool sizesToView() const;
    FrameRatioMode frameRatioMode() const;
    /// The frame size; an unset one is taken from the document.
    FrameSize frameSize();
    float progress() const;

    /// The size of the view that shows the result.
    virtual QSize viewSize() const;
    /// That size in the screen's device pixels; the frame follows it when sizing to the view.
    QSize viewPixelSize() const;
    void resizeToView();
    void resizeToViewIfSizesToView();

    /// One recalculation 0.1 s after the last request.
    void delayedRecalc();
    /// Starts a new render now, unless the window is hidden or the document has no image.
    void recalc();

    /// What asks before a finished result that was never saved is lost: by default the
    /// message box of RenderSaveDialog::askToSaveResult (tests answer without one).
    using UnsavedResultQuestion = std::function<RenderSaveDialog::UnsavedResultAnswer(RenderWindow&)>;
    static void setUnsavedResultQuestion(UnsavedResultQuestion question);
    /// Whether closing the window would lose a finished result that was never saved.
    virtual bool hasUnsavedResult() const { return false; }
    /// Asks first when closing would lose such a result; Save runs the save dialog and
    /// saves. True when the window may close.
    bool mayDiscardResult();

    /// Runs the save dialog and saves the result to the chosen file.
    void save();
    /// Saves to the path, with the alert "Saving failed" when that fails.
    bool saveToPath(const QString& path);
    /// Runs the settings sheet on this window.
    void showSettings();
    /// The settings sheet, made on first use.
    RenderSettingsSheet* settingsSheet();

signals:
    /// A new render has started.
    void renderStarted();

protected:
    /// toolbarIdentifier names the kind of window whose toolbar arrangement the user keeps.
    RenderWindow(MorphDocument& document, std::unique_ptr<RenderController> controller, const QString& toolbarIdentifier,
        QWidget* parent);

    /// The default toolbar: progress, Save, the window's own items, Settings; spaces and
    /// separators may be added.
    void setToolbarItems(const QStringList& ownItems);

    /// Follows the size of the view that shows the result.
    void setResultView(QWidget* view);
    /// Fills what the sheet shows beyond the common settings.
    virtual void prepareSettingsSheet() { }
    /// Takes what the document says of this render before each recalculation.
    virtual void takeDocumentSettings() { }
    /// Starts the controller's render; false when nothing was started.
    virtual bool startRender();
    /// Shows what the last poll consumed.
    virtual void showPolledResults() { }
    virtual QString windowTitleForDocumentDisplayName(const QString& name) const = 0;
    /// The question before an unsaved result is lost, naming the document.
    virtual QString unsavedResultQuestion(const QString& name) const { return name; }
    virtual RenderSettingsSheet* createSettingsSheet() = 0;
    /// The sheet's settings from this window's, and back on OK.
    virtual SheetSettings sheetSettings();
    virtual void applySheetSettings();
    virtual SaveFileTypes saveFileTypes() const = 0;
    /// Writes the finished result; false with the reason when it cannot.
    virtual bool saveRenderedFramesToPath(const QString& path, QString* error) = 0;
    /// Called when the window closes, after its render stopped.
    virtual void windowClosed() { }
    /// Called when the window has moved to another screen, which may have another scale
    /// and another size: frames sized to the view are made anew in its device pixels.
    virtual void screenChanged() { resizeToViewIfSizesToView(); }

    void refreshTitle();
    void validateToolbar();

    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildToolbar(const QString& identifier);
    void settingsSheetDidEnd(int result);
    void polled();
    bool documentHasImage() const;

    MorphDocument& m_document;
    std::unique_ptr<RenderController> m_controller;
    RenderScheduler* m_scheduler = nullptr;
    RenderToolbar* m_toolbar = nullptr;
    QAction* m_saveAction = nullptr;
    RenderSettingsSheet* m_sheet = nullptr;
    QWidget* m_resultView = nullptr;
    QString m_displayName;
    QString m_documentPath;
};

} // namespace plyra
