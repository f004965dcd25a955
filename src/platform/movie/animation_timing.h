// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plyra {

/// When each frame of an animation starts, and when the animation ends, in 600ths of a
/// second (the movies' time scale): frames may last different times (a held frame).
/// Threads: a plain value.
struct AnimationTiming {
    std::vector<std::int64_t> startTimes;
    std::int64_t endTime = 0;

    std::size_t frameCount() const { return startTimes.size(); }
    /// The start of frame `index` (or the end, for the index past the last frame) in
    /// another time base of `unitsPerSecond`, rounded, so that durations keep the
    /// animation's pace on average although each is a whole number.
    std::int64_t startIn(std::size_t index, std::int64_t unitsPerSecond) const
    {
        const std::int64_t time = index < startTimes.size() ? startTimes[index] : endTime;
        return (time * unitsPerSecond + 300) / 600;
    }
};

} // namespace plyra
