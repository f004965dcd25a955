// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>

namespace plyra {

/// A width and a height of 32-bit floats.
/// Threads: a plain value.
struct Size {
    float width = 0.0f;
    float height = 0.0f;
    bool operator==(const Size&) const = default;
};

/// A rectangle of 32-bit floats: origin (x, y) at its lower left corner and a size, y up.
/// Two special values exist: the null rectangle (what an empty intersection gives; a union
/// ignores it) and the infinite rectangle (covers the whole plane; the extent of images
/// that are defined everywhere). A rectangle of zero size that is not null counts as the
/// point it stands on.
/// Threads: a plain value.
struct Rect {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    static Rect null();
    static Rect infinite();

    bool isNull() const;
    bool isInfinite() const;
    /// Null, or no area (a zero width or height).
    bool isEmpty() const;

    float minX() const { return x; }
    float minY() const { return y; }
    float maxX() const { return x + width; }
    float maxY() const { return y + height; }
    Size size() const { return {width, height}; }

    /// The smallest rectangle holding both; a null rectangle is ignored.
    Rect united(const Rect& other) const;
    /// The common part, or the null rectangle when they do not overlap.
    Rect intersected(const Rect& other) const;
    /// Moved inwards by dx on the left and right and dy at the bottom and top; negative
    /// values grow it.
    Rect insetBy(float dx, float dy) const;
    Rect offsetBy(float dx, float dy) const;
    /// The smallest rectangle with whole-number edges that holds this one.
    Rect integral() const;
    bool containsPoint(float px, float py) const;
    bool contains(const Rect& other) const;

    /// "[x y width height]", for log lines.
    std::string description() const;

    bool operator==(const Rect&) const = default;
};

/// An affine map of six 32-bit floats in the order m11, m12, m21, m22, tX, tY: the point
/// (x, y) maps to (m11·x + m21·y + tX, m12·x + m22·y + tY).
/// Threads: a plain value.
struct Matrix {
    float m11 = 1.0f;
    float m12 = 0.0f;
    float m21 = 0.0f;
    float m22 = 1.0f;
    float tX = 0.0f;
    float tY = 0.0f;

    static Matrix fromValues(const std::array<float, 6>& values);
    std::array<float, 6> values() const { return {m11, m12, m21, m22, tX, tY}; }

    float mapX(float px, float py) const { return m11 * px + m21 * py + tX; }
    float mapY(float px, float py) const { return m12 * px + m22 * py + tY; }
    /// The bounding box of the mapped corners; null and infinite rectangles stay so.
    Rect mapRect(const Rect& rect) const;
    bool isIdentity() const;
    bool isInvertible() const;
    /// The inverse map; the identity when the matrix cannot be inverted.
    Matrix inverted() const;
    /// First this map, then `after`.
    Matrix then(const Matrix& after) const;

    bool operator==(const Matrix&) const = default;
};

} // namespace plyra
