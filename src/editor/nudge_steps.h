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
/// step in between, joins the previous nudge's step. The second is measured between the
/// key presses, not their handling, so that presses queued on a busy machine still join.
/// Threads: main thread only.
class NudgeSteps {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    static constexpr std::chrono::milliseconds kJoinInterval{1000};

    NudgeSteps();
    /// The time of key presses that carry none; for tests, a clock that does not follow the wall.
    void setClock(Clock clock) { m_clock = std::move(clock); }

    /// Runs one nudge of the selection, inside the previous nudge's step when it continues
    /// it. keyTime is the key event's timestamp in milliseconds, 0 when it has none.
    void nudge(UndoManager& undo, const std::vector<MorphLine::Ptr>& selection, std::uint64_t keyTime,
        const std::function<void()>& move);

private:
    bool continuesLastNudge(const UndoManager& undo, const std::vector<const MorphLine*>& selection) const;

    Clock m_clock;
    std::chrono::milliseconds m_lastTime{0};
    std::uint64_t m_lastStep = 0;
    std::vector<const MorphLine*> m_lastSelection;
};

} // namespace plyra
