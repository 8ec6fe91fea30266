#ifndef TESTS_UNIT_SIMULATOR_SIMULATORTEST_H
#define TESTS_UNIT_SIMULATOR_SIMULATORTEST_H

#include "tests/support/KvaSimHelpers.h"
#include "tests/support/TestFolder.h"
#include "tests/support/TestMain.h"

#include <cstring>
#include <mutex>
#include <thread>

/** What the tests of the simulated library and of kvasim share. */
namespace simtest {

using namespace kvasim_test;
using nlohmann::json;

constexpr std::int32_t usbSerial = 1000001;
constexpr std::int32_t networkSerial = 1000002;

// ---- Events

struct RecordedEvent {
    std::uint32_t code;
    std::uint32_t rawDataCount;
    std::int32_t error;
    std::thread::id thread;
};
inline std::mutex eventMutex;
inline std::vector<RecordedEvent> events; ///< that `recordEvent` has received

inline void recordEvent(std::uint32_t code, std::uint32_t rawDataCount, std::int32_t error) {
    const std::lock_guard<std::mutex> lock(eventMutex);
    events.push_back({code, rawDataCount, error, std::this_thread::get_id()});
}

inline void forgetEvents() {
    const std::lock_guard<std::mutex> lock(eventMutex);
    events.clear();
}

/** The codes recorded so far: "6 0". */
inline QByteArray recordedCodes() {
    const std::lock_guard<std::mutex> lock(eventMutex);
    QByteArrayList codes;
    for (const RecordedEvent& event : events)
        codes += QByteArray::number(event.code);
    return codes.join(' ');
}

/** The same, once all queued events are delivered. */
inline QByteArray deliveredCodes() {
    KvaSim_WaitForEvents();
    return recordedCodes();
}

// ---- The bench

/** A test with a folder of its own. */
class SimulatorTest : public QObject {
protected:
    TestFolder m_folder;
};

/** Removes handler, bench, rules, log and events, and everything of the environment that the
   library reads; data go to @p folder. */
inline void startClean(const TestFolder& folder) {
    qunsetenv("KVASIM_BENCH");
    qunsetenv("KVASIM_TRACE");
    qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    qputenv("HOME", folder.path().toLocal8Bit());
    KvaSim_Reset();
    KVA_RegisterDeviceEventHandler(nullptr);
    KvaSim_Reset();
    forgetEvents();
}

/** A bench of instruments that say no more than their serial numbers. */
inline json benchOf(const std::vector<std::int32_t>& serialNumbers) {
    json bench = {{"version", 1}, {"instruments", json::array()}};
    for (const std::int32_t serialNumber : serialNumbers)
        bench["instruments"].push_back({{"serialNumber", serialNumber}});
    return bench;
}

/** Switches an instrument off and on as `kvasim power-cycle` does: it takes its time to start. */
inline bool powerCycle(std::int32_t serialNumber) {
    const json now = instrument(serialNumber);
    return set(serialNumber, {{"powerCycles", now["powerCycles"].get<int>() + 1},
                              {"poweredOn", QDateTime::currentMSecsSinceEpoch()}});
}

/** The rules in force, without the numbers that they were given when they were added. */
inline json faults() {
    json rules = state()["faults"];
    for (json& rule : rules)
        rule.erase("id");
    return rules;
}

/** Adds a rule for one function; @p rest  its other members. */
inline bool addFaultOf(const char* function, json rest) {
    rest["function"] = function;
    return addFault(rest);
}

inline QByteArray lastError() {
    return KvaSim_LastError();
}

/** Whether the last call was refused for what is at this path of the document. */
inline bool wasRefusedFor(const QByteArray& path) {
    return lastError().startsWith(path + ": ");
}

// ---- Calls

/** How many instruments are counted without a list, or why they are not. */
inline int portCount() {
    std::int32_t count = -1;
    const KVA_RESULT result = KVA_GetDevicePortList(nullptr, &count, 0);
    return result == KVA_SUCCESS ? count : result;
}

/** What the connected instrument has of a kind of record: `held(KVA_GetNetworkInfo)`. The test
   fails when the library does not succeed. */
template <typename Record>
Record held(KVA_RESULT (*get)(Record*)) {
    Record record;
    std::memset(&record, 0x5A, sizeof record);
    if (get(&record) != KVA_SUCCESS)
        QTest::qFail("a record cannot be read", __FILE__, __LINE__);
    return record;
}

/** Gives the connected instrument a record, of zeros if nothing else is said. */
template <typename Record>
KVA_RESULT send(KVA_RESULT (*set)(const Record*), const std::common_type_t<Record>& record = {}) {
    return set(&record);
}

template <typename Record>
bool sameBytes(const Record& left, const Record& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

/** A function, and a call of it that is right. */
struct Call {
    const char* name;
    std::function<KVA_RESULT()> call;
    std::function<KVA_RESULT()> callWithNull; ///< empty for a function without a record

    Call(const char* function, KVA_RESULT (*asItIs)()) : name(function), call(asItIs) {}
    template <typename Record>
    Call(const char* function, KVA_RESULT (*ofRecord)(Record*),
         std::remove_const_t<Record> given = {})
        : name(function), call([=] {
              auto record = given;
              return ofRecord(&record);
          }),
          callWithNull([=] { return ofRecord(nullptr); }) {}
};

/** The functions that need a connection. */
inline const std::vector<Call>& connectionCalls() {
    static const std::vector<Call> calls = {
        {"KVA_Disconnect", KVA_Disconnect},
        {"KVA_GetDeviceInfo", KVA_GetDeviceInfo},
        {"KVA_GetNetworkInfo", KVA_GetNetworkInfo},
        {"KVA_SetNetworkInfo", KVA_SetNetworkInfo},
        {"KVA_GetShutdownTime", KVA_GetShutdownTime},
        {"KVA_SetShutdownTime", KVA_SetShutdownTime, 3},
        {"KVA_JIG_GetFactoryCalib_CALREFDATA", KVA_JIG_GetFactoryCalib_CALREFDATA},
        {"KVA_JIG_SetFactoryCalib_CALREFDATA", KVA_JIG_SetFactoryCalib_CALREFDATA},
        {"KVA_JIG_SetFactoryCalib_WriteSector", KVA_JIG_SetFactoryCalib_WriteSector},
        {"KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA", KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA},
    };
    return calls;
}

/** What such a call answers on a connection that was just made: nothing is staged there. */
inline KVA_RESULT firstAnswerOf(const Call& call) {
    const bool commits = QByteArray(call.name) == "KVA_JIG_SetFactoryCalib_WriteSector";
    return commits ? KVA_ERROR_NO_DATA : KVA_SUCCESS;
}

// ---- Programs

struct Outcome {
    int status = -1; ///< -1: it did not end by itself
    QByteArray output;
    QByteArray errors;
};

/** Runs a program to its end. */
inline Outcome run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    const bool hasEnded = process.waitForFinished(30000);
    process.kill();
    process.waitForFinished();
    const bool isRight = hasEnded && process.exitStatus() == QProcess::NormalExit;
    return {isRight ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

} // namespace simtest

#endif
