// The simulator's bench: where it comes from, its changes, and the events that they make.

#include "simulator/Simulator.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

namespace kvasim {

namespace {

/** The instrument that @p after was; null where it is new. One that has got another serial number
    is at the place where it was. */
const Json* counterpart(const Bench& before, const Bench& now, std::size_t index) {
    const std::int32_t serialNumber = serialNumberOf(now.instruments[index]);
    const Json* const same = findInstrument(before, serialNumber);
    if (same != nullptr || index >= before.instruments.size())
        return same;
    const Json& there = before.instruments[index];
    return findInstrument(now, serialNumberOf(there)) == nullptr ? &there : nullptr;
}

bool isSameList(const std::vector<KVA_PORTINFO>& left, const std::vector<KVA_PORTINFO>& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const KVA_PORTINFO& a, const KVA_PORTINFO& b) {
                          return std::memcmp(&a, &b, sizeof a) == 0;
                      });
}

} // namespace

void Simulator::loadFile(const std::string& path) {
    auto store = BenchStore::open(path);
    const std::lock_guard<std::mutex> lock(m_mutex);
    take(std::move(store));
}

void Simulator::loadJson(const std::string& json) {
    auto store = std::make_unique<BenchStore>(parseBench(json));
    const std::lock_guard<std::mutex> lock(m_mutex);
    take(std::move(store));
}

void Simulator::reset() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    take(nullptr);
    m_state = State::Unread;
    m_log.reset();
}

void Simulator::change(const std::function<bool(Bench&)>& make) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    changeLocked(make);
}

void Simulator::plug(std::int32_t serialNumber, bool plugged) {
    change([&](Bench& next) {
        Json& instrument = instrumentOf(next, serialNumber);
        const bool isNew = isPlugged(instrument) != plugged;
        if (isNew)
            setPlugged(instrument, plugged);
        return isNew;
    });
}

Json Simulator::state() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    refresh();
    return benchToJson(m_store->bench());
}

/** Reads the bench where that has not been tried yet. @return false when there is none. */
bool Simulator::loaded() {
    if (m_state == State::Unread) {
        try {
            take(BenchStore::openOfEnvironment());
        } catch (const InputError& error) {
            m_state = State::Refused;
            m_refusal = error.what();
            complain(m_refusal);
        }
    }
    return m_state == State::Loaded;
}

void Simulator::requireBench() {
    if (!loaded())
        throw InputError(m_refusal);
}

/** Puts the bench in place of the present one; null leaves none. */
void Simulator::take(std::unique_ptr<BenchStore> store) {
    if (m_store) {
        for (const Json& instrument : m_store->bench().instruments)
            m_events.dropLater(serialNumberOf(instrument));
    }
    m_store = std::move(store);
    // Not before the earlier bench is gone: where both are one file, its locks go with it.
    if (m_store && m_store->lock() != nullptr)
        m_store->lock()->use();
    m_faults.assign({}); // counting starts again
    m_faults.assign(m_store ? m_store->bench().faults : std::vector<FaultRule>());
    m_log.setBench(m_store ? m_store->path() : "");
    m_formerAnswers.clear();
    m_formerPorts.reset();
    m_connection.reset();
    m_state = State::Loaded;
}

/** On the event thread. */
void Simulator::look() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    try {
        if (m_state == State::Loaded)
            refresh();
    } catch (const std::exception& error) {
        complain(error.what());
    }
}

void Simulator::refresh() {
    m_store->refresh([this](const Bench& before) { see(before); });
}

void Simulator::changeLocked(const std::function<bool(Bench&)>& make) {
    m_store->change(make, [this](const Bench& before) { see(before); });
}

/** Lets what is different from @p before have its effect. */
void Simulator::see(const Bench& before) {
    const Bench& now = m_store->bench();
    m_faults.assign(now.faults);
    std::vector<KVA_PORTINFO> portsBefore = portsOf(before);
    if (!isSameList(portsBefore, portsOf(now)))
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
    const bool wasConnected = isConnected(serialNumberOf(before));
    if (wasConnected && serialNumber != serialNumberOf(before)) {
        releaseInstrument();
        m_connection->serialNumber = serialNumber;
        if (m_store->lock() != nullptr)
            m_store->lock()->hold(serialNumber);
    }
    const bool isCycled = before["powerCycles"] != after["powerCycles"];
    if (isPlugged(before) == isPlugged(after) && !isCycled)
        return;
    if (wasConnected)
        loseConnection();
    // Switched off while it started, it is announced when it has started again.
    const bool isAwaited = m_events.dropLater(serialNumberOf(before)) || wasConnected;
    if (isPlugged(after) && (!isPlugged(before) || isAwaited))
        announce(after);
}

/** Delivers a standby event, when the instrument has started. */
void Simulator::announce(const Json& instrument) {
    const std::int64_t left = startUpLeft(instrument);
    const DeviceEvent standby = {eEventCode_Standby, 0, 0};
    if (left == 0)
        return m_events.post(standby);
    // A millisecond more: when it is announced, it is listed too.
    const auto time = EventThread::Clock::now() + std::chrono::milliseconds(left + 1);
    m_events.postAt(standby, time, serialNumberOf(instrument));
}

bool Simulator::isConnected(std::int32_t serialNumber) const {
    return m_connection && !m_connection->lost && m_connection->serialNumber == serialNumber;
}

void Simulator::loseConnection() {
    releaseInstrument();
    m_connection->lost = true;
    m_events.post({eEventCode_DisConnect, 0, 0});
}

/** Lets another program connect to it. */
void Simulator::releaseInstrument() {
    if (m_store->lock() != nullptr)
        m_store->lock()->release(m_connection->serialNumber);
}

} // namespace kvasim
