// SPDX-License-Identifier: MIT
#include "model/display_image.h"

#include "model/pdf_image.h"
#include "model/tiff_io.h"

#include <QCoreApplication>
#include <QFile>
#include <QImageReader>

namespace plyra {
namespace {

constexpr qint64 kSignatureBytes = 1024;

std::optional<DisplayImage> fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return std::nullopt;
}

std::optional<DisplayImage> loadPdf(QFile& file, QString* error)
{
    const QByteArray bytes = file.readAll();
    std::optional<QImage> raster = PdfImage::rasterize(bytes, error);
    if (!raster)
        return std::nullopt;
    return DisplayImage{*raster, bytes};
}

std::optional<DisplayImage> loadTiff(const QString& path, QString* error)
{
    std::optional<QImage> raster = TiffIo::read(path, error);
    if (!raster)
        return std::nullopt;
    return DisplayImage{*raster, {}};
}

std::optional<DisplayImage> loadWithReader(QFile& file, QString* error)
{
    QImageReader reader(&file);
    // Photographs carry their camera orientation; show them upright.
    reader.setAutoTransform(true);
    QImage raster = reader.read();
    if (raster.isNull())
        return fail(error, reader.errorString());
    return DisplayImage{raster, {}};
}

} // namespace

std::optional<DisplayImage> DisplayImage::load(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, file.errorString());
    const QByteArray head = file.peek(kSignatureBytes);
    if (head.isEmpty())
        return fail(error, QCoreApplication::translate("DisplayImage", "The file is empty or cannot be read."));
    if (PdfImage::hasPdfSignature(head))
        return loadPdf(file, error);
    if (TiffIo::hasTiffSignature(head)) {
        file.close();
        return loadTiff(path, error);
    }
    return loadWithReader(file, error);
}

} // namespace plyra
