// SPDX-License-Identifier: MIT
#include "render/frame_output.h"

#include "platform/atomic_file_writer.h"
#include "platform/stills/png_encoder.h"
#include "platform/stills/tiff_encoder.h"

#include <QCoreApplication>
#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>

#include <cstring>

namespace plyra {
namespace {

constexpr int kFrameDotsPerMeter = 2835; // 72 dpi
constexpr double kFrameDotsPerInch = 72.0;

bool fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

// JPEG has no alpha, so frames are flattened onto black, which is what transparent
// pixels of premultiplied RGBA already are.
QByteArray encodeJpeg(const PixelRows& frame, QString* error)
{
    QImage image(frame.width, frame.height, QImage::Format_RGB888);
    image.setDotsPerMeterX(kFrameDotsPerMeter);
    image.setDotsPerMeterY(kFrameDotsPerMeter);
    for (int y = 0; y < frame.height; ++y)
        storeRow(frame, y, StoredPixels::Rgb, image.scanLine(y));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(kFrameJpegQuality);
    if (!writer.write(image)) {
        fail(error, writer.errorString());
        return {};
    }
    return bytes;
}

QByteArray fromEncoded(const std::optional<std::vector<std::uint8_t>>& encoded, const std::string& reason, QString* error)
{
    if (!encoded) {
        fail(error, QString::fromStdString(reason));
        return {};
    }
    return QByteArray(reinterpret_cast<const char*>(encoded->data()), static_cast<qsizetype>(encoded->size()));
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

PixelRows pixelRowsOfBitmap(const Bitmap& bitmap)
{
    if (bitmap.isEmpty())
        return {};
    return {bitmap.row(bitmap.height() - 1), -static_cast<std::ptrdiff_t>(bitmap.bytesPerRow()), bitmap.width(),
            bitmap.height()};
}

QByteArray encodeFrame(const PixelRows& frame, FrameFileFormat format, QString* error)
{
    // Encoded in memory first, so that a failed write reports the system's own reason.
    if (frame.isEmpty()) {
        fail(error, QCoreApplication::translate("FrameOutput", "there is no frame to write"));
        return {};
    }
    std::string reason;
    switch (format) {
    case FrameFileFormat::Jpeg:
        return encodeJpeg(frame, error);
    case FrameFileFormat::Png:
        return fromEncoded(PngEncoder::encode(frame, kFrameDotsPerMeter, &reason), reason, error);
    case FrameFileFormat::Tiff:
        return fromEncoded(TiffEncoder::encode(frame, kFrameDotsPerInch, &reason), reason, error);
    }
    return {};
}

bool saveFrame(const Bitmap& bitmap, const QString& path, QString* error)
{
    if (bitmap.isEmpty())
        return fail(error, QCoreApplication::translate("FrameOutput", "no frame has been rendered"));
    const std::optional<FrameFileFormat> format = frameFileFormatForPath(path);
    if (!format)
        return fail(error, QCoreApplication::translate("FrameOutput", "a frame is saved as .jpg, .jpeg, .png, .tif or .tiff"));
    const QByteArray bytes = encodeFrame(pixelRowsOfBitmap(bitmap), *format, error);
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
