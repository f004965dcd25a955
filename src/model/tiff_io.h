// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

#include <optional>

namespace plyra {

/// Writes and reads 8-bit RGB and RGBA TIFF files through libtiff. Writing uses PackBits
/// compression and keeps the image's own alpha form (associated alpha for premultiplied
/// images, unassociated otherwise), so a written and re-read image is identical pixel for
/// pixel, alpha included.
/// Threads: any thread; the functions share no state.
class TiffIo {
public:
    /// Writes image to path. Images with more than 8 bits per channel are narrowed to 8.
    static bool write(const QImage& image, const QString& path, QString* error = nullptr);
    /// Reads the first directory of a TIFF file. 8-bit RGB and RGBA strips come back
    /// exactly as stored; any other layout libtiff understands comes back converted to
    /// premultiplied RGBA.
    static std::optional<QImage> read(const QString& path, QString* error = nullptr);
    /// Whether bytes begin with a TIFF signature ("II*\0" or "MM\0*").
    static bool hasTiffSignature(const QByteArray& bytes);
};

} // namespace plyra
