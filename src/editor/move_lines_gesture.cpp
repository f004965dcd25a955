// SPDX-License-Identifier: MIT
#include "editor/move_lines_gesture.h"

#include "model/morph_editor_data_source.h"

#include <algorithm>

namespace plyra {

MoveLinesGesture::MoveLinesGesture(const EditorContext& context, const GestureEvent& press, Point reference,
    std::vector<MorphLine::Ptr> lines)
    : LeftButtonGesture(context, press, reference)
    , m_lines(std::move(lines))
    , m_previousPointer(press.location)
{
}

bool MoveLinesGesture::step(const GestureEvent& event)
{
    const bool released = event.type == GestureEvent::Type::LeftUp;
    // Until the pointer leaves the press point, nothing moves; then it catches up at once.
    if (!moved())
        return released;
    const Point delta{event.location.x - m_previousPointer.x, event.location.y - m_previousPointer.y};
    for (const MorphLine::Ptr& line : m_lines)
        moveLine(line, delta);
    m_previousPointer = event.location;
    if (dragged() && m_lines.size() >= 2)
        keepFarLinesSelected();
    return released;
}

void MoveLinesGesture::moveLine(const MorphLine::Ptr& line, Point delta)
{
    const ViewMapping& mapping = m_context.mapping;
    const unsigned track = m_context.track;
    UndoManager* undo = &m_context.dataSource->undoManager();
    // A start joined to the end of another moving line is carried by that line's end.
    if (!startCarriedByNeighbour(line.get())) {
        const Point start = mapping.lineEnds(*line, track).start;
        const Point moved{start.x + delta.x, start.y + delta.y};
        line->setStartPoint(mapping.toUnit(moved), track, undo);
        setReference(moved);
    }
    const Point end = mapping.lineEnds(*line, track).end;
    line->setEndPoint(mapping.toUnit({end.x + delta.x, end.y + delta.y}), track, undo);
}

bool MoveLinesGesture::startCarriedByNeighbour(const MorphLine* line) const
{
    return std::any_of(m_lines.begin(), m_lines.end(),
        [line](const MorphLine::Ptr& other) { return other->attachedLineAtEnd().get() == line; });
}

} // namespace plyra
