// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace plyra {

class AsyncMovieWriter;

/// Reads the frame times of a movie that may still be growing on its writer's thread,
/// only when the movie's lock is free at once, so that the thread showing the movie never
/// waits for the encoder.
/// Threads: main thread; the writer appends on its own thread under the movie lock.
class MovieFrameTimes {
public:
    /// The movie to read; null for none. The writer must outlive its use here.
    void setWriter(AsyncMovieWriter* writer);
    bool hasMovie() const { return m_writer != nullptr; }

    /// Reads the frame times and the duration again; false when the movie was busy.
    bool refresh();
    /// Start times of the frames known at the last refresh (time scale 600).
    const std::vector<std::int64_t>& frameTimes() const { return m_frameTimes; }
    /// The movie's duration at the last refresh (time scale 600).
    std::int64_t duration() const { return m_duration; }
    /// The frame shown at a time: the last frame that starts at or before it.
    std::optional<std::size_t> frameIndexAt(std::int64_t time) const;

private:
    AsyncMovieWriter* m_writer = nullptr;
    std::vector<std::int64_t> m_frameTimes;
    std::int64_t m_duration = 0;
};

} // namespace plyra
