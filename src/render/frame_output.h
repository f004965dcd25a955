// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"
#include "platform/stills/pixel_rows.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace plyra {

/// JPEG quality of saved frames (a compression factor of 0.95).
inline constexpr int kFrameJpegQuality = 95;

/// The still-image formats a frame is saved in.
enum class FrameFileFormat { Jpeg, Png, Tiff };

/// The format a path's extension asks for: .jpg or .jpeg, .png, .tif or .tiff, in any
/// case; none for any other.
std::optional<FrameFileFormat> frameFileFormatForPath(const QString& path);

/// A rendered frame as a QImage (top row first, premultiplied RGBA), for showing and
/// saving.
QImage imageFromBitmap(const Bitmap& bitmap);

/// The rows of a rendered frame, top row first.
PixelRows pixelRowsOfBitmap(const Bitmap& bitmap);

/// The frame encoded as a file of that format: JPEG at quality 95, flattened onto black;
/// PNG (PngEncoder), lossless 8-bit RGB or RGBA with its alpha; TIFF (TiffEncoder),
/// lossless (LZW) RGB or RGBA with premultiplied alpha, byte for byte the frame. Every
/// file says 72 dpi. Empty, with the reason, when it cannot be encoded.
QByteArray encodeFrame(const PixelRows& frame, FrameFileFormat format, QString* error = nullptr);

/// Writes the frame in the format the path's extension asks for. The file appears only
/// once it is complete; false, with the reason, when there is no frame, the extension is
/// none of the formats, or the file cannot be written.
bool saveFrame(const Bitmap& bitmap, const QString& path, QString* error = nullptr);

/// Writes an encoded output file whole or not at all (AtomicFileWriter): only a regular
/// file or a new name is replaced, and a failure gives the system's reason ("No space
/// left on device").
bool writeOutputFile(const QString& path, const QByteArray& bytes, QString* error = nullptr);

} // namespace plyra
