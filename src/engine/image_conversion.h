// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "platform/image/image.h"
#include "platform/image/renderer.h"

#include <optional>

namespace plyra {

/// Renders an image into a new 8-bit premultiplied RGBA bitmap of its extent: width and
/// height truncated toward zero, origin bottom left, transparent where the image does not
/// cover. An infinite extent is cut to 1024 × 1024 from its unchanged origin, with the log
/// line "-[NSBitmapImageRep bitmapWithCIImage:] Trimmed infinite rect to arbitrary finite
/// rect". Nothing for a null image.
/// Threads: any thread.
std::optional<Bitmap> bitmapFromImage(const Image& image, const RenderOptions& options = {});

} // namespace plyra
