// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>

namespace plyra {

/// The knobs drawn on the ends of selected lines, made in code for the line colour: the
/// start knob a square, the end knob a disc, each with a thin contrasting rim so that
/// it stays visible on dark and light photos. Kept for the last colour asked for.
/// Threads: main thread only.
class KnobImages {
public:
    /// Width and height of a knob in view units.
    static constexpr int kSize = 11;

    const QImage& startKnob(const QColor& lineColor, qreal devicePixelRatio);
    const QImage& endKnob(const QColor& lineColor, qreal devicePixelRatio);

    /// Black for a light colour, white for a dark one.
    static QColor contrastingColor(const QColor& color);

private:
    void make(const QColor& lineColor, qreal devicePixelRatio);

    QRgb m_rgb = 0;
    qreal m_devicePixelRatio = 0.0;
    QImage m_start;
    QImage m_end;
};

} // namespace plyra
