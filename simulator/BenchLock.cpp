#include "simulator/BenchLock.h"

#include "simulator/ControlPaths.h"
#include "simulator/JsonText.h"

#include <cerrno>
#include <chrono>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvasim {

namespace {

// What this process holds: the system would refuse it a second lock on the same file. No container,
// which might be destroyed before the last lock is released.
std::mutex g_mutex;
BenchLock* g_first = nullptr;

constexpr std::chrono::milliseconds pause{5};
constexpr int attempts = 20;

/** @return the locked file; -1 when another holds it */
int lockedFile(const std::string& bench) {
    const std::string path = controlFolder(bench) + "/lock";
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0)
        throw InputError(path + ": cannot be opened: " + std::generic_category().message(errno));
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return descriptor;
    const int error = errno;
    ::close(descriptor);
    if (error == EWOULDBLOCK)
        return -1;
    throw InputError(path + ": cannot be locked: " + std::generic_category().message(error));
}

} // namespace

std::shared_ptr<BenchLock> BenchLock::acquire(const std::string& bench) {
    const std::string folder = controlFolder(bench);
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && (errno == EACCES || errno == EROFS))
        return nullptr;
    makePrivateFolder(folder);
    // More than one attempt: a program may just be ending, or this one giving up its lock.
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0)
            std::this_thread::sleep_for(pause);
        const std::lock_guard<std::mutex> guard(g_mutex);
        for (BenchLock* lock = g_first; lock != nullptr; lock = lock->m_next) {
            auto shared = lock->weak_from_this().lock();
            if (shared && lock->m_bench == bench)
                return shared;
        }
        const int descriptor = lockedFile(bench);
        if (descriptor < 0)
            continue;
        auto lock = std::make_shared<BenchLock>(bench, descriptor);
        lock->m_next = g_first;
        g_first = lock.get();
        return lock;
    }
    throw InputError(bench + ": another program uses this bench");
}

BenchLock::BenchLock(std::string bench, int descriptor)
    : m_bench(std::move(bench)), m_descriptor(descriptor) {}

BenchLock::~BenchLock() {
    const std::lock_guard<std::mutex> guard(g_mutex);
    BenchLock** place = &g_first;
    while (*place != nullptr && *place != this)
        place = &(*place)->m_next;
    if (*place == this)
        *place = m_next;
    ::close(m_descriptor);
}

} // namespace kvasim
