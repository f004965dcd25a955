// SPDX-License-Identifier: MIT
#include "editor/image_drop.h"

#include "model/pdf_image.h"
#include "model/tiff_io.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeData>
#include <QStringList>
#include <QUrl>

namespace plyra {
namespace {

constexpr qint64 kSignatureBytes = 1024;

std::optional<QString> fail(QString* reason, const QString& text)
{
    if (reason)
        *reason = text;
    return std::nullopt;
}

// A line of dropped text: a path, or a file URL as some programs put it there.
QString fileNameOfLine(const QString& line)
{
    if (line.startsWith(QLatin1String("file:")))
        return QUrl(line).toLocalFile();
    return line;
}

} // namespace

std::optional<QString> ImageDrop::droppedFile(const QMimeData& data, QString* reason)
{
    if (data.hasUrls() && !data.urls().isEmpty()) {
        const QUrl url = data.urls().constFirst();
        if (!url.isLocalFile())
            return fail(reason, tr("Only files on this computer can be dropped here."));
        return url.toLocalFile();
    }
    if (data.hasText()) {
        const QStringList lines = data.text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (auto it = lines.crbegin(); it != lines.crend(); ++it) {
            const QString name = fileNameOfLine(it->trimmed());
            if (!name.isEmpty())
                return QFileInfo(name).absoluteFilePath();
        }
    }
    return std::nullopt;
}

bool ImageDrop::looksLikeImage(const QString& path, QString* reason)
{
    const QFileInfo info(path);
    const QString name = info.fileName();
    if (!info.exists()) {
        fail(reason, tr("“%1” does not exist.").arg(name));
        return false;
    }
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        fail(reason, tr("“%1” cannot be read.").arg(name));
        return false;
    }
    const QByteArray head = file.peek(kSignatureBytes);
    if (PdfImage::hasPdfSignature(head) || TiffIo::hasTiffSignature(head))
        return true;
    QImageReader reader(&file);
    if (reader.canRead())
        return true;
    fail(reason, tr("“%1” is not an image that Plyra can read.").arg(name));
    return false;
}

} // namespace plyra
