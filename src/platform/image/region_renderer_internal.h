// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/image.h"

#include <cstddef>
#include <cstdint>

namespace plyra {

/// A block of whole pixels: x … x + width − 1, y … y + height − 1.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool isEmpty() const { return width <= 0 || height <= 0; }
};

/// Renders one block of an image on the calling thread into 8-bit premultiplied RGBA
/// rows (out points at pixel (region.x, region.y), the next row up is bytesPerRow
/// further). Pixels whose centre lies outside the image's extent are left untouched, so
/// the caller clears the block first. Kernel images pull their inputs over their regions
/// of interest only.
void renderRegion(const Image& image, const PixelRect& region, std::uint8_t* out, std::ptrdiff_t bytesPerRow);

} // namespace plyra
