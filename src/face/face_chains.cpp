// SPDX-License-Identifier: MIT
#include "face/face_chains.h"

#include "face/face_landmarks.h"

namespace plyra {

const std::vector<FaceChain>& faceChains()
{
    using namespace face_landmark;
    // Every chain on the picture's left has its mirror on the right, point for point
    // (the pairs are listed in the chain table's test); the lids of an eye and the lips
    // share their corners.
    static const std::vector<FaceChain> chains{
        {"left brow", {46, 53, 65, 55}},
        {"right brow", {285, 295, 283, 276}},
        {"left upper lid", {kLeftEyeOuterCorner, 160, 158, kLeftEyeInnerCorner}},
        {"left lower lid", {kLeftEyeOuterCorner, 144, 153, kLeftEyeInnerCorner}},
        {"right upper lid", {kRightEyeInnerCorner, 385, 387, kRightEyeOuterCorner}},
        {"right lower lid", {kRightEyeInnerCorner, 380, 373, kRightEyeOuterCorner}},
        {"nose bridge", {168, 197, 5, kNoseTip}},
        {"nose base", {64, 2, 294}},
        {"upper lip", {61, 40, 0, 270, 291}},
        {"lower lip", {61, 91, 17, 321, 291}},
        {"outline", {234, 132, 172, 150, kChin, 379, 397, 361, 454}},
    };
    return chains;
}

} // namespace plyra
