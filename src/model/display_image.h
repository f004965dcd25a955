// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>

#include <optional>

namespace plyra {

/// A track image as the editors draw it and the package stores it: the raster and, for
/// an image read from a PDF file, that file's original bytes, which saving writes back.
/// Threads: a value (Qt's implicitly shared data); any thread.
struct DisplayImage {
    QImage raster;
    QByteArray pdfData;

    bool isPdf() const { return !pdfData.isEmpty(); }
    /// The size in points: one raster pixel per point (PDF pages are rasterised at 72 dpi).
    QSizeF size() const { return QSizeF(raster.size()); }

    /// Reads an image file: PDF through poppler (first page), TIFF through libtiff, and
    /// every other format QImageReader knows (JPEG, PNG, WebP, BMP...). Nothing and a
    /// reason in error when the file gives no image.
    static std::optional<DisplayImage> load(const QString& path, QString* error = nullptr);
};

} // namespace plyra
