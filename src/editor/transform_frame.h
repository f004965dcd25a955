// SPDX-License-Identifier: MIT
#pragma once

#include "editor/view_geometry.h"
#include "model/geometry.h"

#include <optional>

namespace plyra {

class MorphEditorDataSource;

/// The eight handles of a transform frame, counter-clockwise from the bottom left.
enum class FrameHandle { BottomLeft, Bottom, BottomRight, Right, TopRight, Top, TopLeft, Left };

/// What a press on the frame takes: a handle, or the rotate zone just outside a corner.
/// Threads: a value; any thread.
struct FrameHit {
    FrameHandle handle = FrameHandle::BottomLeft;
    bool rotates = false;
    bool operator==(const FrameHit&) const = default;
};

/// The frame around a selection of two or more lines in one editor: the box of the
/// selected points at the editor's track, in view units, with a handle at each corner
/// and edge middle. It tells what a press grabs and which map a drag of a handle makes:
/// a corner scales about the opposite corner (or, asked to, uniformly or about the
/// centre), an edge scales one axis, the zone outside a corner turns about the centre.
/// Threads: a value; main thread for ofSelection().
class TransformFrame {
public:
    /// Half the side of a handle's square, which is also its reach for a press.
    static constexpr float kHandleReach = 5.0f;
    /// How far beyond a corner its rotate zone reaches.
    static constexpr float kRotateReach = 20.0f;
    /// The turns of a snapped rotation, in degrees.
    static constexpr double kRotationStep = 15.0;

    explicit TransformFrame(ViewRect box)
        : m_box(box)
    {
    }

    /// The frame of the data source's selection; none for fewer than two selected lines.
    static std::optional<TransformFrame> ofSelection(const MorphEditorDataSource& dataSource, unsigned track,
        const ViewMapping& mapping);

    ViewRect box() const { return m_box; }
    Point centre() const { return {m_box.x + 0.5f * m_box.width, m_box.y + 0.5f * m_box.height}; }
    Point handlePosition(FrameHandle handle) const;
    static bool isCorner(FrameHandle handle);

    /// What a press at p grabs: handles first (corners before edges), then the rotate
    /// zones; nothing elsewhere.
    std::optional<FrameHit> hit(Point p) const;

    /// The map of a drag of handle from press to pointer.
    AffineTransform scaling(FrameHandle handle, Point press, Point pointer, bool uniform, bool aboutCentre) const;
    /// The turn about the centre from the press's direction to the pointer's; snapped
    /// to whole steps of kRotationStep when asked.
    AffineTransform rotation(Point press, Point pointer, bool snap) const;

private:
    std::optional<FrameHandle> handleAt(Point p) const;
    std::optional<FrameHandle> rotateZoneAt(Point p) const;

    ViewRect m_box;
};

/// The box of the selected lines' points at the track, in view units; none without a
/// selection.
std::optional<ViewRect> selectedPointsBox(const MorphEditorDataSource& dataSource, unsigned track,
    const ViewMapping& mapping);

/// The map that scales by (sx, sy) about a fixed point.
AffineTransform scalingAbout(Point fixed, double sx, double sy);

} // namespace plyra
