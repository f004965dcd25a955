// SPDX-License-Identifier: MIT
#include "platform/image/box_reduce_internal.h"

#include <algorithm>
#include <cstdint>

namespace plyra {
namespace {

// One output row from source rows y0 and y1 (equal at an odd top edge).
void reduceRow(const std::uint8_t* row0, const std::uint8_t* row1, int sourceWidth, std::uint8_t* out,
               int outWidth)
{
    for (int x = 0; x < outWidth; ++x) {
        const int x0 = 2 * x;
        const int x1 = std::min(x0 + 1, sourceWidth - 1);
        for (int c = 0; c < 4; ++c) {
            const unsigned sum = row0[x0 * 4 + c] + row0[x1 * 4 + c] + row1[x0 * 4 + c] + row1[x1 * 4 + c];
            out[x * 4 + c] = static_cast<std::uint8_t>((sum + 2) / 4);
        }
    }
}

} // namespace

Bitmap boxReduceByTwo(const Bitmap& source)
{
    const int outWidth = (source.width() + 1) / 2;
    const int outHeight = (source.height() + 1) / 2;
    Bitmap result(outWidth, outHeight);
    for (int y = 0; y < outHeight; ++y) {
        const int y0 = 2 * y;
        const int y1 = std::min(y0 + 1, source.height() - 1);
        reduceRow(source.row(y0), source.row(y1), source.width(), result.row(y), outWidth);
    }
    return result;
}

} // namespace plyra
