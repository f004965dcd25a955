// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor_gesture.h"
#include "model/morph_line.h"

#include <vector>

namespace plyra {

/// The right-button (or Meta-left) gesture: dragging selects the lines that the
/// rectangle meets, live; with Ctrl it adds them to the selection as it was, or removes
/// them from it when the first line met was selected. A click without a drag selects
/// the nearest line at any distance (with Ctrl toggles it).
/// Threads: main thread only.
class SelectionGesture final : public EditorGesture {
public:
    SelectionGesture(const EditorContext& context, const GestureEvent& press);

    void handle(const GestureEvent& event) override;
    void finish() override;
    ViewRect selectionRect() const override { return m_rect; }

private:
    enum class Kind { Undecided, Adding, Removing };

    void begin(const GestureEvent& first);
    void dragTo(Point p);
    void applyToLine(const MorphLine::Ptr& line);
    void click();
    bool inSnapshot(const MorphLine* line) const;

    Point m_pressPoint;
    bool m_started = false;
    bool m_toggle = false;
    Kind m_kind = Kind::Undecided;
    std::vector<MorphLine::Ptr> m_snapshot;
    ViewRect m_rect;
};

} // namespace plyra
