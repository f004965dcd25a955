// SPDX-License-Identifier: MIT
#pragma once

#include "model/morph_line.h"
#include "platform/image/geometry.h"

#include <string>
#include <vector>

namespace plyra {

class MorphCalculationJob;

/// The header line of a warp-field file:
/// "plyra-warp-field nx=NX ny=NY d0=X,Y,W,H d1=X,Y,W,H" and a newline.
std::string warpFieldHeader(const MorphCalculationJob& job);
/// The header followed by the first nx·ny nodes of the job's coordinates buffer as
/// little-endian 32-bit floats, four per node, in buffer order.
std::vector<char> encodeWarpField(const MorphCalculationJob& job);

/// Computes the warp field of one frame of the lines and writes it to path; false with
/// the reason when the file cannot be written (nothing is left at path then).
bool writeWarpField(const std::vector<MorphLine::Ptr>& lines, float time, Size size, float interval,
    const std::string& path, std::string* error);

} // namespace plyra
