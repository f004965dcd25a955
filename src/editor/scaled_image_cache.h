// SPDX-License-Identifier: MIT
#pragma once

#include "editor/image_pyramid.h"

#include <QImage>
#include <QRect>
#include <QRegion>
#include <QSize>

#include <optional>

class QPainter;

namespace plyra {

/// Draws a track image scaled to the view from a kept copy at the current size. The copy
/// covers the whole view while the view is small, and only the visible part with a
/// margin once zooming makes the view large, so a view of 20000 × 12000 never holds a
/// scaled copy of its full size. Copies are made from the smallest pyramid level that
/// is still larger than the view, so rescaling a large photo stays cheap.
/// Threads: main thread only.
class ScaledImageCache {
public:
    /// A different image (by Qt's cache key) drops the levels and the scaled copy.
    void setImage(const QImage& image);
    void clear();
    bool hasImage() const { return m_pyramid.has_value(); }

    /// Draws the part of the image under dirty (widget coordinates) with the given
    /// opacity. The image is shown at its display size, anchored at the view's bottom
    /// left; visible is the part of the view that can be seen (widget coordinates).
    void draw(QPainter& painter, const QRegion& dirty, QSize viewSize, const QRect& visible, qreal opacity);

    /// The part of the view (widget coordinates) that draw() covers with opaque pixels at
    /// this opacity; empty for an image with an alpha channel or a faint one.
    QRect opaqueArea(QSize viewSize, qreal opacity) const;

    /// The display size after drawing in a view of viewSize: the view's size, unless the
    /// current display size is within 1 unit of it in both directions.
    static QSize adjustedDisplaySize(QSize current, QSize viewSize);
    QSize displaySize() const { return m_displaySize; }
    /// The part of the view the scaled copy covers (widget coordinates) and its pixels.
    QRect scaledRect() const { return m_scaledRect; }
    QSize scaledPixelSize() const { return m_scaled.size(); }

private:
    QRect imageRect(QSize viewSize) const;
    QRect rectToKeep(const QRect& needed, const QRect& visible, QSize viewSize) const;
    void rescale(const QRect& keep, QSize viewSize, qreal dpr);

    std::optional<ImagePyramid> m_pyramid;
    qint64 m_key = 0;
    bool m_opaque = false;
    QSize m_displaySize;
    QImage m_scaled;
    QRect m_scaledRect;
    QSize m_scaledDisplaySize;
    QSize m_scaledViewSize;
    qreal m_scaledDpr = 0.0;
};

} // namespace plyra
