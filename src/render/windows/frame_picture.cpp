// SPDX-License-Identifier: MIT
#include "render/windows/frame_picture.h"

#include <QPainter>

namespace plyra {

QRectF FramePicture::placement(QSize framePixels, qreal dpr, const QRectF& area, Fit fit)
{
    if (framePixels.isEmpty() || area.isEmpty())
        return {};
    const QSizeF own = QSizeF(framePixels) / dpr;
    QSizeF size = area.size();
    if (fit == Fit::ScaleToFit)
        size = own.scaled(area.size(), Qt::KeepAspectRatio);
    else if (fit == Fit::ShrinkToFit)
        size = own.width() <= area.width() && own.height() <= area.height() ? own : own.scaled(area.size(), Qt::KeepAspectRatio);
    return QRectF(area.center() - QPointF(size.width() / 2.0, size.height() / 2.0), size);
}

void FramePicture::setImage(const QImage& image)
{
    m_image = image;
    m_scaled = QImage();
}

void FramePicture::draw(QPainter& painter, const QRectF& target, qreal dpr)
{
    if (m_image.isNull() || target.isEmpty())
        return;
    const QSize pixels = (target.size() * dpr).toSize();
    if (m_scaled.size() != pixels || m_scaled.devicePixelRatio() != dpr) {
        m_scaled = m_image.size() == pixels ? m_image : m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        m_scaled.setDevicePixelRatio(dpr);
    }
    painter.drawImage(target.topLeft(), m_scaled);
}

} // namespace plyra
