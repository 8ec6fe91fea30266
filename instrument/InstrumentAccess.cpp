#include "instrument/InstrumentAccess.h"

#include <algorithm>
#include <atomic>

namespace {

/** Set by the library's thread. It publishes nothing else, so relaxed order is enough. */
std::atomic<bool> connectionLost{false};

void noteEvent(std::uint32_t code, std::uint32_t /*rawDataCount*/, std::int32_t /*error*/) {
    if (code == eEventCode_DisConnect)
        connectionLost.store(true, std::memory_order_relaxed);
}

/** Passed by every caller; only the library knows its meaning. */
constexpr std::uint32_t connectWait = 10;

} // namespace

template <typename Call>
CallResult InstrumentAccess::perform(const char* function, const Call& call) {
    m_observer.callBegins(function);
    const CallResult result{function, call()};
    m_observer.callEnded(result);
    return result;
}

InstrumentAccess::InstrumentAccess(CallObserver& observer)
    : m_observer(observer), m_registration(perform("KVA_RegisterDeviceEventHandler", [] {
          return KVA_RegisterDeviceEventHandler(noteEvent);
      })) {}

InstrumentAccess::~InstrumentAccess() {
    if (m_connected)
        disconnect();
    perform("KVA_RegisterDeviceEventHandler",
            [] { return KVA_RegisterDeviceEventHandler(nullptr); });
}

CallResult InstrumentAccess::list(std::vector<KVA_PORTINFO>& ports) {
    ports.clear();
    const char* function = "KVA_GetDevicePortList";
    std::int32_t count = 0;
    const CallResult counted =
        perform(function, [&] { return KVA_GetDevicePortList(nullptr, &count, 0); });
    if (counted.failed())
        return counted;
    // Room for all, as in the tool: instruments may have been plugged since they were counted.
    ports.resize(maxPorts);
    count = 0;
    const CallResult filled =
        perform(function, [&] { return KVA_GetDevicePortList(ports.data(), &count, maxPorts); });
    ports.resize(static_cast<std::size_t>(
        filled.failed() ? 0 : std::clamp<std::int32_t>(count, 0, maxPorts)));
    return filled;
}

InstrumentAccess::Opened InstrumentAccess::open(std::int32_t serialNumber) {
    std::vector<KVA_PORTINFO> ports;
    const CallResult listed = list(ports);
    if (listed.failed())
        return {Opening::CallFailed, listed};
    const auto isWanted = [&](const KVA_PORTINFO& port) {
        return port.serialNumber == serialNumber;
    };
    const auto port = std::find_if(ports.begin(), ports.end(), isWanted);
    if (port == ports.end())
        return {Opening::NotListed, listed};
    if (std::any_of(port + 1, ports.end(), isWanted))
        return {Opening::ListedTwice, listed};

    connectionLost.store(false, std::memory_order_relaxed);
    const CallResult connected =
        perform("KVA_Connect", [&] { return KVA_Connect(&*port, connectWait); });
    if (connected.failed())
        return {Opening::CallFailed, connected};
    m_connected = true;

    KVA_DEVICEINFO info = {};
    const CallResult identified = read(info);
    if (identified.failed())
        return {Opening::CallFailed, identified};
    const bool isSame = info.serialNumber == static_cast<std::uint32_t>(serialNumber);
    return {isSame ? Opening::Open : Opening::OtherIdentity, identified};
}

CallResult InstrumentAccess::disconnect() {
    const CallResult result = perform("KVA_Disconnect", [] { return KVA_Disconnect(); });
    if (!result.failed())
        m_connected = false;
    return result;
}

bool InstrumentAccess::isConnectionLost() {
    return connectionLost.load(std::memory_order_relaxed);
}

CallResult InstrumentAccess::read(KVA_DEVICEINFO& info) {
    return perform("KVA_GetDeviceInfo", [&] { return KVA_GetDeviceInfo(&info); });
}

CallResult InstrumentAccess::read(KVA_JIG_ACTIONOPTIONFACTORYDATA& options) {
    return perform("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
                   [&] { return KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&options); });
}

CallResult InstrumentAccess::read(KVA_NETWORKINFO& info) {
    return perform("KVA_GetNetworkInfo", [&] { return KVA_GetNetworkInfo(&info); });
}

CallResult InstrumentAccess::readPowerOffMode(std::uint8_t& mode) {
    return perform("KVA_GetShutdownTime", [&] { return KVA_GetShutdownTime(&mode); });
}

CallResult InstrumentAccess::read(KVA_JIG_CALREFDATA& record) {
    return perform("KVA_JIG_GetFactoryCalib_CALREFDATA",
                   [&] { return KVA_JIG_GetFactoryCalib_CALREFDATA(&record); });
}

CallResult InstrumentAccess::write(const KVA_NETWORKINFO& info) {
    return perform("KVA_SetNetworkInfo", [&] { return KVA_SetNetworkInfo(&info); });
}

CallResult InstrumentAccess::writePowerOffMode(std::uint8_t mode) {
    return perform("KVA_SetShutdownTime", [&] { return KVA_SetShutdownTime(&mode); });
}

CallResult InstrumentAccess::stage(const KVA_JIG_CALREFDATA& record) {
    return perform("KVA_JIG_SetFactoryCalib_CALREFDATA",
                   [&] { return KVA_JIG_SetFactoryCalib_CALREFDATA(&record); });
}

CallResult InstrumentAccess::commit() {
    return perform("KVA_JIG_SetFactoryCalib_WriteSector",
                   [] { return KVA_JIG_SetFactoryCalib_WriteSector(); });
}
