#include "tests/unit/instrument/ControllerFixture.h"

#include <climits>

namespace {

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
    QByteArray device;
    QStringList texts; ///< serial number, firmware, MAC address
};

const IdentityRow identities[] = {
    {"padded",
     R"({"serialNumber":1234567,"firmware":[1,2,3],"macAddress":"02:0a:bc:0d:ef:09"})",
     {"01234567", "1.02.0003", "02:0A:BC:0D:EF:09"}},
    {"zero",
     R"({"serialNumber":0,"firmware":[0,0,0],"macAddress":"00:00:00:00:00:00"})",
     {"00000000", "0.00.0000", "00:00:00:00:00:00"}},
    {"full width",
     R"({"serialNumber":12345678,"firmware":[12,34,5678],"macAddress":"ff:fe:fd:fc:fb:fa"})",
     {"12345678", "12.34.5678", "FF:FE:FD:FC:FB:FA"}},
    {"never cut",
     R"({"serialNumber":123456789,"firmware":[123,456,78901],"macAddress":"01:23:45:67:89:ab"})",
     {"123456789", "123.456.78901", "01:23:45:67:89:AB"}},
    {"signs",
     R"({"serialNumber":2147483647,"firmware":[4294967295,-1,-2],
         "macAddress":"10:20:30:40:50:60"})",
     {"2147483647", "4294967295.-1.-002", "10:20:30:40:50:60"}},
    // The field is unsigned, the format is that of a signed number.
    {"serial number above the signed range",
     R"({"serialNumber":4294967295,"firmware":[1,0,0],"macAddress":"00:00:00:00:00:01"})",
     {"-0000001", "1.00.0000", "00:00:00:00:00:01"}},
};

QStringList identity(const CKvaSdk_Ctrl& controller) {
    return {controller.m_serialNo, controller.m_firmVersion, controller.m_macAddress};
}

const NumberRow failures[] = {
    {"error", -9999}, {"information", -9993}, {"not equal", -9794}, {"-1", -1}};

} // namespace

class TestControllerConnection : public QObject {
    Q_OBJECT
private Q_SLOTS:
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

    void disconnects() {
        ConnectedController controller;
        QVERIFY(controller.Disconnect());
        QVERIFY(!controller.m_connected);
        QCOMPARE(controller.left(), QStringList({"0", "KVA_Disconnect {} 0"}));
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
        TestBench::set(R"({"device":)" + row.device + '}');
        ConnectedController controller;
        QVERIFY(controller.GetDeviceInfo());
        QCOMPARE(identity(controller), row.texts);
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

    void failureEmptiesIdentity_data() { addRows(failures); }
    void failureEmptiesIdentity() {
        const auto row = rowOf<NumberRow>();
        const int result = static_cast<int>(row.value);
        ConnectedController controller;
        QVERIFY(controller.GetDeviceInfo());
        QVERIFY(!identity(controller).contains(""));
        TestBench::answer("KVA_GetDeviceInfo", result);
        QVERIFY(!controller.GetDeviceInfo());
        QCOMPARE(identity(controller), QStringList({"", "", ""}));
        QCOMPARE(controller.m_lastResult, result);
        QCOMPARE(controller.log.lines(), QStringList("Failed to read Firm data. \n"));
    }

    void readsNoIdentityWithoutConnection() {
        CKvaSdk_Ctrl controller;
        QVERIFY(!controller.GetDeviceInfo());
        QCOMPARE(controller.m_lastResult, -9998);
    }
};

TEST_CLASS(TestControllerConnection)
#include "tst_controller_connection.moc"
