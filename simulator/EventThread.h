/**
 * The library's own thread: it delivers device events to the handler, and polls the bench.
 */
#ifndef SIMULATOR_EVENTTHREAD_H
#define SIMULATOR_EVENTTHREAD_H

#include "instrument/KvaSdk.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace kvasim {

struct DeviceEvent {
    std::uint32_t code;
    std::uint32_t rawDataCount;
    std::int32_t error;
    std::optional<std::int32_t> owner{}; /**< for `dropLater` */
};

/** Delivers events in order, one at a time, on a thread that starts with the first handler and ends
    with this object. A handler may call anything but the destructor. Any thread may call any
    function. */
class EventThread {
public:
    /** @param look called on the thread every 50 ms while a handler is installed, between
        deliveries; throws nothing */
    explicit EventThread(std::function<void()> look) : m_look(std::move(look)) {}
    ~EventThread();

    /** Installs @p handler; null removes it and drops the queued events. When it returns, no
        earlier handler is running or will be called again. From within a handler it returns at
        once: the present delivery is the last one to the earlier handler.
        @return false when the thread cannot be started; nothing is then installed. */
    bool setHandler(KVA_DeviceEventHandler handler);

    /** Queues an event; dropped when no handler is installed.
        @param delay from now until it is delivered */
    void post(const DeviceEvent& event, std::chrono::milliseconds delay = {});

    /** Drops the events of @p owner that are not due yet. @return whether there were any */
    bool dropLater(std::int32_t owner);

    /** Waits until every event that is due is delivered; from within a handler, returns at once. */
    void waitUntilDelivered();

    /** Whether the caller runs on this thread. */
    bool isCurrent() const;

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds lookPeriod{50};

    bool start();
    void run();
    bool isDue() const;
    void deliver(std::unique_lock<std::mutex>& lock);

    const std::function<void()> m_look;
    mutable std::mutex m_mutex; // everything below
    std::thread m_thread;
    std::condition_variable m_wake;
    std::condition_variable m_progress;
    KVA_DeviceEventHandler m_handler = nullptr;
    std::multimap<Clock::time_point, DeviceEvent> m_events; // equal times: in order
    std::uint64_t m_deliveries = 0;                         // begun so far
    bool m_delivering = false;
    bool m_stop = false;
};

} // namespace kvasim

#endif
