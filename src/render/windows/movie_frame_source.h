// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace plyra {

class AsyncMovieWriter;
class MovieFrameDecoder;
class MovieMedia;

/// Reads a movie that may still be growing on its writer's thread: its frame times and
/// decoded frames, taken only when the movie's lock is free at once, so that the thread
/// showing the movie never waits for the encoder. One decoder stays open, so frames
/// shown one after the other are decoded once each.
/// Threads: main thread; the writer appends on its own thread under the movie lock.
class MovieFrameSource {
public:
    MovieFrameSource();
    ~MovieFrameSource();
    MovieFrameSource(const MovieFrameSource&) = delete;
    MovieFrameSource& operator=(const MovieFrameSource&) = delete;

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

    /// Decodes a frame, top row first; none when the movie was busy or the frame cannot
    /// be decoded (busy() tells which).
    std::optional<QImage> decode(std::size_t index);
    bool wasBusy() const { return m_busy; }

private:
    AsyncMovieWriter* m_writer = nullptr;
    const MovieMedia* m_media = nullptr;
    std::unique_ptr<MovieFrameDecoder> m_decoder;
    std::vector<std::int64_t> m_frameTimes;
    std::int64_t m_duration = 0;
    bool m_busy = false;
};

} // namespace plyra
