// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie_time.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace plyra {

/// The playback state of a movie: the current time, which runs on the steady clock while
/// playing and stops at the end, the selection and the poster time. All times are in the
/// movie's time scale; the movie passes its duration and frame times to each operation.
/// Threads: one thread at a time, like its movie.
class MoviePlayhead {
public:
    using Clock = std::chrono::steady_clock;

    /// The time shown now; while playing it advances with the clock up to `duration`.
    int64_t currentTime(int64_t duration) const;
    void setCurrentTime(int64_t time, int64_t duration);
    bool isPlaying(int64_t duration) const;

    /// Plays from the current time, or from the beginning when it is at the end.
    void play(int64_t duration);
    void stop(int64_t duration);

    void gotoBeginning();
    void gotoEnd(int64_t duration);
    void gotoPosterTime(int64_t duration);
    /// The selection's start or end, whichever comes next after (before) the current time.
    void gotoNextSelectionPoint(int64_t duration);
    void gotoPreviousSelectionPoint(int64_t duration);
    /// To the start of the next (previous) frame; `frameTimes` are the frames' start times
    /// in ascending order.
    void stepForward(const std::vector<int64_t>& frameTimes, int64_t duration);
    void stepBackward(const std::vector<int64_t>& frameTimes, int64_t duration);

    int64_t selectionStart() const { return m_selectionStart; }
    int64_t selectionDuration() const { return m_selectionDuration; }
    void setSelection(int64_t start, int64_t duration);
    int64_t posterTime() const { return m_posterTime; }
    void setPosterTime(int64_t time) { m_posterTime = time; }

private:
    int64_t m_time = 0;
    bool m_playing = false;
    Clock::time_point m_playStart;
    int64_t m_selectionStart = 0;
    int64_t m_selectionDuration = 0;
    int64_t m_posterTime = 0;
};

} // namespace plyra
