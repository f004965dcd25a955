// SPDX-License-Identifier: MIT
#include "editor/gesture_choice.h"

#include "editor/drag_point_gesture.h"
#include "editor/draw_lines_gesture.h"
#include "editor/editor_commands.h"
#include "editor/move_lines_gesture.h"
#include "editor/selection_gesture.h"
#include "editor/transform_handles_gesture.h"
#include "model/morph_editor_data_source.h"

namespace plyra {
namespace {

std::unique_ptr<EditorGesture> chooseLeftButtonGesture(const EditorContext& context, const GestureEvent& press)
{
    const Qt::KeyboardModifiers m = gestureModifiers(press.modifiers);
    if (m == Qt::AltModifier)
        return std::make_unique<DrawLinesGesture>(context, press);
    MorphEditorDataSource& dataSource = *context.dataSource;
    const Point p = press.location;
    const std::optional<NearestLine> nearest = nearestLineToPress(dataSource.morphLines(), context.mapping, context.track, p);
    // Shift alone reaches the nearest line at any distance.
    if (!nearest || (nearest->squaredDistance > kHitToleranceSquared && m != Qt::ShiftModifier))
        return std::make_unique<DrawLinesGesture>(context, press);
    const MorphLine::Ptr line = dataSource.morphLines()[nearest->index];
    const LineEnds ends = context.mapping.lineEnds(*line, context.track);
    // The start point wins when both ends are within reach.
    if (squaredDistance(p, ends.start) <= kHitToleranceSquared)
        return std::make_unique<DragPointGesture>(context, press, line, DragPointGesture::End::Start);
    if (squaredDistance(p, ends.end) <= kHitToleranceSquared)
        return std::make_unique<DragPointGesture>(context, press, line, DragPointGesture::End::End);
    const std::vector<MorphLine::Ptr>& selection = dataSource.selectedLines();
    std::vector<MorphLine::Ptr> moving = dataSource.isLineSelected(line.get())
        ? selection
        : std::vector<MorphLine::Ptr>{line};
    return std::make_unique<MoveLinesGesture>(context, press, ends.start, std::move(moving));
}

// A press on a handle of the selection's frame, before any other left-button gesture.
std::unique_ptr<EditorGesture> chooseTransformGesture(const EditorContext& context, const GestureEvent& press)
{
    const std::optional<TransformFrame> frame
        = TransformFrame::ofSelection(*context.dataSource, context.track, context.mapping);
    if (!frame)
        return nullptr;
    const std::optional<FrameHit> hit = frame->hit(press.location);
    if (!hit)
        return nullptr;
    return std::make_unique<TransformHandlesGesture>(context, press, *frame, *hit);
}

} // namespace

std::unique_ptr<EditorGesture> chooseGesture(const EditorContext& context, const GestureEvent& press)
{
    using Type = GestureEvent::Type;
    if (press.type == Type::RightDown || (press.type == Type::LeftDown && press.modifiers.testFlag(Qt::MetaModifier)))
        return std::make_unique<SelectionGesture>(context, press);
    if (press.type != Type::LeftDown)
        return nullptr;
    if (std::unique_ptr<EditorGesture> transform = chooseTransformGesture(context, press))
        return transform;
    return chooseLeftButtonGesture(context, press);
}

} // namespace plyra
