// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor_gesture.h"

namespace plyra {

/// What the left-button gestures share: the tracking loop's handling of keys (arrows
/// and Delete act at once; Escape, Return and Enter end the gesture), the "dragged" flag
/// measured from a reference point, and the selection pass after the gesture.
/// Subclasses handle the mouse events of their mode.
/// Threads: main thread only.
class LeftButtonGesture : public EditorGesture {
public:
    void handle(const GestureEvent& event) final;
    void finish() override;
    bool tracksKeys() const override { return true; }

protected:
    LeftButtonGesture(const EditorContext& context, const GestureEvent& press, Point reference);

    /// Handles one mouse event of the mode; true when the gesture ends with it.
    virtual bool step(const GestureEvent& event) = 0;

    bool dragged() const { return m_dragged; }
    /// Whether the pointer has left the press point by more than the drag threshold of
    /// 1 unit: a click without motion moves nothing.
    bool moved() const { return m_moved; }
    void setReference(Point reference) { m_reference = reference; }
    /// Keeps the lines away from the pointer selected after the gesture.
    void keepFarLinesSelected() { m_deselectFarLines = false; }
    bool hasMouseEvent() const { return m_hasMouseEvent; }
    Point pointer() const { return m_pointer; }

private:
    void end(Point finalPointer);

    Qt::KeyboardModifiers m_modifiers;
    Point m_press;
    Point m_reference;
    Point m_pointer;
    bool m_dragged = false;
    bool m_moved = false;
    bool m_deselectFarLines;
    bool m_hasMouseEvent = false;
};

} // namespace plyra
