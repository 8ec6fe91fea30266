// Several programs on one bench: the command, this process, others.

#include "KvasimTest.h"

#include <random>

using namespace simtest;

namespace {

/** Another program that uses a bench and is connected to its first instrument. */
class BenchHolder {
public:
    explicit BenchHolder(const QString& bench = "bench.json") {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KVASIM_BENCH", bench);
        m_process.setProcessEnvironment(environment);
        m_process.start(PROBE, {"hold"});
    }
    ~BenchHolder() { end(true); }
    Q_DISABLE_COPY(BenchHolder)

    /** The next line: first the number of instruments, or why the library refuses. */
    QByteArray answer() {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(20000)) {
        }
        return m_process.readLine();
    }

    /** What its next call for the connected instrument answers. */
    QByteArray ask() {
        m_process.write("\n");
        return answer();
    }

    void end(bool isKilled) {
        if (isKilled)
            m_process.kill();
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    QByteArray errors() { return m_process.readAllStandardError(); }

private:
    QProcess m_process;
};

/** Commands, and the codes of the events that come of them. */
using EventsCase = Case<QList<const char*>, QByteArray>;

const EventsCase eventsRows[] = {
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

} // namespace

class TestKvasimPrograms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench.emplace(); }
    void cleanup() { m_bench.reset(); }

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
        QCOMPARE(follower.readAllStandardError(), "");
    }

    void severalRun() {
        m_bench->write("other.json", R"({"version": 1, "instruments": [{"serialNumber": 77}]})");
        BenchHolder holder("other.json");
        QCOMPARE(holder.answer(), "1\n");
        QCOMPARE(kvasim("list --serials --bench other.json").output, "77\n");
        QCOMPARE(kvasim("list --serials").output, "1000001\n1000002\n");
    }

    void holdEndsWithItsProgram() {
        for (const bool isKilled : {true, false}) {
            BenchHolder holder;
            QCOMPARE(holder.answer(), "2\n");
            QCOMPARE(connectTo(usbSerial), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
            QVERIFY(kvasim("list").output.contains("1000001  connected"));
            QCOMPARE(connectTo(networkSerial), KVA_SUCCESS);
            QCOMPARE(KVA_Disconnect(), KVA_SUCCESS);
            holder.end(isKilled);
            QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
            BenchHolder second;
            QCOMPARE(second.answer(), "-9994\n");
            QCOMPARE(KVA_Disconnect(), KVA_SUCCESS);
        }
    }

    void holdEndsWithLoss() {
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(kvasim("unplug 1000001").status, 0);
        QCOMPARE(KVA_Disconnect(), KVA_ERROR_INSTRUMENT_UNAVAILABLE);
        QCOMPARE(kvasim("plug 1000001").status, 0);
        BenchHolder holder;
        QCOMPARE(holder.answer(), "2\n");
    }

    void sameProgramAgain() {
        for (int round = 0; round < 20; ++round) {
            QVERIFY2(KvaSim_LoadFile("bench.json"), KvaSim_LastError());
            QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
            QVERIFY(kvasim("list").output.contains("1000001  connected"));
            if (round % 3 == 0)
                KvaSim_Reset();
            if (round % 4 == 0)
                QVERIFY(KvaSim_LoadJson(Bench::text().constData()));
        }
    }

    void ruleIsUsedOnceByAll() {
        QCOMPARE(
            kvasim("fault add --function KVA_GetDevicePortList --result -9799 --times 2").status,
            0);
        BenchHolder first;
        QCOMPARE(first.answer(), "-9799\n");
        std::int32_t count = 0;
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_ERROR_NAK);
        QCOMPARE(KVA_GetDevicePortList(nullptr, &count, 0), KVA_SUCCESS);
        QCOMPARE(kvasim("fault list --json").output, "[]\n");
    }

    void equalRuleIsCountedAnew() {
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(kvasim("fault clear").status, 0);
            QCOMPARE(kvasim("fault add --function KVA_Disconnect --call 1 --result -9799").status,
                     0);
            QCOMPARE(KVA_Disconnect(), KVA_ERROR_NAK);
            QCOMPARE(KVA_Disconnect(), KVA_ERROR_CONNECT);
        }
    }

    void eventsOfChanges_data() { addRows(eventsRows); }
    void eventsOfChanges() {
        const auto row = rowOf<EventsCase>();
        QCOMPARE(connectTo(usbSerial), KVA_SUCCESS);
        QCOMPARE(KVA_RegisterDeviceEventHandler(recordEvent), KVA_SUCCESS);
        for (const char* command : row.given) {
            QCOMPARE(kvasim(command).status, 0);
            QTest::qWait(120); // two looks
        }
        QTRY_COMPARE(recordedCodes(), row.expected);
        QTest::qWait(120); // one that is too many would be here by now
        QCOMPARE(recordedCodes(), row.expected);
    }

    void fileChangedByHand() {
        const QByteArray good = Bench::text();
        m_bench->write("bench.json", QByteArray(good).replace("1000002", "1000003"));
        QCOMPARE(connectTo(1000003), KVA_SUCCESS);
        m_bench->write("bench.json", good.left(good.size() / 2)); // is being saved
        std::uint8_t mode = 9;
        QCOMPARE(KVA_GetShutdownTime(&mode), KVA_SUCCESS);
        std::thread editor([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            m_bench->write("bench.json", QByteArray(good).replace("1000002", "1000003"));
        });
        mode = 1;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_SUCCESS); // waits for it
        editor.join();
        QVERIFY(instrument(1000003)["powerOffMode"] == 1);
    }

    void fileThatStaysWrong() {
        BenchHolder holder;
        QCOMPARE(holder.answer(), "2\n");
        QCOMPARE(connectTo(networkSerial), KVA_SUCCESS);
        m_bench->write("bench.json", "{\"version\": 1,\n oops");
        for (int round = 0; round < 15; ++round) {
            QCOMPARE(holder.ask(), "0\n"); // the last good state
            QTest::qWait(100);
        }
        const std::uint8_t mode = 1;
        QCOMPARE(KVA_SetShutdownTime(&mode), KVA_ERROR);
        QCOMPARE(m_bench->read("bench.json"), "{\"version\": 1,\n oops");
        holder.end(false);
        const QByteArray errors = holder.errors();
        QVERIFY2(errors.contains("bench.json: line 2, column 2: ") && errors.count('\n') == 1,
                 errors.constData());
    }

    // VQTL4_PROGRAMS_SECONDS sets how long, VQTL4_PROGRAMS_SEED repeats the choices of a run.
    void twoPrograms() {
        const int seconds = numberFrom("VQTL4_PROGRAMS_SECONDS", 5);
        const int seed =
            numberFrom("VQTL4_PROGRAMS_SEED", static_cast<int>(std::random_device()() & 0xFFFFFFU));
        qInfo("seed %d, %d seconds", seed, seconds);
        m_bench->write("bench.json", R"({"version": 2, "instruments": [{"serialNumber": 1},
        {"serialNumber": 2}, {"serialNumber": 3}, {"serialNumber": 4}]})");
        KvaSim_Reset();
        QProcess programs[2];
        for (int index = 0; index < 2; ++index)
            programs[index].start(BENCH_USER,
                                  {QString::number(index + 1), "3", QString::number(seed + index)});
        const QDeadlineTimer deadline(1000 * seconds);
        int changes = 0;
        while (!deadline.hasExpired()) {
            const QByteArray text = m_bench->read("bench.json");
            const json bench = json::parse(text.toStdString(), nullptr, false);
            QVERIFY(bench.is_object() && bench["instruments"].size() == 4);
            if (changes > 0)
                QVERIFY(bench["instruments"][3]["device"]["serialNumber"] == changes);
            const QString next = QString::number(++changes);
            QCOMPARE(kvasim({"set", "4", "device.serialNumber=" + next}).errors, "");
        }
        int counts[2][5] = {}; // changes, plugs, events 0, losses, refusals
        for (int index = 0; index < 2; ++index) {
            programs[index].closeWriteChannel();
            QVERIFY(programs[index].waitForFinished());
            const QByteArray output = programs[index].readAllStandardOutput().trimmed();
            QVERIFY2(programs[index].exitCode() == 0, output);
            QCOMPARE(programs[index].readAllStandardError(), "");
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
    std::optional<Bench> m_bench;
};

TEST_CLASS(TestKvasimPrograms)
#include "tst_kvasim_programs.moc"
