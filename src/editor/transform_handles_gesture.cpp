// SPDX-License-Identifier: MIT
#include "editor/transform_handles_gesture.h"

#include "model/morph_editor_data_source.h"
#include "platform/undo_manager.h"

namespace plyra {

TransformHandlesGesture::TransformHandlesGesture(const EditorContext& context, const GestureEvent& press,
    TransformFrame frame, FrameHit hit)
    : EditorGesture(context)
    , m_frame(frame)
    , m_hit(hit)
    , m_press(press.location)
    , m_points(*context.dataSource, context.track, context.mapping)
{
}

void TransformHandlesGesture::handle(const GestureEvent& event)
{
    using Type = GestureEvent::Type;
    if (isFinished())
        return;
    if (event.isKey()) {
        if (event.key == Qt::Key_Escape)
            end(false);
        return;
    }
    if (event.type != Type::LeftDragged && event.type != Type::LeftUp)
        return;
    m_current = transformTo(event.location, event.modifiers);
    if (event.type == Type::LeftUp)
        end(true);
    else
        m_points.moveTo(m_current);
}

void TransformHandlesGesture::finish()
{
    if (!isFinished())
        end(true);
}

AffineTransform TransformHandlesGesture::transformTo(Point pointer, Qt::KeyboardModifiers modifiers) const
{
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    if (m_hit.rotates)
        return m_frame.rotation(m_press, pointer, shift);
    return m_frame.scaling(m_hit.handle, m_press, pointer, shift, modifiers.testFlag(Qt::ControlModifier));
}

void TransformHandlesGesture::end(bool keep)
{
    setFinished();
    if (!keep) {
        m_points.cancel();
        return;
    }
    m_points.commit(m_current);
    // The editor holds the gesture's undo group open: a drag that changed nothing
    // leaves an empty group, which is dropped with its name.
    m_context.dataSource->undoManager().setActionName("Transform Lines");
}

} // namespace plyra
