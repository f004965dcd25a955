// SPDX-License-Identifier: MIT
#pragma once

namespace plyra {

/// A process-wide request to stop long work: set when the user interrupts (a signal in
/// plyra-render, a cancel in the application), polled by readers and renderers between
/// chunks and stages so that they give up promptly with "interrupted".
/// Threads: any thread; request() is async-signal-safe.
class StopRequest {
public:
    static void request();
    static bool isRequested();
    /// Forgets a request, so that later work runs again (the application after a cancel).
    static void clear();
};

} // namespace plyra
