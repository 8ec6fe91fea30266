#include "instrument/KvaSdk.h"
#include "tests/unit/files/FileFixture.h"
#include "tests/unit/files/kva_sdk_in_c.h"

#include <QTest>

/** The numbers here are those of the library's published interface, written out once more: they
    must not be taken from the header that they check. */
class TestKvaSdkRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordSizes_data();
    void recordSizes();
    void fieldPlaces_data();
    void fieldPlaces();
    void numbersAreLittleEndian();
    void fieldTypes();
    void functionTypes();
    void values_data();
    void values();
};

void TestKvaSdkRecords::recordSizes_data() {
    QTest::addColumn<int>("inCpp");
    QTest::addColumn<int>("inC");
    QTest::addColumn<int>("expected");
    const auto row = [](const char* name, std::size_t inCpp, RecordInC inC, int expected) {
        QTest::newRow(name) << static_cast<int>(inCpp) << static_cast<int>(sizeInC(inC))
                            << expected;
    };
    row("KVA_PORTINFO", sizeof(KVA_PORTINFO), RecordInC_PortInfo, 44);
    row("KVA_DEVICEINFO", sizeof(KVA_DEVICEINFO), RecordInC_DeviceInfo, 40);
    row("KVA_NETWORKINFO", sizeof(KVA_NETWORKINFO), RecordInC_NetworkInfo, 124);
    row("KVA_JIG_CALREFDATA", sizeof(KVA_JIG_CALREFDATA), RecordInC_CalRefData, 2508);
    row("KVA_JIG_ACTIONOPTIONFACTORYDATA", sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA),
        RecordInC_ActionOption, 16);
}

void TestKvaSdkRecords::recordSizes() {
    QFETCH(int, inCpp);
    QFETCH(int, inC);
    QFETCH(int, expected);
    QCOMPARE(inCpp, expected);
    QCOMPARE(inC, expected);
}

template <class Record, class Field>
void fieldRow(const char* name, Field Record::*field, int offset, int size) {
    Record record = {};
    const QByteArray before = bytesOf(record);
    std::memset(&(record.*field), 0xFF, sizeof(Field));
    const QByteArray after = bytesOf(record);
    QTest::newRow(name) << overlaid(before, offset, QByteArray(size, '\xFF')) << after;
}

void TestKvaSdkRecords::fieldPlaces_data() {
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QByteArray>("actual");

    fieldRow("portType", &KVA_PORTINFO::portType, 0, 4);
    fieldRow("portName", &KVA_PORTINFO::portName, 4, 36);
    fieldRow("port serialNumber", &KVA_PORTINFO::serialNumber, 40, 4);

    fieldRow("device serialNumber", &KVA_DEVICEINFO::serialNumber, 0, 4);
    fieldRow("firmVersionMajor", &KVA_DEVICEINFO::firmVersionMajor, 4, 4);
    fieldRow("firmVersionMinor", &KVA_DEVICEINFO::firmVersionMinor, 8, 4);
    fieldRow("firmVersionBuild", &KVA_DEVICEINFO::firmVersionBuild, 12, 4);
    fieldRow("macAddress", &KVA_DEVICEINFO::macAddress, 24, 6);

    fieldRow("APConnectUse", &KVA_NETWORKINFO::APConnectUse, 0, 4);
    fieldRow("DHCPUse", &KVA_NETWORKINFO::DHCPUse, 4, 4);
    fieldRow("IPAddress", &KVA_NETWORKINFO::IPAddress, 8, 4);
    fieldRow("SubnetMask", &KVA_NETWORKINFO::SubnetMask, 12, 4);
    fieldRow("DefaultGateway", &KVA_NETWORKINFO::DefaultGateway, 16, 4);
    fieldRow("DNS", &KVA_NETWORKINFO::DNS, 20, 4);
    fieldRow("SSID", &KVA_NETWORKINFO::SSID, 24, 33);
    fieldRow("EncryptKey", &KVA_NETWORKINFO::EncryptKey, 57, 65);
    fieldRow("padding", &KVA_NETWORKINFO::padding, 122, 2);

    fieldRow("whiteSerialNo", &KVA_JIG_CALREFDATA::whiteSerialNo, 0, 4);
    fieldRow("rfWhite", &KVA_JIG_CALREFDATA::rfWhite, 4, 152);
    fieldRow("ambAdpSerialNo", &KVA_JIG_CALREFDATA::ambAdpSerialNo, 156, 4);
    fieldRow("ambAdp", &KVA_JIG_CALREFDATA::ambAdp, 160, 300);
    fieldRow("factory data", &KVA_JIG_CALREFDATA::reserved, 460, 2048);
    fieldRow("rfWhite.spcData", &KVA_JIG_WHITEDATA::spcData, 0, 152);
    fieldRow("ambAdp.spcData", &KVA_JIG_AMBIENTADAPTERDATA::spcData, 0, 300);

    fieldRow("wifiModuleEnable", &KVA_JIG_ACTIONOPTIONFACTORYDATA::wifiModuleEnable, 0, 1);
}

void TestKvaSdkRecords::fieldPlaces() {
    QFETCH(QByteArray, expected);
    QFETCH(QByteArray, actual);
    QCOMPARE(actual.toHex(), expected.toHex());
}

void TestKvaSdkRecords::numbersAreLittleEndian() {
    KVA_PORTINFO port = {};
    port.portType = 0x01020304;
    port.serialNumber = -2;
    QCOMPARE(bytesOf(port).left(4).toHex(), QByteArray("04030201"));
    QCOMPARE(bytesOf(port).mid(40, 4).toHex(), QByteArray("feffffff"));

    KVA_JIG_CALREFDATA calibration = {};
    calibration.rfWhite.spcData[37] = 1.5F;
    calibration.ambAdp.spcData[74] = -2.0F;
    QCOMPARE(bytesOf(calibration).mid(152, 4).toHex(), QByteArray("0000c03f"));
    QCOMPARE(bytesOf(calibration).mid(456, 4).toHex(), QByteArray("000000c0"));
}

template <class Expected, class Actual>
bool isType(Actual) {
    return std::is_same<Expected, Actual>::value;
}

void TestKvaSdkRecords::fieldTypes() {
    QVERIFY(isType<std::uint32_t KVA_PORTINFO::*>(&KVA_PORTINFO::portType));
    QVERIFY(isType<std::int32_t KVA_PORTINFO::*>(&KVA_PORTINFO::serialNumber));
    QVERIFY(isType<std::uint32_t KVA_DEVICEINFO::*>(&KVA_DEVICEINFO::serialNumber));
    QVERIFY(isType<std::uint32_t KVA_DEVICEINFO::*>(&KVA_DEVICEINFO::firmVersionMajor));
    QVERIFY(isType<std::int32_t KVA_DEVICEINFO::*>(&KVA_DEVICEINFO::firmVersionMinor));
    QVERIFY(isType<std::int32_t KVA_DEVICEINFO::*>(&KVA_DEVICEINFO::firmVersionBuild));
    QVERIFY(isType<std::uint8_t(KVA_DEVICEINFO::*)[6]>(&KVA_DEVICEINFO::macAddress));
    QVERIFY(isType<std::uint32_t KVA_NETWORKINFO::*>(&KVA_NETWORKINFO::APConnectUse));
    QVERIFY(isType<std::uint32_t KVA_NETWORKINFO::*>(&KVA_NETWORKINFO::DHCPUse));
    QVERIFY((std::is_same<KVA_RESULT, std::int32_t>::value));
}

void TestKvaSdkRecords::functionTypes() {
    using R = std::int32_t;
    using Handler = void (*)(std::uint32_t, std::uint32_t, std::int32_t);
    QVERIFY((std::is_same<KVA_DeviceEventHandler, Handler>::value));
    QVERIFY((std::is_same<decltype(KVA_RegisterDeviceEventHandler), R(Handler)>::value));
    QVERIFY((std::is_same<decltype(KVA_GetDevicePortList),
                          R(KVA_PORTINFO*, std::int32_t*, std::int32_t)>::value));
    QVERIFY((std::is_same<decltype(KVA_Connect), R(const KVA_PORTINFO*, std::uint32_t)>::value));
    QVERIFY((std::is_same<decltype(KVA_Disconnect), R()>::value));
    QVERIFY((std::is_same<decltype(KVA_GetDeviceInfo), R(KVA_DEVICEINFO*)>::value));
    QVERIFY((std::is_same<decltype(KVA_GetNetworkInfo), R(KVA_NETWORKINFO*)>::value));
    QVERIFY((std::is_same<decltype(KVA_SetNetworkInfo), R(const KVA_NETWORKINFO*)>::value));
    QVERIFY((std::is_same<decltype(KVA_GetShutdownTime), R(std::uint8_t*)>::value));
    QVERIFY((std::is_same<decltype(KVA_SetShutdownTime), R(const std::uint8_t*)>::value));
    QVERIFY((
        std::is_same<decltype(KVA_JIG_GetFactoryCalib_CALREFDATA), R(KVA_JIG_CALREFDATA*)>::value));
    QVERIFY((std::is_same<decltype(KVA_JIG_SetFactoryCalib_CALREFDATA),
                          R(const KVA_JIG_CALREFDATA*)>::value));
    QVERIFY((std::is_same<decltype(KVA_JIG_SetFactoryCalib_WriteSector), R()>::value));
    QVERIFY((std::is_same<decltype(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA),
                          R(KVA_JIG_ACTIONOPTIONFACTORYDATA*)>::value));
}

void addResultRows() {
    const auto row = [](const char* name, int actual, int expected) {
        QTest::newRow(name) << actual << expected;
    };
    row("KVA_SUCCESS", KVA_SUCCESS, 0);
    row("KVA_ERROR", KVA_ERROR, -9999);
    row("KVA_ERROR_CONNECT", KVA_ERROR_CONNECT, -9998);
    row("KVA_ERROR_DISCONNECT", KVA_ERROR_DISCONNECT, -9997);
    row("KVA_ERROR_CONNECT_TIMEOUT", KVA_ERROR_CONNECT_TIMEOUT, -9996);
    row("KVA_ERROR_CONNECT_ALREADY", KVA_ERROR_CONNECT_ALREADY, -9995);
    row("KVA_ERROR_INSTRUMENT_UNAVAILABLE", KVA_ERROR_INSTRUMENT_UNAVAILABLE, -9994);
    row("KVA_ERROR_INSTRUMENT_INFORMATION", KVA_ERROR_INSTRUMENT_INFORMATION, -9993);
    row("KVA_ERROR_ARGUMENT", KVA_ERROR_ARGUMENT, -9992);
    row("KVA_ERROR_COMMUNICATION_SEND", KVA_ERROR_COMMUNICATION_SEND, -9991);
    row("KVA_ERROR_COMMUNICATION_RECEIVE", KVA_ERROR_COMMUNICATION_RECEIVE, -9990);
    row("KVA_ERROR_COMMUNICATION_CHECKSUM", KVA_ERROR_COMMUNICATION_CHECKSUM, -9989);
    row("KVA_ERROR_COMMUNICATION_PARAM", KVA_ERROR_COMMUNICATION_PARAM, -9988);
    row("KVA_ERROR_COMMUNICATION_TIMEOUT", KVA_ERROR_COMMUNICATION_TIMEOUT, -9987);
    row("KVA_ERROR_CANT_USED", KVA_ERROR_CANT_USED, -9986);
    row("KVA_ERROR_NO_DATA", KVA_ERROR_NO_DATA, -9985);
    row("KVA_ERROR_NAK", KVA_ERROR_NAK, -9799);
    row("KVA_ERROR_NAV", KVA_ERROR_NAV, -9798);
    row("KVA_ERROR_NSP", KVA_ERROR_NSP, -9797);
    row("KVA_ERROR_CNF", KVA_ERROR_CNF, -9796);
    row("KVA_ERROR_NDT", KVA_ERROR_NDT, -9795);
    row("KVA_ERROR_NEQ", KVA_ERROR_NEQ, -9794);
    row("KVA_WARNING_WCALIB_TEMP", KVA_WARNING_WCALIB_TEMP, 1);
    row("KVA_WARNING_BATTERY_EMPTY", KVA_WARNING_BATTERY_EMPTY, 2);
    row("KVA_WARNING_INITIALDATE_SETTING", KVA_WARNING_INITIALDATE_SETTING, 4);
}

void TestKvaSdkRecords::values_data() {
    QTest::addColumn<int>("actual");
    QTest::addColumn<int>("expected");
    addResultRows();
    QTest::newRow("eEventCode_Standby") << int(eEventCode_Standby) << 0;
    QTest::newRow("eEventCode_DisConnect") << int(eEventCode_DisConnect) << 6;
    QTest::newRow("last known event") << int(eEventCode_Last) << 9;
    QTest::newRow("eAPConnect_OFF") << int(eAPConnect_OFF) << 0;
    QTest::newRow("eAPConnect_ON") << int(eAPConnect_ON) << 1;
    QTest::newRow("eDHCP_OFF") << int(eDHCP_OFF) << 0;
    QTest::newRow("eDHCP_ON") << int(eDHCP_ON) << 1;
    QTest::newRow("USB port") << int(ePortType_USB) << 1;
    QTest::newRow("power-off disabled") << int(eShutdownTime_Disabled) << 0;
    QTest::newRow("power-off 15 minutes") << int(eShutdownTime_15Minutes) << 1;
    QTest::newRow("power-off 30 minutes") << int(eShutdownTime_30Minutes) << 2;
    QTest::newRow("power-off 60 minutes") << int(eShutdownTime_60Minutes) << 3;
    QTest::newRow("white plate values") << int(KVA_WHITE_PLATE_VALUES) << 38;
    QTest::newRow("adapter values") << int(KVA_AMBIENT_ADAPTER_VALUES) << 75;
}

void TestKvaSdkRecords::values() {
    QFETCH(int, actual);
    QFETCH(int, expected);
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(TestKvaSdkRecords)

#include "tst_kva_sdk_records.moc"
