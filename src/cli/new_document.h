// SPDX-License-Identifier: MIT
#pragma once

#include "cli/cli_options.h"

#include <iosfwd>

namespace plyra {

/// plyra-render --new: writes a new document package with a first and a last image, as a
/// new document window would have it (frame size from the first image, the codec
/// settings of the user defaults), and with --face-lines the lines that pair the two
/// faces. Every check runs before anything is written; on any failure nothing is, nor
/// after an interrupt (StopRequest), which also ends the face search.
/// Threads: main thread.
int runNewDocument(const CliOptions& options, std::ostream& out, std::ostream& err);

} // namespace plyra
