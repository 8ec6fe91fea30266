// The thirteen functions over a bench in memory.

#include "SimulatorTest.h"

using namespace simtest;

namespace {

struct PortListRow {
    const char* name;
    bool withList;
    bool withCount;
    int maxEntries;
    int result;
    int count;
};

const PortListRow portListRows[] = {
    {"count only", false, true, 0, 0, 2},
    {"room for all", true, true, 5, 0, 2},
    {"exact room", true, true, 2, 0, 2},
    {"room for one", true, true, 1, 0, 1},
    {"room for none", true, true, 0, 0, 0},
    {"entries without list", false, true, 1, KVA_ERROR_ARGUMENT, -7},
    {"negative", true, true, -1, KVA_ERROR_ARGUMENT, -7},
    {"lowest", true, true, INT32_MIN, KVA_ERROR_ARGUMENT, -7},
    {"no count", true, false, 5, KVA_ERROR_ARGUMENT, -7},
};

// The value on the bench, and the flag.
const NamedValue<int> wirelessFlags[] = {
    {"true", 1}, {"false", 0}, {"0", 0}, {"2", 2}, {"255", 255}};

json network() {
    return instrument(usbSerial)["network"];
}

json calibration() {
    return instrument(usbSerial)["calibration"];
}

} // namespace

class TestSimulator : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QVERIFY(loadJson(benchOf({usbSerial, networkSerial})));
    }

    void nullPointerIsRefused_data() { addRows(connectionCalls()); }
    void nullPointerIsRefused() {
        const auto row = rowOf<Call>();
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        if (row.callWithNull)
            QCOMPARE(row.callWithNull(), KVA_ERROR_ARGUMENT);
        QCOMPARE(row.call(), firstAnswerOf(row));
    }

    void needsConnection_data() { addRows(connectionCalls()); }
    void needsConnection() {
        const json before = state();
        QCOMPARE(rowOf<Call>().call(), KVA_ERROR_CONNECT);
        QVERIFY(state() == before);
    }

    void failsAfterLostConnection_data() { addRows(connectionCalls()); }
    void failsAfterLostConnection() {
        const auto row = rowOf<Call>();
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(KvaSim_Unplug(usbSerial));
        const json before = state();
        QCOMPARE(row.call(), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(row.call(), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        QVERIFY(KvaSim_Unplug(usbSerial));
        QVERIFY(state() == before);
    }

    void portListArguments_data() { addRows(portListRows); }
    void portListArguments() {
        const auto row = rowOf<PortListRow>();
        KVA_PORTINFO untouched{};
        std::memset(&untouched, 0x5A, sizeof untouched);
        std::vector<KVA_PORTINFO> list(5, untouched);
        std::int32_t counted = -7;
        QCOMPARE(KVA_GetDevicePortList(row.withList ? list.data() : nullptr,
                                       row.withCount ? &counted : nullptr, row.maxEntries),
                 row.result);
        QCOMPARE(counted, row.count);
        const int filled = row.withList ? std::max(row.count, 0) : 0;
        for (int index = 0; index < 5; ++index)
            QCOMPARE(sameBytes(list.at(std::size_t(index)), untouched), index >= filled);
    }

    void portListOfMoreThanHundred() {
        std::vector<std::int32_t> serialNumbers;
        for (std::int32_t index = 0; index < 150; ++index)
            serialNumbers.push_back(2000000 + index);
        QVERIFY(loadJson(benchOf(serialNumbers)));
        QCOMPARE(portCount(), 150);
        std::int32_t count = 0;
        std::vector<KVA_PORTINFO> list(100);
        QCOMPARE(KVA_GetDevicePortList(list.data(), &count, 100), KVA_SUCCESS);
        QCOMPARE(count, 100);
        QCOMPARE(list.back().serialNumber, 2000099);
    }

    void connectRefusesNull() { QCOMPARE(KVA_Connect(nullptr, 10), KVA_ERROR_ARGUMENT); }

    void connectComparesEveryByte() {
        const KVA_PORTINFO port = portOf(usbSerial);
        for (std::size_t offset = 0; offset < sizeof port; ++offset) {
            KVA_PORTINFO changed = port;
            reinterpret_cast<unsigned char*>(&changed)[offset] ^= 0x01U;
            QCOMPARE(KVA_Connect(&changed, 10), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        }
        QCOMPARE(KVA_Connect(&port, 10), KVA_SUCCESS);
    }

    void builtInBench() {
        KvaSim_Reset();
        const auto list = ports();
        QCOMPARE(list.size(), std::size_t{2});
        QCOMPARE(list[0].serialNumber, usbSerial);
        QCOMPARE(list[0].portType, std::uint32_t{ePortType_USB});
        QCOMPARE(list[1].serialNumber, networkSerial);
        QVERIFY(list[1].portType != std::uint32_t{ePortType_USB});
        QCOMPARE(list[1].portName, "192.168.0.20");
        std::vector<KVA_JIG_CALREFDATA> records;
        std::vector<KVA_NETWORKINFO> networks;
        for (const KVA_PORTINFO& port : list) {
            QCOMPARE(KVA_Connect(&port, 10), KVA_SUCCESS);
            records.push_back(held(KVA_JIG_GetFactoryCalib_CALREFDATA));
            for (const float value : records.back().rfWhite.spcData)
                QVERIFY2(value > 85.0F && value < 95.0F, QByteArray::number(double{value}));
            for (const float value : records.back().ambAdp.spcData)
                QVERIFY2(value > 0.5F && value < 1.5F, QByteArray::number(double{value}));
            QVERIFY(records.back().whiteSerialNo[0] >= 0x10);
            const auto& adapterSerialNo = records.back().ambAdpSerialNo;
            QVERIFY(adapterSerialNo[0] == 0 && adapterSerialNo[1] < 0x10);
            networks.push_back(held(KVA_GetNetworkInfo));
            QCOMPARE(int{held(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA).wifiModuleEnable}, 1);
            QCOMPARE(KVA_Disconnect(), KVA_SUCCESS);
        }
        QVERIFY(!sameBytes(records[0], records[1]));
        QVERIFY(!sameBytes(records[0].reserved, records[1].reserved));
        QVERIFY(!sameBytes(networks[0], networks[1]));
    }

    void deviceInfo() {
        QVERIFY(KvaSim_Set(usbSerial, R"({"device": {"serialNumber": 4294967295,
            "firmware": [4294967294, -1, -2147483648], "macAddress": "00:11:22:aa:BB:ff",
            "reserved1": {"hex": "0102030405060708"}, "reserved2": {"fill": 9}}})"));
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const KVA_DEVICEINFO expected = {4294967295U,
                                         4294967294U,
                                         -1,
                                         INT32_MIN,
                                         {1, 2, 3, 4, 5, 6, 7, 8},
                                         {0x00, 0x11, 0x22, 0xAA, 0xBB, 0xFF},
                                         {9, 9, 9, 9, 9, 9, 9, 9, 9, 9}};
        QVERIFY(sameBytes(held(KVA_GetDeviceInfo), expected));
    }

    void factoryOptions_data() { addRows(wirelessFlags); }
    void factoryOptions() {
        const auto row = rowOf<NamedValue<int>>();
        QVERIFY(KvaSim_Set(usbSerial, "{\"wirelessModule\": " + row.name + '}'));
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(int{held(KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA).wifiModuleEnable}, row.value);
    }

    void everyPowerOffMode() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        for (int value = 0; value < 256; ++value) {
            QCOMPARE(send(KVA_SetShutdownTime, static_cast<std::uint8_t>(value)), KVA_SUCCESS);
            QCOMPARE(int{held(KVA_GetShutdownTime)}, value);
            QCOMPARE(instrument(usbSerial)["powerOffMode"].get<int>(), value);
        }
    }

    void networkSettingsArePending() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const json active = network()["active"];
        KVA_NETWORKINFO settings = held(KVA_GetNetworkInfo);
        settings.APConnectUse = 2;
        settings.IPAddress[3] = 77;
        std::strcpy(settings.SSID, "another");
        QCOMPARE(send(KVA_SetNetworkInfo, settings), KVA_SUCCESS);
        QVERIFY(sameBytes(held(KVA_GetNetworkInfo), settings));
        QVERIFY(network()["active"] == active);
        QVERIFY(network()["pending"]["SSID"] == "another");

        QCOMPARE(KVA_Disconnect(), KVA_SUCCESS);
        QVERIFY(network()["active"] == active);
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(network()["pending"].is_null());
        QVERIFY(network()["active"]["IPAddress"] == "192.168.0.77");
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(sameBytes(held(KVA_GetNetworkInfo), settings));
    }

    void networkPaddingIsZero() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        KVA_NETWORKINFO settings{};
        settings.padding[0] = 1;
        settings.padding[1] = 2;
        QCOMPARE(send(KVA_SetNetworkInfo, settings), KVA_SUCCESS);
        QVERIFY(sameBytes(held(KVA_GetNetworkInfo), KVA_NETWORKINFO{}));
    }

    void calibrationIsStaged() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const json committed = calibration()["committed"];
        KVA_JIG_CALREFDATA data = held(KVA_JIG_GetFactoryCalib_CALREFDATA);
        data.whiteSerialNo[0] = 0x77;
        data.ambAdp.spcData[74] = 1.25F;
        data.reserved[2047] ^= 0xFFU;
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA, data), KVA_SUCCESS);
        QVERIFY(sameBytes(held(KVA_JIG_GetFactoryCalib_CALREFDATA), data));
        QVERIFY(calibration()["committed"] == committed);

        const json staged = calibration()["staged"];
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_SUCCESS);
        QVERIFY(calibration()["staged"].is_null());
        QVERIFY(calibration()["committed"] == staged);
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(sameBytes(held(KVA_JIG_GetFactoryCalib_CALREFDATA), data));
    }

    void powerCycleDropsStagedData() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const KVA_JIG_CALREFDATA before = held(KVA_JIG_GetFactoryCalib_CALREFDATA);
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA), KVA_SUCCESS);
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(calibration()["staged"].is_null());
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QVERIFY(sameBytes(held(KVA_JIG_GetFactoryCalib_CALREFDATA), before));
        QCOMPARE(KVA_JIG_SetFactoryCalib_WriteSector(), KVA_ERROR_NO_DATA);
    }

    void instrumentsAreApart() {
        const json other = instrument(networkSerial);
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        for (const Call& call : connectionCalls()) {
            if (QByteArray(call.name) != "KVA_Disconnect")
                call.call();
        }
        QVERIFY(KvaSim_PowerCycle(usbSerial));
        QVERIFY(instrument(networkSerial) == other);
    }
};

TEST_CLASS(TestSimulator)
#include "tst_simulator_calls.moc"
