// SPDX-License-Identifier: MIT
#include "render/movie_schedule.h"

#include "render/movie_codecs.h"

#include <cassert>
#include <cmath>

namespace plyra {
namespace {

std::int64_t holdDuration(double seconds)
{
    return std::isfinite(seconds) && seconds > 0 ? std::llround(seconds * 600.0) : 0;
}

std::size_t holdRepeats(double seconds, float framesPerSecond)
{
    const double repeats = seconds * static_cast<double>(framesPerSecond);
    return std::isfinite(repeats) && repeats > 0 ? static_cast<std::size_t>(std::llround(repeats)) : 0;
}

} // namespace

MovieSchedule::MovieSchedule(std::uint32_t computedFrames, float framesPerSecond, const MovieTiming& timing)
    : m_computed(computedFrames)
    , m_frameDuration(frameDurationValue(framesPerSecond))
    , m_holdStart(holdDuration(timing.holdStart))
    , m_holdEnd(holdDuration(timing.holdEnd))
    , m_startRepeats(holdRepeats(timing.holdStart, framesPerSecond))
    , m_endRepeats(holdRepeats(timing.holdEnd, framesPerSecond))
    , m_pingPong(timing.pingPong)
{
}

std::uint32_t MovieSchedule::backFrames() const
{
    return m_pingPong && m_computed > 1 ? m_computed - 1 : 0;
}

std::size_t MovieSchedule::movieFrameCount() const
{
    return std::size_t{m_computed} + backFrames();
}

ScheduledFrame MovieSchedule::movieFrame(std::size_t index) const
{
    assert(index < movieFrameCount());
    if (index >= m_computed)
        return {static_cast<std::uint32_t>(2 * std::size_t{m_computed} - 2 - index), m_frameDuration};
    std::int64_t duration = m_frameDuration;
    if (index == 0)
        duration += m_holdStart;
    if (index + 1 == m_computed)
        duration += m_holdEnd;
    return {static_cast<std::uint32_t>(index), duration};
}

std::int64_t MovieSchedule::movieFrameStart(std::size_t index) const
{
    if (index == 0)
        return 0;
    std::int64_t start = static_cast<std::int64_t>(index) * m_frameDuration + m_holdStart;
    if (index >= m_computed)
        start += m_holdEnd;
    return start;
}

std::int64_t MovieSchedule::movieDuration() const
{
    if (m_computed == 0)
        return 0;
    return static_cast<std::int64_t>(movieFrameCount()) * m_frameDuration + m_holdStart + m_holdEnd;
}

std::size_t MovieSchedule::sequenceFileCount() const
{
    if (m_computed == 0)
        return 0;
    return movieFrameCount() + m_startRepeats + m_endRepeats;
}

std::uint32_t MovieSchedule::sequenceSource(std::size_t fileIndex) const
{
    assert(fileIndex < sequenceFileCount());
    // The first frame with its repeats, the frames between, the last with its repeats,
    // then the way back.
    if (fileIndex <= m_startRepeats)
        return 0;
    const std::size_t forth = fileIndex - m_startRepeats;
    const std::size_t last = m_computed - 1;
    if (forth < last)
        return static_cast<std::uint32_t>(forth);
    if (forth <= last + m_endRepeats)
        return static_cast<std::uint32_t>(last);
    return static_cast<std::uint32_t>(movieFrame(forth - m_endRepeats).source);
}

std::size_t MovieSchedule::firstSequenceFile(std::uint32_t source) const
{
    return source == 0 ? 0 : m_startRepeats + source;
}

} // namespace plyra
