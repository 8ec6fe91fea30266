/**
 * Runs of vq-tl4ctl that do not end: killed at each call and at each write to its files, and the
 * disk full from each write on; and what `recover` makes of each. What is true is read from the
 * bench. Of one instrument each call is taken and each seventh of the writes, some hundreds; of a
 * plan over three, a few of both.
 *
 *     VQTL4_SWEEP=full  takes every one; minutes, so with QTEST_FUNCTION_TIMEOUT=3600000
 */
#include "Tries.h"
#include "WantedBench.h"
#include "tests/support/TestMain.h"

#include <QElapsedTimer>
#include <QJsonDocument>

namespace {

const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);

/** A run that is disturbed, and how many of its moments are tried. */
struct Disturbed {
    const char* name;
    int instruments;
    int callStride;
    int writeStride;

    WantedBench begin(const CommandRun& run) const {
        WantedBench bench =
            instruments == 1 ? WantedBench::ofOne(run) : WantedBench::byPlan(run, instruments);
        bench.setBench(run);
        return bench;
    }
};

const Disturbed disturbed[] = {{"one instrument", 1, 1, 7}, {"a plan over three", 3, 11, 47}};

std::size_t strideOf(int usual) {
    return isFullSweep() ? 1 : static_cast<std::size_t>(usual) * sweepStride();
}

/** The outcome of each instrument that is told of, by its number on the bench. */
QMap<int, QString> outcomesOf(const CommandResult& result) {
    QMap<int, QString> outcomes;
    for (const QByteArray& line : result.standardOutput.split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (!object.isEmpty())
            outcomes[object["serialNumber"].toString().toInt() - CommandRun::serialNumber] =
                object["outcome"].toString();
    }
    return outcomes;
}

/** Every call that writes is in the journal. On a full disk the way back is gone to its end without
    it. */
QString unkeptWrites(const CommandRun& run, const WantedBench& bench, bool isFull) {
    const std::vector<WritingCall> made = writesIn(run.read("trace"));
    const std::vector<WritingCall> kept = writesKept(run);
    if (isFull && made.size() > kept.size() && bench.fromOld(run.instruments(), 0).isEmpty())
        return unlikeWrites({made.begin(), made.begin() + static_cast<long>(kept.size())}, kept);
    return unlikeWrites(made, kept);
}

bool isWritten(const CommandRun& run, int number) {
    for (const WritingCall& call : writesIn(run.read("trace"))) {
        if (call.serialNumber == WantedBench::serialNumber(number))
            return true;
    }
    return false;
}

bool isMarked(const CommandRun& run, int number) {
    return !run.ask(QString("SELECT 1 FROM mark JOIN instrument ON id = instrument WHERE"
                            " serial_number = %1 AND instrument NOT IN (SELECT mark FROM mark_end)")
                        .arg(WantedBench::serialNumber(number)))
                .empty();
}

/** What contradicts the outcome of an instrument's recovery, empty where it was not told of. */
QString contradiction(const CommandRun& run, const WantedBench& bench, int number,
                      const QString& outcome, bool wasMarked, bool wasWritten) {
    const bool isSettled = outcome == "verified" || outcome == "rolled-back";
    if (wasMarked ? !isSettled : !outcome.isEmpty() && outcome != "unchanged")
        return QString("recovered a %1 one: %2").arg(wasMarked ? "marked" : "sound", outcome);
    const QString old = bench.fromOld(run.instruments(), number);
    const QString wanted = bench.fromWanted(run.instruments(), number);
    if (outcome == "verified" && !wanted.isEmpty())
        return "recovered as verified, but not: " + wanted;
    if (outcome == "rolled-back" && !old.isEmpty())
        return "rolled back, but not: " + old;
    if (outcome == "unchanged" && wasWritten)
        return "unchanged, and written";
    return old.isEmpty() || wanted.isEmpty() ? QString() : "neither: " + old + "; " + wanted;
}

/** `recover`, and then the same run again, of what a run left behind. */
QString contradictionAfterwards(const CommandRun& run, const WantedBench& bench,
                                bool wasFull = false) {
    QString problem = unkeptWrites(run, bench, wasFull);
    if (!problem.isEmpty())
        return problem;
    QMap<int, bool> wasMarked;
    QMap<int, bool> wasWritten;
    for (int number = 0; number < bench.count(); ++number) {
        wasMarked[number] = isMarked(run, number);
        wasWritten[number] = isWritten(run, number);
    }
    const CommandResult recovered = run.run({"recover", "--yes", "--json"});
    const QMap<int, QString> outcomes = outcomesOf(recovered);
    if (recovered.exitStatus != 0 && recovered.exitStatus != 4)
        return "recover: " + recovered.text();
    QMap<int, QString> expected;
    for (int number = 0; number < bench.count(); ++number) {
        problem = contradiction(run, bench, number, outcomes.value(number), wasMarked[number],
                                wasWritten[number]);
        if (!problem.isEmpty())
            return QString("instrument %1: ").arg(number) + problem + '\n' + recovered.text();
        const bool isDone = bench.fromWanted(run.instruments(), number).isEmpty();
        expected[number] = isDone ? "unchanged" : "verified";
    }
    if (!run.ask("SELECT 1 FROM run WHERE id NOT IN (SELECT run FROM run_end)").empty() ||
        run.isMarked())
        return "a run has no end";
    const CommandResult applied = run.run(bench.arguments);
    if (applied.exitStatus != 0 || outcomesOf(applied) != expected)
        return "apply afterwards: " + applied.text();
    for (int number = 0; number < bench.count(); ++number)
        problem += bench.fromWanted(run.instruments(), number);
    return problem;
}

/** How many writes a run makes, to the next hundred. */
int countWrites(const Disturbed& kind) {
    int count = 0;
    for (int exitStatus = -1; exitStatus == -1; count += 100) {
        const CommandRun run;
        const WantedBench bench = kind.begin(run);
        const QString kill = QString("SHIM_KILL=file:%1").arg(count + 100);
        exitStatus = run.run(bench.arguments, {preload, kill}).exitStatus;
    }
    return count;
}

QStringList moments(const char* setting, int count, std::size_t stride) {
    QStringList result;
    for (int number = 1; number <= count; number += static_cast<int>(stride))
        result.append(QString::fromLatin1(setting).arg(number));
    return result;
}

void tell(const QStringList& problems) {
    for (const QString& problem : problems)
        qInfo().noquote() << problem.left(1000);
    QCOMPARE(problems.size(), 0);
}

/** Kills a run at each of the moments. @param killed  how many were: the last may be too late */
QStringList problemsOfKills(const Disturbed& kind, const QStringList& moments, int& killed) {
    std::atomic<int> kills{0};
    QElapsedTimer timer;
    timer.start();
    const QStringList problems =
        problemsOf(static_cast<std::size_t>(moments.size()), [&](std::size_t index) {
            const CommandRun run;
            const WantedBench bench = kind.begin(run);
            const QString& moment = moments[static_cast<int>(index)];
            const CommandResult got = run.run(bench.arguments, {preload, moment});
            kills += got.exitStatus == -1 ? 1 : 0;
            const QString problem = contradictionAfterwards(run, bench);
            return problem.isEmpty() ? QString() : moment + ": " + problem;
        });
    killed = kills;
    qInfo() << killed << "kills in" << timer.elapsed() << "ms";
    return problems;
}

} // namespace

class TestCommandUnfinished : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endsWhatWasKilledAtACall_data() { addRows(disturbed); }
    void endsWhatWasKilledAtACall();
    void endsWhatWasKilledAtAWrite_data() { addRows(disturbed); }
    void endsWhatWasKilledAtAWrite();
    void survivesAFullDisk();
};

void TestCommandUnfinished::endsWhatWasKilledAtACall() {
    const auto kind = rowOf<Disturbed>();
    const CommandRun whole;
    const CommandResult ended = whole.run(kind.begin(whole).arguments);
    QVERIFY2(ended.exitStatus == 0, ended.text());
    const int count = int(whole.calls().size());
    const std::size_t stride = isFullSweep() ? 1 : static_cast<std::size_t>(kind.callStride);
    const QStringList tried = moments("SHIM_KILL=before:%1", count, stride) +
                              moments("SHIM_KILL=after:%1", count, stride);
    int killed = 0;
    tell(problemsOfKills(kind, tried, killed));
    QCOMPARE(killed, tried.size());
}

void TestCommandUnfinished::endsWhatWasKilledAtAWrite() {
    const auto kind = rowOf<Disturbed>();
    const QStringList tried =
        moments("SHIM_KILL=file:%1", countWrites(kind), strideOf(kind.writeStride));
    int killed = 0;
    tell(problemsOfKills(kind, tried, killed));
    QVERIFY(killed > tried.size() - 100);
    QVERIFY(killed > 10 / static_cast<int>(sweepStride()));
}

/** The verdict of such a run is right as well, and the next one, with space again, finds the way.
 */
void TestCommandUnfinished::survivesAFullDisk() {
    const QStringList tried = moments("SHIM_FULL=%1", countWrites(disturbed[0]), strideOf(7));
    std::atomic<int> refused{0};
    std::atomic<int> unknown{0};
    const QStringList problems =
        problemsOf(static_cast<std::size_t>(tried.size()), [&](std::size_t index) -> QString {
            const CommandRun run;
            const WantedBench bench = disturbed[0].begin(run);
            const QString& full = tried[static_cast<int>(index)];
            const CommandResult got = run.run(bench.arguments, {preload, full});
            const QString outcome = got.outcome();
            refused += outcome == "refused" ? 1 : 0;
            unknown += outcome == "unknown" ? 1 : 0;
            if (outcome == "refused" ? isWritten(run, 0) || got.exitStatus != 3
                                     : outcome != "verified" && outcome != "unknown")
                return full + ": " + got.text();
            if (outcome == "verified" &&
                (run.isMarked() || !bench.fromWanted(run.instruments(), 0).isEmpty()))
                return full + ": verified, and not kept";
            const QString problem = contradictionAfterwards(run, bench, true);
            return problem.isEmpty() ? QString() : full + ": " + problem;
        });
    qInfo() << "refused" << refused.load() << "unknown" << unknown.load() << "of" << tried.size();
    tell(problems);
    QVERIFY(refused > 5 / static_cast<int>(sweepStride()));
    QVERIFY(unknown > 5 / static_cast<int>(sweepStride()));
}

TEST_CLASS(TestCommandUnfinished)
#include "tst_command_unfinished.moc"
