// SPDX-License-Identifier: MIT
// plyra-render: renders frames and movies of Plyra documents without a display.
#include "cli/cli_options.h"
#include "cli/cli_runner.h"
#include "cli/signal_watcher.h"
#include "platform/temporary_files.h"

#include <QCoreApplication>

#include <iostream>
#include <new>

namespace {

// After an interrupt the run finishes what it is doing within this time, or is ended.
constexpr std::chrono::milliseconds kInterruptGrace{1500};

} // namespace

int main(int argc, char* argv[])
{
    const plyra::SignalWatcher interrupts(kInterruptGrace);
    QCoreApplication app(argc, argv);

    std::vector<std::string> arguments(argv + 1, argv + argc);
    const plyra::CliParseResult parsed = plyra::parseCliOptions(arguments);
    if (!parsed.options) {
        std::cerr << "plyra-render: " << parsed.error << "\n" << plyra::cliUsage();
        return plyra::kExitUsage;
    }
    if (parsed.options->mode == plyra::CliMode::Help) {
        std::cout << plyra::cliUsage();
        return plyra::kExitSuccess;
    }
    try {
        return plyra::runCli(*parsed.options, std::cout, std::cerr);
    } catch (const std::bad_alloc&) {
        // Every reader turns a failed allocation into its own message; this is the last net.
        plyra::TemporaryFiles::removeAll();
        std::cerr << "plyra-render: there is not enough memory for this document at this size\n";
        return plyra::kExitFailure;
    }
}
