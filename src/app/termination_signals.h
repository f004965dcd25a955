// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <csignal>

class QSocketNotifier;

namespace plyra {

/// Turns SIGINT, SIGTERM and SIGHUP into a signal on the main event loop, so that the
/// application can close its windows (and remove their temporary movies) before it
/// ends, instead of dying in the middle of whatever it was doing. Signals the caller
/// chose to ignore stay ignored; a signal also sets StopRequest, so that long work on
/// the main thread gives up and the quit comes promptly.
/// Threads: create on the main thread; the handler itself only writes one byte.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

signals:
    void terminationRequested(int signalNumber);

private:
    QSocketNotifier* m_notifier = nullptr;
    sigset_t m_signals{};
};

} // namespace plyra
