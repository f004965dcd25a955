// SPDX-License-Identifier: MIT
#include "editor/transform_frame.h"

#include "model/morph_editor_data_source.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace plyra {
namespace {

constexpr std::array<FrameHandle, 4> kCorners{FrameHandle::BottomLeft, FrameHandle::BottomRight,
    FrameHandle::TopRight, FrameHandle::TopLeft};
constexpr std::array<FrameHandle, 4> kEdges{FrameHandle::Bottom, FrameHandle::Right, FrameHandle::Top,
    FrameHandle::Left};

// Which way a handle lies from the centre: -1, 0 or 1 on each axis.
Point sideOf(FrameHandle handle)
{
    switch (handle) {
    case FrameHandle::BottomLeft: return {-1, -1};
    case FrameHandle::Bottom: return {0, -1};
    case FrameHandle::BottomRight: return {1, -1};
    case FrameHandle::Right: return {1, 0};
    case FrameHandle::TopRight: return {1, 1};
    case FrameHandle::Top: return {0, 1};
    case FrameHandle::TopLeft: return {-1, 1};
    case FrameHandle::Left: return {-1, 0};
    }
    return {};
}

FrameHandle opposite(FrameHandle handle)
{
    return static_cast<FrameHandle>((static_cast<int>(handle) + 4) % 8);
}

// The factor that carries from − fixed onto to − fixed along one axis; 1 for an axis
// the box has no extent in.
double factor(double from, double to, double fixed)
{
    const double span = from - fixed;
    return std::abs(span) > 1e-6 ? (to - fixed) / span : 1.0;
}

} // namespace

AffineTransform scalingAbout(Point fixed, double sx, double sy)
{
    return {static_cast<float>(sx), 0.0f, 0.0f, static_cast<float>(sy),
        static_cast<float>(fixed.x - sx * fixed.x), static_cast<float>(fixed.y - sy * fixed.y)};
}

std::optional<ViewRect> selectedPointsBox(const MorphEditorDataSource& dataSource, unsigned track,
    const ViewMapping& mapping)
{
    float left = std::numeric_limits<float>::infinity();
    float bottom = left;
    float right = -left;
    float top = -left;
    for (const MorphLine::Ptr& line : dataSource.selectedLines()) {
        const LineEnds ends = mapping.lineEnds(*line, track);
        for (const Point& p : {ends.start, ends.end}) {
            left = std::min(left, p.x);
            right = std::max(right, p.x);
            bottom = std::min(bottom, p.y);
            top = std::max(top, p.y);
        }
    }
    // Also false for points that are not numbers.
    if (!(left <= right && bottom <= top))
        return std::nullopt;
    return ViewRect{left, bottom, right - left, top - bottom};
}

std::optional<TransformFrame> TransformFrame::ofSelection(const MorphEditorDataSource& dataSource, unsigned track,
    const ViewMapping& mapping)
{
    if (dataSource.selectedLines().size() < 2)
        return std::nullopt;
    if (const std::optional<ViewRect> box = selectedPointsBox(dataSource, track, mapping))
        return TransformFrame(*box);
    return std::nullopt;
}

bool TransformFrame::isCorner(FrameHandle handle)
{
    return std::find(kCorners.begin(), kCorners.end(), handle) != kCorners.end();
}

Point TransformFrame::handlePosition(FrameHandle handle) const
{
    const Point side = sideOf(handle);
    const Point c = centre();
    return {c.x + side.x * 0.5f * m_box.width, c.y + side.y * 0.5f * m_box.height};
}

std::optional<FrameHit> TransformFrame::hit(Point p) const
{
    if (const std::optional<FrameHandle> handle = handleAt(p))
        return FrameHit{*handle, false};
    if (const std::optional<FrameHandle> corner = rotateZoneAt(p))
        return FrameHit{*corner, true};
    return std::nullopt;
}

std::optional<FrameHandle> TransformFrame::handleAt(Point p) const
{
    auto within = [p, this](FrameHandle handle) {
        const Point h = handlePosition(handle);
        return std::abs(p.x - h.x) <= kHandleReach && std::abs(p.y - h.y) <= kHandleReach;
    };
    for (FrameHandle handle : kCorners)
        if (within(handle))
            return handle;
    for (FrameHandle handle : kEdges)
        if (within(handle))
            return handle;
    return std::nullopt;
}

std::optional<FrameHandle> TransformFrame::rotateZoneAt(Point p) const
{
    // The square beyond the corner, outward along both axes, less the handle itself.
    for (FrameHandle corner : kCorners) {
        const Point side = sideOf(corner);
        const Point h = handlePosition(corner);
        const float outX = (p.x - h.x) * side.x;
        const float outY = (p.y - h.y) * side.y;
        const bool nearCorner = outX >= -kHandleReach && outY >= -kHandleReach && outX <= kRotateReach
            && outY <= kRotateReach;
        if (nearCorner && (outX > kHandleReach || outY > kHandleReach))
            return corner;
    }
    return std::nullopt;
}

AffineTransform TransformFrame::scaling(FrameHandle handle, Point press, Point pointer, bool uniform,
    bool aboutCentre) const
{
    const Point side = sideOf(handle);
    const Point from = handlePosition(handle);
    // The handle follows the pointer from where it was grabbed.
    const Point to{from.x + pointer.x - press.x, from.y + pointer.y - press.y};
    const Point fixed = aboutCentre ? centre() : handlePosition(opposite(handle));
    double sx = side.x != 0.0f ? factor(from.x, to.x, fixed.x) : 1.0;
    double sy = side.y != 0.0f ? factor(from.y, to.y, fixed.y) : 1.0;
    if (uniform && isCorner(handle)) {
        // One factor for both axes: the handle's move projected onto its diagonal.
        const double dx = from.x - fixed.x;
        const double dy = from.y - fixed.y;
        const double length = dx * dx + dy * dy;
        const double s = length > 1e-6 ? ((to.x - fixed.x) * dx + (to.y - fixed.y) * dy) / length : 1.0;
        sx = sy = s;
    }
    return scalingAbout(fixed, sx, sy);
}

AffineTransform TransformFrame::rotation(Point press, Point pointer, bool snap) const
{
    const Point c = centre();
    double angle = std::atan2(pointer.y - c.y, pointer.x - c.x) - std::atan2(press.y - c.y, press.x - c.x);
    if (snap) {
        const double step = kRotationStep * std::acos(-1.0) / 180.0;
        angle = step * std::round(angle / step);
    }
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    // (x, y) ↦ c + R·((x, y) − c), in the order m11, m12, m21, m22, tX, tY.
    return {static_cast<float>(cosine), static_cast<float>(sine), static_cast<float>(-sine),
        static_cast<float>(cosine), static_cast<float>(c.x - cosine * c.x + sine * c.y),
        static_cast<float>(c.y - sine * c.x - cosine * c.y)};
}

} // namespace plyra
