// The call log, the trace file and control by requests.

#include "SimulatorTest.h"

#include <QFile>

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
    for (const ConnectionCall& call : connectionCalls()) {
        if (QByteArray(call.name) != "KVA_SetNetworkInfo" &&
            QByteArray(call.name) != "KVA_Disconnect")
            call.call();
    }
    KVA_Disconnect();
    KVA_RegisterDeviceEventHandler(nullptr);
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool holdsSecret(const QByteArray& text) {
    return text.contains("s3cret") || text.contains("behind") ||
           text.contains(QByteArray("s3cret").toHex()) ||
           text.contains(QByteArray("behind").toHex());
}

} // namespace

class TestSimulatorLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        startClean(m_folder);
        EventRecord::instance().clear();
        json bench = benchOf({usbSerial, networkSerial});
        for (json& instrument : bench["instruments"])
            instrument["startUpMs"] = 0;
        QVERIFY(loadJson(bench));
    }

    void everyCallIsLogged() {
        callEverything();
        QCOMPARE(QByteArray::fromStdString(calledFunctions()),
                 QByteArray("KVA_RegisterDeviceEventHandler KVA_GetDevicePortList KVA_Connect "
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

    void argumentsOfCalls_data() {
        QTest::addColumn<int>("number");
        QTest::addColumn<QByteArray>("arguments");
        const auto row = [](int number, const char* arguments) {
            QTest::newRow(QByteArray::number(number)) << number << QByteArray(arguments);
        };
        row(0, R"({"handler":true})");
        row(1, R"({"list":true,"maxEntries":1000})");
        row(2, R"({"serialNumber":1000001,"port":{"type":1,"name":"USB"},"wait":10})");
        row(3, R"({"serialNumber":1000001,"network":{"APConnectUse":0,"DHCPUse":0,
        "IPAddress":"0.0.0.0","SubnetMask":"0.0.0.0","DefaultGateway":"0.0.0.0","DNS":"0.0.0.0",
        "SSID":"press-hall","EncryptKey":{"length":26}}})");
        row(4, R"({"serialNumber":1000001})");
        row(7, R"({"serialNumber":1000001,"mode":3})");
        row(9, R"({"serialNumber":1000001,"whiteSerialNo":"00000000","ambAdpSerialNo":"00000000",
        "crc32":"0x769052ea"})");
        row(12, R"({"serialNumber":1000001})");
        row(13, R"({"handler":false})");
    }

    void argumentsOfCalls() {
        QFETCH(int, number);
        QFETCH(QByteArray, arguments);
        callEverything();
        const json logged = callLog().at(static_cast<std::size_t>(number))["arguments"];
        const json expected = json::parse(arguments.toStdString());
        QVERIFY2(logged == expected, logged.dump().c_str());
    }

    void crcOfRecord() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        KVA_JIG_CALREFDATA data{};
        std::memset(&data, 0xA5, sizeof data);
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
        const json first = callLog().back()["arguments"];
        QVERIFY(first["whiteSerialNo"] == json({{"hex", "a5a5a5a5"}}));
        data.reserved[2047] ^= 1U;
        QCOMPARE(KVA_JIG_SetFactoryCalib_CALREFDATA(&data), KVA_RESULT{KVA_SUCCESS});
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
        QCOMPARE(QByteArray::fromStdString(all).left(9), QByteArray("[{\"seq\":4"));
    }

    void keyIsInNoLog() {
        const QString path = m_folder.filePath("key.trace");
        qputenv("KVASIM_TRACE", QFile::encodeName(path));
        callEverything();
        QVERIFY(contentOf(path).contains("press-hall"));
        QVERIFY(!holdsSecret(contentOf(path)));
        QVERIFY(!holdsSecret(QByteArray::fromStdString(taken(KvaSim_CallLog()))));
        QVERIFY(holdsSecret(QByteArray::fromStdString(stateText())));
    }

    void traceHoldsOneLineACall() {
        const QString path = m_folder.filePath("lines.trace");
        qputenv("KVASIM_TRACE", QFile::encodeName(path));
        ports();
        QCOMPARE(contentOf(path).count('\n'), 1);
        connectTo(usbSerial);
        json lines = json::array();
        for (const QByteArray& line : contentOf(path).trimmed().split('\n'))
            lines.push_back(json::parse(line.toStdString()));
        QVERIFY(lines == callLog());
        struct stat status {};
        QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
        QCOMPARE(static_cast<int>(status.st_mode & 0777U), 0600);
    }

    void traceIsAppended() {
        const QString path = m_folder.filePath("appended.trace");
        qputenv("KVASIM_TRACE", QFile::encodeName(path));
        ports();
        KvaSim_Reset();
        ports();
        QCOMPARE(contentOf(path).count("\"seq\":1,"), 2);
    }

    void traceThatCannotBeWritten() {
        qputenv("KVASIM_TRACE", m_folder.path().toLocal8Bit());
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
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
        QCOMPARE(lastError(), QByteArray("no instrument 5 on the bench"));
        QVERIFY(KvaSim_Plug(usbSerial));
        QCOMPARE(lastError(), QByteArray());
        QVERIFY(!KvaSim_LoadJson(nullptr));
        QVERIFY(!lastError().isEmpty());
        QByteArray ofOtherThread = "not asked";
        std::thread([&] { ofOtherThread = lastError(); }).join();
        QCOMPARE(ofOtherThread, QByteArray());
        QVERIFY(!lastError().isEmpty());
    }

private:
    QTemporaryDir m_folder;
};

static const bool isAdded = simtest::addTest<TestSimulatorLog>();
#include "tst_simulator_log.moc"
