// SPDX-License-Identifier: MIT
#include "editor/knob_images.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

namespace plyra {
namespace {

QImage knob(const QColor& fill, const QColor& rim, qreal dpr, bool round)
{
    const int pixels = qCeil(KnobImages::kSize * dpr);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(dpr);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    // An outer rim of the contrasting colour, then the line colour inside it, then a
    // dot of the rim colour on the point itself.
    const QRectF outer(0.5, 0.5, KnobImages::kSize - 1.0, KnobImages::kSize - 1.0);
    const QRectF inner = outer.adjusted(1.5, 1.5, -1.5, -1.5);
    auto shape = [round](const QRectF& r) {
        QPainterPath path;
        if (round)
            path.addEllipse(r);
        else
            path.addRoundedRect(r, 1.0, 1.0);
        return path;
    };
    p.fillPath(shape(outer), rim);
    p.fillPath(shape(inner), fill);
    const qreal c = KnobImages::kSize / 2.0;
    p.fillPath(shape(QRectF(c - 1.0, c - 1.0, 2.0, 2.0)), rim);
    return image;
}

} // namespace

QColor KnobImages::contrastingColor(const QColor& color)
{
    // Relative luminance of the sRGB colour, roughly.
    const qreal luminance = 0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF();
    return luminance > 0.45 ? QColor(Qt::black) : QColor(Qt::white);
}

const QImage& KnobImages::startKnob(const QColor& lineColor, qreal devicePixelRatio)
{
    make(lineColor, devicePixelRatio);
    return m_start;
}

const QImage& KnobImages::endKnob(const QColor& lineColor, qreal devicePixelRatio)
{
    make(lineColor, devicePixelRatio);
    return m_end;
}

void KnobImages::make(const QColor& lineColor, qreal devicePixelRatio)
{
    // The knob itself is opaque; the line colour's alpha is applied when it is drawn.
    const QRgb rgb = lineColor.rgb();
    if (!m_start.isNull() && rgb == m_rgb && devicePixelRatio == m_devicePixelRatio)
        return;
    QColor fill = lineColor;
    fill.setAlphaF(1.0f);
    const QColor rim = contrastingColor(fill);
    m_start = knob(fill, rim, devicePixelRatio, false);
    m_end = knob(fill, rim, devicePixelRatio, true);
    m_rgb = rgb;
    m_devicePixelRatio = devicePixelRatio;
}

} // namespace plyra
