// SPDX-License-Identifier: MIT
#pragma once

namespace plyra {

/// A point of two 32-bit floats; in unit image coordinates for line points.
struct Point {
    float x = 0.0f;
    float y = 0.0f;
    bool operator==(const Point&) const = default;
};

/// The six numbers of an affine transform in the order m11, m12, m21, m22, tX, tY;
/// a point (x, y) maps to (m11·x + m21·y + tX, m12·x + m22·y + tY).
struct AffineTransform {
    float m11 = 1.0f;
    float m12 = 0.0f;
    float m21 = 0.0f;
    float m22 = 1.0f;
    float tX = 0.0f;
    float tY = 0.0f;

    Point apply(Point p) const { return {m11 * p.x + m21 * p.y + tX, m12 * p.x + m22 * p.y + tY}; }
    bool operator==(const AffineTransform&) const = default;
};

} // namespace plyra
