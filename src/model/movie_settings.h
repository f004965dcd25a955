// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace plyra {

/// How the morph's time runs over the frames of a movie: at constant speed, or along one
/// of the cubic Bézier curves CSS names ease-in, ease-out and ease-in-out.
enum class Easing : std::int32_t { Linear = 0, EaseIn = 1, EaseOut = 2, EaseInOut = 3 };

/// The timing of a whole movie beyond its frame times: the easing of those times, how
/// long the first and the last image stay (seconds), and whether the frames run forth
/// and back. The plain value is what documents that store nothing get.
/// Threads: a plain value.
struct MovieTiming {
    Easing easing = Easing::Linear;
    double holdStart = 0.0;
    double holdEnd = 0.0;
    bool pingPong = false;

    bool operator==(const MovieTiming&) const = default;
};

/// The movie a document renders: frame count and rate, the frame size (following the
/// movie window, or fixed, and the ratio it keeps), the span of morph time and its
/// direction, and the timing. The defaults are those of a new movie window.
/// Threads: a plain value.
struct MovieSettings {
    std::uint32_t numberOfFrames = 20;
    float framesPerSecond = 20.0f;
    bool sizeToView = true;
    std::int32_t frameRatioMode = 0;
    float frameWidth = 0.0f;
    float frameHeight = 0.0f;
    float rangeLocation = 0.0f;
    float rangeLength = 1.0f;
    bool reverse = false;
    MovieTiming timing;

    bool operator==(const MovieSettings&) const = default;
};

} // namespace plyra
