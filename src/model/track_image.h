// SPDX-License-Identifier: MIT
#pragma once

#include "model/display_image.h"
#include "platform/image/image.h"

#include <QImage>
#include <QString>

#include <ctime>
#include <optional>
#include <sys/types.h>

namespace plyra {

/// One track of a document: where its image is read from, and the two images made
/// from that file on first request (the displayable one for the editors and the
/// rendering one for the frame engine). A failed load is logged once with its reason
/// and remembered while the file stays as it was; a file that changes (or appears) is
/// tried again on the next request.
/// Threads: main thread only (with the document that owns it).
class TrackImage {
public:
    const QString& location() const { return m_location; }
    /// Sets the file to read from (empty for none) and drops both images.
    void setLocation(const QString& path);
    /// The same, keeping an image already read from that file.
    void setLocation(const QString& path, DisplayImage loaded);
    /// The name the package the image was read from gives it ("Image_0.png"), when it
    /// lies inside that package; empty otherwise. setLocation() clears it.
    const QString& nameInPackage() const { return m_nameInPackage; }
    void setNameInPackage(const QString& name) { m_nameInPackage = name; }

    /// Logs "Could not create Image from '<path>': <reason>" when the file gives no image.
    std::optional<DisplayImage> displayImage();
    /// The image the frame engine renders from: a bitmap of premultiplied 8-bit RGBA,
    /// bottom row first. Null, and logs "Could not create CIImage from '<path>': <reason>",
    /// when the file gives no image.
    Image renderImage();
    /// Why the current location gave no image at its last load; none when it loaded, has
    /// not been tried, or there is no location.
    const std::optional<ImageLoadFailure>& loadFailure() const { return m_failure; }

    /// Width over height of the last image that loaded; 0 before any did.
    float aspectRatio() const { return m_aspectRatio; }
    void setAspectRatio(float ratio) { m_aspectRatio = ratio; }

    /// Premultiplied RGBA with the rows flipped, so that row 0 is the bottom of the
    /// picture. Converted in bands, so that a large picture needs little more than the
    /// result; null when a stop is requested meanwhile. May throw std::bad_alloc.
    static Image makeRenderImage(const QImage& raster);

private:
    enum class Purpose { Display, Render };
    /// What identifies the file's state: a failed load is not repeated until it changes.
    struct FileStamp {
        bool exists = false;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
        bool operator==(const FileStamp& other) const;
        static FileStamp of(const QString& path);
    };
    std::optional<DisplayImage> loadFile(Purpose purpose);
    void remember(const ImageLoadFailure& failure, Purpose purpose);

    QString m_location;
    QString m_nameInPackage;
    std::optional<DisplayImage> m_display;
    Image m_render;
    std::optional<ImageLoadFailure> m_failure;
    std::optional<FileStamp> m_failedStamp;
    float m_aspectRatio = 0.0f;
};

} // namespace plyra
