// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace plyra {

/// One feature of a face drawn as a chain of lines through landmarks (indices into
/// FaceLandmarks::points). "Left" and "right" are the picture's. Chains that meet at a
/// feature's corners (the lids of an eye, the lips) share those landmarks and run in
/// the same direction, from the picture's left to its right or from top to bottom.
/// Threads: the table is built once and only read.
struct FaceChain {
    const char* name;
    std::vector<int> landmarks;
};

/// Every chain the face lines are made of: brows, upper and lower lids, the bridge and
/// the base of the nose, the outer lips, and the outline from ear to ear through the chin.
const std::vector<FaceChain>& faceChains();

} // namespace plyra
