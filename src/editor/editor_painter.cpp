// SPDX-License-Identifier: MIT
#include "editor/editor_painter.h"

#include "editor/scaled_image_cache.h"
#include "editor/transform_frame.h"

#include <QGuiApplication>
#include <QPainter>

#include <cmath>
#include <unordered_set>

namespace plyra {
namespace {

// Lines and knobs are drawn through pixel centres: a point clicked on a pixel is drawn
// on that pixel, crisp, rather than smeared over two.
constexpr qreal kPixelCentre = 0.5;
constexpr double kLineMargin = 4.0;
constexpr double kSelectedLineMargin = EditorPainter::kDrawingReach;

// The hint's font is made once for every editor and kept.
const QFont& hintFont()
{
    static const QFont font = [] {
        QFont f = QGuiApplication::font();
        f.setPixelSize(18);
        return f;
    }();
    return font;
}

// The outline: the contrasting colour mixed with the line colour, as opaque as the line.
// An opaque colour also keeps the raster engine on its fast path for thin lines.
QColor outlineColor(const QColor& lineColor)
{
    const QColor contrast = KnobImages::contrastingColor(lineColor);
    auto mix = [](float a, float b) { return 0.6f * a + 0.4f * b; };
    return QColor::fromRgbF(mix(contrast.redF(), lineColor.redF()), mix(contrast.greenF(), lineColor.greenF()),
        mix(contrast.blueF(), lineColor.blueF()), lineColor.alphaF());
}

// The pens of a line with a thin outline of the contrasting colour on either side, so
// that it shows on dark and light photos alike.
struct SegmentPens {
    SegmentPens(const QColor& lineColor, bool antialiased)
        : outline(outlineColor(lineColor), antialiased ? 1.0 : 3.0, Qt::SolidLine, Qt::FlatCap)
        , line(lineColor, 1.0, Qt::SolidLine, Qt::FlatCap)
        , smooth(antialiased)
    {
    }
    QPen outline;
    QPen line;
    bool smooth;
};

// Smooth, the outline is two thin lines beside the line rather than one wide stroke
// underneath: antialiased wide strokes in a translucent colour cost the raster engine
// ten times as much, and two hundred lines must paint in a few milliseconds. Rough
// (without antialiasing), one wide stroke under the line costs half as much as the two
// thin ones, and its pixels lie evenly on both sides at every angle.
void strokeSegment(QPainter& painter, const QPointF& a, const QPointF& b, const SegmentPens& pens)
{
    const QPointF d = b - a;
    const qreal length = std::hypot(d.x(), d.y());
    painter.setPen(pens.outline);
    if (!pens.smooth) {
        painter.drawLine(a, b);
    } else if (length > 0.0) {
        const QPointF normal(-d.y() / length, d.x() / length);
        painter.drawLine(a + normal, b + normal);
        painter.drawLine(a - normal, b - normal);
    }
    painter.setPen(pens.line);
    painter.drawLine(a, b);
}

} // namespace

void EditorPainter::paint(QPainter& painter, const QRegion& dirty, const EditorScene& scene)
{
    const QSize viewSize(static_cast<int>(scene.mapping.width), static_cast<int>(scene.mapping.height));
    // Under an opaque image the background would only be painted over: filling a whole
    // view costs as much as drawing the image itself.
    const QRegion background
        = scene.image ? dirty.subtracted(scene.image->opaqueArea(viewSize, scene.imageOpacity)) : dirty;
    for (const QRect& rect : background)
        painter.fillRect(rect, scene.background);
    if (scene.image)
        scene.image->draw(painter, dirty, viewSize, scene.visibleRect, scene.imageOpacity);
    if (!scene.hint.isEmpty())
        paintHint(painter, dirty, scene);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, scene.antialiased);
    painter.translate(kPixelCentre, kPixelCentre);
    if (scene.lines)
        paintLines(painter, dirty, scene);
    if (scene.overlay) {
        strokeSegment(painter, scene.mapping.toWidget(scene.overlay->start), scene.mapping.toWidget(scene.overlay->end),
            SegmentPens(scene.lineColor, scene.antialiased));
    }
    paintSelectionRect(painter, scene);
    paintTransformFrame(painter, scene);
    painter.restore();
    if (scene.dropHighlight || scene.focusFrame) {
        const qreal width = scene.dropHighlight ? 3.0 : 2.0;
        painter.setPen(QPen(scene.dropHighlight ? *scene.dropHighlight : *scene.focusFrame, width));
        painter.setBrush(Qt::NoBrush);
        const qreal inset = width / 2.0;
        painter.drawRect(QRectF(scene.visibleRect).adjusted(inset, inset, -inset, -inset));
    }
}

void EditorPainter::paintLines(QPainter& painter, const QRegion& dirty, const EditorScene& scene)
{
    std::unordered_set<const MorphLine*> selected;
    if (scene.selectedLines)
        for (const MorphLine::Ptr& line : *scene.selectedLines)
            selected.insert(line.get());
    const SegmentPens pens(scene.lineColor, scene.antialiased);
    const QRect dirtyBounds = dirty.boundingRect();
    for (const MorphLine::Ptr& line : *scene.lines) {
        const LineEnds ends = scene.mapping.lineEnds(*line, scene.track);
        const bool isSelected = selected.count(line.get()) > 0;
        const QRectF box = scene.mapping.toWidget(boxOf(ends.start, ends.end));
        // An empty reach: a point that is not a number, which cannot be drawn anywhere.
        const QRect reach = grownWidgetRect(box, isSelected ? kSelectedLineMargin : kLineMargin);
        if (reach.isEmpty() || !reach.intersects(dirtyBounds) || !dirty.intersects(reach))
            continue;
        strokeSegment(painter, scene.mapping.toWidget(ends.start), scene.mapping.toWidget(ends.end), pens);
        // Right after the line, so that a later line is drawn over these knobs.
        if (isSelected)
            paintKnobs(painter, ends, scene);
    }
}

void EditorPainter::paintKnobs(QPainter& painter, const LineEnds& ends, const EditorScene& scene)
{
    const qreal dpr = painter.device()->devicePixelRatioF();
    const QImage& start = m_knobs.startKnob(scene.lineColor, dpr);
    const QImage& end = m_knobs.endKnob(scene.lineColor, dpr);
    const qreal alpha = scene.lineColor.alphaF();
    const qreal oldOpacity = painter.opacity();
    // A nearly opaque colour draws its knobs opaque, any other with the colour's alpha.
    painter.setOpacity(alpha > 0.9 ? 1.0 : alpha);
    const QPointF half(KnobImages::kSize / 2.0, KnobImages::kSize / 2.0);
    painter.drawImage(scene.mapping.toWidget(ends.start) - half, start);
    painter.drawImage(scene.mapping.toWidget(ends.end) - half, end);
    painter.setOpacity(oldOpacity);
}

void EditorPainter::paintSelectionRect(QPainter& painter, const EditorScene& scene)
{
    if (scene.selectionRect.isEmpty())
        return;
    QPen pen(selectionRectColor(scene.lineColor), 3.0, Qt::CustomDashLine, Qt::FlatCap, Qt::MiterJoin);
    // 5 units on, 2 off; Qt measures dashes in pen widths.
    pen.setDashPattern({5.0 / 3.0, 2.0 / 3.0});
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(scene.mapping.toWidget(scene.selectionRect));
}

void EditorPainter::paintTransformFrame(QPainter& painter, const EditorScene& scene)
{
    if (!scene.transformFrame)
        return;
    const TransformFrame frame(*scene.transformFrame);
    const QColor rim = KnobImages::contrastingColor(scene.lineColor);
    // Crisp: the box and the handles sit on whole pixels.
    painter.setRenderHint(QPainter::Antialiasing, false);
    QPen dashes(scene.lineColor, 1.0, Qt::DashLine);
    dashes.setDashPattern({4.0, 3.0});
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(rim, 1.0));
    painter.drawRect(scene.mapping.toWidget(frame.box()));
    painter.setPen(dashes);
    painter.drawRect(scene.mapping.toWidget(frame.box()));
    painter.setPen(QPen(rim, 1.0));
    painter.setBrush(scene.lineColor);
    const qreal side = 2.0 * TransformFrame::kHandleReach - 3.0;
    for (int i = 0; i < 8; ++i) {
        const QPointF centre = scene.mapping.toWidget(frame.handlePosition(static_cast<FrameHandle>(i)));
        painter.drawRect(QRectF(centre.x() - side / 2.0, centre.y() - side / 2.0, side, side));
    }
    painter.setRenderHint(QPainter::Antialiasing, true);
}

QRect EditorPainter::transformFrameArea(const ViewMapping& mapping, ViewRect box)
{
    return grownWidgetRect(mapping.toWidget(box), TransformFrame::kHandleReach + 2.0);
}

void EditorPainter::paintHint(QPainter& painter, const QRegion& dirty, const EditorScene& scene)
{
    // Laying out the wrapped text is the costly part: not for a repaint elsewhere.
    const QRectF rect = hintRect(scene.mapping);
    if (rect.width() <= 0.0 || rect.height() <= 0.0 || !dirty.intersects(rect.toAlignedRect()))
        return;
    painter.setFont(hintFont());
    painter.setPen(scene.hintColor);
    painter.drawText(rect, Qt::AlignCenter | Qt::TextWordWrap, scene.hint);
}

QRect EditorPainter::segmentRect(const ViewMapping& mapping, const LineEnds& ends)
{
    return grownWidgetRect(mapping.toWidget(boxOf(ends.start, ends.end)), 5.0);
}

QRect EditorPainter::selectionRectArea(const ViewMapping& mapping, ViewRect rect)
{
    if (rect.isEmpty())
        return {};
    return grownWidgetRect(mapping.toWidget(rect), 3.0);
}

QRectF EditorPainter::hintRect(const ViewMapping& mapping)
{
    return QRectF(50.0, 100.0, mapping.width - 100.0, mapping.height - 200.0);
}

QColor EditorPainter::selectionRectColor(const QColor& lineColor)
{
    // Half and half with device white 0.5 at alpha 0.5, alpha included.
    auto mix = [](float a, float b) { return 0.5f * a + 0.5f * b; };
    return QColor::fromRgbF(mix(lineColor.redF(), 0.5f), mix(lineColor.greenF(), 0.5f), mix(lineColor.blueF(), 0.5f),
        mix(lineColor.alphaF(), 0.5f));
}

} // namespace plyra
