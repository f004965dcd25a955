// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"

#include <cstddef>
#include <vector>

namespace plyra {

/// The landmark network's number of points on a face.
inline constexpr std::size_t kFaceLandmarkCount = 468;

/// The landmarks of one face in unit image coordinates (fractions of the image's width
/// from the left and of its height from the bottom), indexed as the landmark network
/// numbers them. Index 33 is the outer corner of the eye on the image's left, 263 the one
/// on its right, 1 the nose tip, 152 the chin.
/// Threads: a plain value.
struct FaceLandmarks {
    std::vector<Point> points;
};

} // namespace plyra
