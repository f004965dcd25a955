// SPDX-License-Identifier: MIT
#pragma once

#include "platform/stills/pixel_rows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace plyra {

/// Encodes pictures as lossless TIFF files with libtiff, in memory: LZW with the
/// horizontal predictor, in strips of a few rows. Opaque pictures are stored as RGB,
/// others as RGBA with associated (premultiplied) alpha, byte for byte the picture. The
/// file says its resolution in dots per inch.
/// Threads: any thread; encoders share nothing, so several frames encode at once.
class TiffEncoder {
public:
    /// The file's bytes, or none with the reason in error.
    static std::optional<std::vector<std::uint8_t>> encode(const PixelRows& picture, double dotsPerInch,
                                                           std::string* error = nullptr);
};

} // namespace plyra
