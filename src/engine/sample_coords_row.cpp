// SPDX-License-Identifier: MIT
#include "engine/sample_coords_kernels_internal.h"

#include <algorithm>
#include <cmath>

PLYRA_NO_FP_CONTRACT

namespace plyra::sampling {
namespace {

int clampIndex(int value, int low, int high)
{
    return value < low ? low : (value > high ? high : value);
}

int channel(std::uint32_t pixel, int c)
{
    return static_cast<int>((pixel >> (8 * c)) & 0xffu);
}

// Bilinear read of one image at output position (x, y): four channels in 0…255 with 7
// fraction bits. The arithmetic is the SIMD path's, operation for operation.
void sampleFixed(const ImageTaps& taps, float x, float y, int result[4])
{
    const Matrix& m = taps.toTexel;
    float u = (m.m11 * x + m.m21 * y) + m.tX;
    float v = (m.m12 * x + m.m22 * y) + m.tY;
    u = std::min(std::max(u, -2.0f), taps.maxU);
    v = std::min(std::max(v, -2.0f), taps.maxV);
    const float fu = std::floor(u);
    const float fv = std::floor(v);
    const int i = static_cast<int>(fu);
    const int j = static_cast<int>(fv);
    const int wx = static_cast<int>((u - fu) * kWeightScale);
    const int wy = static_cast<int>((v - fv) * kWeightScale);
    const int i0 = clampIndex(i, taps.originX, taps.lastX) - taps.originX;
    const int i1 = clampIndex(i + 1, taps.originX, taps.lastX) - taps.originX;
    const int j0 = (clampIndex(j, taps.originY, taps.lastY) - taps.originY) * taps.stride;
    const int j1 = (clampIndex(j + 1, taps.originY, taps.lastY) - taps.originY) * taps.stride;
    const std::uint32_t p00 = taps.pixels[j0 + i0];
    const std::uint32_t p10 = taps.pixels[j0 + i1];
    const std::uint32_t p01 = taps.pixels[j1 + i0];
    const std::uint32_t p11 = taps.pixels[j1 + i1];
    for (int c = 0; c < 4; ++c) {
        const int a00 = channel(p00, c);
        const int a01 = channel(p01, c);
        const int bottom = (a00 * 128) + mulFixed15((channel(p10, c) - a00) * 128, wx);
        const int top = (a01 * 128) + mulFixed15((channel(p11, c) - a01) * 128, wx);
        result[c] = bottom + mulFixed15(top - bottom, wy);
    }
}

std::uint8_t toByte(int fixed)
{
    return static_cast<std::uint8_t>((fixed + 64) >> 7);
}

} // namespace

void sampleRowScalar(const RowJob& job, int begin, int end)
{
    const GridRow& g = *job.grid;
    for (int x = begin; x < end; ++x) {
        const int k = job.column[x];
        const float t = job.fraction[x];
        auto at = [&](GridRow::Channel ch) { return g.value[ch][k] + g.delta[ch][k] * t; };
        std::uint8_t* out = job.out + 4 * x;
        int first[4];
        if (!job.twoImages) {
            if (job.useLastPositions)
                sampleFixed(job.first, at(GridRow::LastX), at(GridRow::LastY), first);
            else
                sampleFixed(job.first, at(GridRow::FirstX), at(GridRow::FirstY), first);
            for (int c = 0; c < 4; ++c)
                out[c] = toByte(first[c]);
            continue;
        }
        int last[4];
        sampleFixed(job.first, at(GridRow::FirstX), at(GridRow::FirstY), first);
        sampleFixed(job.last, at(GridRow::LastX), at(GridRow::LastY), last);
        const int f = std::min(std::max(static_cast<int>(at(GridRow::Dissolve) * kWeightScale), 0), kMaxWeight);
        for (int c = 0; c < 4; ++c)
            out[c] = toByte(first[c] + mulFixed15(last[c] - first[c], f));
    }
}

} // namespace plyra::sampling
