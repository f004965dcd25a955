// SPDX-License-Identifier: MIT
#include "platform/image/renderer.h"

#include "platform/image/kernel.h"
#include "platform/image/region_renderer_internal.h"
#include "platform/log.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <cmath>

namespace plyra {
namespace {

// A bitmap larger than this (1 GiB of pixels) is refused rather than attempted.
constexpr double kMaxPixels = double(1 << 28);

int truncatedSize(float value)
{
    if (!(value > 0.0f))
        return 0;
    return value >= float(1 << 30) ? (1 << 30) : static_cast<int>(value);
}

// Pixel coordinates are ints; origins further out than this (the infinite rectangle's
// lies near -FLT_MAX / 2) are pulled in to it, where no finite image has content.
int originPixel(float value)
{
    const double limit = double(1 << 30);
    return static_cast<int>(std::clamp(std::floor(double(value)), -limit, limit));
}

int tileRowsFor(const RenderOptions& options, int width)
{
    if (options.tileRows > 0)
        return options.tileRows;
    const int minimumPixels = std::max(options.minimumTilePixels, 1);
    return std::max(1, (minimumPixels + width - 1) / std::max(width, 1));
}

} // namespace

Bitmap renderToBitmap(const Image& image, const Rect& rect, const RenderOptions& options)
{
    const int width = truncatedSize(rect.width);
    const int height = truncatedSize(rect.height);
    if (width == 0 || height == 0 || rect.isNull())
        return {};
    if (double(width) * double(height) > kMaxPixels) {
        logLine(formatString("renderToBitmap: refusing a %d x %d bitmap", width, height));
        return {};
    }
    Bitmap bitmap(width, height);
    const int originX = originPixel(rect.x);
    const int originY = originPixel(rect.y);
    const int rowsPerTile = tileRowsFor(options, width);
    const int tiles = (height + rowsPerTile - 1) / rowsPerTile;

    auto renderTiles = [&](const tbb::blocked_range<int>& range) {
        for (int tile = range.begin(); tile != range.end(); ++tile) {
            const int firstRow = tile * rowsPerTile;
            const PixelRect region{originX, originY + firstRow, width, std::min(rowsPerTile, height - firstRow)};
            renderRegion(image, region, bitmap.row(firstRow), static_cast<std::ptrdiff_t>(bitmap.bytesPerRow()));
        }
    };
    if (options.maxThreads == 1 || tiles == 1) {
        renderTiles(tbb::blocked_range<int>(0, tiles));
        return bitmap;
    }
    tbb::task_arena arena(options.maxThreads > 0 ? options.maxThreads : tbb::task_arena::automatic);
    arena.execute([&] { tbb::parallel_for(tbb::blocked_range<int>(0, tiles, 1), renderTiles); });
    return bitmap;
}

} // namespace plyra
