// SPDX-License-Identifier: MIT
#include "platform/undo_manager.h"

#include "platform/run_loop.h"

#include <cassert>

namespace plyra {

UndoManager::UndoManager()
    : m_alive(std::make_shared<bool>(true))
{
}

UndoManager::~UndoManager()
{
    *m_alive = false;
}

void UndoManager::registerUndo(const void* target, Action action)
{
    if (!isUndoRegistrationEnabled())
        return;
    if (m_openGroups.empty()) {
        assert(m_groupsByEvent || m_state != State::Normal);
        beginUndoGrouping();
        m_autoGroupOpen = true;
        scheduleAutomaticClose();
    }
    if (m_state == State::Normal)
        m_redoStack.clear();
    m_openGroups.back().entries.push_back({target, std::move(action)});
}

void UndoManager::setActionName(const std::string& name)
{
    if (!isUndoRegistrationEnabled())
        return;
    if (!m_openGroups.empty())
        m_openGroups.front().name = name;
    else if (!m_undoStack.empty())
        m_undoStack.back().name = name;
    notifyChanged();
}

void UndoManager::beginUndoGrouping()
{
    const bool newStep = m_openGroups.empty() && m_state == State::Normal;
    m_openGroups.emplace_back();
    m_openGroups.back().id = m_nextGroupId++;
    if (newStep && m_capture)
        m_openGroups.back().restoreBefore = m_capture();
}

void UndoManager::endUndoGrouping()
{
    assert(!m_openGroups.empty());
    Group group = std::move(m_openGroups.back());
    m_openGroups.pop_back();
    if (!m_openGroups.empty()) {
        // A nested group becomes part of its parent.
        Group& parent = m_openGroups.back();
        for (Entry& e : group.entries)
            parent.entries.push_back(std::move(e));
        if (parent.name.empty())
            parent.name = group.name;
        // An explicit group that outlived the pass of its automatic one: both close at
        // the end of this pass.
        if (m_autoGroupOpen && m_openGroups.size() == 1)
            scheduleAutomaticClose();
        return;
    }
    m_autoGroupOpen = false;
    // Closing even an empty group is news: work that waited for the group to close (a
    // result that must become a step of its own) goes on now.
    if (group.entries.empty()) {
        notifyChanged();
        return;
    }
    if (m_state == State::Normal && m_capture)
        group.restoreAfter = m_capture();
    stackBeingBuilt().push_back(std::move(group));
    notifyChanged();
}

int UndoManager::groupingLevel() const
{
    return static_cast<int>(m_openGroups.size());
}

std::vector<UndoManager::Group>& UndoManager::stackBeingBuilt()
{
    return m_state == State::Undoing ? m_redoStack : m_undoStack;
}

void UndoManager::scheduleAutomaticClose()
{
    if (m_closeScheduled)
        return;
    m_closeScheduled = true;
    // The group of this pass closes when the pass ends. The manager may be gone by then
    // (a closed document), hence the liveness flag.
    std::weak_ptr<bool> alive = m_alive;
    RunLoop::main().callAtEndOfPass([this, alive] {
        if (auto flag = alive.lock(); !flag || !*flag)
            return;
        m_closeScheduled = false;
        // An explicit group opened in this pass (a mouse gesture spanning several
        // passes) still runs inside the automatic one: endUndoGrouping() schedules the
        // close again when it ends, so that later changes do not join this step, and
        // nothing runs in the passes between.
        closeAutomaticGroup();
    });
}

void UndoManager::closeAutomaticGroup()
{
    if (m_autoGroupOpen && m_openGroups.size() == 1)
        endUndoGrouping();
}

bool UndoManager::canUndo() const
{
    if (!m_undoStack.empty())
        return true;
    return m_openGroups.size() == 1 && !m_openGroups.front().entries.empty() && m_state == State::Normal;
}

bool UndoManager::canRedo() const
{
    return !m_redoStack.empty() && m_openGroups.empty();
}

void UndoManager::undo()
{
    // Undo ends the step of the current pass first, so that it is what gets undone.
    closeAutomaticGroup();
    assert(m_openGroups.empty());
    if (m_undoStack.empty())
        return;
    runTopGroup(m_undoStack, State::Undoing);
}

void UndoManager::redo()
{
    closeAutomaticGroup();
    assert(m_openGroups.empty());
    if (m_redoStack.empty())
        return;
    runTopGroup(m_redoStack, State::Redoing);
}

void UndoManager::runTopGroup(std::vector<Group>& from, State state)
{
    Group group = std::move(from.back());
    from.pop_back();
    m_state = state;
    beginUndoGrouping();
    for (auto it = group.entries.rbegin(); it != group.entries.rend(); ++it)
        it->action();
    // Undo puts back the state of the step's beginning, redo that of its end.
    const Action& restore = state == State::Undoing ? group.restoreBefore : group.restoreAfter;
    if (restore)
        restore();
    Group& rebuilt = m_openGroups.back();
    rebuilt.name = group.name;
    rebuilt.id = group.id;
    rebuilt.restoreBefore = std::move(group.restoreBefore);
    rebuilt.restoreAfter = std::move(group.restoreAfter);
    endUndoGrouping();
    m_state = State::Normal;
    notifyChanged();
}

std::string UndoManager::undoActionName() const
{
    if (m_undoStack.empty())
        return {};
    return m_undoStack.back().name;
}

std::string UndoManager::redoActionName() const
{
    if (m_redoStack.empty())
        return {};
    return m_redoStack.back().name;
}

std::string UndoManager::undoMenuItemTitle() const
{
    const std::string name = undoActionName();
    return name.empty() ? std::string("Undo") : "Undo " + name;
}

std::string UndoManager::redoMenuItemTitle() const
{
    const std::string name = redoActionName();
    return name.empty() ? std::string("Redo") : "Redo " + name;
}

void UndoManager::disableUndoRegistration()
{
    ++m_disableCount;
}

void UndoManager::enableUndoRegistration()
{
    assert(m_disableCount > 0);
    if (m_disableCount > 0)
        --m_disableCount;
}

void UndoManager::removeAllActions()
{
    m_undoStack.clear();
    m_redoStack.clear();
    m_openGroups.clear();
    m_autoGroupOpen = false;
    notifyChanged();
}

void UndoManager::removeAllActionsWithTarget(const void* target)
{
    auto strip = [target](std::vector<Group>& groups, bool dropEmpty) {
        for (Group& g : groups)
            std::erase_if(g.entries, [target](const Entry& e) { return e.target == target; });
        if (dropEmpty)
            std::erase_if(groups, [](const Group& g) { return g.entries.empty(); });
    };
    strip(m_undoStack, true);
    strip(m_redoStack, true);
    strip(m_openGroups, false);
    notifyChanged();
}

std::vector<std::uint64_t> UndoManager::namedUndoStepIds() const
{
    std::vector<std::uint64_t> ids;
    for (const Group& group : m_undoStack)
        if (!group.name.empty())
            ids.push_back(group.id);
    return ids;
}

std::uint64_t UndoManager::openStepId() const
{
    for (const Group& group : m_openGroups)
        if (!group.entries.empty())
            return m_openGroups.front().id;
    return 0;
}

std::uint64_t UndoManager::lastStepId() const
{
    return m_undoStack.empty() ? 0 : m_undoStack.back().id;
}

bool UndoManager::reopenLastStep()
{
    if (!m_openGroups.empty() || m_state != State::Normal || m_undoStack.empty() || !isUndoRegistrationEnabled())
        return false;
    m_openGroups.push_back(std::move(m_undoStack.back()));
    m_undoStack.pop_back();
    m_openGroups.back().id = m_nextGroupId++;
    m_autoGroupOpen = true;
    scheduleAutomaticClose();
    return true;
}

int UndoManager::undoStepCount() const
{
    return static_cast<int>(m_undoStack.size());
}

int UndoManager::redoStepCount() const
{
    return static_cast<int>(m_redoStack.size());
}

void UndoManager::addChangeObserver(const void* owner, std::function<void()> callback)
{
    m_changeObservers.emplace_back(owner, std::move(callback));
}

void UndoManager::removeChangeObservers(const void* owner)
{
    std::erase_if(m_changeObservers, [owner](const auto& observer) { return observer.first == owner; });
}

void UndoManager::notifyChanged()
{
    // A copy: an observer may add or remove observers.
    const auto observers = m_changeObservers;
    for (const auto& [owner, callback] : observers)
        callback();
}

} // namespace plyra
