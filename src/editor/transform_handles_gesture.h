// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor_gesture.h"
#include "editor/selection_points.h"
#include "editor/transform_frame.h"

namespace plyra {

/// Drags a handle of the selection's transform frame: a corner scales the selected
/// points about the opposite corner (Shift: one factor for both axes; Ctrl: about the
/// centre), an edge scales one axis, the zone just outside a corner turns them about the
/// centre (Shift: in steps of 15°). Only the editor's track changes; the whole drag is
/// one undo step "Transform Lines", and Escape puts the points back and ends it.
/// Threads: main thread only.
class TransformHandlesGesture final : public EditorGesture {
public:
    TransformHandlesGesture(const EditorContext& context, const GestureEvent& press, TransformFrame frame,
        FrameHit hit);

    void handle(const GestureEvent& event) override;
    void finish() override;
    bool tracksKeys() const override { return true; }
    bool showsTransformFrame() const override { return true; }
    bool drawsRoughly() const override { return true; }

private:
    AffineTransform transformTo(Point pointer, Qt::KeyboardModifiers modifiers) const;
    void end(bool keep);

    TransformFrame m_frame;
    FrameHit m_hit;
    Point m_press;
    SelectionPoints m_points;
    AffineTransform m_current;
};

} // namespace plyra
