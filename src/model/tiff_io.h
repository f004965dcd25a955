// SPDX-License-Identifier: MIT
#pragma once

#include "platform/regular_file.h"

#include <QImage>
#include <QString>

#include <optional>

namespace plyra {

/// Writes and reads 8-bit and 16-bit RGB and RGBA TIFF files through libtiff. Writing
/// uses PackBits compression, keeps the image's own alpha form (associated alpha for
/// premultiplied images, unassociated otherwise) and its depth (16 bits per channel for
/// images with more than 8), so a written and re-read image is identical value for
/// value, alpha included.
/// Threads: any thread; the functions share no state.
class TiffIo {
public:
    /// Writes image to path: 16 bits per channel for images with more than 8 (16-bit,
    /// 10-bit and floating-point formats), else 8.
    static bool write(const QImage& image, const QString& path, QString* error = nullptr);
    /// Reads the first directory of a TIFF file. 8-bit and 16-bit RGB and RGBA strips
    /// come back exactly as stored (16-bit ones as RGBX64 or RGBA64 images); any other
    /// layout libtiff understands comes back converted to 8-bit premultiplied RGBA. Only
    /// a regular file is opened (see RegularFile); an image of more than kMaxImagePixels
    /// is refused from its header, before its pixels are read. The kind of problem goes
    /// to problem when given.
    static std::optional<QImage> read(const QString& path, QString* error = nullptr, FileProblem* problem = nullptr);
    /// Whether bytes begin with a TIFF signature ("II*\0" or "MM\0*").
    static bool hasTiffSignature(const QByteArray& bytes);
};

} // namespace plyra
