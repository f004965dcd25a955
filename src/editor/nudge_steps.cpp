// SPDX-License-Identifier: MIT
#include "editor/nudge_steps.h"

#include "platform/undo_manager.h"

namespace plyra {

NudgeSteps::NudgeSteps()
    : m_clock([] { return std::chrono::steady_clock::now(); })
{
}

void NudgeSteps::nudge(UndoManager& undo, const std::vector<MorphLine::Ptr>& selection, std::uint64_t keyTime,
    const std::function<void()>& move)
{
    std::vector<const MorphLine*> lines;
    lines.reserve(selection.size());
    for (const MorphLine::Ptr& line : selection)
        lines.push_back(line.get());
    using std::chrono::milliseconds;
    const milliseconds now = keyTime != 0 ? milliseconds(static_cast<milliseconds::rep>(keyTime))
                                          : std::chrono::duration_cast<milliseconds>(m_clock().time_since_epoch());
    // A time that runs backwards (the window system's clock wrapped) continues nothing.
    const milliseconds since = now - m_lastTime;
    if (continuesLastNudge(undo, lines) && since >= milliseconds(0) && since <= kJoinInterval)
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
