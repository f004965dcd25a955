// SPDX-License-Identifier: MIT
#pragma once

#include "platform/regular_file.h"

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>

#include <optional>

namespace plyra {

/// Why an image file gave no image: the kind of problem and a reason to show after the
/// file's path ("the image is too large (60000 × 60000 pixels; ...)").
/// Threads: a plain value.
struct ImageLoadFailure {
    FileProblem problem = FileProblem::None;
    QString reason;
};

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
    /// every other format QImageReader knows (JPEG, PNG, WebP, BMP...). Only regular files
    /// within the size limits of image_limits.h are read, and images of more than
    /// kMaxImagePixels are refused from the size their file states, before decoding.
    /// Nothing, and why in failure, when the file gives no image; a stop request between
    /// the stages of a large load gives FileProblem::Interrupted. Never throws.
    static std::optional<DisplayImage> load(const QString& path, ImageLoadFailure* failure = nullptr);
    /// Whether load() would take the file up, judged as cheaply as a drag needs: the
    /// same file checks and the same choice of reader by the file's first bytes, without
    /// decoding. FileProblem::Damaged in problem for a file that is no image we read.
    static bool looksLoadable(const QString& path, FileProblem* problem = nullptr);
};

} // namespace plyra
