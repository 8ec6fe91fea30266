#include "instrument/KvaSdk.h"

#include <QtTest>

#include <type_traits>

// The types of the functions, as the maker's library has them.
static_assert(std::is_same_v<KVA_RESULT, int32_t>);
static_assert(std::is_same_v<KVA_DeviceEventHandler, void (*)(uint32_t, uint32_t, int32_t)>);
static_assert(
    std::is_same_v<decltype(&KVA_RegisterDeviceEventHandler), int32_t (*)(KVA_DeviceEventHandler)>);
static_assert(std::is_same_v<decltype(&KVA_GetDevicePortList),
                             int32_t (*)(KVA_PORTINFO*, int32_t*, int32_t)>);
static_assert(std::is_same_v<decltype(&KVA_Connect), int32_t (*)(const KVA_PORTINFO*, uint32_t)>);
static_assert(std::is_same_v<decltype(&KVA_Disconnect), int32_t (*)()>);
static_assert(std::is_same_v<decltype(&KVA_GetDeviceInfo), int32_t (*)(KVA_DEVICEINFO*)>);
static_assert(std::is_same_v<decltype(&KVA_GetNetworkInfo), int32_t (*)(KVA_NETWORKINFO*)>);
static_assert(std::is_same_v<decltype(&KVA_SetNetworkInfo), int32_t (*)(const KVA_NETWORKINFO*)>);
static_assert(std::is_same_v<decltype(&KVA_GetShutdownTime), int32_t (*)(uint8_t*)>);
static_assert(std::is_same_v<decltype(&KVA_SetShutdownTime), int32_t (*)(const uint8_t*)>);
static_assert(std::is_same_v<decltype(&KVA_JIG_GetFactoryCalib_CALREFDATA),
                             int32_t (*)(KVA_JIG_CALREFDATA*)>);
static_assert(std::is_same_v<decltype(&KVA_JIG_SetFactoryCalib_CALREFDATA),
                             int32_t (*)(const KVA_JIG_CALREFDATA*)>);
static_assert(std::is_same_v<decltype(&KVA_JIG_SetFactoryCalib_WriteSector), int32_t (*)()>);
static_assert(std::is_same_v<decltype(&KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA),
                             int32_t (*)(KVA_JIG_ACTIONOPTIONFACTORYDATA*)>);

class TestKvaSdkContract : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void placesField_data();
    void placesField();
    void sizesRecord_data();
    void sizesRecord();
    void valuesConstant_data();
    void valuesConstant();
    void isLittleEndian();
};

#define FIELD(record, field, offset, size)                                                         \
    QTest::newRow(#record "::" #field)                                                             \
        << static_cast<int>(offsetof(record, field)) << static_cast<int>(sizeof(record::field))    \
        << (offset) << (size)

void TestKvaSdkContract::placesField_data() {
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expectedOffset");
    QTest::addColumn<int>("expectedSize");
    FIELD(KVA_PORTINFO, portType, 0, 4);
    FIELD(KVA_PORTINFO, portName, 4, 36);
    FIELD(KVA_PORTINFO, serialNumber, 40, 4);
    FIELD(KVA_DEVICEINFO, serialNumber, 0, 4);
    FIELD(KVA_DEVICEINFO, firmVersionMajor, 4, 4);
    FIELD(KVA_DEVICEINFO, firmVersionMinor, 8, 4);
    FIELD(KVA_DEVICEINFO, firmVersionBuild, 12, 4);
    FIELD(KVA_DEVICEINFO, macAddress, 24, 6);
    FIELD(KVA_NETWORKINFO, APConnectUse, 0, 4);
    FIELD(KVA_NETWORKINFO, DHCPUse, 4, 4);
    FIELD(KVA_NETWORKINFO, IPAddress, 8, 4);
    FIELD(KVA_NETWORKINFO, SubnetMask, 12, 4);
    FIELD(KVA_NETWORKINFO, DefaultGateway, 16, 4);
    FIELD(KVA_NETWORKINFO, DNS, 20, 4);
    FIELD(KVA_NETWORKINFO, SSID, 24, 33);
    FIELD(KVA_NETWORKINFO, EncryptKey, 57, 65);
    FIELD(KVA_JIG_CALREFDATA, whiteSerialNo, 0, 4);
    FIELD(KVA_JIG_CALREFDATA, rfWhite.spcData, 4, 152);
    FIELD(KVA_JIG_CALREFDATA, ambAdpSerialNo, 156, 4);
    FIELD(KVA_JIG_CALREFDATA, ambAdp.spcData, 160, 300);
    FIELD(KVA_JIG_CALREFDATA, reserved, 460, 2048);
    FIELD(KVA_JIG_ACTIONOPTIONFACTORYDATA, wifiModuleEnable, 0, 1);
}

void TestKvaSdkContract::placesField() {
    QFETCH(int, offset);
    QFETCH(int, size);
    QTEST(offset, "expectedOffset");
    QTEST(size, "expectedSize");
}

void TestKvaSdkContract::sizesRecord_data() {
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expected");
    QTest::newRow("port") << static_cast<int>(sizeof(KVA_PORTINFO)) << 44;
    QTest::newRow("two ports") << static_cast<int>(sizeof(KVA_PORTINFO[2])) << 88;
    QTest::newRow("device") << static_cast<int>(sizeof(KVA_DEVICEINFO)) << 40;
    QTest::newRow("network") << static_cast<int>(sizeof(KVA_NETWORKINFO)) << 124;
    QTest::newRow("calibration") << static_cast<int>(sizeof(KVA_JIG_CALREFDATA)) << 2508;
    QTest::newRow("options") << static_cast<int>(sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA)) << 16;
}

void TestKvaSdkContract::sizesRecord() {
    QFETCH(int, size);
    QTEST(size, "expected");
}

#define CONSTANT(name, value) QTest::newRow(#name) << static_cast<int>(name) << (value)

void TestKvaSdkContract::valuesConstant_data() {
    QTest::addColumn<int>("actual");
    QTest::addColumn<int>("expected");
    CONSTANT(KVA_SUCCESS, 0);
    CONSTANT(KVA_ERROR, -9999);
    CONSTANT(KVA_ERROR_CONNECT, -9998);
    CONSTANT(KVA_ERROR_DISCONNECT, -9997);
    CONSTANT(KVA_ERROR_CONNECT_TIMEOUT, -9996);
    CONSTANT(KVA_ERROR_CONNECT_ALREADY, -9995);
    CONSTANT(KVA_ERROR_INSTRUMENT_UNAVAILABLE, -9994);
    CONSTANT(KVA_ERROR_INSTRUMENT_INFORMATION, -9993);
    CONSTANT(KVA_ERROR_ARGUMENT, -9992);
    CONSTANT(KVA_ERROR_COMMUNICATION_SEND, -9991);
    CONSTANT(KVA_ERROR_COMMUNICATION_RECEIVE, -9990);
    CONSTANT(KVA_ERROR_COMMUNICATION_CHECKSUM, -9989);
    CONSTANT(KVA_ERROR_COMMUNICATION_PARAM, -9988);
    CONSTANT(KVA_ERROR_COMMUNICATION_TIMEOUT, -9987);
    CONSTANT(KVA_ERROR_CANT_USED, -9986);
    CONSTANT(KVA_ERROR_NO_DATA, -9985);
    CONSTANT(KVA_ERROR_NAK, -9799);
    CONSTANT(KVA_ERROR_NAV, -9798);
    CONSTANT(KVA_ERROR_NSP, -9797);
    CONSTANT(KVA_ERROR_CNF, -9796);
    CONSTANT(KVA_ERROR_NDT, -9795);
    CONSTANT(KVA_ERROR_NEQ, -9794);
    CONSTANT(KVA_WARNING_WCALIB_TEMP, 1);
    CONSTANT(KVA_WARNING_BATTERY_EMPTY, 2);
    CONSTANT(KVA_WARNING_INITIALDATE_SETTING, 4);
    CONSTANT(eEventCode_Standby, 0);
    CONSTANT(eEventCode_DisConnect, 6);
    CONSTANT(eAPConnect_OFF, 0);
    CONSTANT(eAPConnect_ON, 1);
    CONSTANT(eDHCP_OFF, 0);
    CONSTANT(eDHCP_ON, 1);
}

void TestKvaSdkContract::valuesConstant() {
    QFETCH(int, actual);
    QTEST(actual, "expected");
}

void TestKvaSdkContract::isLittleEndian() {
    KVA_PORTINFO port = {};
    port.portType = 0x04030201;
    port.serialNumber = -2;
    const QByteArray bytes(reinterpret_cast<const char*>(&port), sizeof port);
    QCOMPARE(bytes.left(4), QByteArray::fromHex("01020304"));
    QCOMPARE(bytes.right(4), QByteArray::fromHex("feffffff"));
}

QTEST_GUILESS_MAIN(TestKvaSdkContract)
#include "tst_kvasdk_contract.moc"
