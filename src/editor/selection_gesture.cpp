// SPDX-License-Identifier: MIT
#include "editor/selection_gesture.h"

#include "editor/editor_commands.h"
#include "editor/view_geometry.h"
#include "model/morph_editor_data_source.h"

namespace plyra {

SelectionGesture::SelectionGesture(const EditorContext& context, const GestureEvent& press)
    : EditorGesture(context)
    , m_pressPoint(press.location)
{
}

void SelectionGesture::handle(const GestureEvent& event)
{
    using Type = GestureEvent::Type;
    if (isFinished())
        return;
    const bool up = event.type == Type::LeftUp || event.type == Type::RightUp;
    const bool drag = event.type == Type::LeftDragged || event.type == Type::RightDragged;
    if (!up && !drag)
        return;
    if (!m_started) {
        begin(event);
        if (up) {
            click();
            setFinished();
            return;
        }
    }
    if (up) {
        m_rect = {};
        setFinished();
        return;
    }
    dragTo(event.location);
}

void SelectionGesture::finish()
{
    m_rect = {};
    setFinished();
}

void SelectionGesture::begin(const GestureEvent& first)
{
    m_started = true;
    m_snapshot = m_context.dataSource->selectedLines();
    // Ctrl as it is at the first event after the press, not at the press.
    m_toggle = gestureModifiers(first.modifiers).testFlag(Qt::ControlModifier);
    m_kind = m_toggle ? Kind::Undecided : Kind::Adding;
}

void SelectionGesture::dragTo(Point p)
{
    m_rect = boxOf(m_pressPoint, p);
    const std::vector<MorphLine::Ptr> lines = m_context.dataSource->morphLines();
    for (const MorphLine::Ptr& line : lines)
        applyToLine(line);
}

void SelectionGesture::applyToLine(const MorphLine::Ptr& line)
{
    MorphEditorDataSource& dataSource = *m_context.dataSource;
    const std::size_t index = indexOfLine(dataSource.selectedLines(), line.get());
    const bool selected = index < dataSource.selectedLines().size();
    const LineEnds ends = m_context.mapping.lineEnds(*line, m_context.track);
    const bool hit = segmentIntersectsRect(ends.start, ends.end, m_rect);
    // With Ctrl, the first line met decides whether the rectangle adds or removes.
    if (hit && m_kind == Kind::Undecided)
        m_kind = selected ? Kind::Removing : Kind::Adding;
    const bool removing = m_kind == Kind::Removing;
    if (hit) {
        if (!selected && !removing)
            dataSource.insertObjectInSelectedLinesAtIndex(line, dataSource.selectedLines().size());
        else if (selected && removing && inSnapshot(line.get()))
            dataSource.removeObjectFromSelectedLinesAtIndex(index);
    } else if (!selected) {
        if (removing && inSnapshot(line.get()))
            dataSource.insertObjectInSelectedLinesAtIndex(line, dataSource.selectedLines().size());
    } else if (!m_toggle || !inSnapshot(line.get())) {
        dataSource.removeObjectFromSelectedLinesAtIndex(index);
    }
}

void SelectionGesture::click()
{
    MorphEditorDataSource& dataSource = *m_context.dataSource;
    const std::optional<std::size_t> nearest
        = nearestLineToClick(dataSource.morphLines(), m_context.mapping, m_context.track, m_pressPoint);
    if (!nearest)
        return;
    const MorphLine::Ptr line = dataSource.morphLines()[*nearest];
    if (!m_toggle) {
        dataSource.setSelectedLines({line});
        return;
    }
    const std::size_t index = indexOfLine(dataSource.selectedLines(), line.get());
    if (index < dataSource.selectedLines().size())
        dataSource.removeObjectFromSelectedLinesAtIndex(index);
    else
        dataSource.insertObjectInSelectedLinesAtIndex(line, dataSource.selectedLines().size());
}

bool SelectionGesture::inSnapshot(const MorphLine* line) const
{
    return indexOfLine(m_snapshot, line) < m_snapshot.size();
}

} // namespace plyra
