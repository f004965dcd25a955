// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

namespace plyra {

class UndoManager;

/// Makes consecutive arrow-key nudges of the same selection one undo step "Move Line":
/// a nudge within a second of the previous one, with the same lines selected and no other
/// step in between, joins the previous nudge's step.
/// Threads: main thread only.
class NudgeSteps {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    static constexpr std::chrono::milliseconds kJoinInterval{1000};

    NudgeSteps();
    /// For tests, a clock that does not follow the wall.
    void setClock(Clock clock) { m_clock = std::move(clock); }

    /// Runs one nudge of the selection, inside the previous nudge's step when it continues it.
    void nudge(UndoManager& undo, const std::vector<MorphLine::Ptr>& selection, const std::function<void()>& move);

private:
    bool continuesLastNudge(const UndoManager& undo, const std::vector<const MorphLine*>& selection) const;

    Clock m_clock;
    std::chrono::steady_clock::time_point m_lastTime;
    std::uint64_t m_lastStep = 0;
    std::vector<const MorphLine*> m_lastSelection;
};

} // namespace plyra
