// SPDX-License-Identifier: MIT
#include "editor/nudge_steps.h"

#include "platform/undo_manager.h"

namespace plyra {

NudgeSteps::NudgeSteps()
    : m_clock([] { return std::chrono::steady_clock::now(); })
{
}

void NudgeSteps::nudge(UndoManager& undo, const std::vector<MorphLine::Ptr>& selection, const std::function<void()>& move)
{
    std::vector<const MorphLine*> lines;
    lines.reserve(selection.size());
    for (const MorphLine::Ptr& line : selection)
        lines.push_back(line.get());
    const auto now = m_clock();
    if (continuesLastNudge(undo, lines) && now - m_lastTime <= kJoinInterval)
        undo.reopenLastStep();
    move();
    // A nudge below the setters' threshold registers nothing and continues nothing.
    m_lastStep = undo.openStepId();
    m_lastTime = now;
    m_lastSelection = std::move(lines);
}

bool NudgeSteps::continuesLastNudge(const UndoManager& undo, const std::vector<const MorphLine*>& selection) const
{
    // The step of the last nudge is still being built (two nudges in one pass), or it is
    // the newest step: nothing else was done or undone since.
    const bool sameStep = m_lastStep != 0 && (undo.openStepId() == m_lastStep || undo.lastStepId() == m_lastStep);
    return sameStep && selection == m_lastSelection;
}

} // namespace plyra
