// The command kvasim, on a bench that this process uses.

#include "KvasimTest.h"

using namespace kvasimtest;

class TestKvasim : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void usage_data();
    void usage();
    void help_data();
    void help();
    void list();
    void showHidesTheKey();
    void showAsTable();
    void showAsJson();
    void plugging();
    void powerCycle();
    void set_data();
    void set();
    void setManyAtOnce();
    void refused_data();
    void refused();
    void faults();
    void faultRules_data();
    void faultRules();
    void log();
    void logFollows();

private:
    std::unique_ptr<Bench> m_bench;
};

void TestKvasim::init() {
    m_bench = std::make_unique<Bench>();
    m_bench->use();
}

void TestKvasim::cleanup() {
    KVA_RegisterDeviceEventHandler(nullptr);
    m_bench.reset();
}

void TestKvasim::usage_data() {
    QTest::addColumn<QString>("arguments");
    for (const char* arguments :
         {"", "dance", "show", "show x", "show 1 2", "show 99999999999", "list --nonsense", "set",
          "set 1000001", "fault", "fault dance", "fault add --function KVA_Connect",
          "fault add --result 0 --stale", "fault add --delay x --function KVA_Connect", "bench",
          "bench check", "list --bench", "plug"})
        QTest::newRow(arguments) << QString::fromLatin1(arguments);
}

void TestKvasim::usage() {
    QFETCH(QString, arguments);
    const Outcome outcome = kvasim(arguments.split(QLatin1Char(' '), Qt::SkipEmptyParts));
    QCOMPARE(outcome.status, 2);
    QVERIFY(!outcome.errors.isEmpty());
    QCOMPARE(outcome.output, QByteArray());
}

void TestKvasim::help_data() {
    QTest::addColumn<QString>("command");
    for (const char* command :
         {"", "list", "show", "plug", "unplug", "power-cycle", "set", "fault", "fault add",
          "fault list", "fault clear", "log", "bench", "bench check", "bench init"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void TestKvasim::help() {
    QFETCH(QString, command);
    const Outcome outcome =
        kvasim(command.split(QLatin1Char(' '), Qt::SkipEmptyParts) << QStringLiteral("--help"));
    QCOMPARE(outcome.status, 0);
    QVERIFY(outcome.output.contains("Usage: kvasim"));
}

void TestKvasim::list() {
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    const Outcome outcome = kvasim("list");
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.output, QByteArray("SERIAL   STATE      PORT\n"
                                        "1000001  connected  USB\n"
                                        "1000002  plugged    network 192.168.0.20\n"));
    QCOMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
    const json instruments = json::parse(kvasim("list --json").output.toStdString());
    QVERIFY(instruments[1]["serialNumber"] == networkSerial);
}

void TestKvasim::showHidesTheKey() {
    for (const char* command : {"show 1000001", "show 1000001 --json"}) {
        const QByteArray hidden = kvasim(command).output;
        QVERIFY(hidden.contains("EncryptKey"));
        QVERIFY(!hidden.contains(secret));
        QVERIFY(kvasim((QByteArray(command) + " --reveal").constData()).output.contains(secret));
    }
}

void TestKvasim::showAsTable() {
    QVERIFY(kvasim_test::set(usbSerial, {{"network", {{"pending", {{"SSID", "new-room"}}}}}}));
    const Outcome outcome = kvasim("show 1000001");
    QCOMPARE(outcome.status, 0);
    const auto row = [&](const char* start) {
        for (const QByteArray& line : outcome.output.split('\n')) {
            if (line.simplified().startsWith(start))
                return line.simplified();
        }
        return QByteArray();
    };
    QCOMPARE(row("NETWORK"), QByteArray("NETWORK ACTIVE PENDING"));
    QVERIFY(row("SSID").endsWith("new-room"));
    QCOMPARE(row("IPAddress"), QByteArray("IPAddress 192.168.0.10 192.168.0.10"));
    QCOMPARE(row("CALIBRATION"), QByteArray("CALIBRATION COMMITTED STAGED"));
    QCOMPARE(row("white serial"), QByteArray("white serial number 10000001 -"));
    QVERIFY(!row("adapter value 74").isEmpty());
}

void TestKvasim::showAsJson() {
    const json shown = json::parse(kvasim("show 1000001 --json --reveal").output.toStdString());
    QVERIFY(shown == instrument(usbSerial));
}

void TestKvasim::plugging() {
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    QCOMPARE(kvasim("unplug 1000001").status, 0);
    KVA_DEVICEINFO info{};
    QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
    QVERIFY(kvasim("list").output.contains("1000001  unplugged"));
    QCOMPARE(kvasim("plug 1000001").status, 0);
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_CONNECT_ALREADY});
}

void TestKvasim::powerCycle() {
    QVERIFY(kvasim_test::set(
        usbSerial, {{"network", {{"pending", {{"SSID", "new-room"}}}}}, {"startUpMs", 600000}}));
    QCOMPARE(kvasim("power-cycle 1000001").status, 0);
    QVERIFY(instrument(usbSerial)["network"]["active"]["SSID"] == "new-room");
    QVERIFY(kvasim("list").output.contains("1000001  starting"));
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR});
}

void TestKvasim::set_data() {
    QTest::addColumn<QString>("assignment");
    QTest::addColumn<QByteArray>("pointer");
    QTest::addColumn<QByteArray>("value");
    const auto row = [](const char* assignment, const char* pointer, const char* value) {
        QTest::newRow(assignment) << QString::fromUtf8(assignment) << QByteArray(pointer)
                                  << QByteArray(value);
    };
    row("powerOffMode=3", "/powerOffMode", "3");
    row("plugged=false", "/plugged", "false");
    row("wirelessModule=false", "/wirelessModule", "false");
    row("network.active.SSID=lab", "/network/active/SSID", "\"lab\"");
    row("network.active.SSID=12345", "/network/active/SSID", "\"12345\"");
    row("network.active.SSID=a=b c", "/network/active/SSID", "\"a=b c\"");
    row("network.active.SSID=", "/network/active/SSID", "\"\"");
    row("network.pending.SSID=007", "/network/pending/SSID", "\"007\"");
    row("network.active.IPAddress=10.0.0.1", "/network/active/IPAddress", "\"10.0.0.1\"");
    row("calibration.committed.white.values.3=91.5", "/calibration/committed/white/values/3",
        "91.5");
    row("calibration.committed.ambientAdapter.values[74]=1.25",
        "/calibration/committed/ambientAdapter/values/74", "1.25");
    row("calibration.staged.white.values.0=80.25", "/calibration/staged/white/values/0", "80.25");
    row("calibration.committed.white.serialNumber=00000007",
        "/calibration/committed/white/serialNumber", "\"00000007\"");
    row("calibration.committed.reserved={\"fill\": 3}", "/calibration/committed/reserved",
        "{\"fill\": 3}");
    row("device.firmware.2=99", "/device/firmware/2", "99");
    row("device.firmware=[4, 5, 6]", "/device/firmware", "[4, 5, 6]");
    row("port.name={\"hex\": \"" /* all 36 bytes */
        "414141414141414141414141414141414141414141414141414141414141414141414141\"}",
        "/port/name", "\"AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\"");
}

void TestKvasim::set() {
    QFETCH(QString, assignment);
    QFETCH(QByteArray, pointer);
    QFETCH(QByteArray, value);
    const Outcome outcome = kvasim({QStringLiteral("set"), QStringLiteral("1000001"), assignment});
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.status, 0);
    const json now = instrument(usbSerial).at(json::json_pointer(pointer.toStdString()));
    QVERIFY2(now == json::parse(value.toStdString()), now.dump().c_str());
}

void TestKvasim::setManyAtOnce() {
    json expected = instrument(usbSerial);
    expected["powerOffMode"] = 2;
    expected["device"]["firmware"] = {7, 12, 8};
    expected["network"]["active"]["SSID"] = "x";
    expected["network"]["active"]["DHCPUse"] = 1;
    QCOMPARE(kvasim("set 1000001 powerOffMode=2 device.firmware=[1,12,3] device.firmware.0=7 "
                    "device.firmware.2=8 network.active.SSID=x network.active.DHCPUse=1")
                 .status,
             0);
    QVERIFY(instrument(usbSerial) == expected);
}

void TestKvasim::refused_data() {
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QByteArray>("reason");
    const auto row = [](const char* arguments, const char* reason) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments) << QByteArray(reason);
    };
    row("show 5", "no instrument 5 on the bench");
    row("unplug 5", "no instrument 5 on the bench");
    row("set 5 powerOffMode=1", "no instrument 5 on the bench");
    row("set 1000001 powerOffMode", "is not FIELD=VALUE");
    row("set 1000001 =5", "is not FIELD=VALUE");
    row("set 1000001 a..b=5", "is not the path of a field");
    row("set 1000001 powerOffMode=256", "powerOffMode: must be a whole number from 0 to 255");
    row("set 1000001 powerOffMode=on", "powerOffMode: must be");
    row("set 1000001 nonsense=1", "nonsense: is not a known field");
    row("set 1000001 device.firmware.3=1", "has no element 3");
    row("set 1000001 serialNumber=1000002", "serialNumber: is the serial number of another");
    row("fault add --function KVA_Nothing --result 0", "fault.function: is not the name");
    row("fault add --result KVA_NOTHING", "fault.result: is not the name of a result code");
    row("fault add --unplug never", "fault.unplug: must be");
    row("list --bench /nowhere/at-all.json", "/nowhere/at-all.json: No such file");
    row("bench check /nowhere/at-all.json", "/nowhere/at-all.json: cannot be opened");
    row("bench init /nowhere/at-all.json", "/nowhere/at-all.json: cannot be written");
}

void TestKvasim::refused() {
    QFETCH(QString, arguments);
    QFETCH(QByteArray, reason);
    const QByteArray before = QByteArray::fromStdString(stateText());
    const Outcome outcome = kvasim(arguments.split(QLatin1Char(' ')));
    QCOMPARE(outcome.status, 1);
    QVERIFY2(outcome.errors.startsWith("kvasim: "), outcome.errors.constData());
    QVERIFY2(outcome.errors.contains(reason), outcome.errors.constData());
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(QByteArray::fromStdString(stateText()), before);
}

void TestKvasim::faults() {
    QCOMPARE(kvasim("fault list").output, QByteArray());
    QCOMPARE(kvasim("fault add --function KVA_Connect --result KVA_ERROR_NAK --times 1").status, 0);
    const QByteArray listed = kvasim("fault list").output;
    QVERIFY2(listed.contains("KVA_ERROR_NAK") && listed.count('\n') == 1, listed.constData());
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    QCOMPARE(kvasim("fault add --result -9999").status, 0);
    QCOMPARE(kvasim("fault clear").status, 0);
    QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
    QCOMPARE(kvasim("fault list --json").output, QByteArray("[]\n"));
}

void TestKvasim::faultRules_data() {
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("rule");
    const auto row = [](const char* options, const char* rule) {
        QTest::newRow(options) << QString::fromLatin1(options) << QByteArray(rule);
    };
    row("--result 5", R"("call": "every",
        "result": "KVA_WARNING_WCALIB_TEMP/KVA_WARNING_INITIALDATE_SETTING")");
    row("--call 2-5 --serial 7 --times 3 --delay 20",
        R"("call": "2-5", "serialNumber": 7, "times": 3, "delayMs": 20)");
    row("--call 4 --dropped", R"("call": 4, "dropped": true)");
    row("--stale", R"("call": "every", "stale": true)");
    row("--corrupt SSID --value 65",
        R"("call": "every", "corrupted": {"field": "SSID", "value": 65})");
    row("--corrupt 100 --xor 1", R"("call": "every", "corrupted": {"offset": 100, "xor": 1})");
    row("--short-list 0", R"("call": "every", "shortList": 0)");
    row("--unplug after --instrument 9", R"("call": "every", "unplug": "after", "instrument": 9)");
    row("--probability 0.5 --seed 3 --result -1",
        R"("call": "every", "probability": 0.5, "seed": 3, "result": -1)");
}

void TestKvasim::faultRules() {
    QFETCH(QString, options);
    QFETCH(QByteArray, rule);
    const Outcome outcome = kvasim(QStringList{QStringLiteral("fault"), QStringLiteral("add")}
                                   << options.split(QLatin1Char(' ')));
    QCOMPARE(outcome.errors, QByteArray());
    const json listed = json::parse(kvasim("fault list --json").output.toStdString());
    const json expected = json::parse("{\"function\": \"*\", " + rule.toStdString() + '}');
    QVERIFY2(listed == json::array({expected}), listed.dump().c_str());
}

void TestKvasim::log() {
    QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
    KVA_NETWORKINFO network{};
    QCOMPARE(KVA_GetNetworkInfo(&network), KVA_RESULT{KVA_SUCCESS});
    QCOMPARE(KVA_SetNetworkInfo(&network), KVA_RESULT{KVA_SUCCESS});
    const QByteArray text = kvasim("log").output;
    QVERIFY(text.contains("KVA_SetNetworkInfo"));
    QVERIFY(!text.contains(secret));
    json calls = json::array();
    for (const QByteArray& line : kvasim("log --json").output.trimmed().split('\n'))
        calls.push_back(json::parse(line.toStdString()));
    QVERIFY(calls == callLog());
    for (int round = 0; round < 2500; ++round)
        KVA_Disconnect();
    QCOMPARE(kvasim("log").output.count('\n'), 2505);
}

void TestKvasim::logFollows() {
    QProcess follower;
    follower.start(QStringLiteral(KVASIM), {QStringLiteral("log"), QStringLiteral("-f")});
    QVERIFY(follower.waitForStarted());
    QByteArray output;
    const auto seen = [&](const char* text) {
        output += follower.readAllStandardOutput();
        return output.contains(text);
    };
    QTRY_VERIFY(seen("KVA_GetDevicePortList"));
    KVA_Disconnect();
    QTRY_VERIFY(seen("KVA_Disconnect"));
    for (int round = 0; round < 3000; ++round)
        KVA_GetDevicePortList(nullptr, nullptr, 0);
    QTRY_COMPARE((seen(""), output.count("KVA_ERROR_ARGUMENT")), 3000);
    KvaSim_Reset(); // gives the bench up, as the end of the program does
    QTRY_COMPARE(follower.state(), QProcess::NotRunning);
    QCOMPARE(follower.exitCode(), 0);
    QCOMPARE(follower.readAllStandardError(), QByteArray());
}

QTEST_GUILESS_MAIN(TestKvasim)
#include "tst_kvasim.moc"
