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

/// Writes pictures as an animated GIF that loops for ever, through FFmpeg: a first pass
/// makes one palette of 256 colours from all frames (palettegen), a second maps each
/// frame onto it with error diffusion (paletteuse), so that photographs show no bands,
/// and FFmpeg's GIF encoder compresses it. Frame delays are whole hundredths of a
/// second, spread so that the animation keeps its timing on average.
/// Threads: one thread at a time; writers share nothing, so several may run at once.
class AnimatedGifWriter {
public:
    /// Frame number `index` (0 to count − 1), premultiplied RGBA, bottom row first; none,
    /// with the reason in status, when it cannot be had. Each frame is asked for twice,
    /// once per pass, in order.
    using FrameSource = std::function<std::optional<RgbaImage>(std::size_t index, MovieStatus* status)>;

    /// Writes the frames of `timing` of `width` × `height` pixels to path. The file is
    /// written beside path and renamed into place only when complete; a failure leaves
    /// path as it was and says which step failed.
    static MovieStatus write(const std::string& path, int width, int height, const AnimationTiming& timing,
                             const FrameSource& frames);
};

} // namespace plyra
