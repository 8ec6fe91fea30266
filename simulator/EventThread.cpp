#include "simulator/EventThread.h"

#include <cerrno>
#include <csignal>
#include <exception>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
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

void WakePipe::wait() {
    pollfd descriptor{m_readEnd, POLLIN, 0};
    if (::poll(&descriptor, 1, -1) <= 0)
        return;
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
            m_queue.clear();
        return true;
    }
    const std::lock_guard<std::mutex> change(m_change);
    if (handler != nullptr && !m_thread.joinable()) {
        try {
            start();
        } catch (const std::exception&) {
            return false;
        }
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    m_handler = handler;
    if (handler == nullptr)
        m_queue.clear();
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
    m_wake->wake();
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

void EventThread::run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stop) {
        if (m_queue.empty()) {
            lock.unlock();
            m_wake->wait();
            lock.lock();
            continue;
        }
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
}

} // namespace kvasim
