// SPDX-License-Identifier: MIT
#pragma once

#include "platform/stills/pixel_rows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// Encodes pictures as PNG files with libspng, tuned for speed on photographs: every row
/// filtered with one fixed predictor and compressed with zlib's run-length strategy,
/// which is several times faster than the usual settings and still smaller than
/// unfiltered data. Opaque pictures are stored as RGB, others as RGBA with straight
/// alpha (rounded so that multiplying again gives the same bytes back). The file says
/// its resolution (pHYs).
/// Threads: any thread; encoders share nothing, so several frames encode at once.
class PngEncoder {
public:
    /// The file's bytes, or none with the reason in error.
    static std::optional<std::vector<std::uint8_t>> encode(const PixelRows& picture, int dotsPerMeter,
                                                           std::string* error = nullptr);
};

} // namespace plyra
