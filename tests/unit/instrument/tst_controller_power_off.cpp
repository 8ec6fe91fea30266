#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QtTest>

class TestControllerPowerOff : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void readsMode_data();
    void readsMode();
    void failsToRead();
    void writesMode_data();
    void writesMode();
    void failsToWrite();
};

void TestControllerPowerOff::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerPowerOff::readsMode_data() {
    QTest::addColumn<int>("mode");
    for (const int mode : {0, 1, 2, 3, 4, 127, 128, 255})
        QTest::addRow("%d", mode) << mode;
}

void TestControllerPowerOff::readsMode() {
    QFETCH(int, mode);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::set(R"({"powerOffMode": )" + QByteArray::number(mode) + '}'));
    uint8_t read = 77;
    const DebugLog log;
    QVERIFY(controller.GetShutdownTime(read));
    QCOMPARE(static_cast<int>(read), mode);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("KVA_GetShutdownTime() success[mode:%1].\n").arg(mode)));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral("KVA_GetShutdownTime {} 0")));
}

void TestControllerPowerOff::failsToRead() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::answer("KVA_GetShutdownTime", -9796));
    uint8_t mode = 255;
    const DebugLog log;
    QVERIFY(!controller.GetShutdownTime(mode));
    QCOMPARE(static_cast<int>(mode), 255);
    mode = 1;
    QVERIFY(!controller.GetShutdownTime(mode));
    QCOMPARE(static_cast<int>(mode), 1);
    QCOMPARE(controller.m_lastResult, -9796);
    QCOMPARE(log.lines(), QStringList({QStringLiteral("KVA_GetShutdownTime() failed[mode:255].\n"),
                                       QStringLiteral("KVA_GetShutdownTime() failed[mode:1].\n")}));
    QCOMPARE(log.others(), QStringList());
}

void TestControllerPowerOff::writesMode_data() {
    readsMode_data();
}

void TestControllerPowerOff::writesMode() {
    QFETCH(int, mode);
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(controller.SetShutdownTime(static_cast<uint8_t>(mode)));
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("KVA_SetShutdownTime() success[mode:%1].\n").arg(mode)));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList(QStringLiteral(R"(KVA_SetShutdownTime {"mode":%1} 0)").arg(mode)));
    uint8_t held = 77;
    QCOMPARE(KVA_GetShutdownTime(&held), 0);
    QCOMPARE(static_cast<int>(held), mode);
}

void TestControllerPowerOff::failsToWrite() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::answer("KVA_SetShutdownTime", -9799));
    const DebugLog log;
    QVERIFY(!controller.SetShutdownTime(3));
    QCOMPARE(controller.m_lastResult, -9799);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("KVA_SetShutdownTime() failed[mode:3].\n")));
    QCOMPARE(log.others(), QStringList());
    uint8_t held = 77;
    QCOMPARE(KVA_GetShutdownTime(&held), 0);
    QCOMPARE(static_cast<int>(held), 2);
}

QTEST_GUILESS_MAIN(TestControllerPowerOff)
#include "tst_controller_power_off.moc"
