// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

namespace plyra {

/// The signals that ask a program to end (SIGINT, SIGTERM, SIGHUP), less those the
/// caller chose to ignore: a program started with nohup or as a background job keeps
/// ignoring them.
/// Threads: any thread.
sigset_t terminationSignalsToHandle();

} // namespace plyra
