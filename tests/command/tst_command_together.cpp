// Two programs on one bench at once: two of vq-tl4ctl, or it and the tool. One of them is refused,
// and says why; the other one's work is not touched.
#include "ThreeInstruments.h"
#include "WantedBench.h"
#include "tests/startup/ProgramRun.h"
#include "tests/support/TestMain.h"

#include <csignal>
#include <future>

using namespace Steps;

namespace {

const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);

bool isStopped(const QProcess& process) {
    QFile state(QString("/proc/%1/stat").arg(process.processId()));
    return state.open(QIODevice::ReadOnly) && state.readAll().contains(") T ");
}

/** An `apply` of all four things to the first instrument. It stands still before it writes the
    power-off mode, and goes on when the object is gone or `end` is called. */
class Halfway {
public:
    explicit Halfway(const CommandRun& run) {
        const CommandRun whole;
        whole.run(whole.applyAll());
        const auto call = whole.calls().indexOf("KVA_SetShutdownTime") + 1;
        m_process = run.start(run.applyAll(), {preload, QString("SHIM_STOP=before:%1").arg(call)});
        m_process->closeWriteChannel();
    }
    ~Halfway() { goOn(); }
    Halfway(const Halfway&) = delete;
    Halfway& operator=(const Halfway&) = delete;

    QProcess& process() { return *m_process; }
    CommandResult end() {
        goOn();
        return CommandRun::finish(*m_process);
    }

private:
    void goOn() {
        if (m_process->processId() != 0) // 0, to kill, is everybody
            ::kill(static_cast<pid_t>(m_process->processId()), SIGCONT);
    }

    std::unique_ptr<QProcess> m_process;
};

struct OtherRow {
    const char* name;
    QStringList arguments; ///< of the second program; "SNAPSHOT" is the first one's
    bool isElsewhere;      ///< it has a data folder of its own, as another user has
    int exitStatus;
    QString outcomes;
    const char* reason; ///< a part of what it says
    /** What the second instrument holds afterwards, as ThreeInstruments has it. */
    QString second = "11 1 12345678";
};

const char lockReason[] = "Another vq-tl4ctl is writing to an instrument: process %1.";
const char heldReason[] = "KVA_ERROR_INSTRUMENT_UNAVAILABLE";

QVector<OtherRow> others() {
    const auto apply = [](const char* serial) {
        return QStringList{"apply", serial, "--power-off", "off", "--yes", "--json"};
    };
    return {
        {"the same instrument", apply("1000001"), false, 3, "refused", lockReason},
        {"another instrument", apply("1000002"), false, 3, "refused", lockReason},
        {"a plan",
         {"apply", "--plan", "PLAN", "--yes", "--json"},
         false,
         3,
         "refused not-reached",
         lockReason},
        {"a plan, on and on",
         {"apply", "--plan", "PLAN", "--yes", "--json", "--keep-going"},
         false,
         3,
         "refused refused",
         lockReason},
        {"restore",
         {"restore", "1000001", "SNAPSHOT", "--yes", "--json"},
         false,
         3,
         "refused",
         lockReason},
        {"recover", {"recover", "--yes", "--json"}, false, 3, "", lockReason},
        {"show", {"show", "1000001"}, false, 3, "", heldReason},
        {"a dry run",
         {"apply", "1000002", "--power-off", "off", "--dry-run", "--json"},
         false,
         7,
         "would-change",
         "powerOff"},
        {"another user's, the same instrument", apply("1000001"), true, 3, "refused", heldReason},
        {"another user's, another instrument", apply("1000002"), true, 0, "verified", "verified",
         "11 0 12345678"}};
}

} // namespace

class TestCommandTogether : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refusesTheSecond_data() { addRows(others()); }
    void refusesTheSecond();
    void refusesWhatTheToolHolds();
    void isRefusedToTheTool();
};

void TestCommandTogether::refusesTheSecond() {
    const auto row = rowOf<OtherRow>();
    const CommandRun run;
    ThreeInstruments::setBench(run);
    run.write("plan.csv", "serial,power_off\n1000001,off\n1000002,off\n");
    Halfway first(run);
    QTRY_VERIFY(isStopped(first.process()));
    const QJsonArray before = run.instruments();
    const QByteArray calls = run.read("trace");

    QStringList arguments = row.arguments;
    arguments.replaceInStrings("SNAPSHOT", run.snapshots().value(0));
    arguments.replaceInStrings("PLAN", run.path("plan.csv"));
    QStringList environment = {"KVASIM_TRACE=" + run.path("second-trace")};
    if (row.isElsewhere)
        environment.append("XDG_DATA_HOME=" + run.path("elsewhere"));
    const CommandResult second = run.run(arguments, environment);
    QVERIFY2(second.exitStatus == row.exitStatus, second.text());
    QCOMPARE(ThreeInstruments::outcomes(second), row.outcomes);
    const QString reason =
        QString(row.reason).replace("%1", QString::number(first.process().processId()));
    QVERIFY2(second.text().contains(reason.toUtf8()), second.text());
    QCOMPARE(run.instruments()[0], before[0]);
    QCOMPARE(run.read("trace"), calls);
    const bool hasWritten = row.outcomes == "verified";
    QCOMPARE(!writesIn(run.read("second-trace")).empty(), hasWritten);

    const CommandResult got = first.end();
    QVERIFY2(got.outcome() == "verified", got.text());
    QCOMPARE(WantedBench::ofOne(run).fromWanted(run.instruments(), 0), QString());
    QCOMPARE(ThreeInstruments::held(run, 1), row.second);
    // The refused one has left no trace in the journal either.
    QCOMPARE(run.ask("SELECT run, word FROM instrument JOIN outcome ON instrument = id").size(),
             std::size_t{1});
    QCOMPARE(unlikeWrites(writesIn(run.read("trace")), writesKept(run)), QString());
}

/** The tool waits for the message of the lost connection, and holds its instrument till then. */
void TestCommandTogether::refusesWhatTheToolHolds() {
    const CommandRun run;
    ProgramRun tool({confirmLanguage, dismissBox, pressClose});
    tool.environment.insert("KVASIM_BENCH", run.path("bench.json"));
    tool.environment.insert("KVASIM_TRACE", run.path("tool-trace"));
    auto hasEnded = std::async(std::launch::async, [&] { return tool.run(); });
    QTRY_VERIFY_WITH_TIMEOUT(run.read("tool-trace").contains("KVA_GetNetworkInfo"), 20000);

    const CommandResult refused = run.run(run.applyAll());
    const WantedBench bench = WantedBench::ofOne(run);
    QVERIFY2(refused.outcome() == "refused" && refused.exitStatus == 3, refused.text());
    QVERIFY2(refused.standardOutput.contains(heldReason), refused.text());
    QCOMPARE(bench.fromOld(run.instruments(), 0), QString());

    QJsonObject instrument = run.instrument();
    instrument["plugged"] = false;
    run.setBench(instrument);
    QVERIFY2(hasEnded.get(), tool.problem());
    instrument["plugged"] = true;
    run.setBench(instrument);
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    QCOMPARE(bench.fromWanted(run.instruments(), 0), QString());
}

void TestCommandTogether::isRefusedToTheTool() {
    const CommandRun run;
    Halfway command(run);
    QTRY_VERIFY(isStopped(command.process()));
    const QJsonArray before = run.instruments();

    ProgramRun tool({confirmLanguage, dismissBox, pressClose});
    tool.environment.insert("KVASIM_BENCH", run.path("bench.json"));
    tool.environment.insert("KVASIM_TRACE", run.path("tool-trace"));
    QVERIFY2(tool.run(), tool.problem());
    QCOMPARE(tool.boxTexts(), QStringList("Failed to connect device."));
    QVERIFY(run.read("tool-trace").contains(heldReason));
    QCOMPARE(run.instruments(), before);

    const CommandResult got = command.end();
    QVERIFY2(got.outcome() == "verified", got.text());
    QCOMPARE(WantedBench::ofOne(run).fromWanted(run.instruments(), 0), QString());
}

TEST_CLASS(TestCommandTogether)
#include "tst_command_together.moc"
