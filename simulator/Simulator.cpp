#include "simulator/Simulator.h"

#include "simulator/JsonFields.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

namespace kvasim {

namespace {

Simulator* g_simulator = nullptr;

/** Ends the event thread before the library's code is gone. A destructor of the library and not of
    an object: it runs after all objects of the program are gone, which may still call in. */
__attribute__((destructor)) void unload() {
    if (g_simulator == nullptr || g_simulator->events().isCurrent())
        return;
    delete g_simulator;
    g_simulator = nullptr;
}

/** The first action that answers for the call; nothing when none does. */
std::optional<KVA_RESULT> answer(const std::vector<FaultAction>& actions) {
    for (const FaultAction& action : actions) {
        if (const auto* fault = std::get_if<ResultFault>(&action))
            return fault->result;
    }
    return std::nullopt;
}

} // namespace

Simulator& Simulator::instance() {
    static std::once_flag once;
    std::call_once(once, [] { g_simulator = new Simulator; });
    return *g_simulator;
}

KVA_RESULT Simulator::perform(Call call, const std::function<KVA_RESULT()>& work) {
    const auto start = std::chrono::steady_clock::now();
    KVA_RESULT result = KVA_ERROR;
    try {
        const std::optional<KVA_RESULT> fault = answer(begin(call));
        result = fault && *fault < 0 ? *fault : work();
        if (fault && result == KVA_SUCCESS)
            result = *fault;
    } catch (const std::exception& error) {
        complain(error.what());
        result = KVA_ERROR;
    }
    const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - start);
    try {
        m_log.add({call.function, std::move(call.arguments), result, duration});
    } catch (const std::exception& error) {
        complain(std::string("a call could not be logged: ") + error.what());
    }
    return result;
}

std::vector<FaultAction> Simulator::begin(Call& call) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    static_cast<void>(loaded());
    const bool overConnection = call.function != Function::RegisterDeviceEventHandler &&
                                call.function != Function::GetDevicePortList &&
                                call.function != Function::Connect;
    if (overConnection && m_connection) {
        call.serialNumber = m_connection->serialNumber;
        Json arguments = {{"serialNumber", m_connection->serialNumber}};
        arguments.update(call.arguments);
        call.arguments = std::move(arguments);
    }
    return m_faults.fire(call.function, call.serialNumber);
}

KVA_RESULT Simulator::registerHandler(KVA_DeviceEventHandler handler) {
    return m_events.setHandler(handler) ? KVA_SUCCESS : KVA_ERROR;
}

KVA_RESULT Simulator::listPorts(KVA_PORTINFO* list, std::int32_t capacity, std::int32_t& count) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        return KVA_ERROR;
    std::int32_t listed = 0;
    for (const Instrument& instrument : m_stored.bench.instruments) {
        if (!instrument.plugged || (list != nullptr && listed == capacity))
            continue;
        if (list != nullptr)
            list[listed] = instrument.port;
        ++listed;
    }
    count = listed;
    return KVA_SUCCESS;
}

KVA_RESULT Simulator::connect(const KVA_PORTINFO& port) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        return KVA_ERROR;
    if (m_connection && !m_connection->lost)
        return KVA_ERROR_CONNECT_ALREADY;
    for (const Instrument& instrument : m_stored.bench.instruments) {
        if (instrument.plugged && std::memcmp(&instrument.port, &port, sizeof port) == 0) {
            m_connection = Connection{port.serialNumber, false};
            return KVA_SUCCESS;
        }
    }
    return KVA_ERROR_INSTRUMENT_UNAVAILABLE;
}

KVA_RESULT Simulator::disconnect() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t index = 0;
    const KVA_RESULT result = connected(index);
    if (result == KVA_SUCCESS)
        m_connection.reset();
    return result;
}

KVA_RESULT Simulator::read(const std::function<void(const Instrument&)>& reader) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t index = 0;
    const KVA_RESULT result = connected(index);
    if (result == KVA_SUCCESS)
        reader(m_stored.bench.instruments[index]);
    return result;
}

KVA_RESULT Simulator::write(const std::function<KVA_RESULT(Instrument&)>& writer) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t index = 0;
    KVA_RESULT result = connected(index);
    if (result != KVA_SUCCESS)
        return result;
    Instrument next = m_stored.bench.instruments[index];
    result = writer(next);
    if (result >= KVA_SUCCESS)
        change(index, std::move(next));
    return result;
}

void Simulator::loadFile(const std::string& path) {
    StoredBench stored = loadBenchFile(path);
    const std::lock_guard<std::mutex> lock(m_mutex);
    take(std::move(stored));
}

void Simulator::loadJson(const std::string& json) {
    StoredBench stored{benchFromJson(parseJson(json)), {}};
    const std::lock_guard<std::mutex> lock(m_mutex);
    take(std::move(stored));
}

void Simulator::reset() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    take({});
    m_state = State::Unread;
    m_log.reset();
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

void Simulator::powerCycle(std::int32_t serialNumber) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t index = indexOf(serialNumber);
    Instrument next = m_stored.bench.instruments[index];
    kvasim::powerCycle(next);
    change(index, std::move(next));
    if (m_connection && !m_connection->lost && m_connection->serialNumber == serialNumber) {
        loseConnection();
        m_events.post({eEventCode_Standby, 0, 0});
    }
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
        const bool isConnected =
            m_connection && !m_connection->lost && m_connection->serialNumber == serialNumber;
        list.push_back({{"serialNumber", serialNumber},
                        {"plugged", instrument.plugged},
                        {"connected", isConnected},
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

/** Finds the connected instrument. */
KVA_RESULT Simulator::connected(std::size_t& index) {
    if (!loaded())
        return KVA_ERROR;
    if (!m_connection)
        return KVA_ERROR_CONNECT;
    if (m_connection->lost)
        return KVA_ERROR_INSTRUMENT_UNAVAILABLE;
    index = indexOf(m_connection->serialNumber);
    return KVA_SUCCESS;
}

/** Puts @p next in place of an instrument, saves it, and lets the plug have its effect. */
void Simulator::change(std::size_t index, Instrument next) {
    Instrument& instrument = m_stored.bench.instruments[index];
    std::swap(instrument, next);
    const Instrument& before = next;
    try {
        save();
    } catch (...) {
        std::swap(instrument, next);
        throw;
    }
    const bool isConnected = m_connection && !m_connection->lost &&
                             m_connection->serialNumber == before.port.serialNumber;
    if (isConnected)
        m_connection->serialNumber = instrument.port.serialNumber;
    if (isConnected && before.plugged && !instrument.plugged)
        loseConnection();
    if (!before.plugged && instrument.plugged)
        m_events.post({eEventCode_Standby, 0, 0});
}

void Simulator::loseConnection() {
    m_connection->lost = true;
    m_events.post({eEventCode_DisConnect, 0, 0});
}

} // namespace kvasim
