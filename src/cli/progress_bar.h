// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <string>

namespace plyra {

/// A one-line progress bar on a terminal, redrawn in place.
/// Threads: main thread.
class ProgressBar {
public:
    explicit ProgressBar(std::ostream& terminal)
        : m_terminal(terminal)
    {
    }
    /// Draws the bar for progress 0..1; redraws only when the shown percentage changes.
    void show(float progress);
    /// Ends the bar's line.
    void finish();

private:
    std::ostream& m_terminal;
    int m_shownPercent = -1;
};

/// "48 frames in 1.92 s (25.0 frames per second) -> out/demo.mov"
std::string formatSummary(int frames, double seconds, const std::string& path);

} // namespace plyra
