// Answers that no honest instrument gives. This program defines some functions of the library
// itself: they pass each call on to the simulated library and then alter its answer.

#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/Accessory.h"

#include <QTemporaryDir>
#include <QtTest>

#include <climits>
#include <dlfcn.h>
#include <functional>

namespace {

/** What becomes of a call's answer; returns the result that the caller gets. Empty: nothing. */
template <typename... Arguments>
using Alteration = std::function<KVA_RESULT(KVA_RESULT result, Arguments... arguments)>;

struct Alterations {
    Alteration<KVA_PORTINFO*, int32_t*> portList;
    Alteration<KVA_DEVICEINFO*> deviceInfo;
    Alteration<KVA_NETWORKINFO*> networkInfo;
    Alteration<uint8_t*> shutdownTime;
    Alteration<KVA_JIG_CALREFDATA*> calibration;
    Alteration<KVA_JIG_ACTIONOPTIONFACTORYDATA*> factoryOptions;
} alterations;

int unfilled = 0; ///< so many calls that fill a record succeed and leave it as it is

template <typename Function>
Function simulated(const char* symbol) {
    auto* const address = dlsym(RTLD_NEXT, symbol);
    if (!address)
        qFatal("%s is not in the simulated library", symbol);
    return reinterpret_cast<Function>(address);
}

template <typename Record>
KVA_RESULT pass(const char* symbol, Record* record, const Alteration<Record*>& alteration) {
    static const auto function = simulated<KVA_RESULT (*)(Record*)>(symbol);
    if (unfilled > 0) {
        --unfilled;
        return KVA_SUCCESS;
    }
    const KVA_RESULT result = function(record);
    return alteration ? alteration(result, record) : result;
}

} // namespace

KVA_RESULT KVA_GetDevicePortList(KVA_PORTINFO* list, int32_t* count, int32_t maxEntries) {
    static const auto function =
        simulated<decltype(&KVA_GetDevicePortList)>("KVA_GetDevicePortList");
    const KVA_RESULT result = function(list, count, maxEntries);
    return alterations.portList ? alterations.portList(result, list, count) : result;
}

KVA_RESULT KVA_GetDeviceInfo(KVA_DEVICEINFO* info) {
    return pass("KVA_GetDeviceInfo", info, alterations.deviceInfo);
}

KVA_RESULT KVA_GetNetworkInfo(KVA_NETWORKINFO* info) {
    return pass("KVA_GetNetworkInfo", info, alterations.networkInfo);
}

KVA_RESULT KVA_GetShutdownTime(uint8_t* mode) {
    return pass("KVA_GetShutdownTime", mode, alterations.shutdownTime);
}

KVA_RESULT KVA_JIG_GetFactoryCalib_CALREFDATA(KVA_JIG_CALREFDATA* data) {
    return pass("_Z34KVA_JIG_GetFactoryCalib_CALREFDATAP18KVA_JIG_CALREFDATA", data,
                alterations.calibration);
}

KVA_RESULT KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
    return pass("_Z40KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATAP31KVA_JIG_ACTIONOPTIONFACTORYDATA",
                data, alterations.factoryOptions);
}

class TestControllerDishonestAnswers : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void boundsTheCount_data();
    void boundsTheCount();
    void negativeCountBeforeFailure();
    void identityFilledByFailedCall();
    void recordsAreZeroBeforeTheCall();
    void networkFilledByFailedCall();
    void powerOffFilledByFailedCall();
    void serialNumbersFilledByFailedCall();
    void wifiModuleFilledByFailedCall();
    void readBackDiffers_data();
    void readBackDiffers();
    void readBackDiffersInTheSignOfZero();
    void fetchFillsNothing_data();
    void fetchFillsNothing();
    void noFetchFillsAnything_data();
    void noFetchFillsAnything();
};

void TestControllerDishonestAnswers::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
}

void TestControllerDishonestAnswers::cleanup() {
    alterations = {};
    unfilled = 0;
}

void TestControllerDishonestAnswers::boundsTheCount_data() {
    QTest::addColumn<int>("queried");
    QTest::addColumn<int>("filled");
    QTest::addColumn<int>("listed");
    QTest::newRow("101 filled") << 1 << 101 << 100;
    QTest::newRow("105 attached and filled") << 105 << 105 << 100;
    QTest::newRow("highest") << INT_MAX << INT_MAX << 100;
    QTest::newRow("100") << 100 << 100 << 100;
    QTest::newRow("fewer attached than filled") << 0 << 2 << 2;
    QTest::newRow("none filled") << 1 << 0 << 0;
    QTest::newRow("-1") << -1 << -1 << 0;
    QTest::newRow("-1 attached") << -1 << 1 << 1;
    QTest::newRow("lowest") << INT_MIN << INT_MIN << 0;
}

void TestControllerDishonestAnswers::boundsTheCount() {
    QFETCH(int, queried);
    QFETCH(int, filled);
    QFETCH(int, listed);
    alterations.portList = [&](KVA_RESULT result, const KVA_PORTINFO* list, int32_t* count) {
        *count = list ? filled : queried;
        return result;
    };
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(controller.GetDevicePortList());
    QCOMPARE(controller.m_portCount, filled);
    QCOMPARE(controller.m_deviceCount, listed);
    QCOMPARE(controller.m_ports.size(), static_cast<std::size_t>(listed));
    QCOMPARE(controller.m_deviceNameList.size(), listed);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("port count[%1] \n").arg(queried)));
    if (listed > 0)
        QCOMPARE(controller.m_deviceNameList.first(),
                 QStringLiteral("VARNE-1(USB,Serial#01234567)"));
    if (listed > 1)
        QCOMPARE(controller.m_deviceNameList.last(), QStringLiteral("VARNE-1(,Serial#00000000)"));
    QVERIFY(!controller.Connect(listed, 10));
}

void TestControllerDishonestAnswers::negativeCountBeforeFailure() {
    alterations.portList = [](KVA_RESULT, const KVA_PORTINFO*, int32_t* count) {
        *count = -7;
        return KVA_ERROR;
    };
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(!controller.GetDevicePortList());
    QCOMPARE(controller.m_deviceCount, 0);
    QVERIFY(controller.m_deviceNameList.isEmpty());
    QCOMPARE(log.lines(), QStringList(QStringLiteral("port count[-7] \n")));
}

void TestControllerDishonestAnswers::identityFilledByFailedCall() {
    alterations.deviceInfo = [](KVA_RESULT, KVA_DEVICEINFO*) { return KVA_ERROR; };
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(!controller.GetDeviceInfo());
    QCOMPARE(controller.m_serialNo, QString());
    QCOMPARE(controller.m_firmVersion, QString());
    QCOMPARE(controller.m_macAddress, QString());
}

void TestControllerDishonestAnswers::recordsAreZeroBeforeTheCall() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetDeviceInfo());
    QVERIFY(controller.GetNetworkInfo());
    // A call that fills nothing leaves nothing of an earlier one.
    unfilled = 4;
    QVERIFY(controller.GetDeviceInfo());
    QVERIFY(controller.GetNetworkInfo());
    QVERIFY(controller.GetCalRefSerialNo());
    QVERIFY(!controller.IsWifiModuleEnabled());
    QCOMPARE(InstrumentBench::bytesOf(controller.m_deviceInfo), QByteArray(40, '\0'));
    QCOMPARE(controller.m_serialNo, QStringLiteral("00000000"));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    QCOMPARE(controller.m_ipAddress.join(u'.'), QStringLiteral("0.0.0.0"));
    QCOMPARE(controller.m_curWCPSerialNo, QStringLiteral("00000000"));
    QCOMPARE(controller.m_curAmbAdpSerialNo, QStringLiteral("00000000"));
}

void TestControllerDishonestAnswers::networkFilledByFailedCall() {
    alterations.networkInfo = [](KVA_RESULT, KVA_NETWORKINFO*) { return KVA_ERROR_NAV; };
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(!controller.GetNetworkInfo());
    QCOMPARE(controller.m_ssid, QString());
    QCOMPARE(controller.m_encryptKey, QString());
    QCOMPARE(controller.m_ipAddress, QStringList());
    QCOMPARE(controller.m_dns, QStringList());
    // The record holds what the library left.
    QCOMPARE(QByteArray(controller.m_networkInfo.SSID), QByteArray("press-hall"));
    QCOMPARE(controller.m_lastResult, -9798);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("Failed to KVA_GetNetworkInfo(). \n")));
}

void TestControllerDishonestAnswers::powerOffFilledByFailedCall() {
    alterations.shutdownTime = [](KVA_RESULT, uint8_t* mode) {
        *mode = 200;
        return KVA_ERROR_NDT;
    };
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    uint8_t mode = 255;
    const DebugLog log;
    QVERIFY(!controller.GetShutdownTime(mode));
    QCOMPARE(static_cast<int>(mode), 200);
    QCOMPARE(controller.m_lastResult, -9795);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("KVA_GetShutdownTime() failed[mode:200].\n")));
}

void TestControllerDishonestAnswers::serialNumbersFilledByFailedCall() {
    alterations.calibration = [](KVA_RESULT, KVA_JIG_CALREFDATA*) { return KVA_ERROR; };
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(!controller.GetCalRefSerialNo());
    QCOMPARE(controller.m_curWCPSerialNo, QString());
    QCOMPARE(controller.m_curAmbAdpSerialNo, QString());
}

void TestControllerDishonestAnswers::wifiModuleFilledByFailedCall() {
    alterations.factoryOptions = [](KVA_RESULT, KVA_JIG_ACTIONOPTIONFACTORYDATA* data) {
        data->wifiModuleEnable = 1;
        return KVA_ERROR;
    };
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    const DebugLog log;
    QVERIFY(!controller.IsWifiModuleEnabled());
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(controller.m_lastResult, 0);
}

void TestControllerDishonestAnswers::readBackDiffers_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("offset");
    for (int i = 0; i < 2; ++i) {
        for (const int offset : {0, 3, 4, 155, 156, 159, 160, 459, 460, 461, 1500, 2506, 2507})
            QTest::addRow("%s, byte %d", accessories[i].name, offset) << i << offset;
    }
}

void TestControllerDishonestAnswers::readBackDiffers() {
    QFETCH(int, index);
    QFETCH(int, offset);
    const QTemporaryDir folder;
    const QByteArray file = InstrumentBench::writeFile(
        folder.filePath(QStringLiteral("values.csv")), accessories[index].file());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    int reads = 0;
    alterations.calibration = [&](KVA_RESULT result, KVA_JIG_CALREFDATA* data) {
        if (++reads == 2)
            reinterpret_cast<unsigned char*>(data)[offset] ^= 1U;
        return result;
    };
    const DebugLog log;
    QVERIFY(!(controller.*accessories[index].write)(file.constData()));
    QCOMPARE(reads, 2);
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("CALREFDATA is incorrect.\n")));
    QCOMPARE(log.others(), QStringList());
    // The same without the difference goes well.
    QVERIFY((controller.*accessories[index].write)(file.constData()));
}

void TestControllerDishonestAnswers::readBackDiffersInTheSignOfZero() {
    const QTemporaryDir folder;
    const QByteArray file =
        InstrumentBench::writeFile(folder.filePath(QStringLiteral("values.csv")),
                                   "a\nb\n12345678\n0" + QByteArray(",0").repeated(37) + '\n');
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    int reads = 0;
    alterations.calibration = [&](KVA_RESULT result, KVA_JIG_CALREFDATA* data) {
        if (++reads == 2)
            data->rfWhite.spcData[7] = -0.0F;
        return result;
    };
    const DebugLog log;
    QVERIFY(!controller.WriteWCPData(file.constData()));
    QCOMPARE(log.lines(), QStringList(QStringLiteral("CALREFDATA is incorrect.\n")));
}

void TestControllerDishonestAnswers::fetchFillsNothing_data() {
    accessoryRows();
}

/** What the fetch leaves out is registered as zero, never as what was on the stack; the
    registration succeeds, since that is what is read back. */
void TestControllerDishonestAnswers::fetchFillsNothing() {
    QFETCH(int, index);
    const Accessory& accessory = accessories[index];
    const QTemporaryDir folder;
    const QByteArray file =
        InstrumentBench::writeFile(folder.filePath(QStringLiteral("values.csv")), accessory.file());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    unfilled = 1;
    const DebugLog log;
    QVERIFY((controller.*accessory.write)(file.constData()));
    QCOMPARE(unfilled, 0);
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(InstrumentBench::powerCycle(controller));
    QCOMPARE(InstrumentBench::bytesOf(InstrumentBench::calibrationRecord()),
             accessory.registeredIn(QByteArray(sizeof(KVA_JIG_CALREFDATA), '\0')));
}

void TestControllerDishonestAnswers::noFetchFillsAnything_data() {
    accessoryRows();
}

void TestControllerDishonestAnswers::noFetchFillsAnything() {
    QFETCH(int, index);
    const QTemporaryDir folder;
    const QByteArray file = InstrumentBench::writeFile(
        folder.filePath(QStringLiteral("values.csv")), accessories[index].file());
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    unfilled = 2;
    const DebugLog log;
    QVERIFY(!(controller.*accessories[index].write)(file.constData()));
    QCOMPARE(controller.m_lastResult, 0);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("CALREFDATA is incorrect.\n")));
}

QTEST_GUILESS_MAIN(TestControllerDishonestAnswers)
#include "tst_controller_dishonest_answers.moc"
