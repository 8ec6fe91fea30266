#include "tests/unit/instrument/ControllerFixture.h"

#include <algorithm>
#include <climits>

namespace {

/** @param name  JSON: a text, or {"hex": ...} with all bytes of the field */
QJsonObject instrumentAt(int serialNumber, qint64 portType, const QJsonValue& name) {
    return {{"serialNumber", serialNumber},
            {"port", QJsonObject{{"type", portType}, {"name", name}}}};
}

QJsonArray usbInstruments(int count) {
    QJsonArray instruments;
    for (int serialNumber = 1; serialNumber <= count; ++serialNumber)
        instruments.append(instrumentAt(serialNumber, 1, "USB"));
    return instruments;
}

bool hasOnlyZeros(const KVA_PORTINFO* ports, int count) {
    return std::all_of(ports, ports + count, [](const KVA_PORTINFO& port) {
        return TestBench::bytesOf(port) == QByteArray(sizeof port, '\0');
    });
}

/** Whether nothing is left of an earlier list. */
bool hasNoList(const CKvaSdk_Ctrl& controller) {
    return controller.m_deviceCount == 0 && controller.m_ports.empty() &&
           controller.m_deviceNameList.isEmpty() && hasOnlyZeros(controller.m_portList, 100);
}

struct TextRow {
    const char* name;
    int serialNumber;
    qint64 portType;
    QJsonValue portName;
    QString text;
};

const QString address = "192.168.0.10";

const TextRow texts[] = {
    {"USB, seven digits", 1234567, 1, "USB", "VARNE-1(USB,Serial#01234567)"},
    {"USB, the port's name is not shown", 1, 1, "hub-3", "VARNE-1(USB,Serial#00000001)"},
    {"USB, eight digits", 12345678, 1, "USB", "VARNE-1(USB,Serial#12345678)"},
    {"USB, nine digits", 123456789, 1, "USB", "VARNE-1(USB,Serial#123456789)"},
    {"USB, highest", INT_MAX, 1, "USB", "VARNE-1(USB,Serial#2147483647)"},
    {"USB, zero", 0, 1, "USB", "VARNE-1(USB,Serial#00000000)"},
    {"USB, negative", -5, 1, "USB", "VARNE-1(USB,Serial#-0000005)"},
    {"USB, lowest", INT_MIN, 1, "USB", "VARNE-1(USB,Serial#-2147483648)"},
    {"network", 42, 2, address, "VARNE-1(192.168.0.10,Serial#00000042)"},
    {"network, type 0", 42, 0, address, "VARNE-1(192.168.0.10,Serial#00000042)"},
    {"network, highest type", 42, UINT_MAX, address, "VARNE-1(192.168.0.10,Serial#00000042)"},
    {"network, nine digits", 987654321, 2, address, "VARNE-1(192.168.0.10,Serial#987654321)"},
    {"network, negative", -42, 2, address, "VARNE-1(192.168.0.10,Serial#-0000042)"},
    {"network, no name", 42, 2, "", "VARNE-1(,Serial#00000042)"},
    {"network, name of 35 bytes", 42, 2, "abcdefghijklmnopqrstuvwxyz012345678",
     "VARNE-1(abcdefghijklmnopqrstuvwxyz012345678,Serial#00000042)"},
    // The serial number's bytes follow the name in the record, and are text here.
    {"network, name of 36 bytes without NUL", 1145258561, 2, "abcdefghijklmnopqrstuvwxyz0123456789",
     "VARNE-1(abcdefghijklmnopqrstuvwxyz0123456789,Serial#1145258561)"},
    {"network, bytes behind the NUL", 42, 2, QJsonObject{{"hex", "6162630078" + QString(62, '7')}},
     "VARNE-1(abc,Serial#00000042)"},
    {"network, %1 in the name", 42, 2, "a%1b", "VARNE-1(a%1b,Serial#00000042)"},
    {"network, %2 in the name", 42, 2, "%2", "VARNE-1(%2,Serial#00000042)"},
    {"network, both in the name", 42, 2, "%2%1%s%%", "VARNE-1(%2%1%s%%,Serial#00000042)"},
};

const NumberRow counts[] = {{"none", 0}, {"two", 2}, {"hundred", 100}, {"more", 105}};

/** What a call of the enumeration answers: the first asks for the count, the second for the list.
 */
struct CallRow {
    const char* name;
    int call; ///< 0: both
    int result;
};

const CallRow failures[] = {
    {"count, error", 1, -9999}, {"count, not equal", 1, -9794}, {"count, -1", 1, -1},
    {"fill, error", 2, -9999},  {"fill, receive", 2, -9990},    {"fill, -1", 2, -1},
};

const CallRow warnings[] = {{"count", 1, 2}, {"fill", 2, 2}, {"both", 0, 2}};

} // namespace

class TestControllerEnumeration : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }

    void startsEmpty() {
        const DebugLog log;
        const CKvaSdk_Ctrl controller;
        QCOMPARE(controller.m_portCount, 0);
        QCOMPARE(std::size(controller.m_portList), std::size_t{100});
        QVERIFY(hasNoList(controller));
        QVERIFY(!controller.m_connected);
        QCOMPARE(log.lines(), QStringList());
    }

    void listsText_data() { addRows(texts); }
    void listsText() {
        const auto row = rowOf<TextRow>();
        TestBench::load({instrumentAt(row.serialNumber, row.portType, row.portName)});
        LoggedController controller;
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(controller.m_deviceNameList, QStringList(row.text));
        QCOMPARE(controller.m_deviceCount, 1);
        QCOMPARE(controller.m_portCount, 1);
        QCOMPARE(controller.left(),
                 QStringList({"0", "port count[1] \n",
                              R"(KVA_GetDevicePortList {"list":false,"maxEntries":0} 0)",
                              R"(KVA_GetDevicePortList {"list":true,"maxEntries":100} 0)"}));
    }

    void keepsEntriesByteForByte() {
        const QByteArray name = "61626300" + QByteArray("ff80257f").repeated(8);
        TestBench::load(
            {instrumentAt(1, 1, "USB"), instrumentAt(2, 7, QJsonObject{{"hex", QString(name)}})});
        CKvaSdk_Ctrl controller;
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(controller.m_ports.size(), std::size_t{2});
        QCOMPARE(TestBench::bytesOf(controller.m_ports[0]).toHex(),
                 "01000000555342" + QByteArray(66, '0') + "01000000");
        QCOMPARE(TestBench::bytesOf(controller.m_ports[1]).toHex(), "07000000" + name + "02000000");
        QCOMPARE(TestBench::bytesOf(controller.m_portList[1]),
                 TestBench::bytesOf(controller.m_ports[1]));
    }

    void listsUpToHundred_data() { addRows(counts); }
    void listsUpToHundred() {
        const auto row = rowOf<NumberRow>();
        LoggedController controller;
        QVERIFY(controller.GetDevicePortList());
        TestBench::load(usbInstruments(static_cast<int>(row.value)));
        const int listed = static_cast<int>(std::min<qint64>(row.value, 100));
        controller.forget();
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(TestBench::calls().size(), 2);
        // The line shows the count of the first call, the list that of the second.
        QCOMPARE(controller.left().mid(0, 2),
                 QStringList({"0", QString("port count[%1] \n").arg(row.value)}));
        QCOMPARE(controller.m_portCount, listed);
        QCOMPARE(controller.m_deviceCount, listed);
        QCOMPARE(controller.m_ports.size(), static_cast<std::size_t>(listed));
        QCOMPARE(controller.m_deviceNameList.size(), listed);
        for (int i = 0; i < listed; ++i) {
            const QString number = QString::number(i + 1).rightJustified(8, '0');
            QCOMPARE(controller.m_deviceNameList.at(i), "VARNE-1(USB,Serial#" + number + ')');
            QCOMPARE(controller.m_ports[static_cast<std::size_t>(i)].serialNumber, i + 1);
        }
        QVERIFY(hasOnlyZeros(controller.m_portList + listed, 100 - listed));
    }

    void failureLeavesNoList_data() { addRows(failures); }
    void failureLeavesNoList() {
        const auto row = rowOf<CallRow>();
        LoggedController controller;
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(controller.m_deviceCount, 1);
        controller.forget();
        TestBench::answer("KVA_GetDevicePortList", row.result, row.call);
        QVERIFY(!controller.GetDevicePortList());
        QVERIFY(hasNoList(controller));
        QCOMPARE(controller.m_lastResult, row.result);
        // What the library stored last: a refused count query leaves the earlier count.
        QCOMPARE(controller.log.lines(), QStringList("port count[1] \n"));
        QCOMPARE(TestBench::calls().size(), row.call);
    }

    void warningStillLists_data() { addRows(warnings); }
    void warningStillLists() {
        const auto row = rowOf<CallRow>();
        CKvaSdk_Ctrl controller;
        TestBench::answer("KVA_GetDevicePortList", row.result, row.call);
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(controller.m_deviceNameList, QStringList("VARNE-1(USB,Serial#01234567)"));
        // Kept is the result of the second call.
        QCOMPARE(controller.m_lastResult, row.call == 1 ? 0 : row.result);
    }

    void followsPlugging() {
        TestBench::load(
            {instrumentAt(1, 1, "USB"), instrumentAt(2, 2, "b"), instrumentAt(3, 3, "c")});
        CKvaSdk_Ctrl controller;
        QVERIFY(controller.GetDevicePortList());
        TestBench::unplug(1);
        QVERIFY(controller.GetDevicePortList());
        QCOMPARE(controller.m_deviceNameList,
                 QStringList({"VARNE-1(b,Serial#00000002)", "VARNE-1(c,Serial#00000003)"}));
        QVERIFY(hasOnlyZeros(controller.m_portList + 2, 98));
    }
};

TEST_CLASS(TestControllerEnumeration)
#include "tst_controller_enumeration.moc"
