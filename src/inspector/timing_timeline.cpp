// SPDX-License-Identifier: MIT
#include "inspector/timing_timeline.h"

#include "inspector/time_field.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace plyra {
namespace {

constexpr int kTop = 8; // room for the frame marker's head
constexpr int kRowHeight = 12;
constexpr int kRowGap = 10;
constexpr int kRightMargin = 12;
constexpr int kAxisGap = 6;
constexpr int kTickLength = 4;
constexpr int kGrab = 6; // how far from a bar's end a press still takes it
constexpr int kHandleWidth = 4;

TimingCell beginCell(int row)
{
    return kTimingCells[static_cast<std::size_t>(row * 2)];
}

TimingCell stopCell(int row)
{
    return kTimingCells[static_cast<std::size_t>(row * 2 + 1)];
}

int rowOf(TimingCell cell)
{
    return static_cast<int>(cellIndex(cell)) / 2;
}

QColor rowColor(int row)
{
    static const QColor colors[] = {QColor(52, 120, 246), QColor(40, 160, 80), QColor(230, 130, 30)};
    return colors[row];
}

float snapped(float time, bool fine)
{
    const double scale = fine ? 1000.0 : 100.0;
    return static_cast<float>(std::round(static_cast<double>(time) * scale) / scale);
}

} // namespace

TimingTimeline::TimingTimeline(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("timingTimeline"));
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Timing timeline"));
    updateAccessibleDescription();
}

void TimingTimeline::setValues(const TimingValues& values)
{
    if (values == m_values)
        return;
    m_values = values;
    updateAccessibleDescription();
    update();
}

void TimingTimeline::setDissolveEnabled(bool enabled)
{
    if (enabled == m_dissolveEnabled)
        return;
    m_dissolveEnabled = enabled;
    updateAccessibleDescription();
    update();
}

void TimingTimeline::setFrameTime(std::optional<float> time)
{
    if (time == m_frameTime)
        return;
    m_frameTime = time;
    updateAccessibleDescription();
    update();
}

// ---- geometry ------------------------------------------------------------------------

int TimingTimeline::labelWidth() const
{
    int widest = 0;
    for (int row = 0; row < 3; ++row)
        widest = std::max(widest, fontMetrics().horizontalAdvance(rowLabel(row)));
    return widest + 12;
}

double TimingTimeline::timeToX(float time) const
{
    const int left = labelWidth();
    const int span = std::max(1, width() - left - kRightMargin);
    return left + static_cast<double>(time) * span;
}

float TimingTimeline::xToTime(double x) const
{
    const int left = labelWidth();
    const int span = std::max(1, width() - left - kRightMargin);
    return static_cast<float>(std::clamp((x - left) / span, 0.0, 1.0));
}

QRect TimingTimeline::rowRect(int row) const
{
    const int left = labelWidth();
    return QRect(left, kTop + row * (kRowHeight + kRowGap), std::max(1, width() - left - kRightMargin), kRowHeight);
}

QPoint TimingTimeline::handlePosition(TimingCell cell) const
{
    const double x = timeToX(m_values[cellIndex(cell)]);
    return QPoint(static_cast<int>(std::lround(x)), rowRect(rowOf(cell)).center().y());
}

QSize TimingTimeline::sizeHint() const
{
    return QSize(std::max(320, labelWidth() + 240), minimumSizeHint().height());
}

QSize TimingTimeline::minimumSizeHint() const
{
    const int rows = kTop + 3 * kRowHeight + 2 * kRowGap;
    return QSize(labelWidth() + 120, rows + kAxisGap + kTickLength + fontMetrics().height() + 2);
}

QString TimingTimeline::rowLabel(int row) const
{
    switch (row) {
    case 0:
        return tr("Start point");
    case 1:
        return tr("End point");
    default:
        return tr("Dissolve");
    }
}

// ---- dragging ------------------------------------------------------------------------

std::optional<TimingTimeline::Hit> TimingTimeline::handleAt(QPoint pos) const
{
    for (int row = 0; row < 3; ++row) {
        if (row == 2 && !m_dissolveEnabled)
            continue;
        const QRect area = rowRect(row).adjusted(-kGrab, -4, kGrab, 4);
        if (!area.contains(pos))
            continue;
        const double xBegin = timeToX(m_values[cellIndex(beginCell(row))]);
        const double xStop = timeToX(m_values[cellIndex(stopCell(row))]);
        const double toBegin = std::abs(pos.x() - xBegin);
        const double toStop = std::abs(pos.x() - xStop);
        if (std::min(toBegin, toStop) > kGrab)
            continue;
        if (std::abs(xStop - xBegin) < 2.0)
            return Hit{beginCell(row), true};
        return Hit{toBegin <= toStop ? beginCell(row) : stopCell(row), false};
    }
    return std::nullopt;
}

void TimingTimeline::mousePressEvent(QMouseEvent* event)
{
    const std::optional<Hit> hit = event->button() == Qt::LeftButton ? handleAt(event->position().toPoint()) : std::nullopt;
    if (!hit || m_drag) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_drag = hit;
    m_pressX = event->position().toPoint().x();
    m_lastValue = m_values[cellIndex(hit->cell)];
    emit dragStarted();
}

void TimingTimeline::mouseMoveEvent(QMouseEvent* event)
{
    if (m_drag) {
        dragTo(event);
        return;
    }
    if (handleAt(event->position().toPoint()))
        setCursor(Qt::SizeHorCursor);
    else
        unsetCursor();
}

void TimingTimeline::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_drag || event->button() != Qt::LeftButton) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    dragTo(event);
    m_drag.reset();
    emit dragFinished();
}

void TimingTimeline::dragTo(const QMouseEvent* event)
{
    const int x = event->position().toPoint().x();
    if (m_drag->ambiguous) {
        if (x == m_pressX)
            return;
        const int row = rowOf(m_drag->cell);
        m_drag = Hit{x < m_pressX ? beginCell(row) : stopCell(row), false};
        m_lastValue = m_values[cellIndex(m_drag->cell)];
    }
    const float value = snapped(xToTime(x), event->modifiers().testFlag(Qt::ShiftModifier));
    if (value == m_lastValue)
        return;
    m_lastValue = value;
    emit handleDragged(m_drag->cell, value);
}

// ---- drawing -------------------------------------------------------------------------

void TimingTimeline::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int row = 0; row < 3; ++row)
        paintRow(painter, row);
    paintAxis(painter);
    if (m_frameTime)
        paintFrameMarker(painter);
}

void TimingTimeline::paintRow(QPainter& painter, int row) const
{
    const QRect track = rowRect(row);
    const bool enabled = isEnabled() && (row != 2 || m_dissolveEnabled);
    const QPalette::ColorGroup group = enabled ? QPalette::Active : QPalette::Disabled;
    painter.setPen(palette().color(group, QPalette::WindowText));
    painter.drawText(QRect(0, track.top() - 4, track.left() - 8, track.height() + 8),
        Qt::AlignRight | Qt::AlignVCenter, rowLabel(row));

    QColor trackColor = palette().color(QPalette::Mid);
    trackColor.setAlpha(70);
    painter.setPen(Qt::NoPen);
    painter.setBrush(trackColor);
    painter.drawRoundedRect(track, 3, 3);

    const double xBegin = timeToX(m_values[cellIndex(beginCell(row))]);
    const double xStop = std::max(xBegin, timeToX(m_values[cellIndex(stopCell(row))]));
    QColor color = enabled ? rowColor(row) : palette().color(QPalette::Disabled, QPalette::Mid);
    // An interval of no length is a jump; it still shows as a thin bar.
    const QRectF bar(xBegin, track.top() + 2, std::max(3.0, xStop - xBegin), track.height() - 4);
    painter.setBrush(color);
    painter.drawRoundedRect(bar.translated(xStop - xBegin < 3.0 ? -1.5 : 0.0, 0.0), 2, 2);
    if (!enabled)
        return;
    painter.setBrush(color.darker(150));
    for (double x : {xBegin, xStop})
        painter.drawRoundedRect(QRectF(x - kHandleWidth / 2.0, track.top() - 1, kHandleWidth, track.height() + 2), 1.5, 1.5);
}

void TimingTimeline::paintAxis(QPainter& painter) const
{
    const int axisY = rowRect(2).bottom() + kAxisGap;
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(QPointF(timeToX(0.0f), axisY), QPointF(timeToX(1.0f), axisY));
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    const QFontMetrics metrics = fontMetrics();
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const float time = static_cast<float>(quarter) / 4.0f;
        const double x = timeToX(time);
        painter.drawLine(QPointF(x, axisY), QPointF(x, axisY + kTickLength));
        const QString label = TimeField::timeText(locale(), time);
        const int labelWidth = metrics.horizontalAdvance(label);
        painter.drawText(QPointF(x - labelWidth / 2.0, axisY + kTickLength + metrics.ascent() + 1), label);
    }
}

void TimingTimeline::paintFrameMarker(QPainter& painter) const
{
    const double x = timeToX(std::clamp(*m_frameTime, 0.0f, 1.0f));
    const QColor color(220, 40, 40);
    painter.setPen(QPen(color, 1.5));
    painter.drawLine(QPointF(x, kTop - 2), QPointF(x, rowRect(2).bottom() + kAxisGap));
    QPainterPath head;
    head.moveTo(x - 4, 0);
    head.lineTo(x + 4, 0);
    head.lineTo(x, kTop - 1);
    head.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.fillPath(head, color);
}

void TimingTimeline::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange) {
        setAccessibleName(tr("Timing timeline"));
        updateAccessibleDescription();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

void TimingTimeline::updateAccessibleDescription()
{
    auto text = [this](TimingCell cell) { return TimeField::timeText(locale(), m_values[cellIndex(cell)]); };
    QString description = tr("Start point moves from %1 to %2, end point from %3 to %4, dissolve from %5 to %6.")
                              .arg(text(TimingCell::StartBegin), text(TimingCell::StartStop),
                                  text(TimingCell::EndBegin), text(TimingCell::EndStop),
                                  text(TimingCell::DissolveStart), text(TimingCell::DissolveEnd));
    if (m_frameTime)
        description += QLatin1Char(' ') + tr("Frame window at %1.").arg(TimeField::timeText(locale(), *m_frameTime));
    setAccessibleDescription(description);
}

} // namespace plyra
