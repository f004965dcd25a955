// SPDX-License-Identifier: MIT
#include "editor/selection_points.h"

#include "editor/transform_frame.h"
#include "model/morph_editor_data_source.h"
#include "platform/undo_manager.h"

namespace plyra {

SelectionPoints::SelectionPoints(MorphEditorDataSource& dataSource, unsigned track, const ViewMapping& mapping)
    : m_dataSource(dataSource)
    , m_track(track)
    , m_mapping(mapping)
{
    for (const MorphLine::Ptr& line : dataSource.selectedLines())
        m_lines.push_back({line, mapping.lineEnds(*line, track), line->startPoint(track), line->endPoint(track)});
}

void SelectionPoints::moveTo(const AffineTransform& map) const
{
    set(map, nullptr);
    // Without undo the setters post nothing; one line's notice covers the document.
    if (!m_lines.empty())
        m_lines.front().line->notify();
}

void SelectionPoints::cancel() const
{
    restore();
    if (!m_lines.empty())
        m_lines.front().line->notify();
}

void SelectionPoints::commit(const AffineTransform& map) const
{
    restore();
    set(map, &m_dataSource.undoManager());
}

void SelectionPoints::restore() const
{
    for (const Taken& taken : m_lines) {
        taken.line->setStartPoint(taken.unitStart, m_track, nullptr);
        taken.line->setEndPoint(taken.unitEnd, m_track, nullptr);
    }
}

void SelectionPoints::set(const AffineTransform& map, UndoManager* undo) const
{
    // A point that the map moves too little to be recorded (a fixed point, give or take
    // rounding) keeps its place exactly, so that undo restores every point as it was.
    auto moved = [&](Point view, Point unit) {
        const Point to = m_mapping.toUnit(map.apply(view));
        return MorphLine::isPointMove(unit, to) ? to : unit;
    };
    // A point shared by two selected lines is set twice to the same place; the second
    // setting is no change.
    for (const Taken& taken : m_lines) {
        taken.line->setStartPoint(moved(taken.ends.start, taken.unitStart), m_track, undo);
        taken.line->setEndPoint(moved(taken.ends.end, taken.unitEnd), m_track, undo);
    }
}

void flipSelectionHorizontally(MorphEditorDataSource& dataSource, unsigned track, const ViewMapping& mapping)
{
    const std::optional<ViewRect> box = selectedPointsBox(dataSource, track, mapping);
    if (!box)
        return;
    const SelectionPoints points(dataSource, track, mapping);
    // A group of its own, so that the name goes to this step only, and a flip that
    // changes nothing (a symmetric selection) leaves no step and renames none.
    UndoManager& undo = dataSource.undoManager();
    undo.beginUndoGrouping();
    // x ↦ left + right − x.
    points.commit(AffineTransform{-1.0f, 0.0f, 0.0f, 1.0f, 2.0f * box->x + box->width, 0.0f});
    undo.setActionName("Flip Lines");
    undo.endUndoGrouping();
}

} // namespace plyra
