// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
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

    /// Identifies the named steps on the undo stack, oldest first. A step keeps its
    /// identity through undo and redo, so a document can tell whether it is back at the
    /// state it last saved; steps without a name (selection changes) are not edits.
    std::vector<std::uint64_t> namedUndoStepIds() const;

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
        std::uint64_t id = 0;
    };
    enum class State { Normal, Undoing, Redoing };

    std::vector<Group>& stackBeingBuilt();
    void scheduleAutomaticClose();
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
    bool m_closeScheduled = false; // an end-of-pass close is pending
    std::function<void()> m_changed;
    std::shared_ptr<bool> m_alive;
    std::uint64_t m_nextGroupId = 1;
};

} // namespace plyra
