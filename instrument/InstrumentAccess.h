#ifndef INSTRUMENT_INSTRUMENTACCESS_H
#define INSTRUMENT_INSTRUMENTACCESS_H

#include "instrument/KvaSdk.h"

#include <cstdint>
#include <vector>

/** What one call to libKVASDK answered. */
struct CallResult {
    const char* function; ///< the exported name
    KVA_RESULT code;

    bool failed() const { return code < 0; }
};

/** Notified of each call to libKVASDK, on the thread that makes the call. */
class CallObserver {
public:
    virtual ~CallObserver() = default;
    /** Right before the call. */
    virtual void callBegins(const char* function) = 0;
    /** As soon as it has answered. */
    virtual void callEnded(const CallResult& result) = 0;
};

/**
 * The thirteen functions of libKVASDK, one operation each, with the results by value. For programs
 * that decide themselves what a result means; the tool's dialogs go through `CKvaSdk_Ctrl`.
 *
 * One object at a time: the library has one connection and one event handler. All operations belong
 * to the thread that created the object, block until the instrument has answered, and throw
 * nothing. After a failed read the record is what the library left in it.
 */
class InstrumentAccess {
public:
    /** Registers the handler of the device events. @param observer  outlives the object */
    explicit InstrumentAccess(CallObserver& observer);
    /** Closes an open connection, ignoring the result, and removes the handler. */
    ~InstrumentAccess();
    InstrumentAccess(const InstrumentAccess&) = delete;
    InstrumentAccess& operator=(const InstrumentAccess&) = delete;

    /** The result of registering the handler. */
    const CallResult& registration() const { return m_registration; }

    /** The most instruments that are listed. */
    static constexpr std::int32_t maxPorts = 100;

    /** Replaces @p ports by the attached instruments; empty after a failure. */
    CallResult list(std::vector<KVA_PORTINFO>& ports);

    /** How `open` ended. */
    enum class Opening {
        Open,
        CallFailed,   ///< `last` tells which call
        NotListed,    ///< no entry of the list has the serial number
        ListedTwice,  ///< several entries have it
        OtherIdentity ///< the instrument reports another serial number than its entry
    };

    struct Opened {
        Opening state;
        CallResult last;
    };

    /** Lists, connects to the entry with @p serialNumber and reads the instrument's own number. A
        connection that was opened stays open, whatever that number is. */
    Opened open(std::int32_t serialNumber);

    /** Closes the connection. */
    CallResult disconnect();
    /** Whether `open` connected and no `disconnect` succeeded since. */
    bool isConnected() const { return m_connected; }
    /** Whether the library has reported a lost connection since the last `open`. */
    static bool isConnectionLost();

    CallResult read(KVA_DEVICEINFO& info);
    CallResult read(KVA_JIG_ACTIONOPTIONFACTORYDATA& options);
    CallResult read(KVA_NETWORKINFO& info);
    /** @param mode  `eShutdownTime_…` */
    CallResult readPowerOffMode(std::uint8_t& mode);
    CallResult read(KVA_JIG_CALREFDATA& record);

    CallResult write(const KVA_NETWORKINFO& info);
    CallResult writePowerOffMode(std::uint8_t mode);
    /** Stages the record in the instrument; `commit` writes it to the non-volatile memory. */
    CallResult stage(const KVA_JIG_CALREFDATA& record);
    CallResult commit();

private:
    template <typename Call>
    CallResult perform(const char* function, const Call& call);

    CallObserver& m_observer;
    CallResult m_registration;
    bool m_connected = false;
};

#endif
