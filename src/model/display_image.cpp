// SPDX-License-Identifier: MIT
#include "model/display_image.h"

#include "model/image_limits.h"
#include "model/pdf_image.h"
#include "model/tiff_io.h"
#include "platform/stop_request.h"

#include <QCoreApplication>
#include <QFile>
#include <QImageReader>

#include <mutex>
#include <new>
#include <unistd.h>

namespace plyra {
namespace {

constexpr qint64 kSignatureBytes = 1024;

QString text(const char* source)
{
    return QCoreApplication::translate("DisplayImage", source);
}

std::optional<DisplayImage> fail(ImageLoadFailure* failure, FileProblem problem, const QString& reason)
{
    if (failure)
        *failure = {problem, reason};
    return std::nullopt;
}

std::optional<DisplayImage> failWith(ImageLoadFailure* failure, const FileReadError& error)
{
    return fail(failure, error.problem, QString::fromStdString(error.reason));
}

std::optional<DisplayImage> interrupted(ImageLoadFailure* failure)
{
    return fail(failure, FileProblem::Interrupted, text(QT_TRANSLATE_NOOP("DisplayImage", "reading the image was interrupted")));
}

QByteArray signature(const RegularFile& file)
{
    QByteArray head(kSignatureBytes, '\0');
    const ssize_t n = ::pread(file.descriptor(), head.data(), static_cast<std::size_t>(head.size()), 0);
    head.resize(n > 0 ? n : 0);
    return head;
}

std::optional<DisplayImage> loadPdf(RegularFile& file, ImageLoadFailure* failure)
{
    if (file.size() > kMaxPdfFileBytes)
        return fail(failure, FileProblem::TooLarge,
                    text(QT_TRANSLATE_NOOP("DisplayImage", "the PDF file is too large (%1 MB; PDF files may have at most %2 MB)"))
                        .arg(file.size() >> 20)
                        .arg(kMaxPdfFileBytes >> 20));
    std::vector<std::uint8_t> bytes;
    FileReadError error;
    if (!file.readRest(bytes, &error))
        return failWith(failure, error);
    const QByteArray data(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    std::vector<std::uint8_t>().swap(bytes);
    QString reason;
    FileProblem problem = FileProblem::Damaged;
    std::optional<QImage> raster = PdfImage::rasterize(data, &reason, &problem);
    if (!raster)
        return fail(failure, problem, reason);
    return DisplayImage{*raster, data};
}

std::optional<DisplayImage> loadTiff(const QString& path, ImageLoadFailure* failure)
{
    QString reason;
    FileProblem problem = FileProblem::Damaged;
    std::optional<QImage> raster = TiffIo::read(path, &reason, &problem);
    if (!raster)
        return fail(failure, problem, reason);
    return DisplayImage{*raster, {}};
}

// Images bigger than this are refused by QImageReader itself as well: a backstop for
// formats that do not state their size before decoding. Room for 8 bytes per pixel.
void limitReaderAllocations()
{
    static std::once_flag once;
    std::call_once(once, [] { QImageReader::setAllocationLimit(static_cast<int>((kMaxImagePixels * 8) >> 20)); });
}

std::optional<DisplayImage> loadWithReader(RegularFile& file, ImageLoadFailure* failure)
{
    limitReaderAllocations();
    QFile device;
    if (!device.open(file.release(), QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return fail(failure, FileProblem::Unreadable, device.errorString());
    QImageReader reader(&device);
    // Photographs carry their camera orientation; show them upright.
    reader.setAutoTransform(true);
    const QSize stated = reader.size();
    if (stated.isValid() && !imageSizeAllowed(stated.width(), stated.height()))
        return fail(failure, FileProblem::TooLarge, tooManyPixelsReason(stated.width(), stated.height()));
    if (StopRequest::isRequested())
        return interrupted(failure);
    QImage raster = reader.read();
    if (raster.isNull()) {
        if (reader.error() == QImageReader::UnsupportedFormatError)
            return fail(failure, FileProblem::Damaged, text(QT_TRANSLATE_NOOP("DisplayImage", "it is not an image in a format Plyra can read")));
        return fail(failure, FileProblem::Damaged, reader.errorString());
    }
    if (StopRequest::isRequested())
        return interrupted(failure);
    return DisplayImage{raster, {}};
}

enum class ImageKind { Pdf, Tiff, Other };

// The file opened as load() opens it, and the reader its first bytes call for.
std::optional<RegularFile> openImageFile(const QString& path, ImageKind* kind, ImageLoadFailure* failure)
{
    FileReadError error;
    std::optional<RegularFile> file = RegularFile::open(QFile::encodeName(path).toStdString(), kMaxImageFileBytes, &error);
    if (!file) {
        failWith(failure, error);
        return std::nullopt;
    }
    const QByteArray head = signature(*file);
    if (head.isEmpty()) {
        fail(failure, FileProblem::Unreadable, text(QT_TRANSLATE_NOOP("DisplayImage", "the file cannot be read")));
        return std::nullopt;
    }
    *kind = PdfImage::hasPdfSignature(head) ? ImageKind::Pdf
        : TiffIo::hasTiffSignature(head)    ? ImageKind::Tiff
                                            : ImageKind::Other;
    return file;
}

std::optional<DisplayImage> loadChecked(const QString& path, ImageLoadFailure* failure)
{
    ImageKind kind = ImageKind::Other;
    std::optional<RegularFile> file = openImageFile(path, &kind, failure);
    if (!file)
        return std::nullopt;
    if (kind == ImageKind::Pdf)
        return loadPdf(*file, failure);
    if (kind == ImageKind::Tiff) {
        file.reset();
        return loadTiff(path, failure);
    }
    return loadWithReader(*file, failure);
}

} // namespace

bool DisplayImage::looksLoadable(const QString& path, FileProblem* problem)
{
    ImageLoadFailure failure;
    ImageKind kind = ImageKind::Other;
    std::optional<RegularFile> file = openImageFile(path, &kind, &failure);
    bool loadable = file.has_value();
    if (file && kind == ImageKind::Other) {
        // Only the header, as QImageReader judges it.
        QFile device;
        loadable = device.open(file->release(), QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)
            && QImageReader(&device).canRead();
        failure.problem = FileProblem::Damaged;
    }
    if (problem)
        *problem = loadable ? FileProblem::None : failure.problem;
    return loadable;
}

std::optional<DisplayImage> DisplayImage::load(const QString& path, ImageLoadFailure* failure)
{
    try {
        return loadChecked(path, failure);
    } catch (const std::bad_alloc&) {
        return fail(failure, FileProblem::OutOfMemory, text(QT_TRANSLATE_NOOP("DisplayImage", "there is not enough memory to read the image")));
    }
}

} // namespace plyra
