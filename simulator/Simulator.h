/**
 * The simulated library's one object: the bench, the connection, the rules, the log and the events.
 */
#ifndef SIMULATOR_SIMULATOR_H
#define SIMULATOR_SIMULATOR_H

#include "instrument/KvaSdk.h"
#include "simulator/BenchStore.h"
#include "simulator/CallLog.h"
#include "simulator/EventThread.h"
#include "simulator/FaultRules.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvasim {

struct Call {
    std::string_view function;
    bool isValid = true;                        /**< otherwise KVA_ERROR_ARGUMENT */
    Json arguments = Json::object();            /**< for the log, without secrets */
    std::optional<std::int32_t> serialNumber{}; /**< the instrument that the call names itself */
};

/** Any thread may call any function. No lock is held while a handler runs.
 *
 * The bench that the environment names is read when it is first needed. If that fails, one line on
 * standard error says why, and calls that need it fail until `load`. The file is polled before each
 * call and on the event thread; its changes cause the events. Every change is saved before it takes
 * effect. If saving fails, the call that made it fails. */
class Simulator {
public:
    /** What a call does. Any exception becomes KVA_ERROR. */
    using Work = std::function<KVA_RESULT(const CallEffects& effects)>;

    /** The one object; created by the first call. */
    static Simulator& instance();

    Simulator() : m_events([this] { look(); }) {}

    // The thirteen functions. Nothing is thrown.

    /** Performs a call: applies the rules, does @p work unless a rule replaces it, and logs it. */
    KVA_RESULT perform(Call call, const Work& work);

    /** Fills up to @p capacity entries of @p list; a null @p list counts only.
        @param count set to the number of entries filled, or of attached instruments */
    KVA_RESULT listPorts(const CallEffects& effects, KVA_PORTINFO* list, std::int32_t capacity,
                         std::int32_t& count);

    KVA_RESULT connect(const CallEffects& effects, const KVA_PORTINFO& port);
    KVA_RESULT disconnect(const CallEffects& effects);
    KVA_RESULT read(const CallEffects& effects, const std::function<void(const Json&)>& reader);

    /** Changes the connected instrument; a negative result of @p writer changes nothing. */
    KVA_RESULT write(const CallEffects& effects, const std::function<KVA_RESULT(Json&)>& writer);

    // Control. Throws InputError with the reason when it is refused.

    /** Replaces the present bench; the connection ends without an event. Null: the one that the
       environment names, when it is next needed. */
    void load(std::unique_ptr<BenchStore> store);

    /** Changes the bench; @p make changes a copy of it. */
    void change(const std::function<void(Bench&)>& make);

    Json state();
    CallLog& log() { return m_log; }
    EventThread& events() { return m_events; }

private:
    struct Connection {
        std::int32_t serialNumber;
        bool lost;
    };

    CallEffects begin(Call& call);
    KVA_RESULT performWith(const CallEffects& effects, const Call& call, const Work& work);
    void unplug(const CallEffects& effects, const Call& call);
    const Json* connected(KVA_RESULT& result);
    void keepFormerAnswers(const Json& before, const Json& after);

    bool loaded();
    void take(std::unique_ptr<BenchStore> store);
    void look();
    void refresh() {
        m_store->refresh([this](const Bench& before) { see(before); });
    }
    void changeLocked(const std::function<void(Bench&)>& make) {
        m_store->change(make, [this](const Bench& before) { see(before); });
    }

    /** Causes the events and the loss of connection that follow from changes since @p before. */
    void see(const Bench& before);
    void see(const Json& before, const Json& after);
    void announce(const Json& instrument);
    void loseConnection();

    std::mutex m_mutex;                  // everything below down to m_log
    std::unique_ptr<BenchStore> m_store; // null: not loaded
    std::string m_refusal;               // why not; empty: not tried yet
    std::optional<Connection> m_connection;
    FaultCounters m_faults;
    std::map<std::int32_t, Json> m_formerAnswers; // parts of instruments before the last write
    std::optional<std::vector<KVA_PORTINFO>> m_formerPorts;

    CallLog m_log;
    EventThread m_events; // the last one: its thread uses the others
};

} // namespace kvasim

#endif
