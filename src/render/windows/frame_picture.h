// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRectF>

class QPainter;

namespace plyra {

/// A rendered frame as the frame and movie views draw it. Frames are made in device
/// pixels (a frame sized to a view of 400 × 300 units on a screen of two device pixels per
/// unit has 800 × 600 pixels), so a frame is placed at its size in units and drawn from a
/// copy scaled once to the device pixels it covers: a frame made to the view's size is
/// drawn pixel for pixel, and no view shows it upscaled from units.
/// Threads: main thread.
class FramePicture {
public:
    /// How a frame that does not match the view is placed in it.
    enum class Fit {
        ShrinkToFit, ///< its own size, scaled down keeping its proportions when larger than the view
        ScaleToFit,  ///< as large as the view allows, keeping its proportions
        Stretch,     ///< the whole view
    };

    /// Where a frame of framePixels goes within area on a screen of dpr device pixels per
    /// unit, centred.
    static QRectF placement(QSize framePixels, qreal dpr, const QRectF& area, Fit fit);

    void setImage(const QImage& image);
    const QImage& image() const { return m_image; }
    /// Draws the frame into target, from the scaled copy kept while target and dpr stay.
    void draw(QPainter& painter, const QRectF& target, qreal dpr);

private:
    QImage m_image;
    // Scaling a large frame at every paint would cost the main thread more than rendering it.
    QImage m_scaled;
};

} // namespace plyra
