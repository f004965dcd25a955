// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace plyra {

/// Units per second of every movie Plyra makes, and of the media it appends.
inline constexpr int32_t kMovieTimeScale = 600;

/// A point or span on a movie's time line: a 64-bit count of 1/scale seconds.
/// Threads: a plain value.
struct MovieTime {
    /// Set on a time that has no end (an open-ended range); never on stored sample times.
    static constexpr uint32_t kIndefinite = 1;

    int64_t value = 0;
    int32_t scale = kMovieTimeScale;
    uint32_t flags = 0;

    static MovieTime zero(int32_t timeScale = kMovieTimeScale) { return {0, timeScale, 0}; }
    bool isIndefinite() const { return (flags & kIndefinite) != 0; }
    double seconds() const;
    /// The same time in another scale, truncated towards zero.
    MovieTime convertedTo(int32_t timeScale) const;
    /// The value in another scale, truncated towards zero.
    int64_t valueIn(int32_t timeScale) const;
};

bool operator==(const MovieTime& a, const MovieTime& b);
bool operator<(const MovieTime& a, const MovieTime& b);

/// A start time and a duration.
/// Threads: a plain value.
struct MovieTimeRange {
    MovieTime time;
    MovieTime duration;

    MovieTime end() const;
};

bool operator==(const MovieTimeRange& a, const MovieTimeRange& b);

/// A 32-bit code whose bytes, most significant first, are four characters ("mp4v").
using FourCharCode = uint32_t;

/// The code of the first four bytes of a text; shorter texts are padded with zero bytes.
FourCharCode fourCharCode(std::string_view text);
/// The four characters of a code; zero bytes become blanks.
std::string fourCharCodeString(FourCharCode code);

} // namespace plyra
