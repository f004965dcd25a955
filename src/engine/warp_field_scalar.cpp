// SPDX-License-Identifier: MIT
// The warp field's node loop in plain scalar code: the reference that the SIMD loop of
// warp_field_hwy.cpp is checked against, bit for bit.

#include "engine/warp_field_internal.h"

#include <algorithm>
#include <cmath>

namespace plyra::warp {

namespace {

struct Sums {
    float firstX = 0.0f, firstY = 0.0f, lastX = 0.0f, lastY = 0.0f;
    float weight = 0.0f, start = 0.0f, end = 0.0f;
};

// The squared distance from the node to the segment. The distance to the foot point is
// formed from the cross product (a·dy − by·dx)² / len², which is the same value as
// (u − F.x)² + (v − F.y)² in fewer operations. p = 0 takes the start point's distance,
// which equals the foot point's there; a line without length has p = 0 and so measures
// the distance to the point it has collapsed to.
float distanceSquared(const LineTerms& l, float x, float a, float p)
{
    if (p <= 0.0f)
        return a * a + l.by2;
    if (p > 1.0f) {
        const float c = l.ex - x;
        return c * c + l.ey2;
    }
    const float cross = a * l.dy - l.byDx;
    return cross * cross * l.invLen2;
}

template <bool kDissolve>
Sums nodeSums(const LineTerms* lines, std::size_t lineCount, float x)
{
    Sums s;
    for (std::size_t k = 0; k < lineCount; ++k) {
        const LineTerms& l = lines[k];
        const float a = x - l.sx;
        const float p = (l.dx * a + l.byDy) * l.invLen2;
        const float d2 = std::max(distanceSquared(l, x, a, p), kMinDistanceSquared);
        const float w = l.weight / d2;
        s.firstX += w * (l.firstA * x + l.firstRowX);
        s.firstY += w * (l.firstB * x + l.firstRowY);
        s.lastX += w * (l.lastA * x + l.lastRowX);
        s.lastY += w * (l.lastB * x + l.lastRowY);
        s.weight += w;
        if constexpr (kDissolve) {
            s.start += w * l.dissolveStart;
            s.end += w * l.dissolveEnd;
        }
    }
    return s;
}

void include(float x, float y, float& minX, float& minY, float& maxX, float& maxY)
{
    minX = std::min(minX, x);
    minY = std::min(minY, y);
    maxX = std::max(maxX, x);
    maxY = std::max(maxY, y);
}

} // namespace

void accumulateRowScalar(const LineTerms* lines, std::size_t lineCount, const float* u,
                         std::size_t count, bool withDissolve, const RowSums& sums)
{
    for (std::size_t i = 0; i < count; ++i) {
        const Sums s = withDissolve ? nodeSums<true>(lines, lineCount, u[i])
                                    : nodeSums<false>(lines, lineCount, u[i]);
        sums.firstX[i] = s.firstX;
        sums.firstY[i] = s.firstY;
        sums.lastX[i] = s.lastX;
        sums.lastY[i] = s.lastY;
        sums.weight[i] = s.weight;
        sums.dissolveStart[i] = s.start;
        sums.dissolveEnd[i] = s.end;
    }
}

void dissolveRow(const RowSums& sums, std::size_t count, float t)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float inverse = 1.0f / sums.weight[i];
        sums.dissolve[i] = usableWeight(sums.weight[i])
            ? dissolveFactor(sums.dissolveStart[i] * inverse, sums.dissolveEnd[i] * inverse, t)
            : 0.0f;
    }
}

void finishRowScalar(const RowFinish& row, const RowSums& sums, Bounds& b)
{
    for (std::size_t i = 0; i < row.count; ++i) {
        const float u = row.u[i];
        const float inverse = 1.0f / sums.weight[i];
        float uA = u + sums.firstX[i] * inverse, vA = row.v + sums.firstY[i] * inverse;
        float uB = u + sums.lastX[i] * inverse, vB = row.v + sums.lastY[i] * inverse;
        float f = row.uniformDissolve ? row.dissolve : sums.dissolve[i];
        if (!usableWeight(sums.weight[i]) || !std::isfinite(uA) || !std::isfinite(vA)
            || !std::isfinite(uB) || !std::isfinite(vB)) {
            // No line (or no usable weight) at this node: it samples its own position in
            // both images and the picture simply cross-dissolves.
            uA = uB = u;
            vA = vB = row.v;
            f = row.plainDissolve;
        }
        float* c = row.nodes + 4 * i;
        c[0] = row.width * uA;
        c[1] = row.height * vA;
        c[2] = row.width * uB;
        row.lastY[i] = row.height * vB;
        // The row is floored in single precision and half the dissolve factor added in
        // double, so f / 2 never carries into the next row.
        c[3] = static_cast<float>(static_cast<double>(std::floor(row.lastY[i])) + 0.5 * static_cast<double>(f));
        include(uA - u, vA - row.v, b.minFirstX, b.minFirstY, b.maxFirstX, b.maxFirstY);
        include(uB - u, vB - row.v, b.minLastX, b.minLastY, b.maxLastX, b.maxLastY);
    }
}

float dissolveFactor(float start, float end, float t)
{
    const float span = end - start;
    if (std::fabs(static_cast<double>(span)) > 0.0001) {
        if (static_cast<double>(start) - 0.0001 >= static_cast<double>(t))
            return 0.0f;
        float f = (t - start) / span;
        if (!(f < 1.0f))
            f = 1.0f;
        if (f < 0.0f)
            f = 0.0f;
        return f;
    }
    if (static_cast<double>(start) >= 0.0001)
        return static_cast<double>(t) > static_cast<double>(start) + 0.0001 ? 1.0f : 0.0f;
    return 1.0f;
}

} // namespace plyra::warp
