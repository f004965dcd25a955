// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace plyra {

/// Turns the first page of a PDF document into a raster through poppler, at 72 dpi, so
/// that the raster has the page's size in points.
/// Threads: any thread; the functions share no state.
class PdfImage {
public:
    static std::optional<QImage> rasterize(const QByteArray& pdfData, QString* error = nullptr);
    /// Whether bytes hold a PDF header ("%PDF-") near their start.
    static bool hasPdfSignature(const QByteArray& bytes);
};

} // namespace plyra
