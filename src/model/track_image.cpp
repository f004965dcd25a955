// SPDX-License-Identifier: MIT
#include "model/track_image.h"

#include "platform/log.h"

#include <QFile>

#include <cstring>

namespace plyra {

void TrackImage::setLocation(const QString& path)
{
    m_location = path;
    m_display.reset();
    m_render = Image();
}

void TrackImage::setLocation(const QString& path, DisplayImage loaded)
{
    setLocation(path);
    m_display = std::move(loaded);
}

std::optional<DisplayImage> TrackImage::loadFile(Purpose purpose) const
{
    if (m_location.isEmpty())
        return std::nullopt;
    std::optional<DisplayImage> loaded = DisplayImage::load(m_location);
    if (!loaded) {
        const QByteArray path = QFile::encodeName(m_location);
        logLine(purpose == Purpose::Display ? formatString("Could not create Image from '%s'", path.constData())
                                            : formatString("Could not create CIImage from '%s'", path.constData()));
    }
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
    m_render = makeRenderImage(source->raster);
    return m_render;
}

Image TrackImage::makeRenderImage(const QImage& raster)
{
    const QImage rgba = raster.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    Bitmap bitmap(rgba.width(), rgba.height());
    const auto rowBytes = static_cast<std::size_t>(rgba.width()) * Bitmap::kBytesPerPixel;
    for (int y = 0; y < rgba.height(); ++y)
        std::memcpy(bitmap.row(rgba.height() - 1 - y), rgba.constScanLine(y), rowBytes);
    return Image::fromBitmap(std::move(bitmap));
}

} // namespace plyra
