// SPDX-License-Identifier: MIT
#include "prediction/line_counterparts.h"

namespace plyra {
namespace {

// Fewest line pairs that let a spline bend the prediction.
constexpr std::size_t kSplineLines = 4;

unsigned toTrackOf(unsigned fromTrack)
{
    return fromTrack == 0 ? 1u : 0u;
}

PlanePoint toPixels(Point unit, const PixelSize& size)
{
    return {static_cast<double>(unit.x) * size.width, static_cast<double>(unit.y) * size.height};
}

CounterpartPredictor::Options optionsFor(std::size_t lineCount)
{
    CounterpartPredictor::Options options;
    options.allowSpline = lineCount >= kSplineLines;
    return options;
}

} // namespace

std::vector<PointPair> linePointPairs(const std::vector<MorphLine::Ptr>& lines, unsigned fromTrack,
    const TrackSizes& sizes)
{
    const unsigned toTrack = toTrackOf(fromTrack);
    const PixelSize& from = sizes.of(fromTrack);
    const PixelSize& to = sizes.of(toTrack);
    // A shared point appears twice here; the predictor keeps each pair once.
    std::vector<PointPair> pairs;
    pairs.reserve(2 * lines.size());
    for (const MorphLine::Ptr& line : lines) {
        pairs.push_back({toPixels(line->startPoint(fromTrack), from), toPixels(line->startPoint(toTrack), to)});
        pairs.push_back({toPixels(line->endPoint(fromTrack), from), toPixels(line->endPoint(toTrack), to)});
    }
    return pairs;
}

LineCounterparts::LineCounterparts(const std::vector<MorphLine::Ptr>& knownLines, unsigned fromTrack,
    const TrackSizes& sizes)
    : m_from(sizes.of(fromTrack))
    , m_to(sizes.of(toTrackOf(fromTrack)))
    , m_predictor(linePointPairs(knownLines, fromTrack, sizes), m_from, m_to, optionsFor(knownLines.size()))
{
}

Point LineCounterparts::counterpart(Point unit) const
{
    const PlanePoint p = m_predictor.predict(toPixels(unit, m_from));
    return {static_cast<float>(p.x / m_to.width), static_cast<float>(p.y / m_to.height)};
}

} // namespace plyra
