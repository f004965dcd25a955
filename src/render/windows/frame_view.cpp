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
    m_picture.setImage(image);
    update();
}

QRectF FrameView::imageRect() const
{
    // A frame smaller than the view is shown at its own size, as image views do.
    return FramePicture::placement(image().size(), devicePixelRatioF(), contentsRect(), FramePicture::Fit::ShrinkToFit);
}

void FrameView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    m_picture.draw(painter, imageRect(), devicePixelRatioF());
}

} // namespace plyra
