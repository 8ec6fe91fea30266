#ifndef TESTS_DIALOGS_SWEEP_LIBRARYMODEL_H
#define TESTS_DIALOGS_SWEEP_LIBRARYMODEL_H

#include "instrument/KvaSdk.h"

#include <QString>

#include <climits>
#include <cstdint>
#include <cstring>
#include <optional>

/** What a fault does to a call, as the caller and the instrument see it. */
enum class Effect {
    None,         ///< performed and answered; a warning or a delay changes nothing for the caller
    Refused,      ///< not performed, negative result
    Dropped,      ///< not performed, success; a call that only reads is performed
    Stale,        ///< answered as before the last write that changed the answer
    Corrupted,    ///< one byte of the answer differs
    NoPorts,      ///< no port is listed
    UnplugBefore, ///< the instrument is detached, then the call is made
    UnplugDuring, ///< detached at work: performed, but the answer does not arrive
    UnplugAfter,  ///< detached when the call has been answered
};

/** A fault at certain calls of one function. */
struct Fault {
    QString function;
    int firstCall = 1;
    int lastCall = 1; ///< INT_MAX: no end
    Effect effect = Effect::None;
    int offset = 0;  ///< of the byte that differs
    int flipped = 0; ///< its bits that differ
};

/** One instrument: what it holds. */
struct InstrumentModel {
    KVA_PORTINFO port = {};
    KVA_DEVICEINFO device = {};
    KVA_JIG_ACTIONOPTIONFACTORYDATA options = {};
    KVA_NETWORKINFO network = {};
    std::optional<KVA_NETWORKINFO> pendingNetwork; ///< in use after a power cycle
    std::uint8_t powerOffMode = 0;
    KVA_JIG_CALREFDATA committed = {};
    std::optional<KVA_JIG_CALREFDATA> staged; ///< lost by a power cycle
};

/**
 * What the library has to answer with one instrument plugged in and one fault: calls are functions
 * that return nothing, or false, where the library's result is negative. Written from the
 * library's contract, apart from the simulated library.
 */
class LibraryModel {
public:
    LibraryModel(const InstrumentModel& instrument, const Fault& fault)
        : m_instrument(instrument), m_fault(fault) {}

    bool registerHandler(bool present) {
        const Effect effect = effectOf("KVA_RegisterDeviceEventHandler");
        // A handler that is to go has to go: its caller may be gone next.
        if (!present || effect != Effect::Refused)
            m_hasHandler = present;
        return perform(effect, [] { return true; });
    }

    /** @return how many entries were stored */
    std::optional<int> countPorts() {
        KVA_PORTINFO unused = {};
        return listPorts(unused);
    }

    /** @param port filled where there is an entry */
    std::optional<int> listPorts(KVA_PORTINFO& port) {
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

    bool connect(const KVA_PORTINFO& port) {
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

    bool disconnect() {
        const Effect effect = effectOf("KVA_Disconnect");
        return perform(effect, [&] {
            if (!isConnected())
                return false;
            m_connected = effect == Effect::Dropped;
            return true;
        });
    }

    std::optional<KVA_DEVICEINFO> deviceInfo() {
        return read<KVA_DEVICEINFO>("KVA_GetDeviceInfo", std::nullopt,
                                    [](const InstrumentModel& i) { return i.device; });
    }

    std::optional<KVA_JIG_ACTIONOPTIONFACTORYDATA> options() {
        return read<KVA_JIG_ACTIONOPTIONFACTORYDATA>(
            "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA", std::nullopt,
            [](const InstrumentModel& i) { return i.options; });
    }

    std::optional<KVA_NETWORKINFO> network() {
        return read<KVA_NETWORKINFO>("KVA_GetNetworkInfo", m_formerNetwork, networkOf);
    }

    bool setNetwork(const KVA_NETWORKINFO& network) {
        return write("KVA_SetNetworkInfo", networkOf, m_formerNetwork,
                     [&] { m_instrument.pendingNetwork = network; });
    }

    std::optional<std::uint8_t> powerOffMode() {
        return read<std::uint8_t>("KVA_GetShutdownTime", m_formerMode, modeOf);
    }

    bool setPowerOffMode(std::uint8_t mode) {
        return write("KVA_SetShutdownTime", modeOf, m_formerMode,
                     [&] { m_instrument.powerOffMode = mode; });
    }

    std::optional<KVA_JIG_CALREFDATA> calibration() {
        return read<KVA_JIG_CALREFDATA>("KVA_JIG_GetFactoryCalib_CALREFDATA", m_formerCalibration,
                                        calibrationOf);
    }

    bool setCalibration(const KVA_JIG_CALREFDATA& record) {
        return write("KVA_JIG_SetFactoryCalib_CALREFDATA", calibrationOf, m_formerCalibration,
                     [&] { m_instrument.staged = record; });
    }

    bool writeSector() {
        const Effect effect = effectOf("KVA_JIG_SetFactoryCalib_WriteSector");
        return perform(effect, [&] {
            if (!isConnected() || !m_instrument.staged)
                return false;
            if (effect == Effect::Dropped)
                return true;
            m_instrument.committed = *m_instrument.staged;
            m_instrument.staged.reset();
            return true;
        });
    }

    void clearFault() { m_fault = {}; }

    void plug() {
        if (m_plugged)
            return;
        m_plugged = true;
        if (m_hasHandler)
            disconnectReported = false;
    }

    /** What remains after a power cycle. */
    InstrumentModel afterPowerCycle() const {
        InstrumentModel cycled = m_instrument;
        cycled.network = cycled.pendingNetwork.value_or(cycled.network);
        cycled.pendingNetwork.reset();
        cycled.staged.reset();
        return cycled;
    }

    bool disconnectReported = false; ///< a disconnect event without a later standby event

private:
    /** Counts the call. */
    Effect effectOf(const char* function) {
        if (m_fault.function != function)
            return Effect::None;
        ++m_calls;
        return m_calls >= m_fault.firstCall && m_calls <= m_fault.lastCall ? m_fault.effect
                                                                           : Effect::None;
    }

    /** Performs a call and has the instrument detached when it is to be.
        @return whether the caller gets a success */
    template <typename Work>
    bool perform(Effect effect, const Work& work) {
        if (effect == Effect::Refused)
            return false;
        if (effect == Effect::UnplugBefore)
            unplug();
        const bool isDone = work();
        if (effect == Effect::UnplugDuring || effect == Effect::UnplugAfter)
            unplug();
        return isDone && effect != Effect::UnplugDuring;
    }

    template <typename Record, typename Reader>
    std::optional<Record> read(const char* function, const std::optional<Record>& former,
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

    /** @param answerOf  what the function that reads the same answers; what it answered before the
                         change is kept in @p former */
    template <typename Record, typename Writer>
    bool write(const char* function, Record (*answerOf)(const InstrumentModel&),
               std::optional<Record>& former, const Writer& writer) {
        const Effect effect = effectOf(function);
        return perform(effect, [&] {
            if (!isConnected())
                return false;
            if (effect == Effect::Dropped)
                return true;
            const Record before = answerOf(m_instrument);
            writer();
            const Record now = answerOf(m_instrument);
            if (std::memcmp(&before, &now, sizeof now) != 0)
                former = before;
            return true;
        });
    }

    static KVA_NETWORKINFO networkOf(const InstrumentModel& i) {
        return i.pendingNetwork.value_or(i.network);
    }
    static std::uint8_t modeOf(const InstrumentModel& i) { return i.powerOffMode; }
    static KVA_JIG_CALREFDATA calibrationOf(const InstrumentModel& i) {
        return i.staged.value_or(i.committed);
    }

    template <typename Record>
    void corrupt(Record& answer) const {
        auto* const bytes = reinterpret_cast<unsigned char*>(&answer);
        bytes[m_fault.offset] = static_cast<unsigned char>(bytes[m_fault.offset] ^ m_fault.flipped);
    }

    bool isConnected() const { return m_connected && !m_lost; }

    void unplug() {
        if (!m_plugged)
            return;
        m_plugged = false;
        if (!isConnected())
            return;
        m_lost = true;
        if (m_hasHandler)
            disconnectReported = true;
    }

    InstrumentModel m_instrument;
    Fault m_fault;
    int m_calls = 0;                                ///< of the fault's function
    std::optional<KVA_NETWORKINFO> m_formerNetwork; ///< before the last write that changed it
    std::optional<std::uint8_t> m_formerMode;
    std::optional<KVA_JIG_CALREFDATA> m_formerCalibration;
    bool m_plugged = true;
    bool m_connected = false;
    bool m_lost = false; ///< connected, and the instrument was unplugged since
    bool m_hasHandler = false;
};

#endif
