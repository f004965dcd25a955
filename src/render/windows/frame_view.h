// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QWidget>

namespace plyra {

/// Shows a rendered frame scaled to fit the view, keeping its proportions, centred. A
/// frame stays until the next one replaces it.
/// Threads: main thread.
class FrameView : public QWidget {
    Q_OBJECT

public:
    explicit FrameView(QWidget* parent = nullptr);

    void setImage(const QImage& image);
    const QImage& image() const { return m_image; }
    /// Where the frame is drawn within the view.
    QRectF imageRect() const;

    QSize sizeHint() const override { return {584, 392}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_image;
};

} // namespace plyra
