// The command kvasim, on a bench that this process uses.

#include "KvasimTest.h"

#include <QDeadlineTimer>

#include <random>

using namespace kvasimtest;

namespace {

struct EventsCase {
    const char* name;
    QList<const char*> commands;
    const char* codes;
};

/** Arguments of the command, and what is expected. */
struct Case {
    const char* arguments;
    const char* expected = "";
    const char* pointer = ""; ///< of the field that is set
};

template <std::size_t Count>
void addCases(const Case (&cases)[Count]) {
    QTest::addColumn<Case>("given");
    for (const Case& row : cases)
        QTest::newRow(row.arguments) << row;
}

std::mutex g_mutex;
QByteArray g_codes;

void recordCode(std::uint32_t code, std::uint32_t, std::int32_t) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_codes += (g_codes.isEmpty() ? "" : " ") + QByteArray::number(code);
}

QByteArray codes() {
    const std::lock_guard<std::mutex> lock(g_mutex);
    return g_codes;
}

} // namespace

Q_DECLARE_METATYPE(EventsCase)
Q_DECLARE_METATYPE(Case)

class TestKvasim : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_bench = std::make_unique<Bench>();
        m_bench->use();
    }

    void cleanup() {
        KVA_RegisterDeviceEventHandler(nullptr);
        m_bench.reset();
    }

    void usage_data() {
        addCases({{""},
                  {"dance"},
                  {"show"},
                  {"show x"},
                  {"show 1 2"},
                  {"show 99999999999"},
                  {"list --nonsense"},
                  {"set"},
                  {"set 1000001"},
                  {"fault"},
                  {"fault dance"},
                  {"fault add --function KVA_Connect"},
                  {"fault add --result 0 --stale"},
                  {"fault add --delay x --function KVA_Connect"},
                  {"bench"},
                  {"bench check"},
                  {"list --bench"},
                  {"plug"}});
    }

    void usage() {
        QFETCH(Case, given);
        const Outcome outcome = kvasim(given.arguments);
        QCOMPARE(outcome.status, 2);
        QVERIFY(!outcome.errors.isEmpty());
        QCOMPARE(outcome.output, QByteArray());
    }

    void help_data() {
        addCases({{""},
                  {"list"},
                  {"show"},
                  {"plug"},
                  {"unplug"},
                  {"power-cycle"},
                  {"set"},
                  {"fault"},
                  {"fault add"},
                  {"fault list"},
                  {"fault clear"},
                  {"log"},
                  {"bench"},
                  {"bench check"},
                  {"bench init"}});
    }

    void help() {
        QFETCH(Case, given);
        const Outcome outcome = kvasim(wordsOf(given.arguments) << "--help");
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.output.contains("Usage: kvasim"));
    }

    void list() {
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

    void showHidesTheKey() {
        for (const char* command : {"show 1000001", "show 1000001 --json"}) {
            const QByteArray hidden = kvasim(command).output;
            QVERIFY(hidden.contains("EncryptKey"));
            QVERIFY(!hidden.contains(secret));
            QVERIFY(
                kvasim((QByteArray(command) + " --reveal").constData()).output.contains(secret));
        }
    }

    void showAsTable() {
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

    void showAsJson() {
        const json shown = json::parse(kvasim("show 1000001 --json --reveal").output.toStdString());
        QVERIFY(shown == instrument(usbSerial));
    }

    void plugging() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(kvasim("unplug 1000001").status, 0);
        KVA_DEVICEINFO info{};
        QCOMPARE(KVA_GetDeviceInfo(&info), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        QVERIFY(kvasim("list").output.contains("1000001  unplugged"));
        QCOMPARE(kvasim("plug 1000001").status, 0);
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_CONNECT_ALREADY});
    }

    void powerCycle() {
        QVERIFY(kvasim_test::set(usbSerial, {{"network", {{"pending", {{"SSID", "new-room"}}}}},
                                             {"startUpMs", 600000}}));
        QCOMPARE(kvasim("power-cycle 1000001").status, 0);
        QVERIFY(instrument(usbSerial)["network"]["active"]["SSID"] == "new-room");
        QVERIFY(kvasim("list").output.contains("1000001  starting"));
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR});
    }

    void set_data() {
        addCases({
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
        QFETCH(Case, given);
        const Outcome outcome = kvasim({"set", "1000001", given.arguments});
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.status, 0);
        const json now = instrument(usbSerial).at(json::json_pointer(given.pointer));
        QVERIFY2(now == json::parse(given.expected), now.dump().c_str());
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
        addCases({
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
        QFETCH(Case, given);
        const QByteArray before = QByteArray::fromStdString(stateText());
        const Outcome outcome = kvasim(given.arguments);
        QCOMPARE(outcome.status, 1);
        QVERIFY2(outcome.errors.startsWith("kvasim: "), outcome.errors.constData());
        QVERIFY2(outcome.errors.contains(given.expected), outcome.errors.constData());
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(QByteArray::fromStdString(stateText()), before);
    }

    void faults() {
        QCOMPARE(kvasim("fault list").output, QByteArray());
        QCOMPARE(kvasim("fault add --function KVA_Connect --result KVA_ERROR_NAK --times 1").status,
                 0);
        const QByteArray listed = kvasim("fault list").output;
        QVERIFY2(listed.contains("KVA_ERROR_NAK") && listed.count('\n') == 1, listed.constData());
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_NAK});
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(kvasim("fault add --result -9999").status, 0);
        QCOMPARE(kvasim("fault clear").status, 0);
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(kvasim("fault list --json").output, QByteArray("[]\n"));
    }

    void faultRules_data() {
        addCases({
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
        QFETCH(Case, given);
        const Outcome outcome = kvasim(QStringList{"fault", "add"} << wordsOf(given.arguments));
        QCOMPARE(outcome.errors, QByteArray());
        const json listed = json::parse(kvasim("fault list --json").output.toStdString());
        const json expected =
            json::parse(std::string("{\"function\": \"*\", ") + given.expected + '}');
        QVERIFY2(listed == json::array({expected}), listed.dump().c_str());
    }

    void log() {
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

    void logFollows() {
        QProcess follower;
        follower.start(KVASIM, {"log", "-f"});
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
        QCOMPARE(follower.state(), QProcess::Running);
        KvaSim_Reset(); // gives the bench up, as the end of the program does
        QTRY_COMPARE(follower.state(), QProcess::NotRunning);
        QCOMPARE(follower.exitCode(), 0);
        QCOMPARE(follower.readAllStandardError(), QByteArray());
    }

    void logIsMoved() {
        const QString path = m_bench->path() + ".log";
        Bench::write(path, QByteArray(4 << 20, '\n'));
        KVA_Disconnect();
        QCOMPARE(kvasim("log").output.count('\n'), 1);
        QCOMPARE(QFileInfo(path + ".old").size(), qint64{4} << 20);
        QVERIFY(QFileInfo(path).size() < 1000);
    }

    void benchCheck() {
        const QString path = m_bench->folder.filePath("other.json");
        Bench::write(path, benchText());
        const Outcome good = kvasim({"bench", "check", path});
        QCOMPARE(good.status, 0);
        QVERIFY(good.output.endsWith("other.json: good, 2 instruments, 0 rules\n"));
        const QByteArray damaged = "{\"version\": 1,\n \"instruments\": [,]}\n";
        Bench::write(path, damaged);
        const Outcome bad = kvasim({"bench", "check", path});
        QCOMPARE(bad.status, 1);
        QVERIFY2(bad.errors.contains("line 2, column 18"), bad.errors.constData());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), damaged);
    }

    void benchInit() {
        const QString path = m_bench->folder.filePath("new.json");
        const QStringList init = {"bench", "init", path};
        QCOMPARE(kvasim(init).status, 0);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.startsWith("//"));
        QCOMPARE(kvasim({"bench", "check", path}).status, 0);
        QCOMPARE(kvasim(init).status, 1);
        QVERIFY2(KvaSim_LoadJson(text.constData()), KvaSim_LastError());
        QVERIFY(instrument(usbSerial)["network"]["active"]["SSID"] == "measuring-room");
    }

    void nobodyRuns() {
        KvaSim_Reset();
        QCOMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
        QCOMPARE(kvasim("unplug 1000001").status, 0);
        QVERIFY(kvasim({"list", "--bench", m_bench->path()}).output.contains("1000001  unplugged"));
        QCOMPARE(kvasim("log -f").status, 0);
        qunsetenv("KVASIM_BENCH");
        qputenv("XDG_DATA_HOME", m_bench->folder.path().toLocal8Bit());
        QCOMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
        QVERIFY(QFile::exists(m_bench->folder.filePath("vq-tl4-simulator/bench.json")));
    }

    void severalRun() {
        const QString other = m_bench->folder.filePath("other.json");
        Bench::write(other, R"({"version": 1, "instruments": [{"serialNumber": 77}]})");
        BenchHolder holder(other);
        QCOMPARE(holder.answer(), QByteArray("1\n"));
        QCOMPARE(kvasim({"list", "--serials", "--bench", other}).output, QByteArray("77\n"));
        QCOMPARE(kvasim("list --serials").output, QByteArray("1000001\n1000002\n"));
    }

    void holdEndsWithItsProgram() {
        for (const bool isKilled : {true, false}) {
            BenchHolder holder(m_bench->path());
            QCOMPARE(holder.answer(), QByteArray("2\n"));
            QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
            QVERIFY(kvasim("list").output.contains("1000001  connected"));
            QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_SUCCESS});
            QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
            holder.end(isKilled);
            QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
            BenchHolder second(m_bench->path());
            QCOMPARE(second.answer(), QByteArray("-9994\n"));
            QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_SUCCESS});
        }
    }

    void holdEndsWithLoss() {
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(kvasim("unplug 1000001").status, 0);
        QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_INSTRUMENT_UNAVAILABLE});
        QCOMPARE(kvasim("plug 1000001").status, 0);
        BenchHolder holder(m_bench->path());
        QCOMPARE(holder.answer(), QByteArray("2\n"));
    }

    void sameProgramAgain() {
        for (int round = 0; round < 20; ++round) {
            QVERIFY2(KvaSim_LoadFile(m_bench->path().toLocal8Bit()), KvaSim_LastError());
            QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
            QVERIFY(kvasim("list").output.contains("1000001  connected"));
            if (round % 3 == 0)
                KvaSim_Reset();
            if (round % 4 == 0)
                QVERIFY(KvaSim_LoadJson(benchText().constData()));
        }
    }

    void ruleIsUsedOnceByAll() {
        QCOMPARE(
            kvasim("fault add --function KVA_GetDevicePortList --result -9799 --times 2").status,
            0);
        BenchHolder first(m_bench->path());
        QCOMPARE(first.answer(), QByteArray("-9799\n"));
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_ERROR_NAK});
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(kvasim("fault list --json").output, QByteArray("[]\n"));
    }

    void equalRuleIsCountedAnew() {
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(kvasim("fault clear").status, 0);
            QCOMPARE(kvasim("fault add --function KVA_Disconnect --call 1 --result -9799").status,
                     0);
            QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_NAK});
            QCOMPARE(KVA_Disconnect(), KVA_RESULT{KVA_ERROR_CONNECT});
        }
    }

    void eventsOfChanges_data() {
        QTest::addColumn<EventsCase>("given");
        const EventsCase cases[] = {
            {"unplug", {"unplug 1000001"}, "6"},
            {"unplug and plug", {"unplug 1000001", "plug 1000001"}, "6 0"},
            {"unplug another", {"unplug 1000002"}, ""},
            {"plug another", {"unplug 1000002", "plug 1000002"}, "0"},
            {"power cycle", {"power-cycle 1000001"}, "6 0"},
            {"power cycle of another", {"power-cycle 1000002"}, ""},
            {"set what is no plug", {"set 1000001 powerOffMode=2"}, ""},
            {"set plugged", {"set 1000001 plugged=false"}, "6"},
            {"another serial number", {"set 1000001 serialNumber=5", "unplug 5"}, "6"},
        };
        for (const EventsCase& row : cases)
            QTest::newRow(row.name) << row;
    }

    void eventsOfChanges() {
        QFETCH(EventsCase, given);
        g_codes.clear();
        QCOMPARE(connectTo(usbSerial), KVA_RESULT{KVA_SUCCESS});
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordCode), KVA_RESULT{KVA_SUCCESS});
        for (const char* command : given.commands) {
            QCOMPARE(kvasim(command).status, 0);
            QTest::qWait(120); // two looks
        }
        QTRY_COMPARE(codes(), QByteArray(given.codes));
        QTest::qWait(120); // one that is too many would be here by now
        QCOMPARE(codes(), QByteArray(given.codes));
    }

    void fileChangedByHand() {
        const QByteArray good = benchText();
        Bench::write(m_bench->path(), QByteArray(good).replace("1000002", "1000003"));
        QCOMPARE(connectTo(1000003), KVA_RESULT{KVA_SUCCESS});
        Bench::write(m_bench->path(), good.left(good.size() / 2)); // is being saved
        std::uint8_t mode = 9;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS});
        std::thread editor([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            Bench::write(m_bench->path(), QByteArray(good).replace("1000002", "1000003"));
        });
        mode = 1;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_SUCCESS}); // waits for it
        editor.join();
        QVERIFY(instrument(1000003)["powerOffMode"] == 1);
    }

    void fileThatStaysWrong() {
        BenchHolder holder(m_bench->path());
        QCOMPARE(holder.answer(), QByteArray("2\n"));
        QCOMPARE(connectTo(networkSerial), KVA_RESULT{KVA_SUCCESS});
        Bench::write(m_bench->path(), "{\"version\": 1,\n oops");
        for (int round = 0; round < 15; ++round) {
            QCOMPARE(holder.ask(), QByteArray("0\n")); // the last good state
            QTest::qWait(100);
        }
        const std::uint8_t mode = 1;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_RESULT{KVA_ERROR});
        QFile file(m_bench->path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("{\"version\": 1,\n oops"));
        holder.end(false);
        const QByteArray errors = holder.errors();
        QVERIFY2(errors.contains("bench.json: line 2, column 2: ") && errors.count('\n') == 1,
                 errors.constData());
    }

    // VQTL4_PROGRAMS_SECONDS sets how long, VQTL4_PROGRAMS_SEED repeats the choices of a run.
    void twoPrograms() {
        bool isNumber = false;
        const int given = qEnvironmentVariableIntValue("VQTL4_PROGRAMS_SECONDS", &isNumber);
        const int seconds = isNumber ? given : 5;
        const int seed = qEnvironmentVariableIsSet("VQTL4_PROGRAMS_SEED")
                             ? qEnvironmentVariableIntValue("VQTL4_PROGRAMS_SEED")
                             : static_cast<int>(std::random_device()() & 0xFFFFFFU);
        qInfo("seed %d, %d seconds", seed, seconds);
        Bench::write(m_bench->path(), R"({"version": 2, "instruments": [{"serialNumber": 1},
        {"serialNumber": 2}, {"serialNumber": 3}, {"serialNumber": 4}]})");
        KvaSim_Reset();
        QProcess programs[2];
        for (int index = 0; index < 2; ++index)
            programs[index].start(BENCH_USER,
                                  {QString::number(index + 1), "3", QString::number(seed + index)});
        const QDeadlineTimer deadline(1000 * seconds);
        int changes = 0;
        while (!deadline.hasExpired()) {
            QFile file(m_bench->path());
            QVERIFY(file.open(QIODevice::ReadOnly));
            const json bench = json::parse(file.readAll().toStdString(), nullptr, false);
            QVERIFY(bench.is_object() && bench["instruments"].size() == 4);
            if (changes > 0)
                QVERIFY(bench["instruments"][3]["device"]["serialNumber"] == changes);
            const QString next = QString::number(++changes);
            QCOMPARE(kvasim({"set", "4", "device.serialNumber=" + next}).errors, QByteArray());
        }
        std::array<std::array<int, 5>, 2> counts{}; // changes, plugs, events 0, losses, refusals
        for (int index = 0; index < 2; ++index) {
            programs[index].closeWriteChannel();
            QVERIFY(programs[index].waitForFinished());
            const QByteArray output = programs[index].readAllStandardOutput().trimmed();
            QVERIFY2(programs[index].exitCode() == 0, output);
            QCOMPARE(programs[index].readAllStandardError(), QByteArray());
            qInfo("%s", output.constData());
            const auto words = output.split(' ');
            for (int word = 0; word < 5; ++word)
                counts[index][word] = words.at(word).toInt();
            const json own = instrument(index + 1)["device"]["serialNumber"];
            QVERIFY(own == counts[index][0]);
        }
        qInfo("%d changes by kvasim", changes);
        for (const auto& count : counts)
            QVERIFY(count[2] <= counts[0][1] + counts[1][1]);
        QVERIFY(changes > 1 && counts[0][0] > 0 && counts[1][0] > 0);
    }

private:
    std::unique_ptr<Bench> m_bench;
};

QTEST_GUILESS_MAIN(TestKvasim)
#include "tst_kvasim.moc"
