// SPDX-License-Identifier: MIT
#pragma once

#include "render/windows/frame_picture.h"

#include <QWidget>

namespace plyra {

/// The picture of the movie player: the current frame on black, scaled to the view in
/// device pixels, keeping the movie's proportions unless told to stretch.
/// Threads: main thread.
class MoviePictureView : public QWidget {
    Q_OBJECT

public:
    explicit MoviePictureView(QWidget* parent = nullptr);

    void setImage(const QImage& image);
    const QImage& image() const { return m_picture.image(); }
    /// A text shown instead of a picture, or over its bottom (why there is no movie or
    /// why it stopped); empty for none.
    void setMessage(const QString& message);
    const QString& message() const { return m_message; }
    void setPreservesAspectRatio(bool preserve);
    bool preservesAspectRatio() const { return m_preserveAspect; }
    /// Where the frame is drawn within the view.
    QRectF imageRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    FramePicture m_picture;
    QString m_message;
    bool m_preserveAspect = true;
};

} // namespace plyra
