/**
 * The library's own thread: it delivers device events to the handler, and looks at the bench.
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

/** Delivers events in order, one at a time, on a thread that lives while a handler is installed. A
    handler may call anything, this class included. Any thread may call any function. */
class EventThread {
public:
    /** @param look called on the thread every 50 ms, between deliveries; throws nothing */
    explicit EventThread(std::function<void()> look) : m_look(std::move(look)) {}
    ~EventThread() { setHandler(nullptr); }
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /** Installs @p handler; null removes it and drops the events that wait. When it returns, no
        earlier handler is running or will be called again, and after a removal the thread has
        ended. From within a handler it returns at once: the delivery under way is the last one of
        the earlier handler, and the thread ends with the next removal.
        @return false when the thread cannot be started; nothing is then installed. */
    bool setHandler(KVA_DeviceEventHandler handler);

    /** Queues an event; dropped when no handler is installed.
        @param delay from now until it is delivered */
    void post(const DeviceEvent& event, std::chrono::milliseconds delay = {});

    /** Drops the events of @p owner whose time has not come. @return whether there were any */
    bool dropLater(std::int32_t owner);

    /** Returns when every event whose time has come is delivered; from within a handler, at once.
     */
    void waitUntilDelivered();

    /** Whether the caller runs on this thread. */
    bool isCurrent() const;

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds lookPeriod{50};

    bool ensureStarted();
    void install(KVA_DeviceEventHandler handler);
    void run();
    bool isDue() const;
    void deliver(std::unique_lock<std::mutex>& lock);

    const std::function<void()> m_look;
    std::mutex m_change; // one start or end at a time; taken before m_mutex, never by the thread
    std::thread m_thread;

    mutable std::mutex m_mutex; // everything below
    std::condition_variable m_wake;
    std::condition_variable m_progress;
    std::thread::id m_id;
    KVA_DeviceEventHandler m_handler = nullptr;
    std::multimap<Clock::time_point, DeviceEvent> m_events; // equal times: in order
    std::uint64_t m_deliveries = 0;                         // begun so far
    bool m_delivering = false;
    bool m_stop = false;
};

} // namespace kvasim

#endif
