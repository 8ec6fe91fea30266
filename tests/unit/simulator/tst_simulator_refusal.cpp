// What the reader of benches refuses, and that a refusal changes nothing.

#include "SimulatorTest.h"

using namespace simtest;

class TestSimulatorRefusal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void refused_data();
    void refused();
    void refusedInInstrument_data();
    void refusedInInstrument();
    void refusedInCalibration_data();
    void refusedInCalibration();
    void noReasonQuotesTheKey_data();
    void noReasonQuotesTheKey();
    void serialNumberOfAnother();

private:
    QTemporaryDir m_folder;
};

void TestSimulatorRefusal::init() {
    startClean(m_folder);
    QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
}

void TestSimulatorRefusal::refused_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char* name, const QByteArray& text, const char* reason) {
        QTest::newRow(name) << text << QByteArray(reason);
    };
    row("empty", "", "line 1, column 1: syntax error");
    row("no JSON", "not JSON", "line 1, column 2: syntax error");
    row("third line", "{\n\"version\": 1,\n  \"instruments\": [}",
        "line 3, column 19: syntax error");
    row("cut off", "{\"version\": 1,\n\"instruments\": [\n", "line 3, column 1: syntax error");
    row("more behind", "{\"version\": 1, \"instruments\": []} x",
        "line 1, column 35: syntax error");
    row("no UTF-8", "{\"version\": 1, \"instruments\": [], \"\xFF\": 1}", "syntax error");
    row("huge number", "{\"version\": 1e999, \"instruments\": []}", "out of range");
    row("array", "[]", "the document: must be an object");
    row("null", "null", "the document: must be an object");
    row("no version", "{\"instruments\": []}", "version: is missing");
    row("version as text", "{\"version\": \"1\", \"instruments\": []}", "version: must be a whole");
    row("version 0", "{\"version\": 0, \"instruments\": []}", "version: must be a whole");
    row("version 1.5", "{\"version\": 1.5, \"instruments\": []}", "version: must be a whole");
    row("newer", "{\"version\": 3, \"surprise\": 1}", "version: is 3, newer than the version 2");
    row("no instruments", "{\"version\": 1}", "instruments: is missing");
    row("instruments", "{\"version\": 1, \"instruments\": {}}", "instruments: must be an array");
    row("unknown", "{\"version\": 1, \"instruments\": [], \"fault\": []}", "fault: is not a known");
    row("faults", "{\"version\": 1, \"instruments\": [], \"faults\": {}}",
        "faults: must be an array");
    row("bad fault", "{\"version\": 1, \"instruments\": [], \"faults\": [{\"function\": \"X\"}]}",
        "faults[0].function: is not the name of a function");
    row("key twice", "{\"version\": 1, \"version\": 1, \"instruments\": []}",
        "\"version\" is given");
    row("no serial", "{\"version\": 1, \"instruments\": [{}]}",
        "instruments[0].serialNumber: is missing");
    row("serial twice",
        "{\"version\": 1, \"instruments\": [{\"serialNumber\": 5}, {\"serialNumber\": 5}]}",
        "instruments[1].serialNumber: is the serial number of another");
    row("deep", QByteArray(70, '[') + QByteArray(70, ']'), "more than 64 levels");
    row("very deep", QByteArray(200000, '['), "more than 64 levels");
    QByteArray many = "{";
    for (int key = 0; key < 1001; ++key)
        many += "\"" + QByteArray::number(key) + "\":0,";
    row("many keys", many, "more than 1000 keys");
}

void TestSimulatorRefusal::refused() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, reason);
    const std::string before = stateText();
    QVERIFY(!KvaSim_LoadJson(text.constData()));
    QVERIFY2(lastError().contains(reason), KvaSim_LastError());
    QCOMPARE(QByteArray::fromStdString(stateText()), QByteArray::fromStdString(before));
    std::uint8_t mode = 0;
    QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
}

void TestSimulatorRefusal::refusedInInstrument_data() {
    QTest::addColumn<QByteArray>("patch");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char* patch, const char* path) {
        QTest::newRow(patch) << QByteArray(patch) << QByteArray(path);
    };
    row(R"([])", "the document");
    row(R"({"plugged": 1})", "plugged");
    row(R"({"pluged": true})", "pluged");
    row(R"({"serialNumber": 2147483648})", "serialNumber");
    row(R"({"serialNumber": -2147483649})", "serialNumber");
    row(R"({"serialNumber": 18446744073709551615})", "serialNumber");
    row(R"({"serialNumber": 1.0})", "serialNumber");
    row(R"({"serialNumber": null})", "serialNumber");
    row(R"({"port": 1})", "port");
    row(R"({"port": {"type": -1}})", "port.type");
    row(R"({"port": {"type": 4294967296}})", "port.type");
    row(R"({"port": {"name": 5}})", "port.name");
    row(R"({"port": {"name": "1234567890123456789012345678901234567"}})", "port.name");
    row(R"({"port": {"name": "a\u0000b"}})", "port.name");
    row(R"({"port": {"name": {"hex": "00"}}})", "port.name.hex");
    row(R"({"port": {"speed": 1}})", "port.speed");
    row(R"({"device": {"firmware": [1, 2]}})", "device.firmware");
    row(R"({"device": {"firmware": [-1, 2, 3]}})", "device.firmware[0]");
    row(R"({"device": {"firmware": [1, 2, "3"]}})", "device.firmware[2]");
    row(R"({"device": {"macAddress": "00:11:22:33:44"}})", "device.macAddress");
    row(R"({"device": {"macAddress": "00:11:22:33:44:5g"}})", "device.macAddress");
    row(R"({"device": {"macAddress": "00:11:22:33:44:55:66"}})", "device.macAddress");
    row(R"({"device": {"macAddress": "001122334455"}})", "device.macAddress");
    row(R"({"device": {"reserved1": {"fill": 256}}})", "device.reserved1.fill");
    row(R"({"device": {"reserved1": {}}})", "device.reserved1");
    row(R"({"device": {"reserved1": {"fill": 1, "hex": "00"}}})", "device.reserved1");
    row(R"({"device": {"reserved2": {"seed": -1}}})", "device.reserved2.seed");
    row(R"({"wirelessModule": 256})", "wirelessModule");
    row(R"({"wirelessModule": "yes"})", "wirelessModule");
    row(R"({"factoryOptionsReserved": "00"})", "factoryOptionsReserved");
    row(R"({"network": {"passive": {}}})", "network.passive");
    row(R"({"network": {"active": {"DHCPUse": true}}})", "network.active.DHCPUse");
    row(R"({"network": {"active": {"IPAddress": "192.168.0"}}})", "network.active.IPAddress");
    row(R"({"network": {"active": {"IPAddress": "192.168.0.256"}}})", "network.active.IPAddress");
    row(R"({"network": {"active": {"IPAddress": "192.168.0.1."}}})", "network.active.IPAddress");
    row(R"({"network": {"active": {"IPAddress": "192..0.1"}}})", "network.active.IPAddress");
    row(R"({"network": {"active": {"IPAddress": "0192.1.0.1"}}})", "network.active.IPAddress");
    row(R"({"network": {"active": {"DNS": [1, 2, 3, 4]}}})", "network.active.DNS");
    row(R"({"network": {"pending": {"EncryptKey": 7}}})", "network.pending.EncryptKey");
    row(R"({"network": {"pending": {"EncryptKey": {"length": 7}}}})",
        "network.pending.EncryptKey.length");
    row(R"({"network": {"pending": {"padding": 7}}})", "network.pending.padding");
    row(R"({"powerOffMode": 256})", "powerOffMode");
    row(R"({"powerOffMode": -1})", "powerOffMode");
}

void TestSimulatorRefusal::refusedInCalibration_data() {
    QTest::addColumn<QByteArray>("patch");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char* patch, const char* path) {
        QTest::newRow(patch) << QByteArray(patch) << QByteArray(path);
    };
    row(R"({"calibration": {"staged": []}})", "calibration.staged");
    row(R"({"calibration": {"committed": {"white": {"serialNumber": 12345678}}}})",
        "calibration.committed.white.serialNumber");
    row(R"({"calibration": {"committed": {"white": {"serialNumber": "1234567a"}}}})",
        "calibration.committed.white.serialNumber");
    row(R"({"calibration": {"committed": {"white": {"serialNumber": "1234567"}}}})",
        "calibration.committed.white.serialNumber");
    row(R"({"calibration": {"committed": {"white": {"values": [1, 2]}}}})",
        "calibration.committed.white.values");
    row(R"({"calibration": {"committed": {"reserved": {"hex": "00"}}}})",
        "calibration.committed.reserved.hex");
    const auto valueRow = [](const char* value) {
        QByteArray values;
        for (int index = 0; index < 37; ++index)
            values += "1,";
        QTest::newRow((QByteArray("value ") + value).constData())
            << QByteArray(R"({"calibration": {"committed": {"white": {"values": [)") + values +
                   value + "]}}}}"
            << QByteArray("calibration.committed.white.values[37]");
    };
    for (const char* value :
         {"null", "true", "[1]", "\"1.5\"", "\"0x7fc0000\"", "\"0x7fc000011\"", "\"7fc00001\"",
          "\"0x7fc0000g\"", "1e39", "-3.5e38", "1e-39", "1e-60"})
        valueRow(value);
}

void TestSimulatorRefusal::refusedInInstrument() {
    QFETCH(QByteArray, patch);
    QFETCH(QByteArray, path);
    const json before = state();
    QVERIFY(!KvaSim_Set(usbSerial, patch.constData()));
    QVERIFY2(lastError().startsWith(path + ": "), KvaSim_LastError());
    QVERIFY(state() == before);
}

void TestSimulatorRefusal::refusedInCalibration() {
    refusedInInstrument();
}

void TestSimulatorRefusal::noReasonQuotesTheKey_data() {
    QTest::addColumn<QByteArray>("patch");
    const auto row = [](const char* name, const char* patch) {
        QTest::newRow(name) << QByteArray(patch);
    };
    row("too long", R"({"network": {"active": {"EncryptKey":
        "secretsecretsecretsecretsecretsecretsecretsecretsecretsecretsecretsecret"}}})");
    row("NUL", R"({"network": {"active": {"EncryptKey": "secret\u0000"}}})");
    row("broken escape", R"({"network": {"active": {"EncryptKey": "secret\x"}}})");
    row("without end", R"({"network": {"active": {"EncryptKey": "secret)");
    row("line feed in it", "{\"network\": {\"active\": {\"EncryptKey\": \"secret\n\"}}}");
    row("without quotes", R"({"network": {"active": {"EncryptKey": secret}}})");
    row("other end", R"({"network": {"active": {"EncryptKey": "secret" "secret"}}})");
    row("no UTF-8", "{\"network\": {\"active\": {\"EncryptKey\": \"secret\xFF\"}}}");
}

void TestSimulatorRefusal::noReasonQuotesTheKey() {
    QFETCH(QByteArray, patch);
    QVERIFY(!KvaSim_Set(usbSerial, patch.constData()));
    QVERIFY(!lastError().isEmpty());
    QVERIFY2(!lastError().contains("secr"), KvaSim_LastError());
}

void TestSimulatorRefusal::serialNumberOfAnother() {
    QVERIFY(!set(usbSerial, {{"serialNumber", networkSerial}}));
    QCOMPARE(lastError(), QByteArray("serialNumber: is the serial number of another instrument"));
    QVERIFY(set(usbSerial, {{"serialNumber", 77}}));
    std::uint8_t mode = 0;
    QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
    QVERIFY(KvaSim_Unplug(77));
    QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
}

QTEST_GUILESS_MAIN(TestSimulatorRefusal)
#include "tst_simulator_refusal.moc"
