// SPDX-License-Identifier: MIT
#pragma once

#include "platform/movie/animation_timing.h"
#include "platform/movie/movie_status.h"
#include "platform/movie/rgba_image.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace plyra {

/// Writes pictures as an animated WebP file that loops for ever, with libwebp's
/// animation encoder, each frame lasting its own time to the millisecond. The quality on
/// the 0–1023 scale maps onto WebP's 0–100; the highest quality is lossless. FFmpeg
/// wraps the same encoder but gives the last frame a duration of its own making, so the
/// library is used directly.
/// Threads: one thread at a time; writers share nothing, so several may run at once.
class AnimatedWebpWriter {
public:
    /// Frame number `index`, premultiplied RGBA, bottom row first; none, with the reason in
    /// status, when it cannot be had. Each frame is asked for once, in order.
    using FrameSource = std::function<std::optional<RgbaImage>(std::size_t index, MovieStatus* status)>;

    /// Writes the frames of `timing` of `width` × `height` pixels to path, beside it first
    /// and renamed into place only when complete; a failure leaves path as it was.
    static MovieStatus write(const std::string& path, int width, int height, const AnimationTiming& timing,
                             int quality, const FrameSource& frames);
};

} // namespace plyra
