// SPDX-License-Identifier: MIT
#include "cli/progress_bar.h"

#include "platform/log.h"

#include <algorithm>
#include <ostream>

namespace plyra {

void ProgressBar::show(float progress)
{
    const int percent = std::clamp(static_cast<int>(progress * 100.0f), 0, 100);
    if (percent == m_shownPercent)
        return;
    m_shownPercent = percent;
    constexpr int kWidth = 40;
    const int filled = percent * kWidth / 100;
    m_terminal << "\r[" << std::string(static_cast<std::size_t>(filled), '#')
               << std::string(static_cast<std::size_t>(kWidth - filled), '.') << "] " << percent << "%" << std::flush;
}

void ProgressBar::finish()
{
    if (m_shownPercent >= 0)
        m_terminal << "\n" << std::flush;
}

std::string formatSummary(int frames, double seconds, const std::string& path)
{
    const double rate = seconds > 0.0 ? frames / seconds : 0.0;
    return formatString("plyra-render: %d frames in %.2f s (%.1f frames per second) -> %s", frames, seconds, rate,
        path.c_str());
}

} // namespace plyra
