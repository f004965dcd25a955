// SPDX-License-Identifier: MIT
#include "prediction/point_pairs.h"

namespace plyra {

std::optional<PlaneAffine> fitSimilarity(const std::vector<PointPair>& pairs)
{
    if (pairs.empty())
        return std::nullopt;
    PlanePoint sourceMean;
    PlanePoint targetMean;
    for (const PointPair& pair : pairs) {
        sourceMean.x += pair.source.x;
        sourceMean.y += pair.source.y;
        targetMean.x += pair.target.x;
        targetMean.y += pair.target.y;
    }
    const double n = static_cast<double>(pairs.size());
    sourceMean = {sourceMean.x / n, sourceMean.y / n};
    targetMean = {targetMean.x / n, targetMean.y / n};
    // As complex numbers about the means, target = c · source; c minimises the squared
    // error: c = Σ conj(s)·t / Σ |s|².
    double spread = 0.0;
    double real = 0.0;
    double imaginary = 0.0;
    for (const PointPair& pair : pairs) {
        const double sx = pair.source.x - sourceMean.x;
        const double sy = pair.source.y - sourceMean.y;
        const double tx = pair.target.x - targetMean.x;
        const double ty = pair.target.y - targetMean.y;
        spread += sx * sx + sy * sy;
        real += sx * tx + sy * ty;
        imaginary += sx * ty - sy * tx;
    }
    // Below a millionth of a pixel the source points are one point.
    if (spread <= 1e-12 * n)
        return std::nullopt;
    const double a = real / spread;
    const double b = imaginary / spread;
    PlaneAffine map{a, -b, b, a, 0.0, 0.0};
    const PlanePoint shifted = map.apply(sourceMean);
    map.tx = targetMean.x - shifted.x;
    map.ty = targetMean.y - shifted.y;
    return map;
}

} // namespace plyra
