#include "tests/dialogs/sweep/LibraryModel.h"

#include <cstring>

LibraryModel::LibraryModel(const InstrumentModel& instrument, const Fault& fault)
    : m_instrument(instrument), m_fault(fault) {}

Effect LibraryModel::effectOf(const char* function) {
    if (m_fault.function != function)
        return Effect::None;
    ++m_calls;
    return m_calls >= m_fault.firstCall && m_calls <= m_fault.lastCall ? m_fault.effect
                                                                       : Effect::None;
}

bool LibraryModel::isConnected() const {
    return m_connected && !m_lost;
}

template <typename Work>
bool LibraryModel::perform(Effect effect, const Work& work) {
    if (effect == Effect::Refused)
        return false;
    if (effect == Effect::UnplugBefore)
        unplug();
    const bool isDone = work();
    if (effect == Effect::UnplugDuring || effect == Effect::UnplugAfter)
        unplug();
    return isDone && effect != Effect::UnplugDuring;
}

template <typename Record>
void LibraryModel::corrupt(Record& answer) const {
    auto* const bytes = reinterpret_cast<unsigned char*>(&answer);
    bytes[m_fault.offset] = static_cast<unsigned char>(bytes[m_fault.offset] ^ m_fault.flipped);
}

template <typename Record, typename Reader>
std::optional<Record> LibraryModel::read(const char* function, const std::optional<Record>& former,
                                         const Reader& reader) {
    const Effect effect = effectOf(function);
    Record answer = {};
    const bool isAnswered = perform(effect, [&] {
        if (!isConnected())
            return false;
        answer = effect == Effect::Stale && former ? *former : reader(m_instrument);
        if (effect == Effect::Corrupted)
            corrupt(answer);
        return true;
    });
    return isAnswered ? std::optional<Record>(answer) : std::nullopt;
}

template <typename Writer>
bool LibraryModel::write(const char* function, const Writer& writer) {
    const Effect effect = effectOf(function);
    return perform(effect, [&] {
        if (!isConnected())
            return false;
        InstrumentModel next = m_instrument;
        if (!writer(next))
            return false;
        if (effect != Effect::Dropped)
            m_instrument = next;
        return true;
    });
}

bool LibraryModel::registerHandler(bool present) {
    const Effect effect = effectOf("KVA_RegisterDeviceEventHandler");
    // A handler that is to go has to go: its caller may be gone next.
    if (!present || effect != Effect::Refused)
        m_hasHandler = present;
    return perform(effect, [] { return true; });
}

std::optional<int> LibraryModel::countPorts() {
    KVA_PORTINFO unused = {};
    return listPorts(unused);
}

std::optional<int> LibraryModel::listPorts(KVA_PORTINFO& port) {
    Effect effect = effectOf("KVA_GetDevicePortList");
    // The list is the computer's own: an instrument that goes meanwhile does not hold it up.
    if (effect == Effect::UnplugDuring)
        effect = Effect::UnplugAfter;
    int count = 0;
    const bool isAnswered = perform(effect, [&] {
        count = m_plugged && effect != Effect::NoPorts ? 1 : 0;
        if (count == 0)
            return true;
        port = m_instrument.port;
        if (effect == Effect::Corrupted)
            corrupt(port);
        return true;
    });
    return isAnswered ? std::optional<int>(count) : std::nullopt;
}

bool LibraryModel::connect(const KVA_PORTINFO& port) {
    const Effect effect = effectOf("KVA_Connect");
    return perform(effect, [&] {
        // A connection that is being made and breaks has never been made.
        if (effect == Effect::UnplugDuring || isConnected() || !m_plugged ||
            std::memcmp(&port, &m_instrument.port, sizeof port) != 0)
            return false;
        if (effect == Effect::Dropped)
            return true;
        m_connected = true;
        m_lost = false;
        return true;
    });
}

bool LibraryModel::disconnect() {
    const Effect effect = effectOf("KVA_Disconnect");
    return perform(effect, [&] {
        if (!isConnected())
            return false;
        m_connected = effect == Effect::Dropped;
        return true;
    });
}

std::optional<KVA_DEVICEINFO> LibraryModel::deviceInfo() {
    return read<KVA_DEVICEINFO>("KVA_GetDeviceInfo", std::nullopt,
                                [](const InstrumentModel& i) { return i.device; });
}

std::optional<KVA_JIG_ACTIONOPTIONFACTORYDATA> LibraryModel::options() {
    return read<KVA_JIG_ACTIONOPTIONFACTORYDATA>(
        "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA", std::nullopt,
        [](const InstrumentModel& i) { return i.options; });
}

std::optional<KVA_NETWORKINFO> LibraryModel::network() {
    return read<KVA_NETWORKINFO>(
        "KVA_GetNetworkInfo", m_formerNetwork,
        [](const InstrumentModel& i) { return i.pendingNetwork.value_or(i.network); });
}

bool LibraryModel::setNetwork(const KVA_NETWORKINFO& network) {
    const InstrumentModel before = m_instrument;
    const bool isDone = write("KVA_SetNetworkInfo", [&](InstrumentModel& i) {
        i.pendingNetwork = network;
        return true;
    });
    const KVA_NETWORKINFO old = before.pendingNetwork.value_or(before.network);
    const KVA_NETWORKINFO now = m_instrument.pendingNetwork.value_or(m_instrument.network);
    if (std::memcmp(&old, &now, sizeof old) != 0)
        m_formerNetwork = old;
    return isDone;
}

std::optional<std::uint8_t> LibraryModel::powerOffMode() {
    return read<std::uint8_t>("KVA_GetShutdownTime", m_formerMode,
                              [](const InstrumentModel& i) { return i.powerOffMode; });
}

bool LibraryModel::setPowerOffMode(std::uint8_t mode) {
    const std::uint8_t before = m_instrument.powerOffMode;
    const bool isDone = write("KVA_SetShutdownTime", [&](InstrumentModel& i) {
        i.powerOffMode = mode;
        return true;
    });
    if (m_instrument.powerOffMode != before)
        m_formerMode = before;
    return isDone;
}

std::optional<KVA_JIG_CALREFDATA> LibraryModel::calibration() {
    return read<KVA_JIG_CALREFDATA>(
        "KVA_JIG_GetFactoryCalib_CALREFDATA", m_formerCalibration,
        [](const InstrumentModel& i) { return i.staged.value_or(i.committed); });
}

bool LibraryModel::setCalibration(const KVA_JIG_CALREFDATA& record) {
    const KVA_JIG_CALREFDATA old = m_instrument.staged.value_or(m_instrument.committed);
    const bool isDone = write("KVA_JIG_SetFactoryCalib_CALREFDATA", [&](InstrumentModel& i) {
        i.staged = record;
        return true;
    });
    const KVA_JIG_CALREFDATA now = m_instrument.staged.value_or(m_instrument.committed);
    if (std::memcmp(&old, &now, sizeof old) != 0)
        m_formerCalibration = old;
    return isDone;
}

bool LibraryModel::writeSector() {
    return write("KVA_JIG_SetFactoryCalib_WriteSector", [](InstrumentModel& i) {
        if (!i.staged)
            return false;
        i.committed = *i.staged;
        i.staged.reset();
        return true;
    });
}

void LibraryModel::clearFault() {
    m_fault = {};
}

void LibraryModel::plug() {
    if (m_plugged)
        return;
    m_plugged = true;
    if (m_hasHandler)
        disconnectReported = false;
}

void LibraryModel::unplug() {
    if (!m_plugged)
        return;
    m_plugged = false;
    if (!isConnected())
        return;
    m_lost = true;
    if (m_hasHandler)
        disconnectReported = true;
}

InstrumentModel LibraryModel::afterPowerCycle() const {
    InstrumentModel cycled = m_instrument;
    cycled.network = cycled.pendingNetwork.value_or(cycled.network);
    cycled.pendingNetwork.reset();
    cycled.staged.reset();
    return cycled;
}
