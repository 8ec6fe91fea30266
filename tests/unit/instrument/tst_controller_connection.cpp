#include "tests/unit/instrument/ControllerFixture.h"

#include <QThread>

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

const QString conectError = "conect error \n";
const QString diconectError = "diconect error \n";
const QString diconectAlready = "diconect already \n";

/** What there was before a connection is asked for. */
enum Before { NothingListed, Listed, ListLost, Connected, Refused, Unplugged };

/** A connection asked for. */
struct ConnectRow {
    const char* name;
    Before before;
    int index;
    quint32 wait;
    bool isConnected; ///< afterwards
    int lastResult;   ///< 4 before
    QString call;     ///< with its result; empty: none
};

QString connectCall(quint32 wait, int result) {
    const QString call = R"(KVA_Connect {"port":{"name":"USB","type":1},"wait":%1} %2)";
    return call.arg(wait).arg(result);
}

const ConnectRow connections[] = {
    {"0", Listed, 0, 0, true, 0, connectCall(0, 0)},
    {"10", Listed, 0, 10, true, 0, connectCall(10, 0)},
    {"highest", Listed, 0, UINT_MAX, true, 0, connectCall(UINT_MAX, 0)},
    {"nothing enumerated, 0", NothingListed, 0, 10, false, 4, ""},
    {"nothing enumerated, -1", NothingListed, -1, 10, false, 4, ""},
    {"one entry, 1", Listed, 1, 10, false, 4, ""},
    {"one entry, -1", Listed, -1, 10, false, 4, ""},
    {"one entry, 99", Listed, 99, 10, false, 4, ""},
    {"one entry, highest", Listed, INT_MAX, 10, false, 4, ""},
    {"one entry, lowest", Listed, INT_MIN, 10, false, 4, ""},
    {"entry of an earlier list", ListLost, 0, 10, false, 4, ""},
    {"unplugged", Unplugged, 0, 10, false, -9994, connectCall(10, -9994)},
    {"refused while connected", Refused, 0, 10, true, -9996, connectCall(10, -9996)},
    {"connected", Connected, 0, 10, true, -9995, connectCall(10, -9995)},
};

/** What the instrument says of itself, and the texts that become of it. */
struct IdentityRow {
    const char* name;
    const char* serialNumber;
    const char* firmware;
    const char* macAddress;
    QString texts; ///< serial number, firmware, MAC address
};

const IdentityRow identities[] = {
    {"padded", "1234567", "1,2,3", "02:0a:bc:0d:ef:09", "01234567|1.02.0003|02:0A:BC:0D:EF:09"},
    {"zero", "0", "0,0,0", "00:00:00:00:00:00", "00000000|0.00.0000|00:00:00:00:00:00"},
    {"full width", "12345678", "12,34,5678", "ff:fe:fd:fc:fb:fa",
     "12345678|12.34.5678|FF:FE:FD:FC:FB:FA"},
    {"never cut", "123456789", "123,456,78901", "01:23:45:67:89:ab",
     "123456789|123.456.78901|01:23:45:67:89:AB"},
    {"signs", "2147483647", "4294967295,-1,-2", "10:20:30:40:50:60",
     "2147483647|4294967295.-1.-002|10:20:30:40:50:60"},
    // The field is unsigned, the format is that of a signed number.
    {"serial number above the signed range", "4294967295", "1,0,0", "00:00:00:00:00:01",
     "-0000001|1.00.0000|00:00:00:00:00:01"},
};

QStringList identity(const CKvaSdk_Ctrl& controller) {
    return {controller.m_serialNo, controller.m_firmVersion, controller.m_macAddress};
}

} // namespace

class TestControllerConnection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(!isSetAtTheStart); }
    void init() { TestBench::load(); }
    void connects_data() { addRows(connections); }

    /** Fails without a call to the library when there is no such entry. */
    void connects() {
        const auto row = rowOf<ConnectRow>();
        LoggedController controller;
        if (row.before != NothingListed)
            QVERIFY(controller.GetDevicePortList());
        if (row.before == ListLost) {
            TestBench::answer("KVA_GetDevicePortList");
            QVERIFY(!controller.GetDevicePortList());
        }
        if (row.before == Connected || row.before == Refused)
            QVERIFY(controller.Connect(0, 10));
        if (row.before == Refused)
            TestBench::answer("KVA_Connect", -9996);
        if (row.before == Unplugged)
            TestBench::unplug();
        controller.forget();
        QCOMPARE(controller.Connect(row.index, row.wait), row.lastResult == 0);
        QCOMPARE(controller.m_connected, row.isConnected);
        QStringList expected(QString::number(row.lastResult));
        if (row.lastResult != 0)
            expected += conectError;
        if (!row.call.isEmpty())
            expected += row.call;
        QCOMPARE(controller.left(), expected);
    }

    void connectsToTheChosenEntry() {
        QJsonObject second = TestBench::instrument(2);
        // The library compares every byte of the entry, those behind the name too.
        const QString name = "6100ff" + QString(62, '0') + "2501";
        second["port"] = QJsonObject{{"type", 9}, {"name", QJsonObject{{"hex", name}}}};
        TestBench::load({TestBench::instrument(1), second, TestBench::instrument(3)});
        CKvaSdk_Ctrl controller;
        QVERIFY(controller.GetDevicePortList());
        QVERIFY(controller.Connect(1, 10));
        QVERIFY(controller.GetDeviceInfo());
        QCOMPARE(controller.m_serialNo, "00000002");
    }

    void disconnectWithoutConnection() {
        LoggedController controller;
        QVERIFY(controller.GetDevicePortList());
        controller.forget();
        QVERIFY(!controller.Disconnect());
        QCOMPARE(controller.left(), QStringList({"4", diconectAlready}));
        QVERIFY(controller.Connect(0, 10));
        QVERIFY(controller.Disconnect());
        controller.forget();
        QVERIFY(!controller.Disconnect());
        QCOMPARE(controller.left(), QStringList({"4", diconectAlready}));
    }

    void failedDisconnectCanBeRepeated() {
        ConnectedController controller;
        TestBench::answer("KVA_Disconnect", -9997, 1);
        QVERIFY(!controller.Disconnect());
        QVERIFY(controller.m_connected);
        QCOMPARE(controller.m_lastResult, -9997);
        QVERIFY(controller.Disconnect());
        QVERIFY(!controller.m_connected);
        QCOMPARE(controller.left(), QStringList({"0", diconectError, "KVA_Disconnect {} -9997",
                                                 "KVA_Disconnect {} 0"}));
    }

    void lostConnectionKeepsConnected() {
        ConnectedController controller;
        TestBench::unplug();
        QVERIFY(controller.m_connected);
        QVERIFY(!controller.GetDeviceInfo());
        QCOMPARE(controller.m_lastResult, -9994);
        TestBench::plug();
        QVERIFY(controller.m_connected);
        QVERIFY(controller.Connect(0, 10));
        QVERIFY(controller.m_connected);
        QVERIFY(controller.GetDeviceInfo());
    }

    void formatsIdentity_data() { addRows(identities); }
    void formatsIdentity() {
        const auto row = rowOf<IdentityRow>();
        const QString patch =
            R"({"device": {"serialNumber": %1, "firmware": [%2], "macAddress": "%3"}})";
        TestBench::set(patch.arg(row.serialNumber, row.firmware, row.macAddress).toUtf8());
        ConnectedController controller;
        QVERIFY(controller.GetDeviceInfo());
        QCOMPARE(identity(controller).join('|'), row.texts);
        QCOMPARE(controller.left(), QStringList({"0", "KVA_GetDeviceInfo {} 0"}));
    }

    void readsTheIdentityRecord() {
        TestBench::set(R"({"device": {"serialNumber": 16909060, "firmware": [1, 2, 3],
        "macAddress": "a1:a2:a3:a4:a5:a6", "reserved1": {"fill": 17}, "reserved2": {"fill": 34}}})");
        ConnectedController controller;
        QVERIFY(controller.GetDeviceInfo());
        QCOMPARE(TestBench::bytesOf(controller.m_deviceInfo).toHex(),
                 "04030201010000000200000003000000" + QByteArray("11").repeated(8) +
                     "a1a2a3a4a5a6" + QByteArray("22").repeated(10));
    }
    void failureEmptiesIdentity() {
        ConnectedController controller;
        QVERIFY(controller.GetDeviceInfo());
        QVERIFY(!identity(controller).contains(""));
        TestBench::answer("KVA_GetDeviceInfo");
        QVERIFY(!controller.GetDeviceInfo());
        QCOMPARE(identity(controller), QStringList({"", "", ""}));
    }

    void handlesEvent_data() { addRows(events()); }
    void handlesEvent() {
        const auto row = rowOf<EventRow>();
        g_deviceDisconnected = row.before;
        const DebugLog log;
        DeviceEventHandler(row.code, row.rawDataCount, row.error);
        QCOMPARE(g_deviceDisconnected.load(), row.after);
        QCOMPARE(log.lines(), row.lines);
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
};

TEST_CLASS(TestControllerConnection)
#include "tst_controller_connection.moc"
