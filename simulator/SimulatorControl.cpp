#include "simulator/Simulator.h"

#include "simulator/JsonFields.h"

#include <utility>

namespace kvasim {

void Simulator::loadFile(const std::string& path) {
    StoredBench stored = openBenchFile(path);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        take(std::move(stored));
    }
    serveBench();
}

void Simulator::loadJson(const std::string& json) {
    StoredBench stored{benchFromJson(parseJson(json, Comments::Allowed)), {}, nullptr};
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        take(std::move(stored));
    }
    serveBench();
}

void Simulator::reset() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        take({});
        m_state = State::Unread;
        m_log.reset();
    }
    serveBench();
}

void Simulator::setPlugged(std::int32_t serialNumber, bool plugged) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t index = indexOf(serialNumber);
    Instrument next = m_stored.bench.instruments[index];
    if (next.plugged == plugged)
        return;
    next.plugged = plugged;
    change(index, std::move(next));
}

void Simulator::powerCycle(std::int32_t serialNumber, StartUp startUp) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t index = indexOf(serialNumber);
    Instrument next = m_stored.bench.instruments[index];
    kvasim::powerCycle(next);
    change(index, std::move(next));
    const Instrument& instrument = m_stored.bench.instruments[index];
    const bool wasConnected = isConnected(serialNumber);
    if (wasConnected)
        loseConnection();
    if (!instrument.plugged)
        return;
    const auto now = EventThread::Clock::now();
    const auto starting = m_starting.find(serialNumber);
    // Switched off while it started, it is announced when it has started again.
    const bool announced =
        wasConnected || (starting != m_starting.end() && starting->second.announced &&
                         now < starting->second.ready);
    m_events.dropLater(serialNumber);
    m_starting.erase(serialNumber);
    if (startUp == StartUp::Skipped || instrument.startUpMs == 0) {
        if (announced)
            m_events.post({eEventCode_Standby, 0, 0});
        return;
    }
    m_formerPorts = ports();
    const auto ready = now + std::chrono::milliseconds(instrument.startUpMs);
    m_starting[serialNumber] = {ready, announced};
    if (announced)
        m_events.postAt({eEventCode_Standby, 0, 0}, ready, serialNumber);
}

void Simulator::set(std::int32_t serialNumber, const Json& patch) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t index = indexOf(serialNumber);
    if (!patch.is_object())
        refuse("", "must be an object");
    Json merged = instrumentToJson(m_stored.bench.instruments[index]);
    mergeInto(merged, patch);
    Instrument next = instrumentFromJson(merged, "");
    const auto other = findInstrument(m_stored.bench, next.port.serialNumber);
    if (other && *other != index)
        refuse("serialNumber", "is the serial number of another instrument");
    change(index, std::move(next));
}

Json Simulator::list() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    Json list = Json::array();
    for (const Instrument& instrument : m_stored.bench.instruments) {
        const std::int32_t serialNumber = instrument.port.serialNumber;
        const bool isStarting = instrument.plugged && !isReady(instrument);
        list.push_back({{"serialNumber", serialNumber},
                        {"plugged", instrument.plugged},
                        {"starting", isStarting},
                        {"connected", isConnected(serialNumber)},
                        {"port", portToJson(instrument.port)}});
    }
    return list;
}

Json Simulator::state(Keys keys) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    return benchToJson(m_stored.bench, keys);
}

Json Simulator::instrument(std::int32_t serialNumber, Keys keys) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return instrumentToJson(m_stored.bench.instruments[indexOf(serialNumber)], keys);
}

void Simulator::addFault(const FaultRule& rule) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    m_faults.add(rule);
}

void Simulator::clearFaults() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    m_faults.clear();
}

Json Simulator::faults() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireBench();
    return m_faults.toJson();
}

/** Reads the bench where that has not been tried yet. @return false when there is none. */
bool Simulator::loaded() {
    if (m_state == State::Unread) {
        try {
            take(loadBenchFromEnvironment());
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

void Simulator::take(StoredBench stored) {
    m_faults.assign(stored.bench.faults);
    m_stored = std::move(stored);
    m_server.setBench(m_stored.lock);
    m_events.wake();
    for (const auto& starting : m_starting)
        m_events.dropLater(starting.first);
    m_starting.clear();
    m_formerAnswers.clear();
    m_formerPorts.reset();
    m_connection.reset();
    m_state = State::Loaded;
}

void Simulator::save() {
    if (!m_stored.path.empty())
        saveBenchFile(m_stored.path, m_stored.bench);
}

std::size_t Simulator::indexOf(std::int32_t serialNumber) {
    requireBench();
    const auto index = findInstrument(m_stored.bench, serialNumber);
    if (!index)
        throw InputError("no instrument " + std::to_string(serialNumber) + " on the bench");
    return *index;
}

/** Puts @p next in place of an instrument, saves it, and lets the plug have its effect. */
void Simulator::change(std::size_t index, Instrument next) {
    auto portsBefore = ports();
    Instrument& instrument = m_stored.bench.instruments[index];
    std::swap(instrument, next);
    const Instrument& before = next;
    try {
        save();
    } catch (...) {
        std::swap(instrument, next);
        throw;
    }
    const std::int32_t serialNumber = before.port.serialNumber;
    const bool wasConnected = isConnected(serialNumber);
    if (wasConnected)
        m_connection->serialNumber = instrument.port.serialNumber;
    if (!before.plugged && instrument.plugged)
        m_events.post({eEventCode_Standby, 0, 0});
    if (before.plugged == instrument.plugged)
        return;
    m_formerPorts = std::move(portsBefore);
    m_starting.erase(serialNumber);
    m_events.dropLater(serialNumber);
    if (wasConnected && !instrument.plugged)
        loseConnection();
}

void Simulator::loseConnection() {
    m_connection->lost = true;
    m_events.post({eEventCode_DisConnect, 0, 0});
}

} // namespace kvasim
