// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

namespace plyra {

/// A point of the plane in double precision, in pixels of one image.
/// Threads: a value; any thread.
struct PlanePoint {
    double x = 0.0;
    double y = 0.0;
    bool operator==(const PlanePoint&) const = default;
};

/// A point of the source image and its known counterpart in the target image.
/// Threads: a value; any thread.
struct PointPair {
    PlanePoint source;
    PlanePoint target;
    bool operator==(const PointPair&) const = default;
};

/// An image's size in pixels.
/// Threads: a value; any thread.
struct PixelSize {
    double width = 1.0;
    double height = 1.0;
};

/// An affine map of the plane: (x, y) goes to (xx·x + xy·y + tx, yx·x + yy·y + ty).
/// Threads: a value; any thread.
struct PlaneAffine {
    double xx = 1.0;
    double xy = 0.0;
    double yx = 0.0;
    double yy = 1.0;
    double tx = 0.0;
    double ty = 0.0;

    PlanePoint apply(PlanePoint p) const { return {xx * p.x + xy * p.y + tx, yx * p.x + yy * p.y + ty}; }
};

/// The least-squares similarity (scale, rotation and shift, no reflection) that carries
/// the pairs' source points onto their targets; exact for two distinct points. Nothing
/// when the source points do not span a distance (fewer than two distinct points).
std::optional<PlaneAffine> fitSimilarity(const std::vector<PointPair>& pairs);

} // namespace plyra
