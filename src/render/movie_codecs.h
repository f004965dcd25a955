// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/movie.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace plyra {

/// One entry of the codec choice: its title (a user text) and the four-character code
/// that documents store.
struct CodecChoice {
    const char* title;
    const char* code;
};

/// One entry of the quality choice: its title and the value on the 0–1023 scale.
struct QualityChoice {
    const char* title;
    int value;
};

/// The codecs offered for movies, in the order they are shown.
inline constexpr std::array<CodecChoice, 5> kCodecChoices{{
    {"Pixlet (best for editing)", "pxlt"},
    {"H.264 (best compression)", "avc1"},
    {"mpeg 4 (best compatability)", "mp4v"},
    {"Animation (handles transparency)", "rle "},
    {"Motion JPEG B", "mjpb"},
}};

/// The qualities offered: minimum, low, normal, high, maximum.
inline constexpr std::array<QualityChoice, 5> kQualityChoices{{
    {"Min/smallest", kCodecMinQuality},
    {"Low/small", kCodecLowQuality},
    {"Normal/medium", kCodecNormalQuality},
    {"High/large", kCodecHighQuality},
    {"Max/largest", kCodecMaxQuality},
}};

/// The duration of one frame in 600ths of a second, truncated: 30 at 20 frames per
/// second, 24 at 25, 20 at 30, 25 at 24, 0 at 1000.
std::int64_t frameDurationValue(float framesPerSecond);
/// The movie's duration in 600ths of a second for a number of frames, truncated.
std::int64_t movieDurationValue(std::uint32_t numberOfFrames, float framesPerSecond);

/// Whether a code is one of the codecs offered.
bool isKnownCodec(const std::string& code);

} // namespace plyra
