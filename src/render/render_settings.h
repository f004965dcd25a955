// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace plyra {

/// The span of morph time that a render covers: its first frame at location, its last
/// at location + length.
struct MorphTimeRange {
    float location = 0.0f;
    float length = 0.0f;
};

/// A frame size in pixels; a width or height below 1 means "not set yet".
struct FrameSize {
    float width = 0.0f;
    float height = 0.0f;
    bool isSet() const { return width >= 1.0f && height >= 1.0f; }
};

/// How a frame that follows its view keeps an aspect ratio; the values are the order of
/// the choices in the settings sheet.
enum class FrameRatioMode : int32_t { AsFirstImage = 0, AsLastImage = 1, Free = 2 };

/// The track whose image's aspect ratio the mode keeps; none for Free.
std::optional<unsigned> ratioTrack(FrameRatioMode mode);

/// The settings of one render: frame count, rate, size, time range, direction. Each
/// setter answers whether the value changed enough to make rendered frames stale.
/// Threads: main thread (a plain value).
class RenderSettings {
public:
    std::uint32_t numberOfFrames() const { return m_numberOfFrames; }
    bool setNumberOfFrames(std::uint32_t frames);

    float framesPerSecond() const { return m_framesPerSecond; }
    /// Changes below 1e-6 are ignored.
    bool setFramesPerSecond(float fps);

    /// The stored size, which may be unset; see RenderController for the document's size.
    FrameSize storedFrameSize() const { return m_frameSize; }
    /// Changes of at most one pixel in total (width plus height) are ignored.
    bool setFrameSize(FrameSize size);

    MorphTimeRange timeRange() const { return m_timeRange; }
    /// Changes of at most 1e-5 in total (location plus length) are ignored.
    bool setTimeRange(MorphTimeRange range);
    /// Stores the range whatever the change: a time typed exactly is rendered exactly.
    void setExactTimeRange(MorphTimeRange range) { m_timeRange = range; }

    bool reverse() const { return m_reverse; }
    bool setReverse(bool reverse);

    bool sizesToView() const { return m_sizeToView; }
    void setSizeToView(bool sizeToView) { m_sizeToView = sizeToView; }

    FrameRatioMode frameRatioMode() const { return m_frameRatioMode; }
    void setFrameRatioMode(FrameRatioMode mode) { m_frameRatioMode = mode; }

private:
    std::uint32_t m_numberOfFrames = 0;
    float m_framesPerSecond = 0.0f;
    FrameSize m_frameSize;
    MorphTimeRange m_timeRange;
    bool m_sizeToView = false;
    bool m_reverse = false;
    FrameRatioMode m_frameRatioMode = FrameRatioMode::AsFirstImage;
};

/// The morph times of the frames of a render, first frame first. One frame is a still
/// at the start of the range. An easing other than linear shapes how far through the
/// range each frame is (the first frame of the result at progress 0, the last at 1),
/// whichever the direction.
std::vector<float> frameTimes(std::uint32_t numberOfFrames, MorphTimeRange range, bool reverse,
                              Easing easing = Easing::Linear);
/// The morph time of one frame of those (index 0 is the first frame).
float frameTime(std::uint32_t index, std::uint32_t numberOfFrames, MorphTimeRange range, bool reverse,
                Easing easing = Easing::Linear);

/// The grid spacing from the user default "maxSampleInterval": its value when it is 2 or
/// more, else fallback (7 for frames and movies, 6 for the preview strip).
float interpolationFactorFromInterval(std::int64_t maxSampleInterval, float fallback = 7.0f);
/// The same, reading the user default.
float interpolationFactorFromDefaults(float fallback = 7.0f);

/// Progress of a render whose subclass consumes jobs as they finish: for one frame the
/// last job's progress (1 when none is left), else the share of frames consumed.
float renderProgress(std::uint32_t numberOfFrames, std::size_t jobsLeft, float lastJobProgress);

/// The frame size for a view of viewSize under a ratio mode: the view size for "Free" or
/// when the track has no image; else the largest size with the track's aspect ratio that
/// fits the view. imageRatio is the image's own width ÷ height, aspectRatio the
/// document's ratio for the track (0 is taken as 1).
FrameSize frameSizeForView(FrameSize viewSize, FrameRatioMode mode, bool trackHasImage, float imageRatio, float aspectRatio);

} // namespace plyra
