/**
 * The library's own thread, which delivers device events to the handler.
 */
#ifndef SIMULATOR_EVENTTHREAD_H
#define SIMULATOR_EVENTTHREAD_H

#include "instrument/KvaSdk.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace kvasim {

struct DeviceEvent {
    std::uint32_t code;
    std::uint32_t rawDataCount;
    std::int32_t error;
};

/** Wakes a thread that waits for file descriptors. Any thread may call it. */
class WakePipe {
public:
    /** @throws std::system_error when the process has no descriptors left. */
    WakePipe();
    ~WakePipe();
    WakePipe(const WakePipe&) = delete;
    WakePipe& operator=(const WakePipe&) = delete;

    /** Makes the next `wait`, or the one that is under way, return. */
    void wake();

    /** Returns after a `wake`; may return without one. */
    void wait();

private:
    int m_readEnd = -1;
    int m_writeEnd = -1;
};

/** Delivers events in order, one at a time, on a thread that lives while a handler is installed. No
    lock of this class is held during a delivery, so a handler may call anything, this class
    included. Any thread may call any function. */
class EventThread {
public:
    EventThread() = default;

    /** As `stop`. */
    ~EventThread();
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /** Installs @p handler for all later deliveries; null removes it and drops the events that
       wait. When it returns, no earlier handler is running or will be called again, and after a
       removal the thread has ended. From within a handler it returns at once instead: the delivery
       under way is then the last one of the earlier handler, and the thread ends with the next
       removal or `stop`.
        @return false when the thread cannot be started; nothing is then installed. */
    bool setHandler(KVA_DeviceEventHandler handler);

    /** Queues an event; dropped when no handler is installed. */
    void post(const DeviceEvent& event);

    /** Returns when every queued event has been delivered; from within a handler, at once. */
    void waitUntilDelivered();

    /** Removes the handler and ends the thread. From within a handler, the thread is left to end by
        itself with the process. */
    void stop();

    /** Whether the caller runs on this thread. */
    bool isCurrent() const;

private:
    void start();
    void end(std::unique_lock<std::mutex>& lock);
    void run();

    std::mutex m_change; // one setHandler at a time; taken before m_mutex, never by the thread
    std::thread m_thread;

    mutable std::mutex m_mutex;       // everything below
    std::unique_ptr<WakePipe> m_wake; // lives as long as the thread
    std::condition_variable m_progress;
    std::thread::id m_id;
    KVA_DeviceEventHandler m_handler = nullptr;
    std::deque<DeviceEvent> m_queue;
    std::uint64_t m_deliveries = 0; // begun so far
    bool m_delivering = false;
    bool m_stop = false;
};

} // namespace kvasim

#endif
