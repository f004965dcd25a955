// SPDX-License-Identifier: MIT
#include "render/windows/movie_picture_view.h"

#include <QPainter>

namespace plyra {

MoviePictureView::MoviePictureView(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("moviePicture"));
    setAccessibleName(tr("Movie"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(64, 48);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void MoviePictureView::setImage(const QImage& image)
{
    m_picture.setImage(image);
    update();
}

void MoviePictureView::setMessage(const QString& message)
{
    m_message = message;
    setAccessibleDescription(message);
    update();
}

void MoviePictureView::setPreservesAspectRatio(bool preserve)
{
    if (preserve == m_preserveAspect)
        return;
    m_preserveAspect = preserve;
    update();
}

QRectF MoviePictureView::imageRect() const
{
    // As movie players do, the picture grows with the window.
    return FramePicture::placement(image().size(), devicePixelRatioF(), rect(),
        m_preserveAspect ? FramePicture::Fit::ScaleToFit : FramePicture::Fit::Stretch);
}

void MoviePictureView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (image().isNull()) {
        painter.setPen(Qt::white);
        painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap, m_message);
        return;
    }
    m_picture.draw(painter, imageRect(), devicePixelRatioF());
    if (m_message.isEmpty())
        return;
    // Over a picture the message takes a band at the bottom.
    const QRect band(0, height() - 3 * fontMetrics().height(), width(), 3 * fontMetrics().height());
    painter.fillRect(band, QColor(0, 0, 0, 180));
    painter.setPen(Qt::white);
    painter.drawText(band.adjusted(8, 0, -8, 0), Qt::AlignCenter | Qt::TextWordWrap, m_message);
}

} // namespace plyra
