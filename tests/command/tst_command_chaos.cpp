/**
 * A bench under random faults, while instruments are unplugged and switched off and the program is
 * killed: plans are applied, and recovered, until each is done. What a run says is compared with
 * the bench, and what the journal keeps with the library's log.
 *
 * VQTL4_CHAOS_SECONDS=600 takes 40 instruments and that time in place of 5 and four plans; it needs
 * QTEST_FUNCTION_TIMEOUT=3600000. VQTL4_CHAOS_SEED=n takes other faults than those of seed 1.
 */
#include "WantedBench.h"
#include "tests/support/TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <random>

namespace {

QJsonObject withoutStage(QJsonObject instrument) {
    QJsonObject calibration = instrument["calibration"].toObject();
    calibration["staged"] = QJsonValue();
    instrument["calibration"] = calibration;
    return instrument;
}

struct Counts {
    int plans = 0;
    int runs = 0;
    int recoveries = 0;
    int kills = 0;
    int unplugged = 0; ///< or switched off, from outside
    int failedCalls = 0;
    std::size_t writes = 0;
    QMap<QString, int> outcomes;
};

/** One process of the program. */
struct Process {
    qint64 id;
    QString trace;
    bool wasKilled;
};

class Chaos {
public:
    Chaos(int instruments, unsigned int seed)
        : m_instruments(instruments), m_random(seed), m_outside(seed) {}

    /** One plan, until it is done. */
    void applyPlan();
    /** What was wrong so far. */
    const QStringList& problems() const { return m_problems; }
    /** Every process, against the journal: what is not so. */
    void compareWrites();
    const Counts& counts() const { return m_counts; }

private:
    int below(int end) { return below(end, m_random); }
    static int below(int end, std::mt19937& random) {
        return static_cast<int>(random() % static_cast<unsigned int>(end));
    }
    bool happens(int percent) { return below(100) < percent; }
    template <typename List>
    auto oneOf(const List& list) {
        return list[below(static_cast<int>(list.size()))];
    }

    QJsonObject randomFault();
    QJsonObject randomLie();
    QJsonArray randomFaults();
    void plugAll(const QJsonArray& faults) const;
    void disturb(QProcess& process);
    CommandResult runOnce(const QStringList& arguments, bool isDisturbed);
    void judge(const CommandResult& result, const QJsonArray& before, bool isRecovery);
    bool isDone() const;

    const int m_instruments;
    std::mt19937 m_random;
    std::mt19937 m_outside; ///< of what happens meanwhile, as often as there is time for it
    CommandRun m_run;
    WantedBench m_bench;
    std::vector<Process> m_processes;
    QStringList m_problems;
    Counts m_counts;
};

/** What fails, and says so. */
QJsonObject Chaos::randomFault() {
    static const QStringList functions = {"*",
                                          "KVA_Connect",
                                          "KVA_Disconnect",
                                          "KVA_GetDeviceInfo",
                                          "KVA_GetNetworkInfo",
                                          "KVA_SetNetworkInfo",
                                          "KVA_SetShutdownTime",
                                          "KVA_JIG_GetFactoryCalib_CALREFDATA",
                                          "KVA_JIG_SetFactoryCalib_CALREFDATA",
                                          "KVA_JIG_SetFactoryCalib_WriteSector"};
    static const QStringList results = {"KVA_ERROR", "KVA_ERROR_COMMUNICATION_TIMEOUT",
                                        "KVA_ERROR_NEQ", "KVA_WARNING_BATTERY_EMPTY",
                                        "KVA_WARNING_WCALIB_TEMP"};
    static const QStringList moments = {"before", "during", "after"};
    QJsonObject what;
    switch (below(6)) {
    case 0:
        what = {{"delayMs", 1 + below(20)}};
        break;
    case 1:
    case 2:
        what = {{"unplug", oneOf(moments)}};
        break;
    default:
        what = {{"result", oneOf(results)}};
    }
    what["function"] = oneOf(functions);
    what["serialNumber"] = WantedBench::serialNumber(below(m_instruments));
    what["times"] = 1 + below(3);
    what["probability"] = 0.3;
    what["seed"] = below(1000000);
    return what;
}

/** What looks like success. There is one of them in a run, once: several that agree cannot be told
    from the truth. */
QJsonObject Chaos::randomLie() {
    static const QStringList readings = {"KVA_GetDeviceInfo", "KVA_GetNetworkInfo",
                                         "KVA_GetShutdownTime",
                                         "KVA_JIG_GetFactoryCalib_CALREFDATA"};
    static const QStringList changes = {"KVA_Connect",
                                        "KVA_Disconnect",
                                        "KVA_SetNetworkInfo",
                                        "KVA_SetShutdownTime",
                                        "KVA_JIG_SetFactoryCalib_CALREFDATA",
                                        "KVA_JIG_SetFactoryCalib_WriteSector"};
    static const int sizes[] = {24, 104, 1, 2508};
    QJsonObject what = {{"function", oneOf(changes)}, {"dropped", true}};
    if (happens(60)) {
        const int reading = below(int(readings.size()));
        const int offset = reading == 0 ? 0 : below(sizes[reading]);
        what = {{"function", readings[reading]},
                {"corrupted", QJsonObject{{"offset", offset}, {"xor", 1 << below(8)}}}};
    } else if (happens(40)) {
        what = {{"function", readings[1 + below(3)]}, {"stale", true}};
    }
    what["serialNumber"] = WantedBench::serialNumber(below(m_instruments));
    what["times"] = 1;
    what["call"] = QString::number(1 + below(3 * m_instruments));
    return what;
}

QJsonArray Chaos::randomFaults() {
    QJsonArray faults;
    for (int left = below(m_instruments + 3); left > 0; --left)
        faults.append(randomFault());
    if (happens(60))
        faults.append(randomLie());
    return faults;
}

/** No program uses the bench by now. */
void Chaos::plugAll(const QJsonArray& faults) const {
    QJsonArray instruments;
    for (const QJsonValue each : m_run.instruments()) {
        QJsonObject instrument = each.toObject();
        instrument["plugged"] = true;
        instruments.append(instrument);
    }
    m_run.setBench(instruments, faults);
}

/** While it runs: unplugs, plugs and switches instruments off and on, and maybe kills it. */
void Chaos::disturb(QProcess& process) {
    const int killAfter = happens(40) ? below(60 * (1 + below(m_instruments))) : -1; // ms
    static const char* const verbs[] = {"unplug", "plug", "plug", "power-cycle"};
    QElapsedTimer timer;
    timer.start();
    while (!process.waitForFinished(5 + below(150, m_outside))) {
        if (killAfter >= 0 && timer.elapsed() > killAfter)
            process.kill();
        const QString verb = verbs[below(4, m_outside)];
        const int serial = WantedBench::serialNumber(below(m_instruments, m_outside));
        const QStringList arguments = {"--bench", m_run.path("bench.json"), verb,
                                       QString::number(serial)};
        if (QProcess::execute(KVASIM, arguments) != 0)
            m_problems.append("kvasim " + arguments.join(' '));
        m_counts.unplugged += verb == "plug" ? 0 : 1;
    }
}

CommandResult Chaos::runOnce(const QStringList& arguments, bool isDisturbed) {
    const bool isRecovery = arguments[0] == "recover";
    const QJsonArray faults = isDisturbed ? randomFaults() : QJsonArray();
    plugAll(faults);
    const QJsonArray before = m_run.instruments();
    const QString trace = QString("trace-%1").arg(m_processes.size());
    QStringList environment = {"KVASIM_TRACE=" + m_run.path(trace)};
    if (isDisturbed && happens(60)) {
        static const QStringList moments = {"before", "after", "file", "file"};
        const int moment = 1 + below(60 * (1 + below(m_instruments)));
        environment += QString("LD_PRELOAD=%1").arg(COMMAND_SHIM);
        environment += QString("SHIM_KILL=%1:%2").arg(oneOf(moments)).arg(moment);
    }
    const auto process = m_run.start(arguments, environment);
    const qint64 id = process->processId();
    process->closeWriteChannel();
    if (isDisturbed && happens(50))
        disturb(*process);
    const CommandResult result = CommandRun::finish(*process);
    m_processes.push_back({id, trace, result.exitStatus == -1});
    ++(isRecovery ? m_counts.recoveries : m_counts.runs);
    m_counts.kills += result.exitStatus == -1 ? 1 : 0;
    judge(result, before, isRecovery);
    return result;
}

/** What the program said of an instrument, against the bench. */
void Chaos::judge(const CommandResult& result, const QJsonArray& before, bool isRecovery) {
    const QJsonArray now = m_run.instruments();
    for (const QByteArray& line : result.standardOutput.split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (object.isEmpty())
            continue;
        const int number = object["serialNumber"].toString().toInt() - CommandRun::serialNumber;
        const QString outcome = object["outcome"].toString();
        ++m_counts.outcomes[outcome];
        QString problem;
        if (outcome == "verified" || outcome == "waits")
            problem = m_bench.fromWanted(now, number);
        else if (outcome == "rolled-back")
            problem = m_bench.fromOld(now, number);
        else if (outcome != "unknown")
            problem = differenceBetween(withoutStage(now[number].toObject()),
                                        withoutStage(before[number].toObject()));
        if (outcome == "unchanged" && !isRecovery)
            problem += m_bench.fromWanted(now, number);
        if (!problem.isEmpty())
            m_problems.append(QString("plan %1, run %2, instrument %3: %4, but: %5\n")
                                  .arg(m_counts.plans)
                                  .arg(m_processes.size())
                                  .arg(number)
                                  .arg(outcome, problem) +
                              result.text());
    }
}

bool Chaos::isDone() const {
    const QJsonArray now = m_run.instruments();
    for (int number = 0; number < m_instruments; ++number) {
        if (!m_bench.fromWanted(now, number).isEmpty())
            return false;
    }
    return true;
}

void Chaos::applyPlan() {
    m_bench = WantedBench::byPlan(m_run, m_instruments, ++m_counts.plans);
    if (m_counts.plans == 1)
        m_bench.setBench(m_run);
    const QStringList recover = {"recover", "--yes", "--json"};
    for (int turn = 0; turn < 8 && !isDone(); ++turn) {
        QStringList apply = m_bench.arguments;
        if (happens(70))
            apply.append("--keep-going");
        runOnce(apply, true);
        if (happens(70))
            runOnce(recover, true);
    }
    // Without faults at last: what is left is ended, and what is missing is made.
    const CommandResult recovered = runOnce(recover, false);
    const QJsonArray now = m_run.instruments();
    QString between;
    for (int number = 0; number < m_instruments; ++number) {
        if (!m_bench.fromOld(now, number).isEmpty() && !m_bench.fromWanted(now, number).isEmpty())
            between += QString(" instrument %1 is between").arg(number);
    }
    if ((recovered.exitStatus != 0 && recovered.exitStatus != 4) || !between.isEmpty())
        m_problems.append("recover:" + between + '\n' + recovered.text());
    const CommandResult applied = runOnce(m_bench.arguments, false);
    if (applied.exitStatus != 0 || !isDone() || m_run.isMarked())
        m_problems.append("apply: " + applied.text());
}

/** The runs of the journal come in the order of the processes; one that ended early has none. */
void Chaos::compareWrites() {
    const auto runs = m_run.ask("SELECT id, process FROM run ORDER BY id");
    QMap<qint64, std::vector<WritingCall>> kept;
    const auto rows = m_run.ask("SELECT run FROM call JOIN step ON step.id = step JOIN instrument"
                                " ON instrument.id = step.instrument WHERE writes = 1"
                                " ORDER BY call.id");
    const std::vector<WritingCall> all = writesKept(m_run);
    for (std::size_t i = 0; i < all.size(); ++i)
        kept[rows[i][0].toLongLong()].push_back(all[i]);
    auto next = runs.begin();
    for (const Process& process : m_processes) {
        const QByteArray trace = m_run.read(process.trace);
        const std::vector<WritingCall> made = writesIn(trace);
        // The last commit of each proof answers so; no rule does.
        m_counts.failedCalls += int(trace.count("\"result\":-") - trace.count("KVA_ERROR_NO_DATA"));
        m_counts.writes += made.size();
        std::vector<WritingCall> ofRun;
        if (next != runs.end() && (*next)[1].toLongLong() == process.id)
            ofRun = kept[(*next++)[0].toLongLong()];
        const bool isOpen = !ofRun.empty() && !ofRun.back().result.isValid();
        if (isOpen && !process.wasKilled)
            m_problems.append(process.trace + ": a call has no result");
        const QString problem = unlikeWrites(made, ofRun);
        if (!problem.isEmpty())
            m_problems.append(process.trace + ": " + problem);
    }
    if (next != runs.end())
        m_problems.append("the journal has a run that was none");
}

} // namespace

class TestCommandChaos : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endsWhatWasBegun();
};

void TestCommandChaos::endsWhatWasBegun() {
    const int seconds = qEnvironmentVariableIntValue("VQTL4_CHAOS_SECONDS");
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("VQTL4_CHAOS_SEED", &isGiven);
    Chaos chaos(seconds > 0 ? 40 : 5, static_cast<unsigned int>(isGiven ? given : 1));
    QElapsedTimer timer;
    timer.start();
    const Counts& counts = chaos.counts();
    const auto isEnough = [&] {
        return seconds > 0 ? timer.elapsed() >= 1000 * qint64{seconds}
                           : counts.plans >= 4 && counts.kills > 0;
    };
    while (chaos.problems().isEmpty() && !isEnough())
        chaos.applyPlan();
    chaos.compareWrites();
    qInfo() << counts.plans << "plans," << counts.runs << "runs," << counts.recoveries
            << "recoveries," << counts.kills << "kills," << counts.unplugged
            << "unplugged or switched off," << counts.failedCalls << "failed calls,"
            << counts.writes << "writes in" << timer.elapsed() << "ms:" << counts.outcomes;
    for (const QString& problem : chaos.problems())
        qInfo().noquote() << problem.left(4000);
    QCOMPARE(chaos.problems().size(), 0);
    QVERIFY(counts.failedCalls > 0);
}

TEST_CLASS(TestCommandChaos)
#include "tst_command_chaos.moc"
