// SPDX-License-Identifier: MIT
#include "platform/termination_signals.h"

#include <initializer_list>

namespace plyra {

sigset_t terminationSignalsToHandle()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction current {};
        if (sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN)
            continue;
        sigaddset(&signals, signal);
    }
    return signals;
}

} // namespace plyra
