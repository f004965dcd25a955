// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor_gesture.h"

#include <memory>

namespace plyra {

/// Chooses the gesture that a press starts: the right button, or the left one with Meta
/// held, selects; a left press on a handle of the selection's transform frame
/// transforms, whatever else lies there; Alt alone draws; near a line's start or end drags that point; near
/// the line elsewhere (or anywhere with Shift alone) moves lines; elsewhere draws.
/// Null for an event that is not a press. The data source must be set.
std::unique_ptr<EditorGesture> chooseGesture(const EditorContext& context, const GestureEvent& press);

} // namespace plyra
