#include "simulator/Simulator.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <thread>
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

bool isForNoInstrument(Function function) {
    return function == Function::RegisterDeviceEventHandler ||
           function == Function::GetDevicePortList;
}

template <typename Record>
bool isSame(const Record& left, const Record& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

const KVA_NETWORKINFO& storedNetwork(const Instrument& instrument) {
    return instrument.pendingNetwork ? *instrument.pendingNetwork : instrument.activeNetwork;
}

const KVA_JIG_CALREFDATA& workingCalibration(const Instrument& instrument) {
    return instrument.stagedCalibration ? *instrument.stagedCalibration
                                        : instrument.committedCalibration;
}

} // namespace

Simulator& Simulator::instance() {
    static std::once_flag once;
    std::call_once(once, [] { g_simulator = new Simulator; });
    return *g_simulator;
}

KVA_RESULT Simulator::perform(Call call,
                              const std::function<KVA_RESULT(const CallEffects&)>& work) {
    const auto start = std::chrono::steady_clock::now();
    KVA_RESULT result = KVA_ERROR;
    try {
        const CallEffects effects = begin(call);
        serveBench();
        result = performWith(effects, call, work);
    } catch (const std::exception& error) {
        complain(error.what());
        result = KVA_ERROR;
    }
    const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - start);
    try {
        m_log.add({call.function, std::move(call.arguments), result, duration});
        if (m_server.isFollowed())
            m_events.wake();
    } catch (const std::exception& error) {
        complain(std::string("a call could not be logged: ") + error.what());
    }
    return result;
}

CallEffects Simulator::begin(Call& call) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    static_cast<void>(loaded());
    const bool overConnection =
        !isForNoInstrument(call.function) && call.function != Function::Connect;
    if (overConnection && m_connection) {
        call.serialNumber = m_connection->serialNumber;
        Json arguments = {{"serialNumber", m_connection->serialNumber}};
        arguments.update(call.arguments);
        call.arguments = std::move(arguments);
    }
    return effectsOf(m_faults.fire(call.function, call.serialNumber));
}

KVA_RESULT Simulator::performWith(const CallEffects& effects, const Call& call,
                                  const std::function<KVA_RESULT(const CallEffects&)>& work) {
    if (effects.delay.count() > 0)
        std::this_thread::sleep_for(effects.delay);
    // A connection that is being made and breaks has never been made.
    const bool early = effects.unplugs(Moment::Before) ||
                       (effects.unplugs(Moment::During) && call.function == Function::Connect);
    if (early)
        unplug(effects, call);
    KVA_RESULT result = KVA_SUCCESS;
    if (effects.result && *effects.result < 0)
        result = *effects.result;
    else
        result = work(effects);
    if (effects.unplug && !early)
        unplug(effects, call);
    const bool isLost = effects.answerIsLost() && !isForNoInstrument(call.function);
    if (isLost && (result == KVA_SUCCESS || early))
        result = KVA_ERROR_COMMUNICATION_RECEIVE;
    if (effects.result && result == KVA_SUCCESS)
        result = *effects.result;
    return result;
}

/** Detaches what the rule says, or the instrument of the call, or the first one of the list. */
void Simulator::unplug(const CallEffects& effects, const Call& call) {
    std::optional<std::int32_t> serialNumber =
        effects.unplug->instrument ? effects.unplug->instrument : call.serialNumber;
    if (!serialNumber) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto list = ports();
        if (list.empty())
            return;
        serialNumber = list.front().serialNumber;
    }
    try {
        setPlugged(*serialNumber, false);
    } catch (const InputError& error) {
        complain(std::string("a rule cannot unplug: ") + error.what());
    }
}

/** Not with the lock held: the thread may have to be started. */
void Simulator::serveBench() {
    if (!m_events.keepRunning(m_server.hasBench()))
        complain("kvasim cannot reach this bench: no thread can be started");
}

KVA_RESULT Simulator::registerHandler(KVA_DeviceEventHandler handler) {
    return m_events.setHandler(handler) ? KVA_SUCCESS : KVA_ERROR;
}

KVA_RESULT Simulator::listPorts(const CallEffects& effects, KVA_PORTINFO* list,
                                std::int32_t capacity, std::int32_t& count) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        return KVA_ERROR;
    std::vector<KVA_PORTINFO> answer = effects.stale && m_formerPorts ? *m_formerPorts : ports();
    std::size_t length = answer.size();
    if (effects.longestList)
        length = std::min<std::size_t>(length, *effects.longestList);
    if (list != nullptr)
        length = std::min(length, static_cast<std::size_t>(capacity));
    for (std::size_t index = 0; list != nullptr && index < length; ++index) {
        corrupt(effects, Function::GetDevicePortList, &answer[index], sizeof answer[index]);
        list[index] = answer[index];
    }
    count = static_cast<std::int32_t>(length);
    return KVA_SUCCESS;
}

KVA_RESULT Simulator::connect(const CallEffects& effects, const KVA_PORTINFO& port) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        return KVA_ERROR;
    if (m_connection && !m_connection->lost)
        return KVA_ERROR_CONNECT_ALREADY;
    for (const Instrument& instrument : m_stored.bench.instruments) {
        if (!isReady(instrument) || !isSame(instrument.port, port))
            continue;
        if (!effects.dropped)
            m_connection = Connection{port.serialNumber, false};
        return KVA_SUCCESS;
    }
    return KVA_ERROR_INSTRUMENT_UNAVAILABLE;
}

KVA_RESULT Simulator::disconnect(const CallEffects& effects) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t index = 0;
    const KVA_RESULT result = connected(index);
    if (result == KVA_SUCCESS && !effects.dropped)
        m_connection.reset();
    return result;
}

KVA_RESULT Simulator::read(const CallEffects& effects,
                           const std::function<void(const Instrument&)>& reader) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t index = 0;
    const KVA_RESULT result = connected(index);
    if (result != KVA_SUCCESS)
        return result;
    const Instrument& instrument = m_stored.bench.instruments[index];
    const auto former = m_formerAnswers.find(instrument.port.serialNumber);
    if (!effects.stale || former == m_formerAnswers.end()) {
        reader(instrument);
        return result;
    }
    Instrument before = instrument;
    if (former->second.network)
        before.pendingNetwork = former->second.network;
    before.powerOffMode = former->second.powerOffMode.value_or(before.powerOffMode);
    if (former->second.calibration)
        before.stagedCalibration = former->second.calibration;
    reader(before);
    return result;
}

KVA_RESULT Simulator::write(const CallEffects& effects,
                            const std::function<KVA_RESULT(Instrument&)>& writer) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t index = 0;
    KVA_RESULT result = connected(index);
    if (result != KVA_SUCCESS)
        return result;
    const Instrument before = m_stored.bench.instruments[index];
    Instrument next = before;
    result = writer(next);
    if (result >= KVA_SUCCESS && !effects.dropped) {
        change(index, std::move(next));
        keepFormerAnswers(before, m_stored.bench.instruments[index]);
    }
    return result;
}

void Simulator::keepFormerAnswers(const Instrument& before, const Instrument& after) {
    FormerAnswers& former = m_formerAnswers[after.port.serialNumber];
    if (!isSame(storedNetwork(before), storedNetwork(after)))
        former.network = storedNetwork(before);
    if (before.powerOffMode != after.powerOffMode)
        former.powerOffMode = before.powerOffMode;
    if (!isSame(workingCalibration(before), workingCalibration(after)))
        former.calibration = workingCalibration(before);
}

/** The list as it is now. */
std::vector<KVA_PORTINFO> Simulator::ports() {
    std::vector<KVA_PORTINFO> list;
    for (const Instrument& instrument : m_stored.bench.instruments) {
        if (isReady(instrument))
            list.push_back(instrument.port);
    }
    return list;
}

bool Simulator::isReady(const Instrument& instrument) const {
    const auto starting = m_starting.find(instrument.port.serialNumber);
    return instrument.plugged &&
           (starting == m_starting.end() || EventThread::Clock::now() >= starting->second.ready);
}

bool Simulator::isConnected(std::int32_t serialNumber) const {
    return m_connection && !m_connection->lost && m_connection->serialNumber == serialNumber;
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

} // namespace kvasim
