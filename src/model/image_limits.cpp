// SPDX-License-Identifier: MIT
#include "model/image_limits.h"

#include <QCoreApplication>

#include <cmath>

namespace plyra {

bool imageSizeAllowed(double width, double height)
{
    return width >= 1.0 && height >= 1.0 && std::isfinite(width) && std::isfinite(height)
        && width * height <= static_cast<double>(kMaxImagePixels);
}

namespace {

QString pixelCount(double width, double height)
{
    return QCoreApplication::translate("ImageLimits", "%1 × %2 pixels, more than the %3 million (such as 16384 × 16384) that are read")
        .arg(std::ceil(width), 0, 'f', 0)
        .arg(std::ceil(height), 0, 'f', 0)
        .arg(static_cast<double>(kMaxImagePixels) / 1e6, 0, 'f', 0);
}

} // namespace

QString tooManyPixelsReason(double width, double height)
{
    return QCoreApplication::translate("ImageLimits", "the image is too large: %1").arg(pixelCount(width, height));
}

QString tooLargePageReason(double width, double height)
{
    return QCoreApplication::translate("ImageLimits", "the first page of the PDF document is too large: at 72 dpi it has %1")
        .arg(pixelCount(width, height));
}

} // namespace plyra
