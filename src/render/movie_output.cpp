// SPDX-License-Identifier: MIT
#include "render/movie_output.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace plyra {
namespace {

bool fail(QString* error, const QString& reason)
{
    if (error)
        *error = reason;
    return false;
}

/// Where the file name starts: a placeholder in a folder name is no placeholder.
qsizetype fileNameStart(const QString& path)
{
    return path.lastIndexOf(QLatin1Char('/')) + 1;
}

/// The number placeholder at `at` ("%d", "%0Nd"): its digit count (0 for "%d") and its
/// length; none when the text there is not one.
std::optional<std::pair<int, qsizetype>> placeholderAt(const QString& path, qsizetype at)
{
    if (path.mid(at, 2) == QLatin1String("%d"))
        return std::pair{0, qsizetype(2)};
    if (path.mid(at, 2) == QLatin1String("%0") && at + 3 < path.size() && path[at + 2] >= QLatin1Char('1')
        && path[at + 2] <= QLatin1Char('9') && path[at + 3] == QLatin1Char('d'))
        return std::pair{path[at + 2].digitValue(), qsizetype(4)};
    return std::nullopt;
}

QString unescaped(QString text)
{
    return text.replace(QLatin1String("%%"), QLatin1String("%"));
}

} // namespace

bool ImageSequencePattern::looksLikePattern(const QString& path)
{
    const QString name = path.mid(fileNameStart(path));
    return name.count(QLatin1Char('%')) > 2 * name.count(QLatin1String("%%"));
}

std::optional<ImageSequencePattern> ImageSequencePattern::parse(const QString& path, QString* error)
{
    std::optional<std::pair<int, qsizetype>> placeholder;
    qsizetype where = -1;
    bool wellFormed = true;
    for (qsizetype at = fileNameStart(path); wellFormed && at < path.size(); ++at) {
        if (path[at] != QLatin1Char('%'))
            continue;
        if (path.mid(at, 2) == QLatin1String("%%")) {
            ++at;
            continue;
        }
        wellFormed = !placeholder && (placeholder = placeholderAt(path, at));
        where = at;
        at += wellFormed ? placeholder->second - 1 : 0;
    }
    const std::optional<FrameFileFormat> format = frameFileFormatForPath(path);
    if (!wellFormed || !placeholder || !format) {
        // The placeholders come in as values: in the text itself "%0Nd" would be taken
        // for a place marker, and arg() with several values does not look into them.
        //: %1 and %2 are the placeholders "%d" and "%0Nd" written as they are, %3 the file name.
        fail(error, QCoreApplication::translate("MovieOutput", "a numbered image sequence needs one %1 or %2 (N from 1 to 9) in "
                                                               "its file name and the extension .png, .jpg, .jpeg, .tif or .tiff: '%3'")
                        .arg(QStringLiteral("%d"), QStringLiteral("%0Nd"), path));
        return std::nullopt;
    }
    ImageSequencePattern pattern;
    const qsizetype nameStart = fileNameStart(path);
    pattern.m_before = path.left(nameStart) + unescaped(path.mid(nameStart, where - nameStart));
    pattern.m_after = unescaped(path.mid(where + placeholder->second));
    pattern.m_digits = placeholder->first;
    pattern.m_format = *format;
    return pattern;
}

QString ImageSequencePattern::fileName(std::size_t number) const
{
    return m_before + QStringLiteral("%1").arg(qulonglong(number), m_digits, 10, QLatin1Char('0')) + m_after;
}

std::optional<MovieOutputKind> movieOutputKindForPath(const QString& path, QString* error)
{
    if (ImageSequencePattern::looksLikePattern(path)) {
        if (!ImageSequencePattern::parse(path, error))
            return std::nullopt;
        return MovieOutputKind::ImageSequence;
    }
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("mov"))
        return MovieOutputKind::QuickTime;
    if (suffix == QLatin1String("gif"))
        return MovieOutputKind::AnimatedGif;
    //: %1 is an example file name, NAME_%04d.png, %2 the file name given.
    fail(error, QCoreApplication::translate("MovieOutput", "a movie is saved as .mov, .gif or a numbered image sequence such as "
                                                           "%1: '%2'")
                    .arg(QStringLiteral("NAME_%04d.png"), path));
    return std::nullopt;
}

} // namespace plyra
