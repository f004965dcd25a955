// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"

#include <QImage>
#include <QString>

namespace plyra {

/// JPEG quality of saved frames (a compression factor of 0.95).
inline constexpr int kFrameJpegQuality = 95;

/// A rendered frame as a QImage (top row first, premultiplied RGBA), for showing and
/// saving.
QImage imageFromBitmap(const Bitmap& bitmap);

/// Writes the frame as a JPEG file at quality 95. The file appears only once it is
/// complete; false, with the reason, when there is no frame or it cannot be written.
bool saveFrameAsJpeg(const Bitmap& bitmap, const QString& path, QString* error = nullptr);

/// Writes an encoded output file whole or not at all (AtomicFileWriter): only a regular
/// file or a new name is replaced, and a failure gives the system's reason ("No space
/// left on device").
bool writeOutputFile(const QString& path, const QByteArray& bytes, QString* error = nullptr);

} // namespace plyra
