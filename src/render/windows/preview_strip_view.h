// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"

#include <QPointF>
#include <QRectF>
#include <QWidget>

#include <vector>

namespace plyra {

class MorphDocument;
class PreviewStripRender;

/// The cells of the preview strip side by side (or one above the other in a tall strip),
/// each showing its frame and, over it, the document's lines at the cell's time in the
/// document's line colour. Lines are read at every drawing, so they follow an edit at
/// once while the frames follow when their render is done.
/// Threads: main thread.
class PreviewStripView : public QWidget {
    Q_OBJECT

public:
    static constexpr int kMargin = 6;
    static constexpr int kSpacing = 6;

    PreviewStripView(MorphDocument& document, const PreviewStripRender& render, QWidget* parent = nullptr);

    /// Where a line point (unit coordinates, y up) is drawn in a cell (view coordinates,
    /// y down): the point (0, 1) is the cell's top left corner.
    static QPointF mapToCell(Point point, const QRectF& cell);

    void setVertical(bool vertical);
    bool isVertical() const { return m_vertical; }
    /// The cells' rectangles for the current size: equal cells of the document's
    /// proportions, as large as the strip allows, centred.
    std::vector<QRect> cellRects() const;
    /// The size of one cell in pixels.
    QSize cellSize() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The cells' size changed with the strip's size, orientation or proportions.
    void cellSizeChanged(QSize size);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    float cellAspectRatio() const;
    void drawCell(QPainter& painter, int index, const QRect& cell) const;
    void drawLines(QPainter& painter, float time, const QRectF& cell) const;

    MorphDocument& m_document;
    const PreviewStripRender& m_render;
    bool m_vertical = false;
};

} // namespace plyra
