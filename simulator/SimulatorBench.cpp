// The simulator's bench: loading it, its changes, and the events that they cause.

#include "simulator/Simulator.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace kvasim {

namespace {

/** The same instrument in @p before; null when it is new. One whose serial number was changed is
    found by its index. */
const Json* counterpart(const Bench& before, const Bench& now, std::size_t index) {
    const std::int32_t serialNumber = serialNumberOf(now.instruments[index]);
    const Json* const same = findInstrument(before, serialNumber);
    if (same != nullptr || index >= before.instruments.size())
        return same;
    const Json& there = before.instruments[index];
    return findInstrument(now, serialNumberOf(there)) == nullptr ? &there : nullptr;
}

} // namespace

void Simulator::load(std::unique_ptr<BenchStore> store) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    take(std::move(store));
}

void Simulator::change(const std::function<void(Bench&)>& make) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        throw InputError(m_refusal);
    changeLocked(make);
}

Json Simulator::state() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        throw InputError(m_refusal);
    refresh();
    return benchToJson(m_store->bench());
}

/** Reads the bench if that was not tried yet. @return false when there is none. */
bool Simulator::loaded() {
    if (m_store != nullptr || !m_refusal.empty())
        return m_store != nullptr;
    try {
        take(BenchStore::openOfEnvironment());
    } catch (const InputError& error) {
        m_refusal = error.what();
        complain(m_refusal);
    }
    return m_store != nullptr;
}

void Simulator::take(std::unique_ptr<BenchStore> store) {
    if (m_store) {
        for (const Json& instrument : m_store->bench().instruments)
            m_events.dropLater(serialNumberOf(instrument));
    }
    m_store = std::move(store);
    m_refusal.clear();
    m_faults.assign({}); // counting starts again
    m_formerAnswers.clear();
    m_formerPorts.reset();
    m_connection.reset();
    m_log.setBench(m_store ? m_store->path() : "");
    if (!m_store)
        return;
    // Only after the earlier bench is destroyed: if both are the same file, that drops its locks.
    m_store->lock().use();
    m_faults.assign(m_store->bench().faults);
}

/** On the event thread. */
void Simulator::look() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    try {
        if (m_store != nullptr)
            refresh();
    } catch (const std::exception& error) {
        complain(error.what());
    }
}

void Simulator::see(const Bench& before) {
    const Bench& now = m_store->bench();
    m_faults.assign(now.faults);
    std::vector<KVA_PORTINFO> portsBefore = portsOf(before);
    const std::vector<KVA_PORTINFO> ports = portsOf(now);
    if (!std::equal(portsBefore.begin(), portsBefore.end(), ports.begin(), ports.end(), isSamePort))
        m_formerPorts = std::move(portsBefore);
    for (std::size_t index = 0; index < now.instruments.size(); ++index) {
        const Json& instrument = now.instruments[index];
        const Json* const was = counterpart(before, now, index);
        if (was != nullptr)
            see(*was, instrument);
        else if (isPlugged(instrument))
            announce(instrument);
    }
    const bool isGone = m_connection && !m_connection->lost &&
                        findInstrument(now, m_connection->serialNumber) == nullptr;
    if (isGone)
        loseConnection();
}

void Simulator::see(const Json& before, const Json& after) {
    const std::int32_t serialNumber = serialNumberOf(after);
    const bool wasConnected =
        m_connection && !m_connection->lost && m_connection->serialNumber == serialNumberOf(before);
    if (wasConnected && serialNumber != serialNumberOf(before)) {
        m_store->lock().release(m_connection->serialNumber);
        m_store->lock().hold(serialNumber);
        m_connection->serialNumber = serialNumber;
    }
    const bool isCycled = before["powerCycles"] != after["powerCycles"];
    if (isPlugged(before) == isPlugged(after) && !isCycled)
        return;
    if (wasConnected)
        loseConnection();
    // Power-cycled while it started: announced again once it has started.
    const bool isAwaited = m_events.dropLater(serialNumberOf(before)) || wasConnected;
    if (isPlugged(after) && (!isPlugged(before) || isAwaited))
        announce(after);
}

/** Delivers a standby event once the instrument has started. */
void Simulator::announce(const Json& instrument) {
    const std::int64_t left = startUpLeft(instrument);
    // One millisecond later, so that the instrument is already listed when the event arrives.
    m_events.post({eEventCode_Standby, 0, 0, serialNumberOf(instrument)},
                  std::chrono::milliseconds(left == 0 ? 0 : left + 1));
}

void Simulator::loseConnection() {
    m_store->lock().release(m_connection->serialNumber);
    m_connection->lost = true;
    m_events.post({eEventCode_DisConnect, 0, 0});
}

} // namespace kvasim
