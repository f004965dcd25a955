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
    m_image = image;
    m_scaled = QImage();
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
    m_scaled = QImage();
    update();
}

QRect MoviePictureView::imageRect() const
{
    if (m_image.isNull())
        return {};
    if (!m_preserveAspect)
        return rect();
    const QSize size = m_image.size().scaled(this->size(), Qt::KeepAspectRatio);
    return QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
}

void MoviePictureView::resizeEvent(QResizeEvent* event)
{
    m_scaled = QImage();
    QWidget::resizeEvent(event);
}

void MoviePictureView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (m_image.isNull()) {
        painter.setPen(Qt::white);
        painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap, m_message);
        return;
    }
    const QRect target = imageRect();
    // Scaled to device pixels, so that the picture is as sharp as the screen.
    const qreal dpr = devicePixelRatioF();
    const QSize pixels = (QSizeF(target.size()) * dpr).toSize();
    if (m_scaled.size() != pixels || m_scaled.devicePixelRatio() != dpr) {
        m_scaled = m_image.size() == pixels ? m_image : m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        m_scaled.setDevicePixelRatio(dpr);
    }
    painter.drawImage(target.topLeft(), m_scaled);
    if (m_message.isEmpty())
        return;
    // Over a picture the message takes a band at the bottom.
    const QRect band(0, height() - 3 * fontMetrics().height(), width(), 3 * fontMetrics().height());
    painter.fillRect(band, QColor(0, 0, 0, 180));
    painter.setPen(Qt::white);
    painter.drawText(band.adjusted(8, 0, -8, 0), Qt::AlignCenter | Qt::TextWordWrap, m_message);
}

} // namespace plyra
