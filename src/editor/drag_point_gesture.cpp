// SPDX-License-Identifier: MIT
#include "editor/drag_point_gesture.h"

#include "model/morph_editor_data_source.h"

namespace plyra {

DragPointGesture::DragPointGesture(const EditorContext& context, const GestureEvent& press, MorphLine::Ptr line, End end)
    : LeftButtonGesture(context, press, context.mapping.lineEnds(*line, context.track).start)
    , m_line(std::move(line))
    , m_end(end)
{
}

std::optional<LineEnds> DragPointGesture::overlay() const
{
    if (!hasMouseEvent())
        return std::nullopt;
    const LineEnds ends = m_context.mapping.lineEnds(*m_line, m_context.track);
    return m_end == End::Start ? LineEnds{pointer(), ends.end} : LineEnds{ends.start, pointer()};
}

bool DragPointGesture::step(const GestureEvent& event)
{
    const bool released = event.type == GestureEvent::Type::LeftUp;
    if (!moved())
        return released;
    const Point unit = m_context.mapping.toUnit(event.location);
    UndoManager* undo = &m_context.dataSource->undoManager();
    if (m_end == End::Start) {
        m_line->setStartPoint(unit, m_context.track, undo);
        setReference(event.location);
    } else {
        // The reference stays the line's start point.
        m_line->setEndPoint(unit, m_context.track, undo);
    }
    return released;
}

} // namespace plyra
