// SPDX-License-Identifier: MIT
#pragma once

#include "editor/gesture_event.h"

#include <optional>

namespace plyra {

/// One mouse gesture of the editor, from the press that starts it to the event that ends
/// it. The editor feeds it the events one by one, in the order its tracking loop would
/// fetch them, and draws what it shows while it runs.
/// Threads: main thread only.
class EditorGesture {
public:
    virtual ~EditorGesture() = default;
    EditorGesture(const EditorGesture&) = delete;
    EditorGesture& operator=(const EditorGesture&) = delete;

    /// Handles one event; kinds the gesture does not track are ignored.
    virtual void handle(const GestureEvent& event) = 0;
    /// Ends the gesture where it stands, for a command that must not run inside it.
    virtual void finish() = 0;
    bool isFinished() const { return m_finished; }

    /// Whether the gesture takes the key events while it runs (otherwise the editor
    /// handles them as usual).
    virtual bool tracksKeys() const { return false; }
    /// Whether it needs pointer moves while no button is held.
    virtual bool tracksPointerWithoutButton() const { return false; }

    /// The segment stroked on top of the view while the gesture runs, in view units.
    virtual std::optional<LineEnds> overlay() const { return std::nullopt; }
    /// The dashed selection rectangle; empty outside a rectangle drag.
    virtual ViewRect selectionRect() const { return {}; }
    /// Whether the selection's transform frame stays shown while the gesture runs.
    virtual bool showsTransformFrame() const { return false; }
    /// Whether the lines are drawn without antialiasing while the gesture runs: a drag
    /// that moves many lines at every mouse move, where speed matters more than smooth
    /// edges. The view is drawn smooth again when the gesture ends.
    virtual bool drawsRoughly() const { return false; }

protected:
    explicit EditorGesture(const EditorContext& context)
        : m_context(context)
    {
    }
    void setFinished() { m_finished = true; }

    const EditorContext& m_context;

private:
    bool m_finished = false;
};

} // namespace plyra
