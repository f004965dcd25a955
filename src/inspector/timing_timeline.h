// SPDX-License-Identifier: MIT
#pragma once

#include "inspector/timing_cell.h"

#include <QWidget>

#include <optional>

namespace plyra {

/// The morph time from 0 to 1 drawn as three rows: when the start point moves, when the
/// end point moves and when the picture dissolves, each interval a bar, with a marker at
/// the time of the open frame window. Dragging a bar's end reports the new time of that
/// end (snapped to 0.01, to 0.001 with Shift); the owner applies it like a typed value.
/// Threads: main thread only.
class TimingTimeline : public QWidget {
    Q_OBJECT

public:
    explicit TimingTimeline(QWidget* parent = nullptr);

    const TimingValues& values() const { return m_values; }
    void setValues(const TimingValues& values);
    bool isDissolveEnabled() const { return m_dissolveEnabled; }
    void setDissolveEnabled(bool enabled);
    std::optional<float> frameTime() const { return m_frameTime; }
    void setFrameTime(std::optional<float> time);

    /// Where a time lies across the widget, and back (clamped to 0...1).
    double timeToX(float time) const;
    float xToTime(double x) const;
    /// The row of bars that holds a cell's end: 0 start point, 1 end point, 2 dissolve.
    QRect rowRect(int row) const;
    /// The widget point at the middle of a cell's handle.
    QPoint handlePosition(TimingCell cell) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void dragStarted();
    void handleDragged(plyra::TimingCell cell, float value);
    void dragFinished();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Hit {
        TimingCell cell;
        // Both ends of the bar lie under the pointer; the first move picks the end.
        bool ambiguous;
    };

    std::optional<Hit> handleAt(QPoint pos) const;
    void dragTo(const QMouseEvent* event);
    void paintRow(QPainter& painter, int row) const;
    void paintAxis(QPainter& painter) const;
    void paintFrameMarker(QPainter& painter) const;
    int labelWidth() const;
    QString rowLabel(int row) const;
    void updateAccessibleDescription();

    TimingValues m_values{0.0f, 1.0f, 0.0f, 1.0f, 0.0f, 1.0f};
    bool m_dissolveEnabled = true;
    std::optional<float> m_frameTime;
    std::optional<Hit> m_drag;
    int m_pressX = 0;
    float m_lastValue = 0.0f;
};

} // namespace plyra
