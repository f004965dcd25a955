// SPDX-License-Identifier: MIT
#include "render/frame_output.h"

#include "platform/atomic_file_writer.h"

#include <QBuffer>
#include <QFile>
#include <QImageWriter>

#include <cstring>

namespace plyra {
namespace {

constexpr int kFrameDotsPerMeter = 2835; // 72 dpi

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

bool saveFrameAsJpeg(const Bitmap& bitmap, const QString& path, QString* error)
{
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (bitmap.isEmpty())
        return fail(QStringLiteral("no frame has been rendered"));
    // JPEG has no alpha: frames are flattened onto black, which is what transparent
    // pixels of premultiplied RGBA already are.
    const QImage rgb = imageFromBitmap(bitmap).convertToFormat(QImage::Format_RGB888);
    // Encoded in memory first, so that a failed write reports the system's own reason.
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(kFrameJpegQuality);
    if (!writer.write(rgb))
        return fail(writer.errorString());
    return writeOutputFile(path, bytes, error);
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
