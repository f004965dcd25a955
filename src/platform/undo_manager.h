// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace plyra {

/// Records the inverse of every change at the time of the change. All registrations of
/// one pass of the main run loop form one undo step (an automatic group, closed at the
/// end of the pass). Undoing a step runs its inverses in reverse order; what they
/// register becomes the redo step, and redoing registers the undo step again.
/// Threads: main thread only.
class UndoManager {
public:
    using Action = std::function<void()>;

    UndoManager();
    ~UndoManager();
    UndoManager(const UndoManager&) = delete;
    UndoManager& operator=(const UndoManager&) = delete;

    /// target identifies whose action this is, for removeAllActionsWithTarget().
    void registerUndo(const void* target, Action action);
    /// Names the step being built (or, outside a group, the last step on the undo stack).
    void setActionName(const std::string& name);

    void beginUndoGrouping();
    void endUndoGrouping();
    int groupingLevel() const;
    void setGroupsByEvent(bool groupsByEvent) { m_groupsByEvent = groupsByEvent; }
    bool groupsByEvent() const { return m_groupsByEvent; }

    bool canUndo() const;
    bool canRedo() const;
    void undo();
    void redo();
    bool isUndoing() const { return m_state == State::Undoing; }
    bool isRedoing() const { return m_state == State::Redoing; }

    std::string undoActionName() const;
    std::string redoActionName() const;
    /// "Undo X" or "Undo" when the step has no name; likewise "Redo X" / "Redo".
    std::string undoMenuItemTitle() const;
    std::string redoMenuItemTitle() const;

    void disableUndoRegistration();
    void enableUndoRegistration();
    bool isUndoRegistrationEnabled() const { return m_disableCount == 0; }

    void removeAllActions();
    void removeAllActionsWithTarget(const void* target);

    int undoStepCount() const;
    int redoStepCount() const;

    /// Called after every change of the stacks (for menus that show the titles).
    void setChangeCallback(std::function<void()> callback) { m_changed = std::move(callback); }

private:
    struct Entry {
        const void* target;
        Action action;
    };
    struct Group {
        std::vector<Entry> entries;
        std::string name;
    };
    enum class State { Normal, Undoing, Redoing };

    std::vector<Group>& stackBeingBuilt();
    void closeAutomaticGroup();
    void runTopGroup(std::vector<Group>& from, State state);
    void notifyChanged();

    std::vector<Group> m_undoStack;
    std::vector<Group> m_redoStack;
    std::vector<Group> m_openGroups;
    State m_state = State::Normal;
    int m_disableCount = 0;
    bool m_groupsByEvent = true;
    bool m_autoGroupOpen = false;
    std::function<void()> m_changed;
    std::shared_ptr<bool> m_alive;
};

} // namespace plyra
