// SPDX-License-Identifier: MIT
#include "editor/view_geometry.h"

#include <algorithm>
#include <cmath>

namespace plyra {

QRectF ViewMapping::toWidget(ViewRect rect) const
{
    return {rect.x, static_cast<double>(height) - rect.y - rect.height, rect.width, rect.height};
}

ViewRect ViewMapping::fromWidget(const QRectF& rect) const
{
    const auto top = static_cast<float>(rect.top());
    const auto h = static_cast<float>(rect.height());
    return {static_cast<float>(rect.left()), height - top - h, static_cast<float>(rect.width()), h};
}

bool ViewMapping::contains(Point view) const
{
    return view.x >= 0.0f && view.x < width && view.y >= 0.0f && view.y < height;
}

LineEnds ViewMapping::lineEnds(const MorphLine& line, unsigned track) const
{
    const float t = timeOfTrack(track);
    return {toView(line.startPointAtTime(t)), toView(line.endPointAtTime(t))};
}

float squaredDistanceToSegment(Point p, Point a, Point b)
{
    const float dx = b.x - a.x;
    const float dy = b.y - a.y;
    const float t = ((p.x - a.x) * dx + (p.y - a.y) * dy) / squaredDistance(a, b);
    if (t > 1.0f)
        return squaredDistance(p, b);
    if (t < 0.0f)
        return squaredDistance(p, a);
    // Also for t not a number (a segment of length 0): the result is then not a number.
    return squaredDistance(p, {a.x + t * dx, a.y + t * dy});
}

bool segmentIntersectsRect(Point a, Point b, ViewRect r)
{
    const float right = r.x + r.width;
    const float top = r.y + r.height;
    auto inside = [&](Point p) { return r.x <= p.x && p.x < right && r.y <= p.y && p.y < top; };
    if (inside(a) || inside(b))
        return true;
    if ((a.x > right && b.x > right) || (a.x < r.x && b.x < r.x) || (a.y > top && b.y > top)
        || (a.y < r.y && b.y < r.y))
        return false;
    // The segment crosses the rectangle when some corner lies closer to it than the
    // diagonal: the farthest corner is then within a diagonal of the segment.
    const Point corners[] = {{r.x, r.y}, {r.x, top}, {right, top}, {right, r.y}};
    float farthest = 0.0f;
    for (const Point& corner : corners)
        farthest = std::max(farthest, std::sqrt(squaredDistanceToSegment(corner, a, b)));
    return std::sqrt(r.width * r.width + r.height * r.height) > farthest;
}

ViewRect boxOf(Point a, Point b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::fabs(b.x - a.x), std::fabs(b.y - a.y)};
}

ViewRect unionRect(ViewRect a, ViewRect b)
{
    if (a.isEmpty())
        return b.isEmpty() ? ViewRect{} : b;
    if (b.isEmpty())
        return a;
    const float x = std::min(a.x, b.x);
    const float y = std::min(a.y, b.y);
    return {x, y, std::max(a.x + a.width, b.x + b.width) - x, std::max(a.y + a.height, b.y + b.height) - y};
}

QRect grownWidgetRect(const QRectF& rect, double margin)
{
    // Points are not limited to the view; a point far outside it (or not a number, from
    // a damaged file) must not overflow the integer rectangle.
    constexpr double kFar = 1.0e7;
    if (!std::isfinite(rect.left()) || !std::isfinite(rect.top()) || !std::isfinite(rect.right())
        || !std::isfinite(rect.bottom()))
        return {};
    const QRectF grown = rect.adjusted(-margin, -margin, margin, margin) & QRectF(-kFar, -kFar, 2 * kFar, 2 * kFar);
    if (grown.isEmpty())
        return {};
    const int left = static_cast<int>(std::floor(grown.left()));
    const int top = static_cast<int>(std::floor(grown.top()));
    const int right = static_cast<int>(std::ceil(grown.right()));
    const int bottom = static_cast<int>(std::ceil(grown.bottom()));
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1));
}

std::optional<NearestLine> nearestLineToPress(const std::vector<MorphLine::Ptr>& lines,
    const ViewMapping& mapping, unsigned track, Point p)
{
    std::optional<NearestLine> best;
    float bestDistance = 1000000.0f;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const LineEnds ends = mapping.lineEnds(*lines[i], track);
        const float d = squaredDistanceToSegment(p, ends.start, ends.end);
        // "<=": on a tie the later line wins; a distance that is not a number never does.
        if (d <= bestDistance) {
            bestDistance = d;
            best = NearestLine{i, d};
        }
    }
    return best;
}

std::optional<std::size_t> nearestLineToClick(const std::vector<MorphLine::Ptr>& lines,
    const ViewMapping& mapping, unsigned track, Point p)
{
    if (lines.empty())
        return std::nullopt;
    std::size_t candidate = 0;
    LineEnds ends = mapping.lineEnds(*lines[0], track);
    float candidateDistance = squaredDistanceToSegment(p, ends.start, ends.end);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        ends = mapping.lineEnds(*lines[i], track);
        const float d = squaredDistanceToSegment(p, ends.start, ends.end);
        if (candidateDistance >= d) {
            candidate = i;
            candidateDistance = d;
        }
    }
    return candidate;
}

} // namespace plyra
