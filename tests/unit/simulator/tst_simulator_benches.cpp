// Benches: the ready ones, what the reader refuses and that a refusal changes nothing, comments,
// and the time that an instrument needs to start.

#include "SimulatorTest.h"

using namespace simtest;

namespace {

struct ReadyRow {
    const char* name;
    int usb;
    int network;
};

const ReadyRow readyRows[] = {
    {"usb", 1, 0},         {"usb-and-network", 1, 1}, {"none", 0, 0},          {"hundred", 4, 96},
    {"no-wireless", 1, 0}, {"faulty-cable", 1, 0},    {"factory-line", 0, 50},
};

const QByteArray whiteNumber = "calibration.committed.white.serialNumber";

// Changes of an instrument, and the path of what is refused.
const NamedText inInstrument[] = {
    {R"([])", "the document"},
    {R"({"plugged": 1})", "plugged"},
    {R"({"pluged": true})", "pluged"},
    {R"({"serialNumber": 2147483648})", "serialNumber"},
    {R"({"serialNumber": -2147483649})", "serialNumber"},
    {R"({"serialNumber": 18446744073709551615})", "serialNumber"},
    {R"({"serialNumber": 1.0})", "serialNumber"},
    {R"({"serialNumber": null})", "serialNumber"},
    {R"({"port": 1})", "port"},
    {R"({"port": {"type": -1}})", "port.type"},
    {R"({"port": {"type": 4294967296}})", "port.type"},
    {R"({"port": {"name": 5}})", "port.name"},
    {R"({"port": {"name": "1234567890123456789012345678901234567"}})", "port.name"},
    {R"({"port": {"name": "a\u0000b"}})", "port.name"},
    {R"({"port": {"name": {"hex": "00"}}})", "port.name.hex"},
    {R"({"port": {"speed": 1}})", "port.speed"},
    {R"({"device": {"firmware": [1, 2]}})", "device.firmware"},
    {R"({"device": {"firmware": [-1, 2, 3]}})", "device.firmware[0]"},
    {R"({"device": {"firmware": [1, 2, "3"]}})", "device.firmware[2]"},
    {R"({"device": {"macAddress": "00:11:22:33:44"}})", "device.macAddress"},
    {R"({"device": {"macAddress": "00:11:22:33:44:5g"}})", "device.macAddress"},
    {R"({"device": {"macAddress": "00:11:22:33:44:55:66"}})", "device.macAddress"},
    {R"({"device": {"macAddress": "001122334455"}})", "device.macAddress"},
    {R"({"device": {"reserved1": {"fill": 256}}})", "device.reserved1.fill"},
    {R"({"device": {"reserved1": {}}})", "device.reserved1"},
    {R"({"device": {"reserved1": {"fill": 1, "hex": "00"}}})", "device.reserved1"},
    {R"({"device": {"reserved2": {"seed": -1}}})", "device.reserved2.seed"},
    {R"({"wirelessModule": 256})", "wirelessModule"},
    {R"({"wirelessModule": "yes"})", "wirelessModule"},
    {R"({"factoryOptionsReserved": "00"})", "factoryOptionsReserved"},
    {R"({"network": {"passive": {}}})", "network.passive"},
    {R"({"network": {"active": {"DHCPUse": true}}})", "network.active.DHCPUse"},
    {R"({"network": {"active": {"IPAddress": "192.168.0"}}})", "network.active.IPAddress"},
    {R"({"network": {"active": {"IPAddress": "192.168.0.256"}}})", "network.active.IPAddress"},
    {R"({"network": {"active": {"IPAddress": "192.168.0.1."}}})", "network.active.IPAddress"},
    {R"({"network": {"active": {"IPAddress": "192..0.1"}}})", "network.active.IPAddress"},
    {R"({"network": {"active": {"IPAddress": "0192.1.0.1"}}})", "network.active.IPAddress"},
    {R"({"network": {"active": {"DNS": [1, 2, 3, 4]}}})", "network.active.DNS"},
    {R"({"network": {"pending": {"EncryptKey": 7}}})", "network.pending.EncryptKey"},
    {R"({"network": {"pending": {"EncryptKey": {"length": 7}}}})",
     "network.pending.EncryptKey.length"},
    {R"({"network": {"pending": {"padding": 7}}})", "network.pending.padding"},
    {R"({"powerOffMode": 256})", "powerOffMode"},
    {R"({"powerOffMode": -1})", "powerOffMode"},
    {R"({"calibration": {"staged": []}})", "calibration.staged"},
    {R"({"calibration": {"committed": {"white": {"serialNumber": 12345678}}}})", whiteNumber},
    {R"({"calibration": {"committed": {"white": {"serialNumber": "1234567a"}}}})", whiteNumber},
    {R"({"calibration": {"committed": {"white": {"serialNumber": "1234567"}}}})", whiteNumber},
    {R"({"calibration": {"committed": {"white": {"values": [1, 2]}}}})",
     "calibration.committed.white.values"},
    {R"({"calibration": {"committed": {"reserved": {"hex": "00"}}}})",
     "calibration.committed.reserved.hex"},
};

// Changes with a key in them.
const NamedText keys[] = {
    {"too long", R"({"network": {"active": {"EncryptKey":
        "secretsecretsecretsecretsecretsecretsecretsecretsecretsecretsecretsecret"}}})"},
    {"NUL", R"({"network": {"active": {"EncryptKey": "secret\u0000"}}})"},
    {"broken escape", R"({"network": {"active": {"EncryptKey": "secret\x"}}})"},
    {"without end", R"({"network": {"active": {"EncryptKey": "secret)"},
    {"line feed in it", "{\"network\": {\"active\": {\"EncryptKey\": \"secret\n\"}}}"},
    {"without quotes", R"({"network": {"active": {"EncryptKey": secret}}})"},
    {"other end", R"({"network": {"active": {"EncryptKey": "secret" "secret"}}})"},
    {"no UTF-8", "{\"network\": {\"active\": {\"EncryptKey\": \"secret\xFF\"}}}"},
};

} // namespace

class TestSimulatorBenches : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(useWithStartUp(0));
    }

    void refused_data() {
        QByteArray many = "{";
        for (int key = 0; key < 1001; ++key)
            many += "\"" + QByteArray::number(key) + "\":0,";
        const QByteArray of = R"({"version": 1, "instruments": )";
        const QByteArray none = of + "[]";
        addRows(QVector<TextCase>{
            {"empty", "", "line 1, column 1: syntax error"},
            {"no JSON", "not JSON", "line 1, column 2: syntax error"},
            {"third line", "{\n\"version\": 1,\n  \"instruments\": [}",
             "line 3, column 19: syntax error"},
            {"cut off", "{\"version\": 1,\n\"instruments\": [\n", "line 3, column 1: syntax error"},
            {"more behind", none + "} x", "line 1, column 35: syntax error"},
            {"no UTF-8", none + ", \"\xFF\": 1}", "syntax error"},
            {"huge number", "{\"version\": 1e999, \"instruments\": []}", "out of range"},
            {"array", "[]", "the document: must be an object"},
            {"null", "null", "the document: must be an object"},
            {"no version", "{\"instruments\": []}", "version: is missing"},
            {"version as text", "{\"version\": \"1\", \"instruments\": []}",
             "version: must be a whole"},
            {"version 0", "{\"version\": 0, \"instruments\": []}", "version: must be a whole"},
            {"version 1.5", "{\"version\": 1.5, \"instruments\": []}", "version: must be a whole"},
            {"newer", "{\"version\": 3, \"surprise\": 1}",
             "version: is 3, newer than the version 2"},
            {"no instruments", "{\"version\": 1}", "instruments: is missing"},
            {"instruments", of + "{}}", "instruments: must be an array"},
            {"unknown", none + R"(, "fault": []})", "fault: is not a known"},
            {"faults", none + R"(, "faults": {}})", "faults: must be an array"},
            {"bad fault", none + R"(, "faults": [{"function": "X"}]})",
             "faults[0].function: is not the name of a function"},
            {"key twice", "{\"version\": 1, \"version\": 1, \"instruments\": []}",
             "\"version\" is given"},
            {"no serial", of + "[{}]}", "instruments[0].serialNumber: is missing"},
            {"serial twice", of + R"([{"serialNumber": 5}, {"serialNumber": 5}]})",
             "instruments[1].serialNumber: is the serial number of another"},
            {"deep", QByteArray(70, '[') + QByteArray(70, ']'), "more than 64 levels"},
            {"very deep", QByteArray(200000, '['), "more than 64 levels"},
            {"many keys", many, "more than 1000 keys"},
        });
    }
    void refused() {
        const auto row = rowOf<TextCase>();
        const std::string before = stateText();
        QVERIFY(!KvaSim_LoadJson(row.given));
        QVERIFY2(lastError().contains(row.expected), KvaSim_LastError());
        QVERIFY(stateText() == before);
        held(KVA_GetShutdownTime);
    }

    void refusedInInstrument_data() { addRows(inInstrument); }
    void refusedInInstrument() {
        const auto row = rowOf<NamedText>();
        refuses(row.name, row.value);
    }

    void refusedValue_data() {
        addNames({"value null", "value true", "value [1]", R"(value "1.5")", R"(value "0x7fc0000")",
                  R"(value "0x7fc000011")", R"(value "7fc00001")", R"(value "0x7fc0000g")",
                  "value 1e39", "value -3.5e38", "value 1e-39", "value 1e-60"});
    }
    void refusedValue() {
        const QByteArray value(QTest::currentDataTag() + std::strlen("value "));
        refuses(R"({"calibration": {"committed": {"white": {"values": [)" +
                    QByteArray("1,").repeated(37) + value + "]}}}}",
                "calibration.committed.white.values[37]");
    }

    void noReasonQuotesTheKey_data() { addRows(keys); }
    void noReasonQuotesTheKey() {
        const auto row = rowOf<NamedText>();
        QVERIFY(!KvaSim_Set(usbSerial, row.value.constData()));
        QVERIFY(!lastError().isEmpty());
        QVERIFY2(!lastError().contains("secr"), KvaSim_LastError());
    }

    void serialNumberOfAnother() {
        QVERIFY(!set(usbSerial, {{"serialNumber", networkSerial}}));
        QCOMPARE(lastError(),
                 QByteArray("serialNumber: is the serial number of another instrument"));
        QVERIFY(set(usbSerial, {{"serialNumber", 77}}));
        std::uint8_t mode = held(KVA_GetShutdownTime);
        QVERIFY(KvaSim_Unplug(77));
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
    }

    void ready_data() { addRows(readyRows); }
    void ready() {
        const auto row = rowOf<ReadyRow>();
        const QByteArray path = m_folder.localPath("copy.json");
        QFile::remove("copy.json"); // of the row before
        QVERIFY(QFile::copy(QString(BENCHES "/%1.json").arg(row.name), "copy.json"));
        QVERIFY2(KvaSim_LoadFile(path), KvaSim_LastError());
        int ofUsb = 0;
        const auto list = ports();
        for (const KVA_PORTINFO& port : list)
            ofUsb += port.portType == ePortType_USB ? 1 : 0;
        QCOMPARE(ofUsb, row.usb);
        QCOMPARE(static_cast<int>(list.size()), row.usb + row.network);
        if (list.empty())
            return;
        QCOMPARE(KVA_Connect(&list.back(), 10), KVA_SUCCESS);
        QCOMPARE(held(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA).wifiModuleEnable != 0,
                 QByteArray(row.name) != "no-wireless");
    }

    void faultyCableLosesConnections() {
        QFile file(BENCHES "/faulty-cable.json");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(KvaSim_LoadJson(file.readAll().constData()), KvaSim_LastError());
        int lost = 0;
        for (int round = 0; round < 200; ++round) {
            QVERIFY(KvaSim_Plug(usbSerial));
            QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
            KVA_DEVICEINFO info{};
            const KVA_RESULT result = KVA_GetDeviceInfo(&info);
            QVERIFY(result == KVA_SUCCESS || result == KVA_ERROR_COMMUNICATION_RECEIVE);
            lost += result == KVA_SUCCESS ? 0 : 1;
            KVA_Disconnect();
        }
        QVERIFY2(lost > 1 && lost < 30, QByteArray::number(lost).constData());
    }

    void comments() {
        QVERIFY2(KvaSim_LoadJson("// a bench\n{\"version\": 1, /* none\n at all */\n"
                                 "\"instruments\": [] }"),
                 KvaSim_LastError());
        QVERIFY(!KvaSim_LoadJson("// a bench\n{\"version\": 1, /* none\n at all */\n,}"));
        QVERIFY2(lastError().startsWith("line 4, column 1: "), KvaSim_LastError());

        QVERIFY(loadJson(benchOf({usbSerial}))); // not in what changes it
        QVERIFY(!KvaSim_Set(usbSerial, "{} // now"));
        QVERIFY(!KvaSim_AddFault(R"({"function": "*", "result": 0} // now)"));
    }

    void startUp() {
        QVERIFY(useWithStartUp(300));
        const KVA_PORTINFO port = portOf(usbSerial);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(powerCycle(usbSerial));
        QCOMPARE(deliveredCodes(), "6");
        QCOMPARE(ports().size(), std::size_t{1});
        QCOMPARE(KVA_Connect(&port, 10), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        KvaSim_EmitEvent(3, 0, 0); // others are not held up
        QCOMPARE(deliveredCodes(), "6 3");
        while (timer.elapsed() < 300) {
            const bool isListed = ports().size() == 2;
            QVERIFY(!isListed || timer.elapsed() >= 300);
        }
        QTRY_COMPARE(deliveredCodes(), "6 3 0");
        QCOMPARE(KVA_Connect(&port, 10), KVA_SUCCESS);
    }

    void startUpEndsWithUnplugging() {
        QVERIFY(useWithStartUp(100));
        QVERIFY(powerCycle(usbSerial));
        QVERIFY(KvaSim_Unplug(usbSerial));
        QTest::qWait(250); // an event that comes in spite of it would be here by now
        QCOMPARE(deliveredCodes(), "6");
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(deliveredCodes(), "6 0");
        QCOMPARE(ports().size(), std::size_t{2});
    }

    void startUpEndsWithHandler() {
        QVERIFY(useWithStartUp(100));
        QVERIFY(powerCycle(usbSerial));
        QCOMPARE(KVA_RegisterDeviceEventHandler(nullptr), KVA_SUCCESS);
        forgetEvents();
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_SUCCESS);
        QTest::qWait(250);
        QCOMPARE(deliveredCodes(), "");
        QCOMPARE(ports().size(), std::size_t{2});
    }

    void cycleWhileStarting() {
        QVERIFY(useWithStartUp(200));
        for (int round = 0; round < 2; ++round)
            QVERIFY(powerCycle(usbSerial));
        QTRY_COMPARE(deliveredCodes(), "6 0");
        QTest::qWait(250);
        QCOMPARE(deliveredCodes(), "6 0");
    }

private:
    /** Connects to an instrument that takes so many milliseconds to start, beside another one, and
        records events. */
    static bool useWithStartUp(int startUpMs) {
        json bench = benchOf({usbSerial, networkSerial});
        bench["instruments"][0]["startUpMs"] = startUpMs;
        return loadJson(bench) && KVA_RegisterDeviceEventHandler(recordEvent) == KVA_SUCCESS &&
               connectTo(usbSerial) == KVA_SUCCESS;
    }

    static void refuses(const QByteArray& patch, const QByteArray& path) {
        const json before = state();
        QVERIFY(!KvaSim_Set(usbSerial, patch.constData()));
        QVERIFY2(wasRefusedFor(path), KvaSim_LastError());
        QVERIFY(state() == before);
    }
};

TEST_CLASS(TestSimulatorBenches)
#include "tst_simulator_benches.moc"
