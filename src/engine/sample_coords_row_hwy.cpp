// SPDX-License-Identifier: MIT
// The sampling row loop in SIMD: lanes are consecutive output pixels. Grid values come
// from a table lookup within the vector (or a gather when the nodes lie closer than the
// lanes allow); each image is read with four gathers of 32-bit RGBA pixels, and the
// bilinear weights and the blend are applied in 16-bit fixed point, four lanes per pixel.
#include "engine/sample_coords_kernels_internal.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/sample_coords_row_hwy.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep
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
using DHalf8 = hn::Half<DU8>;
using DW16 = hn::Rebind<std::uint16_t, DHalf8>;
using DS16 = hn::RebindToSigned<DW16>;
using DHalf32 = hn::Half<DU>;
using DW64 = hn::Rebind<std::uint64_t, DHalf32>;
using VF = hn::Vec<DF>;
using VI = hn::Vec<DI>;
using VU = hn::Vec<DU>;
using VS16 = hn::Vec<DS16>;

/// Fixed-point channels of the lower and the upper half of the lanes' pixels.
struct PixelHalves {
    VS16 lo;
    VS16 hi;
};

/// A per-pixel value (0…32767) repeated over the four channel lanes of its pixel.
HWY_INLINE PixelHalves spread(VI weight)
{
    const DU du;
    const DHalf32 dh;
    const DW64 d64;
    const DS16 d16;
    const VU w = hn::BitCast(du, weight);
    const VU pair = hn::Or(w, hn::ShiftLeft<16>(w));
    auto lo = hn::PromoteTo(d64, hn::LowerHalf(dh, pair));
    auto hi = hn::PromoteTo(d64, hn::UpperHalf(dh, pair));
    lo = hn::Or(lo, hn::ShiftLeft<32>(lo));
    hi = hn::Or(hi, hn::ShiftLeft<32>(hi));
    return {hn::BitCast(d16, lo), hn::BitCast(d16, hi)};
}

/// RGBA bytes of the lanes' pixels as 16-bit channels.
HWY_INLINE PixelHalves unpack(VU pixels)
{
    const DU8 d8;
    const DHalf8 dh8;
    const DW16 d16;
    const DS16 ds16;
    const auto bytes = hn::BitCast(d8, pixels);
    return {hn::BitCast(ds16, hn::PromoteTo(d16, hn::LowerHalf(dh8, bytes))),
            hn::BitCast(ds16, hn::PromoteTo(d16, hn::UpperHalf(dh8, bytes)))};
}

/// a·128 + (b − a)·128·w, rounded, as in sampleRowScalar.
HWY_INLINE VS16 lerpScaled(VS16 a, VS16 b, VS16 w)
{
    return hn::Add(hn::ShiftLeft<7>(a), hn::MulFixedPoint15(hn::ShiftLeft<7>(hn::Sub(b, a)), w));
}

HWY_INLINE VS16 lerpFixed(VS16 a, VS16 b, VS16 w)
{
    return hn::Add(a, hn::MulFixedPoint15(hn::Sub(b, a), w));
}

HWY_INLINE VI clampIndex(VI v, VI low, VI high)
{
    return hn::Min(hn::Max(v, low), high);
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

/// Bilinear read of one image at output positions (x, y): channels with 7 fraction bits.
/// Kept in one piece: it is the inner loop, and its steps mirror sampleFixed one to one.
HWY_INLINE PixelHalves sampleImage(const ImageTaps& taps, VF x, VF y)
{
    const DF df;
    const DI di;
    const DU du;
    const Matrix& m = taps.toTexel;
    VF u = hn::Add(hn::Add(hn::Mul(hn::Set(df, m.m11), x), hn::Mul(hn::Set(df, m.m21), y)), hn::Set(df, m.tX));
    VF v = hn::Add(hn::Add(hn::Mul(hn::Set(df, m.m12), x), hn::Mul(hn::Set(df, m.m22), y)), hn::Set(df, m.tY));
    u = hn::Min(hn::Max(u, hn::Set(df, -2.0f)), hn::Set(df, taps.maxU));
    v = hn::Min(hn::Max(v, hn::Set(df, -2.0f)), hn::Set(df, taps.maxV));
    const VF fu = hn::Floor(u);
    const VF fv = hn::Floor(v);
    const VI i = hn::ConvertTo(di, fu);
    const VI j = hn::ConvertTo(di, fv);
    const VI wx = hn::ConvertTo(di, hn::Mul(hn::Sub(u, fu), hn::Set(df, kWeightScale)));
    const VI wy = hn::ConvertTo(di, hn::Mul(hn::Sub(v, fv), hn::Set(df, kWeightScale)));

    const VI originX = hn::Set(di, taps.originX);
    const VI lastX = hn::Set(di, taps.lastX);
    const VI originY = hn::Set(di, taps.originY);
    const VI lastY = hn::Set(di, taps.lastY);
    const VI stride = hn::Set(di, taps.stride);
    // Each row is read as one 8-byte pair (texel i0, texel i0 + 1). Where the left texel
    // is clamped to an edge, both taps are that texel, so the pair's weight becomes 0
    // (bitmaps keep spare bytes after their last pixel for the unused right one).
    const auto clamped = hn::Or(hn::Lt(i, originX), hn::Gt(i, hn::Sub(lastX, hn::Set(di, 1))));
    const VI wxUsed = hn::IfThenZeroElse(clamped, wx);
    const VI i0 = hn::Sub(clampIndex(i, originX, lastX), originX);
    const VI j0 = hn::Mul(hn::Sub(clampIndex(j, originY, lastY), originY), stride);
    const VI j1 = hn::Mul(hn::Sub(clampIndex(hn::Add(j, hn::Set(di, 1)), originY, lastY), originY), stride);

    const TexelPairs bottom = gatherPairs(taps.pixels, hn::Add(j0, i0));
    const TexelPairs top = gatherPairs(taps.pixels, hn::Add(j1, i0));
    const PixelHalves p00 = unpack(bottom.left);
    const PixelHalves p10 = unpack(bottom.right);
    const PixelHalves p01 = unpack(top.left);
    const PixelHalves p11 = unpack(top.right);
    const PixelHalves weightX = spread(wxUsed);
    const PixelHalves weightY = spread(wy);
    const VS16 bottomLo = lerpScaled(p00.lo, p10.lo, weightX.lo);
    const VS16 bottomHi = lerpScaled(p00.hi, p10.hi, weightX.hi);
    const VS16 topLo = lerpScaled(p01.lo, p11.lo, weightX.lo);
    const VS16 topHi = lerpScaled(p01.hi, p11.hi, weightX.hi);
    return {lerpFixed(bottomLo, topLo, weightY.lo), lerpFixed(bottomHi, topHi, weightY.hi)};
}

/// Rounds the fixed-point channels to bytes and stores the lanes' pixels.
HWY_INLINE void storePixels(const PixelHalves& fixed, std::uint8_t* out)
{
    const DU8 d8;
    const DS16 d16;
    const hn::Rebind<std::uint8_t, DS16> dNarrow;
    const VS16 half = hn::Set(d16, 64);
    const auto lo = hn::DemoteTo(dNarrow, hn::ShiftRight<7>(hn::Add(fixed.lo, half)));
    const auto hi = hn::DemoteTo(dNarrow, hn::ShiftRight<7>(hn::Add(fixed.hi, half)));
    hn::StoreU(hn::Combine(d8, hi, lo), d8, out);
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

HWY_INLINE PixelHalves blend(const PixelHalves& first, const PixelHalves& last, VF dissolve)
{
    const DF df;
    const DI di;
    const VI f = hn::Min(hn::Max(hn::ConvertTo(di, hn::Mul(dissolve, hn::Set(df, kWeightScale))), hn::Zero(di)),
                         hn::Set(di, kMaxWeight));
    const PixelHalves weight = spread(f);
    return {lerpFixed(first.lo, last.lo, weight.lo), lerpFixed(first.hi, last.hi, weight.hi)};
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
        const PixelHalves first = sampleImage(job.first, lookup.at(grid, xChannel), lookup.at(grid, yChannel));
        if (!job.twoImages) {
            storePixels(first, job.out + 4 * x);
            continue;
        }
        const PixelHalves last = sampleImage(job.last, lookup.at(grid, GridRow::LastX), lookup.at(grid, GridRow::LastY));
        storePixels(blend(first, last, lookup.at(grid, GridRow::Dissolve)), job.out + 4 * x);
    }
    sampleRowScalar(job, x, job.width);
}
#endif

} // namespace HWY_NAMESPACE
} // namespace plyra::sampling
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace plyra::sampling {

HWY_EXPORT(SampleRow);

void sampleRowSimd(const RowJob& job)
{
    HWY_DYNAMIC_DISPATCH(SampleRow)(job);
}

} // namespace plyra::sampling
#endif
