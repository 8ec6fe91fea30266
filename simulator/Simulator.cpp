#include "simulator/Simulator.h"

#include "instrument/ResultNames.h"
#include "simulator/Records.h"

#include <algorithm>
#include <exception>
#include <thread>
#include <utility>

namespace kvasim {

namespace {

Simulator* g_simulator = nullptr;

/** Ends the event thread before the library is unloaded. A destructor of the library, not of an
    object: it runs after the program's objects are destroyed, which may still call the library. */
__attribute__((destructor)) void unload() {
    if (g_simulator != nullptr && !g_simulator->events().isCurrent())
        delete g_simulator;
}

bool isForNoInstrument(std::string_view function) {
    return function == "KVA_RegisterDeviceEventHandler" || function == "KVA_GetDevicePortList";
}

} // namespace

Simulator& Simulator::instance() {
    static Simulator* const made = g_simulator = new Simulator;
    return *made;
}

KVA_RESULT Simulator::perform(Call call, const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    KVA_RESULT result = KVA_ERROR;
    try {
        const CallEffects effects = begin(call);
        result = performWith(effects, call, work);
    } catch (const std::exception& error) {
        complain(error.what());
    }
    const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - start);
    try {
        m_log.add({{"function", call.function},
                   {"arguments", std::move(call.arguments)},
                   {"result", result},
                   {"resultName", resultName(result)},
                   {"durationUs", duration.count()}});
    } catch (const std::exception& error) {
        complain(std::string("a call could not be logged: ") + error.what());
    }
    return result;
}

CallEffects Simulator::begin(Call& call) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    CallEffects effects;
    if (!loaded())
        return effects;
    refresh();
    const bool overConnection = !isForNoInstrument(call.function) && call.function != "KVA_Connect";
    if (overConnection && m_connection) {
        call.serialNumber = m_connection->serialNumber;
        Json arguments = {{"serialNumber", m_connection->serialNumber}};
        arguments.update(call.arguments);
        call.arguments = std::move(arguments);
    }
    for (const FaultRule& rule : m_faults.meet(call.function, call.serialNumber)) {
        bool isLeft = true;
        if (rule.has("times")) // shared by all programs; another one may have used it up
            changeLocked([&](Bench& next) { isLeft = useUp(next.faults, rule); });
        if (isLeft)
            apply(rule, effects);
    }
    return effects;
}

KVA_RESULT Simulator::performWith(const CallEffects& effects, const Call& call, const Work& work) {
    if (effects.delay.count() > 0)
        std::this_thread::sleep_for(effects.delay);
    // KVA_Connect during which the instrument is unplugged never makes the connection.
    const bool early =
        effects.unplug == "before" || (effects.answerIsLost() && call.function == "KVA_Connect");
    if (early)
        unplug(effects, call);
    KVA_RESULT result = KVA_ERROR_ARGUMENT;
    if (effects.result.value_or(KVA_SUCCESS) < 0)
        result = *effects.result;
    else if (call.isValid)
        result = work(effects);
    if (!effects.unplug.empty() && !early)
        unplug(effects, call);
    const bool isLost = effects.answerIsLost() && !isForNoInstrument(call.function);
    if (isLost && (result == KVA_SUCCESS || early))
        result = KVA_ERROR_COMMUNICATION_RECEIVE;
    return result == KVA_SUCCESS ? effects.result.value_or(KVA_SUCCESS) : result;
}

/** Unplugs the instrument that the rule names, or the call's, or the first one of the list. */
void Simulator::unplug(const CallEffects& effects, const Call& call) {
    try {
        change([&](Bench& next) {
            const auto list = portsOf(next);
            auto named = effects.unplugged ? effects.unplugged : call.serialNumber;
            if (!named && !list.empty())
                named = list.front().serialNumber;
            if (named)
                setPlugged(instrumentOf(next, *named), false);
        });
    } catch (const InputError& error) {
        complain(std::string("a rule cannot unplug: ") + error.what());
    }
}

KVA_RESULT Simulator::listPorts(const CallEffects& effects, KVA_PORTINFO* list,
                                std::int32_t capacity, std::int32_t& count) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!loaded())
        return KVA_ERROR;
    std::vector<KVA_PORTINFO> answer =
        effects.stale && m_formerPorts ? *m_formerPorts : portsOf(m_store->bench());
    std::size_t length = std::min<std::size_t>(answer.size(), effects.longestList);
    if (list != nullptr)
        length = std::min(length, static_cast<std::size_t>(capacity));
    for (std::size_t index = 0; list != nullptr && index < length; ++index) {
        corrupt(effects, portRecord.source, &answer[index]);
        list[index] = answer[index];
    }
    count = static_cast<std::int32_t>(length);
    return KVA_SUCCESS;
}

KVA_RESULT Simulator::connect(const CallEffects& effects, const KVA_PORTINFO& port) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!loaded())
        return KVA_ERROR;
    if (m_connection && !m_connection->lost)
        return KVA_ERROR_CONNECT_ALREADY;
    for (const Json& instrument : m_store->bench().instruments) {
        if (!isReady(instrument) || !isSamePort(portOf(instrument), port))
            continue;
        const BenchLock& lock = m_store->lock();
        if (!lock.hold(port.serialNumber))
            return KVA_ERROR_INSTRUMENT_UNAVAILABLE; // another program is connected to it
        if (effects.dropped)
            lock.release(port.serialNumber);
        else
            m_connection = Connection{port.serialNumber, false};
        return KVA_SUCCESS;
    }
    return KVA_ERROR_INSTRUMENT_UNAVAILABLE;
}

KVA_RESULT Simulator::disconnect(const CallEffects& effects) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    KVA_RESULT result = KVA_ERROR;
    if (connected(result) == nullptr || effects.dropped)
        return result;
    m_store->lock().release(m_connection->serialNumber);
    m_connection.reset();
    return result;
}

KVA_RESULT Simulator::read(const CallEffects& effects,
                           const std::function<void(const Json&)>& reader) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    KVA_RESULT result = KVA_ERROR;
    const Json* const instrument = connected(result);
    if (instrument == nullptr)
        return result;
    Json answer = *instrument;
    const auto former = m_formerAnswers.find(serialNumberOf(answer));
    if (effects.stale && former != m_formerAnswers.end())
        answer.update(former->second);
    reader(answer);
    return result;
}

KVA_RESULT Simulator::write(const CallEffects& effects,
                            const std::function<KVA_RESULT(Json&)>& writer) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    KVA_RESULT result = KVA_ERROR;
    if (connected(result) == nullptr)
        return result;
    Json before;
    changeLocked([&](Bench& next) {
        if (connected(result) == nullptr) // lost by a change of the file
            return;
        Json& instrument = instrumentOf(next, m_connection->serialNumber);
        before = instrument;
        result = writer(instrument);
        if (effects.dropped)
            instrument = before;
    });
    if (result >= KVA_SUCCESS && !effects.dropped)
        keepFormerAnswers(before, *connected(result));
    return result;
}

void Simulator::keepFormerAnswers(const Json& before, const Json& after) {
    Json& former = m_formerAnswers.try_emplace(serialNumberOf(after), Json::object()).first->second;
    if (networkOf(before) != networkOf(after))
        former["network"] = before["network"];
    if (before["powerOffMode"] != after["powerOffMode"])
        former["powerOffMode"] = before["powerOffMode"];
    if (calibrationOf(before) != calibrationOf(after))
        former["calibration"] = before["calibration"];
}

/** The connected instrument; null with the reason in @p result. */
const Json* Simulator::connected(KVA_RESULT& result) {
    if (!loaded())
        result = KVA_ERROR;
    else if (!m_connection)
        result = KVA_ERROR_CONNECT;
    else if (m_connection->lost)
        result = KVA_ERROR_INSTRUMENT_UNAVAILABLE;
    else
        result = KVA_SUCCESS;
    return result == KVA_SUCCESS ? findInstrument(m_store->bench(), m_connection->serialNumber)
                                 : nullptr;
}

} // namespace kvasim
