/**
 * The library's own thread: it delivers device events to the handler and serves the control socket.
 */
#ifndef SIMULATOR_EVENTTHREAD_H
#define SIMULATOR_EVENTTHREAD_H

#include "instrument/KvaSdk.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <poll.h>

namespace kvasim {

struct DeviceEvent {
    std::uint32_t code;
    std::uint32_t rawDataCount;
    std::int32_t error;
};

/** What the thread serves between deliveries. Both functions run on the event thread only, without
    any lock, and must not block. */
class EventService {
public:
    virtual ~EventService() = default;

    /** Appends the descriptors to wait for.
        @return after how many milliseconds to serve in any case; -1 when only for a descriptor */
    virtual int prepare(std::vector<pollfd>& descriptors) = 0;

    /** Serves, after every wait. @param descriptors those of `prepare`, with what was found */
    virtual void serve(const std::vector<pollfd>& descriptors) = 0;
};

/** Wakes a thread that waits for file descriptors. Any thread may call it. */
class WakePipe {
public:
    /** @throws std::system_error when the process has no descriptors left. */
    WakePipe();
    ~WakePipe();
    WakePipe(const WakePipe&) = delete;
    WakePipe& operator=(const WakePipe&) = delete;

    /** Makes the next wait for `descriptor`, or the one that is under way, return. */
    void wake();

    /** Readable after a `wake`, until `drain`. */
    int descriptor() const { return m_readEnd; }
    void drain();

private:
    int m_readEnd = -1;
    int m_writeEnd = -1;
};

/** Delivers events in order, one at a time, on a thread that lives while a handler is installed or
    the thread is kept for its service. No lock of this class is held during a delivery, so a
    handler may call anything, this class included. Any thread may call any function. */
class EventThread {
public:
    using Clock = std::chrono::steady_clock;

    /** @param service outlives this object; null: none */
    explicit EventThread(EventService* service = nullptr) : m_service(service) {}

    /** As `stop`. */
    ~EventThread();
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /** Installs @p handler for all later deliveries; null removes it and drops the events that
       wait, those for later included. When it returns, no earlier handler is running or will be
       called again, and after a removal the thread has ended, unless it is kept. From within a
       handler it returns at once instead: the delivery under way is then the last one of the
       earlier handler, and the thread ends with the next removal or `stop`.
        @return false when the thread cannot be started; nothing is then installed. */
    bool setHandler(KVA_DeviceEventHandler handler);

    /** Keeps the thread for its service, starting it where it does not run; or lets it end with the
        next removal of a handler. Cheap when nothing changes.
        @return false when the thread cannot be started */
    bool keepRunning(bool keep);

    /** Queues an event; dropped when no handler is installed. */
    void post(const DeviceEvent& event);

    /** Queues an event that joins the queue at @p time; dropped when no handler is installed.
        @param owner for `dropLater` */
    void postAt(const DeviceEvent& event, Clock::time_point time, std::int32_t owner);

    /** Drops the events of @p owner whose time has not come. */
    void dropLater(std::int32_t owner);

    /** Makes the thread, where it runs, serve its service. */
    void wake();

    /** Returns when every queued event has been delivered, but for those whose time has not come;
        from within a handler, at once. */
    void waitUntilDelivered();

    /** Removes the handler and ends the thread. From within a handler, the thread is left to end by
        itself with the process. */
    void stop();

    /** Whether the caller runs on this thread. */
    bool isCurrent() const;

private:
    struct LaterEvent {
        DeviceEvent event;
        Clock::time_point time;
        std::int32_t owner;
    };

    bool ensureStarted();
    void start();
    void end(std::unique_lock<std::mutex>& lock);
    void run();
    void dropAll();
    int takeDue();
    void deliver(std::unique_lock<std::mutex>& lock);
    void waitAndServe(int timeout);

    EventService* const m_service;
    std::mutex m_change; // one start or end at a time; taken before m_mutex, never by the thread
    std::thread m_thread;
    std::atomic<bool> m_keep{false};

    mutable std::mutex m_mutex;       // everything below
    std::unique_ptr<WakePipe> m_wake; // lives as long as the thread
    std::condition_variable m_progress;
    std::thread::id m_id;
    KVA_DeviceEventHandler m_handler = nullptr;
    std::deque<DeviceEvent> m_queue;
    std::vector<LaterEvent> m_later;
    std::uint64_t m_deliveries = 0; // begun so far
    bool m_delivering = false;
    bool m_stop = false;
};

} // namespace kvasim

#endif
