// SPDX-License-Identifier: MIT
#include "model/tiff_io.h"

#include "model/image_limits.h"
#include "platform/log.h"
#include "platform/stop_request.h"

#include <QColorSpace>
#include <QCoreApplication>
#include <QFile>

#include <tiffio.h>

#include <cstdarg>
#include <cstring>
#include <memory>
#include <vector>

namespace plyra {
namespace {

QString tiffText(const char* text)
{
    return QCoreApplication::translate("TiffIo", text);
}

/// Collects libtiff's messages about one file, so that they reach the caller's error
/// string instead of standard error.
class TiffMessages {
public:
    TiffMessages()
        : m_options(TIFFOpenOptionsAlloc())
    {
        TIFFOpenOptionsSetErrorHandlerExtR(m_options, &TiffMessages::onError, this);
        TIFFOpenOptionsSetWarningHandlerExtR(m_options, &TiffMessages::onWarning, this);
    }
    ~TiffMessages() { TIFFOpenOptionsFree(m_options); }
    TiffMessages(const TiffMessages&) = delete;
    TiffMessages& operator=(const TiffMessages&) = delete;

    TIFFOpenOptions* options() const { return m_options; }
    const QString& lastError() const { return m_lastError; }

private:
    static int onError(TIFF*, void* self, const char*, const char* format, va_list args)
    {
        static_cast<TiffMessages*>(self)->m_lastError = QString::fromStdString(formatStringV(format, args));
        return 1;
    }
    // Warnings (unknown tags and the like) say nothing about whether the pixels are good.
    static int onWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    TIFFOpenOptions* m_options;
    QString m_lastError;
};

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

TiffFile openTiff(const QString& path, const char* mode, const TiffMessages& messages)
{
    return TiffFile(TIFFOpenExt(QFile::encodeName(path).constData(), mode, messages.options()));
}

// libtiff takes the descriptor over and closes it with the file.
TiffFile openTiffForReading(const QString& path, RegularFile& file, const TiffMessages& messages)
{
    const int fd = file.descriptor();
    TiffFile tiff(TIFFFdOpenExt(fd, QFile::encodeName(path).constData(), "r", messages.options()));
    if (tiff)
        file.release();
    return tiff;
}

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

QString describe(const QString& what, const QString& path, const TiffMessages& messages)
{
    QString text = what.arg(path);
    if (!messages.lastError().isEmpty())
        text += QStringLiteral(" (") + messages.lastError() + QLatin1Char(')');
    return text;
}

// ---- writing -----------------------------------------------------------------------

/// The pixels to store and how the file describes them. 16-bit pixels are held as
/// RGBX64 or RGBA64 images; without alpha only three of their four values are stored.
struct StoredLayout {
    QImage pixels;
    std::uint16_t samples;
    std::uint16_t alphaKind; // 0 without alpha, else an EXTRASAMPLE_ value
    std::uint16_t bits = 8;
};

// Formats whose channels hold more than 8 bits, which an 8-bit file would round.
bool isDeep(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Grayscale16:
    case QImage::Format_RGBX64:
    case QImage::Format_RGBA64:
    case QImage::Format_RGBA64_Premultiplied:
    case QImage::Format_BGR30:
    case QImage::Format_A2BGR30_Premultiplied:
    case QImage::Format_RGB30:
    case QImage::Format_A2RGB30_Premultiplied:
    case QImage::Format_RGBX16FPx4:
    case QImage::Format_RGBA16FPx4:
    case QImage::Format_RGBA16FPx4_Premultiplied:
    case QImage::Format_RGBX32FPx4:
    case QImage::Format_RGBA32FPx4:
    case QImage::Format_RGBA32FPx4_Premultiplied:
        return true;
    default:
        return false;
    }
}

StoredLayout storedLayout(const QImage& image)
{
    const bool premultiplied = image.pixelFormat().premultiplied() == QPixelFormat::Premultiplied;
    if (isDeep(image.format())) {
        if (!image.hasAlphaChannel())
            return {image.convertToFormat(QImage::Format_RGBX64), 3, 0, 16};
        if (premultiplied)
            return {image.convertToFormat(QImage::Format_RGBA64_Premultiplied), 4, EXTRASAMPLE_ASSOCALPHA, 16};
        return {image.convertToFormat(QImage::Format_RGBA64), 4, EXTRASAMPLE_UNASSALPHA, 16};
    }
    if (!image.hasAlphaChannel())
        return {image.convertToFormat(QImage::Format_RGB888), 3, 0};
    if (premultiplied)
        return {image.convertToFormat(QImage::Format_RGBA8888_Premultiplied), 4, EXTRASAMPLE_ASSOCALPHA};
    return {image.convertToFormat(QImage::Format_RGBA8888), 4, EXTRASAMPLE_UNASSALPHA};
}

void setTags(TIFF* tiff, const StoredLayout& layout)
{
    const auto width = static_cast<std::uint32_t>(layout.pixels.width());
    const auto height = static_cast<std::uint32_t>(layout.pixels.height());
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, int(layout.bits));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, int(layout.samples));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 72.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 72.0);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (layout.alphaKind != 0) {
        std::uint16_t kind = layout.alphaKind;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    // The colour profile travels with the pixels, so that they keep their meaning.
    const QByteArray profile = layout.pixels.colorSpace().isValid() ? layout.pixels.colorSpace().iccProfile() : QByteArray();
    if (!profile.isEmpty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()), profile.constData());
}

// One row as the file stores it: the scan line itself, or for 16-bit RGB the scan line's
// RGBX64 pixels without their fourth value. Samples stay in the machine's byte order,
// which is the order libtiff writes its files in.
void storedRow(const StoredLayout& layout, int y, std::vector<unsigned char>& row)
{
    const int width = layout.pixels.width();
    if (layout.bits == 8 || layout.samples == 4) {
        std::memcpy(row.data(), layout.pixels.constScanLine(y), row.size());
        return;
    }
    const auto* source = reinterpret_cast<const std::uint16_t*>(layout.pixels.constScanLine(y));
    auto* target = reinterpret_cast<std::uint16_t*>(row.data());
    for (int x = 0; x < width; ++x, source += 4, target += 3)
        std::memcpy(target, source, 3 * sizeof(std::uint16_t));
}

bool writeRows(TIFF* tiff, const StoredLayout& layout)
{
    const auto rowBytes = static_cast<std::size_t>(layout.pixels.width()) * layout.samples * (layout.bits / 8);
    // libtiff may encode in place, so each row goes through a scratch copy.
    std::vector<unsigned char> row(rowBytes);
    for (int y = 0; y < layout.pixels.height(); ++y) {
        storedRow(layout, y, row);
        if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) < 0)
            return false;
    }
    return TIFFWriteDirectory(tiff) != 0;
}

// ---- reading -----------------------------------------------------------------------

/// What the first directory says about the pixels.
struct TiffHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bitsPerSample = 1;
    std::uint16_t samples = 1;
    std::uint16_t photometric = 0;
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    std::uint16_t extraCount = 0;
    std::uint16_t firstExtra = EXTRASAMPLE_UNSPECIFIED;
    bool tiled = false;
};

bool readHeader(TIFF* tiff, TiffHeader& header)
{
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &header.width)
        || !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &header.height))
        return false;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &header.bitsPerSample);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &header.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &header.planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &header.orientation);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &header.photometric);
    std::uint16_t* extras = nullptr;
    if (TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &header.extraCount, &extras) && header.extraCount > 0 && extras)
        header.firstExtra = extras[0];
    header.tiled = TIFFIsTiled(tiff) != 0;
    return true;
}

// The layouts this program writes, which are read row by row exactly as stored.
bool isPlainRgb(const TiffHeader& h)
{
    const bool rgb = h.samples == 3 && h.extraCount == 0;
    const bool rgba = h.samples == 4 && h.extraCount == 1;
    return (h.bitsPerSample == 8 || h.bitsPerSample == 16) && h.photometric == PHOTOMETRIC_RGB
        && h.planar == PLANARCONFIG_CONTIG && !h.tiled && h.orientation == ORIENTATION_TOPLEFT && (rgb || rgba);
}

QImage::Format plainFormat(const TiffHeader& h)
{
    const bool associated = h.firstExtra == EXTRASAMPLE_ASSOCALPHA;
    if (h.bitsPerSample == 16) {
        if (h.samples == 3)
            return QImage::Format_RGBX64;
        return associated ? QImage::Format_RGBA64_Premultiplied : QImage::Format_RGBA64;
    }
    if (h.samples == 3)
        return QImage::Format_RGB888;
    return associated ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGBA8888;
}

// 16-bit RGB rows are read into the RGBX64 scan line and spread to four values each, last
// pixel first so that nothing is overwritten before it is moved.
void widenRgb16(uchar* line, std::uint32_t width)
{
    auto* values = reinterpret_cast<std::uint16_t*>(line);
    for (std::uint32_t x = width; x-- > 0;) {
        const std::uint16_t r = values[3 * x], g = values[3 * x + 1], b = values[3 * x + 2];
        values[4 * x] = r;
        values[4 * x + 1] = g;
        values[4 * x + 2] = b;
        values[4 * x + 3] = 0xffff;
    }
}

std::optional<QImage> readPlainRgb(TIFF* tiff, const TiffHeader& h)
{
    QImage image(static_cast<int>(h.width), static_cast<int>(h.height), plainFormat(h));
    if (image.isNull() || TIFFScanlineSize64(tiff) != std::uint64_t(h.width) * h.samples * (h.bitsPerSample / 8))
        return std::nullopt;
    for (std::uint32_t y = 0; y < h.height; ++y) {
        uchar* line = image.scanLine(static_cast<int>(y));
        if (TIFFReadScanline(tiff, line, y, 0) < 0)
            return std::nullopt;
        if (h.bitsPerSample == 16 && h.samples == 3)
            widenRgb16(line, h.width);
        // A large image takes seconds; give up between rows when asked to stop.
        if (y % 1024 == 1023 && StopRequest::isRequested())
            return std::nullopt;
    }
    return image;
}

std::optional<QImage> readConverted(TIFF* tiff, const TiffHeader& h)
{
    std::vector<std::uint32_t> raster(std::size_t(h.width) * h.height);
    if (!TIFFReadRGBAImageOriented(tiff, h.width, h.height, raster.data(), ORIENTATION_TOPLEFT, 0))
        return std::nullopt;
    QImage image(static_cast<int>(h.width), static_cast<int>(h.height), QImage::Format_RGBA8888_Premultiplied);
    if (image.isNull())
        return std::nullopt;
    const std::uint32_t* source = raster.data();
    for (int y = 0; y < image.height(); ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x, ++source, line += 4) {
            line[0] = static_cast<uchar>(TIFFGetR(*source));
            line[1] = static_cast<uchar>(TIFFGetG(*source));
            line[2] = static_cast<uchar>(TIFFGetB(*source));
            line[3] = static_cast<uchar>(TIFFGetA(*source));
        }
    }
    return image;
}

} // namespace

bool TiffIo::write(const QImage& image, const QString& path, QString* error)
{
    if (image.isNull())
        return fail(error, tiffText(QT_TRANSLATE_NOOP("TiffIo", "There is no image to write to “%1”.")).arg(path));
    const StoredLayout layout = storedLayout(image);
    if (layout.pixels.isNull())
        return fail(error, tiffText(QT_TRANSLATE_NOOP("TiffIo", "The image for “%1” could not be converted to RGB.")).arg(path));
    TiffMessages messages;
    TiffFile tiff = openTiff(path, "w", messages);
    if (!tiff)
        return fail(error, describe(tiffText(QT_TRANSLATE_NOOP("TiffIo", "Could not create the TIFF file “%1”.")), path, messages));
    setTags(tiff.get(), layout);
    const bool written = writeRows(tiff.get(), layout);
    tiff.reset();
    if (!written) {
        QFile::remove(path);
        return fail(error, describe(tiffText(QT_TRANSLATE_NOOP("TiffIo", "Could not write the TIFF file “%1”.")), path, messages));
    }
    return true;
}

std::optional<QImage> TiffIo::read(const QString& path, QString* error, FileProblem* problem)
{
    const auto refuse = [error, problem](FileProblem kind, const QString& reason) -> std::optional<QImage> {
        if (problem)
            *problem = kind;
        fail(error, reason);
        return std::nullopt;
    };
    FileReadError checked;
    std::optional<RegularFile> file = RegularFile::open(QFile::encodeName(path).toStdString(), kMaxImageFileBytes, &checked);
    if (!file)
        return refuse(checked.problem, tiffText(QT_TRANSLATE_NOOP("TiffIo", "Could not read “%1”: %2")).arg(path, QString::fromStdString(checked.reason)));
    TiffMessages messages;
    TiffFile tiff = openTiffForReading(path, *file, messages);
    if (!tiff)
        return refuse(FileProblem::Damaged, describe(tiffText(QT_TRANSLATE_NOOP("TiffIo", "“%1” is not a readable TIFF file.")), path, messages));
    TiffHeader header;
    if (!readHeader(tiff.get(), header) || header.width == 0 || header.height == 0)
        return refuse(FileProblem::Damaged, describe(tiffText(QT_TRANSLATE_NOOP("TiffIo", "“%1” has no image size.")), path, messages));
    if (!imageSizeAllowed(header.width, header.height) || header.width > INT32_MAX / 4)
        return refuse(FileProblem::TooLarge, tooManyPixelsReason(header.width, header.height));
    std::optional<QImage> image = isPlainRgb(header) ? readPlainRgb(tiff.get(), header) : readConverted(tiff.get(), header);
    if (StopRequest::isRequested())
        return refuse(FileProblem::Interrupted, tiffText(QT_TRANSLATE_NOOP("TiffIo", "reading the image was interrupted")));
    if (!image)
        return refuse(FileProblem::Damaged, describe(tiffText(QT_TRANSLATE_NOOP("TiffIo", "The pixels of “%1” could not be read.")), path, messages));
    std::uint32_t profileSize = 0;
    const void* profile = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &profileSize, &profile) && profile && profileSize > 0)
        image->setColorSpace(QColorSpace::fromIccProfile(QByteArray(static_cast<const char*>(profile), profileSize)));
    return image;
}

bool TiffIo::hasTiffSignature(const QByteArray& bytes)
{
    return bytes.startsWith(QByteArrayLiteral("II*\0")) || bytes.startsWith(QByteArrayLiteral("MM\0*"));
}

} // namespace plyra
