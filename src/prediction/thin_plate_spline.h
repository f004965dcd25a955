// SPDX-License-Identifier: MIT
#pragma once

#include "prediction/point_pairs.h"

#include <optional>
#include <vector>

namespace plyra {

/// A smoothing thin-plate spline from the plane into the plane: the map of least
/// bending whose values at the nodes come within a regularisation of the given ones.
/// Coordinates are normalised (centred on the nodes' mean, scaled by their root mean
/// square distance from it), so the regularisation means the same for every image size.
/// Solving costs about n³/3 operations for n nodes; evaluating costs n logarithms.
/// Threads: immutable after fitting; any thread.
class ThinPlateSpline {
public:
    /// Fits values[i] at nodes[i]. The regularisation trades closeness at the nodes for
    /// smoothness, so nearly coincident nodes with different values cannot make the map
    /// explode. Nothing when the nodes do not span the plane (fewer than three, or all on
    /// one line) or the system cannot be solved.
    static std::optional<ThinPlateSpline> fit(const std::vector<PlanePoint>& nodes,
        const std::vector<PlanePoint>& values, double regularisation);

    PlanePoint value(PlanePoint p) const;

private:
    ThinPlateSpline() = default;
    PlanePoint normalised(PlanePoint p) const;

    PlanePoint m_centre;
    double m_inverseScale = 1.0;
    std::vector<PlanePoint> m_nodes;
    /// The kernel weights of each node, for the x and the y value.
    std::vector<PlanePoint> m_weights;
    /// The affine part on normalised coordinates: constant, x and y coefficients.
    PlanePoint m_affine[3];
};

} // namespace plyra
