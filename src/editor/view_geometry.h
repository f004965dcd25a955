// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"
#include "model/morph_line.h"

#include <QPointF>
#include <QRect>
#include <QRectF>

#include <cstddef>
#include <optional>
#include <vector>

namespace plyra {

/// A rectangle in view units: corner (x, y) at the bottom left, y upward.
/// Threads: a value; any thread.
struct ViewRect {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    /// Empty unless both the width and the height are greater than 0.
    bool isEmpty() const { return !(width > 0.0f && height > 0.0f); }
    bool operator==(const ViewRect&) const = default;
};

/// A line's two points at the editor's track time, in view units.
/// Threads: a value; any thread.
struct LineEnds {
    Point start;
    Point end;
};

/// Maps between the editor's view units (origin bottom left, y up, one unit per widget
/// pixel), unit image coordinates, and Qt's widget coordinates (origin top left, y down).
/// Every conversion of the editor goes through here.
/// Threads: a value; any thread.
struct ViewMapping {
    float width = 0.0f;
    float height = 0.0f;

    Point toView(Point unit) const { return {unit.x * width, unit.y * height}; }
    /// The reciprocal first, then the product, as points are stored.
    Point toUnit(Point view) const { return {view.x * (1.0f / width), view.y * (1.0f / height)}; }
    Point fromWidget(QPointF widget) const
    {
        return {static_cast<float>(widget.x()), height - static_cast<float>(widget.y())};
    }
    QPointF toWidget(Point view) const { return {view.x, static_cast<double>(height) - view.y}; }
    QRectF toWidget(ViewRect rect) const;
    ViewRect fromWidget(const QRectF& rect) const;
    /// Inside the bounds: the bottom and left edges belong to them, the top and right not.
    bool contains(Point view) const;
    LineEnds lineEnds(const MorphLine& line, unsigned track) const;
};

/// The time at which an editor shows its track: 0 for track 0, 1 for any other.
inline float timeOfTrack(unsigned track) { return track == 0 ? 0.0f : 1.0f; }
inline unsigned otherTrack(unsigned track) { return track == 0 ? 1u : 0u; }

inline float squaredDistance(Point p, Point q)
{
    const float dx = p.x - q.x;
    const float dy = p.y - q.y;
    return dx * dx + dy * dy;
}

/// Squared distance from p to the segment a–b in single precision; not a number for a
/// segment of length 0, so that such a segment is never hit.
float squaredDistanceToSegment(Point p, Point a, Point b);

/// Whether the segment a–b meets the rectangle (the selection rectangle's test).
bool segmentIntersectsRect(Point a, Point b, ViewRect rect);

/// The box spanned by two points.
ViewRect boxOf(Point a, Point b);

/// The union in which a rectangle of zero width or height counts as absent.
ViewRect unionRect(ViewRect a, ViewRect b);

/// Grows a rectangle by margin on every side and rounds it outward to whole units.
QRect grownWidgetRect(const QRectF& rect, double margin);

/// A line of a list by its index, with its squared distance from a point.
/// Threads: a value; any thread.
struct NearestLine {
    std::size_t index = 0;
    float squaredDistance = 0.0f;
};

/// The line nearest to a left-button press: only lines closer than 1000 units count,
/// and on a tie the later line in the list wins.
std::optional<NearestLine> nearestLineToPress(const std::vector<MorphLine::Ptr>& lines,
    const ViewMapping& mapping, unsigned track, Point p);

/// The line nearest to a right-button click, at any distance: the first line is the
/// first candidate and a later line replaces it when it is as near or nearer.
std::optional<std::size_t> nearestLineToClick(const std::vector<MorphLine::Ptr>& lines,
    const ViewMapping& mapping, unsigned track, Point p);

} // namespace plyra
