// The command kvasim, on a bench that this process uses.

#include "KvasimTest.h"

using namespace simtest;

namespace {

/** Arguments of the command, and what is expected. */
struct CommandRow {
    const char* name;
    const char* expected;
    const char* pointer = ""; ///< of the field that is set
};

} // namespace

class TestKvasim : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench.emplace(); }
    void cleanup() { m_bench.reset(); }

    void usage_data() {
        addNames({"", "dance", "show", "show x", "show 1 2", "show 99999999999", "list --nonsense",
                  "set", "set 1000001", "fault", "fault dance", "fault add --function KVA_Connect",
                  "fault add --result 0 --stale", "fault add --delay x --function KVA_Connect",
                  "bench", "bench check", "list --bench", "plug"});
    }
    void usage() {
        const Outcome outcome = kvasim(QTest::currentDataTag());
        QCOMPARE(outcome.status, 2);
        QVERIFY(!outcome.errors.isEmpty());
        QCOMPARE(outcome.output, "");
    }

    void help_data() {
        addNames({"", "list", "show", "plug", "unplug", "power-cycle", "set", "fault", "fault add",
                  "fault list", "fault clear", "log", "bench", "bench check", "bench init"});
    }
    void help() {
        const Outcome outcome = kvasim(wordsOf(QTest::currentDataTag()) << "--help");
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.output.contains("Usage: kvasim"));
    }

    void list() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        const Outcome outcome = kvasim("list");
        QCOMPARE(outcome.errors, "");
        QCOMPARE(outcome.output, QByteArray("SERIAL   STATE      PORT\n"
                                            "1000001  connected  USB\n"
                                            "1000002  plugged    network 192.168.0.20\n"));
        QCOMPARE(kvasim("list --serials").output, "1000001\n1000002\n");
        const json instruments = json::parse(kvasim("list --json").output.toStdString());
        QVERIFY(instruments[1]["serialNumber"] == networkSerial);
    }

    void showHidesTheKey() {
        for (const char* command : {"show 1000001", "show 1000001 --json"}) {
            const QByteArray hidden = kvasim(command).output;
            QVERIFY(hidden.contains("EncryptKey"));
            QVERIFY(!hidden.contains(secret));
            QVERIFY(
                kvasim((QByteArray(command) + " --reveal").constData()).output.contains(secret));
        }
        const json shown = json::parse(kvasim("show 1000001 --json --reveal").output.toStdString());
        QVERIFY(shown == instrument(usbSerial));
    }

    void showAsTable() {
        QVERIFY(simtest::set(usbSerial, {{"network", {{"pending", {{"SSID", "new-room"}}}}}}));
        const Outcome outcome = kvasim("show 1000001");
        QCOMPARE(outcome.status, 0);
        const auto row = [&](const char* start) {
            for (const QByteArray& line : outcome.output.split('\n')) {
                if (line.simplified().startsWith(start))
                    return line.simplified();
            }
            return QByteArray();
        };
        QCOMPARE(row("NETWORK"), "NETWORK ACTIVE PENDING");
        QVERIFY(row("SSID").endsWith("new-room"));
        QCOMPARE(row("IPAddress"), "IPAddress 192.168.0.10 192.168.0.10");
        QCOMPARE(row("CALIBRATION"), "CALIBRATION COMMITTED STAGED");
        QCOMPARE(row("white serial"), "white serial number 10000001 -");
        QVERIFY(!row("adapter value 74").isEmpty());
    }

    void plugging() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(kvasim("unplug 1000001").status, 0);
        KVA_DEVICEINFO info{};
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        QVERIFY(kvasim("list").output.contains("1000001  unplugged"));
        QCOMPARE(kvasim("plug 1000001").status, 0);
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(connectTo(usbSerial), KVA_ERROR_CONNECT_ALREADY);
    }

    void powerCycle() {
        QVERIFY(simtest::set(usbSerial, {{"network", {{"pending", {{"SSID", "new-room"}}}}},
                                         {"startUpMs", 600000}}));
        QCOMPARE(kvasim("power-cycle 1000001").status, 0);
        QVERIFY(instrument(usbSerial)["network"]["active"]["SSID"] == "new-room");
        QVERIFY(kvasim("list").output.contains("1000001  starting"));
        QCOMPARE(portOf(usbSerial).serialNumber, 0);
    }

    void set_data() {
        addRows(QVector<CommandRow>{
            {"powerOffMode=3", "3", "/powerOffMode"},
            {"plugged=false", "false", "/plugged"},
            {"wirelessModule=false", "false", "/wirelessModule"},
            {"network.active.SSID=lab", "\"lab\"", "/network/active/SSID"},
            {"network.active.SSID=12345", "\"12345\"", "/network/active/SSID"},
            {"network.active.SSID=a=b c", "\"a=b c\"", "/network/active/SSID"},
            {"network.active.SSID=", "\"\"", "/network/active/SSID"},
            {"network.pending.SSID=007", "\"007\"", "/network/pending/SSID"},
            {"network.active.IPAddress=10.0.0.1", "\"10.0.0.1\"", "/network/active/IPAddress"},
            {"calibration.committed.white.values.3=91.5", "91.5",
             "/calibration/committed/white/values/3"},
            {"calibration.committed.ambientAdapter.values[74]=1.25", "1.25",
             "/calibration/committed/ambientAdapter/values/74"},
            {"calibration.staged.white.values.0=80.25", "80.25",
             "/calibration/staged/white/values/0"},
            {"calibration.committed.white.serialNumber=00000007", "\"00000007\"",
             "/calibration/committed/white/serialNumber"},
            {"calibration.committed.reserved={\"fill\": 3}", "{\"fill\": 3}",
             "/calibration/committed/reserved"},
            {"device.firmware.2=99", "99", "/device/firmware/2"},
            {"device.firmware=[4, 5, 6]", "[4, 5, 6]", "/device/firmware"},
            {"port.name={\"hex\": \""
             "414141414141414141414141414141414141414141414141414141414141414141414141\"}",
             "\"AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\"", "/port/name"},
        });
    }
    void set() {
        const auto row = rowOf<CommandRow>();
        const Outcome outcome = kvasim({"set", "1000001", row.name});
        QCOMPARE(outcome.errors, "");
        QCOMPARE(outcome.status, 0);
        const json now = instrument(usbSerial).at(json::json_pointer(row.pointer));
        QVERIFY2(now == json::parse(row.expected), now.dump().c_str());
    }

    void setManyAtOnce() {
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

    void refused_data() {
        addRows(QVector<CommandRow>{
            {"show 5", "no instrument 5 on the bench"},
            {"unplug 5", "no instrument 5 on the bench"},
            {"set 5 powerOffMode=1", "no instrument 5 on the bench"},
            {"set 1000001 powerOffMode", "is not FIELD=VALUE"},
            {"set 1000001 =5", "is not FIELD=VALUE"},
            {"set 1000001 a..b=5", "is not the path of a field"},
            {"set 1000001 powerOffMode=256", "powerOffMode: must be a whole number from 0 to 255"},
            {"set 1000001 powerOffMode=on", "powerOffMode: must be"},
            {"set 1000001 nonsense=1", "nonsense: is not a known field"},
            {"set 1000001 device.firmware.3=1", "has no element 3"},
            {"set 1000001 serialNumber=1000002", "serialNumber: is the serial number of another"},
            {"fault add --function KVA_Nothing --result 0", "fault.function: is not the name"},
            {"fault add --result KVA_NOTHING", "fault.result: is not the name of a result code"},
            {"fault add --unplug never", "fault.unplug: must be"},
            {"list --bench /nowhere/at-all.json",
             "/nowhere/at-all.json: cannot be opened: No such file"},
            {"bench check /nowhere/at-all.json", "/nowhere/at-all.json: cannot be opened"},
            {"bench init /nowhere/at-all.json", "/nowhere/at-all.json: cannot be written"},
        });
    }
    void refused() {
        const auto row = rowOf<CommandRow>();
        const std::string before = stateText();
        const Outcome outcome = kvasim(row.name);
        QCOMPARE(outcome.status, 1);
        QVERIFY2(outcome.errors.startsWith("kvasim: "), outcome.errors.constData());
        QVERIFY2(outcome.errors.contains(row.expected), outcome.errors.constData());
        QCOMPARE(outcome.output, "");
        QVERIFY(stateText() == before);
    }

    void faults() {
        QCOMPARE(kvasim("fault list").output, "");
        QCOMPARE(kvasim("fault add --function KVA_Connect --result KVA_ERROR_NAK --times 1").status,
                 0);
        const QByteArray listed = kvasim("fault list").output;
        QVERIFY2(listed.contains("KVA_ERROR_NAK") && listed.count('\n') == 1, listed.constData());
        QCOMPARE(connectTo(usbSerial), KVA_ERROR_NAK);
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(kvasim("fault add --result -9999").status, 0);
        QCOMPARE(kvasim("fault clear").status, 0);
        QCOMPARE(KVA_Disconnect(), KVA_SUCCESS);
        QCOMPARE(kvasim("fault list --json").output, "[]\n");
    }

    void faultRules_data() {
        addRows(QVector<CommandRow>{
            {"--result 5", R"("call": "every",
        "result": "KVA_WARNING_WCALIB_TEMP/KVA_WARNING_INITIALDATE_SETTING")"},
            {"--call 2-5 --serial 7 --times 3 --delay 20",
             R"("call": "2-5", "serialNumber": 7, "times": 3, "delayMs": 20)"},
            {"--call 4 --dropped", R"("call": 4, "dropped": true)"},
            {"--stale", R"("call": "every", "stale": true)"},
            {"--corrupt SSID --value 65",
             R"("call": "every", "corrupted": {"field": "SSID", "value": 65})"},
            {"--corrupt 100 --xor 1", R"("call": "every", "corrupted": {"offset": 100, "xor": 1})"},
            {"--short-list 0", R"("call": "every", "shortList": 0)"},
            {"--unplug after --instrument 9",
             R"("call": "every", "unplug": "after", "instrument": 9)"},
            {"--probability 0.5 --seed 3 --result -1",
             R"("call": "every", "probability": 0.5, "seed": 3, "result": -1)"},
        });
    }
    void faultRules() {
        const auto row = rowOf<CommandRow>();
        const Outcome outcome = kvasim(QStringList{"fault", "add"} << wordsOf(row.name));
        QCOMPARE(outcome.errors, "");
        const json listed = json::parse(kvasim("fault list --json").output.toStdString());
        const json expected =
            json::parse(std::string("{\"function\": \"*\", ") + row.expected + '}');
        QVERIFY2(listed == json::array({expected}), listed.dump().c_str());
    }

    void log() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(send(KVA_SetNetworkInfo, held(KVA_GetNetworkInfo)), KVA_SUCCESS);
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

    void logIsMoved() {
        m_bench->write("bench.json.log", QByteArray(4 << 20, '\n'));
        KVA_Disconnect();
        QCOMPARE(kvasim("log").output.count('\n'), 1);
        QCOMPARE(QFileInfo("bench.json.log.old").size(), qint64{4} << 20);
        QVERIFY(QFileInfo("bench.json.log").size() < 1000);
    }

    void benchCheck() {
        m_bench->write("other.json", Bench::text());
        const Outcome good = kvasim("bench check other.json");
        QCOMPARE(good.status, 0);
        QVERIFY(good.output.endsWith("other.json: good, 2 instruments, 0 rules\n"));
        const QByteArray damaged = "{\"version\": 1,\n \"instruments\": [,]}\n";
        m_bench->write("other.json", damaged);
        const Outcome bad = kvasim("bench check other.json");
        QCOMPARE(bad.status, 1);
        QVERIFY2(bad.errors.contains("line 2, column 18"), bad.errors.constData());
        QCOMPARE(m_bench->read("other.json"), damaged);
    }

    void benchInit() {
        QCOMPARE(kvasim("bench init new.json").status, 0);
        const QByteArray text = m_bench->read("new.json");
        QVERIFY(text.startsWith("//"));
        QCOMPARE(kvasim("bench check new.json").status, 0);
        QCOMPARE(kvasim("bench init new.json").status, 1);
        QVERIFY2(KvaSim_LoadJson(text.constData()), KvaSim_LastError());
        QVERIFY(instrument(usbSerial)["network"]["active"]["SSID"] == "measuring-room");
    }

    void nobodyRuns() {
        KvaSim_Reset();
        QCOMPARE(kvasim("list --serials").output, "1000001\n1000002\n");
        QCOMPARE(kvasim("unplug 1000001").status, 0);
        QVERIFY(kvasim({"list", "--bench", m_bench->path("bench.json")})
                    .output.contains("1000001  unplugged"));
        QCOMPARE(kvasim("log -f").status, 0);
        qunsetenv("KVASIM_BENCH");
        QCOMPARE(kvasim("list --serials").output, "1000001\n1000002\n");
        QVERIFY(QFile::exists("vq-tl4-simulator/bench.json"));
    }

private:
    std::optional<Bench> m_bench;
};

TEST_CLASS(TestKvasim)
#include "tst_kvasim.moc"
