#ifndef TESTS_DIALOGS_SWEEP_LIBRARYMODEL_H
#define TESTS_DIALOGS_SWEEP_LIBRARYMODEL_H

#include "instrument/KvaSdk.h"

#include <QString>

#include <climits>
#include <cstdint>
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
    LibraryModel(const InstrumentModel& instrument, const Fault& fault);

    bool registerHandler(bool present);
    /** @return how many entries were stored */
    std::optional<int> countPorts();
    /** @param port filled where there is an entry */
    std::optional<int> listPorts(KVA_PORTINFO& port);
    bool connect(const KVA_PORTINFO& port);
    bool disconnect();
    std::optional<KVA_DEVICEINFO> deviceInfo();
    std::optional<KVA_JIG_ACTIONOPTIONFACTORYDATA> options();
    std::optional<KVA_NETWORKINFO> network();
    bool setNetwork(const KVA_NETWORKINFO& network);
    std::optional<std::uint8_t> powerOffMode();
    bool setPowerOffMode(std::uint8_t mode);
    std::optional<KVA_JIG_CALREFDATA> calibration();
    bool setCalibration(const KVA_JIG_CALREFDATA& record);
    bool writeSector();

    void clearFault();
    void plug();

    /** What remains after a power cycle. */
    InstrumentModel afterPowerCycle() const;

    bool disconnectReported = false; ///< a disconnect event without a later standby event

private:
    /** Counts the call. */
    Effect effectOf(const char* function);
    /** Performs a call and has the instrument detached when it is to be.
        @return whether the caller gets a success */
    template <typename Work>
    bool perform(Effect effect, const Work& work);
    template <typename Record, typename Reader>
    std::optional<Record> read(const char* function, const std::optional<Record>& former,
                               const Reader& reader);
    template <typename Writer>
    bool write(const char* function, const Writer& writer);
    template <typename Record>
    void corrupt(Record& answer) const;
    bool isConnected() const;
    void unplug();

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
