// SPDX-License-Identifier: MIT
#include "render/windows/progress_pie.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace plyra {

ProgressPie::ProgressPie(QWidget* parent)
    : QProgressBar(parent)
{
    setRange(0, kSteps);
    setValue(0);
    setTextVisible(false);
    setFixedSize(kSide, kSide);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(tr("Progress"));
    setToolTip(tr("Progress; click to render again"));
}

void ProgressPie::setFraction(float fraction)
{
    const float clamped = std::isfinite(fraction) ? std::clamp(fraction, 0.0f, 1.0f) : 0.0f;
    setValue(static_cast<int>(std::lround(clamped * kSteps)));
}

void ProgressPie::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(rect()).adjusted(3.5, 3.5, -3.5, -3.5);
    const QPalette& colors = palette();
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    painter.setPen(QPen(colors.color(group, QPalette::WindowText), 1.2));
    painter.setBrush(colors.color(group, QPalette::Base));
    painter.drawEllipse(circle);
    if (value() <= 0)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.color(group, QPalette::Highlight));
    // Qt counts angles in sixteenths of a degree, counter-clockwise from three o'clock.
    const int span = -value() * 360 * 16 / kSteps;
    painter.drawPie(circle.adjusted(2, 2, -2, -2), 90 * 16, span);
}

void ProgressPie::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
    QProgressBar::mouseReleaseEvent(event);
}

} // namespace plyra
