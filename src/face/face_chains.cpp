// SPDX-License-Identifier: MIT
#include "face/face_chains.h"

namespace plyra {

const std::vector<FaceChain>& faceChains()
{
    // Every chain on the picture's left has its mirror on the right: 46/276, 53/283,
    // 65/295, 55/285 (brows); 33/263 outer and 133/362 inner eye corners, 160/387,
    // 158/385, 144/373, 153/380 (lids); 64/294 (nostrils); 40/270, 91/321 (lips);
    // 234/454, 132/361, 172/397, 150/379 (outline).
    static const std::vector<FaceChain> chains{
        {"left brow", {46, 53, 65, 55}},
        {"right brow", {285, 295, 283, 276}},
        {"left upper lid", {33, 160, 158, 133}},
        {"left lower lid", {33, 144, 153, 133}},
        {"right upper lid", {362, 385, 387, 263}},
        {"right lower lid", {362, 380, 373, 263}},
        {"nose bridge", {168, 197, 5, 1}},
        {"nose base", {64, 2, 294}},
        {"upper lip", {61, 40, 0, 270, 291}},
        {"lower lip", {61, 91, 17, 321, 291}},
        {"outline", {234, 132, 172, 150, 152, 379, 397, 361, 454}},
    };
    return chains;
}

} // namespace plyra
