// SPDX-License-Identifier: MIT
#pragma once

#include "model/geometry.h"

#include <cstddef>
#include <vector>

namespace plyra {

/// The landmark network's number of points on a face.
inline constexpr std::size_t kFaceLandmarkCount = 468;

/// Landmarks with a name of their own, as the landmark network numbers them; "left" and
/// "right" are the picture's.
namespace face_landmark {
inline constexpr int kLeftEyeOuterCorner = 33;
inline constexpr int kLeftEyeInnerCorner = 133;
inline constexpr int kRightEyeInnerCorner = 362;
inline constexpr int kRightEyeOuterCorner = 263;
inline constexpr int kNoseTip = 1;
inline constexpr int kChin = 152;
} // namespace face_landmark

/// The landmarks of one face in unit image coordinates (fractions of the image's width
/// from the left and of its height from the bottom), indexed as the landmark network
/// numbers them (see face_landmark for a few).
/// Threads: a plain value.
struct FaceLandmarks {
    std::vector<Point> points;
};

} // namespace plyra
