// SPDX-License-Identifier: MIT
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>
#include <vector>

namespace plyra {

/// Writes one line to the system log (standard error), or to the active capture.
/// Threads: any thread; lines from different threads never interleave.
void logLine(std::string_view message);

/// printf-style formatting into a std::string, for log lines and user texts.
std::string formatString(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string formatStringV(const char* format, std::va_list args);

/// Captures every log line written while it exists, instead of writing them out.
/// Threads: create and destroy on one thread; lines from any thread are captured.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines() const;
    bool contains(std::string_view fragment) const;
    int count(std::string_view fragment) const;
    void clear();
};

} // namespace plyra
