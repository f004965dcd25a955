// SPDX-License-Identifier: MIT
// The editor's transform frame around a selection (drawing, the pointer over its
// handles), duplicating and flipping the selection, and placing it by prediction.
#include "editor/morph_editor.h"

#include "editor/counterpart_placement.h"
#include "editor/editor_gesture.h"
#include "editor/line_duplication.h"
#include "editor/selection_points.h"
#include "model/morph_editor_data_source.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace plyra {
namespace {

// A circular arrow, the usual sign for turning, drawn dark on a light rim so that it
// shows on any photo.
QCursor makeRotateCursor()
{
    constexpr int kSize = 24;
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle(5.0, 5.0, 14.0, 14.0);
    QPainterPath arrow;
    arrow.arcMoveTo(circle, 90.0);
    arrow.arcTo(circle, 90.0, 270.0);
    const QPolygonF head({QPointF(12.0, 1.0), QPointF(17.0, 5.0), QPointF(12.0, 9.0)});
    for (const auto& [colour, width] : {std::pair{QColor(Qt::white), 4.0}, std::pair{QColor(Qt::black), 2.0}}) {
        painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(arrow);
        painter.setBrush(colour);
        painter.drawPolygon(head);
    }
    return QCursor(pixmap, kSize / 2, kSize / 2);
}

QCursor cursorFor(const FrameHit& hit)
{
    static const QCursor rotate = makeRotateCursor();
    if (hit.rotates)
        return rotate;
    switch (hit.handle) {
    // Widget y runs down: the bottom-left to top-right diagonal is Qt's "backward" one.
    case FrameHandle::BottomLeft:
    case FrameHandle::TopRight: return Qt::SizeBDiagCursor;
    case FrameHandle::BottomRight:
    case FrameHandle::TopLeft: return Qt::SizeFDiagCursor;
    case FrameHandle::Left:
    case FrameHandle::Right: return Qt::SizeHorCursor;
    case FrameHandle::Bottom:
    case FrameHandle::Top: return Qt::SizeVerCursor;
    }
    return {};
}

} // namespace

std::optional<TransformFrame> MorphEditor::shownTransformFrame() const
{
    if (!m_context.dataSource || (m_gesture && !m_gesture->showsTransformFrame()))
        return std::nullopt;
    return TransformFrame::ofSelection(*m_context.dataSource, m_context.track, m_context.mapping);
}

void MorphEditor::updateTransformFrame()
{
    const std::optional<TransformFrame> frame = shownTransformFrame();
    const QRect area = frame ? EditorPainter::transformFrameArea(m_context.mapping, frame->box()) : QRect();
    if (area != m_transformFrameArea) {
        update(QRegion(m_transformFrameArea) | area);
        m_transformFrameArea = area;
    }
    if (m_gesture)
        return;
    // The pointer's moves over the frame choose the cursor.
    setMouseTracking(frame.has_value());
    if (!frame)
        unsetCursor();
}

void MorphEditor::updateHoverCursor(Point p)
{
    const std::optional<TransformFrame> frame = shownTransformFrame();
    const std::optional<FrameHit> hit = frame ? frame->hit(p) : std::nullopt;
    if (hit)
        setCursor(cursorFor(*hit));
    else
        unsetCursor();
}

void MorphEditor::duplicateSelection()
{
    if (!m_context.dataSource || m_context.mapping.width <= 0.0f || m_context.mapping.height <= 0.0f)
        return;
    finishGesture();
    // Right and down by a few units of this view, so that the copy shows beside the original.
    constexpr float kOffset = 10.0f;
    duplicateSelectedLines(*m_context.dataSource, {kOffset / m_context.mapping.width, -kOffset / m_context.mapping.height});
    syncLines();
}

void MorphEditor::flipSelectionHorizontally()
{
    if (!m_context.dataSource)
        return;
    finishGesture();
    plyra::flipSelectionHorizontally(*m_context.dataSource, m_context.track, m_context.mapping);
    syncLines();
}

void MorphEditor::placeSelectionByPrediction()
{
    if (!m_context.dataSource)
        return;
    finishGesture();
    plyra::placeSelectionByPrediction(*m_context.dataSource, m_context.track);
    syncLines();
}

} // namespace plyra
