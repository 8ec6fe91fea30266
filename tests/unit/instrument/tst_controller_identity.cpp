#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QtTest>

class TestControllerIdentity : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void formatsTexts_data();
    void formatsTexts();
    void readsTheRecord();
    void failureEmptiesTexts_data();
    void failureEmptiesTexts();
    void failsWithoutConnection();
};

void TestControllerIdentity::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerIdentity::formatsTexts_data() {
    QTest::addColumn<QByteArray>("device");
    QTest::addColumn<QString>("serialNo");
    QTest::addColumn<QString>("firmVersion");
    QTest::addColumn<QString>("macAddress");
    const auto row = [](const char* name, const char* device, const char* serialNo,
                        const char* firmVersion, const char* macAddress) {
        QTest::newRow(name) << QByteArray(device) << QString::fromLatin1(serialNo)
                            << QString::fromLatin1(firmVersion) << QString::fromLatin1(macAddress);
    };
    row("padded", R"({"serialNumber":1234567,"firmware":[1,2,3],"macAddress":"02:0a:bc:0d:ef:09"})",
        "01234567", "1.02.0003", "02:0A:BC:0D:EF:09");
    row("zero", R"({"serialNumber":0,"firmware":[0,0,0],"macAddress":"00:00:00:00:00:00"})",
        "00000000", "0.00.0000", "00:00:00:00:00:00");
    row("full width",
        R"({"serialNumber":12345678,"firmware":[12,34,5678],"macAddress":"ff:fe:fd:fc:fb:fa"})",
        "12345678", "12.34.5678", "FF:FE:FD:FC:FB:FA");
    row("never cut",
        R"({"serialNumber":123456789,"firmware":[123,456,78901],"macAddress":"01:23:45:67:89:ab"})",
        "123456789", "123.456.78901", "01:23:45:67:89:AB");
    row("signs",
        R"({"serialNumber":2147483647,"firmware":[4294967295,-1,-2],
            "macAddress":"10:20:30:40:50:60"})",
        "2147483647", "4294967295.-1.-002", "10:20:30:40:50:60");
    // The field is unsigned, the format is that of a signed number.
    row("serial number above the signed range",
        R"({"serialNumber":4294967295,"firmware":[1,0,0],"macAddress":"00:00:00:00:00:01"})",
        "-0000001", "1.00.0000", "00:00:00:00:00:01");
}

void TestControllerIdentity::formatsTexts() {
    QFETCH(QByteArray, device);
    QVERIFY2(InstrumentBench::set(R"({"device":)" + device + '}'), KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(controller.GetDeviceInfo());
    QTEST(controller.m_serialNo, "serialNo");
    QTEST(controller.m_firmVersion, "firmVersion");
    QTEST(controller.m_macAddress, "macAddress");
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral("KVA_GetDeviceInfo {} 0")));
}

void TestControllerIdentity::readsTheRecord() {
    QVERIFY2(InstrumentBench::set(R"({"device": {"serialNumber": 16909060, "firmware": [1, 2, 3],
        "macAddress": "a1:a2:a3:a4:a5:a6", "reserved1": {"fill": 17}, "reserved2": {"fill": 34}}})"),
             KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetDeviceInfo());
    QCOMPARE(InstrumentBench::bytesOf(controller.m_deviceInfo),
             QByteArray::fromHex("04030201010000000200000003000000" + QByteArray("11").repeated(8) +
                                 "a1a2a3a4a5a6" + QByteArray("22").repeated(10)));
}

void TestControllerIdentity::failureEmptiesTexts_data() {
    QTest::addColumn<int>("result");
    QTest::newRow("error") << -9999;
    QTest::newRow("information") << -9993;
    QTest::newRow("not equal") << -9794;
    QTest::newRow("-1") << -1;
}

void TestControllerIdentity::failureEmptiesTexts() {
    QFETCH(int, result);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetDeviceInfo());
    QVERIFY(!controller.m_serialNo.isEmpty());
    QVERIFY2(InstrumentBench::answer("KVA_GetDeviceInfo", result), KvaSim_LastError());
    const DebugLog log;
    QVERIFY(!controller.GetDeviceInfo());
    QCOMPARE(controller.m_serialNo, QString());
    QCOMPARE(controller.m_firmVersion, QString());
    QCOMPARE(controller.m_macAddress, QString());
    QCOMPARE(controller.m_lastResult, result);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("Failed to read Firm data. \n")));
    QCOMPARE(log.others(), QStringList());
}

void TestControllerIdentity::failsWithoutConnection() {
    CKvaSdk_Ctrl controller;
    QVERIFY(!controller.GetDeviceInfo());
    QCOMPARE(controller.m_lastResult, -9998);
}

QTEST_GUILESS_MAIN(TestControllerIdentity)
#include "tst_controller_identity.moc"
