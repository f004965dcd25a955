// SPDX-License-Identifier: MIT
#pragma once

// Shared between the scalar and the SIMD warp-field loops; not part of the engine's API.

#include <cstddef>

namespace plyra::warp {

/// One line's constants for the node loop of one grid row: what depends only on the line
/// and the frame time, and what depends only on the line and the row's v. Both loops read
/// the same values, so the SIMD path reproduces the scalar one bit for bit.
/// Threads: plain data.
struct LineTerms {
    // Per line.
    float sx;        ///< start x at the frame time
    float ex;        ///< end x
    float dx;        ///< end x − start x
    float dy;        ///< end y − start y
    float invLen2;   ///< 1 / ((start − end)²), 0 for a line without length
    float weight;    ///< the line's weight factor: its length at the frame time
    float firstA;    ///< toFirst m11 − 1
    float firstB;    ///< toFirst m12
    float lastA;     ///< toLast m11 − 1
    float lastB;     ///< toLast m12
    float dissolveStart;
    float dissolveEnd;
    // Per row (v fixed).
    float byDx;      ///< (v − start y) · dx
    float byDy;      ///< (v − start y) · dy
    float by2;       ///< (v − start y)²
    float ey2;       ///< (end y − v)²
    float firstRowX; ///< toFirst m21 · v + tX
    float firstRowY; ///< (toFirst m22 − 1) · v + tY
    float lastRowX;  ///< toLast m21 · v + tX
    float lastRowY;  ///< (toLast m22 − 1) · v + tY
};

/// Per-node values of one row, structure of arrays, padded to a whole number of vectors.
/// The sums come from the line loop; dissolve holds each node's dissolve factor when the
/// lines' dissolve times differ.
/// Threads: plain data.
struct RowSums {
    float* firstX;
    float* firstY;
    float* lastX;
    float* lastY;
    float* weight;
    float* dissolveStart;
    float* dissolveEnd;
    float* dissolve;
};

/// Running minimum and maximum of the displacements into the first and the last image.
/// Threads: plain data.
struct Bounds {
    float minFirstX, minFirstY, maxFirstX, maxFirstY;
    float minLastX, minLastY, maxLastX, maxLastY;
};

/// Everything the last step of a row needs: turning sums into stored nodes.
/// Threads: plain data.
struct RowFinish {
    const float* u;
    std::size_t count;      ///< padded node count, a multiple of kRowPadding
    float v;
    float width;
    float height;
    bool uniformDissolve;   ///< every line has the same dissolve times
    float dissolve;         ///< the dissolve factor of every node when uniformDissolve
    float plainDissolve;    ///< the dissolve factor of nodes the lines say nothing about
    float* nodes;           ///< 4 × count floats, the row's nodes as stored
    float* lastY;           ///< count floats, each node's unrounded y in the last image
};

/// Squared distances below this count as this: a node lying on a line (distance 0) gets a
/// weight so large that this line alone decides the node, and never an infinite one.
/// 1e-20 is a distance of 1e-10 frame widths, far below a pixel of any frame.
inline constexpr float kMinDistanceSquared = 1e-20f;

/// Row width padding: every row buffer holds a multiple of this many nodes, enough for
/// the widest vector (16 floats).
inline constexpr std::size_t kRowPadding = 16;

/// Adds up the contributions of all lines to the nodes u[0 .. count) of one row; count
/// is a multiple of kRowPadding. The dissolve sums are formed only when withDissolve.
void accumulateRowScalar(const LineTerms* lines, std::size_t lineCount, const float* u,
                         std::size_t count, bool withDissolve, const RowSums& sums);
void accumulateRowSimd(const LineTerms* lines, std::size_t lineCount, const float* u,
                       std::size_t count, bool withDissolve, const RowSums& sums);

/// Turns the sums into the row's nodes and widens the bounds by their displacements.
void finishRowScalar(const RowFinish& row, const RowSums& sums, Bounds& bounds);
void finishRowSimd(const RowFinish& row, const RowSums& sums, Bounds& bounds);

/// Fills sums.dissolve for the nodes [0, count) from their dissolve sums at time t.
void dissolveRow(const RowSums& sums, std::size_t count, float t);

/// Whether a node's total weight gives a usable mean.
inline bool usableWeight(float sum)
{
    return sum > 0.0f && sum <= 3.40282347e+38f;
}

/// The name of the SIMD target accumulateRowSimd runs on ("AVX3", "AVX2", …).
const char* simdTargetName();

/// The share of the last image at a node whose weighted dissolve times are start and end,
/// at frame time t; always in [0, 1].
float dissolveFactor(float start, float end, float t);

} // namespace plyra::warp
