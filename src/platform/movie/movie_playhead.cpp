// SPDX-License-Identifier: MIT
#include "platform/movie/movie_playhead.h"

#include <algorithm>

namespace plyra {

int64_t MoviePlayhead::currentTime(int64_t duration) const
{
    if (!m_playing)
        return std::clamp<int64_t>(m_time, 0, std::max<int64_t>(duration, 0));
    const auto elapsed = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - m_playStart);
    const int64_t advanced = m_time + elapsed.count() * kMovieTimeScale / 1000000;
    return std::clamp<int64_t>(advanced, 0, std::max<int64_t>(duration, 0));
}

void MoviePlayhead::setCurrentTime(int64_t time, int64_t duration)
{
    m_time = std::clamp<int64_t>(time, 0, std::max<int64_t>(duration, 0));
    m_playStart = Clock::now();
}

bool MoviePlayhead::isPlaying(int64_t duration) const
{
    return m_playing && currentTime(duration) < duration;
}

void MoviePlayhead::play(int64_t duration)
{
    m_time = currentTime(duration);
    if (m_time >= duration)
        m_time = 0;
    m_playing = true;
    m_playStart = Clock::now();
}

void MoviePlayhead::stop(int64_t duration)
{
    m_time = currentTime(duration);
    m_playing = false;
}

void MoviePlayhead::gotoBeginning()
{
    setCurrentTime(0, 0);
}

void MoviePlayhead::gotoEnd(int64_t duration)
{
    setCurrentTime(duration, duration);
}

void MoviePlayhead::gotoPosterTime(int64_t duration)
{
    setCurrentTime(m_posterTime, duration);
}

void MoviePlayhead::gotoNextSelectionPoint(int64_t duration)
{
    const int64_t now = currentTime(duration);
    const int64_t selectionEnd = m_selectionStart + m_selectionDuration;
    if (now < m_selectionStart)
        setCurrentTime(m_selectionStart, duration);
    else if (now < selectionEnd)
        setCurrentTime(selectionEnd, duration);
}

void MoviePlayhead::gotoPreviousSelectionPoint(int64_t duration)
{
    const int64_t now = currentTime(duration);
    const int64_t selectionEnd = m_selectionStart + m_selectionDuration;
    if (now > selectionEnd)
        setCurrentTime(selectionEnd, duration);
    else if (now > m_selectionStart)
        setCurrentTime(m_selectionStart, duration);
}

void MoviePlayhead::stepForward(const std::vector<int64_t>& frameTimes, int64_t duration)
{
    const int64_t now = currentTime(duration);
    m_playing = false;
    const auto next = std::upper_bound(frameTimes.begin(), frameTimes.end(), now);
    setCurrentTime(next == frameTimes.end() ? now : *next, duration);
}

void MoviePlayhead::stepBackward(const std::vector<int64_t>& frameTimes, int64_t duration)
{
    const int64_t now = currentTime(duration);
    m_playing = false;
    // The frame shown now starts at or before `now`; step to the one before it.
    auto shown = std::upper_bound(frameTimes.begin(), frameTimes.end(), now);
    if (shown != frameTimes.begin())
        --shown;
    setCurrentTime(shown == frameTimes.begin() ? 0 : *(shown - 1), duration);
}

void MoviePlayhead::setSelection(int64_t start, int64_t duration)
{
    m_selectionStart = std::max<int64_t>(start, 0);
    m_selectionDuration = std::max<int64_t>(duration, 0);
}

} // namespace plyra
