// SPDX-License-Identifier: MIT
#include "editor/scaled_image_cache.h"

#include <QPainter>
#include <QtMath>

#include <cmath>

namespace plyra {
namespace {

// Views up to this many device pixels keep a scaled copy of their whole size (16 MB);
// larger ones keep only what is visible plus a margin.
constexpr qint64 kWholeViewPixels = 4096 * 1024;

} // namespace

void ScaledImageCache::setImage(const QImage& image)
{
    if (m_pyramid && image.cacheKey() == m_key)
        return;
    clear();
    if (image.isNull())
        return;
    m_pyramid.emplace(image);
    m_key = image.cacheKey();
    m_opaque = !image.hasAlphaChannel();
    m_displaySize = image.size();
}

void ScaledImageCache::clear()
{
    m_pyramid.reset();
    m_key = 0;
    m_scaled = QImage();
    m_scaledRect = QRect();
    m_displaySize = QSize();
}

QSize ScaledImageCache::adjustedDisplaySize(QSize current, QSize viewSize)
{
    const bool widthOff = std::abs(current.width() - viewSize.width()) > 1;
    const bool heightOff = std::abs(current.height() - viewSize.height()) > 1;
    return widthOff || heightOff ? viewSize : current;
}

QRect ScaledImageCache::opaqueArea(QSize viewSize, qreal opacity) const
{
    if (!m_pyramid || !m_opaque || opacity < 1.0)
        return {};
    const QSize display = adjustedDisplaySize(m_displaySize, viewSize);
    return QRect(0, viewSize.height() - display.height(), display.width(), display.height());
}

QRect ScaledImageCache::imageRect(QSize viewSize) const
{
    // Bottom left in view units is the widget's bottom left.
    return QRect(0, viewSize.height() - m_displaySize.height(), m_displaySize.width(), m_displaySize.height());
}

void ScaledImageCache::draw(QPainter& painter, const QRegion& dirty, QSize viewSize, const QRect& visible, qreal opacity)
{
    if (!m_pyramid)
        return;
    m_displaySize = adjustedDisplaySize(m_displaySize, viewSize);
    const qreal dpr = painter.device()->devicePixelRatioF();
    const QRect image = imageRect(viewSize);
    const qreal oldOpacity = painter.opacity();
    painter.setOpacity(opacity);
    for (const QRect& rect : dirty) {
        const QRect needed = rect & image;
        if (needed.isEmpty())
            continue;
        const bool current = m_scaledDisplaySize == m_displaySize && m_scaledViewSize == viewSize && m_scaledDpr == dpr;
        if (!current || !m_scaledRect.contains(needed))
            rescale(rectToKeep(needed, visible, viewSize), viewSize, dpr);
        const QRectF source(QPointF(needed.topLeft() - m_scaledRect.topLeft()) * dpr, QSizeF(needed.size()) * dpr);
        painter.drawImage(QRectF(needed), m_scaled, source);
    }
    painter.setOpacity(oldOpacity);
}

QRect ScaledImageCache::rectToKeep(const QRect& needed, const QRect& visible, QSize viewSize) const
{
    const QRect image = imageRect(viewSize);
    const qint64 area = static_cast<qint64>(image.width()) * image.height();
    const qint64 visibleArea = static_cast<qint64>(visible.width()) * visible.height();
    // The whole image while it is not much more than what can be seen: zooming in
    // makes it grow quickly, and every step would rescale all of it.
    if (area <= kWholeViewPixels && (visible.isEmpty() || area <= 2 * visibleArea))
        return image;
    // A quarter of the visible size as margin on every side, so that scrolling a little
    // reuses the copy.
    const QRect seen = visible.isEmpty() ? needed : (visible | needed);
    const int dx = seen.width() / 4;
    const int dy = seen.height() / 4;
    return seen.adjusted(-dx, -dy, dx, dy) & image;
}

void ScaledImageCache::rescale(const QRect& keep, QSize viewSize, qreal dpr)
{
    const QSize target(qCeil(m_displaySize.width() * dpr), qCeil(m_displaySize.height() * dpr));
    const QImage& level = m_pyramid->levelFor(target);
    QImage scaled(QSize(qCeil(keep.width() * dpr), qCeil(keep.height() * dpr)), level.format());
    scaled.fill(Qt::transparent);
    {
        QPainter p(&scaled);
        p.setCompositionMode(QPainter::CompositionMode_Source);
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        // The whole level through a transform, clipped to the kept part: neighbouring
        // parts sample the same pixels, so no seam shows where they meet.
        const QRect image = imageRect(viewSize);
        p.translate((image.left() - keep.left()) * dpr, (image.top() - keep.top()) * dpr);
        p.scale(m_displaySize.width() * dpr / level.width(), m_displaySize.height() * dpr / level.height());
        p.drawImage(QPointF(0, 0), level);
    }
    m_scaled = scaled;
    m_scaledRect = keep;
    m_scaledDisplaySize = m_displaySize;
    m_scaledViewSize = viewSize;
    m_scaledDpr = dpr;
}

} // namespace plyra
