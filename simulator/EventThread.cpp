#include "simulator/EventThread.h"

#include <algorithm>
#include <csignal>
#include <exception>

#include <pthread.h>

namespace kvasim {

namespace {

/** Keeps signals away from the thread that is made in its scope: they belong to the program. */
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

} // namespace

EventThread::~EventThread() {
    stop();
}

bool EventThread::setHandler(KVA_DeviceEventHandler handler) {
    if (isCurrent()) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_handler = handler;
        if (handler == nullptr)
            dropAll();
        return true;
    }
    const std::lock_guard<std::mutex> change(m_change);
    if (handler != nullptr && !ensureStarted())
        return false;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_handler = handler;
    if (handler == nullptr)
        dropAll();
    const std::uint64_t underWay = m_deliveries;
    m_progress.wait(lock, [&] { return !m_delivering || m_deliveries != underWay; });
    if (m_handler == nullptr)
        end(lock);
    return true;
}

void EventThread::post(const DeviceEvent& event) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handler == nullptr)
        return;
    m_queue.push_back(event);
    m_wake.notify_all();
}

void EventThread::postAt(const DeviceEvent& event, Clock::time_point time, std::int32_t owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handler == nullptr)
        return;
    m_later.push_back({event, time, owner});
    m_wake.notify_all();
}

bool EventThread::dropLater(std::int32_t owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto isOwned = [&](const LaterEvent& later) { return later.owner == owner; };
    const auto left = std::remove_if(m_later.begin(), m_later.end(), isOwned);
    const bool found = left != m_later.end();
    m_later.erase(left, m_later.end());
    return found;
}

void EventThread::waitUntilDelivered() {
    if (isCurrent())
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_progress.wait(lock, [&] { return m_queue.empty() && !m_delivering; });
}

void EventThread::stop() {
    if (isCurrent())
        m_thread.detach();
    else
        setHandler(nullptr);
}

bool EventThread::isCurrent() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_id == std::this_thread::get_id();
}

/** To be called with m_change held. */
bool EventThread::ensureStarted() {
    if (m_thread.joinable())
        return true;
    try {
        const SignalsBlocked blocked;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = false;
        m_thread = std::thread(&EventThread::run, this);
        m_id = m_thread.get_id();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void EventThread::end(std::unique_lock<std::mutex>& lock) {
    if (!m_thread.joinable())
        return;
    m_stop = true;
    m_wake.notify_all();
    lock.unlock();
    m_thread.join();
    lock.lock();
    m_id = {};
}

void EventThread::dropAll() {
    m_queue.clear();
    m_later.clear();
    m_progress.notify_all();
}

void EventThread::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    auto nextLook = Clock::now() + lookPeriod;
    while (!m_stop) {
        const auto nextEvent = takeDue();
        if (!m_queue.empty())
            deliver(lock);
        if (Clock::now() >= nextLook) {
            lock.unlock();
            m_look();
            lock.lock();
            nextLook = Clock::now() + lookPeriod;
        } else if (m_queue.empty() && !m_stop) {
            m_wake.wait_until(lock, std::min(nextLook, nextEvent));
        }
    }
}

/** Moves the events whose time has come into the queue. @return the time of the next one */
EventThread::Clock::time_point EventThread::takeDue() {
    const auto now = Clock::now();
    auto next = Clock::time_point::max();
    for (auto later = m_later.begin(); later != m_later.end();) {
        if (later->time <= now) {
            m_queue.push_back(later->event);
            later = m_later.erase(later);
        } else {
            next = std::min(next, later->time);
            ++later;
        }
    }
    return next;
}

void EventThread::deliver(std::unique_lock<std::mutex>& lock) {
    const DeviceEvent event = m_queue.front();
    const KVA_DeviceEventHandler handler = m_handler;
    m_queue.pop_front();
    m_delivering = true;
    ++m_deliveries;
    lock.unlock();
    handler(event.code, event.rawDataCount, event.error);
    lock.lock();
    m_delivering = false;
    m_progress.notify_all();
}

} // namespace kvasim
