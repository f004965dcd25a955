// SPDX-License-Identifier: MIT
#pragma once

#include "editor/view_geometry.h"
#include "model/morph_line.h"

#include <QRegion>

#include <vector>

namespace plyra {

/// Remembers where the lines were drawn (their points in view units and whether they
/// were selected) and tells, after a change of the document, which part of the view
/// differs: the old and the new place of every line that moved, appeared, disappeared
/// or changed its selection. So a drag redraws the dragged line and its neighbours,
/// and the other editor, whose track did not change, redraws nothing.
/// Threads: main thread only.
class LineDamage {
public:
    /// The widget region whose drawing differs from the last call's; remembers the
    /// lines as they are now.
    QRegion update(const std::vector<MorphLine::Ptr>& lines, const std::vector<MorphLine::Ptr>& selectedLines,
        unsigned track, const ViewMapping& mapping);
    /// Forgets what was drawn: the next update() reports every line.
    void clear() { m_drawn.clear(); }

private:
    struct Drawn {
        const MorphLine* line;
        LineEnds ends;
        bool selected;
        bool sameAs(const Drawn& other) const;
    };

    std::vector<Drawn> m_drawn;
};

} // namespace plyra
