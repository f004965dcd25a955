// SPDX-License-Identifier: MIT
#pragma once

#include <QDockWidget>

#include <memory>

namespace plyra {

class MorphDocument;
class PreviewStripRender;
class PreviewStripView;
class RenderScheduler;

/// The preview strip as a dock of the document window: it follows every edit of the
/// document while it is open (0.1 s after the last change of a burst) and computes
/// nothing while it is closed. The document window adds it with addDockWidget() and its
/// toolbar item calls toggle().
/// Threads: main thread.
class PreviewDock : public QDockWidget {
    Q_OBJECT

public:
    explicit PreviewDock(MorphDocument& document, QWidget* parent = nullptr);
    ~PreviewDock() override;

    /// Opens the strip when closed and closes it when open.
    void toggle();
    /// Opens the strip and renders it anew.
    void showStrip();
    /// Gives the open strip its own size, but at most a third of its main window (of its
    /// height, or of its width when the strip stands beside the editors). Opening the
    /// strip does this; the window calls it when it is first shown.
    void keepToAThirdOfTheWindow();
    /// Whether the strip is open and shown.
    bool isOpen() const { return isVisible(); }

    /// The number of cells (at least 2; 5 unless changed).
    void setCellCount(int count);

    PreviewStripView* strip() const { return m_strip; }
    PreviewStripRender& renderer() const { return *m_render; }
    RenderScheduler& scheduler() const { return *m_scheduler; }

    /// Starts a new render now, unless the strip is closed or the document has no image.
    void recalc();

signals:
    /// A new render has started (its cells are blank).
    void renderStarted();
    /// A poll filled cells; all are filled when the render is over.
    void cellsFilled();

private:
    void cellSizeChanged();
    QSize cellPixelSize() const;
    void openChanged(bool open);
    void orientationChanged(Qt::DockWidgetArea area);

    MorphDocument& m_document;
    std::unique_ptr<PreviewStripRender> m_render;
    RenderScheduler* m_scheduler = nullptr;
    PreviewStripView* m_strip = nullptr;
};

} // namespace plyra
