#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QtTest>

#include <climits>

namespace {

const QString conectError = QStringLiteral("conect error \n");
const QString diconectError = QStringLiteral("diconect error \n");
const QString diconectAlready = QStringLiteral("diconect already \n");

} // namespace

class TestControllerConnection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void connects();
    void connectsToTheChosenEntry();
    void passesTheWait_data();
    void passesTheWait();
    void refusesIndexOutsideTheList_data();
    void refusesIndexOutsideTheList();
    void refusesIndexOfAnEarlierList();
    void failedConnectStaysNotConnected();
    void failedConnectKeepsConnected();
    void secondConnectGoesToTheLibrary();
    void disconnects();
    void disconnectWithoutConnection();
    void failedDisconnectCanBeRepeated();
    void lostConnectionKeepsConnected();
    void connectsAfterALoss();
};

void TestControllerConnection::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerConnection::connects() {
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY(controller.Connect(0, 10));
    QVERIFY(controller.m_connected);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(
        InstrumentBench::detailedCalls(),
        QStringList(QStringLiteral(R"(KVA_Connect {"port":{"name":"USB","type":1},"wait":10} 0)")));
}

void TestControllerConnection::connectsToTheChosenEntry() {
    const QByteArray name = "6100ff" + QByteArray(62, '0') + "2501";
    QVERIFY2(InstrumentBench::load(R"({"serialNumber": 1}, {"serialNumber": 2,
        "port": {"type": 9, "name": {"hex": ")" +
                                   name + R"("}}}, {"serialNumber": 3})"),
             KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    // The library compares every byte of the entry, those behind the name too.
    QVERIFY(controller.Connect(1, 10));
    QVERIFY(controller.GetDeviceInfo());
    QCOMPARE(controller.m_serialNo, QStringLiteral("00000002"));
}

void TestControllerConnection::passesTheWait_data() {
    QTest::addColumn<quint32>("wait");
    QTest::newRow("0") << 0U;
    QTest::newRow("10") << 10U;
    QTest::newRow("highest") << UINT_MAX;
}

void TestControllerConnection::passesTheWait() {
    QFETCH(quint32, wait);
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    KvaSim_ClearCallLog();
    QVERIFY(controller.Connect(0, wait));
    QCOMPARE(
        InstrumentBench::detailedCalls(),
        QStringList(QStringLiteral(R"(KVA_Connect {"port":{"name":"USB","type":1},"wait":%1} 0)")
                        .arg(wait)));
}

void TestControllerConnection::refusesIndexOutsideTheList_data() {
    QTest::addColumn<bool>("enumerated");
    QTest::addColumn<int>("index");
    QTest::newRow("nothing enumerated, 0") << false << 0;
    QTest::newRow("nothing enumerated, -1") << false << -1;
    QTest::newRow("one entry, 1") << true << 1;
    QTest::newRow("one entry, -1") << true << -1;
    QTest::newRow("one entry, 99") << true << 99;
    QTest::newRow("one entry, highest") << true << INT_MAX;
    QTest::newRow("one entry, lowest") << true << INT_MIN;
}

void TestControllerConnection::refusesIndexOutsideTheList() {
    QFETCH(bool, enumerated);
    QFETCH(int, index);
    CKvaSdk_Ctrl controller;
    if (enumerated)
        QVERIFY(controller.GetDevicePortList());
    KvaSim_ClearCallLog();
    controller.m_lastResult = 4;
    const DebugLog log;
    QVERIFY(!controller.Connect(index, 10));
    QVERIFY(!controller.m_connected);
    QCOMPARE(log.lines(), QStringList(conectError));
    QCOMPARE(InstrumentBench::calls(), QStringList());
    QCOMPARE(controller.m_lastResult, 4);
}

void TestControllerConnection::refusesIndexOfAnEarlierList() {
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QVERIFY(InstrumentBench::answer("KVA_GetDevicePortList", -9999));
    QVERIFY(!controller.GetDevicePortList());
    KvaSim_ClearCallLog();
    QVERIFY(!controller.Connect(0, 10));
    QCOMPARE(InstrumentBench::calls(), QStringList());
}

void TestControllerConnection::failedConnectStaysNotConnected() {
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QVERIFY(KvaSim_Unplug(InstrumentBench::serialNumber));
    const DebugLog log;
    QVERIFY(!controller.Connect(0, 10));
    QVERIFY(!controller.m_connected);
    QCOMPARE(controller.m_lastResult, -9994);
    QCOMPARE(log.lines(), QStringList(conectError));
}

void TestControllerConnection::failedConnectKeepsConnected() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::answer("KVA_Connect", -9996));
    const DebugLog log;
    QVERIFY(!controller.Connect(0, 10));
    QVERIFY(controller.m_connected);
    QCOMPARE(controller.m_lastResult, -9996);
    QCOMPARE(log.lines(), QStringList(conectError));
}

void TestControllerConnection::secondConnectGoesToTheLibrary() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(!controller.Connect(0, 10));
    QVERIFY(controller.m_connected);
    QCOMPARE(controller.m_lastResult, -9995);
    QCOMPARE(InstrumentBench::calls(), QStringList(QStringLiteral("KVA_Connect")));
    QCOMPARE(log.lines(), QStringList(conectError));
}

void TestControllerConnection::disconnects() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(controller.Disconnect());
    QVERIFY(!controller.m_connected);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::detailedCalls(), QStringList(QStringLiteral("KVA_Disconnect {} 0")));
}

void TestControllerConnection::disconnectWithoutConnection() {
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    KvaSim_ClearCallLog();
    controller.m_lastResult = 4;
    const DebugLog log;
    QVERIFY(!controller.Disconnect());
    QCOMPARE(controller.m_lastResult, 4);
    QVERIFY(controller.Connect(0, 10));
    QVERIFY(controller.Disconnect());
    QVERIFY(!controller.Disconnect());
    QCOMPARE(log.lines(), QStringList({diconectAlready, diconectAlready}));
    QCOMPARE(InstrumentBench::calls(),
             QStringList({QStringLiteral("KVA_Connect"), QStringLiteral("KVA_Disconnect")}));
}

void TestControllerConnection::failedDisconnectCanBeRepeated() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(InstrumentBench::answer("KVA_Disconnect", -9997, 1));
    const DebugLog log;
    QVERIFY(!controller.Disconnect());
    QVERIFY(controller.m_connected);
    QCOMPARE(controller.m_lastResult, -9997);
    QVERIFY(controller.Disconnect());
    QVERIFY(!controller.m_connected);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList(diconectError));
    QCOMPARE(InstrumentBench::detailedCalls(),
             QStringList({QStringLiteral("KVA_Disconnect {} -9997"),
                          QStringLiteral("KVA_Disconnect {} 0")}));
}

void TestControllerConnection::lostConnectionKeepsConnected() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(KvaSim_Unplug(InstrumentBench::serialNumber));
    KvaSim_WaitForEvents();
    QVERIFY(controller.m_connected);
    QVERIFY(!controller.GetDeviceInfo());
    QCOMPARE(controller.m_lastResult, -9994);
    QVERIFY(controller.m_connected);
}

void TestControllerConnection::connectsAfterALoss() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(KvaSim_Unplug(InstrumentBench::serialNumber));
    QVERIFY(KvaSim_Plug(InstrumentBench::serialNumber));
    KvaSim_WaitForEvents();
    QVERIFY(controller.m_connected);
    QVERIFY(controller.Connect(0, 10));
    QVERIFY(controller.m_connected);
    QVERIFY(controller.GetDeviceInfo());
}

QTEST_GUILESS_MAIN(TestControllerConnection)
#include "tst_controller_connection.moc"
