// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "platform/image/geometry.h"
#include "platform/image/image.h"

namespace plyra {

/// How renderToBitmap splits its work.
struct RenderOptions {
    /// Most threads to use; 0 uses all of them.
    int maxThreads = 0;
    /// Rows per tile; 0 chooses from minimumTilePixels.
    int tileRows = 0;
    /// No tile gets fewer pixels than this (unless the whole picture is smaller).
    int minimumTilePixels = 32768;
};

/// Renders the part `rect` of an image into a new 8-bit premultiplied RGBA bitmap of
/// trunc(rect.width) × trunc(rect.height) pixels, origin bottom left. Bitmap pixel
/// (px, py) shows the image pixel whose lower left corner is (floor(rect.x) + px,
/// floor(rect.y) + py), the origin being limited to ±2^30; pixels whose centre lies
/// outside the image's extent stay fully
/// transparent. Kernel images pull from each input only the region of interest of each
/// tile, rendering inputs that are themselves kernel images into temporary buffers over
/// that region. Row tiles run in parallel on oneTBB workers; a tile never starts nested
/// parallel work. Float images come out clamped to 0…1 and scaled to 0…255.
/// Threads: any thread; the image is only read.
Bitmap renderToBitmap(const Image& image, const Rect& rect, const RenderOptions& options = {});

} // namespace plyra
