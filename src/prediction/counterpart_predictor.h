// SPDX-License-Identifier: MIT
#pragma once

#include "prediction/convex_hull.h"
#include "prediction/point_pairs.h"
#include "prediction/thin_plate_spline.h"

#include <optional>
#include <vector>

namespace plyra {

/// Predicts where a point of one image lies in another from pairs of points known to
/// correspond: with no pair at the same place relative to the image; with one distinct
/// point shifted to match it; with more by the least-squares similarity; and, where the
/// pairs allow, by a thin-plate spline through them, which far outside the convex hull
/// of the known points gives way smoothly to the similarity. Predictions are clamped
/// into the target image. All the solving happens in the constructor.
/// Threads: immutable after construction; any thread.
class CounterpartPredictor {
public:
    enum class Model { UnitPosition, Shift, Similarity, Spline };

    struct Options {
        /// Whether a spline may be fitted at all (the caller may ask for more evidence).
        bool allowSpline = true;
        /// Fewest distinct pairs for a spline.
        std::size_t minimumSplinePoints = 6;
        /// The spline's regularisation on coordinates normalised to a unit spread.
        double regularisation = 1e-3;
    };

    CounterpartPredictor(std::vector<PointPair> pairs, PixelSize source, PixelSize target)
        : CounterpartPredictor(std::move(pairs), source, target, Options())
    {
    }
    CounterpartPredictor(std::vector<PointPair> pairs, PixelSize source, PixelSize target, Options options);

    Model model() const { return m_model; }
    PlanePoint predict(PlanePoint source) const;
    /// How much of the spline a prediction at p takes: 1 within the hull of the known
    /// points, falling smoothly to 0 at one spread (root mean square distance from the
    /// points' mean) outside it.
    double splineWeight(PlanePoint p) const;

private:
    void fitBase(const std::vector<PointPair>& pairs, PixelSize source);
    void fitSpline(const std::vector<PointPair>& pairs, const Options& options);

    Model m_model = Model::UnitPosition;
    PixelSize m_target;
    PlaneAffine m_base;
    std::optional<ThinPlateSpline> m_spline;
    std::optional<ConvexHull> m_hull;
    double m_falloff = 0.0;
};

/// Whether the points spread in two dimensions: the smaller principal spread is at
/// least a twentieth of the larger.
bool spreadsInTwoDimensions(const std::vector<PlanePoint>& points);

} // namespace plyra
