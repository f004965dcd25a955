// SPDX-License-Identifier: MIT
#pragma once

#include "model/movie_settings.h"

namespace plyra {

/// The two inner control points of a cubic Bézier timing curve from (0, 0) to (1, 1).
struct EasingCurve {
    double x1, y1, x2, y2;
};

/// The curve of an easing: ease-in (0.42, 0, 1, 1), ease-out (0, 0, 0.58, 1) and
/// ease-in-out (0.42, 0, 0.58, 1), as CSS names them; linear is (0, 0, 1, 1).
EasingCurve easingCurve(Easing easing);

/// The eased progress at progress u (0 to 1): the curve's y where its x is u. Exactly 0
/// at 0 and 1 at 1; linear gives u back unchanged.
double easedProgress(Easing easing, double u);

} // namespace plyra
