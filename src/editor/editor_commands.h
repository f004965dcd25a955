// SPDX-License-Identifier: MIT
#pragma once

#include "editor/view_geometry.h"
#include "model/morph_line.h"

#include <Qt>

#include <vector>

namespace plyra {

class MorphEditorDataSource;

/// The editor's keys and selection commands on the document: nudging and deleting the
/// selected lines, Select All, Select None, Select Attached, Clear, the bounding box of
/// the selection, and the selection pass that ends a left-button gesture. Every change
/// goes through the data source's undoable operations and the lines' undoable setters.
/// Threads: main thread only.
class EditorCommands {
public:
    EditorCommands(MorphEditorDataSource& dataSource, unsigned track, ViewMapping mapping);

    /// Arrows nudge and Backspace or Delete delete the selected lines; every other key,
    /// and every key without a selection, does nothing.
    void keyDown(int key, Qt::KeyboardModifiers modifiers);
    /// Moves the lines by one view unit in the arrow's direction: with Ctrl only their
    /// start points, with Alt alone only their end points.
    void moveLines(const std::vector<MorphLine::Ptr>& lines, int key, Qt::KeyboardModifiers modifiers);
    void deleteSelectedLines();

    void selectAll();
    void selectNone();
    /// Extends the selection along joins to every line reachable from it.
    void selectAttachedLines();
    /// Deletes the selected lines, in selection order.
    void clear();
    /// Selects the line after the last selected one (next) or before the first selected
    /// one; the first or the last line when none is selected. False, and the selection
    /// stays, when there is no such line.
    bool selectAdjacentLine(bool next);
    /// The bounding box of the selected lines in view units (the zero rectangle for none).
    ViewRect rectOfSelectedLines() const;

    /// After a left-button gesture: the lines within 5 units of p are selected (with
    /// Ctrl toggled); the others are deselected when deselectFarLines is set.
    void selectLinesNear(Point p, bool toggle, bool deselectFarLines);

    static bool isArrowKey(int key);
    static bool isDeleteKey(int key);

private:
    void deselect(const MorphLine::Ptr& line);
    void moveLine(const MorphLine::Ptr& line, Point delta, bool startOnly, bool endOnly, bool skipEnd);

    MorphEditorDataSource& m_dataSource;
    unsigned m_track;
    ViewMapping m_mapping;
};

/// The index of line in lines, or lines.size() when it is not there.
std::size_t indexOfLine(const std::vector<MorphLine::Ptr>& lines, const MorphLine* line);

/// The square of the hit tolerance of 5 view units.
inline constexpr float kHitToleranceSquared = 25.0f;
/// The square of the distance of 1 view unit that a press must travel to drag.
inline constexpr float kDragThresholdSquared = 1.0f;

} // namespace plyra
