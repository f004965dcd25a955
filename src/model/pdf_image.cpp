// SPDX-License-Identifier: MIT
#include "model/pdf_image.h"

#include "model/image_limits.h"

#include <QCoreApplication>
#include <QStringList>

#include <poppler-qt6.h>

#include <cmath>
#include <mutex>

namespace plyra {
namespace {

// Readers accept the header anywhere in the first kilobyte, after stray bytes that some
// writers put in front of it.
constexpr qsizetype kHeaderWindow = 1024;
constexpr double kPointsPerInch = 72.0;

// Poppler reports problems through one process-wide function, called on the thread
// that does the work; each rasterisation collects them here for its error string.
thread_local QStringList* t_popplerMessages = nullptr;

void collectPopplerMessage(const QString& message, const QVariant&)
{
    if (t_popplerMessages)
        t_popplerMessages->append(message);
}

/// Routes poppler's messages into a list while it exists, instead of the debug output.
class PopplerMessages {
public:
    PopplerMessages()
    {
        static std::once_flag installed;
        std::call_once(installed, [] { Poppler::setDebugErrorFunction(&collectPopplerMessage, QVariant()); });
        t_popplerMessages = &m_messages;
    }
    ~PopplerMessages() { t_popplerMessages = nullptr; }
    PopplerMessages(const PopplerMessages&) = delete;
    PopplerMessages& operator=(const PopplerMessages&) = delete;

    QString text() const { return m_messages.join(QLatin1String("; ")); }

private:
    QStringList m_messages;
};

std::optional<QImage> fail(QString* error, const char* text, const PopplerMessages& messages)
{
    if (error) {
        *error = QCoreApplication::translate("PdfImage", text);
        if (!messages.text().isEmpty())
            *error += QStringLiteral(" (") + messages.text() + QLatin1Char(')');
    }
    return std::nullopt;
}

} // namespace

std::optional<QImage> PdfImage::rasterize(const QByteArray& pdfData, QString* error, FileProblem* problem)
{
    if (problem)
        *problem = FileProblem::Damaged;
    PopplerMessages messages;
    std::unique_ptr<Poppler::Document> document = Poppler::Document::loadFromData(pdfData);
    if (!document)
        return fail(error, QT_TRANSLATE_NOOP("PdfImage", "The PDF data could not be read."), messages);
    if (document->isLocked())
        return fail(error, QT_TRANSLATE_NOOP("PdfImage", "The PDF document is protected by a password."), messages);
    if (document->numPages() < 1)
        return fail(error, QT_TRANSLATE_NOOP("PdfImage", "The PDF document has no pages."), messages);
    std::unique_ptr<Poppler::Page> page = document->page(0);
    if (!page)
        return fail(error, QT_TRANSLATE_NOOP("PdfImage", "The first page of the PDF document could not be read."), messages);
    // At 72 dpi a point is a pixel: the page's size is the raster's.
    const QSizeF points = page->pageSizeF();
    if (!imageSizeAllowed(points.width(), points.height())) {
        if (points.width() >= 1.0 && points.height() >= 1.0) {
            if (problem)
                *problem = FileProblem::TooLarge;
            if (error)
                *error = tooLargePageReason(points.width(), points.height());
            return std::nullopt;
        }
        return fail(error, QT_TRANSLATE_NOOP("PdfImage", "The first page of the PDF document has no size."), messages);
    }
    document->setRenderHint(Poppler::Document::Antialiasing);
    document->setRenderHint(Poppler::Document::TextAntialiasing);
    QImage raster = page->renderToImage(kPointsPerInch, kPointsPerInch);
    // Poppler gives a token image instead of nothing when it cannot draw the page whole.
    if (raster.isNull() || std::abs(raster.width() - std::ceil(points.width())) > 1.0
        || std::abs(raster.height() - std::ceil(points.height())) > 1.0)
        return fail(error, QT_TRANSLATE_NOOP("PdfImage", "The first page of the PDF document could not be drawn."), messages);
    return raster;
}

bool PdfImage::hasPdfSignature(const QByteArray& bytes)
{
    return bytes.left(kHeaderWindow).contains("%PDF-");
}

} // namespace plyra
