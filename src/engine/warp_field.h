// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plyra {

namespace warp {
struct LineTerms;
}

/// A line's start point, end point and length at one time, all 32-bit floats.
struct LineCoords {
    Point start;
    Point end;
    float length = 0.0f;
};

/// The number of warp-grid nodes across (nx) and down (ny).
struct GridSize {
    std::uint32_t nx = 1;
    std::uint32_t ny = 1;

    std::size_t nodeCount() const { return std::size_t{nx} * ny; }
    bool operator==(const GridSize&) const = default;
};

/// The grid of a frame of width × height pixels whose nodes lie at most interval pixels
/// apart: ceil(width / interval) + 1 by ceil(height / interval) + 1, in single precision.
/// Sizes that are not positive, not finite or that need more than kMaxGridSide nodes on a
/// side are clamped into [1, kMaxGridSide], so no frame size can ask for an absurd buffer.
GridSize warpGridSize(float width, float height, float interval);
inline constexpr std::uint32_t kMaxGridSide = 1u << 13;

/// The smallest axis-aligned box holding a set of displacements; all zero before the
/// first point is added.
struct DisplacementBounds {
    float minX = 0.0f;
    float minY = 0.0f;
    float maxX = 0.0f;
    float maxY = 0.0f;

    bool operator==(const DisplacementBounds&) const = default;
};

/// The per-line quantities at one frame time that a warp field is computed from, one
/// entry per line in document order.
struct WarpLines {
    std::vector<AffineTransform> toFirst; ///< from the frame time to time 0
    std::vector<AffineTransform> toLast;  ///< from the frame time to time 1
    std::vector<LineCoords> atTime;       ///< the line at the frame time
    std::vector<float> dissolveStart;
    std::vector<float> dissolveEnd;

    std::size_t size() const { return atTime.size(); }
};

/// Displacement bounds of a whole field, in unit frame coordinates.
struct WarpFieldBounds {
    DisplacementBounds first; ///< sampling position in the first image minus node position
    DisplacementBounds last;  ///< the same for the last image
};

/// Computes the warp field of one frame: for every node of the grid, where to sample the
/// first and the last image and how far the cross-dissolve has gone, averaged over all
/// lines with weights length / distance². Nodes are stored as four floats (x and y in
/// the first image, x in the last image, last-image row plus half the dissolve factor),
/// rows of nx nodes from the bottom row up. The stored form keeps only the whole row of
/// the last image, so the same pass also answers, on request, a plane of each node's
/// unrounded y in the last image, which is what the sampling kernels read.
/// Threads: immutable after construction; compute() may run on any thread, and several
/// fields may be computed at once.
class WarpField {
public:
    WarpField(const WarpLines& lines, float time, float width, float height, GridSize grid);
    ~WarpField();
    WarpField(const WarpField&) = delete;
    WarpField& operator=(const WarpField&) = delete;

    /// Fills the first nx × ny nodes of coords (four floats each) using the widest SIMD
    /// unit of the processor, and, unless lastY is null, its nx × ny floats with each
    /// node's y in the last image in output pixels, unrounded (rows of nx from the bottom
    /// row up); answers the displacement bounds.
    WarpFieldBounds compute(float* coords, float* lastY = nullptr) const;
    /// The same in plain scalar code: the reference the SIMD path is checked against.
    WarpFieldBounds computeScalar(float* coords, float* lastY = nullptr) const;

    GridSize grid() const { return m_grid; }

private:
    class Rows;
    WarpFieldBounds run(float* coords, float* lastY, bool simd) const;

    std::vector<warp::LineTerms> m_lines;
    std::vector<AffineTransform> m_toFirst;
    std::vector<AffineTransform> m_toLast;
    std::vector<float> m_startY;
    std::vector<float> m_endY;
    float m_time;
    float m_width;
    float m_height;
    GridSize m_grid;
    bool m_uniformDissolve = true;
    float m_uniformDissolveFactor = 0.0f;
};

} // namespace plyra
