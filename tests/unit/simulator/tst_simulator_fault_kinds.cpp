// What rules do to a call, other than to answer it.

#include "SimulatorTest.h"

#include <QElapsedTimer>

#include <cstddef>

using namespace simtest;

namespace {

std::uint8_t powerOffMode() {
    std::uint8_t mode = 99;
    return KVA_GetShutdownTime(&mode) == KVA_SUCCESS ? mode : std::uint8_t{99};
}

KVA_RESULT setPowerOffMode(std::uint8_t mode) {
    return KVA_SetShutdownTime(&mode);
}

struct CorruptedFieldRow {
    QByteArray name;
    int first;
    int count;
    int value;
};

const CorruptedFieldRow corruptedFieldRows[] = {
    {R"({"field": "IPAddress"})", 8, 4, -1},
    {R"({"field": "IPAddress[3]", "value": 7})", 11, 1, 7},
    {R"({"field": "SSID", "value": 65})", 24, 33, 65},
    {R"({"field": "APConnectUse", "value": 0})", 0, 4, 0},
    {R"({"offset": 0, "value": 9})", 0, 1, 9},
    {R"({"offset": 123})", 123, 1, -1},
    {R"({"field": "padding"})", 122, 2, -1},
};

struct UnplugMomentsRow {
    const char* name;
    QByteArray moment;
    int result;
    int mode;
};

const UnplugMomentsRow unplugMomentsRows[] = {
    {"before", "before", int{KVA_ERROR_INSTRUMENT_UNAVAILABLE}, 0},
    {"during", "during", int{KVA_ERROR_COMMUNICATION_RECEIVE}, 2},
    {"after", "after", int{KVA_SUCCESS}, 2},
};

struct ListedAsGivenRow {
    QByteArray name;
};

const ListedAsGivenRow listedAsGivenRows[] = {
    {R"("delayMs": 600000)"},
    {R"("dropped": true)"},
    {R"("stale": true)"},
    {R"("corrupted": {"offset": 2507, "xor": 255})"},
    {R"("corrupted": {"field": "mode", "value": 0})"},
    {R"("shortList": 0)"},
    {R"("unplug": "before")"},
    {R"("unplug": "during", "instrument": -5)"},
    {R"("unplug": "after")"},
    {R"("probability": 0.125, "seed": 4294967295, "result": "KVA_ERROR")"},
};

struct RefusedRow {
    QByteArray name;
    QByteArray path;
};

const RefusedRow refusedRows[] = {
    {R"("function": "*", "result": 0, "delayMs": 5)", "delayMs"},
    {R"("function": "*", "delayMs": -1)", "delayMs"},
    {R"("function": "*", "delayMs": 600001)", "delayMs"},
    {R"("function": "*", "dropped": false)", "dropped"},
    {R"("function": "KVA_GetDeviceInfo", "dropped": true)", "dropped"},
    {R"("function": "KVA_SetNetworkInfo", "stale": true)", "stale"},
    {R"("function": "KVA_GetDeviceInfo", "stale": 1)", "stale"},
    {R"("function": "KVA_Connect", "shortList": 1)", "shortList"},
    {R"("function": "*", "shortList": -1)", "shortList"},
    {R"("function": "*", "unplug": "never")", "unplug"},
    {R"("function": "*", "delayMs": 1, "instrument": 5)", "instrument"},
    {R"("function": "*", "corrupted": {})", "corrupted"},
    {R"("function": "*", "corrupted": {"field": "mode", "offset": 0})", "corrupted"},
    {R"("function": "*", "corrupted": {"field": ""})", "corrupted.field"},
    {R"("function": "*", "corrupted": {"offset": 2508})", "corrupted.offset"},
    {R"("function": "KVA_GetNetworkInfo", "corrupted": {"offset": 124})", "corrupted.offset"},
    {R"("function": "KVA_GetNetworkInfo", "corrupted": {"field": "mode"})", "corrupted.field"},
    {R"("function": "*", "corrupted": {"field": "SSID[33]"})", "corrupted.field"},
    {R"("function": "*", "corrupted": {"field": "SSID[-1]"})", "corrupted.field"},
    {R"("function": "*", "corrupted": {"field": "SSID["})", "corrupted.field"},
    {R"("function": "KVA_Connect", "corrupted": {"offset": 0})", "corrupted.offset"},
    {R"("function": "*", "corrupted": {"offset": 0, "xor": 0})", "corrupted.xor"},
    {R"("function": "*", "corrupted": {"offset": 0, "value": 256})", "corrupted.value"},
    {R"("function": "*", "corrupted": {"offset": 0, "value": 1, "xor": 1})", "corrupted"},
    {R"("function": "*", "result": 0, "probability": 0)", "probability"},
    {R"("function": "*", "result": 0, "probability": 1.1)", "probability"},
    {R"("function": "*", "result": 0, "probability": "1")", "probability"},
    {R"("function": "*", "result": 0, "seed": 1)", "seed"},
};

} // namespace

class TestSimulatorFaultKinds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        EventRecord::instance().clear();
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    }

    void cleanup() {
        KvaSim_ClearFaults();
        KVA_RegisterDeviceEventHandler(nullptr);
    }

    void delay() {
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"delayMs", 120}, {"times", 1}}));
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(powerOffMode(), std::uint8_t{0});
        QVERIFY(timer.elapsed() >= 120);
        QVERIFY(callLog().back()["durationUs"] >= 120000);
    }

    void delayHoldsNothing() {
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"delayMs", 2000}}));
        std::atomic<bool> over{false};
        std::thread slow([&] {
            powerOffMode();
            over = true;
        });
        QVERIFY(KvaSim_Unplug(networkSerial));
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(!over);
        slow.join();
    }

    void dropped() {
        const json before = instrument(usbSerial);
        QVERIFY(addFault({{"function", "*"}, {"dropped", true}}));
        QCOMPARE(setPowerOffMode(3), KVA_RESULT{KVA_SUCCESS});
        const KVA_NETWORKINFO network{};
        QCOMPARE(KVA_SetNetworkInfo(&network), KVA_RESULT{KVA_SUCCESS});
        const KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(instrument(usbSerial) == before);
        QCOMPARE(KVA_SetShutdownTime(nullptr), KVA_RESULT{KVA_ERROR_ARGUMENT});
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_ERROR_NO_DATA});
        KvaSim_ClearFaults();
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "KVA_JIG_SetFactoryCalib_WriteSector"}, {"dropped", true}}));
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(instrument(usbSerial)["calibration"]["committed"] ==
                before["calibration"]["committed"]);
    }

    void droppedConnection() {
        QVERIFY(addFault({{"function", "KVA_Disconnect"}, {"dropped", true}, {"times", 1}}));
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(powerOffMode(), std::uint8_t{0});
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "KVA_Connect"}, {"dropped", true}, {"times", 1}}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_CONNECT});
    }

    void stale() {
        KVA_NETWORKINFO first{};
        KVA_JIG_CALREFDATA calibration{};
        QCOMPARE(KVA_GetNetworkInfo(&first), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&calibration), KVA_RESULT{KVA_SUCCESS});
        KVA_NETWORKINFO second = first;
        second.IPAddress[3] = 77;
        QCOMPARE(KVA_SetNetworkInfo(&second), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(setPowerOffMode(1), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(setPowerOffMode(2), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA changed = calibration;
        changed.rfWhite.spcData[0] += 1;
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&changed), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "*"}, {"stale", true}}));
        KVA_NETWORKINFO network{};
        QCOMPARE(KVA_GetNetworkInfo(&network), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(network, first));
        QCOMPARE(powerOffMode(), std::uint8_t{1});
        KVA_JIG_CALREFDATA read{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, calibration));
        KvaSim_ClearFaults();
        QCOMPARE(powerOffMode(), std::uint8_t{2});
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, changed));
    }

    void stalePorts() {
        QVERIFY(KvaSim_Unplug(networkSerial));
        QVERIFY(addFault({{"function", "KVA_GetDevicePortList"}, {"stale", true}}));
        QCOMPARE(ports().size(), std::size_t{2});
        KvaSim_ClearFaults();
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void corruptedField_data() { addRows(corruptedFieldRows); }

    void corruptedField() {
        const CorruptedFieldRow& given = rowOf(corruptedFieldRows);
        KVA_NETWORKINFO expected{};
        QCOMPARE(KVA_GetNetworkInfo(&expected), KVA_RESULT{KVA_SUCCESS});
        auto* bytes = reinterpret_cast<std::uint8_t*>(&expected);
        for (int index = given.first; index < given.first + given.count; ++index)
            bytes[index] =
                static_cast<std::uint8_t>(given.value < 0 ? bytes[index] ^ 0xFF : given.value);
        QVERIFY(addFault({{"function", "KVA_GetNetworkInfo"},
                          {"corrupted", json::parse(given.name.constData())}}));
        KVA_NETWORKINFO read{};
        QCOMPARE(KVA_GetNetworkInfo(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, expected));
    }

    void corruptedOnce() {
        KVA_JIG_CALREFDATA before{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&before), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(addFault({{"function", "KVA_JIG_GetFactoryCalib_CALREFDATA"},
                          {"times", 1},
                          {"corrupted", {{"field", "ambAdp.spcData[74]"}, {"xor", 1}}}}));
        KVA_JIG_CALREFDATA read{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        const auto* was = reinterpret_cast<const std::uint8_t*>(&before);
        const auto* is = reinterpret_cast<const std::uint8_t*>(&read);
        for (std::size_t index = 0; index < sizeof read; ++index)
            QCOMPARE(is[index] ^ was[index], index >= 456 && index < 460 ? 1 : 0);
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, before));
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"},
                          {"corrupted", {{"field", "mode"}, {"value", 200}}}}));
        QCOMPARE(powerOffMode(), std::uint8_t{200});
    }

    void corruptedPort() {
        QVERIFY(addFault({{"function", "KVA_GetDevicePortList"},
                          {"corrupted", {{"field", "portType"}, {"value", 2}}}}));
        for (const KVA_PORTINFO& port : ports())
            QCOMPARE(port.portType, 0x02020202U);
    }

    void shortList() {
        QVERIFY(
            addFault({{"function", "KVA_GetDevicePortList"}, {"call", "2-3"}, {"shortList", 1}}));
        std::int32_t count = -1;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(count, 2);
        QCOMPARE(ports().size(), std::size_t{1});
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(count, 1);
        QVERIFY(addFault({{"function", "*"}, {"shortList", 0}}));
        QCOMPARE(ports().size(), std::size_t{0});
    }

    void unplugMoments_data() { addRows(unplugMomentsRows); }

    void unplugMoments() {
        const UnplugMomentsRow& given = rowOf(unplugMomentsRows);
        KVA_RegisterDeviceEventHandler(recordEvent);
        QVERIFY(
            addFault({{"function", "KVA_SetShutdownTime"}, {"unplug", given.moment.constData()}}));
        QCOMPARE(setPowerOffMode(2), given.result);
        QVERIFY(instrument(usbSerial)["powerOffMode"] == given.mode);
        QVERIFY(instrument(usbSerial)["plugged"] == false);
        QCOMPARE(deliveredCodes(), QByteArray("6"));
        QCOMPARE(setPowerOffMode(3), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
    }

    void unplugDuringConnect() {
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        KVA_RegisterDeviceEventHandler(recordEvent);
        QVERIFY(addFault({{"function", "KVA_Connect"}, {"unplug", "during"}, {"times", 1}}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_COMMUNICATION_RECEIVE});
        QCOMPARE(deliveredCodes(), QByteArray());
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_CONNECT});
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void unplugFromList() {
        QVERIFY(
            addFault({{"function", "KVA_GetDevicePortList"}, {"unplug", "after"}, {"times", 1}}));
        QCOMPARE(ports().size(), std::size_t{2});
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(addFault({{"function", "KVA_GetDevicePortList"},
                          {"unplug", "before"},
                          {"instrument", networkSerial}}));
        QCOMPARE(ports().size(), std::size_t{0});
    }

    void chanceIsRepeatable() {
        const auto failures = [](std::uint32_t seed) {
            KvaSim_ClearFaults();
            addFault({{"function", "KVA_GetShutdownTime"},
                      {"probability", 0.25},
                      {"seed", seed},
                      {"result", "KVA_ERROR_NAK"}});
            QByteArray answers;
            for (int round = 0; round < 400; ++round) {
                std::uint8_t mode = 0;
                answers += KVA_GetShutdownTime(&mode) == KVA_ERROR_NAK ? 'x' : '-';
            }
            return answers;
        };
        const QByteArray first = failures(1);
        QCOMPARE(failures(1), first);
        QVERIFY(failures(2) != first);
        QVERIFY2(first.count('x') > 60 && first.count('x') < 140, first.constData());
        KvaSim_ClearFaults();
        QVERIFY(addFault({{"function", "*"}, {"probability", 1}, {"result", -9799}}));
        QVERIFY(faults()[0]["seed"].is_number_unsigned());
        QCOMPARE(setPowerOffMode(1), KVA_RESULT{KVA_ERROR_NAK});
    }

    void severalRules() {
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"delayMs", 30}}));
        QVERIFY(addFault({{"function", "KVA_GetShutdownTime"}, {"result", 2}}));
        QVERIFY(addFault(
            {{"function", "KVA_GetShutdownTime"}, {"corrupted", {{"offset", 0}, {"value", 8}}}}));
        std::uint8_t mode = 0;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_WARNING_BATTERY_EMPTY});
        QCOMPARE(mode, std::uint8_t{8});
        QVERIFY(callLog().back()["durationUs"] >= 30000);
    }

    void listedAsGiven_data() { addRows(listedAsGivenRows); }

    void listedAsGiven() {
        const ListedAsGivenRow& given = rowOf(listedAsGivenRows);
        json rule = json::parse("{\"function\": \"*\", \"call\": \"every\", " +
                                given.name.toStdString() + '}');
        QVERIFY2(addFault(rule), KvaSim_LastError());
        const json listed = faults();
        QVERIFY2(listed[0] == rule, listed.dump().c_str());
        json bench = benchOf({usbSerial});
        bench["faults"].push_back(rule);
        QVERIFY(loadJson(bench));
        QVERIFY(state()["faults"][0] == rule);
    }

    void refused_data() { addRows(refusedRows); }

    void refused() {
        const RefusedRow& given = rowOf(refusedRows);
        QVERIFY(!KvaSim_AddFault(('{' + given.name + '}').constData()));
        QVERIFY2(lastError().startsWith(given.path + ": "), KvaSim_LastError());
        QVERIFY(faults() == json::array());
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulatorFaultKinds>();
#include "tst_simulator_fault_kinds.moc"
