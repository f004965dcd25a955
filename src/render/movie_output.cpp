// SPDX-License-Identifier: MIT
#include "render/movie_output.h"

#include "platform/log.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <array>
#include <mutex>
#include <set>

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

// The kinds a file name's extension chooses.
constexpr std::array kFileKinds{MovieOutputKind::QuickTime, MovieOutputKind::Mpeg4, MovieOutputKind::WebM,
                                MovieOutputKind::AnimatedGif, MovieOutputKind::AnimatedWebP};

// The frames of a GIF or WebP wait in the temporary movie without loss, alpha included.
constexpr const char* kLosslessCodec = "rle ";

// Each message once per run, however many movies are rendered.
void logOnce(const std::string& message)
{
    static std::mutex mutex;
    static std::set<std::string> said;
    const std::lock_guard lock(mutex);
    if (said.insert(message).second)
        logLine(message);
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
    for (const MovieOutputKind kind : kFileKinds)
        if (suffix == movieOutputExtension(kind))
            return kind;
    //: %1 is an example file name, NAME_%04d.png, %2 the file name given.
    fail(error, QCoreApplication::translate("MovieOutput", "a movie is saved as .mov, .mp4, .webm, .gif, .webp or a numbered "
                                                           "image sequence such as %1: '%2'")
                    .arg(QStringLiteral("NAME_%04d.png"), path));
    return std::nullopt;
}

QString movieOutputExtension(MovieOutputKind kind)
{
    switch (kind) {
    case MovieOutputKind::QuickTime:
        return QStringLiteral("mov");
    case MovieOutputKind::Mpeg4:
        return QStringLiteral("mp4");
    case MovieOutputKind::WebM:
        return QStringLiteral("webm");
    case MovieOutputKind::AnimatedGif:
        return QStringLiteral("gif");
    case MovieOutputKind::AnimatedWebP:
        return QStringLiteral("webp");
    case MovieOutputKind::ImageSequence:
        break;
    }
    return {};
}

std::string movieCodecForOutput(MovieOutputKind kind, const std::string& asked)
{
    switch (kind) {
    case MovieOutputKind::QuickTime:
    case MovieOutputKind::ImageSequence:
        break;
    case MovieOutputKind::AnimatedGif:
    case MovieOutputKind::AnimatedWebP:
        return kLosslessCodec;
    case MovieOutputKind::Mpeg4:
        return "avc1";
    case MovieOutputKind::WebM:
        return "vp09";
    }
    return asked;
}

void noteCodecForOutput(MovieOutputKind kind, const std::string& asked)
{
    const std::string codec = movieCodecForOutput(kind, asked);
    if (codec == asked || (kind != MovieOutputKind::Mpeg4 && kind != MovieOutputKind::WebM))
        return;
    const char* container = kind == MovieOutputKind::Mpeg4 ? "an MPEG-4 movie (.mp4) is H.264" : "a WebM movie (.webm) is VP9";
    logOnce(formatString("%s here, the closest codec that browsers and phones play: writing it instead of the codec '%s'",
                         container, asked.c_str()));
}

std::optional<MovieContainer> movieContainerForOutput(MovieOutputKind kind)
{
    switch (kind) {
    case MovieOutputKind::QuickTime:
        return MovieContainer::QuickTime;
    case MovieOutputKind::Mpeg4:
        return MovieContainer::Mpeg4;
    case MovieOutputKind::WebM:
        return MovieContainer::WebM;
    default:
        return std::nullopt;
    }
}

} // namespace plyra
