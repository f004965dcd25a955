// SPDX-License-Identifier: MIT
// The warp field's node loop in SIMD: lanes are consecutive nodes of one row, and every
// line's terms are broadcast to all lanes. Each function performs the operations of its
// scalar twin in warp_field_scalar.cpp in the same order.

// Multiplies and adds must stay separate operations: a fused multiply-add rounds once
// instead of twice and the SIMD sums would drift from the scalar reference.
#pragma GCC optimize("fp-contract=off")

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/warp_field_hwy.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep

#include <hwy/highway.h>

#include "engine/warp_field_internal.h"

HWY_BEFORE_NAMESPACE();
namespace plyra::warp {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<float>;
using V = hn::Vec<D>;

struct Sums {
    V firstX, firstY, lastX, lastY, weight, start, end;
};

// One line's contribution to the lanes' nodes; see distanceSquared() and nodeSums() of
// the scalar loop for the arithmetic.
template <bool kDissolve>
HWY_INLINE void addLine(D d, const LineTerms& l, V x, Sums& s)
{
    const V zero = hn::Zero(d);
    const V dx = hn::Set(d, l.dx);
    const V dy = hn::Set(d, l.dy);
    const V invLen2 = hn::Set(d, l.invLen2);
    const V a = hn::Sub(x, hn::Set(d, l.sx));
    const V p = hn::Mul(hn::Add(hn::Mul(dx, a), hn::Set(d, l.byDy)), invLen2);
    const V toStart = hn::Add(hn::Mul(a, a), hn::Set(d, l.by2));
    const V c = hn::Sub(hn::Set(d, l.ex), x);
    const V toEnd = hn::Add(hn::Mul(c, c), hn::Set(d, l.ey2));
    const V cross = hn::Sub(hn::Mul(a, dy), hn::Set(d, l.byDx));
    const V toFoot = hn::Mul(hn::Mul(cross, cross), invLen2);
    V d2 = hn::IfThenElse(hn::Gt(p, hn::Set(d, 1.0f)), toEnd, toFoot);
    d2 = hn::IfThenElse(hn::Le(p, zero), toStart, d2);
    d2 = hn::Max(d2, hn::Set(d, kMinDistanceSquared));
    const V w = hn::Div(hn::Set(d, l.weight), d2);
    s.firstX = hn::Add(s.firstX, hn::Mul(w, hn::Add(hn::Mul(hn::Set(d, l.firstA), x), hn::Set(d, l.firstRowX))));
    s.firstY = hn::Add(s.firstY, hn::Mul(w, hn::Add(hn::Mul(hn::Set(d, l.firstB), x), hn::Set(d, l.firstRowY))));
    s.lastX = hn::Add(s.lastX, hn::Mul(w, hn::Add(hn::Mul(hn::Set(d, l.lastA), x), hn::Set(d, l.lastRowX))));
    s.lastY = hn::Add(s.lastY, hn::Mul(w, hn::Add(hn::Mul(hn::Set(d, l.lastB), x), hn::Set(d, l.lastRowY))));
    s.weight = hn::Add(s.weight, w);
    if constexpr (kDissolve) {
        s.start = hn::Add(s.start, hn::Mul(w, hn::Set(d, l.dissolveStart)));
        s.end = hn::Add(s.end, hn::Mul(w, hn::Set(d, l.dissolveEnd)));
    }
}

template <bool kDissolve>
HWY_INLINE void accumulate(const LineTerms* lines, std::size_t lineCount, const float* u, std::size_t count,
                           const RowSums& sums)
{
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    for (std::size_t i = 0; i < count; i += lanes) {
        const V x = hn::LoadU(d, u + i);
        const V zero = hn::Zero(d);
        Sums s{zero, zero, zero, zero, zero, zero, zero};
        for (std::size_t k = 0; k < lineCount; ++k)
            addLine<kDissolve>(d, lines[k], x, s);
        hn::StoreU(s.firstX, d, sums.firstX + i);
        hn::StoreU(s.firstY, d, sums.firstY + i);
        hn::StoreU(s.lastX, d, sums.lastX + i);
        hn::StoreU(s.lastY, d, sums.lastY + i);
        hn::StoreU(s.weight, d, sums.weight + i);
        hn::StoreU(s.start, d, sums.dissolveStart + i);
        hn::StoreU(s.end, d, sums.dissolveEnd + i);
    }
}

void AccumulateRow(const LineTerms* lines, std::size_t lineCount, const float* u, std::size_t count,
                   bool withDissolve, const RowSums& sums)
{
    if (withDissolve)
        accumulate<true>(lines, lineCount, u, count, sums);
    else
        accumulate<false>(lines, lineCount, u, count, sums);
}

/// Lane-wise minimum and maximum of one kind of displacement.
struct Extent {
    V minX, minY, maxX, maxY;

    void include(V x, V y)
    {
        minX = hn::Min(minX, x);
        minY = hn::Min(minY, y);
        maxX = hn::Max(maxX, x);
        maxY = hn::Max(maxY, y);
    }
    void reduce(D d, float& lowX, float& lowY, float& highX, float& highY) const
    {
        lowX = hn::GetLane(hn::MinOfLanes(d, minX));
        lowY = hn::GetLane(hn::MinOfLanes(d, minY));
        highX = hn::GetLane(hn::MaxOfLanes(d, maxX));
        highY = hn::GetLane(hn::MaxOfLanes(d, maxY));
    }
};

// See finishRowScalar(). The packing adds in single precision: the floored row is a whole
// number and f / 2 is exact, so one rounding of their sum to float gives exactly what the
// sum in double rounded to float gives.
void FinishRow(const RowFinish& row, const RowSums& sums, Bounds& b)
{
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    const V zero = hn::Zero(d), one = hn::Set(d, 1.0f), half = hn::Set(d, 0.5f);
    const V v = hn::Set(d, row.v), width = hn::Set(d, row.width), height = hn::Set(d, row.height);
    const V largest = hn::Set(d, 3.40282347e+38f);
    const V uniform = hn::Set(d, row.dissolve), plain = hn::Set(d, row.plainDissolve);
    Extent first{hn::Set(d, b.minFirstX), hn::Set(d, b.minFirstY), hn::Set(d, b.maxFirstX), hn::Set(d, b.maxFirstY)};
    Extent last{hn::Set(d, b.minLastX), hn::Set(d, b.minLastY), hn::Set(d, b.maxLastX), hn::Set(d, b.maxLastY)};
    for (std::size_t i = 0; i < row.count; i += lanes) {
        const V u = hn::LoadU(d, row.u + i);
        const V weight = hn::LoadU(d, sums.weight + i);
        const V inverse = hn::Div(one, weight);
        V uA = hn::Add(u, hn::Mul(hn::LoadU(d, sums.firstX + i), inverse));
        V vA = hn::Add(v, hn::Mul(hn::LoadU(d, sums.firstY + i), inverse));
        V uB = hn::Add(u, hn::Mul(hn::LoadU(d, sums.lastX + i), inverse));
        V vB = hn::Add(v, hn::Mul(hn::LoadU(d, sums.lastY + i), inverse));
        V f = row.uniformDissolve ? uniform : hn::LoadU(d, sums.dissolve + i);
        const auto ok = hn::And(hn::And(hn::Gt(weight, zero), hn::Le(weight, largest)),
                                hn::And(hn::And(hn::IsFinite(uA), hn::IsFinite(vA)),
                                        hn::And(hn::IsFinite(uB), hn::IsFinite(vB))));
        uA = hn::IfThenElse(ok, uA, u);
        vA = hn::IfThenElse(ok, vA, v);
        uB = hn::IfThenElse(ok, uB, u);
        vB = hn::IfThenElse(ok, vB, v);
        f = hn::IfThenElse(ok, f, plain);
        const V lastY = hn::Mul(height, vB);
        hn::StoreU(lastY, d, row.lastY + i);
        const V packed = hn::Add(hn::Floor(lastY), hn::Mul(half, f));
        hn::StoreInterleaved4(hn::Mul(width, uA), hn::Mul(height, vA), hn::Mul(width, uB), packed, d,
                              row.nodes + 4 * i);
        first.include(hn::Sub(uA, u), hn::Sub(vA, v));
        last.include(hn::Sub(uB, u), hn::Sub(vB, v));
    }
    first.reduce(d, b.minFirstX, b.minFirstY, b.maxFirstX, b.maxFirstY);
    last.reduce(d, b.minLastX, b.minLastY, b.maxLastX, b.maxLastY);
}

const char* TargetName()
{
    return hwy::TargetName(HWY_TARGET);
}

} // namespace HWY_NAMESPACE
} // namespace plyra::warp
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace plyra::warp {

HWY_EXPORT(AccumulateRow);
HWY_EXPORT(FinishRow);
HWY_EXPORT(TargetName);

void accumulateRowSimd(const LineTerms* lines, std::size_t lineCount, const float* u, std::size_t count,
                       bool withDissolve, const RowSums& sums)
{
    HWY_DYNAMIC_DISPATCH(AccumulateRow)(lines, lineCount, u, count, withDissolve, sums);
}

void finishRowSimd(const RowFinish& row, const RowSums& sums, Bounds& bounds)
{
    HWY_DYNAMIC_DISPATCH(FinishRow)(row, sums, bounds);
}

const char* simdTargetName()
{
    return HWY_DYNAMIC_DISPATCH(TargetName)();
}

} // namespace plyra::warp
#endif
