// SPDX-License-Identifier: MIT
#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace plyra::face_internal {

/// A square part of an image turned by an angle: what the landmark network looks at.
/// Coordinates are full-size pixels of the upright picture (x right, y down, continuous:
/// pixel (0, 0) covers [0, 1) × [0, 1)).
/// Threads: a plain value.
struct FaceRegion {
    cv::Point2d centre;
    double size = 0.0;
    /// The direction of the region's x axis in the picture, in radians (y down).
    double angle = 0.0;

    /// The picture point of a point of a crop of this region that is cropSize pixels wide.
    cv::Point2d toImage(cv::Point2d cropPoint, double cropSize) const;
    /// The map from crop coordinates to picture coordinates.
    cv::Matx23d cropToImage(double cropSize) const;
};

/// The region MediaPipe-style trackers crop around a face: square, aligned with the line
/// from one eye to the other, the given box's long side times scale.
FaceRegion regionAround(cv::Point2d centre, double longSide, cv::Point2d fromEye, cv::Point2d toEye, double scale);

/// The region around a set of landmarks: aligned with the line between two of them, the
/// landmarks' extent in that frame, enlarged by scale.
FaceRegion regionAroundLandmarks(const std::vector<cv::Point2d>& points, int fromEye, int toEye, double scale);

} // namespace plyra::face_internal
