// SPDX-License-Identifier: MIT
// The sampling row loop in SIMD: lanes are consecutive output pixels. Grid values come
// from a table lookup within the vector (or a gather when the nodes lie closer than the
// lanes allow); each image row is read with gathers of 8-byte texel pairs, the texel row
// the next output rows need is prefetched, and the bilinear weights and the blend are
// applied in 16-bit fixed point to two channels per 32-bit pixel lane. Also the grid
// rows' interpolation between node rows.
#include "engine/sample_coords_kernels_internal.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/sample_coords_row_hwy.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep
#include <hwy/cache_control.h>
#include <hwy/highway.h>

PLYRA_NO_FP_CONTRACT

HWY_BEFORE_NAMESPACE();
namespace plyra::sampling {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR
// One lane cannot hold the four channels of a pixel; the plain loop is this target's.
void SampleRow(const RowJob& job)
{
    sampleRowScalar(job, 0, job.width);
}

#else

using DF = hn::ScalableTag<float>;
using DI = hn::RebindToSigned<DF>;
using DU = hn::RebindToUnsigned<DF>;
using DU8 = hn::Repartition<std::uint8_t, DU>;
using DW16 = hn::Repartition<std::uint16_t, DU>;
using DS16 = hn::RebindToSigned<DW16>;
using VF = hn::Vec<DF>;
using VI = hn::Vec<DI>;
using VU = hn::Vec<DU>;
using VS16 = hn::Vec<DS16>;

/// Channels 0 and 2 (even) and 1 and 3 (odd) of the lanes' pixels, each in one 16-bit
/// half of its pixel's 32-bit lane, in fixed point with 7 fraction bits. Splitting a pixel
/// in place keeps every lane on its own pixel: a per-pixel weight needs only to be
/// copied into both halves, and no lane ever has to move between vector halves.
struct ChannelPairs {
    VS16 even;
    VS16 odd;
};

/// A per-pixel value (0…32767) in both 16-bit halves of its pixel's lane.
HWY_INLINE VS16 spread(VI weight)
{
    return hn::BitCast(DS16(), hn::Or(weight, hn::ShiftLeft<16>(weight)));
}

/// RGBA bytes of the lanes' pixels as channels times 128 (they fit in 15 bits).
HWY_INLINE ChannelPairs split(VU pixels)
{
    const DS16 d16;
    const VU mask = hn::Set(DU(), 0x7F807F80u);
    return {hn::BitCast(d16, hn::And(hn::ShiftLeft<7>(pixels), mask)),
            hn::BitCast(d16, hn::And(hn::ShiftRight<1>(pixels), mask))};
}

/// a + (b − a)·w, rounded, as mulFixed15 does it; with a and b scaled by 128 this is
/// sampleRowScalar's a·128 + ((b − a)·128)·w, since (b − a)·128 = b·128 − a·128 exactly.
HWY_INLINE VS16 lerpFixed(VS16 a, VS16 b, VS16 w)
{
    return hn::Add(a, hn::MulFixedPoint15(hn::Sub(b, a), w));
}

HWY_INLINE ChannelPairs lerpPairs(const ChannelPairs& a, const ChannelPairs& b, VS16 w)
{
    return {lerpFixed(a.even, b.even, w), lerpFixed(a.odd, b.odd, w)};
}

HWY_INLINE VI clampIndex(VI v, VI low, VI high)
{
    return hn::Min(hn::Max(v, low), high);
}

/// Float to integer, truncating, for values known to fit: one instruction where the
/// generic conversion also has to handle overflow.
HWY_INLINE VI truncateInRange(VF v)
{
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
    return VI{_mm512_cvttps_epi32(v.raw)};
#elif HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX2
    return VI{_mm256_cvttps_epi32(v.raw)};
#elif HWY_ARCH_X86
    return VI{_mm_cvttps_epi32(v.raw)};
#else
    return hn::ConvertTo(DI(), v);
#endif
}

/// The texels at the lanes' pixel indexes and the texels just after them.
struct TexelPairs {
    VU left;
    VU right;
};

/// Reads 8-byte pairs of neighbouring texels: half as many gathered elements as reading
/// the two texels of a row separately, and gathers bound the loop.
HWY_INLINE TexelPairs gatherPairs(const std::uint32_t* pixels, VI index)
{
    const DU du;
    const hn::Half<DI> dh;
    const hn::Rebind<std::int64_t, hn::Half<DI>> d64;
    const hn::RebindToUnsigned<decltype(d64)> du64;
    const VI bytes = hn::ShiftLeft<2>(index);
    const auto base = reinterpret_cast<const std::uint64_t*>(pixels);
    const auto lo = hn::BitCast(du, hn::GatherOffset(du64, base, hn::PromoteTo(d64, hn::LowerHalf(dh, bytes))));
    const auto hi = hn::BitCast(du, hn::GatherOffset(du64, base, hn::PromoteTo(d64, hn::UpperHalf(dh, bytes))));
    return {hn::ConcatEven(du, hi, lo), hn::ConcatOdd(du, hi, lo)};
}

/// Asks for the texels two rows below the upper taps of the vector's first pixel, which
/// the output rows after this one read. Gathered reads alone leave the hardware
/// prefetchers too little to follow, so without this every new texel row waits on
/// memory (a third of the time of a frame); one row ahead hides less of the wait.
HWY_INLINE void prefetchNextRow(const ImageTaps& taps, int topIndex)
{
    const int next = std::max(std::min(topIndex + 2 * taps.stride, taps.lastIndex), 0);
    hwy::Prefetch(taps.pixels + next);
    hwy::Prefetch(taps.pixels + std::max(std::min(next + 16, taps.lastIndex), 0));
}

/// m_a·x + m_b·y + t as sampleFixed computes it. Without the cross term (m_b = 0) the
/// sum differs at most in the sign of a zero, which floors and converts alike.
HWY_INLINE VF texelCoordinate(float a, float b, float t, VF x, VF y, bool crossTerm)
{
    const DF df;
    const VF ax = hn::Mul(hn::Set(df, a), x);
    return hn::Add(crossTerm ? hn::Add(ax, hn::Mul(hn::Set(df, b), y)) : ax, hn::Set(df, t));
}

/// Bilinear read of one image at output positions (x, y): channels with 7 fraction bits.
/// Kept in one piece: it is the inner loop, and its steps mirror sampleFixed one to one.
HWY_INLINE ChannelPairs sampleImage(const ImageTaps& taps, VF x, VF y)
{
    const DF df;
    const DI di;
    const Matrix& m = taps.toTexel;
    VF u = texelCoordinate(m.m11, m.m21, m.tX, x, y, m.m21 != 0.0f);
    VF v = texelCoordinate(m.m22, m.m12, m.tY, y, x, m.m12 != 0.0f);
    u = hn::Min(hn::Max(u, hn::Set(df, -2.0f)), hn::Set(df, taps.maxU));
    v = hn::Min(hn::Max(v, hn::Set(df, -2.0f)), hn::Set(df, taps.maxV));
    const VF fu = hn::Floor(u);
    const VF fv = hn::Floor(v);
    const VI i = truncateInRange(fu);
    const VI j = truncateInRange(fv);
    const VI wx = truncateInRange(hn::Mul(hn::Sub(u, fu), hn::Set(df, kWeightScale)));
    const VI wy = truncateInRange(hn::Mul(hn::Sub(v, fv), hn::Set(df, kWeightScale)));

    const VI originX = hn::Set(di, taps.originX);
    const VI lastX = hn::Set(di, taps.lastX);
    const VI originY = hn::Set(di, taps.originY);
    const VI lastY = hn::Set(di, taps.lastY);
    const VI stride = hn::Set(di, taps.stride);
    // Each row is read as one 8-byte pair (texel i0, texel i0 + 1). Where the left texel
    // is clamped to an edge, both taps are that texel, so the pair's weight becomes 0
    // (bitmaps keep spare bytes after their last pixel for the unused right one).
    const auto clamped = hn::Or(hn::Lt(i, originX), hn::Gt(i, hn::Sub(lastX, hn::Set(di, 1))));
    const VS16 weightX = spread(hn::IfThenZeroElse(clamped, wx));
    const VI i0 = hn::Sub(clampIndex(i, originX, lastX), originX);
    const VI j0 = hn::Mul(hn::Sub(clampIndex(j, originY, lastY), originY), stride);
    // Row j + 1 clamps to the next row exactly where row j lies inside [originY, lastY).
    const auto nextRowInside = hn::And(hn::Not(hn::Lt(j, originY)), hn::Lt(j, lastY));
    const VI j1 = hn::Add(j0, hn::IfThenElseZero(nextRowInside, stride));

    const VI topIndex = hn::Add(j1, i0);
    prefetchNextRow(taps, hn::GetLane(topIndex));
    const TexelPairs bottom = gatherPairs(taps.pixels, hn::Add(j0, i0));
    const TexelPairs top = gatherPairs(taps.pixels, topIndex);
    const ChannelPairs lower = lerpPairs(split(bottom.left), split(bottom.right), weightX);
    const ChannelPairs upper = lerpPairs(split(top.left), split(top.right), weightX);
    return lerpPairs(lower, upper, spread(wy));
}

/// Rounds the fixed-point channels to bytes and stores the lanes' pixels, one 32-bit
/// pixel per lane. Channels lie in 0…255·128, so the shifts need no saturation.
HWY_INLINE void storePixels(const ChannelPairs& fixed, std::uint8_t* out)
{
    const DS16 d16;
    const DU du;
    const VS16 half = hn::Set(d16, 64);
    const VU even = hn::BitCast(du, hn::ShiftRight<7>(hn::BitCast(DW16(), hn::Add(fixed.even, half))));
    // (c + 64) >> 7 moved up one byte is (c + 64) << 1 without its low byte.
    const VU odd = hn::BitCast(du, hn::ShiftLeft<1>(hn::Add(fixed.odd, half)));
    const VU pixels = hn::Or(even, hn::And(odd, hn::Set(du, 0xFF00FF00u)));
    hn::StoreU(hn::BitCast(DU8(), pixels), DU8(), out);
}

/// Grid values of one channel for the lanes' pixels: value + delta · t at their columns.
/// Threads: a local of one row loop.
class GridLookup {
public:
    GridLookup(const RowJob& job, int x)
        : m_base(job.column[x])
        , m_columns(hn::LoadU(DI(), job.column + x))
        , m_fraction(hn::LoadU(DF(), job.fraction + x))
        , m_inVector(job.column[x + hn::Lanes(DF()) - 1] - m_base < static_cast<int>(hn::Lanes(DF())))
    {
    }

    VF at(const GridRow& grid, GridRow::Channel channel) const
    {
        const DF df;
        const float* value = grid.value[channel].data();
        const float* delta = grid.delta[channel].data();
        if (m_inVector) {
            const auto indices = hn::IndicesFromVec(df, hn::Sub(m_columns, hn::Set(DI(), m_base)));
            return hn::Add(hn::TableLookupLanes(hn::LoadU(df, value + m_base), indices),
                           hn::Mul(hn::TableLookupLanes(hn::LoadU(df, delta + m_base), indices), m_fraction));
        }
        return hn::Add(hn::GatherIndex(df, value, m_columns),
                       hn::Mul(hn::GatherIndex(df, delta, m_columns), m_fraction));
    }

private:
    int m_base;
    VI m_columns;
    VF m_fraction;
    bool m_inVector;
};

HWY_INLINE ChannelPairs blend(const ChannelPairs& first, const ChannelPairs& last, VF dissolve)
{
    const DF df;
    const DI di;
    // Dissolve factors lie in 0…1, so the product fits an integer before the clamp.
    const VI f = hn::Min(hn::Max(truncateInRange(hn::Mul(dissolve, hn::Set(df, kWeightScale))), hn::Zero(di)),
                         hn::Set(di, kMaxWeight));
    return lerpPairs(first, last, spread(f));
}

void SampleRow(const RowJob& job)
{
    const int lanes = static_cast<int>(hn::Lanes(DF()));
    const GridRow& grid = *job.grid;
    const bool fromLast = !job.twoImages && job.useLastPositions;
    const GridRow::Channel xChannel = fromLast ? GridRow::LastX : GridRow::FirstX;
    const GridRow::Channel yChannel = fromLast ? GridRow::LastY : GridRow::FirstY;
    int x = 0;
    for (; x + lanes <= job.width; x += lanes) {
        const GridLookup lookup(job, x);
        const ChannelPairs first = sampleImage(job.first, lookup.at(grid, xChannel), lookup.at(grid, yChannel));
        if (!job.twoImages) {
            storePixels(first, job.out + 4 * x);
            continue;
        }
        const ChannelPairs last = sampleImage(job.last, lookup.at(grid, GridRow::LastX), lookup.at(grid, GridRow::LastY));
        storePixels(blend(first, last, lookup.at(grid, GridRow::Dissolve)), job.out + 4 * x);
    }
    sampleRowScalar(job, x, job.width);
}

#endif

void InterpolateNodeRows(const float* below, const float* above, float fy, int count, float* value, float* delta)
{
    const hn::ScalableTag<float> df;
    const int lanes = static_cast<int>(hn::Lanes(df));
    const auto t = hn::Set(df, fy);
    int k = 0;
    for (; k + lanes <= count; k += lanes) {
        const auto low = hn::LoadU(df, below + k);
        hn::StoreU(hn::Add(low, hn::Mul(hn::Sub(hn::LoadU(df, above + k), low), t)), df, value + k);
    }
    for (; k < count; ++k)
        value[k] = below[k] + (above[k] - below[k]) * fy;
    k = 0;
    for (; k + lanes < count; k += lanes)
        hn::StoreU(hn::Sub(hn::LoadU(df, value + k + 1), hn::LoadU(df, value + k)), df, delta + k);
    for (; k + 1 < count; ++k)
        delta[k] = value[k + 1] - value[k];
}

void CellsOfPixels(int firstPixel, int count, float origin, float nodesPerPixel, int nodes, int* node, float* fraction)
{
    const hn::ScalableTag<float> df;
    const hn::RebindToSigned<decltype(df)> di;
    const int lanes = static_cast<int>(hn::Lanes(df));
    const auto lowest = hn::Set(df, -1.0f);
    const auto highest = hn::Set(df, float(nodes));
    const auto lastNode = hn::Set(di, std::max(nodes - 2, 0));
    int x = 0;
    for (; x + lanes <= count; x += lanes) {
        const auto pixel = hn::Add(hn::Iota(di, 0), hn::Set(di, firstPixel + x));
        const auto centre = hn::Add(hn::ConvertTo(df, pixel), hn::Set(df, 0.5f));
        const auto g = hn::Mul(hn::Sub(centre, hn::Set(df, origin)), hn::Set(df, nodesPerPixel));
        const auto cell = hn::ConvertTo(di, hn::Floor(hn::Min(hn::Max(g, lowest), highest)));
        const auto k = hn::Min(hn::Max(cell, hn::Zero(di)), lastNode);
        hn::StoreU(k, di, node + x);
        hn::StoreU(hn::Min(hn::Max(hn::Sub(g, hn::ConvertTo(df, k)), hn::Zero(df)), hn::Set(df, 1.0f)), df,
                   fraction + x);
    }
    for (; x < count; ++x)
        cellOf(float(firstPixel + x) + 0.5f, origin, nodesPerPixel, nodes, node[x], fraction[x]);
}

} // namespace HWY_NAMESPACE
} // namespace plyra::sampling
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace plyra::sampling {

HWY_EXPORT(SampleRow);
HWY_EXPORT(InterpolateNodeRows);
HWY_EXPORT(CellsOfPixels);

void cellsOfPixels(int firstPixel, int count, float origin, float nodesPerPixel, int nodes, int* node, float* fraction)
{
    HWY_DYNAMIC_DISPATCH(CellsOfPixels)(firstPixel, count, origin, nodesPerPixel, nodes, node, fraction);
}

void interpolateNodeRows(const float* below, const float* above, float fy, int count, float* value, float* delta)
{
    HWY_DYNAMIC_DISPATCH(InterpolateNodeRows)(below, above, fy, count, value, delta);
}

void sampleRowSimd(const RowJob& job)
{
    HWY_DYNAMIC_DISPATCH(SampleRow)(job);
}

} // namespace plyra::sampling
#endif
