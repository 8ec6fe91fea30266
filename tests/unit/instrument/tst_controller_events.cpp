#include "tests/unit/instrument/ControllerFixture.h"

#include <climits>

namespace {

QString eventLine(int code, int rawDataCount = 0, int error = 0) {
    return QString("outEventCode[%1],outRAWDataCount[%2],outError[%3] \n")
        .arg(code)
        .arg(rawDataCount)
        .arg(error);
}

const QString standby = "eEventCode_Standby \n";
const QString disConnect = "eEventCode_DisConnect \n";

const bool isSetAtTheStart = g_deviceDisconnected;

struct EventRow {
    QByteArray name;
    quint32 code;
    quint32 rawDataCount;
    int error;
    bool before; ///< the flag
    bool after;
    QStringList lines;
};

QVector<EventRow> events() {
    QVector<EventRow> rows;
    const auto arguments = [&](const char* name, quint32 rawDataCount, int error,
                               const QString& line) {
        rows.append({name, 3, rawDataCount, error, false, false, QStringList(line)});
    };
    arguments("zero", 0, 0, eventLine(3));
    arguments("highest count", 2147483647U, 0, eventLine(3, 2147483647, 0));
    arguments("count above the signed range", 4294967295U, 0, eventLine(3, -1, 0));
    arguments("result code", 1, -9999, eventLine(3, 1, -9999));
    arguments("lowest error", 1, INT_MIN, eventLine(3, 1, INT_MIN));
    arguments("highest error", 1, INT_MAX, eventLine(3, 1, INT_MAX));
    for (const bool before : {false, true}) {
        const auto code = [&](quint32 value, bool after, const QStringList& furtherLines) {
            const QString name = QString("%1, flag %2 before").arg(value).arg(before ? 1 : 0);
            const QStringList lines{eventLine(static_cast<int>(value), 3, -4)};
            rows.append({name.toLatin1(), value, 3, -4, before, after, lines + furtherLines});
        };
        code(0, false, {standby});
        code(6, true, {disConnect});
        for (const quint32 value : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U})
            code(value, before, {});
        for (const quint32 value : {10U, 11U, 12U, 2147483647U})
            code(value, before, {QString("eEventCode Unknown[%1] \n").arg(value)});
        code(4294967295U, before, {"eEventCode Unknown[-1] \n"});
    }
    return rows;
}

Qt::HANDLE loggingThread = nullptr;

void noteThread(QtMsgType, const QMessageLogContext&, const QString&) {
    loggingThread = QThread::currentThreadId();
}

} // namespace

class TestControllerEvents : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(!isSetAtTheStart); }
    void init() { TestBench::load(); }
    void handlesEvent_data() { addRows(events()); }
    void handlesEvent() {
        const auto row = rowOf<EventRow>();
        g_deviceDisconnected = row.before;
        const DebugLog log;
        DeviceEventHandler(row.code, row.rawDataCount, row.error);
        QCOMPARE(g_deviceDisconnected.load(), row.after);
        QCOMPARE(log.lines(), row.lines);
    }

    void standbyAfterDisconnect() {
        const DebugLog log;
        DeviceEventHandler(6, 0, 0);
        QVERIFY(g_deviceDisconnected);
        DeviceEventHandler(0, 0, 0);
        QVERIFY(!g_deviceDisconnected);
        DeviceEventHandler(12, 0, 0);
        QVERIFY(!g_deviceDisconnected);
        QCOMPARE(log.lines(), QStringList({eventLine(6), disConnect, eventLine(0), standby,
                                           eventLine(12), "eEventCode Unknown[12] \n"}));
    }

    void registersForItsLifetime() {
        const QString with = R"(KVA_RegisterDeviceEventHandler {"handler":true} 0)";
        const QString without = R"(KVA_RegisterDeviceEventHandler {"handler":false} 0)";
        const DebugLog log;
        {
            const CKvaSdk_Ctrl controller;
            QCOMPARE(controller.m_lastResult, 0);
            QCOMPARE(TestBench::detailedCalls(), QStringList(with));
        }
        QCOMPARE(TestBench::detailedCalls(), QStringList({with, without}));
        QCOMPARE(log.lines(), QStringList());
    }

    void failedRegistrationIsKept() {
        TestBench::answer("KVA_RegisterDeviceEventHandler", -9986);
        CKvaSdk_Ctrl controller;
        QCOMPARE(controller.m_lastResult, -9986);
        QVERIFY(controller.GetDevicePortList());
        QVERIFY(controller.Connect(0, 10));
    }

    void handlesNothingAfterItsLifetime() {
        const DebugLog log;
        {
            const CKvaSdk_Ctrl controller;
            TestBench::emitEvent(6);
            QVERIFY(g_deviceDisconnected);
        }
        g_deviceDisconnected = false;
        TestBench::emitEvent(6);
        QVERIFY(!g_deviceDisconnected);
        QCOMPARE(log.lines(), QStringList({eventLine(6), disConnect}));
    }

    void doesNotDisconnectAtItsEnd() {
        { const ConnectedController controller; }
        QCOMPARE(TestBench::calls(), QStringList("KVA_RegisterDeviceEventHandler"));
        KVA_DEVICEINFO info = {};
        QCOMPARE(KVA_GetDeviceInfo(&info), 0);
    }

    void comesFromTheLibrarysThread() {
        const CKvaSdk_Ctrl controller;
        loggingThread = nullptr;
        const QtMessageHandler previous = qInstallMessageHandler(noteThread);
        TestBench::emitEvent(6);
        qInstallMessageHandler(previous);
        QVERIFY(loggingThread != nullptr);
        QVERIFY(loggingThread != QThread::currentThreadId());
        QVERIFY(g_deviceDisconnected);
    }

    void unplugSetsTheFlag() {
        ConnectedController controller;
        TestBench::unplug();
        QVERIFY(g_deviceDisconnected);
        QVERIFY(controller.m_connected);
        QCOMPARE(controller.log.lines(), QStringList({eventLine(6), disConnect}));
        TestBench::plug();
        QVERIFY(!g_deviceDisconnected);
        QCOMPARE(controller.log.lines(),
                 QStringList({eventLine(6), disConnect, eventLine(0), standby}));
    }

    void powerCycleClearsTheFlagAgain() {
        ConnectedController controller;
        TestBench::powerCycle();
        QVERIFY(!g_deviceDisconnected);
        QVERIFY(controller.m_connected);
        QCOMPARE(controller.log.lines(),
                 QStringList({eventLine(6), disConnect, eventLine(0), standby}));
    }
};

TEST_CLASS(TestControllerEvents)
#include "tst_controller_events.moc"
