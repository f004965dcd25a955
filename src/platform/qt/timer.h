// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>
#include <vector>

class QTimer;

namespace plyra {

class ManualClock;

/// A main-thread timer that calls back once after its interval, or every interval. It
/// runs on Qt's timers, or, while a test holds a ManualClock, on that clock, which moves
/// only when the test moves it: classes that wait use this timer, so that their tests
/// advance time instead of waiting for it.
/// Threads: main thread only.
class Timer {
public:
    explicit Timer(std::function<void()> timeout);
    ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void setInterval(int ms) { m_interval = ms; }
    int interval() const { return m_interval; }
    void setSingleShot(bool singleShot) { m_singleShot = singleShot; }
    /// Starts the timer anew, from now; a running one starts over.
    void start();
    void stop();
    bool isActive() const;

private:
    friend class ManualClock;

    std::function<void()> m_timeout;
    int m_interval = 0;
    bool m_singleShot = false;
    std::unique_ptr<QTimer> m_qtTimer;
    ManualClock* m_clock = nullptr;
    qint64 m_deadline = 0;
};

/// The time of the Timers started while it exists: it stands still until advance()
/// moves it. One at a time, made by a test before what it tests starts its timers.
/// Threads: main thread only.
class ManualClock {
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    static ManualClock* current();

    /// Milliseconds since the clock was made.
    qint64 now() const { return m_now; }
    /// Moves the time on by ms, firing every timer that falls due on the way at its own
    /// deadline, earliest first (a repeating one as often as it falls due).
    void advance(int ms);

private:
    friend class Timer;
    void schedule(Timer* timer);
    void cancel(Timer* timer);
    Timer* nextDueBy(qint64 time) const;

    qint64 m_now = 0;
    std::vector<Timer*> m_scheduled;
};

} // namespace plyra
