/**
 * What the tests of the simulated library share: a clean start, ports by serial number, the calls
 * that need a connection, and a handler that records.
 */
#ifndef TESTS_UNIT_SIMULATOR_SIMULATORTEST_H
#define TESTS_UNIT_SIMULATOR_SIMULATORTEST_H

#include "instrument/KvaSdk.h"
#include "tests/support/KvaSimHelpers.h"

#include <QByteArray>
#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace simtest {

using namespace kvasim_test;
using nlohmann::json;

/** The test classes of a program, one in each source: `const bool isAdded = addTest<TestX>();`. */
inline std::vector<QObject* (*)()>& tests() {
    static std::vector<QObject* (*)()> all;
    return all;
}

template <typename Test>
bool addTest() {
    tests().push_back([]() -> QObject* { return new Test; });
    return true;
}

/** A row for each entry of a table, by its name. */
template <typename Row, std::size_t Count>
void addRows(const Row (&rows)[Count]) {
    QTest::addColumn<int>("row");
    for (std::size_t index = 0; index < Count; ++index)
        QTest::newRow(QByteArray(rows[index].name).constData()) << static_cast<int>(index);
}

/** The entry of the row that is tested. */
template <typename Row, std::size_t Count>
const Row& rowOf(const Row (&rows)[Count]) {
    QFETCH(int, row);
    return rows[row];
}

constexpr std::int32_t usbSerial = 1000001;
constexpr std::int32_t networkSerial = 1000002;

/** Removes handler, bench, rules and log, and everything of the environment that the library reads;
    data go to @p folder. */
inline void startClean(const QTemporaryDir& folder) {
    qunsetenv("KVASIM_BENCH");
    qunsetenv("KVASIM_TRACE");
    qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit());
    qputenv("HOME", folder.path().toLocal8Bit());
    KvaSim_Reset();
    KVA_RegisterDeviceEventHandler(nullptr);
    KvaSim_Reset();
}

inline json emptyBench() {
    return {{"version", 1}, {"instruments", json::array()}};
}

/** A bench of instruments that say no more than their serial numbers. */
inline json benchOf(const std::vector<std::int32_t>& serialNumbers) {
    json bench = emptyBench();
    for (const std::int32_t serialNumber : serialNumbers)
        bench["instruments"].push_back({{"serialNumber", serialNumber}});
    return bench;
}

inline std::vector<KVA_PORTINFO> ports() {
    std::vector<KVA_PORTINFO> list(1000);
    std::int32_t count = -1;
    if (KVA_GetDevicePortList(list.data(), &count, 1000) != KVA_SUCCESS)
        return {};
    list.resize(static_cast<std::size_t>(count));
    return list;
}

/** The entry of an instrument; zero when it is not in the list. */
inline KVA_PORTINFO portOf(std::int32_t serialNumber) {
    for (const KVA_PORTINFO& port : ports()) {
        if (port.serialNumber == serialNumber)
            return port;
    }
    return {};
}

inline KVA_RESULT connectTo(std::int32_t serialNumber) {
    const KVA_PORTINFO port = portOf(serialNumber);
    return KVA_Connect(&port, 10);
}

template <typename Record>
bool sameBytes(const Record& left, const Record& right) {
    return std::memcmp(&left, &right, sizeof left) == 0;
}

/** The functions that need a connection, with arguments that are right and with null. */
struct ConnectionCall {
    const char* name;
    KVA_RESULT (*call)();
    KVA_RESULT (*callWithNull)(); // null for a function without a pointer
};

inline const std::array<ConnectionCall, 10>& connectionCalls() {
    static const std::array<ConnectionCall, 10> calls = {{
        {"KVA_Disconnect", [] { return KVA_Disconnect(); }, nullptr},
        {"KVA_GetDeviceInfo",
         [] {
             KVA_DEVICEINFO info{};
             return KVA_GetDeviceInfo(&info);
         },
         [] { return KVA_GetDeviceInfo(nullptr); }},
        {"KVA_GetNetworkInfo",
         [] {
             KVA_NETWORKINFO info{};
             return KVA_GetNetworkInfo(&info);
         },
         [] { return KVA_GetNetworkInfo(nullptr); }},
        {"KVA_SetNetworkInfo",
         [] {
             const KVA_NETWORKINFO info{};
             return KVA_SetNetworkInfo(&info);
         },
         [] { return KVA_SetNetworkInfo(nullptr); }},
        {"KVA_GetShutdownTime",
         [] {
             std::uint8_t mode = 0;
             return KVA_GetShutdownTime(&mode);
         },
         [] { return KVA_GetShutdownTime(nullptr); }},
        {"KVA_SetShutdownTime",
         [] {
             const std::uint8_t mode = 3;
             return KVA_SetShutdownTime(&mode);
         },
         [] { return KVA_SetShutdownTime(nullptr); }},
        {"KVA_JIG_GetFactoryCalib_CALREFDATA",
         [] {
             KVA_JIG_CALREFDATA data{};
             return KVA_JIG_GetFactoryCalib_CALREFDATA(&data);
         },
         [] { return KVA_JIG_GetFactoryCalib_CALREFDATA(nullptr); }},
        {"KVA_JIG_SetFactoryCalib_CALREFDATA",
         [] {
             const KVA_JIG_CALREFDATA data{};
             return KVA_JIG_SetFactoryCalib_CALREFDATA(&data);
         },
         [] { return KVA_JIG_SetFactoryCalib_CALREFDATA(nullptr); }},
        {"KVA_JIG_SetFactoryCalib_WriteSector",
         [] { return KVA_JIG_SetFactoryCalib_WriteSector(); }, nullptr},
        {"KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
         [] {
             KVA_JIG_ACTIONOPTIONFACTORYDATA data{};
             return KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&data);
         },
         [] { return KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(nullptr); }},
    }};
    return calls;
}

/** A row for each function that needs a connection; its number is in the column "index". */
inline void addConnectionCallRows() {
    QTest::addColumn<int>("index");
    int index = 0;
    for (const ConnectionCall& call : connectionCalls())
        QTest::newRow(call.name) << index++;
}

struct RecordedEvent {
    std::uint32_t code;
    std::uint32_t rawDataCount;
    std::int32_t error;
    std::thread::id thread;
};

/** The events that `recordEvent` has received. */
class EventRecord {
public:
    static EventRecord& instance() {
        static EventRecord record;
        return record;
    }

    void add(const RecordedEvent& event) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.push_back(event);
    }

    void clear() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.clear();
    }

    std::vector<RecordedEvent> all() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<RecordedEvent> m_events;
};

inline void recordEvent(std::uint32_t code, std::uint32_t rawDataCount, std::int32_t error) {
    EventRecord::instance().add({code, rawDataCount, error, std::this_thread::get_id()});
}

/** The codes recorded so far, once all queued events are delivered: "6 0". */
inline QByteArray deliveredCodes() {
    KvaSim_WaitForEvents();
    QByteArray codes;
    for (const RecordedEvent& event : EventRecord::instance().all())
        codes += (codes.isEmpty() ? "" : " ") + QByteArray::number(event.code);
    return codes;
}

/** The rules in force, without the numbers that they were given when they were added. */
inline json faults() {
    json rules = state()["faults"];
    for (json& rule : rules)
        rule.erase("id");
    return rules;
}

/** Switches an instrument off and on as `kvasim power-cycle` does: it takes its time to start. */
inline bool powerCycle(std::int32_t serialNumber) {
    const json now = instrument(serialNumber);
    return set(serialNumber, {{"powerCycles", now["powerCycles"].get<int>() + 1},
                              {"poweredOn", QDateTime::currentMSecsSinceEpoch()}});
}

inline QByteArray lastError() {
    return KvaSim_LastError();
}

} // namespace simtest

#endif
