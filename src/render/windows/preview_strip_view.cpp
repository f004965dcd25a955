// SPDX-License-Identifier: MIT
#include "render/windows/preview_strip_view.h"

#include "model/morph_document.h"
#include "render/windows/preview_strip_render.h"

#include <QPainter>
#include <QPainterPath>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>

namespace plyra {

PreviewStripView::PreviewStripView(MorphDocument& document, const PreviewStripRender& render, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
    , m_render(render)
{
    setObjectName(QStringLiteral("previewMatrix"));
    setAccessibleName(tr("Preview frames"));
    setAccessibleDescription(tr("Frames of the morph from the first image to the last, with the lines drawn over them"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QPointF PreviewStripView::mapToCell(Point point, const QRectF& cell)
{
    return {cell.x() + point.x * cell.width(), cell.y() + (1.0 - point.y) * cell.height()};
}

void PreviewStripView::setVertical(bool vertical)
{
    if (vertical == m_vertical)
        return;
    m_vertical = vertical;
    updateGeometry();
    update();
    emit cellSizeChanged(cellSize());
}

float PreviewStripView::cellAspectRatio() const
{
    const float ratio = m_document.aspectRatioInTrack(0);
    return ratio > 0.0f && std::isfinite(ratio) ? ratio : 4.0f / 3.0f;
}

QSize PreviewStripView::cellSize() const
{
    const int n = std::max(m_render.cellCount(), 1);
    const double ratio = cellAspectRatio();
    // Along the strip the cells share the length; across it they take the whole depth.
    const double along = m_vertical ? height() : width();
    const double across = (m_vertical ? width() : height()) - 2.0 * kMargin;
    const double lengthEach = (along - 2.0 * kMargin - (n - 1) * kSpacing) / n;
    double w = m_vertical ? across : lengthEach;
    double h = m_vertical ? lengthEach : across;
    if (w / h > ratio)
        w = h * ratio;
    else
        h = w / ratio;
    return {std::max(0, static_cast<int>(w)), std::max(0, static_cast<int>(h))};
}

std::vector<QRect> PreviewStripView::cellRects() const
{
    const QSize cell = cellSize();
    const int n = m_render.cellCount();
    const int step = (m_vertical ? cell.height() : cell.width()) + kSpacing;
    const int length = n * step - kSpacing;
    std::vector<QRect> rects;
    rects.reserve(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        const QPoint origin = m_vertical ? QPoint((width() - cell.width()) / 2, (height() - length) / 2 + i * step)
                                         : QPoint((width() - length) / 2 + i * step, (height() - cell.height()) / 2);
        rects.emplace_back(origin, cell);
    }
    return rects;
}

QSize PreviewStripView::sizeHint() const
{
    const int n = m_render.cellCount();
    const QSize cell(160, static_cast<int>(160 / cellAspectRatio()));
    return m_vertical ? QSize(cell.width() + 2 * kMargin, n * (cell.height() + kSpacing) + 2 * kMargin)
                      : QSize(n * (cell.width() + kSpacing) + 2 * kMargin, cell.height() + 2 * kMargin);
}

QSize PreviewStripView::minimumSizeHint() const
{
    return m_vertical ? QSize(60, 120) : QSize(120, 60);
}

void PreviewStripView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    emit cellSizeChanged(cellSize());
}

void PreviewStripView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const std::vector<QRect> cells = cellRects();
    for (int i = 0; i < static_cast<int>(cells.size()); ++i)
        drawCell(painter, i, cells[static_cast<std::size_t>(i)]);
}

void PreviewStripView::drawCell(QPainter& painter, int index, const QRect& cell) const
{
    painter.fillRect(cell, palette().color(QPalette::Base));
    const QImage& image = m_render.cellImage(index);
    if (!image.isNull())
        painter.drawImage(QRectF(cell), image);
    drawLines(painter, m_render.cellTime(index), QRectF(cell));
    painter.setPen(QPen(palette().color(QPalette::Mid), 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(cell).adjusted(-0.5, -0.5, 0.5, 0.5));
}

void PreviewStripView::drawLines(QPainter& painter, float time, const QRectF& cell) const
{
    QPainterPath path;
    for (const MorphLine::Ptr& line : m_document.morphLines()) {
        path.moveTo(mapToCell(line->startPointAtTime(time), cell));
        path.lineTo(mapToCell(line->endPointAtTime(time), cell));
    }
    painter.save();
    painter.setClipRect(cell);
    painter.setPen(QPen(m_document.lineColor()->toQColor(), 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    painter.restore();
}

} // namespace plyra
