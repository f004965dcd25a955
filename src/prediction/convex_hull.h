// SPDX-License-Identifier: MIT
#pragma once

#include "prediction/point_pairs.h"

#include <vector>

namespace plyra {

/// The convex hull of a set of points, and how far a point lies outside it.
/// Threads: immutable after construction; any thread.
class ConvexHull {
public:
    explicit ConvexHull(std::vector<PlanePoint> points);

    /// The corners, counter-clockwise, without repetition; fewer than three for points
    /// that lie on one line (two ends) or are one point.
    const std::vector<PlanePoint>& corners() const { return m_corners; }
    /// 0 inside the hull and on its border, else the distance to the nearest point of it
    /// (for a degenerate hull: of its segment or point). Infinite for an empty set.
    double distanceOutside(PlanePoint p) const;

private:
    std::vector<PlanePoint> m_corners;
};

} // namespace plyra
