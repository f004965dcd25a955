// SPDX-License-Identifier: MIT
#include "platform/image/geometry.h"

#include "platform/log.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

namespace plyra {

Rect Rect::null()
{
    const float inf = std::numeric_limits<float>::infinity();
    return {inf, inf, 0.0f, 0.0f};
}

Rect Rect::infinite()
{
    return {-FLT_MAX / 2.0f, -FLT_MAX / 2.0f, FLT_MAX, FLT_MAX};
}

bool Rect::isNull() const
{
    return std::isinf(x) && x > 0.0f;
}

bool Rect::isInfinite() const
{
    return *this == infinite();
}

bool Rect::isEmpty() const
{
    return isNull() || !(width > 0.0f) || !(height > 0.0f);
}

Rect Rect::united(const Rect& other) const
{
    if (isNull())
        return other;
    if (other.isNull())
        return *this;
    if (isInfinite() || other.isInfinite())
        return infinite();
    const float left = std::min(minX(), other.minX());
    const float bottom = std::min(minY(), other.minY());
    const float right = std::max(maxX(), other.maxX());
    const float top = std::max(maxY(), other.maxY());
    return {left, bottom, right - left, top - bottom};
}

Rect Rect::intersected(const Rect& other) const
{
    if (isNull() || other.isNull())
        return null();
    if (isInfinite())
        return other;
    if (other.isInfinite())
        return *this;
    const float left = std::max(minX(), other.minX());
    const float bottom = std::max(minY(), other.minY());
    const float right = std::min(maxX(), other.maxX());
    const float top = std::min(maxY(), other.maxY());
    if (right < left || top < bottom)
        return null();
    return {left, bottom, right - left, top - bottom};
}

Rect Rect::insetBy(float dx, float dy) const
{
    if (isNull() || isInfinite())
        return *this;
    Rect result{x + dx, y + dy, width - 2.0f * dx, height - 2.0f * dy};
    if (result.width < 0.0f || result.height < 0.0f)
        return null();
    return result;
}

Rect Rect::offsetBy(float dx, float dy) const
{
    if (isNull() || isInfinite())
        return *this;
    return {x + dx, y + dy, width, height};
}

Rect Rect::integral() const
{
    if (isNull() || isInfinite())
        return *this;
    const float left = std::floor(minX());
    const float bottom = std::floor(minY());
    return {left, bottom, std::ceil(maxX()) - left, std::ceil(maxY()) - bottom};
}

bool Rect::containsPoint(float px, float py) const
{
    if (isNull())
        return false;
    if (isInfinite())
        return true;
    return px >= minX() && px < maxX() && py >= minY() && py < maxY();
}

bool Rect::contains(const Rect& other) const
{
    if (other.isNull())
        return true;
    if (isNull())
        return false;
    if (isInfinite())
        return true;
    return other.minX() >= minX() && other.maxX() <= maxX() && other.minY() >= minY()
        && other.maxY() <= maxY();
}

std::string Rect::description() const
{
    if (isNull())
        return "[null]";
    if (isInfinite())
        return "[infinite]";
    return formatString("[%g %g %g %g]", static_cast<double>(x), static_cast<double>(y),
                        static_cast<double>(width), static_cast<double>(height));
}

Matrix Matrix::fromValues(const std::array<float, 6>& values)
{
    return {values[0], values[1], values[2], values[3], values[4], values[5]};
}

Rect Matrix::mapRect(const Rect& rect) const
{
    if (rect.isNull() || rect.isInfinite())
        return rect;
    const float xs[4] = {rect.minX(), rect.maxX(), rect.minX(), rect.maxX()};
    const float ys[4] = {rect.minY(), rect.minY(), rect.maxY(), rect.maxY()};
    float left = mapX(xs[0], ys[0]);
    float right = left;
    float bottom = mapY(xs[0], ys[0]);
    float top = bottom;
    for (int k = 1; k < 4; ++k) {
        left = std::min(left, mapX(xs[k], ys[k]));
        right = std::max(right, mapX(xs[k], ys[k]));
        bottom = std::min(bottom, mapY(xs[k], ys[k]));
        top = std::max(top, mapY(xs[k], ys[k]));
    }
    return {left, bottom, right - left, top - bottom};
}

bool Matrix::isIdentity() const
{
    return *this == Matrix{};
}

bool Matrix::isInvertible() const
{
    const double det = static_cast<double>(m11) * m22 - static_cast<double>(m12) * m21;
    return det != 0.0 && std::isfinite(det);
}

Matrix Matrix::inverted() const
{
    if (!isInvertible())
        return {};
    // Computed in double so that the inverse of a scale-and-translate is as exact as
    // single precision allows.
    const double det = static_cast<double>(m11) * m22 - static_cast<double>(m12) * m21;
    const double a = m22 / det;
    const double b = -m12 / det;
    const double c = -m21 / det;
    const double d = m11 / det;
    const double tx = -(a * tX + c * tY);
    const double ty = -(b * tX + d * tY);
    return {static_cast<float>(a), static_cast<float>(b), static_cast<float>(c),
            static_cast<float>(d), static_cast<float>(tx), static_cast<float>(ty)};
}

Matrix Matrix::then(const Matrix& after) const
{
    return {after.m11 * m11 + after.m21 * m12,
            after.m12 * m11 + after.m22 * m12,
            after.m11 * m21 + after.m21 * m22,
            after.m12 * m21 + after.m22 * m22,
            after.m11 * tX + after.m21 * tY + after.tX,
            after.m12 * tX + after.m22 * tY + after.tY};
}

} // namespace plyra
