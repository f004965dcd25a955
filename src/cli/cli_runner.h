// SPDX-License-Identifier: MIT
#pragma once

#include "cli/cli_options.h"

#include <iosfwd>

namespace plyra {

/// Exit statuses of plyra-render.
enum CliExit : int { kExitSuccess = 0, kExitFailure = 1, kExitUsage = 2, kExitInterrupted = 130 };

/// Carries out one parsed command line: opens the document and renders a frame or a
/// movie, prints the document, or writes a warp field. Messages go to err, results
/// (JSON, the summary) to out. A stop request (StopRequest) ends the run with
/// kExitInterrupted; where output would go is checked before anything is computed.
/// Threads: main thread.
int runCli(const CliOptions& options, std::ostream& out, std::ostream& err);

} // namespace plyra
