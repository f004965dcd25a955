// SPDX-License-Identifier: MIT
#include "engine/warp_field.h"

#include "engine/warp_field_internal.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>

namespace plyra {

namespace {

std::uint32_t gridSide(float extent, float interval)
{
    const float n = std::ceil(extent / interval) + 1.0f;
    if (!(n >= 1.0f))
        return 1;
    if (n >= static_cast<float>(kMaxGridSide))
        return kMaxGridSide;
    return static_cast<std::uint32_t>(n);
}

// Line points are unit coordinates; beyond this magnitude their squares would leave the
// range in which the distance arithmetic stays finite.
constexpr float kMaxCoordinate = 1.0e6f;

bool usable(float value)
{
    return std::isfinite(value) && std::fabs(value) <= kMaxCoordinate;
}

bool usable(const AffineTransform& m)
{
    return usable(m.m11) && usable(m.m12) && usable(m.m21) && usable(m.m22) && usable(m.tX) && usable(m.tY);
}

bool usable(const LineCoords& c)
{
    return usable(c.start.x) && usable(c.start.y) && usable(c.end.x) && usable(c.end.y) && usable(c.length);
}

// A line that collapses to a point at the frame time has no direction, so its distance
// and its transform say little. It still gets a tiny stand-in length instead of weight 0:
// beside any line with length it counts for nothing (1e-12 against lengths of a pixel or
// more), but when every line has collapsed the frame is still warped by them, weighted by
// inverse square distance alone, instead of falling back to no warp at all. A node
// exactly on the collapsed point lies on that line and takes its displacement.
constexpr float kCollapsedLineWeight = 1.0e-12f;

warp::LineTerms lineTerms(const AffineTransform& toFirst, const AffineTransform& toLast, const LineCoords& c,
                          float dissolveStart, float dissolveEnd)
{
    warp::LineTerms l{};
    l.sx = c.start.x;
    l.ex = c.end.x;
    l.dx = c.end.x - c.start.x;
    l.dy = c.end.y - c.start.y;
    const float ax = c.start.x - c.end.x;
    const float ay = c.start.y - c.end.y;
    const float len2 = ax * ax + ay * ay;
    const float inverse = 1.0f / len2;
    if (len2 > 0.0f && std::isfinite(inverse) && c.length > 0.0f) {
        l.invLen2 = inverse;
        l.weight = c.length;
    } else {
        // Projection parameter 0 instead of 0 / 0 (see kCollapsedLineWeight).
        l.invLen2 = 0.0f;
        l.weight = kCollapsedLineWeight;
    }
    l.firstA = toFirst.m11 - 1.0f;
    l.firstB = toFirst.m12;
    l.lastA = toLast.m11 - 1.0f;
    l.lastB = toLast.m12;
    l.dissolveStart = dissolveStart;
    l.dissolveEnd = dissolveEnd;
    return l;
}

bool usableLine(const WarpLines& lines, std::size_t k)
{
    return usable(lines.toFirst[k]) && usable(lines.toLast[k]) && usable(lines.atTime[k])
        && std::isfinite(lines.dissolveStart[k]) && std::isfinite(lines.dissolveEnd[k]);
}

// The share of the last image where the lines give no usable answer: the plain
// cross-dissolve, clamped to [0, 1].
float plainDissolve(float t)
{
    return t > 0.0f ? std::min(t, 1.0f) : 0.0f;
}

} // namespace

GridSize warpGridSize(float width, float height, float interval)
{
    return {gridSide(width, interval), gridSide(height, interval)};
}

/// Scratch of one computation: the row's line terms, its node positions, sums and
/// stored nodes, and the running bounds.
/// Threads: owned by the computing thread.
class WarpField::Rows {
public:
    explicit Rows(const WarpField& field)
        : m_field(field)
        , m_lines(field.m_lines)
        , m_padded((field.m_grid.nx + warp::kRowPadding - 1) / warp::kRowPadding * warp::kRowPadding)
        , m_u(m_padded)
        , m_store(13 * m_padded)
    {
        const std::uint32_t nx = field.m_grid.nx;
        const float last = static_cast<float>(nx - 1);
        for (std::size_t i = 0; i < m_padded; ++i) {
            // Padding lanes repeat the last node, so they never widen the bounds.
            const float fi = static_cast<float>(std::min<std::size_t>(i, nx - 1));
            m_u[i] = nx > 1 ? fi / last : 0.0f;
        }
        float* p = m_store.data();
        m_sums = {p, p + m_padded, p + 2 * m_padded, p + 3 * m_padded, p + 4 * m_padded,
                  p + 5 * m_padded, p + 6 * m_padded, p + 7 * m_padded};
        constexpr float inf = std::numeric_limits<float>::infinity();
        m_bounds = {inf, inf, -inf, -inf, inf, inf, -inf, -inf};
    }

    void computeRow(std::uint32_t j, float* coords, float* lastY, bool simd)
    {
        const WarpField& f = m_field;
        const std::uint32_t ny = f.m_grid.ny;
        const float v = ny > 1 ? static_cast<float>(j) / static_cast<float>(ny - 1) : 0.0f;
        for (std::size_t k = 0; k < m_lines.size(); ++k)
            setRowTerms(m_lines[k], f.m_toFirst[k], f.m_toLast[k], f.m_startY[k], f.m_endY[k], v);
        const bool withDissolve = !f.m_uniformDissolve;
        if (simd)
            warp::accumulateRowSimd(m_lines.data(), m_lines.size(), m_u.data(), m_padded, withDissolve, m_sums);
        else
            warp::accumulateRowScalar(m_lines.data(), m_lines.size(), m_u.data(), m_padded, withDissolve, m_sums);
        if (withDissolve)
            warp::dissolveRow(m_sums, m_padded, f.m_time);
        float* nodes = m_store.data() + 8 * m_padded;
        float* rowLastY = m_store.data() + 12 * m_padded;
        const warp::RowFinish row{m_u.data(), m_padded, v, f.m_width, f.m_height, f.m_uniformDissolve,
                                  f.m_uniformDissolveFactor, plainDissolve(f.m_time), nodes, rowLastY};
        if (simd)
            warp::finishRowSimd(row, m_sums, m_bounds);
        else
            warp::finishRowScalar(row, m_sums, m_bounds);
        std::memcpy(coords + std::size_t{4} * j * f.m_grid.nx, nodes, sizeof(float) * 4 * f.m_grid.nx);
        if (lastY)
            std::memcpy(lastY + std::size_t{j} * f.m_grid.nx, rowLastY, sizeof(float) * f.m_grid.nx);
    }

    WarpFieldBounds bounds() const
    {
        const warp::Bounds& b = m_bounds;
        return {{b.minFirstX, b.minFirstY, b.maxFirstX, b.maxFirstY}, {b.minLastX, b.minLastY, b.maxLastX, b.maxLastY}};
    }

private:
    static void setRowTerms(warp::LineTerms& l, const AffineTransform& toFirst, const AffineTransform& toLast,
                            float sy, float ey, float v)
    {
        const float by = v - sy;
        l.byDx = by * l.dx;
        l.byDy = by * l.dy;
        l.by2 = by * by;
        const float cy = ey - v;
        l.ey2 = cy * cy;
        l.firstRowX = toFirst.m21 * v + toFirst.tX;
        l.firstRowY = (toFirst.m22 - 1.0f) * v + toFirst.tY;
        l.lastRowX = toLast.m21 * v + toLast.tX;
        l.lastRowY = (toLast.m22 - 1.0f) * v + toLast.tY;
    }

    const WarpField& m_field;
    std::vector<warp::LineTerms> m_lines;
    std::size_t m_padded;
    std::vector<float> m_u;
    std::vector<float> m_store; // eight row arrays, the row's nodes (4 floats each), its last-image y
    warp::RowSums m_sums{};
    warp::Bounds m_bounds{};
};

WarpField::WarpField(const WarpLines& lines, float time, float width, float height, GridSize grid)
    : m_time(time)
    , m_width(width)
    , m_height(height)
    , m_grid{std::max<std::uint32_t>(grid.nx, 1), std::max<std::uint32_t>(grid.ny, 1)}
{
    const std::size_t n = lines.size();
    assert(lines.toFirst.size() == n && lines.toLast.size() == n);
    assert(lines.dissolveStart.size() == n && lines.dissolveEnd.size() == n);
    for (std::size_t k = 0; k < n; ++k) {
        // A line with non-finite or absurd numbers (a damaged document) takes no part.
        if (!usableLine(lines, k))
            continue;
        m_lines.push_back(lineTerms(lines.toFirst[k], lines.toLast[k], lines.atTime[k], lines.dissolveStart[k],
                                    lines.dissolveEnd[k]));
        m_toFirst.push_back(lines.toFirst[k]);
        m_toLast.push_back(lines.toLast[k]);
        m_startY.push_back(lines.atTime[k].start.y);
        m_endY.push_back(lines.atTime[k].end.y);
    }
    // When every line dissolves at the same times, so does every node: the weighted mean
    // of equal times is that time, and the dissolve sums need not be formed at all.
    m_uniformDissolve = std::all_of(m_lines.begin(), m_lines.end(), [&](const warp::LineTerms& l) {
        return l.dissolveStart == m_lines.front().dissolveStart && l.dissolveEnd == m_lines.front().dissolveEnd;
    });
    if (m_uniformDissolve && !m_lines.empty())
        m_uniformDissolveFactor = warp::dissolveFactor(m_lines.front().dissolveStart, m_lines.front().dissolveEnd, time);
}

WarpField::~WarpField() = default;

WarpFieldBounds WarpField::compute(float* coords, float* lastY) const
{
    return run(coords, lastY, true);
}

WarpFieldBounds WarpField::computeScalar(float* coords, float* lastY) const
{
    return run(coords, lastY, false);
}

WarpFieldBounds WarpField::run(float* coords, float* lastY, bool simd) const
{
    Rows rows(*this);
    for (std::uint32_t j = 0; j < m_grid.ny; ++j)
        rows.computeRow(j, coords, lastY, simd);
    return rows.bounds();
}

} // namespace plyra
