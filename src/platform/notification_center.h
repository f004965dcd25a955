// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace plyra {

/// A named change and the object it concerns (for a document's changes, the document).
struct Notification {
    std::string name;
    const void* object = nullptr;
};

/// Delivers notifications by name to every observer of that name that follows their
/// object, or any object. Threads: main thread only.
class NotificationCenter {
public:
    using ObserverId = std::uint64_t;
    using Handler = std::function<void(const Notification&)>;

    static NotificationCenter& defaultCenter();

    /// owner groups registrations so that removeObserversOwnedBy() drops them together;
    /// with an object, only notifications about that object reach the handler.
    ObserverId addObserver(std::string name, Handler handler, const void* owner = nullptr, const void* object = nullptr);
    void removeObserver(ObserverId id);
    void removeObserversOwnedBy(const void* owner);
    void removeObserversOwnedBy(const void* owner, const std::string& name);

    void post(const Notification& notification);
    int observerCount(const std::string& name) const;

private:
    struct Observer {
        ObserverId id;
        std::string name;
        Handler handler;
        const void* owner;
        const void* object;
    };
    std::vector<Observer> m_observers;
    ObserverId m_nextId = 1;
};

/// Posts notifications "as soon as possible": at the end of the current pass of the
/// main run loop, coalesced so that each name is posted once per pass for each object.
/// Threads: main thread only.
class NotificationQueue {
public:
    explicit NotificationQueue(NotificationCenter& center = NotificationCenter::defaultCenter());

    static NotificationQueue& defaultQueue();

    void enqueueAsSoonAsPossible(const Notification& notification);
    /// Posts everything pending now (tests without an event loop).
    void flush();
    bool isPending(const std::string& name, const void* object) const;
    int pendingCount() const { return static_cast<int>(m_pending.size()); }

private:
    NotificationCenter& m_center;
    std::vector<Notification> m_pending;
    bool m_passScheduled = false;
};

} // namespace plyra
