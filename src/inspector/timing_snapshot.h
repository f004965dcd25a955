// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"

#include <array>
#include <vector>

namespace plyra {

/// The six times of every line of some chains, taken before a timeline drag, so that
/// each step of the drag applies its value to the times the drag started from: where
/// the handle is let go decides, not the way it went (a begin dragged past its stop and
/// back leaves the stop where it was, as typing the final value would).
/// Threads: main thread only.
class TimingSnapshot {
public:
    TimingSnapshot() = default;
    /// The times of the given lines and of every line joined to them, directly or not.
    static TimingSnapshot ofChains(const std::vector<MorphLine::Ptr>& lines);

    bool isEmpty() const { return m_entries.empty(); }
    /// Puts the times back without registering undo (their change posts as usual).
    void restore() const;

private:
    struct Entry {
        MorphLine::Ptr line;
        std::array<float, 6> times;
    };
    std::vector<Entry> m_entries;
};

} // namespace plyra
