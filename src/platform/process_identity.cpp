// SPDX-License-Identifier: MIT
#include "platform/process_identity.h"

#include <charconv>
#include <fstream>
#include <limits>
#include <sstream>
#include <unistd.h>

namespace plyra {
namespace {

struct ProcessStat {
    char state = '?';
    std::uint64_t startTicks = 0;
};

// /proc/PID/stat: the name in parentheses may hold spaces and parentheses, so the
// fields are counted from the last ')'. The state is field 3, the start time field 22.
std::optional<ProcessStat> readStat(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    if (!std::getline(file, line))
        return std::nullopt;
    const std::size_t close = line.rfind(')');
    if (close == std::string::npos)
        return std::nullopt;
    std::istringstream fields(line.substr(close + 1));
    ProcessStat stat;
    std::string skipped;
    fields >> stat.state;
    for (int field = 4; field < 22 && fields; ++field)
        fields >> skipped;
    fields >> stat.startTicks;
    if (!fields)
        return std::nullopt;
    return stat;
}

std::optional<std::uint64_t> bootTimeSeconds()
{
    std::ifstream file("/proc/stat");
    std::string key;
    while (file >> key) {
        if (key == "btime") {
            std::uint64_t seconds = 0;
            if (file >> seconds)
                return seconds;
            return std::nullopt;
        }
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    return std::nullopt;
}

template <typename T>
std::optional<T> parseNumber(std::string_view text)
{
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return value;
}

} // namespace

ProcessIdentity ProcessIdentity::current()
{
    static const ProcessIdentity self = of(::getpid()).value_or(ProcessIdentity{::getpid(), 0});
    // A forked child is a process of its own.
    if (self.pid != ::getpid())
        return of(::getpid()).value_or(ProcessIdentity{::getpid(), 0});
    return self;
}

std::optional<ProcessIdentity> ProcessIdentity::of(pid_t pid)
{
    const std::optional<ProcessStat> stat = readStat(pid);
    if (!stat || stat->state == 'Z' || stat->state == 'X')
        return std::nullopt;
    return ProcessIdentity{pid, stat->startTicks};
}

bool ProcessIdentity::isRunning() const
{
    const std::optional<ProcessIdentity> running = of(pid);
    return running && *running == *this;
}

std::string ProcessIdentity::token() const
{
    return std::to_string(pid) + "-" + std::to_string(startTicks);
}

std::optional<ProcessIdentity> ProcessIdentity::fromToken(std::string_view token)
{
    const std::size_t dash = token.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const std::optional<pid_t> pid = parseNumber<pid_t>(token.substr(0, dash));
    const std::optional<std::uint64_t> ticks = parseNumber<std::uint64_t>(token.substr(dash + 1));
    if (!pid || !ticks || *pid <= 0)
        return std::nullopt;
    return ProcessIdentity{*pid, *ticks};
}

std::chrono::system_clock::time_point processStartTime()
{
    const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
    const std::optional<std::uint64_t> boot = bootTimeSeconds();
    const ProcessIdentity self = ProcessIdentity::current();
    // Unknown: nothing counts as older than this process, so nothing is taken for a leftover.
    if (!boot || ticksPerSecond <= 0 || self.startTicks == 0)
        return std::chrono::system_clock::time_point::min();
    const auto sinceBoot = std::chrono::milliseconds(self.startTicks * 1000 / static_cast<std::uint64_t>(ticksPerSecond));
    return std::chrono::system_clock::time_point(std::chrono::seconds(*boot)) + sinceBoot;
}

} // namespace plyra
