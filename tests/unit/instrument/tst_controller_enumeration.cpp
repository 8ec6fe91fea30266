#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QtTest>

#include <algorithm>

namespace {

QByteArray port(const QByteArray& serialNumber, const QByteArray& type, const QByteArray& name) {
    return R"({"serialNumber":)" + serialNumber + R"(,"port":{"type":)" + type + R"(,"name":)" +
           name + "}}";
}

bool hasOnlyZeros(const KVA_PORTINFO* ports, int count) {
    const QByteArray bytes(reinterpret_cast<const char*>(ports),
                           count * static_cast<int>(sizeof *ports));
    return bytes.count('\0') == bytes.size();
}

} // namespace

class TestControllerEnumeration : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void startsEmpty();
    void listsText_data();
    void listsText();
    void listsNothingWithoutInstruments();
    void keepsEntriesByteForByte();
    void listsUpToHundred();
    void countsAsTheFillCallSays();
    void failureLeavesNoList_data();
    void failureLeavesNoList();
    void warningStillLists_data();
    void warningStillLists();
    void followsPlugging();
};

void TestControllerEnumeration::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerEnumeration::startsEmpty() {
    const DebugLog log;
    const CKvaSdk_Ctrl controller;
    QCOMPARE(controller.m_portCount, 0);
    QCOMPARE(controller.m_deviceCount, 0);
    QCOMPARE(std::size(controller.m_portList), std::size_t{100});
    QVERIFY(hasOnlyZeros(controller.m_portList, 100));
    QVERIFY(controller.m_ports.empty());
    QVERIFY(controller.m_deviceNameList.isEmpty());
    QVERIFY(!controller.m_connected);
    QCOMPARE(log.lines(), QStringList());
}

void TestControllerEnumeration::listsText_data() {
    QTest::addColumn<QByteArray>("instrument");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QByteArray& instrument, const QString& text) {
        QTest::newRow(name) << instrument << text;
    };
    const QByteArray address = R"("192.168.0.10")";
    row("USB, seven digits", port("1234567", "1", R"("USB")"),
        QStringLiteral("VARNE-1(USB,Serial#01234567)"));
    row("USB, the port's name is not shown", port("1", "1", R"("hub-3")"),
        QStringLiteral("VARNE-1(USB,Serial#00000001)"));
    row("USB, eight digits", port("12345678", "1", R"("USB")"),
        QStringLiteral("VARNE-1(USB,Serial#12345678)"));
    row("USB, nine digits", port("123456789", "1", R"("USB")"),
        QStringLiteral("VARNE-1(USB,Serial#123456789)"));
    row("USB, highest", port("2147483647", "1", R"("USB")"),
        QStringLiteral("VARNE-1(USB,Serial#2147483647)"));
    row("USB, zero", port("0", "1", R"("USB")"), QStringLiteral("VARNE-1(USB,Serial#00000000)"));
    row("USB, negative", port("-5", "1", R"("USB")"),
        QStringLiteral("VARNE-1(USB,Serial#-0000005)"));
    row("USB, lowest", port("-2147483648", "1", R"("USB")"),
        QStringLiteral("VARNE-1(USB,Serial#-2147483648)"));
    row("network", port("42", "2", address),
        QStringLiteral("VARNE-1(192.168.0.10,Serial#00000042)"));
    row("network, type 0", port("42", "0", address),
        QStringLiteral("VARNE-1(192.168.0.10,Serial#00000042)"));
    row("network, highest type", port("42", "4294967295", address),
        QStringLiteral("VARNE-1(192.168.0.10,Serial#00000042)"));
    row("network, nine digits", port("987654321", "2", address),
        QStringLiteral("VARNE-1(192.168.0.10,Serial#987654321)"));
    row("network, negative", port("-42", "2", address),
        QStringLiteral("VARNE-1(192.168.0.10,Serial#-0000042)"));
    row("network, no name", port("42", "2", R"("")"), QStringLiteral("VARNE-1(,Serial#00000042)"));
    row("network, name of 35 bytes", port("42", "2", R"("abcdefghijklmnopqrstuvwxyz012345678")"),
        QStringLiteral("VARNE-1(abcdefghijklmnopqrstuvwxyz012345678,Serial#00000042)"));
    // The serial number's bytes follow the name in the record, and are text here.
    row("network, name of 36 bytes without NUL",
        port("1145258561", "2", R"("abcdefghijklmnopqrstuvwxyz0123456789")"),
        QStringLiteral("VARNE-1(abcdefghijklmnopqrstuvwxyz0123456789,Serial#1145258561)"));
    row("network, bytes behind the NUL",
        port("42", "2", R"({"hex":"6162630078)" + QByteArray(62, '7') + R"("})"),
        QStringLiteral("VARNE-1(abc,Serial#00000042)"));
    row("network, %1 in the name", port("42", "2", R"("a%1b")"),
        QStringLiteral("VARNE-1(a%1b,Serial#00000042)"));
    row("network, %2 in the name", port("42", "2", R"("%2")"),
        QStringLiteral("VARNE-1(%2,Serial#00000042)"));
    row("network, both in the name", port("42", "2", R"("%2%1%s%%")"),
        QStringLiteral("VARNE-1(%2%1%s%%,Serial#00000042)"));
}

void TestControllerEnumeration::listsText() {
    QFETCH(QByteArray, instrument);
    QFETCH(QString, text);
    QVERIFY2(InstrumentBench::load(instrument), KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceNameList, QStringList(text));
    QCOMPARE(controller.m_deviceCount, 1);
    QCOMPARE(controller.m_portCount, 1);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("port count[1] \n")));
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(
        InstrumentBench::detailedCalls(),
        QStringList({QStringLiteral(R"(KVA_GetDevicePortList {"list":false,"maxEntries":0} 0)"),
                     QStringLiteral(R"(KVA_GetDevicePortList {"list":true,"maxEntries":100} 0)")}));
}

void TestControllerEnumeration::listsNothingWithoutInstruments() {
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QVERIFY2(InstrumentBench::load(QByteArray()), KvaSim_LastError());
    const DebugLog log;
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceCount, 0);
    QCOMPARE(controller.m_portCount, 0);
    QVERIFY(controller.m_ports.empty());
    QVERIFY(controller.m_deviceNameList.isEmpty());
    QVERIFY(hasOnlyZeros(controller.m_portList, 100));
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("port count[0] \n")));
    QCOMPARE(InstrumentBench::calls().size(), 2);
}

void TestControllerEnumeration::keepsEntriesByteForByte() {
    const QByteArray name = "61626300" + QByteArray("ff80257f").repeated(8);
    QVERIFY2(InstrumentBench::load(port("1", "1", R"("USB")") + ',' +
                                   port("2", "7", R"({"hex":")" + name + R"("})")),
             KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_ports.size(), std::size_t{2});
    QCOMPARE(InstrumentBench::bytesOf(controller.m_ports[0]),
             QByteArray::fromHex("01000000555342" + QByteArray(66, '0') + "01000000"));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_ports[1]),
             QByteArray::fromHex("07000000" + name + "02000000"));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_portList[1]),
             InstrumentBench::bytesOf(controller.m_ports[1]));
}

void TestControllerEnumeration::listsUpToHundred() {
    QByteArray instruments = port("1", "1", R"("USB")");
    for (int serialNumber = 2; serialNumber <= 100; ++serialNumber)
        instruments += ',' + port(QByteArray::number(serialNumber), "1", R"("USB")");
    QVERIFY2(InstrumentBench::load(instruments), KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceCount, 100);
    QCOMPARE(controller.m_ports.size(), std::size_t{100});
    QCOMPARE(controller.m_deviceNameList.size(), 100);
    QCOMPARE(controller.m_deviceNameList.first(), QStringLiteral("VARNE-1(USB,Serial#00000001)"));
    QCOMPARE(controller.m_deviceNameList.last(), QStringLiteral("VARNE-1(USB,Serial#00000100)"));
    QCOMPARE(controller.m_ports[57].serialNumber, 58);
}

void TestControllerEnumeration::countsAsTheFillCallSays() {
    QByteArray instruments = port("1", "1", R"("USB")");
    for (int serialNumber = 2; serialNumber <= 105; ++serialNumber)
        instruments += ',' + port(QByteArray::number(serialNumber), "1", R"("USB")");
    QVERIFY2(InstrumentBench::load(instruments), KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(controller.GetDevicePortList());
    // The line shows the count of the first call, the list that of the second.
    QCOMPARE(log.lines(), QStringList(QStringLiteral("port count[105] \n")));
    QCOMPARE(controller.m_portCount, 100);
    QCOMPARE(controller.m_deviceCount, 100);
    QCOMPARE(controller.m_deviceNameList.size(), 100);
}

void TestControllerEnumeration::failureLeavesNoList_data() {
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("result");
    QTest::newRow("count, error") << 1 << -9999;
    QTest::newRow("count, not equal") << 1 << -9794;
    QTest::newRow("count, -1") << 1 << -1;
    QTest::newRow("fill, error") << 2 << -9999;
    QTest::newRow("fill, receive") << 2 << -9990;
    QTest::newRow("fill, -1") << 2 << -1;
}

void TestControllerEnumeration::failureLeavesNoList() {
    QFETCH(int, call);
    QFETCH(int, result);
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceCount, 1);
    KvaSim_ClearCallLog();
    QVERIFY2(InstrumentBench::answer("KVA_GetDevicePortList", result, call), KvaSim_LastError());
    const DebugLog log;
    QVERIFY(!controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceCount, 0);
    QVERIFY(controller.m_ports.empty());
    QVERIFY(controller.m_deviceNameList.isEmpty());
    QVERIFY(hasOnlyZeros(controller.m_portList, 100));
    QCOMPARE(controller.m_lastResult, result);
    // What the library stored last: a refused count query leaves the earlier count.
    QCOMPARE(log.lines(), QStringList(QStringLiteral("port count[1] \n")));
    QCOMPARE(InstrumentBench::calls().size(), call);
}

void TestControllerEnumeration::warningStillLists_data() {
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("lastResult");
    QTest::newRow("count") << 1 << 0;
    QTest::newRow("fill") << 2 << 2;
    QTest::newRow("both") << 0 << 2;
}

void TestControllerEnumeration::warningStillLists() {
    QFETCH(int, call);
    QFETCH(int, lastResult);
    CKvaSdk_Ctrl controller;
    QVERIFY2(InstrumentBench::answer("KVA_GetDevicePortList", 2, call), KvaSim_LastError());
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceNameList,
             QStringList(QStringLiteral("VARNE-1(USB,Serial#01234567)")));
    QCOMPARE(controller.m_lastResult, lastResult);
}

void TestControllerEnumeration::followsPlugging() {
    QVERIFY2(InstrumentBench::load(port("1", "1", R"("USB")") + ',' + port("2", "2", R"("b")") +
                                   ',' + port("3", "3", R"("c")")),
             KvaSim_LastError());
    CKvaSdk_Ctrl controller;
    QVERIFY(controller.GetDevicePortList());
    QVERIFY(KvaSim_Unplug(1));
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceNameList,
             QStringList({QStringLiteral("VARNE-1(b,Serial#00000002)"),
                          QStringLiteral("VARNE-1(c,Serial#00000003)")}));
    QVERIFY(hasOnlyZeros(controller.m_portList + 2, 98));
}

QTEST_GUILESS_MAIN(TestControllerEnumeration)
#include "tst_controller_enumeration.moc"
