// SPDX-License-Identifier: MIT
#include "model/track_image.h"

#include "platform/log.h"
#include "platform/stop_request.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <new>
#include <sys/stat.h>

namespace plyra {
namespace {

// Rows converted at a time: small temporaries, and a stop request is seen within
// milliseconds even for the largest pictures.
constexpr int kBandRows = 256;

} // namespace

bool TrackImage::FileStamp::operator==(const FileStamp& other) const
{
    return exists == other.exists && device == other.device && inode == other.inode && size == other.size
        && modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
}

TrackImage::FileStamp TrackImage::FileStamp::of(const QString& path)
{
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return {};
    return {true, info.st_dev, info.st_ino, info.st_size, info.st_mtim};
}

void TrackImage::setLocation(const QString& path)
{
    m_location = path;
    m_nameInPackage.clear();
    m_display.reset();
    m_render = Image();
    m_failure.reset();
    m_failedStamp.reset();
}

void TrackImage::setLocation(const QString& path, DisplayImage loaded)
{
    setLocation(path);
    m_display = std::move(loaded);
}

void TrackImage::remember(const ImageLoadFailure& failure, Purpose purpose)
{
    const QByteArray path = QFile::encodeName(m_location);
    const QByteArray reason = failure.reason.toUtf8();
    logLine(purpose == Purpose::Display
                ? formatString("Could not create Image from '%s': %s", path.constData(), reason.constData())
                : formatString("Could not create CIImage from '%s': %s", path.constData(), reason.constData()));
    m_failure = failure;
    // An interrupted load says nothing about the file: the next request tries again.
    if (failure.problem == FileProblem::Interrupted)
        m_failedStamp.reset();
    else
        m_failedStamp = FileStamp::of(m_location);
}

std::optional<DisplayImage> TrackImage::loadFile(Purpose purpose)
{
    if (m_location.isEmpty())
        return std::nullopt;
    // The same file that failed before fails the same way; it has been reported.
    if (m_failure && m_failedStamp && *m_failedStamp == FileStamp::of(m_location))
        return std::nullopt;
    ImageLoadFailure failure;
    std::optional<DisplayImage> loaded = DisplayImage::load(m_location, &failure);
    if (!loaded) {
        remember(failure, purpose);
        return std::nullopt;
    }
    m_failure.reset();
    m_failedStamp.reset();
    return loaded;
}

std::optional<DisplayImage> TrackImage::displayImage()
{
    if (!m_display)
        m_display = loadFile(Purpose::Display);
    return m_display;
}

Image TrackImage::renderImage()
{
    if (!m_render.isNull())
        return m_render;
    // The displayable image, when already loaded, came from the same file.
    std::optional<DisplayImage> source = m_display;
    if (!source)
        source = loadFile(Purpose::Render);
    if (!source)
        return {};
    m_display = source;
    try {
        m_render = makeRenderImage(source->raster);
    } catch (const std::bad_alloc&) {
        remember({FileProblem::OutOfMemory,
                  QCoreApplication::translate("TrackImage", "there is not enough memory to prepare the image for rendering")},
                 Purpose::Render);
        m_failedStamp.reset();
        return {};
    }
    if (m_render.isNull())
        remember({FileProblem::Interrupted, QCoreApplication::translate("TrackImage", "reading the image was interrupted")},
                 Purpose::Render);
    return m_render;
}

Image TrackImage::makeRenderImage(const QImage& raster)
{
    const int width = raster.width();
    const int height = raster.height();
    Bitmap bitmap(width, height);
    const auto rowBytes = static_cast<std::size_t>(width) * Bitmap::kBytesPerPixel;
    const bool ready = raster.format() == QImage::Format_RGBA8888_Premultiplied;
    for (int top = 0; top < height; top += kBandRows) {
        if (StopRequest::isRequested())
            return {};
        const int rows = std::min(kBandRows, height - top);
        const QImage band = ready ? raster : raster.copy(0, top, width, rows).convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        if (band.isNull())
            throw std::bad_alloc();
        for (int y = 0; y < rows; ++y)
            std::memcpy(bitmap.row(height - 1 - (top + y)), band.constScanLine(ready ? top + y : y), rowBytes);
    }
    return Image::fromBitmap(std::move(bitmap));
}

} // namespace plyra
