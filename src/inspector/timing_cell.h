// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

namespace plyra {

/// The six times the line timing inspector shows, as cells and as timeline handles.
enum class TimingCell {
    StartBegin,
    StartStop,
    EndBegin,
    EndStop,
    DissolveStart,
    DissolveEnd,
};

inline constexpr std::array<TimingCell, 6> kTimingCells = {
    TimingCell::StartBegin, TimingCell::StartStop, TimingCell::EndBegin,
    TimingCell::EndStop, TimingCell::DissolveStart, TimingCell::DissolveEnd,
};

/// The value of each cell, indexed by TimingCell.
using TimingValues = std::array<float, 6>;

inline constexpr std::size_t cellIndex(TimingCell cell)
{
    return static_cast<std::size_t>(cell);
}

} // namespace plyra
