// The call log, the trace file and control by requests.

#include "SimulatorTest.h"

#include <sys/stat.h>

using namespace simtest;

namespace {

constexpr const char* secret = "s3cret-of-the-access-point";

/** Calls every function once, with a security key; ends without a connection. */
void callEverything() {
    KVA_RegisterDeviceEventHandler(recordEvent);
    connectTo(usbSerial);
    KVA_NETWORKINFO network{};
    std::strcpy(network.SSID, "press-hall");
    std::strcpy(network.EncryptKey, secret);
    // What lies behind the end of the key is as secret as the key.
    std::strcpy(network.EncryptKey + 40, "behind");
    KVA_SetNetworkInfo(&network);
    for (const Call& call : connectionCalls()) {
        if (QByteArray(call.name) != "KVA_SetNetworkInfo" &&
            QByteArray(call.name) != "KVA_Disconnect")
            call.call();
    }
    KVA_Disconnect();
    KVA_RegisterDeviceEventHandler(nullptr);
}

bool holdsSecret(const QByteArray& text) {
    return text.contains("s3cret") || text.contains("behind") ||
           text.contains(QByteArray("s3cret").toHex()) ||
           text.contains(QByteArray("behind").toHex());
}

// The number of a call, and its arguments.
const NamedText argumentRows[] = {
    {"0", R"({"handler":true})"},
    {"1", R"({"list":true,"maxEntries":1000})"},
    {"2", R"({"serialNumber":1000001,"port":{"type":1,"name":"USB"},"wait":10})"},
    {"3", R"({"serialNumber":1000001,"network":{"APConnectUse":0,"DHCPUse":0,
        "IPAddress":"0.0.0.0","SubnetMask":"0.0.0.0","DefaultGateway":"0.0.0.0","DNS":"0.0.0.0",
        "SSID":"press-hall","EncryptKey":{"length":26}}})"},
    {"4", R"({"serialNumber":1000001})"},
    {"7", R"({"serialNumber":1000001,"mode":3})"},
    {"9", R"({"serialNumber":1000001,"whiteSerialNo":"00000000","ambAdpSerialNo":"00000000",
        "crc32":"0x769052ea"})"},
    {"12", R"({"serialNumber":1000001})"},
    {"13", R"({"handler":false})"},
};

} // namespace

class TestSimulatorLog : public SimulatorTest {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        QFile::remove("trace"); // of the test before
        json bench = benchOf({usbSerial, networkSerial});
        for (json& instrument : bench["instruments"])
            instrument["startUpMs"] = 0;
        QVERIFY(loadJson(bench));
    }

    void everyCallIsLogged() {
        callEverything();
        QCOMPARE(
            calledFunctions(),
            std::string("KVA_RegisterDeviceEventHandler KVA_GetDevicePortList KVA_Connect "
                        "KVA_SetNetworkInfo KVA_GetDeviceInfo KVA_GetNetworkInfo "
                        "KVA_GetShutdownTime KVA_SetShutdownTime "
                        "KVA_JIG_GetFactoryCalib_CALREFDATA KVA_JIG_SetFactoryCalib_CALREFDATA "
                        "KVA_JIG_SetFactoryCalib_WriteSector "
                        "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA KVA_Disconnect "
                        "KVA_RegisterDeviceEventHandler"));
        int number = 0;
        for (const auto& call : callLog()) {
            QCOMPARE(call.size(), std::size_t{6});
            QVERIFY(call["seq"] == ++number);
            QVERIFY(call["result"] == 0);
            QVERIFY(call["resultName"] == "KVA_SUCCESS");
            QVERIFY(call["durationUs"].is_number_unsigned() || call["durationUs"] >= 0);
        }
    }

    void argumentsOfCalls_data() { addRows(argumentRows); }
    void argumentsOfCalls() {
        const auto row = rowOf<NamedText>();
        callEverything();
        const json logged = callLog().at(row.name.toUInt())["arguments"];
        QVERIFY2(logged == json::parse(row.value.toStdString()), logged.dump().c_str());
    }

    void crcOfRecord() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        KVA_JIG_CALREFDATA data{};
        std::memset(&data, 0xA5, sizeof data);
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA, data), KVA_SUCCESS);
        const json first = callLog().back()["arguments"];
        QVERIFY(first["whiteSerialNo"] == json({{"hex", "a5a5a5a5"}}));
        data.reserved[2047] ^= 1U;
        QCOMPARE(send(KVA_JIG_SetFactoryCalib_CALREFDATA, data), KVA_SUCCESS);
        QVERIFY(callLog().back()["arguments"]["crc32"] != first["crc32"]);
    }

    void numbersGoOn() {
        ports();
        ports();
        QVERIFY(callLog().back()["seq"] == 2);
        KvaSim_ClearCallLog();
        QVERIFY(callLog() == json::array());
        ports();
        QCOMPARE(callLog().size(), std::size_t{1});
        QVERIFY(callLog().back()["seq"] == 3);
        KvaSim_Reset();
        QVERIFY(callLog() == json::array());
        ports();
        QVERIFY(callLog().back()["seq"] == 1);
    }

    void logIsBounded() {
        for (int round = 0; round < 100003; ++round)
            KVA_Disconnect();
        const std::string all = taken(KvaSim_CallLog());
        QCOMPARE(std::count(all.begin(), all.end(), '\n') + 1, std::ptrdiff_t{100000});
        QCOMPARE(QByteArray::fromStdString(all).left(9), "[{\"seq\":4");
    }

    void keyIsInNoLog() {
        qputenv("KVASIM_TRACE", m_folder.localPath("trace"));
        callEverything();
        QVERIFY(m_folder.read("trace").contains("press-hall"));
        QVERIFY(!holdsSecret(m_folder.read("trace")));
        QVERIFY(!holdsSecret(QByteArray::fromStdString(taken(KvaSim_CallLog()))));
        QVERIFY(holdsSecret(QByteArray::fromStdString(stateText())));
    }

    void traceHoldsOneLineACall() {
        qputenv("KVASIM_TRACE", m_folder.localPath("trace"));
        ports();
        QCOMPARE(m_folder.read("trace").count('\n'), 1);
        connectTo(usbSerial);
        json lines = json::array();
        for (const QByteArray& line : m_folder.read("trace").trimmed().split('\n'))
            lines.push_back(json::parse(line.toStdString()));
        QVERIFY(lines == callLog());
        struct stat status {};
        QCOMPARE(::stat("trace", &status), 0);
        QCOMPARE(static_cast<int>(status.st_mode & 0777U), 0600);
    }

    void traceIsAppended() {
        qputenv("KVASIM_TRACE", m_folder.localPath("trace"));
        ports();
        KvaSim_Reset();
        ports();
        QCOMPARE(m_folder.read("trace").count("\"seq\":1,"), 2);
    }

    void traceThatCannotBeWritten() {
        qputenv("KVASIM_TRACE", m_folder.path().toLocal8Bit());
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(callLog().size(), std::size_t{2});
        KvaSim_Reset();
#ifdef Q_OS_LINUX
        qputenv("KVASIM_TRACE", "/dev/full");
        QCOMPARE(ports().size(), std::size_t{2});
        QCOMPARE(ports().size(), std::size_t{2});
        QCOMPARE(callLog().size(), std::size_t{2});
#endif
    }

    void mergePatch() {
        const json before = instrument(usbSerial);
        QVERIFY(KvaSim_Set(usbSerial, R"({"network": {"pending": {"SSID": "x"}}, "powerOffMode": 9,
        "calibration": {"committed": {"reserved": {"fill": 7}}}})"));
        json expected = before;
        expected["network"]["pending"] = before["network"]["active"];
        expected["network"]["pending"]["SSID"] = "x";
        expected["powerOffMode"] = 9;
        expected["calibration"]["committed"]["reserved"] = {{"fill", 7}};
        QVERIFY(instrument(usbSerial) == expected);
        QVERIFY(KvaSim_Set(usbSerial, R"({"network": {"pending": null}, "powerOffMode": null,
        "calibration": null})"));
        QVERIFY(instrument(usbSerial) == before);
    }

    void lastErrorIsOfLastCall() {
        QVERIFY(!KvaSim_Plug(5));
        QCOMPARE(lastError(), "no instrument 5 on the bench");
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(lastError(), "");
        QVERIFY(!KvaSim_LoadJson(nullptr));
        QVERIFY(!lastError().isEmpty());
        QByteArray ofOtherThread = "not asked";
        std::thread([&] { ofOtherThread = lastError(); }).join();
        QCOMPARE(ofOtherThread, "");
        QVERIFY(!lastError().isEmpty());
    }
};

TEST_CLASS(TestSimulatorLog)
#include "tst_simulator_log.moc"
