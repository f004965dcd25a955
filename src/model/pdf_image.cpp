// SPDX-License-Identifier: MIT
#include "model/pdf_image.h"

#include <QCoreApplication>

#include <poppler-qt6.h>

namespace plyra {
namespace {

// Readers accept the header anywhere in the first kilobyte, after stray bytes that some
// writers put in front of it.
constexpr qsizetype kHeaderWindow = 1024;
constexpr double kPointsPerInch = 72.0;

std::optional<QImage> fail(QString* error, const char* text)
{
    if (error)
        *error = QCoreApplication::translate("PdfImage", text);
    return std::nullopt;
}

} // namespace

std::optional<QImage> PdfImage::rasterize(const QByteArray& pdfData, QString* error)
{
    std::unique_ptr<Poppler::Document> document = Poppler::Document::loadFromData(pdfData);
    if (!document)
        return fail(error, "The PDF data could not be read.");
    if (document->isLocked())
        return fail(error, "The PDF document is protected by a password.");
    if (document->numPages() < 1)
        return fail(error, "The PDF document has no pages.");
    std::unique_ptr<Poppler::Page> page = document->page(0);
    if (!page)
        return fail(error, "The first page of the PDF document could not be read.");
    document->setRenderHint(Poppler::Document::Antialiasing);
    document->setRenderHint(Poppler::Document::TextAntialiasing);
    QImage raster = page->renderToImage(kPointsPerInch, kPointsPerInch);
    if (raster.isNull())
        return fail(error, "The first page of the PDF document could not be drawn.");
    return raster;
}

bool PdfImage::hasPdfSignature(const QByteArray& bytes)
{
    return bytes.left(kHeaderWindow).contains("%PDF-");
}

} // namespace plyra
