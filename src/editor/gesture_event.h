// SPDX-License-Identifier: MIT
#pragma once

#include "editor/view_geometry.h"

#include <Qt>

#include <cstdint>

namespace plyra {

class MorphEditorDataSource;

/// One event as the editor's gestures see it: the kinds of event their tracking loops
/// fetch, with the pointer already in view units.
/// Threads: a value; main thread.
struct GestureEvent {
    enum class Type { LeftDown, LeftUp, LeftDragged, MouseMoved, RightDown, RightUp, RightDragged, KeyDown };

    Type type = Type::MouseMoved;
    /// The pointer in view units; a key event carries none (see the gesture that reads it).
    Point location;
    Qt::KeyboardModifiers modifiers;
    int key = 0;
    /// When the key was pressed, in milliseconds of the window system's clock; 0 when the
    /// event does not say.
    std::uint64_t timestamp = 0;

    bool isKey() const { return type == Type::KeyDown; }
};

/// The modifiers the gestures and keys look at: Shift, Option (Alt) and Command (Ctrl).
inline Qt::KeyboardModifiers gestureModifiers(Qt::KeyboardModifiers modifiers)
{
    return modifiers & (Qt::ShiftModifier | Qt::AltModifier | Qt::ControlModifier);
}

/// What a gesture works on: the editor's document, its track and its current size,
/// and whether new lines take predicted places in the other track.
/// The editor owns it and keeps it current; gestures hold a reference for their life.
/// Threads: main thread.
struct EditorContext {
    MorphEditorDataSource* dataSource = nullptr;
    unsigned track = 0;
    ViewMapping mapping;
    bool predictsCounterparts = true;
};

} // namespace plyra
