// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace plyra {

/// Records the inverse of every change at the time of the change. All registrations of
/// one pass of the main run loop form one undo step (an automatic group, closed at the
/// end of the pass). Undoing a step runs its inverses in reverse order; what they
/// register becomes the redo step, and redoing registers the undo step again. State that
/// is not undone change by change (a selection) is captured when a step begins and when
/// it ends, and put back after undoing and after redoing the step.
/// Threads: main thread only.
class UndoManager {
public:
    using Action = std::function<void()>;

    UndoManager();
    ~UndoManager();
    UndoManager(const UndoManager&) = delete;
    UndoManager& operator=(const UndoManager&) = delete;

    /// Makes an action that puts back the state of the moment (see the class comment).
    using StateCapture = std::function<Action()>;

    /// target identifies whose action this is, for removeAllActionsWithTarget().
    void registerUndo(const void* target, Action action);
    void setStateCapture(StateCapture capture) { m_capture = std::move(capture); }
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
    /// state it last saved; steps without a name are not edits.
    std::vector<std::uint64_t> namedUndoStepIds() const;
    /// The step being built when it holds changes, else 0.
    std::uint64_t openStepId() const;
    /// The newest step on the undo stack, else 0.
    std::uint64_t lastStepId() const;
    /// Makes the newest undo step the one being built again, so that the changes of this
    /// pass join it. It takes a new identity: a document saved in between counts as
    /// edited. False, and nothing changes, while a step is being built or undone, or
    /// when there is no step.
    bool reopenLastStep();

    /// Calls back after every change of the stacks (menus that show the titles, the
    /// document's edited state); owner identifies the callback for removal.
    void addChangeObserver(const void* owner, std::function<void()> callback);
    void removeChangeObservers(const void* owner);

private:
    struct Entry {
        const void* target;
        Action action;
    };
    struct Group {
        std::vector<Entry> entries;
        std::string name;
        std::uint64_t id = 0;
        Action restoreBefore; // the captured state where the step began
        Action restoreAfter;  // and where it ended
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
    std::vector<std::pair<const void*, std::function<void()>>> m_changeObservers;
    StateCapture m_capture;
    std::shared_ptr<bool> m_alive;
    std::uint64_t m_nextGroupId = 1;
};

} // namespace plyra
