// SPDX-License-Identifier: MIT
#include "platform/notification_center.h"

#include "platform/run_loop.h"

#include <algorithm>

namespace plyra {

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

NotificationCenter::ObserverId NotificationCenter::addObserver(std::string name, Handler handler, const void* owner, const void* object)
{
    const ObserverId id = m_nextId++;
    m_observers.push_back({id, std::move(name), std::move(handler), owner, object});
    return id;
}

void NotificationCenter::removeObserver(ObserverId id)
{
    std::erase_if(m_observers, [id](const Observer& o) { return o.id == id; });
}

void NotificationCenter::removeObserversOwnedBy(const void* owner)
{
    std::erase_if(m_observers, [owner](const Observer& o) { return o.owner == owner; });
}

void NotificationCenter::removeObserversOwnedBy(const void* owner, const std::string& name)
{
    std::erase_if(m_observers, [&](const Observer& o) { return o.owner == owner && o.name == name; });
}

void NotificationCenter::post(const Notification& notification)
{
    // Observers may add or remove observers while handling; deliver to those registered
    // now and still registered when their turn comes.
    std::vector<ObserverId> ids;
    for (const Observer& o : m_observers)
        if (o.name == notification.name && (!o.object || o.object == notification.object))
            ids.push_back(o.id);
    for (ObserverId id : ids) {
        auto it = std::find_if(m_observers.begin(), m_observers.end(), [id](const Observer& o) { return o.id == id; });
        if (it == m_observers.end())
            continue;
        Handler handler = it->handler;
        handler(notification);
    }
}

int NotificationCenter::observerCount(const std::string& name) const
{
    return static_cast<int>(std::count_if(m_observers.begin(), m_observers.end(),
        [&](const Observer& o) { return o.name == name; }));
}

NotificationQueue::NotificationQueue(NotificationCenter& center)
    : m_center(center)
{
}

NotificationQueue& NotificationQueue::defaultQueue()
{
    static NotificationQueue queue;
    return queue;
}

void NotificationQueue::enqueueAsSoonAsPossible(const Notification& notification)
{
    if (isPending(notification.name, notification.object))
        return;
    m_pending.push_back(notification);
    if (!m_passScheduled) {
        m_passScheduled = true;
        RunLoop::main().callAtEndOfPass([this] {
            m_passScheduled = false;
            flush();
        });
    }
}

void NotificationQueue::flush()
{
    // What observers enqueue while these are posted belongs to the next pass.
    std::vector<Notification> batch;
    batch.swap(m_pending);
    for (const Notification& n : batch)
        m_center.post(n);
}

bool NotificationQueue::isPending(const std::string& name, const void* object) const
{
    return std::any_of(m_pending.begin(), m_pending.end(),
        [&](const Notification& n) { return n.name == name && n.object == object; });
}

} // namespace plyra
