// SPDX-License-Identifier: MIT
#include "prediction/convex_hull.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace plyra {
namespace {

// Positive when o → a → b turns counter-clockwise.
double cross(PlanePoint o, PlanePoint a, PlanePoint b)
{
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double distanceToSegment(PlanePoint p, PlanePoint a, PlanePoint b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double lengthSquared = dx * dx + dy * dy;
    double t = 0.0;
    if (lengthSquared > 0.0)
        t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / lengthSquared, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

} // namespace

ConvexHull::ConvexHull(std::vector<PlanePoint> points)
{
    // Andrew's monotone chain: the lower and the upper hull of the sorted points.
    std::sort(points.begin(), points.end(),
        [](PlanePoint a, PlanePoint b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    points.erase(std::unique(points.begin(), points.end()), points.end());
    if (points.size() < 3) {
        m_corners = points;
        return;
    }
    std::vector<PlanePoint> hull(2 * points.size());
    std::size_t k = 0;
    for (const PlanePoint& p : points) {
        while (k >= 2 && cross(hull[k - 2], hull[k - 1], p) <= 0.0)
            --k;
        hull[k++] = p;
    }
    for (std::size_t i = points.size() - 1, lower = k + 1; i-- > 0;) {
        while (k >= lower && cross(hull[k - 2], hull[k - 1], points[i]) <= 0.0)
            --k;
        hull[k++] = points[i];
    }
    hull.resize(k - 1);
    m_corners = std::move(hull);
}

double ConvexHull::distanceOutside(PlanePoint p) const
{
    const std::size_t n = m_corners.size();
    if (n == 0)
        return std::numeric_limits<double>::infinity();
    if (n == 1)
        return std::hypot(p.x - m_corners[0].x, p.y - m_corners[0].y);
    if (n == 2)
        return distanceToSegment(p, m_corners[0], m_corners[1]);
    bool inside = true;
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < n; ++i) {
        const PlanePoint a = m_corners[i];
        const PlanePoint b = m_corners[(i + 1) % n];
        if (cross(a, b, p) < 0.0)
            inside = false;
        nearest = std::min(nearest, distanceToSegment(p, a, b));
    }
    return inside ? 0.0 : nearest;
}

} // namespace plyra
