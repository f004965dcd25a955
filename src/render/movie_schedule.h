// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"

#include <cstddef>
#include <cstdint>

namespace plyra {

/// One frame of a movie as it plays: which computed frame it shows (0 is the first frame
/// rendered) and for how long, in 600ths of a second.
struct ScheduledFrame {
    std::uint32_t source = 0;
    std::int64_t duration = 0;

    bool operator==(const ScheduledFrame&) const = default;
};

/// The order and durations in which a movie plays its computed frames. Forth: every
/// computed frame once, the first lasting the start hold longer and the last the end
/// hold. With ping-pong the movie then runs back, from the last frame but one to the
/// first, each for one frame's time; the last frame is shown once, and the first frame
/// at the end is not held again, so that a looping movie pauses on each image once per
/// round. A numbered image sequence has no durations: a held frame is repeated as many
/// times as the hold lasts at the frame rate. Repeated frames are never computed again.
/// Threads: a plain value.
class MovieSchedule {
public:
    MovieSchedule(std::uint32_t computedFrames, float framesPerSecond, const MovieTiming& timing);

    std::uint32_t computedFrames() const { return m_computed; }
    /// One frame's time, without holds.
    std::int64_t frameDuration() const { return m_frameDuration; }

    /// The frames of the movie, in playing order.
    std::size_t movieFrameCount() const;
    ScheduledFrame movieFrame(std::size_t index) const;
    /// When frame `index` starts: the sum of the durations before it.
    std::int64_t movieFrameStart(std::size_t index) const;
    /// The sum of the durations.
    std::int64_t movieDuration() const;

    /// The files of a numbered sequence, in order: which computed frame each one is.
    std::size_t sequenceFileCount() const;
    std::uint32_t sequenceSource(std::size_t fileIndex) const;
    /// The first file that shows a computed frame.
    std::size_t firstSequenceFile(std::uint32_t source) const;

private:
    std::uint32_t backFrames() const;

    std::uint32_t m_computed;
    std::int64_t m_frameDuration;
    std::int64_t m_holdStart;
    std::int64_t m_holdEnd;
    std::size_t m_startRepeats;
    std::size_t m_endRepeats;
    bool m_pingPong;
};

} // namespace plyra
