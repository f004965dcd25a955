// SPDX-License-Identifier: MIT
#include "platform/image/renderer.h"

#include "platform/image/kernel.h"
#include "platform/image/region_renderer_internal.h"
#include "platform/log.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

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

#if defined(__SANITIZE_THREAD__)
// ThreadSanitizer cannot follow oneTBB's hand-over of tasks, which happens inside the
// uninstrumented libtbb, and would report every tile. Sanitizer builds therefore run the
// same tiles on plain threads taking tiles from a shared counter, which it can follow;
// the work of a tile is the same code either way.
void runTiles(int tiles, int maxThreads, const std::function<void(int)>& renderTile)
{
    const int available = std::max(static_cast<int>(std::thread::hardware_concurrency()), 2);
    const int count = std::min(maxThreads > 0 ? maxThreads : available, tiles);
    std::atomic<int> next{0};
    auto work = [&] {
        for (int tile = next.fetch_add(1); tile < tiles; tile = next.fetch_add(1))
            renderTile(tile);
    };
    std::vector<std::thread> helpers;
    for (int k = 1; k < count; ++k)
        helpers.emplace_back(work);
    work();
    for (std::thread& helper : helpers)
        helper.join();
}
#else
// One arena per thread limit, made once: making a task arena for every render costs
// about a millisecond and, with the oneTBB of Debian 12, several kilobytes that are never
// given back, so a long movie grew by megabytes per thousand frames. Arenas may run work
// from several threads at once.
tbb::task_arena& arenaFor(int maxThreads)
{
    static std::mutex mutex;
    static std::map<int, std::unique_ptr<tbb::task_arena>> arenas;
    std::lock_guard guard(mutex);
    std::unique_ptr<tbb::task_arena>& arena = arenas[maxThreads];
    if (!arena) {
        const int concurrency = maxThreads > 0 ? maxThreads : static_cast<int>(tbb::task_arena::automatic);
        arena = std::make_unique<tbb::task_arena>(concurrency);
    }
    return *arena;
}

void runTiles(int tiles, int maxThreads, const std::function<void(int)>& renderTile)
{
    tbb::task_arena& arena = arenaFor(std::max(maxThreads, 0));
    arena.execute([&] {
        tbb::parallel_for(tbb::blocked_range<int>(0, tiles, 1), [&](const tbb::blocked_range<int>& range) {
            for (int tile = range.begin(); tile != range.end(); ++tile)
                renderTile(tile);
        });
    });
}
#endif

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

    auto renderTile = [&](int tile) {
        const int firstRow = tile * rowsPerTile;
        const PixelRect region{originX, originY + firstRow, width, std::min(rowsPerTile, height - firstRow)};
        renderRegion(image, region, bitmap.row(firstRow), static_cast<std::ptrdiff_t>(bitmap.bytesPerRow()));
    };
    if (options.maxThreads == 1 || tiles == 1) {
        for (int tile = 0; tile < tiles; ++tile)
            renderTile(tile);
    } else {
        runTiles(tiles, options.maxThreads, renderTile);
    }
    return bitmap;
}

} // namespace plyra
