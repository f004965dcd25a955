// SPDX-License-Identifier: MIT
#pragma once

#include "render/windows/frame_picture.h"

#include <QWidget>

namespace plyra {

/// Shows a rendered frame centred, one frame pixel per device pixel, scaled down keeping
/// its proportions when it is larger than the view. A frame stays until the next one
/// replaces it.
/// Threads: main thread.
class FrameView : public QWidget {
    Q_OBJECT

public:
    explicit FrameView(QWidget* parent = nullptr);

    void setImage(const QImage& image);
    const QImage& image() const { return m_picture.image(); }
    /// Where the frame is drawn within the view.
    QRectF imageRect() const;

    QSize sizeHint() const override { return {584, 392}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    FramePicture m_picture;
};

} // namespace plyra
