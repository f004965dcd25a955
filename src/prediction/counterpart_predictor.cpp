// SPDX-License-Identifier: MIT
#include "prediction/counterpart_predictor.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace plyra {
namespace {

std::vector<PointPair> withoutRepeats(std::vector<PointPair> pairs)
{
    auto before = [](const PointPair& a, const PointPair& b) {
        return std::tie(a.source.x, a.source.y, a.target.x, a.target.y)
            < std::tie(b.source.x, b.source.y, b.target.x, b.target.y);
    };
    std::sort(pairs.begin(), pairs.end(), before);
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    return pairs;
}

std::vector<PlanePoint> sourcesOf(const std::vector<PointPair>& pairs)
{
    std::vector<PlanePoint> result;
    result.reserve(pairs.size());
    for (const PointPair& pair : pairs)
        result.push_back(pair.source);
    return result;
}

PlanePoint meanOf(const std::vector<PlanePoint>& points)
{
    PlanePoint mean;
    for (const PlanePoint& p : points) {
        mean.x += p.x / static_cast<double>(points.size());
        mean.y += p.y / static_cast<double>(points.size());
    }
    return mean;
}

double rootMeanSquareSpread(const std::vector<PlanePoint>& points)
{
    const PlanePoint mean = meanOf(points);
    double sum = 0.0;
    for (const PlanePoint& p : points)
        sum += (p.x - mean.x) * (p.x - mean.x) + (p.y - mean.y) * (p.y - mean.y);
    return std::sqrt(sum / static_cast<double>(points.size()));
}

} // namespace

bool spreadsInTwoDimensions(const std::vector<PlanePoint>& points)
{
    if (points.size() < 3)
        return false;
    const PlanePoint mean = meanOf(points);
    double xx = 0.0;
    double xy = 0.0;
    double yy = 0.0;
    for (const PlanePoint& p : points) {
        xx += (p.x - mean.x) * (p.x - mean.x);
        xy += (p.x - mean.x) * (p.y - mean.y);
        yy += (p.y - mean.y) * (p.y - mean.y);
    }
    // The eigenvalues of the scatter matrix are the squared principal spreads.
    const double half = 0.5 * (xx + yy);
    const double root = std::sqrt(0.25 * (xx - yy) * (xx - yy) + xy * xy);
    const double major = half + root;
    const double minor = half - root;
    return major > 0.0 && minor >= major * (1.0 / 400.0);
}

CounterpartPredictor::CounterpartPredictor(std::vector<PointPair> pairs, PixelSize source, PixelSize target,
    Options options)
    : m_target(target)
{
    pairs = withoutRepeats(std::move(pairs));
    fitBase(pairs, source);
    if (m_model == Model::Similarity && options.allowSpline && pairs.size() >= options.minimumSplinePoints)
        fitSpline(pairs, options);
}

void CounterpartPredictor::fitBase(const std::vector<PointPair>& pairs, PixelSize source)
{
    // The same place relative to the image: the map of today's lines, and the base of
    // a single known point.
    m_base = PlaneAffine{m_target.width / source.width, 0.0, 0.0, m_target.height / source.height, 0.0, 0.0};
    if (pairs.empty())
        return;
    if (const std::optional<PlaneAffine> similarity = fitSimilarity(pairs)) {
        m_base = *similarity;
        m_model = Model::Similarity;
        return;
    }
    // One point, perhaps with several counterparts: shift onto their mean.
    PlanePoint mean;
    for (const PointPair& pair : pairs) {
        mean.x += pair.target.x / static_cast<double>(pairs.size());
        mean.y += pair.target.y / static_cast<double>(pairs.size());
    }
    const PlanePoint placed = m_base.apply(pairs.front().source);
    m_base.tx = mean.x - placed.x;
    m_base.ty = mean.y - placed.y;
    m_model = Model::Shift;
}

void CounterpartPredictor::fitSpline(const std::vector<PointPair>& pairs, const Options& options)
{
    const std::vector<PlanePoint> sources = sourcesOf(pairs);
    if (!spreadsInTwoDimensions(sources))
        return;
    // The spline carries what the similarity leaves over, so that giving it up far
    // away leaves the similarity.
    std::vector<PlanePoint> residuals;
    residuals.reserve(pairs.size());
    for (const PointPair& pair : pairs) {
        const PlanePoint base = m_base.apply(pair.source);
        residuals.push_back({pair.target.x - base.x, pair.target.y - base.y});
    }
    m_spline = ThinPlateSpline::fit(sources, residuals, options.regularisation);
    if (!m_spline)
        return;
    m_hull.emplace(sources);
    m_falloff = rootMeanSquareSpread(sources);
    m_model = Model::Spline;
}

double CounterpartPredictor::splineWeight(PlanePoint p) const
{
    if (!m_spline)
        return 0.0;
    const double t = std::clamp(m_hull->distanceOutside(p) / m_falloff, 0.0, 1.0);
    return 1.0 - t * t * (3.0 - 2.0 * t);
}

PlanePoint CounterpartPredictor::predict(PlanePoint source) const
{
    PlanePoint result = m_base.apply(source);
    const double weight = splineWeight(source);
    if (weight > 0.0) {
        const PlanePoint bend = m_spline->value(source);
        result.x += weight * bend.x;
        result.y += weight * bend.y;
    }
    return {std::clamp(result.x, 0.0, m_target.width), std::clamp(result.y, 0.0, m_target.height)};
}

} // namespace plyra
