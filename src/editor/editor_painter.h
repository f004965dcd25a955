// SPDX-License-Identifier: MIT
#pragma once

#include "editor/knob_images.h"
#include "editor/view_geometry.h"
#include "model/morph_line.h"

#include <QColor>
#include <QRect>
#include <QRegion>
#include <QString>

#include <optional>
#include <vector>

class QPainter;

namespace plyra {

class ScaledImageCache;

/// Everything one drawing of an editor shows.
/// Threads: main thread only (it points into the document).
struct EditorScene {
    ViewMapping mapping;
    unsigned track = 0;
    const std::vector<MorphLine::Ptr>* lines = nullptr;
    const std::vector<MorphLine::Ptr>* selectedLines = nullptr;
    QColor lineColor;
    QColor background;
    /// The track's image, or the other track's shown faintly; none for neither.
    ScaledImageCache* image = nullptr;
    qreal imageOpacity = 1.0;
    /// The drop hint, shown when the track has no image.
    QString hint;
    QColor hintColor;
    std::optional<LineEnds> overlay;
    ViewRect selectionRect;
    /// The box of the selection's transform frame, drawn with its eight handles.
    std::optional<ViewRect> transformFrame;
    /// Lines, knobs and overlays drawn with smooth edges; rough ones draw faster.
    bool antialiased = true;
    /// The part of the view that can be seen, in widget coordinates.
    QRect visibleRect;
    /// A frame around the visible part while a usable file is dragged over the view.
    std::optional<QColor> dropHighlight;
    /// A thinner frame around the visible part while the view has the keyboard focus.
    std::optional<QColor> focusFrame;
};

/// Draws an editor: background, image or faint other image with the drop hint, every
/// line at the track's time with a thin contrasting outline, the knobs of selected
/// lines right after each line, the gesture's segment, the dashed selection rectangle
/// and the transform frame with its handles. Lines whose box (grown by 4 units, by a knob's reach when selected) misses
/// the dirty region are skipped.
/// Threads: main thread only.
class EditorPainter {
public:
    /// How far a line's drawing can reach beyond its box, knobs included.
    static constexpr double kDrawingReach = KnobImages::kSize / 2.0 + 2.0;

    void paint(QPainter& painter, const QRegion& dirty, const EditorScene& scene);

    /// The widget region that a segment stroked by paint() covers.
    static QRect segmentRect(const ViewMapping& mapping, const LineEnds& ends);
    /// The widget region that the dashed outline of rect covers; empty for an empty rect.
    static QRect selectionRectArea(const ViewMapping& mapping, ViewRect rect);
    /// The widget region that a transform frame with its handles covers.
    static QRect transformFrameArea(const ViewMapping& mapping, ViewRect box);
    /// The hint's rectangle: the bounds inset by 50 units left and right, 100 top and bottom.
    static QRectF hintRect(const ViewMapping& mapping);
    /// Line colour blended half and half with half-transparent middle grey.
    static QColor selectionRectColor(const QColor& lineColor);

private:
    void paintLines(QPainter& painter, const QRegion& dirty, const EditorScene& scene);
    void paintKnobs(QPainter& painter, const LineEnds& ends, const EditorScene& scene);
    void paintSelectionRect(QPainter& painter, const EditorScene& scene);
    void paintTransformFrame(QPainter& painter, const EditorScene& scene);
    void paintHint(QPainter& painter, const QRegion& dirty, const EditorScene& scene);

    KnobImages m_knobs;
};

} // namespace plyra
