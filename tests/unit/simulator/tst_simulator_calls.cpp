// The thirteen functions over a bench in memory.

#include "SimulatorTest.h"

using namespace simtest;

namespace {

struct PortListArgumentsRow {
    const char* name;
    bool withList;
    bool withCount;
    int maxEntries;
    int result;
    int count;
};

const PortListArgumentsRow portListArgumentsRows[] = {
    {"count only", false, true, 0, 0, 2},
    {"room for all", true, true, 5, 0, 2},
    {"exact room", true, true, 2, 0, 2},
    {"room for one", true, true, 1, 0, 1},
    {"room for none", true, true, 0, 0, 0},
    {"entries without list", false, true, 1, int{KVA_ERROR_ARGUMENT}, -7},
    {"negative", true, true, -1, int{KVA_ERROR_ARGUMENT}, -7},
    {"lowest", true, true, INT32_MIN, int{KVA_ERROR_ARGUMENT}, -7},
    {"no count", true, false, 5, int{KVA_ERROR_ARGUMENT}, -7},
};

struct FactoryOptionsRow {
    const char* name;
    QByteArray value;
    int flag;
};

const FactoryOptionsRow factoryOptionsRows[] = {
    {"true", "true", 1}, {"false", "false", 0}, {"0", "0", 0}, {"2", "2", 2}, {"255", "255", 255},
};

} // namespace

class TestSimulator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        EventRecord::instance().clear();
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
    }

    void nullPointerIsRefused_data() { addConnectionCallRows(); }
    void nullPointerIsRefused() {
        QFETCH(int, index);
        const ConnectionCall& call = connectionCalls().at(static_cast<std::size_t>(index));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        if (call.callWithNull != nullptr)
            QCOMPARE(call.callWithNull(), KVA_RESULT{KVA_ERROR_ARGUMENT});
        const bool needsStagedData = QByteArray(call.name) == "KVA_JIG_SetFactoryCalib_WriteSector";
        QCOMPARE(call.call(), KVA_RESULT{needsStagedData ? KVA_ERROR_NO_DATA : KVA_SUCCESS});
    }

    void needsConnection_data() { addConnectionCallRows(); }
    void needsConnection() {
        QFETCH(int, index);
        const ConnectionCall& call = connectionCalls().at(static_cast<std::size_t>(index));
        const json before = state();
        QCOMPARE(call.call(), KVA_RESULT{KVA_ERROR_CONNECT});
        QVERIFY(state() == before);
    }

    void failsAfterLostConnection_data() { addConnectionCallRows(); }
    void failsAfterLostConnection() {
        QFETCH(int, index);
        const ConnectionCall& call = connectionCalls().at(static_cast<std::size_t>(index));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(KvaSim_Unplug(usbSerial));
        const json before = state();
        QCOMPARE(call.call(), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(call.call(), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        QVERIFY(KvaSim_Unplug(usbSerial));
        QVERIFY(state() == before);
    }

    void portListArguments_data() { addRows(portListArgumentsRows); }

    void portListArguments() {
        const PortListArgumentsRow& given = rowOf(portListArgumentsRows);
        KVA_PORTINFO untouched{};
        std::memset(&untouched, 0x5A, sizeof untouched);
        std::array<KVA_PORTINFO, 5> list;
        list.fill(untouched);
        std::int32_t counted = -7;
        QCOMPARE(KVA_GetDevicePortList(given.withList ? list.data() : nullptr,
                                       given.withCount ? &counted : nullptr, given.maxEntries),
                 given.result);
        QCOMPARE(counted, given.count);
        const std::size_t filled =
            given.withList && given.count > 0 ? static_cast<std::size_t>(given.count) : 0;
        for (std::size_t index = 0; index < list.size(); ++index)
            QCOMPARE(sameBytes(list.at(index), untouched), index >= filled);
    }

    void portListFollowsPlug() {
        QVERIFY(KvaSim_Unplug(usbSerial));
        const auto left = ports();
        QCOMPARE(left.size(), std::size_t{1});
        QCOMPARE(left.front().serialNumber, networkSerial);
        QVERIFY(KvaSim_Unplug(networkSerial));
        std::int32_t count = -1;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(count, 0);
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(ports().size(), std::size_t{1});
    }

    void portListOfMoreThanHundred() {
        std::vector<std::int32_t> serialNumbers;
        for (std::int32_t index = 0; index < 150; ++index)
            serialNumbers.push_back(2000000 + index);
        QVERIFY(loadJson(benchOf(serialNumbers)));
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(count, 150);
        std::vector<KVA_PORTINFO> list(100);
        QCOMPARE(KVA_GetDevicePortList(list.data(), &count, 100), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(count, 100);
        QCOMPARE(list.back().serialNumber, 2000099);
    }

    void connectRefusesNull() {
        QCOMPARE(KVA_Connect(nullptr, 10), KVA_RESULT{KVA_ERROR_ARGUMENT});
    }

    void connectTwice() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_CONNECT_ALREADY});
        QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_ERROR_CONNECT_ALREADY});
        KVA_DEVICEINFO info{};
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(info.serialNumber, static_cast<std::uint32_t>(usbSerial));
    }

    void connectComparesEveryByte() {
        const KVA_PORTINFO port = portOf(usbSerial);
        for (std::size_t offset = 0; offset < sizeof port; ++offset) {
            std::array<unsigned char, sizeof(KVA_PORTINFO)> bytes{};
            std::memcpy(bytes.data(), &port, sizeof port);
            bytes.at(offset) ^= 0x01U;
            KVA_PORTINFO changed{};
            std::memcpy(&changed, bytes.data(), sizeof changed);
            QCOMPARE(KVA_Connect(&changed, 10), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        }
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_SUCCESS});
    }

    void connectToUnplugged() {
        const KVA_PORTINFO port = portOf(usbSerial);
        QVERIFY(KvaSim_Unplug(usbSerial));
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(KVA_Connect(&port, 10), KVA_RESULT{KVA_SUCCESS});
    }

    void connectAfterLostConnection() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(KvaSim_Unplug(usbSerial));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        std::uint8_t mode = 0;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
    }

    void disconnectEndsConnection() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_CONNECT});
        QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_SUCCESS});
    }

    void builtInBench() {
        KvaSim_Reset();
        const auto list = ports();
        QCOMPARE(list.size(), std::size_t{2});
        QCOMPARE(list[0].serialNumber, usbSerial);
        QCOMPARE(list[0].portType, std::uint32_t{ePortType_USB});
        QCOMPARE(list[1].serialNumber, networkSerial);
        QVERIFY(list[1].portType != std::uint32_t{ePortType_USB});
        QCOMPARE(QByteArray(list[1].portName), QByteArray("192.168.0.20"));
        std::array<KVA_JIG_CALREFDATA, 2> records{};
        std::array<KVA_NETWORKINFO, 2> networks{};
        for (std::size_t index = 0; index < 2; ++index) {
            QCOMPARE(KVA_Connect(&list[index], 10), KVA_RESULT{KVA_SUCCESS});
            KVA_JIG_CALREFDATA& record = records.at(index);
            QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&record), KVA_RESULT{KVA_SUCCESS});
            for (const float value : record.rfWhite.spcData)
                QVERIFY2(value > 85.0F && value < 95.0F, QByteArray::number(double{value}));
            for (const float value : record.ambAdp.spcData)
                QVERIFY2(value > 0.5F && value < 1.5F, QByteArray::number(double{value}));
            QVERIFY(record.whiteSerialNo[0] >= 0x10);
            QVERIFY(record.ambAdpSerialNo[0] == 0 && record.ambAdpSerialNo[1] < 0x10);
            QCOMPARE(KVA_GetNetworkInfo(&networks.at(index)), KVA_RESULT{KVA_SUCCESS});
            KVA_JIG_ACTIONOPTIONFACTORYDATA options{};
            QCOMPARE(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&options), KVA_RESULT{KVA_SUCCESS});
            QCOMPARE(int{options.wifiModuleEnable}, 1);
            QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        }
        QVERIFY(!sameBytes(records[0], records[1]));
        QVERIFY(!sameBytes(records[0].reserved, records[1].reserved));
        QVERIFY(!sameBytes(networks[0], networks[1]));
    }

    void deviceInfo() {
        QVERIFY(set(usbSerial, {{"device",
                                 {{"serialNumber", 4294967295U},
                                  {"firmware", {4294967294U, -1, -2147483648LL}},
                                  {"macAddress", "00:11:22:aa:BB:ff"},
                                  {"reserved1", {{"hex", "0102030405060708"}}},
                                  {"reserved2", {{"fill", 9}}}}}}));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_DEVICEINFO info{};
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_SUCCESS});
        const KVA_DEVICEINFO expected = {4294967295U,
                                         4294967294U,
                                         -1,
                                         INT32_MIN,
                                         {1, 2, 3, 4, 5, 6, 7, 8},
                                         {0x00, 0x11, 0x22, 0xAA, 0xBB, 0xFF},
                                         {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}};
        QVERIFY(sameBytes(info, expected));
    }

    void factoryOptions_data() { addRows(factoryOptionsRows); }

    void factoryOptions() {
        const FactoryOptionsRow& given = rowOf(factoryOptionsRows);
        QVERIFY(KvaSim_Set(usbSerial, ("{\"wirelessModule\": " + given.value + '}').constData()));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_ACTIONOPTIONFACTORYDATA data{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(int{data.wifiModuleEnable}, given.flag);
    }

    void everyPowerOffMode() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        for (int value = 0; value < 256; ++value) {
            const auto mode = static_cast<std::uint8_t>(value);
            QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
            auto read = static_cast<std::uint8_t>(~mode);
            QCOMPARE(KVA_GetShutdownTime(&read), KVA_RESULT{KVA_SUCCESS});
            QCOMPARE(read, mode);
            QCOMPARE(instrument(usbSerial)["powerOffMode"].get<int>(), value);
        }
    }

    void networkSettingsArePending() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_NETWORKINFO before{};
        QCOMPARE(KVA_GetNetworkInfo(&before), KVA_RESULT{KVA_SUCCESS});
        const json active = instrument(usbSerial)["network"]["active"];
        KVA_NETWORKINFO settings = before;
        settings.APConnectUse = 2;
        settings.IPAddress[3] = 77;
        std::strcpy(settings.SSID, "another");
        QCOMPARE(KVA_SetNetworkInfo(&settings), KVA_RESULT{KVA_SUCCESS});
        KVA_NETWORKINFO read{};
        QCOMPARE(KVA_GetNetworkInfo(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, settings));
        QVERIFY(instrument(usbSerial)["network"]["active"] == active);
        QCOMPARE(instrument(usbSerial)["network"]["pending"]["SSID"].get<std::string>(),
                 std::string("another"));

        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(instrument(usbSerial)["network"]["active"] == active);
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(instrument(usbSerial)["network"]["pending"].is_null());
        QCOMPARE(instrument(usbSerial)["network"]["active"]["IPAddress"].get<std::string>(),
                 std::string("192.168.0.77"));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_GetNetworkInfo(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, settings));
    }

    void networkPaddingIsZero() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_NETWORKINFO settings{};
        settings.padding[0] = 1;
        settings.padding[1] = 2;
        QCOMPARE(KVA_SetNetworkInfo(&settings), KVA_RESULT{KVA_SUCCESS});
        KVA_NETWORKINFO read{};
        std::memset(&read, 0xFF, sizeof read);
        QCOMPARE(KVA_GetNetworkInfo(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, KVA_NETWORKINFO{}));
    }

    void calibrationIsStaged() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        const json committed = instrument(usbSerial)["calibration"]["committed"];
        KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        data.whiteSerialNo[0] = 0x77;
        data.ambAdp.spcData[74] = 1.25F;
        data.reserved[2047] ^= 0xFFU;
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA read{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, data));
        QVERIFY(instrument(usbSerial)["calibration"]["committed"] == committed);

        const json staged = instrument(usbSerial)["calibration"]["staged"];
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(instrument(usbSerial)["calibration"]["staged"].is_null());
        QVERIFY(instrument(usbSerial)["calibration"]["committed"] == staged);
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, data));
    }

    void commitWithoutStagedData() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_ERROR_NO_DATA});
        const KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_ERROR_NO_DATA});
    }

    void powerCycleDropsStagedData() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA before{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&before), KVA_RESULT{KVA_SUCCESS});
        const KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(instrument(usbSerial)["calibration"]["staged"].is_null());
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA read{};
        QCOMPARE(KVA_JIG_GetFactoryCalib_CALREFDATA(&read), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(sameBytes(read, before));
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_ERROR_NO_DATA});
    }

    void unplugKeepsStagedData() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        const KVA_JIG_CALREFDATA data{};
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        QVERIFY(KvaSim_Unplug(usbSerial));
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_RESULT{KVA_SUCCESS});
    }

    void instrumentsAreApart() {
        const json other = instrument(networkSerial);
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        for (const ConnectionCall& call : connectionCalls()) {
            if (QByteArray(call.name) != "KVA_Disconnect")
                call.call();
        }
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(instrument(networkSerial) == other);
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulator>();
#include "tst_simulator_calls.moc"
