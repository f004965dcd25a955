// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QVariantList>

#include <optional>

class QAction;

namespace plyra {

class UndoManager;

/// Enqueued on the default notification queue, about its document, by a document window
/// whenever its frame window opens, closes or shows another time, so that the inspector
/// panel moves its timeline marker.
inline constexpr const char* kFrameTimeUpdatedNotification = "frameTimeUpdated";

/// What the inspector panel asks of the document window in front. The document window
/// (a top-level QWidget) implements it; the panel finds it by dynamic_cast on the window
/// that became active or on that window's parents, so a render window created as a child
/// of its document window counts as that document's window.
/// Threads: main thread only.
class InspectableWindow {
public:
    virtual ~InspectableWindow() = default;

    /// The selected objects of the window's document in selection order: its selected
    /// lines, each made with selectionItem() (inspector_selection.h). Anything else in the
    /// list is an object no inspector knows, which the panel logs.
    virtual QVariantList currentSelection() const = 0;
    /// The object that notifications about the window's document carry; the panel
    /// follows those of the window in front only.
    virtual const void* documentNotificationObject() const = 0;
    /// The undo manager of the window's document; the inspectors register their edits there.
    virtual UndoManager* documentUndoManager() = 0;
    /// Whether the document has both a first and a last image (dissolving needs both).
    virtual bool documentHasBothImages() const = 0;
    /// The morph time shown in the window's frame window, or nothing while none is open.
    virtual std::optional<float> frameWindowTime() const = 0;
    /// The window's own Undo and Redo, which the panel offers (with their shortcuts)
    /// while it has the keyboard.
    virtual QList<QAction*> editActions() const = 0;
};

} // namespace plyra
