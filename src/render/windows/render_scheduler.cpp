// SPDX-License-Identifier: MIT
#include "render/windows/render_scheduler.h"

#include "model/morph_document.h"
#include "platform/notification_center.h"
#include "render/render_controller.h"

namespace plyra {

RenderScheduler::RenderScheduler(RenderController& controller, QObject* parent)
    : QObject(parent)
    , m_controller(controller)
    , m_delay([this] { emit recalcRequested(); })
    , m_poll([this] { poll(); })
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(kRecalcDelayMs);
    m_poll.setInterval(kPollIntervalMs);
}

RenderScheduler::~RenderScheduler()
{
    NotificationCenter::defaultCenter().removeObserversOwnedBy(this);
}

void RenderScheduler::setObservingDocument(bool observe)
{
    if (observe == m_observing)
        return;
    m_observing = observe;
    NotificationCenter& center = NotificationCenter::defaultCenter();
    if (observe)
        center.addObserver(kObjectsUpdatedNotification, [this](const Notification&) { delayedRecalc(); }, this,
            m_controller.document().notificationObject());
    else
        center.removeObserversOwnedBy(this, kObjectsUpdatedNotification);
}

void RenderScheduler::delayedRecalc()
{
    m_delay.start();
}

void RenderScheduler::startPolling()
{
    if (!m_poll.isActive())
        m_poll.start();
}

void RenderScheduler::stop()
{
    m_poll.stop();
    m_delay.stop();
    m_controller.stop();
}

void RenderScheduler::poll()
{
    const bool finished = m_controller.tick();
    emit polled();
    if (finished) {
        m_poll.stop();
        emit renderFinished();
    }
}

} // namespace plyra
