// SPDX-License-Identifier: MIT
#pragma once

#include "editor/left_button_gesture.h"
#include "model/morph_line.h"
#include "prediction/line_counterparts.h"

#include <optional>

namespace plyra {

/// Draws new lines: a press, drag and release draws one line; clicks draw a chain of
/// joined lines, one per click, until a click within 5 units of the last point, Escape,
/// Return or Enter. Each new line takes in the other track the place that the lines
/// already drawn predict (the same place when prediction is off) and is selected while
/// the drawing runs; the whole drawing is one undo step ("Create lines" once a
/// second line is joined).
/// Threads: main thread only.
class DrawLinesGesture final : public LeftButtonGesture {
public:
    DrawLinesGesture(const EditorContext& context, const GestureEvent& press);

    bool tracksPointerWithoutButton() const override { return true; }
    std::optional<LineEnds> overlay() const override;

protected:
    bool step(const GestureEvent& event) override;

private:
    /// Places a point; true when the drawing ends with it.
    bool place(Point p, bool release);
    MorphLine::Ptr makeLine(Point start, Point end) const;

    Point m_anchor;
    Point m_rubberBand;
    MorphLine::Ptr m_previousLine;
    /// Solved once at the press, from the lines that were there before the drawing.
    std::optional<LineCounterparts> m_counterparts;
};

} // namespace plyra
