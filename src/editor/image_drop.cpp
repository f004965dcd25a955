// SPDX-License-Identifier: MIT
#include "editor/image_drop.h"

#include "model/display_image.h"

#include <QFileInfo>
#include <QMimeData>
#include <QStringList>
#include <QUrl>

namespace plyra {
namespace {

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
    // The document's own test, so that a drag is welcome exactly when the drop loads.
    FileProblem problem = FileProblem::None;
    if (DisplayImage::looksLoadable(path, &problem))
        return true;
    const QString name = QFileInfo(path).fileName();
    if (problem == FileProblem::Missing)
        fail(reason, tr("“%1” does not exist.").arg(name));
    else if (problem == FileProblem::Damaged || problem == FileProblem::Empty)
        fail(reason, tr("“%1” is not an image that Plyra can read.").arg(name));
    else
        fail(reason, tr("“%1” cannot be read.").arg(name));
    return false;
}

} // namespace plyra
