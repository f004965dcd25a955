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
    QSizeF size = QSizeF(m_image.size()).scaled(area.size(), Qt::KeepAspectRatio);
    // A frame smaller than the view is shown at its own size, as image views do.
    if (m_image.width() <= area.width() && m_image.height() <= area.height())
        size = QSizeF(m_image.size());
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
