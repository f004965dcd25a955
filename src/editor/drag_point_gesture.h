// SPDX-License-Identifier: MIT
#pragma once

#include "editor/left_button_gesture.h"
#include "model/morph_line.h"

namespace plyra {

/// Drags a line's start or end point to the pointer, with the joined end of a
/// neighbouring line following it. The whole drag is one "Move Line" step.
/// Threads: main thread only.
class DragPointGesture final : public LeftButtonGesture {
public:
    enum class End { Start, End };

    DragPointGesture(const EditorContext& context, const GestureEvent& press, MorphLine::Ptr line, End end);

    std::optional<LineEnds> overlay() const override;

protected:
    bool step(const GestureEvent& event) override;

private:
    MorphLine::Ptr m_line;
    End m_end;
};

} // namespace plyra
