// What rules do to a call, other than to answer it.

#include "SimulatorTest.h"

#include <cstddef>

using namespace simtest;

namespace {

int powerOffMode() {
    return held(KVA_GetShutdownTime);
}

KVA_RESULT setPowerOffMode(std::uint8_t mode) {
    return KVA_SetShutdownTime(&mode);
}

struct CorruptedRow {
    QByteArray name; ///< the rule's member
    int first;       ///< byte of the record that is another
    int count;
    int value; ///< of these bytes; negative: all bits differ
};

const CorruptedRow corruptedRows[] = {
    {R"({"field": "IPAddress"})", 8, 4, -1},
    {R"({"field": "IPAddress[3]", "value": 7})", 11, 1, 7},
    {R"({"field": "SSID", "value": 65})", 24, 33, 65},
    {R"({"field": "APConnectUse", "value": 0})", 0, 4, 0},
    {R"({"offset": 0, "value": 9})", 0, 1, 9},
    {R"({"offset": 123})", 123, 1, -1},
    {R"({"field": "padding"})", 122, 2, -1},
};

struct UnplugRow {
    const char* name; ///< the moment
    int result;
    int mode; ///< afterwards
};

const UnplugRow unplugRows[] = {
    {"before", KVA_ERROR_INSTRUMENT_UNAVAILABLE, 0},
    {"during", KVA_ERROR_COMMUNICATION_RECEIVE, 2},
    {"after", KVA_SUCCESS, 2},
};

// Rules without their braces, and the path of what is refused.
const NamedText refusedRows[] = {
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

class TestSimulatorFaultKinds : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
    }

    void delay() {
        QVERIFY(addFaultOf("KVA_GetShutdownTime", {{"delayMs", 120}, {"times", 1}}));
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(powerOffMode(), 0);
        QVERIFY(timer.elapsed() >= 120);
        QVERIFY(callLog().back()["durationUs"] >= 120000);
    }

    void delayHoldsNothing() {
        QVERIFY(addFaultOf("KVA_GetShutdownTime", {{"delayMs", 2000}}));
        std::atomic<bool> over{false};
        std::thread slow([&] {
            std::uint8_t mode = 0;
            KVA_GetShutdownTime(&mode);
            over = true;
        });
        QVERIFY(KvaSim_Unplug(networkSerial));
        QCOMPARE(ports().size(), std::size_t{1});
        QVERIFY(!over);
        slow.join();
    }

    void dropped() {
        const json before = instrument(usbSerial);
        QVERIFY(addFaultOf("*", {{"dropped", true}}));
        QCOMPARE(setPowerOffMode(3), KVA_SUCCESS);
        QCOMPARE(send(KVA_SetNetworkInfo), KVA_SUCCESS);
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA), KVA_SUCCESS);
        QVERIFY(instrument(usbSerial) == before);
        QCOMPARE(KVA_SetShutdownTime(nullptr), KVA_ERROR_ARGUMENT);
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_ERROR_NO_DATA);
        KvaSim_ClearFaults();
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA), KVA_SUCCESS);
        QVERIFY(addFaultOf("KVA_JIG_SetFactoryCalib_WriteSector", {{"dropped", true}}));
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_SUCCESS);
        QVERIFY(instrument(usbSerial)["calibration"]["committed"] ==
                before["calibration"]["committed"]);
    }

    void stale() {
        const KVA_NETWORKINFO first = held(KVA_GetNetworkInfo);
        const KVA_JIG_CALREFDATA calibration = held(KVA_JIG_GetFactoryCalib_CALREFDATA);
        KVA_NETWORKINFO second = first;
        second.IPAddress[3] = 77;
        QCOMPARE(send(KVA_SetNetworkInfo, second), KVA_SUCCESS);
        QCOMPARE(setPowerOffMode(1), KVA_SUCCESS);
        QCOMPARE(setPowerOffMode(2), KVA_SUCCESS);
        KVA_JIG_CALREFDATA changed = calibration;
        changed.rfWhite.spcData[0] += 1;
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA, changed), KVA_SUCCESS);
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_SUCCESS);
        QVERIFY(addFaultOf("*", {{"stale", true}}));
        QVERIFY(sameBytes(held(KVA_GetNetworkInfo), first));
        QCOMPARE(powerOffMode(), 1);
        QVERIFY(sameBytes(held(KVA_JIG_GetFactoryCalib_CALREFDATA), calibration));
        KvaSim_ClearFaults();
        QCOMPARE(powerOffMode(), 2);
        QVERIFY(sameBytes(held(KVA_JIG_GetFactoryCalib_CALREFDATA), changed));
    }

    void corruptedField_data() { addRows(corruptedRows); }
    void corruptedField() {
        const auto row = rowOf<CorruptedRow>();
        KVA_NETWORKINFO expected = held(KVA_GetNetworkInfo);
        auto* bytes = reinterpret_cast<std::uint8_t*>(&expected);
        for (int index = row.first; index < row.first + row.count; ++index)
            bytes[index] =
                static_cast<std::uint8_t>(row.value < 0 ? bytes[index] ^ 0xFF : row.value);
        QVERIFY(
            addFaultOf("KVA_GetNetworkInfo", {{"corrupted", json::parse(row.name.constData())}}));
        QVERIFY(sameBytes(held(KVA_GetNetworkInfo), expected));
    }

    void corruptedOnce() {
        KVA_JIG_CALREFDATA before = held(KVA_JIG_GetFactoryCalib_CALREFDATA);
        QVERIFY(addFaultOf(
            "KVA_JIG_GetFactoryCalib_CALREFDATA",
            {{"times", 1}, {"corrupted", {{"field", "ambAdp.spcData[74]"}, {"xor", 1}}}}));
        KVA_JIG_CALREFDATA read = held(KVA_JIG_GetFactoryCalib_CALREFDATA);
        QVERIFY(!sameBytes(read, before));
        for (unsigned char& byte : reinterpret_cast<unsigned char(&)[4]>(read.ambAdp.spcData[74]))
            byte ^= 1U;
        QVERIFY(sameBytes(read, before));
        QVERIFY(sameBytes(held(KVA_JIG_GetFactoryCalib_CALREFDATA), before));
        QVERIFY(addFaultOf("KVA_GetShutdownTime",
                           {{"corrupted", {{"field", "mode"}, {"value", 200}}}}));
        QCOMPARE(powerOffMode(), 200);
    }

    void corruptedPort() {
        QVERIFY(addFaultOf("KVA_GetDevicePortList",
                           {{"corrupted", {{"field", "portType"}, {"value", 2}}}}));
        for (const KVA_PORTINFO& port : ports())
            QCOMPARE(port.portType, 0x02020202U);
    }

    void unplugMoments_data() { addRows(unplugRows); }
    void unplugMoments() {
        const auto row = rowOf<UnplugRow>();
        KVA_RegisterDeviceEventHandler(recordEvent);
        QVERIFY(addFaultOf("KVA_SetShutdownTime", {{"unplug", row.name}}));
        QCOMPARE(setPowerOffMode(2), row.result);
        QVERIFY(instrument(usbSerial)["powerOffMode"] == row.mode);
        QVERIFY(instrument(usbSerial)["plugged"] == false);
        QCOMPARE(deliveredCodes(), "6");
        QCOMPARE(setPowerOffMode(3), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
    }

    void chanceIsRepeatable() {
        const auto failures = [](std::uint32_t seed) {
            KvaSim_ClearFaults();
            addFaultOf("KVA_GetShutdownTime",
                       {{"probability", 0.25}, {"seed", seed}, {"result", "KVA_ERROR_NAK"}});
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
        QVERIFY(addFaultOf("*", {{"probability", 1}, {"result", -9799}}));
        QVERIFY(faults()[0]["seed"].is_number_unsigned());
        QCOMPARE(setPowerOffMode(1), KVA_ERROR_NAK);
    }

    void severalRules() {
        QVERIFY(addFaultOf("KVA_GetShutdownTime", {{"delayMs", 30}}));
        QVERIFY(addFaultOf("KVA_GetShutdownTime", {{"result", 2}}));
        QVERIFY(addFaultOf("KVA_GetShutdownTime", {{"corrupted", {{"offset", 0}, {"value", 8}}}}));
        std::uint8_t mode = 0;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_WARNING_BATTERY_EMPTY);
        QCOMPARE(int{mode}, 8);
        QVERIFY(callLog().back()["durationUs"] >= 30000);
    }

    void listedAsGiven_data() {
        addNames({R"("delayMs": 600000)", R"("dropped": true)", R"("stale": true)",
                  R"("corrupted": {"offset": 2507, "xor": 255})",
                  R"("corrupted": {"field": "mode", "value": 0})", R"("shortList": 0)",
                  R"("unplug": "before")", R"("unplug": "during", "instrument": -5)",
                  R"("unplug": "after")",
                  R"("probability": 0.125, "seed": 4294967295, "result": "KVA_ERROR")"});
    }
    void listedAsGiven() {
        const json rule = json::parse(R"({"function": "*", "call": "every", )" +
                                      std::string(QTest::currentDataTag()) + '}');
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
        const auto row = rowOf<NamedText>();
        QVERIFY(!KvaSim_AddFault(('{' + row.name + '}').constData()));
        QVERIFY2(wasRefusedFor(row.value), KvaSim_LastError());
        QVERIFY(faults() == json::array());
    }
};

TEST_CLASS(TestSimulatorFaultKinds)
#include "tst_simulator_fault_kinds.moc"
