#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QtTest>

#include <climits>

namespace {

QString eventLine(int code, int rawDataCount = 0, int error = 0) {
    return QStringLiteral("outEventCode[%1],outRAWDataCount[%2],outError[%3] \n")
        .arg(code)
        .arg(rawDataCount)
        .arg(error);
}

const QString standby = QStringLiteral("eEventCode_Standby \n");
const QString disConnect = QStringLiteral("eEventCode_DisConnect \n");

Qt::HANDLE loggingThread = nullptr;

void noteThread(QtMsgType, const QMessageLogContext&, const QString&) {
    loggingThread = QThread::currentThreadId();
}

} // namespace

class TestControllerEvents : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void handlesCode_data();
    void handlesCode();
    void logsArguments_data();
    void logsArguments();
    void standbyAfterDisconnect();
    void registersForItsLifetime();
    void failedRegistrationIsKept();
    void handlesNothingAfterItsLifetime();
    void doesNotDisconnectAtItsEnd();
    void comesFromTheLibrarysThread();
    void unplugSetsTheFlag();
    void powerCycleClearsTheFlagAgain();
};

void TestControllerEvents::initTestCase() {
    QVERIFY(!g_deviceDisconnected);
}

void TestControllerEvents::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
    g_deviceDisconnected = false;
}

void TestControllerEvents::handlesCode_data() {
    QTest::addColumn<quint32>("code");
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    QTest::addColumn<QStringList>("furtherLines");
    const auto row = [](quint32 code, bool before, bool after, const QStringList& lines) {
        QTest::addRow("%u, flag %d before", code, before) << code << before << after << lines;
    };
    for (const bool before : {false, true}) {
        row(0, before, false, {standby});
        row(6, before, true, {disConnect});
        for (const quint32 code : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U})
            row(code, before, before, {});
        row(10, before, before, {QStringLiteral("eEventCode Unknown[10] \n")});
        row(11, before, before, {QStringLiteral("eEventCode Unknown[11] \n")});
        row(12, before, before, {QStringLiteral("eEventCode Unknown[12] \n")});
        row(2147483647U, before, before, {QStringLiteral("eEventCode Unknown[2147483647] \n")});
        row(4294967295U, before, before, {QStringLiteral("eEventCode Unknown[-1] \n")});
    }
}

void TestControllerEvents::handlesCode() {
    QFETCH(quint32, code);
    QFETCH(bool, before);
    QFETCH(QStringList, furtherLines);
    g_deviceDisconnected = before;
    const DebugLog log;
    DeviceEventHandler(code, 3, -4);
    QTEST(g_deviceDisconnected.load(), "after");
    QCOMPARE(log.lines(), QStringList(eventLine(static_cast<int>(code), 3, -4)) + furtherLines);
    QCOMPARE(log.others(), QStringList());
}

void TestControllerEvents::logsArguments_data() {
    QTest::addColumn<quint32>("rawDataCount");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("line");
    QTest::newRow("zero") << 0U << 0 << eventLine(3);
    QTest::newRow("highest count") << 2147483647U << 0 << eventLine(3, 2147483647, 0);
    QTest::newRow("count above the signed range") << 4294967295U << 0 << eventLine(3, -1, 0);
    QTest::newRow("result code") << 1U << -9999 << eventLine(3, 1, -9999);
    QTest::newRow("lowest error") << 1U << INT_MIN << eventLine(3, 1, INT_MIN);
    QTest::newRow("highest error") << 1U << INT_MAX << eventLine(3, 1, INT_MAX);
}

void TestControllerEvents::logsArguments() {
    QFETCH(quint32, rawDataCount);
    QFETCH(int, error);
    QFETCH(QString, line);
    const DebugLog log;
    DeviceEventHandler(3, rawDataCount, error);
    QCOMPARE(log.lines(), QStringList(line));
}

void TestControllerEvents::standbyAfterDisconnect() {
    const DebugLog log;
    DeviceEventHandler(6, 0, 0);
    QVERIFY(g_deviceDisconnected);
    DeviceEventHandler(0, 0, 0);
    QVERIFY(!g_deviceDisconnected);
    DeviceEventHandler(12, 0, 0);
    QVERIFY(!g_deviceDisconnected);
    QCOMPARE(log.lines(),
             QStringList({eventLine(6), disConnect, eventLine(0), standby, eventLine(12),
                          QStringLiteral("eEventCode Unknown[12] \n")}));
}

void TestControllerEvents::registersForItsLifetime() {
    const DebugLog log;
    {
        const CKvaSdk_Ctrl controller;
        QCOMPARE(controller.m_lastResult, 0);
        QCOMPARE(
            InstrumentBench::detailedCalls(),
            QStringList(QStringLiteral(R"(KVA_RegisterDeviceEventHandler {"handler":true} 0)")));
    }
    QCOMPARE(
        InstrumentBench::detailedCalls(),
        QStringList({QStringLiteral(R"(KVA_RegisterDeviceEventHandler {"handler":true} 0)"),
                     QStringLiteral(R"(KVA_RegisterDeviceEventHandler {"handler":false} 0)")}));
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
}

void TestControllerEvents::failedRegistrationIsKept() {
    QVERIFY(InstrumentBench::answer("KVA_RegisterDeviceEventHandler", -9986));
    CKvaSdk_Ctrl controller;
    QCOMPARE(controller.m_lastResult, -9986);
    QVERIFY(InstrumentBench::connect(controller));
}

void TestControllerEvents::handlesNothingAfterItsLifetime() {
    const DebugLog log;
    {
        const CKvaSdk_Ctrl controller;
        KvaSim_EmitEvent(6, 0, 0);
        KvaSim_WaitForEvents();
        QVERIFY(g_deviceDisconnected);
    }
    g_deviceDisconnected = false;
    KvaSim_EmitEvent(6, 0, 0);
    KvaSim_WaitForEvents();
    QVERIFY(!g_deviceDisconnected);
    QCOMPARE(log.lines(), QStringList({eventLine(6), disConnect}));
}

void TestControllerEvents::doesNotDisconnectAtItsEnd() {
    {
        CKvaSdk_Ctrl controller;
        QVERIFY(InstrumentBench::connect(controller));
    }
    QCOMPARE(InstrumentBench::calls(),
             QStringList(QStringLiteral("KVA_RegisterDeviceEventHandler")));
    KVA_DEVICEINFO info = {};
    QCOMPARE(KVA_GetDeviceInfo(&info), 0);
}

void TestControllerEvents::comesFromTheLibrarysThread() {
    const CKvaSdk_Ctrl controller;
    loggingThread = nullptr;
    const QtMessageHandler previous = qInstallMessageHandler(noteThread);
    KvaSim_EmitEvent(6, 0, 0);
    KvaSim_WaitForEvents();
    qInstallMessageHandler(previous);
    QVERIFY(loggingThread != nullptr);
    QVERIFY(loggingThread != QThread::currentThreadId());
    QVERIFY(g_deviceDisconnected);
}

void TestControllerEvents::unplugSetsTheFlag() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(KvaSim_Unplug(InstrumentBench::serialNumber));
    QTRY_VERIFY(g_deviceDisconnected);
    KvaSim_WaitForEvents();
    QVERIFY(controller.m_connected);
    QCOMPARE(log.lines(), QStringList({eventLine(6), disConnect}));
    QVERIFY(KvaSim_Plug(InstrumentBench::serialNumber));
    QTRY_VERIFY(!g_deviceDisconnected);
    KvaSim_WaitForEvents();
    QCOMPARE(log.lines(), QStringList({eventLine(6), disConnect, eventLine(0), standby}));
}

void TestControllerEvents::powerCycleClearsTheFlagAgain() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(KvaSim_PowerCycle(InstrumentBench::serialNumber));
    KvaSim_WaitForEvents();
    QVERIFY(!g_deviceDisconnected);
    QVERIFY(controller.m_connected);
    QCOMPARE(log.lines(), QStringList({eventLine(6), disConnect, eventLine(0), standby}));
}

QTEST_GUILESS_MAIN(TestControllerEvents)
#include "tst_controller_events.moc"
