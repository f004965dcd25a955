// SPDX-License-Identifier: MIT
#pragma once

// The benchmarks' fixed workload: lines and pictures generated from a seed, so that
// every run measures the same work.

#include "model/morph_line.h"
#include "platform/image/bitmap.h"
#include "platform/image/image.h"

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace plyra::bench {

inline constexpr unsigned kSeed = 20240611;

/// n lines of 2 % to 20 % of the frame, anywhere on it, each moving, turning and
/// stretching between the two images (each end by up to `motion` of the frame on each
/// axis), with the default timing.
inline std::vector<MorphLine::Ptr> benchLines(int n, unsigned seed = kSeed, float motion = 0.04f)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> where(0.05f, 0.95f);
    std::uniform_real_distribution<float> length(0.02f, 0.2f);
    std::uniform_real_distribution<float> angle(0.0f, 6.2831853f);
    std::uniform_real_distribution<float> nudge(-motion, motion);
    std::vector<MorphLine::Ptr> lines;
    for (int k = 0; k < n; ++k) {
        const Point s0{where(random), where(random)};
        const float a = angle(random), len = length(random);
        const Point e0{s0.x + len * std::cos(a), s0.y + len * std::sin(a)};
        const Point s1{s0.x + nudge(random), s0.y + nudge(random)};
        const Point e1{e0.x + nudge(random), e0.y + nudge(random)};
        MorphLine::Ptr line = MorphLine::create();
        line->setStartPoint(s0, 0, nullptr);
        line->setEndPoint(e0, 0, nullptr);
        line->setStartPoint(s1, 1, nullptr);
        line->setEndPoint(e1, 1, nullptr);
        lines.push_back(line);
    }
    return lines;
}

/// An opaque picture with detail at every scale: sines of several frequencies per
/// channel plus a little seeded noise.
inline Image texturedImage(int width, int height, unsigned seed)
{
    Bitmap bitmap(width, height);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> noise(0, 15);
    const float phase = static_cast<float>(seed % 97) * 0.1f;
    for (int y = 0; y < height; ++y) {
        std::uint8_t* row = bitmap.row(y);
        for (int x = 0; x < width; ++x) {
            const float fx = static_cast<float>(x), fy = static_cast<float>(y);
            const float r = 0.5f + 0.25f * std::sin(fx * 0.013f + phase) + 0.2f * std::sin(fy * 0.11f);
            const float g = 0.5f + 0.3f * std::sin((fx + fy) * 0.031f + phase) + 0.15f * std::sin(fx * 0.7f);
            const float b = 0.5f + 0.35f * std::cos(fy * 0.007f - phase) + 0.1f * std::sin(fx * fy * 0.0003f);
            const auto channel = [&](float v) {
                const int c = static_cast<int>(v * 240.0f) + noise(random);
                return static_cast<std::uint8_t>(c < 0 ? 0 : (c > 255 ? 255 : c));
            };
            row[4 * x + 0] = channel(r);
            row[4 * x + 1] = channel(g);
            row[4 * x + 2] = channel(b);
            row[4 * x + 3] = 255;
        }
    }
    return Image::fromBitmap(std::move(bitmap));
}

} // namespace plyra::bench
