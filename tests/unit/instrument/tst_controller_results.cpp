#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/Accessory.h"

#include <QTemporaryDir>
#include <QtTest>

#include <climits>

namespace {

struct Operation {
    const char* name;
    bool (*run)(CKvaSdk_Ctrl& controller, const QByteArray& folder);
    QString successLine; ///< empty: none
    QString failureLine; ///< empty: none
    bool isConnected = true;
    bool keepsLastResult = true; ///< in m_lastResult
};

bool readPowerOff(CKvaSdk_Ctrl& controller, const QByteArray&) {
    uint8_t mode = 9;
    return controller.GetShutdownTime(mode);
}

/** Every operation that calls the library. */
const std::vector<Operation>& operations() {
    using C = CKvaSdk_Ctrl;
    using F = const QByteArray;
    static const QString port = QStringLiteral("port count[1] \n");
    static const QString get = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA() failed.\n");
    static const std::vector<Operation> all = {
        {"GetDevicePortList", [](C& c, F&) { return c.GetDevicePortList(); }, port, port},
        {"Connect",
         [](C& c, F&) { return c.Connect(0, 10); },
         {},
         QStringLiteral("conect error \n"),
         false},
        {"Disconnect",
         [](C& c, F&) { return c.Disconnect(); },
         {},
         QStringLiteral("diconect error \n")},
        {"GetDeviceInfo",
         [](C& c, F&) { return c.GetDeviceInfo(); },
         {},
         QStringLiteral("Failed to read Firm data. \n")},
        {"GetNetworkInfo",
         [](C& c, F&) { return c.GetNetworkInfo(); },
         {},
         QStringLiteral("Failed to KVA_GetNetworkInfo(). \n")},
        {"SetNetworkInfo",
         [](C& c, F&) { return c.SetNetworkInfo(); },
         {},
         QStringLiteral("Failed to KVA_SetNetworkInfo(). \n")},
        {"IsWifiModuleEnabled",
         [](C& c, F&) { return c.IsWifiModuleEnabled(); },
         QStringLiteral("  wifiModuleEnable :      1\n"),
         {},
         true,
         false},
        {"GetCalRefSerialNo", [](C& c, F&) { return c.GetCalRefSerialNo(); }, {}, {}},
        {"WriteWCPData", [](C& c, F& f) { return c.WriteWCPData(f + "/0.csv"); }, {}, get},
        {"WriteAmbAdpData", [](C& c, F& f) { return c.WriteAmbAdpData(f + "/1.csv"); }, {}, get},
        {"GetShutdownTime", readPowerOff,
         QStringLiteral("KVA_GetShutdownTime() success[mode:2].\n"),
         QStringLiteral("KVA_GetShutdownTime() failed[mode:9].\n")},
        {"SetShutdownTime", [](C& c, F&) { return c.SetShutdownTime(3); },
         QStringLiteral("KVA_SetShutdownTime() success[mode:3].\n"),
         QStringLiteral("KVA_SetShutdownTime() failed[mode:3].\n")},
    };
    return all;
}

QStringList lineOrNone(const QString& line) {
    return line.isEmpty() ? QStringList() : QStringList(line);
}

} // namespace

class TestControllerResults : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void warningIsSuccess_data();
    void warningIsSuccess();
    void negativeIsFailure_data();
    void negativeIsFailure();
    void lostConnectionFails_data();
    void lostConnectionFails();

private:
    bool prepare(CKvaSdk_Ctrl& controller, const Operation& operation) {
        controller.m_lastResult = 77;
        return operation.isConnected ? InstrumentBench::connect(controller)
                                     : controller.GetDevicePortList();
    }

    QTemporaryDir m_folder;
};

void TestControllerResults::initTestCase() {
    for (int i = 0; i < 2; ++i) {
        const QString path = m_folder.filePath(QStringLiteral("%1.csv").arg(i));
        QVERIFY(!InstrumentBench::writeFile(path, accessories[i].file()).isEmpty());
    }
}

void TestControllerResults::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerResults::warningIsSuccess_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("result");
    for (std::size_t i = 0; i < operations().size(); ++i) {
        for (const int result : {1, 2, 3, 4, 5, 6, 7, 8, INT_MAX})
            QTest::addRow("%s, %d", operations()[i].name, result) << static_cast<int>(i) << result;
    }
}

void TestControllerResults::warningIsSuccess() {
    QFETCH(int, index);
    QFETCH(int, result);
    const Operation& operation = operations()[static_cast<std::size_t>(index)];
    CKvaSdk_Ctrl controller;
    QVERIFY(prepare(controller, operation));
    QVERIFY2(InstrumentBench::answer("*", result), KvaSim_LastError());
    const DebugLog log;
    QVERIFY(operation.run(controller, m_folder.path().toLocal8Bit()));
    QCOMPARE(controller.m_lastResult, operation.keepsLastResult ? result : 0);
    QCOMPARE(log.lines(), lineOrNone(operation.successLine));
    QCOMPARE(log.others(), QStringList());
}

void TestControllerResults::negativeIsFailure_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("result");
    for (std::size_t i = 0; i < operations().size(); ++i) {
        for (const int result : {-9999, -9995, -9985, -9900, -9799, -9794, -1, INT_MIN})
            QTest::addRow("%s, %d", operations()[i].name, result) << static_cast<int>(i) << result;
    }
}

void TestControllerResults::negativeIsFailure() {
    QFETCH(int, index);
    QFETCH(int, result);
    const Operation& operation = operations()[static_cast<std::size_t>(index)];
    CKvaSdk_Ctrl controller;
    QVERIFY(prepare(controller, operation));
    KvaSim_ClearCallLog();
    QVERIFY2(InstrumentBench::answer("*", result), KvaSim_LastError());
    const DebugLog log;
    QVERIFY(!operation.run(controller, m_folder.path().toLocal8Bit()));
    QCOMPARE(controller.m_lastResult, operation.keepsLastResult ? result : 0);
    QCOMPARE(log.lines(), lineOrNone(operation.failureLine));
    QCOMPARE(log.others(), QStringList());
    // Ended at once.
    QCOMPARE(InstrumentBench::calls().size(), 1);
}

void TestControllerResults::lostConnectionFails_data() {
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < operations().size(); ++i) {
        if (QByteArray(operations()[i].name) != "GetDevicePortList")
            QTest::newRow(operations()[i].name) << static_cast<int>(i);
    }
}

void TestControllerResults::lostConnectionFails() {
    QFETCH(int, index);
    const Operation& operation = operations()[static_cast<std::size_t>(index)];
    CKvaSdk_Ctrl controller;
    QVERIFY(prepare(controller, operation));
    QVERIFY(KvaSim_Unplug(InstrumentBench::serialNumber));
    KvaSim_WaitForEvents();
    const DebugLog log;
    QVERIFY(!operation.run(controller, m_folder.path().toLocal8Bit()));
    QCOMPARE(controller.m_lastResult, operation.keepsLastResult ? -9994 : 0);
    QCOMPARE(log.lines(), lineOrNone(operation.failureLine));
}

QTEST_GUILESS_MAIN(TestControllerResults)
#include "tst_controller_results.moc"
