// SPDX-License-Identifier: MIT
#pragma once

#include <QProgressBar>

namespace plyra {

/// A small round, determinate progress indicator for a toolbar: a pie that fills
/// clockwise from the top as a render goes on. A click asks for the render to start over.
/// Threads: main thread.
class ProgressPie : public QProgressBar {
    Q_OBJECT

public:
    static constexpr int kSide = 32;
    static constexpr int kSteps = 1000;

    explicit ProgressPie(QWidget* parent = nullptr);

    /// Progress from 0 to 1; values outside are clamped.
    void setFraction(float fraction);
    float fraction() const { return static_cast<float>(value()) / kSteps; }

    QSize sizeHint() const override { return {kSide, kSide}; }
    QSize minimumSizeHint() const override { return {kSide, kSide}; }

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};

} // namespace plyra
