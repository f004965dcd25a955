// SPDX-License-Identifier: MIT
#pragma once

#include "model/display_image.h"
#include "platform/image/image.h"

#include <QImage>
#include <QString>

#include <optional>

namespace plyra {

/// One track of a document: where its image is read from, and the two images made
/// from that file on first request (the displayable one for the editors and the
/// rendering one for the frame engine). A failed load is not remembered: every request
/// tries again and logs again.
/// Threads: main thread only (with the document that owns it).
class TrackImage {
public:
    const QString& location() const { return m_location; }
    /// Sets the file to read from (empty for none) and drops both images.
    void setLocation(const QString& path);
    /// The same, keeping an image already read from that file.
    void setLocation(const QString& path, DisplayImage loaded);

    /// Logs "Could not create Image from '<path>'" when the file gives no image.
    std::optional<DisplayImage> displayImage();
    /// The image the frame engine renders from: a bitmap of premultiplied 8-bit RGBA,
    /// bottom row first. Null, and logs "Could not create CIImage from '<path>'", when
    /// the file gives no image.
    Image renderImage();

    /// Width over height of the last image that loaded; 0 before any did.
    float aspectRatio() const { return m_aspectRatio; }
    void setAspectRatio(float ratio) { m_aspectRatio = ratio; }

    /// Premultiplied RGBA with the rows flipped, so that row 0 is the bottom of the picture.
    static Image makeRenderImage(const QImage& raster);

private:
    enum class Purpose { Display, Render };
    std::optional<DisplayImage> loadFile(Purpose purpose) const;

    QString m_location;
    std::optional<DisplayImage> m_display;
    Image m_render;
    float m_aspectRatio = 0.0f;
};

} // namespace plyra
