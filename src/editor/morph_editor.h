// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor_painter.h"
#include "editor/gesture_event.h"
#include "editor/line_damage.h"
#include "editor/nudge_steps.h"
#include "editor/scaled_image_cache.h"
#include "editor/transform_frame.h"
#include "model/line_color.h"

#include <QRectF>
#include <QSizeF>
#include <QWidget>

#include <memory>
#include <optional>

class QAbstractScrollArea;

namespace plyra {

class EditorCommands;
class EditorGesture;
class MorphEditorDataSource;

/// The view of one track: its image scaled to the view, with every line of the document
/// at the track's time, in which the user draws, picks, drags, nudges, connects and
/// deletes lines and drops the track's image. View units have the origin at the bottom
/// left and y upward; the editor draws and hands each mouse gesture to a gesture object
/// chosen at the press. Every change goes to the document through its undoable
/// operations; one gesture is one undo step. Meant to sit in a QScrollArea: zooming
/// resizes the editor (the document window's zoom decides its size).
/// Threads: main thread only.
class MorphEditor : public QWidget {
    Q_OBJECT

public:
    explicit MorphEditor(QWidget* parent = nullptr);
    ~MorphEditor() override;

    unsigned track() const { return m_context.track; }
    /// 0 for the first image, 1 for the last.
    void setTrack(unsigned track);
    MorphEditorDataSource* dataSource() const { return m_context.dataSource; }
    /// Not owned: set none (or another) before the document goes away. Ends a gesture
    /// in progress on the old one.
    void setDataSource(MorphEditorDataSource* dataSource);

    /// Whether a new line takes the place in the other track that the lines already drawn
    /// predict (on by default); otherwise it takes the same place there.
    bool predictsCounterparts() const { return m_context.predictsCounterparts; }
    void setPredictsCounterparts(bool predicts) { m_context.predictsCounterparts = predicts; }

    /// Whether a mouse gesture runs (a drag, or a chain of lines being drawn).
    bool isGestureActive() const { return m_gesture != nullptr; }
    /// Ends the gesture in progress where it stands, closing its undo step; call it
    /// before Undo, Redo or any other command that changes the document.
    void finishGesture();

    /// The size of the track's own image; none without one.
    std::optional<QSizeF> imageSize() const;

    /// The bounding box of the selected lines in view units (origin bottom left, y up);
    /// the zero rectangle for no selection.
    QRectF rectOfSelectedLines() const;
    /// The largest size of the image's aspect ratio that fits into contentSize.
    static QSizeF fittedSize(QSizeF imageSize, QSizeF contentSize);
    /// The content size of the scroll area's frame, less the scroll bars always shown.
    static QSizeF contentSizeOf(const QAbstractScrollArea& scrollArea);

    QSize sizeHint() const override;
    /// The clock that decides whether nudges follow each other closely enough to be one
    /// step, for key events that carry no time of their own.
    void setNudgeClock(NudgeSteps::Clock clock) { m_nudges.setClock(std::move(clock)); }

public slots:
    void selectAll();
    void selectNone();
    /// Extends the selection along joins.
    void selectAttachedLines();
    /// Deletes the selected lines.
    void clear();
    /// Scrolls the enclosing scroll area so that the selection is centred.
    void centerSelectionInVisibleArea();
    void center() { centerSelectionInVisibleArea(); }
    /// Adds a copy of the selected lines, a few units right of and below them in both
    /// tracks, and selects it instead (one undo step).
    void duplicateSelection();
    /// Mirrors the selected points of this editor's track about the vertical centre line
    /// of their box (one undo step).
    void flipSelectionHorizontally();
    /// Moves the selected lines' points in the other editor to where the unselected
    /// lines predict them from this editor's track (one undo step "Move Line").
    void placeSelectionByPrediction();
    /// Makes the file this editor's image, as dropping it does: true when it was read;
    /// otherwise the document is unchanged and the reason goes to the status bar.
    bool useImageFile(const QString& path);

signals:
    /// A message for the window's status bar, such as why a dropped file was refused;
    /// empty to clear it.
    void statusMessageRequested(const QString& message);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    struct ShownImages {
        qint64 own = 0;
        qint64 other = 0;
        bool operator==(const ShownImages&) const = default;
    };

    void documentChanged();
    void redrawAll();
    bool refreshImages();
    void syncLines();
    void updateAccessibleDescription();
    /// A key while no gesture runs: nudging, deleting, Escape clearing the selection.
    void keyCommand(const GestureEvent& event);
    void ensureSelectionVisible();
    EditorCommands commands() const;
    /// Runs a command on the document's selection and redraws the lines it changed.
    void runCommand(void (EditorCommands::*command)());

    GestureEvent gestureEvent(const QMouseEvent& event, bool press) const;
    void dispatch(const GestureEvent& event);
    void startGesture(const GestureEvent& press);
    void afterGestureEvent();
    void endGesture();
    void updateOverlay();
    bool claimsKey(int key) const;
    /// The selection's transform frame as the editor shows it now: none for fewer than
    /// two selected lines, and none while another gesture runs.
    std::optional<TransformFrame> shownTransformFrame() const;
    /// Repaints where the frame was and is, and tracks the pointer over it for the cursor.
    void updateTransformFrame();
    void updateHoverCursor(Point p);

    QAbstractScrollArea* scrollArea() const;
    void scrollTo(double x, double y);
    EditorScene scene(const QRect& visible);

    EditorContext m_context;
    std::unique_ptr<EditorGesture> m_gesture;
    bool m_savedMouseTracking = false;
    QRect m_overlayArea;
    QRect m_transformFrameArea;
    LineDamage m_damage;
    ScaledImageCache m_imageCache;
    EditorPainter m_painter;
    ShownImages m_shownImages;
    bool m_hasOwnImage = false;
    bool m_hasOtherImage = false;
    LineColor m_lineColor;
    bool m_dropHighlight = false;
    NudgeSteps m_nudges;
};

} // namespace plyra
