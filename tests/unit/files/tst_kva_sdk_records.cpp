#include "tests/support/ResultNames.h"
#include "tests/unit/files/FileFixture.h"

/** The sizes of the records as a C compiler lays them out. */
extern "C" const std::size_t sizesInC[5];

namespace {

/** A record with all bits of a field set, and where they have to be.
    @tparam Field  the type that the field has to have, where it matters */
template <class Field, class Record>
TextCase fieldCase(const char* name, Field Record::*field, int offset, int size) {
    Record record = {};
    const QByteArray before = bytesOf(record);
    std::memset(&(record.*field), 0xFF, sizeof(Field));
    return {name, bytesOf(record), overlaid(before, offset, QByteArray(size, '\xFF'))};
}

} // namespace

using NumberCase = Case<int, int>;

#define CHECK_TYPE(thing, ...) QVERIFY((std::is_same<decltype(thing), __VA_ARGS__>::value))

/** The numbers here are those of the library's published interface, written out once more: they
    must not be taken from the header that they check. */
class TestKvaSdkRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fieldPlaces_data() {
        addRows(QVector<TextCase>{
            fieldCase<std::uint32_t>("portType", &KVA_PORTINFO::portType, 0, 4),
            fieldCase("portName", &KVA_PORTINFO::portName, 4, 36),
            fieldCase<std::int32_t>("port serialNumber", &KVA_PORTINFO::serialNumber, 40, 4),
            fieldCase<std::uint32_t>("device serialNumber", &KVA_DEVICEINFO::serialNumber, 0, 4),
            fieldCase<std::uint32_t>("firmVersionMajor", &KVA_DEVICEINFO::firmVersionMajor, 4, 4),
            fieldCase<std::int32_t>("firmVersionMinor", &KVA_DEVICEINFO::firmVersionMinor, 8, 4),
            fieldCase<std::int32_t>("firmVersionBuild", &KVA_DEVICEINFO::firmVersionBuild, 12, 4),
            fieldCase<std::uint8_t[6]>("macAddress", &KVA_DEVICEINFO::macAddress, 24, 6),
            fieldCase<std::uint32_t>("APConnectUse", &KVA_NETWORKINFO::APConnectUse, 0, 4),
            fieldCase<std::uint32_t>("DHCPUse", &KVA_NETWORKINFO::DHCPUse, 4, 4),
            fieldCase("IPAddress", &KVA_NETWORKINFO::IPAddress, 8, 4),
            fieldCase("SubnetMask", &KVA_NETWORKINFO::SubnetMask, 12, 4),
            fieldCase("DefaultGateway", &KVA_NETWORKINFO::DefaultGateway, 16, 4),
            fieldCase("DNS", &KVA_NETWORKINFO::DNS, 20, 4),
            fieldCase("SSID", &KVA_NETWORKINFO::SSID, 24, 33),
            fieldCase("EncryptKey", &KVA_NETWORKINFO::EncryptKey, 57, 65),
            fieldCase("padding", &KVA_NETWORKINFO::padding, 122, 2),
            fieldCase("whiteSerialNo", &KVA_JIG_CALREFDATA::whiteSerialNo, 0, 4),
            fieldCase("rfWhite", &KVA_JIG_CALREFDATA::rfWhite, 4, 152),
            fieldCase("ambAdpSerialNo", &KVA_JIG_CALREFDATA::ambAdpSerialNo, 156, 4),
            fieldCase("ambAdp", &KVA_JIG_CALREFDATA::ambAdp, 160, 300),
            fieldCase("factory data", &KVA_JIG_CALREFDATA::reserved, 460, 2048),
            fieldCase("rfWhite.spcData", &KVA_JIG_WHITEDATA::spcData, 0, 152),
            fieldCase("ambAdp.spcData", &KVA_JIG_AMBIENTADAPTERDATA::spcData, 0, 300),
            fieldCase("wifiModuleEnable", &KVA_JIG_ACTIONOPTIONFACTORYDATA::wifiModuleEnable, 0, 1),
        });
    }
    void fieldPlaces() {
        const auto row = rowOf<TextCase>();
        QCOMPARE(row.given.toHex(), row.expected.toHex());
    }

    void numbersAreLittleEndian() {
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

    void types() {
        CHECK_TYPE(KVA_RESULT(), std::int32_t);
        using R = std::int32_t;
        using Handler = void (*)(std::uint32_t, std::uint32_t, std::int32_t);
        CHECK_TYPE(KVA_DeviceEventHandler(), Handler);
        CHECK_TYPE(KVA_RegisterDeviceEventHandler, R(Handler));
        CHECK_TYPE(KVA_GetDevicePortList, R(KVA_PORTINFO*, std::int32_t*, std::int32_t));
        CHECK_TYPE(KVA_Connect, R(const KVA_PORTINFO*, std::uint32_t));
        CHECK_TYPE(KVA_Disconnect, R());
        CHECK_TYPE(KVA_GetDeviceInfo, R(KVA_DEVICEINFO*));
        CHECK_TYPE(KVA_GetNetworkInfo, R(KVA_NETWORKINFO*));
        CHECK_TYPE(KVA_SetNetworkInfo, R(const KVA_NETWORKINFO*));
        CHECK_TYPE(KVA_GetShutdownTime, R(std::uint8_t*));
        CHECK_TYPE(KVA_SetShutdownTime, R(const std::uint8_t*));
        CHECK_TYPE(KVA_JIG_GetFactoryCalib_CALREFDATA, R(KVA_JIG_CALREFDATA*));
        CHECK_TYPE(KVA_JIG_SetFactoryCalib_CALREFDATA, R(const KVA_JIG_CALREFDATA*));
        CHECK_TYPE(KVA_JIG_SetFactoryCalib_WriteSector, R());
        CHECK_TYPE(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA, R(KVA_JIG_ACTIONOPTIONFACTORYDATA*));
    }

    void values_data() {
        QVector<NumberCase> rows = {
            {"KVA_PORTINFO", sizeof(KVA_PORTINFO), 44},
            {"KVA_DEVICEINFO", sizeof(KVA_DEVICEINFO), 40},
            {"KVA_NETWORKINFO", sizeof(KVA_NETWORKINFO), 124},
            {"KVA_JIG_CALREFDATA", sizeof(KVA_JIG_CALREFDATA), 2508},
            {"KVA_JIG_ACTIONOPTIONFACTORYDATA", sizeof(KVA_JIG_ACTIONOPTIONFACTORYDATA), 16},
            {"KVA_PORTINFO in C", int(sizesInC[0]), 44},
            {"KVA_DEVICEINFO in C", int(sizesInC[1]), 40},
            {"KVA_NETWORKINFO in C", int(sizesInC[2]), 124},
            {"KVA_JIG_CALREFDATA in C", int(sizesInC[3]), 2508},
            {"KVA_JIG_ACTIONOPTIONFACTORYDATA in C", int(sizesInC[4]), 16},
            {"eEventCode_Standby", eEventCode_Standby, 0},
            {"eEventCode_DisConnect", eEventCode_DisConnect, 6},
            {"last known event", eEventCode_Last, 9},
            {"eAPConnect_OFF", eAPConnect_OFF, 0},
            {"eAPConnect_ON", eAPConnect_ON, 1},
            {"eDHCP_OFF", eDHCP_OFF, 0},
            {"eDHCP_ON", eDHCP_ON, 1},
            {"USB port", ePortType_USB, 1},
            {"power-off disabled", eShutdownTime_Disabled, 0},
            {"power-off 15 minutes", eShutdownTime_15Minutes, 1},
            {"power-off 30 minutes", eShutdownTime_30Minutes, 2},
            {"power-off 60 minutes", eShutdownTime_60Minutes, 3},
            {"white plate values", KVA_WHITE_PLATE_VALUES, 38},
            {"adapter values", KVA_AMBIENT_ADAPTER_VALUES, 75},
        };
        for (const ResultName& result : resultNames) {
            if (!std::strchr(result.text, '/')) // which joins warnings
                rows.append({result.text, result.constant, result.code});
        }
        addRows(rows);
    }
    void values() {
        const auto row = rowOf<NumberCase>();
        QCOMPARE(row.given, row.expected);
    }
};

TEST_CLASS(TestKvaSdkRecords)

#include "tst_kva_sdk_records.moc"
