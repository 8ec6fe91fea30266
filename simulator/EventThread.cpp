#include "simulator/EventThread.h"

#include <algorithm>
#include <csignal>
#include <system_error>

#include <pthread.h>

namespace kvasim {

EventThread::~EventThread() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
        m_wake.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
}

bool EventThread::setHandler(KVA_DeviceEventHandler handler) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (handler != nullptr && !m_thread.joinable() && !start())
        return false;
    m_handler = handler;
    if (handler == nullptr)
        m_events.clear();
    m_wake.notify_all();
    m_progress.notify_all();
    const std::uint64_t underWay = m_deliveries;
    if (m_thread.get_id() != std::this_thread::get_id())
        m_progress.wait(lock, [&] { return !m_delivering || m_deliveries != underWay; });
    return true;
}

bool EventThread::start() {
    // A new thread inherits the signal mask. Signals are for the program, not for this thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        m_thread = std::thread(&EventThread::run, this);
    } catch (const std::system_error&) {
        // It is not joinable then.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return m_thread.joinable();
}

void EventThread::post(const DeviceEvent& event, std::chrono::milliseconds delay) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handler == nullptr)
        return;
    m_events.emplace(Clock::now() + delay, event);
    m_wake.notify_all();
}

bool EventThread::dropLater(std::int32_t owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t before = m_events.size();
    for (auto later = m_events.upper_bound(Clock::now()); later != m_events.end();)
        later = later->second.owner == owner ? m_events.erase(later) : std::next(later);
    return m_events.size() < before;
}

void EventThread::waitUntilDelivered() {
    if (isCurrent())
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_progress.wait(lock, [this] { return !isDue() && !m_delivering; });
}

bool EventThread::isCurrent() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_thread.get_id() == std::this_thread::get_id();
}

void EventThread::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    auto nextLook = Clock::now() + lookPeriod;
    while (!m_stop) {
        if (m_handler == nullptr)
            m_wake.wait(lock);
        else if (isDue())
            deliver(lock);
        else
            m_wake.wait_until(lock, m_events.empty() ? nextLook
                                                     : std::min(nextLook, m_events.begin()->first));
        if (m_handler == nullptr || Clock::now() < nextLook)
            continue;
        lock.unlock();
        m_look();
        lock.lock();
        nextLook = Clock::now() + lookPeriod;
    }
}

bool EventThread::isDue() const {
    return !m_events.empty() && m_events.begin()->first <= Clock::now();
}

void EventThread::deliver(std::unique_lock<std::mutex>& lock) {
    const DeviceEvent event = m_events.begin()->second;
    const KVA_DeviceEventHandler handler = m_handler;
    m_events.erase(m_events.begin());
    m_delivering = true;
    ++m_deliveries;
    lock.unlock();
    handler(event.code, event.rawDataCount, event.error);
    lock.lock();
    m_delivering = false;
    m_progress.notify_all();
}

} // namespace kvasim
