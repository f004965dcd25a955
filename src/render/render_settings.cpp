// SPDX-License-Identifier: MIT
#include "render/render_settings.h"

#include "platform/qt/user_defaults.h"
#include "platform/qt/user_defaults_keys.h"
#include "render/easing.h"

#include <cmath>

namespace plyra {

bool RenderSettings::setNumberOfFrames(std::uint32_t frames)
{
    if (frames == m_numberOfFrames)
        return false;
    m_numberOfFrames = frames;
    return true;
}

bool RenderSettings::setFramesPerSecond(float fps)
{
    if (!(std::fabs(fps - m_framesPerSecond) > 1e-6f))
        return false;
    m_framesPerSecond = fps;
    return true;
}

bool RenderSettings::setFrameSize(FrameSize size)
{
    if (!(std::fabs(size.width - m_frameSize.width) + std::fabs(size.height - m_frameSize.height) > 1.0f))
        return false;
    m_frameSize = size;
    return true;
}

bool RenderSettings::setTimeRange(MorphTimeRange range)
{
    if (!(std::fabs(range.location - m_timeRange.location) + std::fabs(range.length - m_timeRange.length) > 1e-5f))
        return false;
    m_timeRange = range;
    return true;
}

bool RenderSettings::setReverse(bool reverse)
{
    if (reverse == m_reverse)
        return false;
    m_reverse = reverse;
    return true;
}

std::vector<float> frameTimes(std::uint32_t numberOfFrames, MorphTimeRange range, bool reverse, Easing easing)
{
    std::vector<float> times;
    times.reserve(numberOfFrames);
    for (std::uint32_t i = 0; i < numberOfFrames; ++i)
        times.push_back(frameTime(i, numberOfFrames, range, reverse, easing));
    return times;
}

namespace {

// An eased frame: its progress through the movie, eased, placed in the range from the
// end the movie starts at.
float easedFrameTime(std::uint32_t index, std::uint32_t numberOfFrames, MorphTimeRange range, bool reverse,
                     Easing easing)
{
    const double progress = easedProgress(easing, static_cast<double>(index) / static_cast<double>(numberOfFrames - 1));
    const double span = static_cast<double>(range.length) * progress;
    const double start = static_cast<double>(range.location);
    return static_cast<float>(reverse ? start + static_cast<double>(range.length) - span : start + span);
}

} // namespace

float frameTime(std::uint32_t index, std::uint32_t numberOfFrames, MorphTimeRange range, bool reverse, Easing easing)
{
    if (easing != Easing::Linear && numberOfFrames > 1)
        return easedFrameTime(index, numberOfFrames, range, reverse, easing);
    // The product in single precision, the rest in double, as the frame times of
    // earlier documents were computed; one frame has no span and sits at the start.
    const float product = static_cast<float>(index) * range.length;
    float t = range.location;
    if (numberOfFrames > 1)
        t = static_cast<float>(static_cast<double>(range.location)
            + static_cast<double>(product) / static_cast<double>(numberOfFrames - 1));
    // Reversed, the frames run from the end of the range back to its start: the
    // mirror image of t within the range.
    if (reverse)
        t = (range.location + range.length) - (t - range.location);
    return t;
}

float interpolationFactorFromInterval(std::int64_t maxSampleInterval, float fallback)
{
    return maxSampleInterval >= 2 ? static_cast<float>(maxSampleInterval) : fallback;
}

float interpolationFactorFromDefaults(float fallback)
{
    return interpolationFactorFromInterval(UserDefaults::standard().integer(QLatin1String(DefaultsKey::kMaxSampleInterval)), fallback);
}

float renderProgress(std::uint32_t numberOfFrames, std::size_t jobsLeft, float lastJobProgress)
{
    if (numberOfFrames == 1)
        return jobsLeft == 0 ? 1.0f : lastJobProgress;
    return static_cast<float>(1.0 - static_cast<double>(jobsLeft) / static_cast<double>(numberOfFrames));
}

std::optional<unsigned> ratioTrack(FrameRatioMode mode)
{
    switch (mode) {
    case FrameRatioMode::AsFirstImage:
        return 0u;
    case FrameRatioMode::AsLastImage:
        return 1u;
    case FrameRatioMode::Free:
        break;
    }
    return std::nullopt;
}

FrameSize frameSizeForView(FrameSize view, FrameRatioMode mode, bool trackHasImage, float imageRatio, float aspectRatio)
{
    if (!ratioTrack(mode) || !trackHasImage)
        return view;
    const float a = aspectRatio == 0.0f ? 1.0f : aspectRatio;
    if (imageRatio > view.width / view.height)
        return {view.width, view.width / a};
    return {view.height * a, view.height};
}

} // namespace plyra
