// SPDX-License-Identifier: MIT
#include "render/windows/movie_frame_times.h"

#include "render/async_movie_writer.h"

#include <algorithm>

namespace plyra {

void MovieFrameTimes::setWriter(AsyncMovieWriter* writer)
{
    m_writer = writer;
    m_frameTimes.clear();
    m_duration = 0;
}

bool MovieFrameTimes::refresh()
{
    if (!m_writer)
        return true;
    if (!m_writer->tryLock())
        return false;
    // A movie being written only grows: only the frames appended since are new.
    const Movie& movie = m_writer->movie();
    const std::vector<std::int64_t> appended = movie.frameTimes(m_frameTimes.size());
    m_frameTimes.insert(m_frameTimes.end(), appended.begin(), appended.end());
    m_duration = movie.duration().valueIn(kMovieTimeScale);
    m_writer->unlock();
    return true;
}

std::optional<std::size_t> MovieFrameTimes::frameIndexAt(std::int64_t time) const
{
    if (m_frameTimes.empty())
        return std::nullopt;
    const auto after = std::upper_bound(m_frameTimes.begin(), m_frameTimes.end(), time);
    if (after == m_frameTimes.begin())
        return 0;
    return static_cast<std::size_t>(after - m_frameTimes.begin() - 1);
}

} // namespace plyra
