// SPDX-License-Identifier: MIT
#pragma once

#include "editor/view_geometry.h"
#include "model/geometry.h"
#include "model/morph_line.h"

#include <vector>

namespace plyra {

class MorphEditorDataSource;
class UndoManager;

/// The selected lines' points at one track as they were when taken, and the moving of
/// them all by one map from there: the map is applied to the points as taken, so a drag
/// that comes back to its start leaves them where they were. Joined ends follow through
/// the lines' setters; the other track stays as it is. While a drag runs the points move
/// without undo; committing registers the whole move from where they were taken, so that
/// many small steps, each too small for the setters to record, undo all the same.
/// Threads: main thread only.
class SelectionPoints {
public:
    SelectionPoints(MorphEditorDataSource& dataSource, unsigned track, const ViewMapping& mapping);

    bool isEmpty() const { return m_lines.empty(); }
    /// Puts every point at map(its place when taken), in view units, without undo.
    void moveTo(const AffineTransform& map) const;
    /// Puts every point back where it was taken, without undo.
    void cancel() const;
    /// The same as one undoable change from the places when taken ("Move Line").
    void commit(const AffineTransform& map) const;

private:
    void set(const AffineTransform& map, UndoManager* undo) const;
    void restore() const;

    struct Taken {
        MorphLine::Ptr line;
        LineEnds ends;
        Point unitStart;
        Point unitEnd;
    };

    MorphEditorDataSource& m_dataSource;
    unsigned m_track;
    ViewMapping m_mapping;
    std::vector<Taken> m_lines;
};

/// Mirrors the selected points of the track about the vertical centre line of their
/// box, as one undoable "Flip Lines". Nothing without a selection.
void flipSelectionHorizontally(MorphEditorDataSource& dataSource, unsigned track, const ViewMapping& mapping);

} // namespace plyra
