/**
 * Every call of an `apply` that changes all four things, times every kind of fault; and SIGKILL
 * before and after each call. What is true is read from the bench, never from the program.
 *
 *     VQTL4_SWEEP=full  adds the faults that stay from a call on, and pairs of a fault in a call
 *                       that writes and one in any call of the way back; minutes, so with
 *                       QTEST_FUNCTION_TIMEOUT=3600000
 */
#include "CommandRun.h"
#include "Tries.h"
#include "tests/support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>

#include <set>
#include <vector>

namespace {

const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);

struct Kind {
    QString name;
    QJsonObject what;
    const char* functions; ///< a part of the names of those that can have it; several with "|"
};

std::vector<Kind> kinds() {
    const auto result = [](const char* code) { return Kind{code, {{"result", code}}, ""}; };
    const auto corrupted = [](const char* functions, int offset) {
        return Kind{QString("corrupted %1").arg(offset),
                    {{"corrupted", QJsonObject{{"offset", offset}, {"xor", 4}}}},
                    functions};
    };
    const auto unplug = [](const char* moment) {
        return Kind{QString("unplug %1").arg(moment), {{"unplug", moment}}, ""};
    };
    const char* const calibration = "GetFactoryCalib_CALREFDATA";
    return {result("KVA_ERROR_COMMUNICATION_TIMEOUT"),
            result("KVA_ERROR_NO_DATA"),
            result("KVA_ERROR_NEQ"),
            result("KVA_WARNING_BATTERY_EMPTY"),
            result("KVA_WARNING_WCALIB_TEMP"),
            {"delay", {{"delayMs", 20}}, ""},
            {"dropped", {{"dropped", true}}, "Connect|Disconnect|_Set"},
            {"stale",
             {{"stale", true}},
             "PortList|GetNetworkInfo|GetShutdownTime|GetFactoryCalib_CALREFDATA"},
            {"short list", {{"shortList", 0}}, "PortList"},
            corrupted("PortList", 0),
            corrupted("PortList", 40),
            corrupted("GetDeviceInfo", 0),
            corrupted("GetDeviceInfo", 24),
            corrupted("ACTIONOPTIONDATA", 0),
            corrupted("GetNetworkInfo", 4),
            corrupted("GetNetworkInfo", 57),
            corrupted("GetShutdownTime", 0),
            corrupted(calibration, 0),
            corrupted(calibration, 155),
            corrupted(calibration, 459),
            corrupted(calibration, 2507),
            unplug("before"),
            unplug("during"),
            unplug("after")};
}

bool canHave(const QString& function, const Kind& kind) {
    const QStringList parts = QString(kind.functions).split('|');
    return std::any_of(parts.begin(), parts.end(),
                       [&](const QString& part) { return function.contains(part); });
}

/** The calls of a run, each with its number among those of its function. */
using Call = std::pair<QString, int>;

std::vector<Call> numbered(const QStringList& functions) {
    std::vector<Call> calls;
    QMap<QString, int> counts;
    for (const QString& function : functions)
        calls.emplace_back(function, ++counts[function]);
    return calls;
}

std::vector<Call> callsOf(const QJsonArray& faults) {
    CommandRun run;
    run.setFaults(faults);
    run.run(run.applyAll());
    return numbered(run.calls());
}

struct Combination {
    QString name;
    QJsonArray faults;
    /** Every answer is wrong in the same way, from the first on: nobody can tell it from the truth,
        and the snapshot holds it. */
    bool isMisleading = false;
};

std::vector<Combination> combinations(const std::vector<Call>& calls, const QString& suffix,
                                      const QJsonArray& others = {}) {
    std::vector<Combination> result;
    for (const auto& [function, number] : calls) {
        for (const Kind& kind : kinds()) {
            if (!canHave(function, kind))
                continue;
            QJsonArray faults = others;
            faults.append(rule(function, QString::number(number) + suffix, kind.what));
            const bool isMisleading =
                !suffix.isEmpty() && number == 1 && kind.what.contains("corrupted");
            result.push_back(
                {QString("%1 %2%3: %4").arg(function).arg(number).arg(suffix, kind.name), faults,
                 isMisleading});
        }
    }
    return result;
}

/** What contradicts the outcome; empty where nothing does. */
QString contradiction(const CommandRun& run, const CommandResult& got) {
    const QString outcome = got.outcome();
    const QJsonObject instrument = run.instrument();
    const QString fromInitial = differenceBetween(instrument, CommandRun::initialInstrument());
    const QString fromWanted = differenceBetween(instrument, CommandRun::wantedInstrument());
    static const QMap<QString, int> statuses = {
        {"verified", 0}, {"refused", 3}, {"rolled-back", 4}, {"unknown", 5}, {"waits", 6}};
    if (statuses.value(outcome, -2) != got.exitStatus)
        return "outcome and exit status";
    if (outcome == "verified" && !fromWanted.isEmpty())
        return "verified, but not: " + fromWanted;
    if (outcome == "waits" && !fromWanted.isEmpty() && fromWanted != "network")
        return "waits, but not: " + fromWanted;
    if (outcome == "refused" && !run.writingCalls().isEmpty())
        return "refused, and written";
    if ((outcome == "refused" || outcome == "rolled-back") && !fromInitial.isEmpty())
        return outcome + ", but changed: " + fromInitial;
    if (run.isMarked() != (outcome == "unknown"))
        return "the mark";
    for (const char* key : CommandRun::keys) {
        if (got.text().contains(key))
            return "a key is shown";
    }
    // What was on the disk at the first call that writes.
    const QString seen = run.path("witness");
    if (!run.writingCalls().isEmpty() &&
        (QDir(seen + "/snapshots").count() != 3 || !run.isMarked(seen)))
        return "no snapshot or mark before the first call that writes";
    return {};
}

/** An unfinished write: refused, then put back, and then it is made.
    @param mayBeWritten  whether all of it may have been written, without a verdict
    @param isMisled      whether the snapshot cannot be what the instrument held */
QString contradictionAfterwards(CommandRun& run, bool mayBeWritten, bool isMisled = false) {
    QJsonObject instrument = run.instrument();
    instrument["plugged"] = true;
    run.setBench(instrument);
    run.clearTrace();
    if (run.isMarked()) {
        const CommandResult refused = run.run(run.applyAll());
        if (refused.outcome() != "refused" || !run.calls().isEmpty())
            return "apply to a marked instrument: " + refused.text();
        const QString snapshot = run.snapshots().value(0);
        if (run.run({"check", snapshot}).exitStatus != 0)
            return "the snapshot is not whole";
        const CommandResult restored = run.run({"restore", "1000001", snapshot, "--yes", "--json"});
        if (restored.outcome() != "verified")
            return "restore: " + restored.text();
        const QString left = differenceBetween(run.instrument(), CommandRun::initialInstrument());
        if (!left.isEmpty() && !isMisled)
            return "restored, but not: " + left;
    }
    const CommandResult applied = run.run(run.applyAll());
    const bool isRight =
        applied.outcome() == "verified" || (mayBeWritten && applied.outcome() == "unchanged");
    if (!isRight)
        return "apply afterwards: " + applied.text();
    return isMisled ? QString()
                    : differenceBetween(run.instrument(), CommandRun::wantedInstrument());
}

QString tryCombination(const Combination& combination, QString& outcome) {
    CommandRun run;
    run.setFaults(combination.faults);
    const CommandResult got =
        run.run(run.applyAll(), {preload, "SHIM_WITNESS=" + run.path("witness")});
    outcome = got.outcome();
    QString problem = contradiction(run, got);
    if (problem.isEmpty() && outcome == "unknown")
        problem = contradictionAfterwards(run, false, combination.isMisleading);
    return problem.isEmpty() ? QString() : combination.name + ": " + problem + '\n' + got.text();
}

QString tryKill(const QString& moment, int call) {
    CommandRun run;
    const CommandResult got =
        run.run(run.applyAll(), {preload, QString("SHIM_KILL=%1:%2").arg(moment).arg(call)});
    const QString name = QString("killed %1 call %2: ").arg(moment).arg(call);
    if (got.exitStatus != -1)
        return name + "it was not killed\n" + got.text();
    const bool isUntouched = run.writingCalls().isEmpty();
    const QString changed = differenceBetween(run.instrument(), CommandRun::initialInstrument());
    if (isUntouched && !changed.isEmpty())
        return name + changed;
    const QString problem = contradictionAfterwards(run, true);
    return problem.isEmpty() ? QString() : name + problem;
}

} // namespace

class TestCommandSweep : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void neverSaysWhatIsNotSo();
    void survivesBeingKilled();
};

void TestCommandSweep::neverSaysWhatIsNotSo() {
    const std::vector<Call> calls = callsOf({});
    QVERIFY(calls.size() > 30);
    std::vector<Combination> all = combinations(calls, {});
    if (isFullSweep()) {
        for (const Combination& staying : combinations(calls, "-1000000"))
            all.push_back(staying);
        const QJsonObject failing = {{"result", "KVA_ERROR_NEQ"}};
        for (const char* function :
             {"KVA_JIG_SetFactoryCalib_CALREFDATA", "KVA_JIG_SetFactoryCalib_WriteSector",
              "KVA_SetShutdownTime", "KVA_SetNetworkInfo"}) {
            const QJsonArray first = {rule(function, "1", failing)};
            for (const Combination& pair : combinations(callsOf(first), {}, first))
                all.push_back(pair);
        }
    }
    const std::size_t stride = sweepStride();
    for (std::size_t i = 0; i * stride < all.size(); ++i)
        all[i] = all[i * stride];
    all.resize((all.size() + stride - 1) / stride);
    std::vector<QString> outcomes(all.size());
    QElapsedTimer timer;
    timer.start();
    const QStringList problems = problemsOf(
        all.size(), [&](std::size_t index) { return tryCombination(all[index], outcomes[index]); });
    QMap<QString, int> counts;
    for (const QString& outcome : outcomes)
        ++counts[outcome];
    qInfo() << all.size() << "combinations in" << timer.elapsed() << "ms:" << counts;
    for (const QString& problem : problems)
        qInfo().noquote() << problem.left(1000);
    QCOMPARE(problems.size(), 0);
    // The oracle has seen all of them.
    for (const char* outcome : {"verified", "refused", "rolled-back", "unknown"})
        QVERIFY2(counts.value(outcome) > 0, outcome);
}

void TestCommandSweep::survivesBeingKilled() {
    const int calls = static_cast<int>(callsOf({}).size());
    QElapsedTimer timer;
    timer.start();
    const QStringList problems =
        problemsOf(static_cast<std::size_t>(calls) * 2 / sweepStride(), [&](std::size_t index) {
            const std::size_t number = index * sweepStride();
            return tryKill(number % 2 == 0 ? "before" : "after", static_cast<int>(number / 2) + 1);
        });
    qInfo() << static_cast<std::size_t>(calls) * 2 / sweepStride() << "kills in" << timer.elapsed()
            << "ms";
    for (const QString& problem : problems)
        qInfo().noquote() << problem.left(1000);
    QCOMPARE(problems.size(), 0);
}

TEST_CLASS(TestCommandSweep)
#include "tst_command_sweep.moc"
