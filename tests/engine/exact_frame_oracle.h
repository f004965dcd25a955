// SPDX-License-Identifier: MIT
#pragma once

// The reference that rendered frames are measured against: the line field evaluated at
// every pixel centre in double precision, straight from the lines' points and times, with
// no grid, and both images read bilinearly at the exact positions. It shares no code with
// the engine, so a fault there cannot hide in both. Used by the engine's tests and by the
// exact-frame benchmark.

#include "model/morph_line.h"
#include "platform/image/bitmap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace plyra::test {

/// A point in double precision.
struct Exact2 {
    double x = 0.0;
    double y = 0.0;
};

/// A line end at time t by the move rule: P0 before the move, P1 after it, linear between;
/// on an instant the nearer end of the morph decides.
inline Exact2 exactPointAtTime(double t, double begin, double stop, Point p0, Point p1)
{
    const Exact2 a{p0.x, p0.y}, b{p1.x, p1.y};
    if (stop - begin >= 0.0001) {
        if (t <= begin)
            return a;
        if (t >= stop)
            return b;
        const double f = (t - begin) / (stop - begin);
        return {a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f};
    }
    if (t < begin)
        return a;
    return (t > stop || stop > 0.9999 || t >= 0.5) ? b : a;
}

/// One line at the frame time and at both ends of the morph.
struct ExactLine {
    Exact2 start[3]; ///< at the frame time, at time 0, at time 1
    Exact2 end[3];
    double dissolveStart = 0.0;
    double dissolveEnd = 1.0;

    ExactLine(const MorphLine& line, double t)
    {
        const double times[3] = {t, 0.0, 1.0};
        for (int k = 0; k < 3; ++k) {
            start[k] = exactPointAtTime(times[k], line.startPointBeginMoveTime(), line.startPointStopMoveTime(),
                                        line.startPoint(0), line.startPoint(1));
            end[k] = exactPointAtTime(times[k], line.endPointBeginMoveTime(), line.endPointStopMoveTime(),
                                      line.endPoint(0), line.endPoint(1));
        }
        dissolveStart = line.dissolveStartTime();
        dissolveEnd = line.dissolveEndTime();
    }

    Exact2 direction(int k) const { return {end[k].x - start[k].x, end[k].y - start[k].y}; }

    /// Where q (unit coordinates, placed relative to the line at the frame time) lies
    /// placed the same way relative to the line at time k: the fraction along the line
    /// scales with its length, the distance across it stays.
    Exact2 carry(Exact2 q, int k) const
    {
        const Exact2 d = direction(0), e = direction(k);
        const double len2 = d.x * d.x + d.y * d.y, len = std::sqrt(len2);
        // A line that collapses to a point at time k keeps only the fraction along it.
        const double lenK = std::hypot(e.x, e.y), acrossK = lenK > 0.0 ? 1.0 / lenK : 0.0;
        const Exact2 r{q.x - start[0].x, q.y - start[0].y};
        const double along = (r.x * d.x + r.y * d.y) / len2;
        const double across = (r.y * d.x - r.x * d.y) / len;
        return {start[k].x + along * e.x - across * e.y * acrossK, start[k].y + along * e.y + across * e.x * acrossK};
    }

    /// The line's weight at q: its length at the frame time over the squared distance
    /// from q to the segment; 0 for a line without length.
    double weight(Exact2 q) const
    {
        const Exact2 d = direction(0);
        const double len2 = d.x * d.x + d.y * d.y;
        if (!(len2 > 0.0))
            return 0.0;
        const Exact2 r{q.x - start[0].x, q.y - start[0].y};
        const double p = (r.x * d.x + r.y * d.y) / len2;
        double dist2 = 0.0;
        if (p < 0.0)
            dist2 = r.x * r.x + r.y * r.y;
        else if (p > 1.0)
            dist2 = std::pow(q.x - end[0].x, 2) + std::pow(q.y - end[0].y, 2);
        else
            dist2 = std::pow(r.x * d.y - r.y * d.x, 2) / len2;
        return std::sqrt(len2) / std::max(dist2, 1e-20);
    }
};

/// The share of the last image for weighted dissolve times start and end at time t.
inline double exactDissolve(double start, double end, double t)
{
    if (std::fabs(end - start) > 0.0001) {
        if (start - 0.0001 >= t)
            return 0.0;
        return std::clamp((t - start) / (end - start), 0.0, 1.0);
    }
    if (start >= 0.0001)
        return t > start + 0.0001 ? 1.0 : 0.0;
    return 1.0;
}

/// A bilinear read of a bitmap stretched over a width × height frame at frame position
/// (x, y) in output pixels, clamped at the edges, as four channels in 0…255.
inline std::array<double, 4> exactSample(const Bitmap& image, double x, double y, int width, int height)
{
    const double u = x * image.width() / width - 0.5, v = y * image.height() / height - 0.5;
    const double fu = std::floor(u), fv = std::floor(v);
    const double wx = u - fu, wy = v - fv;
    const auto at = [&](double i, double j, int c) {
        const int ci = std::clamp(static_cast<int>(i), 0, image.width() - 1);
        const int cj = std::clamp(static_cast<int>(j), 0, image.height() - 1);
        return static_cast<double>(image.pixel(ci, cj)[static_cast<std::size_t>(c)]);
    };
    std::array<double, 4> out{};
    for (int c = 0; c < 4; ++c) {
        const double bottom = at(fu, fv, c) * (1.0 - wx) + at(fu + 1.0, fv, c) * wx;
        const double top = at(fu, fv + 1.0, c) * (1.0 - wx) + at(fu + 1.0, fv + 1.0, c) * wx;
        out[static_cast<std::size_t>(c)] = bottom * (1.0 - wy) + top * wy;
    }
    return out;
}

/// What the line field says at one point: where to read each image (unit coordinates)
/// and the share of the last image.
struct ExactFieldValue {
    Exact2 first;
    Exact2 last;
    double dissolve = 0.0;
};

/// The line field of all lines at one time.
class ExactField {
public:
    ExactField(const std::vector<MorphLine::Ptr>& lines, double t)
        : m_t(t)
    {
        for (const MorphLine::Ptr& line : lines)
            m_lines.emplace_back(*line, t);
    }

    /// The weighted means of all lines' answers at q; q itself and the plain
    /// cross-dissolve where no line has any weight.
    ExactFieldValue at(Exact2 q) const
    {
        Exact2 a{0, 0}, b{0, 0};
        double sumW = 0.0, sumStart = 0.0, sumEnd = 0.0;
        for (const ExactLine& line : m_lines) {
            const double w = line.weight(q);
            if (w == 0.0)
                continue;
            const Exact2 pa = line.carry(q, 1), pb = line.carry(q, 2);
            a = {a.x + w * pa.x, a.y + w * pa.y};
            b = {b.x + w * pb.x, b.y + w * pb.y};
            sumW += w;
            sumStart += w * line.dissolveStart;
            sumEnd += w * line.dissolveEnd;
        }
        if (!(sumW > 0.0))
            return {q, q, std::clamp(m_t, 0.0, 1.0)};
        return {{a.x / sumW, a.y / sumW}, {b.x / sumW, b.y / sumW}, exactDissolve(sumStart / sumW, sumEnd / sumW, m_t)};
    }

private:
    std::vector<ExactLine> m_lines;
    double m_t;
};

/// A frame in double precision: four channels per pixel in 0…255, rows bottom row first.
struct ExactFrame {
    int width = 0;
    int height = 0;
    std::vector<double> rgba;

    const double* pixel(int x, int y) const { return &rgba[4 * (static_cast<std::size_t>(y) * width + x)]; }
};

/// A width × height frame whose pixel (x, y) blends first and last as field(x, y) says
/// (field answers an ExactFieldValue for a pixel).
template <typename Field>
ExactFrame blendThroughField(const Bitmap& first, const Bitmap& last, int width, int height, Field field)
{
    ExactFrame frame{width, height, std::vector<double>(4 * static_cast<std::size_t>(width) * height)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const ExactFieldValue v = field(x, y);
            const auto colourA = exactSample(first, v.first.x * width, v.first.y * height, width, height);
            const auto colourB = exactSample(last, v.last.x * width, v.last.y * height, width, height);
            double* out = &frame.rgba[4 * (static_cast<std::size_t>(y) * width + x)];
            for (std::size_t c = 0; c < 4; ++c)
                out[c] = colourA[c] * (1.0 - v.dissolve) + colourB[c] * v.dissolve;
        }
    return frame;
}

/// The morph of first into last through the lines at time t, at every pixel centre.
inline ExactFrame exactFrame(const Bitmap& first, const Bitmap& last, const std::vector<MorphLine::Ptr>& lines,
                             double t, int width, int height)
{
    const ExactField field(lines, t);
    return blendThroughField(first, last, width, height, [&](int x, int y) {
        return field.at({(x + 0.5) / width, (y + 0.5) / height});
    });
}

/// Peak signal-to-noise ratio of the colour channels of an 8-bit frame against the exact
/// one, in dB; infinite when they agree exactly.
inline double psnr(const Bitmap& frame, const ExactFrame& exact)
{
    double sum = 0.0;
    for (int y = 0; y < exact.height; ++y)
        for (int x = 0; x < exact.width; ++x) {
            const auto p = frame.pixel(x, y);
            for (std::size_t c = 0; c < 3; ++c)
                sum += std::pow(p[c] - exact.pixel(x, y)[c], 2);
        }
    const double mse = sum / (3.0 * exact.width * exact.height);
    return mse > 0.0 ? 10.0 * std::log10(255.0 * 255.0 / mse) : std::numeric_limits<double>::infinity();
}

} // namespace plyra::test
