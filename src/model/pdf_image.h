// SPDX-License-Identifier: MIT
#pragma once

#include "platform/regular_file.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace plyra {

/// Turns the first page of a PDF document into a raster through poppler, at 72 dpi, so
/// that the raster has the page's size in points. A page of more points than
/// kMaxImagePixels allows is refused before it is drawn.
/// Threads: any thread; the functions share no state.
class PdfImage {
public:
    /// Nothing, with the reason and the kind of problem (TooLarge for a page beyond the
    /// pixel limit, Damaged otherwise), when the page cannot be drawn.
    static std::optional<QImage> rasterize(const QByteArray& pdfData, QString* error = nullptr,
                                           FileProblem* problem = nullptr);
    /// Whether bytes hold a PDF header ("%PDF-") near their start.
    static bool hasPdfSignature(const QByteArray& bytes);
};

} // namespace plyra
