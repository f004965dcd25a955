// SPDX-License-Identifier: MIT
#include "render/frame_output.h"

#include "platform/atomic_file_writer.h"

#include <QCoreApplication>
#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>

#include <cstring>

namespace plyra {
namespace {

constexpr int kFrameDotsPerMeter = 2835; // 72 dpi

bool fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

// What each format stores: JPEG has no alpha, so frames are flattened onto black, which
// is what transparent pixels of premultiplied RGBA already are; PNG keeps straight alpha;
// TIFF keeps the premultiplied bytes as they are. Every file says 72 dpi, whatever the
// frame came from.
QImage storedImage(const QImage& frame, FrameFileFormat format)
{
    QImage::Format stored = QImage::Format_RGBA8888_Premultiplied;
    if (format == FrameFileFormat::Jpeg)
        stored = QImage::Format_RGB888;
    if (format == FrameFileFormat::Png)
        stored = QImage::Format_RGBA8888;
    QImage image = frame.convertToFormat(stored);
    image.setDotsPerMeterX(kFrameDotsPerMeter);
    image.setDotsPerMeterY(kFrameDotsPerMeter);
    return image;
}

} // namespace

QImage imageFromBitmap(const Bitmap& bitmap)
{
    if (bitmap.isEmpty())
        return {};
    QImage image(bitmap.width(), bitmap.height(), QImage::Format_RGBA8888_Premultiplied);
    // A fixed resolution of 72 dpi: Qt's default depends on whether a screen is present,
    // and the same frame must give the same file from a window and from plyra-render.
    image.setDotsPerMeterX(kFrameDotsPerMeter);
    image.setDotsPerMeterY(kFrameDotsPerMeter);
    const std::size_t rowBytes = static_cast<std::size_t>(bitmap.width()) * 4;
    for (int y = 0; y < bitmap.height(); ++y)
        std::memcpy(image.scanLine(bitmap.height() - 1 - y), bitmap.row(y), rowBytes);
    return image;
}

std::optional<FrameFileFormat> frameFileFormatForPath(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        return FrameFileFormat::Jpeg;
    if (suffix == QLatin1String("png"))
        return FrameFileFormat::Png;
    if (suffix == QLatin1String("tif") || suffix == QLatin1String("tiff"))
        return FrameFileFormat::Tiff;
    return std::nullopt;
}

QByteArray encodeFrame(const QImage& frame, FrameFileFormat format, QString* error)
{
    static const char* const names[] = {"jpeg", "png", "tiff"};
    // Encoded in memory first, so that a failed write reports the system's own reason.
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, names[static_cast<int>(format)]);
    if (format == FrameFileFormat::Jpeg)
        writer.setQuality(kFrameJpegQuality);
    if (format == FrameFileFormat::Tiff)
        writer.setCompression(1); // LZW
    if (frame.isNull() || !writer.write(storedImage(frame, format))) {
        fail(error, frame.isNull() ? QCoreApplication::translate("FrameOutput", "there is no frame to write") : writer.errorString());
        return {};
    }
    return bytes;
}

bool saveFrame(const Bitmap& bitmap, const QString& path, QString* error)
{
    if (bitmap.isEmpty())
        return fail(error, QCoreApplication::translate("FrameOutput", "no frame has been rendered"));
    const std::optional<FrameFileFormat> format = frameFileFormatForPath(path);
    if (!format)
        return fail(error, QCoreApplication::translate("FrameOutput", "a frame is saved as .jpg, .jpeg, .png, .tif or .tiff"));
    const QByteArray bytes = encodeFrame(imageFromBitmap(bitmap), *format, error);
    return !bytes.isEmpty() && writeOutputFile(path, bytes, error);
}

bool writeOutputFile(const QString& path, const QByteArray& bytes, QString* error)
{
    std::string reason;
    if (AtomicFileWriter::write(QFile::encodeName(path).toStdString(), bytes.constData(), static_cast<std::size_t>(bytes.size()), &reason))
        return true;
    if (error)
        *error = QString::fromStdString(reason);
    return false;
}

} // namespace plyra
