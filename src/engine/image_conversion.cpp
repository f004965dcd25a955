// SPDX-License-Identifier: MIT
#include "engine/image_conversion.h"

#include "platform/log.h"

namespace plyra {

std::optional<Bitmap> bitmapFromImage(const Image& image, const RenderOptions& options)
{
    if (image.isNull())
        return std::nullopt;
    Rect rect = image.extent();
    if (rect.isInfinite()) {
        // An image defined everywhere has no size of its own; keep its origin and cut it.
        rect.width = 1024.0f;
        rect.height = 1024.0f;
        logLine(formatString("-[%s %s] Trimmed infinite rect to arbitrary finite rect", "NSBitmapImageRep",
                             "bitmapWithCIImage:"));
    }
    // The renderer truncates the size toward zero and leaves uncovered pixels transparent.
    return renderToBitmap(image, rect, options);
}

} // namespace plyra
