// SPDX-License-Identifier: MIT
#pragma once

#include "cli/cli_options.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace plyra {

class MorphDocument;
class MorphCalculationJob;

/// The header line of a warp-field file:
/// "plyra-warp-field nx=NX ny=NY d0=X,Y,W,H d1=X,Y,W,H" and a newline.
std::string warpFieldHeader(const MorphCalculationJob& job);
/// The header followed by the first nx·ny nodes of the job's coordinates buffer as
/// little-endian 32-bit floats, four per node, in buffer order.
std::vector<char> encodeWarpField(const MorphCalculationJob& job);

/// Computes one frame's warp field of the document and writes it to the output path.
int writeWarpField(const CliOptions& options, MorphDocument& document, std::ostream& err);

} // namespace plyra
