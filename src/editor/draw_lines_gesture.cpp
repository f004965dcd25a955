// SPDX-License-Identifier: MIT
#include "editor/draw_lines_gesture.h"

#include "editor/counterpart_placement.h"
#include "editor/editor_commands.h"
#include "model/morph_editor_data_source.h"
#include "platform/undo_manager.h"

namespace plyra {

DrawLinesGesture::DrawLinesGesture(const EditorContext& context, const GestureEvent& press)
    : LeftButtonGesture(context, press, press.location)
    , m_anchor(press.location)
    , m_rubberBand(press.location)
{
    if (context.predictsCounterparts)
        m_counterparts.emplace(counterpartsFrom(*context.dataSource, context.track, context.dataSource->morphLines()));
}

std::optional<LineEnds> DrawLinesGesture::overlay() const
{
    return LineEnds{m_anchor, m_rubberBand};
}

bool DrawLinesGesture::step(const GestureEvent& event)
{
    using Type = GestureEvent::Type;
    m_rubberBand = event.location;
    // Only a press, or a release that ends a drag, places a point: the release of a
    // click (and every move) just moves the rubber band.
    if (event.type == Type::LeftDown || (event.type == Type::LeftUp && dragged()))
        return place(event.location, event.type == Type::LeftUp);
    return false;
}

bool DrawLinesGesture::place(Point p, bool release)
{
    // A click beside the view places nothing and the drawing goes on.
    if (!m_context.mapping.contains(p))
        return false;
    MorphEditorDataSource& dataSource = *m_context.dataSource;
    if (squaredDistance(m_anchor, p) < kHitToleranceSquared) {
        EditorCommands(dataSource, m_context.track, m_context.mapping).selectNone();
        return true;
    }
    const MorphLine::Ptr line = makeLine(m_anchor, p);
    dataSource.insertObjectInMorphLinesAtIndex(line, dataSource.morphLines().size());
    dataSource.insertObjectInSelectedLinesAtIndex(line, dataSource.selectedLines().size());
    if (m_previousLine) {
        m_previousLine->attachLineAtEnd(line, &dataSource.undoManager());
        dataSource.undoManager().setActionName("Create lines");
    }
    if (release)
        return true;
    m_previousLine = line;
    m_anchor = p;
    setReference(p);
    return false;
}

MorphLine::Ptr DrawLinesGesture::makeLine(Point start, Point end) const
{
    // No undo for a line that is not in the document yet.
    const MorphLine::Ptr line = MorphLine::create();
    const Point unitStart = m_context.mapping.toUnit(start);
    const Point unitEnd = m_context.mapping.toUnit(end);
    line->setStartPoint(unitStart, m_context.track, nullptr);
    line->setEndPoint(unitEnd, m_context.track, nullptr);
    const unsigned other = otherTrack(m_context.track);
    line->setStartPoint(m_counterparts ? m_counterparts->counterpart(unitStart) : unitStart, other, nullptr);
    line->setEndPoint(m_counterparts ? m_counterparts->counterpart(unitEnd) : unitEnd, other, nullptr);
    return line;
}

} // namespace plyra
