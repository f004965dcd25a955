// SPDX-License-Identifier: MIT
#pragma once

#include "editor/left_button_gesture.h"
#include "model/morph_line.h"

#include <vector>

namespace plyra {

/// Moves lines with the pointer: the selection when the pressed line is selected, else
/// the pressed line alone. A point shared by two moving lines moves once. Dragging two
/// or more lines keeps the whole selection. The whole drag is one "Move Line" step.
/// Threads: main thread only.
class MoveLinesGesture final : public LeftButtonGesture {
public:
    MoveLinesGesture(const EditorContext& context, const GestureEvent& press, Point reference,
        std::vector<MorphLine::Ptr> lines);

    const std::vector<MorphLine::Ptr>& movingLines() const { return m_lines; }

protected:
    bool step(const GestureEvent& event) override;

private:
    void moveLine(const MorphLine::Ptr& line, Point delta);
    bool startCarriedByNeighbour(const MorphLine* line) const;

    std::vector<MorphLine::Ptr> m_lines;
    Point m_previousPointer;
};

} // namespace plyra
