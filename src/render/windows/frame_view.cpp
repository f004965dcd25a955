// SPDX-License-Identifier: MIT
#include "render/windows/frame_view.h"

#include <QPainter>

namespace plyra {

FrameView::FrameView(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("imageView"));
    setAccessibleName(tr("Rendered frame"));
    setMinimumSize(64, 48);
}

void FrameView::setImage(const QImage& image)
{
    m_image = image;
    update();
}

QRectF FrameView::imageRect() const
{
    if (m_image.isNull())
        return {};
    const QRectF area = contentsRect();
    // The frame's own size is one frame pixel per device pixel.
    const QSizeF own = QSizeF(m_image.size()) / devicePixelRatioF();
    QSizeF size = own.scaled(area.size(), Qt::KeepAspectRatio);
    // A frame smaller than the view is shown at its own size, as image views do.
    if (own.width() <= area.width() && own.height() <= area.height())
        size = own;
    return QRectF(area.center() - QPointF(size.width() / 2.0, size.height() / 2.0), size);
}

void FrameView::paintEvent(QPaintEvent*)
{
    if (m_image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(imageRect(), m_image);
}

} // namespace plyra
