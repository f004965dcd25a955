// SPDX-License-Identifier: MIT
#include "render/frame_output.h"

#include <QImageWriter>
#include <QSaveFile>

#include <cstring>

namespace plyra {

QImage imageFromBitmap(const Bitmap& bitmap)
{
    if (bitmap.isEmpty())
        return {};
    QImage image(bitmap.width(), bitmap.height(), QImage::Format_RGBA8888_Premultiplied);
    const std::size_t rowBytes = static_cast<std::size_t>(bitmap.width()) * 4;
    for (int y = 0; y < bitmap.height(); ++y)
        std::memcpy(image.scanLine(bitmap.height() - 1 - y), bitmap.row(y), rowBytes);
    return image;
}

bool saveFrameAsJpeg(const Bitmap& bitmap, const QString& path, QString* error)
{
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    if (bitmap.isEmpty())
        return fail(QStringLiteral("no frame has been rendered"));
    // JPEG has no alpha: frames are flattened onto black, which is what transparent
    // pixels of premultiplied RGBA already are.
    const QImage rgb = imageFromBitmap(bitmap).convertToFormat(QImage::Format_RGB888);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    QImageWriter writer(&file, "jpeg");
    writer.setQuality(kFrameJpegQuality);
    if (!writer.write(rgb)) {
        file.cancelWriting();
        return fail(writer.errorString());
    }
    if (!file.commit())
        return fail(file.errorString());
    return true;
}

} // namespace plyra
