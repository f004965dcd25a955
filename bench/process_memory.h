// SPDX-License-Identifier: MIT
#pragma once

// The benchmarks' view of their own memory, read from /proc/self/status.

#include <fstream>
#include <string>

namespace plyra::bench {

/// A size field of /proc/self/status in MiB: "VmHWM:" is the peak resident size since
/// the start or the last resetPeakResident(), "VmRSS:" the resident size now. -1 when
/// the field is missing.
inline double processStatusMiB(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        long kib = 0;
        if (key == field && status >> kib)
            return static_cast<double>(kib) / 1024.0;
        status.ignore(1 << 12, '\n');
    }
    return -1;
}

inline double peakResidentMiB()
{
    return processStatusMiB("VmHWM:");
}

inline double residentMiB()
{
    return processStatusMiB("VmRSS:");
}

/// Lets the next peak be measured from here ("5" resets the peak resident size).
inline void resetPeakResident()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

} // namespace plyra::bench
