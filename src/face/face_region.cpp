// SPDX-License-Identifier: MIT
#include "face/face_region_internal.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace plyra::face_internal {

cv::Matx23d FaceRegion::cropToImage(double cropSize) const
{
    const double scale = size / cropSize;
    const double c = std::cos(angle) * scale;
    const double s = std::sin(angle) * scale;
    const double half = cropSize / 2.0;
    // Turn and scale about the crop's centre, then move it onto the region's centre.
    return {c, -s, centre.x - c * half + s * half, s, c, centre.y - s * half - c * half};
}

cv::Point2d FaceRegion::toImage(cv::Point2d cropPoint, double cropSize) const
{
    const cv::Matx23d m = cropToImage(cropSize);
    return {m(0, 0) * cropPoint.x + m(0, 1) * cropPoint.y + m(0, 2), m(1, 0) * cropPoint.x + m(1, 1) * cropPoint.y + m(1, 2)};
}

FaceRegion regionAround(cv::Point2d centre, double longSide, cv::Point2d fromEye, cv::Point2d toEye, double scale)
{
    const cv::Point2d eyes = toEye - fromEye;
    return {centre, longSide * scale, std::atan2(eyes.y, eyes.x)};
}

FaceRegion regionAroundLandmarks(const std::vector<cv::Point2d>& points, int fromEye, int toEye, double scale)
{
    const cv::Point2d eyes = points[static_cast<std::size_t>(toEye)] - points[static_cast<std::size_t>(fromEye)];
    const double angle = std::atan2(eyes.y, eyes.x);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    // The extent in the frame of the eyes, so that a turned face gets the same box.
    double minU = std::numeric_limits<double>::max();
    double minV = minU;
    double maxU = -minU;
    double maxV = -minU;
    for (const cv::Point2d& p : points) {
        const double u = c * p.x + s * p.y;
        const double v = -s * p.x + c * p.y;
        minU = std::min(minU, u);
        maxU = std::max(maxU, u);
        minV = std::min(minV, v);
        maxV = std::max(maxV, v);
    }
    const double u = (minU + maxU) / 2.0;
    const double v = (minV + maxV) / 2.0;
    const cv::Point2d centre{c * u - s * v, s * u + c * v};
    return {centre, std::max(maxU - minU, maxV - minV) * scale, angle};
}

} // namespace plyra::face_internal
