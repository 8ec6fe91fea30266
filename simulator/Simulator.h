/**
 * The simulated library's one object: the bench, the connection, the rules, the log and the events.
 */
#ifndef SIMULATOR_SIMULATOR_H
#define SIMULATOR_SIMULATOR_H

#include "instrument/KvaSdk.h"
#include "simulator/Bench.h"
#include "simulator/BenchFile.h"
#include "simulator/BenchJson.h"
#include "simulator/CallEffects.h"
#include "simulator/CallLog.h"
#include "simulator/ControlServer.h"
#include "simulator/EventThread.h"
#include "simulator/FaultRules.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kvasim {

/** What the log and the rules need to know of a call. */
struct Call {
    Function function;
    Json arguments = Json::object();            /**< without secrets */
    std::optional<std::int32_t> serialNumber{}; /**< the instrument that the call names itself */
};

/** Whether an instrument that is switched on takes its time, or answers at once. */
enum class StartUp { Timed, Skipped };

/** Any thread may call any function. No lock is held while a handler runs.
 *
 * The bench is read from the environment when it is first needed; where that fails, one line on
 * standard error says why, and whatever needs the bench fails until `reset` or another `load…`.
 *
 * Every change of an instrument is saved before it counts: where it cannot be saved, it is undone
 * and the call that made it fails. */
class Simulator {
public:
    /** The one object; made with the first call. */
    static Simulator& instance();

    Simulator() : m_server(*this), m_events(&m_server) {}
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // The thirteen functions.

    /** Performs a call: asks the rules, does @p work unless they answer for it, and logs it. What
       they do to the work itself is handed to it. Nothing is thrown; whatever @p work throws
       becomes KVA_ERROR. */
    KVA_RESULT perform(Call call, const std::function<KVA_RESULT(const CallEffects&)>& work);

    /** @return KVA_ERROR when the event thread cannot be started. */
    KVA_RESULT registerHandler(KVA_DeviceEventHandler handler);

    /** Fills up to @p capacity entries of @p list; a null @p list counts only.
        @param count set to the number of entries filled, or of attached instruments */
    KVA_RESULT listPorts(const CallEffects& effects, KVA_PORTINFO* list, std::int32_t capacity,
                         std::int32_t& count);

    KVA_RESULT connect(const CallEffects& effects, const KVA_PORTINFO& port);
    KVA_RESULT disconnect(const CallEffects& effects);

    /** Reads from the connected instrument. */
    KVA_RESULT read(const CallEffects& effects,
                    const std::function<void(const Instrument&)>& reader);

    /** Changes the connected instrument; a negative answer of @p writer changes nothing. */
    KVA_RESULT write(const CallEffects& effects,
                     const std::function<KVA_RESULT(Instrument&)>& writer);

    // Control. Everything here throws InputError with the reason when it is refused.

    /** Puts a bench in place of the present one; the connection ends without an event and the
        bench's rules take the place of the rules in force. Where that fails, all stays. */
    void loadFile(const std::string& path);
    void loadJson(const std::string& json);

    /** Forgets bench, connection, rules and log; the handler stays. */
    void reset();

    /** Attaches or detaches an instrument; nothing happens to one that is so already. Attaching
        delivers a standby event; detaching the connected one ends the connection and delivers a
        disconnect event. */
    void setPlugged(std::int32_t serialNumber, bool plugged);

    /** Pending settings come into use, staged data is lost; for the connected instrument the
        connection ends, with a disconnect event and, once it has started, a standby event. While it
        starts it is neither listed nor to be connected to. */
    void powerCycle(std::int32_t serialNumber, StartUp startUp);

    /** Merges @p patch into the instrument's JSON; attaching and detaching as in `setPlugged`. */
    void set(std::int32_t serialNumber, const Json& patch);

    /** One object for each instrument: {"serialNumber", "plugged", "starting", "connected",
     * "port"}.
     */
    Json list();
    Json state(Keys keys);
    Json instrument(std::int32_t serialNumber, Keys keys);

    void addFault(const FaultRule& rule);
    void clearFaults();
    Json faults();

    // Log and events: see CallLog and EventThread.
    CallLog& log() { return m_log; }
    EventThread& events() { return m_events; }

private:
    struct Connection {
        std::int32_t serialNumber;
        bool lost;
    };

    /** An instrument that was switched on. */
    struct Starting {
        EventThread::Clock::time_point ready;
        bool announced; // by a standby event
    };

    /** What the functions answered before the last write that changed their answer. */
    struct FormerAnswers {
        std::optional<KVA_NETWORKINFO> network;
        std::optional<std::uint8_t> powerOffMode;
        std::optional<KVA_JIG_CALREFDATA> calibration;
    };

    CallEffects begin(Call& call);
    KVA_RESULT performWith(const CallEffects& effects, const Call& call,
                           const std::function<KVA_RESULT(const CallEffects&)>& work);
    void unplug(const CallEffects& effects, const Call& call);
    void serveBench();
    std::vector<KVA_PORTINFO> ports();
    bool isReady(const Instrument& instrument) const;
    bool isConnected(std::int32_t serialNumber) const;
    void keepFormerAnswers(const Instrument& before, const Instrument& after);
    bool loaded();
    void requireBench();
    void take(StoredBench stored);
    void save();
    std::size_t indexOf(std::int32_t serialNumber);
    KVA_RESULT connected(std::size_t& index);
    void change(std::size_t index, Instrument next);
    void loseConnection();

    std::mutex m_mutex; // everything below down to m_log
    enum class State { Unread, Loaded, Refused };
    State m_state = State::Unread;
    std::string m_refusal;
    StoredBench m_stored;
    std::optional<Connection> m_connection;
    FaultRules m_faults;
    std::map<std::int32_t, Starting> m_starting;
    std::map<std::int32_t, FormerAnswers> m_formerAnswers;
    std::optional<std::vector<KVA_PORTINFO>> m_formerPorts;

    CallLog m_log;
    ControlServer m_server;
    EventThread m_events; // the last one: its thread uses the others
};

} // namespace kvasim

#endif
