// SPDX-License-Identifier: MIT
#include "platform/qt/qt_run_loop.h"

#include "platform/run_loop.h"

#include <QCoreApplication>
#include <QTimer>

namespace plyra {

void bindRunLoopToQtEventLoop()
{
    RunLoop::main().setWakeUp([] {
        // A zero timer fires once the events already queued have been handled: the end
        // of this pass of the loop.
        QTimer::singleShot(0, QCoreApplication::instance(), [] { RunLoop::main().endPass(); });
    });
    if (RunLoop::main().hasPendingWork())
        QTimer::singleShot(0, QCoreApplication::instance(), [] { RunLoop::main().endPass(); });
}

} // namespace plyra
