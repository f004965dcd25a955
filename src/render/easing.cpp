// SPDX-License-Identifier: MIT
#include "render/easing.h"

#include <algorithm>
#include <cmath>

namespace plyra {
namespace {

// One coordinate of the curve at parameter s, with ends 0 and 1 and inner points a, b.
double bezier(double a, double b, double s)
{
    const double r = 1.0 - s;
    return 3.0 * r * r * s * a + 3.0 * r * s * s * b + s * s * s;
}

double bezierSlope(double a, double b, double s)
{
    const double r = 1.0 - s;
    return 3.0 * r * r * a + 6.0 * r * s * (b - a) + 3.0 * s * s * (1.0 - b);
}

// The parameter where the curve's x is u. x rises monotonically for control points
// within [0, 1], so Newton's steps converge from u; where the slope flattens, halving
// the bracket finishes the job.
double parameterForX(const EasingCurve& curve, double u)
{
    double s = u;
    for (int i = 0; i < 8; ++i) {
        const double error = bezier(curve.x1, curve.x2, s) - u;
        if (std::fabs(error) < 1e-12)
            return s;
        const double slope = bezierSlope(curve.x1, curve.x2, s);
        if (std::fabs(slope) < 1e-9)
            break;
        s = std::clamp(s - error / slope, 0.0, 1.0);
    }
    double low = 0.0;
    double high = 1.0;
    for (int i = 0; i < 60; ++i) {
        s = 0.5 * (low + high);
        (bezier(curve.x1, curve.x2, s) < u ? low : high) = s;
    }
    return 0.5 * (low + high);
}

} // namespace

EasingCurve easingCurve(Easing easing)
{
    switch (easing) {
    case Easing::EaseIn:
        return {0.42, 0.0, 1.0, 1.0};
    case Easing::EaseOut:
        return {0.0, 0.0, 0.58, 1.0};
    case Easing::EaseInOut:
        return {0.42, 0.0, 0.58, 1.0};
    case Easing::Linear:
        break;
    }
    return {0.0, 0.0, 1.0, 1.0};
}

double easedProgress(Easing easing, double u)
{
    if (easing == Easing::Linear || u <= 0.0 || u >= 1.0)
        return std::clamp(u, 0.0, 1.0);
    const EasingCurve curve = easingCurve(easing);
    return bezier(curve.y1, curve.y2, parameterForX(curve, u));
}

} // namespace plyra
