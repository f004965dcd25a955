// SPDX-License-Identifier: MIT
#include "platform/qt/timer.h"

#include <QTimer>

#include <algorithm>
#include <cassert>

namespace plyra {
namespace {

ManualClock* g_clock = nullptr;

} // namespace

Timer::Timer(std::function<void()> timeout)
    : m_timeout(std::move(timeout))
{
}

Timer::~Timer()
{
    stop();
}

void Timer::start()
{
    stop();
    if (ManualClock* clock = ManualClock::current()) {
        m_clock = clock;
        m_deadline = clock->now() + m_interval;
        clock->schedule(this);
        return;
    }
    if (!m_qtTimer) {
        m_qtTimer = std::make_unique<QTimer>();
        // Short delays are part of what users see (a refresh 10 ms after the last change).
        m_qtTimer->setTimerType(Qt::PreciseTimer);
        QObject::connect(m_qtTimer.get(), &QTimer::timeout, [this] {
            if (m_singleShot)
                m_qtTimer->stop();
            m_timeout();
        });
    }
    m_qtTimer->setInterval(m_interval);
    m_qtTimer->start();
}

void Timer::stop()
{
    if (m_qtTimer)
        m_qtTimer->stop();
    if (m_clock)
        m_clock->cancel(this);
    m_clock = nullptr;
}

bool Timer::isActive() const
{
    return m_clock || (m_qtTimer && m_qtTimer->isActive());
}

ManualClock::ManualClock()
{
    assert(!g_clock);
    g_clock = this;
}

ManualClock::~ManualClock()
{
    for (Timer* timer : m_scheduled)
        timer->m_clock = nullptr;
    g_clock = nullptr;
}

ManualClock* ManualClock::current()
{
    return g_clock;
}

void ManualClock::schedule(Timer* timer)
{
    m_scheduled.push_back(timer);
}

void ManualClock::cancel(Timer* timer)
{
    std::erase(m_scheduled, timer);
}

Timer* ManualClock::nextDueBy(qint64 time) const
{
    Timer* next = nullptr;
    for (Timer* timer : m_scheduled)
        if (timer->m_deadline <= time && (!next || timer->m_deadline < next->m_deadline))
            next = timer;
    return next;
}

void ManualClock::advance(int ms)
{
    const qint64 target = m_now + ms;
    // The timers' callbacks may start, stop or delete timers: look again after each.
    while (Timer* timer = nextDueBy(target)) {
        m_now = timer->m_deadline;
        if (timer->m_singleShot)
            timer->stop();
        else
            timer->m_deadline += std::max(timer->m_interval, 1);
        timer->m_timeout();
    }
    m_now = target;
}

} // namespace plyra
