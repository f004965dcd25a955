// SPDX-License-Identifier: MIT
// plyra-render: renders frames and movies of Plyra documents without a display.
#include "cli/cli_options.h"
#include "cli/cli_runner.h"

#include <QCoreApplication>

#include <atomic>
#include <csignal>
#include <iostream>

namespace {

std::atomic<bool> g_interrupted{false};

void onSignal(int)
{
    g_interrupted = true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);

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
    return plyra::runCli(*parsed.options, std::cout, std::cerr, g_interrupted);
}
