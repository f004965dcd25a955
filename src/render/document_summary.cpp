// SPDX-License-Identifier: MIT
#include "render/document_summary.h"

#include "model/morph_document.h"
#include "model/movie_settings_form.h"
#include "platform/number_text.h"

#include <QJsonArray>
#include <QJsonValue>

namespace plyra {
namespace {

// The shortest decimal that reads back as the same float (0.8, not 0.800000011920929).
double shortest(float value)
{
    double result = value;
    readLeadingNumber(shortestFloatText(value), result);
    return result;
}

QJsonArray pointsArray(const std::vector<Point>& points)
{
    QJsonArray array;
    for (const Point& p : points)
        array.append(QJsonArray{shortest(p.x), shortest(p.y)});
    return array;
}

QJsonValue indexOf(const std::vector<MorphLine::Ptr>& lines, const MorphLine::Ptr& line)
{
    if (!line)
        return QJsonValue::Null;
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i] == line)
            return static_cast<qint64>(i);
    return QJsonValue::Null;
}

QJsonObject lineSummary(const std::vector<MorphLine::Ptr>& lines, const MorphLine::Ptr& line)
{
    QJsonObject object;
    object[QStringLiteral("startPoints")] = pointsArray(line->startPoints());
    object[QStringLiteral("endPoints")] = pointsArray(line->endPoints());
    object[QStringLiteral("startPointBeginMoveTime")] = shortest(line->startPointBeginMoveTime());
    object[QStringLiteral("startPointStopMoveTime")] = shortest(line->startPointStopMoveTime());
    object[QStringLiteral("endPointBeginMoveTime")] = shortest(line->endPointBeginMoveTime());
    object[QStringLiteral("endPointStopMoveTime")] = shortest(line->endPointStopMoveTime());
    object[QStringLiteral("dissolveStartTime")] = shortest(line->dissolveStartTime());
    object[QStringLiteral("dissolveEndTime")] = shortest(line->dissolveEndTime());
    object[QStringLiteral("attachedLineAtStart")] = indexOf(lines, line->attachedLineAtStart());
    object[QStringLiteral("attachedLineAtEnd")] = indexOf(lines, line->attachedLineAtEnd());
    return object;
}

QJsonObject imageSummary(const MorphDocument& document, unsigned track)
{
    const QString path = document.imageURLInTrack(track);
    const std::optional<DisplayImage> image = document.imageInTrack(track);
    QJsonObject object;
    object[QStringLiteral("path")] = path.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(path);
    object[QStringLiteral("loaded")] = image.has_value();
    object[QStringLiteral("width")] = image ? image->raster.width() : 0;
    object[QStringLiteral("height")] = image ? image->raster.height() : 0;
    object[QStringLiteral("aspectRatio")] = shortest(document.aspectRatioInTrack(track));
    const std::optional<ImageLoadFailure> failure = document.imageFailureInTrack(track);
    object[QStringLiteral("error")] = failure ? QJsonValue(failure->reason) : QJsonValue(QJsonValue::Null);
    return object;
}

// The movie the document renders, with the names info.plist stores; null while the
// document has no settings of its own.
QJsonValue movieSummary(const MorphDocument& document)
{
    const std::optional<MovieSettings>& movie = document.movieSettings();
    if (!movie)
        return QJsonValue::Null;
    QJsonObject object;
    object[QStringLiteral("frames")] = static_cast<qint64>(movie->numberOfFrames);
    object[QStringLiteral("framesPerSecond")] = shortest(movie->framesPerSecond);
    object[QStringLiteral("sizeToWindow")] = movie->sizeToView;
    object[QStringLiteral("frameRatio")] = movie->frameRatioMode;
    object[QStringLiteral("frameSize")] = QJsonArray{shortest(movie->frameWidth), shortest(movie->frameHeight)};
    object[QStringLiteral("range")] = QJsonArray{shortest(movie->rangeLocation), shortest(movie->rangeLength)};
    object[QStringLiteral("reverse")] = movie->reverse;
    object[QStringLiteral("easing")] = QLatin1String(MovieSettingsForm::easingName(movie->timing.easing));
    object[QStringLiteral("hold")] = QJsonArray{movie->timing.holdStart, movie->timing.holdEnd};
    object[QStringLiteral("pingPong")] = movie->timing.pingPong;
    return object;
}

} // namespace

QJsonObject documentSummary(const MorphDocument& document)
{
    QJsonObject summary;
    summary[QStringLiteral("frameSize")] = QJsonArray{document.frameSize().width(), document.frameSize().height()};
    summary[QStringLiteral("codecFormat")] = document.codecFormat();
    summary[QStringLiteral("codecQuality")] = document.codecQuality();
    if (const LineColor::Ptr& color = document.storedLineColor())
        summary[QStringLiteral("lineColor")] = QJsonArray{shortest(color->red),
            shortest(color->green), shortest(color->blue), shortest(color->alpha)};
    else
        summary[QStringLiteral("lineColor")] = QJsonValue::Null;
    summary[QStringLiteral("images")] = QJsonArray{imageSummary(document, 0), imageSummary(document, 1)};
    summary[QStringLiteral("movie")] = movieSummary(document);
    QJsonArray lines;
    for (const MorphLine::Ptr& line : document.morphLines())
        lines.append(lineSummary(document.morphLines(), line));
    summary[QStringLiteral("lines")] = lines;
    return summary;
}

} // namespace plyra
