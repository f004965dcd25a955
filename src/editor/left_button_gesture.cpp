// SPDX-License-Identifier: MIT
#include "editor/left_button_gesture.h"

#include "editor/editor_commands.h"
#include "model/morph_editor_data_source.h"

namespace plyra {

LeftButtonGesture::LeftButtonGesture(const EditorContext& context, const GestureEvent& press, Point reference)
    : EditorGesture(context)
    , m_modifiers(gestureModifiers(press.modifiers))
    , m_press(press.location)
    , m_reference(reference)
    , m_pointer(press.location)
    , m_deselectFarLines(!m_modifiers.testFlag(Qt::ControlModifier))
{
}

void LeftButtonGesture::handle(const GestureEvent& event)
{
    using Type = GestureEvent::Type;
    if (isFinished())
        return;
    if (event.isKey()) {
        EditorCommands(*m_context.dataSource, m_context.track, m_context.mapping).keyDown(event.key, event.modifiers);
        // A key event has no pointer of its own: the gesture ends where the last mouse
        // event it handled left the pointer (the press point when there was none), which
        // is where the rubber band or the dragged point is drawn at that moment.
        if (event.key == Qt::Key_Escape || event.key == Qt::Key_Return || event.key == Qt::Key_Enter)
            end(m_pointer);
        return;
    }
    if (event.type != Type::LeftDown && event.type != Type::LeftUp && event.type != Type::LeftDragged
        && event.type != Type::MouseMoved)
        return;
    m_pointer = event.location;
    m_hasMouseEvent = true;
    if (squaredDistance(m_press, event.location) > kDragThresholdSquared)
        m_moved = true;
    if (event.type == Type::LeftDragged && squaredDistance(m_reference, event.location) >= kHitToleranceSquared)
        m_dragged = true;
    if (step(event))
        end(event.location);
}

void LeftButtonGesture::finish()
{
    if (!isFinished())
        end(m_pointer);
}

void LeftButtonGesture::end(Point finalPointer)
{
    setFinished();
    // Shift alone leaves the selection as the gesture left it.
    if (m_modifiers == Qt::ShiftModifier)
        return;
    EditorCommands(*m_context.dataSource, m_context.track, m_context.mapping)
        .selectLinesNear(finalPointer, m_modifiers.testFlag(Qt::ControlModifier), m_deselectFarLines);
}

} // namespace plyra
