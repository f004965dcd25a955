// SPDX-License-Identifier: MIT
#include "editor/editor_commands.h"

#include "editor/gesture_event.h"

#include "model/morph_editor_data_source.h"
#include "platform/log.h"

#include <algorithm>
#include <optional>

namespace plyra {

std::size_t indexOfLine(const std::vector<MorphLine::Ptr>& lines, const MorphLine* line)
{
    const auto it = std::find_if(lines.begin(), lines.end(), [line](const MorphLine::Ptr& l) { return l.get() == line; });
    return static_cast<std::size_t>(it - lines.begin());
}

EditorCommands::EditorCommands(MorphEditorDataSource& dataSource, unsigned track, ViewMapping mapping)
    : m_dataSource(dataSource)
    , m_track(track)
    , m_mapping(mapping)
{
}

bool EditorCommands::isArrowKey(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

bool EditorCommands::isDeleteKey(int key)
{
    // Backspace and Delete; no letter or keypad digit deletes lines on this keyboard.
    return key == Qt::Key_Backspace || key == Qt::Key_Delete;
}

void EditorCommands::keyDown(int key, Qt::KeyboardModifiers modifiers)
{
    if (m_dataSource.selectedLines().empty())
        return;
    if (isArrowKey(key))
        moveLines(m_dataSource.selectedLines(), key, modifiers);
    else if (isDeleteKey(key))
        deleteSelectedLines();
}

void EditorCommands::moveLines(const std::vector<MorphLine::Ptr>& lines, int key, Qt::KeyboardModifiers modifiers)
{
    // One view unit, in unit image coordinates; the sums are taken in double precision.
    Point delta;
    switch (key) {
    case Qt::Key_Up: delta.y = 1.0f; break;
    case Qt::Key_Down: delta.y = -1.0f; break;
    case Qt::Key_Right: delta.x = 1.0f; break;
    case Qt::Key_Left: delta.x = -1.0f; break;
    default: logLine("Didn't move line"); return;
    }
    const Qt::KeyboardModifiers m = gestureModifiers(modifiers);
    const bool startOnly = m.testFlag(Qt::ControlModifier);
    const bool endOnly = m == Qt::AltModifier;
    // A copy: the list may be the selection itself.
    const std::vector<MorphLine::Ptr> moving = lines;
    for (const MorphLine::Ptr& line : moving) {
        // The line joined at this line's end moves that shared point on its own turn.
        const MorphLine::Ptr next = line->attachedLineAtEnd();
        const bool nextMoves = next && indexOfLine(moving, next.get()) < moving.size();
        moveLine(line, delta, startOnly, endOnly, nextMoves);
    }
}

void EditorCommands::moveLine(const MorphLine::Ptr& line, Point delta, bool startOnly, bool endOnly, bool skipEnd)
{
    const float t = timeOfTrack(m_track);
    const double dx = delta.x / static_cast<double>(m_mapping.width);
    const double dy = delta.y / static_cast<double>(m_mapping.height);
    auto nudged = [dx, dy](Point p) {
        return Point{static_cast<float>(p.x + dx), static_cast<float>(p.y + dy)};
    };
    const Point s = nudged(line->startPointAtTime(t));
    const Point e = nudged(line->endPointAtTime(t));
    UndoManager* undo = &m_dataSource.undoManager();
    if (startOnly) {
        line->setStartPoint(s, m_track, undo);
    } else if (endOnly) {
        line->setEndPoint(e, m_track, undo);
    } else {
        line->setStartPoint(s, m_track, undo);
        if (!skipEnd)
            line->setEndPoint(e, m_track, undo);
    }
}

void EditorCommands::deleteSelectedLines()
{
    std::vector<MorphLine::Ptr> doomed;
    for (const MorphLine::Ptr& line : m_dataSource.morphLines())
        if (m_dataSource.isLineSelected(line.get()))
            doomed.push_back(line);
    for (const MorphLine::Ptr& line : doomed) {
        const std::size_t index = indexOfLine(m_dataSource.morphLines(), line.get());
        if (index < m_dataSource.morphLines().size())
            m_dataSource.removeObjectFromMorphLinesAtIndex(index);
    }
}

void EditorCommands::selectAll()
{
    const std::vector<MorphLine::Ptr> lines = m_dataSource.morphLines();
    for (const MorphLine::Ptr& line : lines)
        m_dataSource.insertObjectInSelectedLinesAtIndex(line, m_dataSource.selectedLines().size());
}

void EditorCommands::selectNone()
{
    m_dataSource.setSelectedLines({});
}

void EditorCommands::selectAttachedLines()
{
    auto isSelected = [this](const MorphLine::Ptr& line) { return m_dataSource.isLineSelected(line.get()); };
    bool added = true;
    while (added) {
        added = false;
        // One line at most per selected line and pass, the start side first.
        const std::vector<MorphLine::Ptr> snapshot = m_dataSource.selectedLines();
        for (const MorphLine::Ptr& line : snapshot) {
            MorphLine::Ptr neighbour = line->attachedLineAtStart();
            if (!neighbour || isSelected(neighbour))
                neighbour = line->attachedLineAtEnd();
            if (neighbour && !isSelected(neighbour)) {
                m_dataSource.insertObjectInSelectedLinesAtIndex(neighbour, m_dataSource.selectedLines().size());
                added = true;
            }
        }
    }
}

void EditorCommands::clear()
{
    const std::vector<MorphLine::Ptr> selection = m_dataSource.selectedLines();
    for (const MorphLine::Ptr& line : selection) {
        const std::size_t index = indexOfLine(m_dataSource.morphLines(), line.get());
        if (index < m_dataSource.morphLines().size())
            m_dataSource.removeObjectFromMorphLinesAtIndex(index);
    }
}

bool EditorCommands::selectAdjacentLine(bool next)
{
    const std::vector<MorphLine::Ptr>& lines = m_dataSource.morphLines();
    std::optional<std::size_t> first;
    std::size_t last = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!m_dataSource.isLineSelected(lines[i].get()))
            continue;
        first = first.value_or(i);
        last = i;
    }
    std::optional<std::size_t> target;
    if (lines.empty())
        target = std::nullopt;
    else if (!first)
        target = next ? 0 : lines.size() - 1;
    else if (next && last + 1 < lines.size())
        target = last + 1;
    else if (!next && *first > 0)
        target = *first - 1;
    if (!target)
        return false;
    m_dataSource.setSelectedLines({lines[*target]});
    return true;
}

ViewRect EditorCommands::rectOfSelectedLines() const
{
    const std::vector<MorphLine::Ptr>& selection = m_dataSource.selectedLines();
    ViewRect result;
    for (std::size_t i = 0; i < selection.size(); ++i) {
        const LineEnds ends = m_mapping.lineEnds(*selection[i], m_track);
        const ViewRect box = boxOf(ends.start, ends.end);
        // The first box stands as it is, even when flat; later ones join by the union.
        result = i == 0 ? box : unionRect(result, box);
    }
    return result;
}

void EditorCommands::selectLinesNear(Point p, bool toggle, bool deselectFarLines)
{
    const std::vector<MorphLine::Ptr> lines = m_dataSource.morphLines();
    for (const MorphLine::Ptr& line : lines) {
        const LineEnds ends = m_mapping.lineEnds(*line, m_track);
        const bool selected = m_dataSource.isLineSelected(line.get());
        if (squaredDistanceToSegment(p, ends.start, ends.end) <= kHitToleranceSquared) {
            if (toggle && selected)
                deselect(line);
            else
                m_dataSource.insertObjectInSelectedLinesAtIndex(line, m_dataSource.selectedLines().size());
        } else if (deselectFarLines) {
            deselect(line);
        }
    }
}

void EditorCommands::deselect(const MorphLine::Ptr& line)
{
    // The data source ignores an index that is not below the selection's count.
    m_dataSource.removeObjectFromSelectedLinesAtIndex(indexOfLine(m_dataSource.selectedLines(), line.get()));
}

} // namespace plyra
