// SPDX-License-Identifier: MIT
#pragma once

#include "face/face_landmarks.h"
#include "model/morph_line.h"

#include <vector>

namespace plyra {

/// The lines that pair two faces of kFaceLandmarkCount points each: for each chain of
/// faceChains(), one line from each landmark to the next, on the first face in track 0
/// and on the last face in track 1, chain after chain. The lines are not joined: a
/// document joins each line to the one before it as it inserts them, as it does when it
/// reads them from a file.
std::vector<MorphLine::Ptr> faceLines(const FaceLandmarks& first, const FaceLandmarks& last);

} // namespace plyra
