// SPDX-License-Identifier: MIT
#pragma once

#include "platform/qt/timer.h"

#include <QObject>

namespace plyra {

class RenderController;

/// The timing of a render window's work: a recalculation requested by any change runs
/// once, 0.1 s after the last request of a burst, and a repeating 0.1 s timer polls the
/// render without ever waiting for a job. It listens for "objectsUpdated" of its
/// controller's document while observing, and tells its owner when to recalculate and
/// when it polled.
/// Threads: main thread.
class RenderScheduler : public QObject {
    Q_OBJECT

public:
    static constexpr int kRecalcDelayMs = 100;
    static constexpr int kPollIntervalMs = 100;

    explicit RenderScheduler(RenderController& controller, QObject* parent = nullptr);
    ~RenderScheduler() override;

    /// Whether the document's "objectsUpdated" requests a recalculation; registers at most once.
    void setObservingDocument(bool observe);
    bool isObservingDocument() const { return m_observing; }

    /// Asks for a recalculation 0.1 s from now, replacing any pending request.
    void delayedRecalc();
    void cancelDelayedRecalc() { m_delay.stop(); }
    bool isRecalcPending() const { return m_delay.isActive(); }

    /// Starts polling the controller's render unless the timer already runs.
    void startPolling();
    bool isPolling() const { return m_poll.isActive(); }
    /// Stops polling, drops the render's queued jobs and cancels a pending request.
    void stop();

signals:
    /// The delay of a request is over: the owner decides whether to render now.
    void recalcRequested();
    /// The render was polled; its finished jobs have been consumed.
    void polled();
    /// The last job of the render has been consumed and polling stopped.
    void renderFinished();

private:
    void poll();

    RenderController& m_controller;
    Timer m_delay;
    Timer m_poll;
    bool m_observing = false;
};

} // namespace plyra
