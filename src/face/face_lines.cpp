// SPDX-License-Identifier: MIT
#include "face/face_lines.h"

#include "face/face_chains.h"

#include <cassert>

namespace plyra {

std::vector<MorphLine::Ptr> faceLines(const FaceLandmarks& first, const FaceLandmarks& last)
{
    assert(first.points.size() == kFaceLandmarkCount && last.points.size() == kFaceLandmarkCount);
    std::vector<MorphLine::Ptr> lines;
    for (const FaceChain& chain : faceChains()) {
        for (std::size_t i = 1; i < chain.landmarks.size(); ++i) {
            const auto from = static_cast<std::size_t>(chain.landmarks[i - 1]);
            const auto to = static_cast<std::size_t>(chain.landmarks[i]);
            MorphLine::Ptr line = MorphLine::create();
            line->setStartPoint(first.points[from], 0, nullptr);
            line->setEndPoint(first.points[to], 0, nullptr);
            line->setStartPoint(last.points[from], 1, nullptr);
            line->setEndPoint(last.points[to], 1, nullptr);
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

} // namespace plyra
