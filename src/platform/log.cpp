// SPDX-License-Identifier: MIT
#include "platform/log.h"

#include <cstdio>
#include <mutex>

namespace plyra {
namespace {

std::mutex& logMutex()
{
    static std::mutex mutex;
    return mutex;
}

// Non-null while a LogCapture exists; guarded by logMutex().
std::vector<std::string>* g_capturedLines = nullptr;

} // namespace

void logLine(std::string_view message)
{
    std::lock_guard guard(logMutex());
    if (g_capturedLines) {
        g_capturedLines->emplace_back(message);
        return;
    }
    std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
    std::fflush(stderr);
}

std::string formatStringV(const char* format, std::va_list args)
{
    std::va_list copy;
    va_copy(copy, args);
    const int size = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (size <= 0)
        return {};
    std::string result(static_cast<size_t>(size) + 1, '\0');
    std::vsnprintf(result.data(), result.size(), format, args);
    result.resize(static_cast<size_t>(size));
    return result;
}

std::string formatString(const char* format, ...)
{
    std::va_list args;
    va_start(args, format);
    std::string result = formatStringV(format, args);
    va_end(args);
    return result;
}

LogCapture::LogCapture()
{
    std::lock_guard guard(logMutex());
    g_capturedLines = new std::vector<std::string>;
}

LogCapture::~LogCapture()
{
    std::lock_guard guard(logMutex());
    delete g_capturedLines;
    g_capturedLines = nullptr;
}

std::vector<std::string> LogCapture::lines() const
{
    std::lock_guard guard(logMutex());
    return g_capturedLines ? *g_capturedLines : std::vector<std::string>{};
}

bool LogCapture::contains(std::string_view fragment) const
{
    return count(fragment) > 0;
}

int LogCapture::count(std::string_view fragment) const
{
    int n = 0;
    for (const std::string& line : lines())
        if (line.find(fragment) != std::string::npos)
            ++n;
    return n;
}

void LogCapture::clear()
{
    std::lock_guard guard(logMutex());
    if (g_capturedLines)
        g_capturedLines->clear();
}

} // namespace plyra
