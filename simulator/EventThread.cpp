#include "simulator/EventThread.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <exception>
#include <system_error>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

namespace kvasim {

namespace {

void setFlags(int descriptor) {
    static_cast<void>(::fcntl(descriptor, F_SETFD, FD_CLOEXEC));
    static_cast<void>(::fcntl(descriptor, F_SETFL, O_NONBLOCK));
}

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

WakePipe::WakePipe() {
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        throw std::system_error(errno, std::generic_category());
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
    setFlags(m_readEnd);
    setFlags(m_writeEnd);
}

WakePipe::~WakePipe() {
    ::close(m_readEnd);
    ::close(m_writeEnd);
}

void WakePipe::wake() {
    const char byte = 0;
    // A full pipe is as good as one more byte.
    const ssize_t written = ::write(m_writeEnd, &byte, 1);
    static_cast<void>(written);
}

void WakePipe::drain() {
    char bytes[64];
    while (::read(m_readEnd, bytes, sizeof bytes) > 0) {
    }
}

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
    if (m_handler == nullptr && !m_keep)
        end(lock);
    return true;
}

bool EventThread::keepRunning(bool keep) {
    if (m_keep.exchange(keep) == keep || !keep || isCurrent())
        return true;
    const std::lock_guard<std::mutex> change(m_change);
    if (ensureStarted())
        return true;
    m_keep = false;
    return false;
}

void EventThread::post(const DeviceEvent& event) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handler == nullptr)
        return;
    m_queue.push_back(event);
    m_wake->wake();
}

void EventThread::postAt(const DeviceEvent& event, Clock::time_point time, std::int32_t owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handler == nullptr)
        return;
    m_later.push_back({event, time, owner});
    m_wake->wake();
}

void EventThread::dropLater(std::int32_t owner) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto isOwned = [&](const LaterEvent& later) { return later.owner == owner; };
    m_later.erase(std::remove_if(m_later.begin(), m_later.end(), isOwned), m_later.end());
}

void EventThread::wake() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_wake)
        m_wake->wake();
}

void EventThread::waitUntilDelivered() {
    if (isCurrent())
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    m_progress.wait(lock, [&] { return m_queue.empty() && !m_delivering; });
}

void EventThread::stop() {
    m_keep = false;
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
    try {
        if (!m_thread.joinable())
            start();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void EventThread::start() {
    auto wake = std::make_unique<WakePipe>();
    const SignalsBlocked blocked;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stop = false;
    m_wake = std::move(wake);
    m_thread = std::thread(&EventThread::run, this);
    m_id = m_thread.get_id();
}

void EventThread::end(std::unique_lock<std::mutex>& lock) {
    if (!m_thread.joinable())
        return;
    m_stop = true;
    m_wake->wake();
    lock.unlock();
    m_thread.join();
    lock.lock();
    m_id = {};
    m_wake.reset();
}

void EventThread::dropAll() {
    m_queue.clear();
    m_later.clear();
    m_progress.notify_all();
}

void EventThread::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stop) {
        int timeout = takeDue();
        // A bound, so that a flood of events does not keep the service waiting for ever.
        for (int count = 0; count < 64 && !m_stop && !m_queue.empty(); ++count)
            deliver(lock);
        if (m_stop)
            return;
        if (!m_queue.empty())
            timeout = 0;
        lock.unlock();
        waitAndServe(timeout);
        lock.lock();
    }
}

/** Moves the events whose time has come into the queue.
    @return the milliseconds until the next one, -1 when there is none */
int EventThread::takeDue() {
    const auto now = Clock::now();
    std::int64_t next = -1;
    for (auto later = m_later.begin(); later != m_later.end();) {
        if (later->time <= now) {
            m_queue.push_back(later->event);
            later = m_later.erase(later);
            continue;
        }
        // Rounded up, so that the wait does not end too early.
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(later->time - now).count() + 1;
        next = next < 0 ? left : std::min<std::int64_t>(next, left);
        ++later;
    }
    return static_cast<int>(std::min<std::int64_t>(next, INT32_MAX));
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

void EventThread::waitAndServe(int timeout) {
    std::vector<pollfd> descriptors;
    const int ownTimeout = m_service != nullptr ? m_service->prepare(descriptors) : -1;
    if (timeout < 0 || (ownTimeout >= 0 && ownTimeout < timeout))
        timeout = ownTimeout;
    descriptors.push_back({m_wake->descriptor(), POLLIN, 0});
    if (::poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), timeout) < 0) {
        for (pollfd& descriptor : descriptors)
            descriptor.revents = 0;
    }
    if (descriptors.back().revents != 0)
        m_wake->drain();
    descriptors.pop_back();
    if (m_service != nullptr)
        m_service->serve(descriptors);
}

} // namespace kvasim
