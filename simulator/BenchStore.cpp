#include "simulator/BenchStore.h"

#include <mutex>
#include <thread>
#include <utility>

namespace kvasim {

namespace {

constexpr std::chrono::seconds patience{1};
constexpr std::chrono::milliseconds pause{20};

} // namespace

std::unique_ptr<BenchStore> BenchStore::open(const std::string& path) {
    const Stamp stamp = stampOf(path); // before reading: a later change is seen as one
    auto store = std::make_unique<BenchStore>(readBenchFile(path));
    // Absolute from the start: the program may change its working directory.
    store->m_path = resolvedPath(path);
    store->m_stamp = stamp;
    store->m_lock = std::make_unique<BenchLock>(store->m_path);
    return store;
}

std::unique_ptr<BenchStore> BenchStore::openOfEnvironment() {
    const std::string path = benchPathOfEnvironment();
    if (path.empty()) {
        complain("no home folder, the built-in bench is kept in memory only");
        return std::make_unique<BenchStore>(makeBuiltInBench());
    }
    if (environmentOf("KVASIM_BENCH").empty() && stampOf(path) == Stamp{}) {
        BenchLock lock(path);
        const std::lock_guard<BenchLock> guard(lock);
        if (stampOf(path) == Stamp{}) // or another program has made it meanwhile
            writeBenchFile(path, makeBuiltInBench());
    }
    return open(path);
}

void BenchStore::refresh(const Seen& seen) {
    if (m_path.empty())
        return;
    const Stamp stamp = stampOf(m_path);
    if (stamp == m_stamp) {
        m_badSince.reset();
        return;
    }
    if (m_badSince && m_complained && stamp == m_badStamp)
        return;
    try {
        const Bench before = std::exchange(m_bench, readBenchFile(m_path));
        m_stamp = stamp;
        m_badSince.reset();
        seen(before);
    } catch (const InputError& error) {
        m_refusal = error.what();
        m_badStamp = stamp;
        if (!m_badSince) {
            m_badSince = Clock::now();
            m_complained = false;
        }
        if (isBadForLong() && !std::exchange(m_complained, true))
            complain(m_refusal + "; the last good state holds until that is put right");
    }
}

void BenchStore::change(const std::function<bool(Bench& next)>& make, const Seen& seen) {
    std::unique_lock<BenchLock> guard;
    if (m_lock)
        guard = std::unique_lock<BenchLock>(*m_lock);
    requireGoodFile(seen);
    Bench next = m_bench;
    if (!make(next))
        return;
    if (m_lock)
        m_stamp = writeBenchFile(m_path, next);
    seen(std::exchange(m_bench, std::move(next)));
}

void BenchStore::requireGoodFile(const Seen& seen) {
    for (refresh(seen); m_badSince; refresh(seen)) {
        if (isBadForLong())
            throw InputError(m_refusal);
        std::this_thread::sleep_for(pause);
    }
}

bool BenchStore::isBadForLong() const {
    return m_badSince && Clock::now() - *m_badSince >= patience;
}

} // namespace kvasim
