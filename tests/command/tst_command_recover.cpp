/**
 * Runs of vq-tl4ctl that do not end: killed at each call and at each write to its files, and the
 * disk full from each write on; and what `recover` makes of each. What is true is read from the
 * bench. Of the writes, some hundreds, each seventh is taken.
 *
 *     VQTL4_SWEEP=full  takes every one
 */
#include "CommandRun.h"
#include "Tries.h"
#include "tests/support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);

QString fromInitial(const CommandRun& run) {
    return differenceBetween(run.instrument(), CommandRun::initialInstrument());
}

QString fromWanted(const CommandRun& run) {
    return differenceBetween(run.instrument(), CommandRun::wantedInstrument());
}

/** The first column of what the journal answers. */
QStringList kept(const CommandRun& run, const QString& query) {
    QStringList result;
    for (const QVariantList& row : run.ask(query))
        result.append(row[0].toString());
    return result;
}

/** Every call that writes is in the journal, in its order. The last one may be there and not have
    been made; and on a full disk the way back is gone to its end without the journal. */
QString unkeptWrites(const CommandRun& run, bool isFull) {
    const QStringList has = kept(run, "SELECT function FROM call WHERE writes = 1 ORDER BY id");
    const QStringList made = run.writingCalls();
    const bool isWhole = has == made || has.mid(0, has.size() - 1) == made;
    if (isWhole || (isFull && made.mid(0, has.size()) == has && fromInitial(run).isEmpty()))
        return {};
    return "made " + made.join(' ') + ", kept " + has.join(' ');
}

/** `recover`, and then the same `apply`, of what an `apply` left behind. */
QString contradictionAfterwards(const CommandRun& run, bool wasFull = false) {
    const QString unkept = unkeptWrites(run, wasFull);
    if (!unkept.isEmpty())
        return unkept;
    const bool wasMarked = run.isMarked();
    const bool wasWritten = !run.writingCalls().isEmpty();
    const CommandResult recovered = run.run({"recover", "--yes", "--json"});
    const QString outcome = recovered.outcome();
    const bool isNothing = recovered.standardOutput.isEmpty() && recovered.exitStatus == 0;
    const bool isVerdict =
        outcome == "verified" || outcome == "unchanged" || outcome == "rolled-back";
    if (wasMarked ? outcome != "verified" && outcome != "rolled-back" : !isNothing && !isVerdict)
        return "recover: " + recovered.text();
    const QString old = fromInitial(run);
    const QString wanted = fromWanted(run);
    if (outcome == "verified" && !wanted.isEmpty())
        return "recovered as verified, but not: " + wanted;
    if (outcome == "rolled-back" && !old.isEmpty())
        return "rolled back, but not: " + old;
    if (outcome == "unchanged" && wasWritten)
        return "unchanged, and written";
    if (!old.isEmpty() && !wanted.isEmpty())
        return "neither: " + old + "; " + wanted;
    if (!run.ask("SELECT 1 FROM run WHERE id NOT IN (SELECT run FROM run_end)").empty() ||
        run.isMarked())
        return "a run has no end";
    const CommandResult applied = run.run(run.applyAll());
    if (applied.outcome() != (wanted.isEmpty() ? "unchanged" : "verified"))
        return "apply afterwards: " + applied.text();
    return fromWanted(run);
}

/** The writes of an `apply` that are tried, with what the shim is told. */
QStringList writes(const char* setting) {
    const int stride = isFullSweep() ? 1 : 7 * static_cast<int>(sweepStride());
    int count = 0;
    for (int exitStatus = -1; exitStatus != 0; count += 20) {
        CommandRun run;
        const QString kill = QString("SHIM_KILL=file:%1").arg(count + 20);
        exitStatus = run.run(run.applyAll(), {preload, kill}).exitStatus;
    }
    QStringList result;
    for (int number = 1; number <= count; number += stride)
        result.append(QString::fromLatin1(setting).arg(number));
    return result;
}

/** What kills an `apply` before or after the first call of @p function. */
QString killAt(const QString& moment, const QString& function) {
    const CommandRun whole;
    whole.run(whole.applyAll());
    return QString("SHIM_KILL=%1:%2").arg(moment).arg(whole.calls().indexOf(function) + 1);
}

void tell(const QStringList& problems) {
    for (const QString& problem : problems)
        qInfo().noquote() << problem.left(1000);
    QCOMPARE(problems.size(), 0);
}

} // namespace

class TestCommandRecover : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endsWhatWasKilledAtACall();
    void endsWhatWasKilledAtAWrite();
    void survivesAFullDisk();
    void saysWhatIsHeld_data();
    void saysWhatIsHeld();
    void endsAnUnfinishedRestore();
    void endsAnUnfinishedRecovery();
    void honoursAMarkFile();
    void asks();
    void verifies_data();
    void verifies();
    void seesTheMarkOfTheUsualJournal();
};

void TestCommandRecover::endsWhatWasKilledAtACall() {
    CommandRun whole;
    QVERIFY(whole.run(whole.applyAll()).exitStatus == 0);
    const auto count = static_cast<std::size_t>(whole.calls().size());
    tell(problemsOf(2 * count, [&](std::size_t index) {
        CommandRun run;
        const QString moment =
            QString(index % 2 == 0 ? "before:%1" : "after:%1").arg(index / 2 + 1);
        const CommandResult got = run.run(run.applyAll(), {preload, "SHIM_KILL=" + moment});
        if (got.exitStatus != -1)
            return moment + ": it was not killed";
        const QString problem = contradictionAfterwards(run);
        return problem.isEmpty() ? QString() : "killed " + moment + ": " + problem;
    }));
}

void TestCommandRecover::endsWhatWasKilledAtAWrite() {
    const QStringList moments = writes("SHIM_KILL=file:%1");
    QElapsedTimer timer;
    timer.start();
    std::atomic<int> killed{0};
    const QStringList problems =
        problemsOf(static_cast<std::size_t>(moments.size()), [&](std::size_t index) {
            CommandRun run;
            const QString& moment = moments[static_cast<int>(index)];
            const CommandResult got = run.run(run.applyAll(), {preload, moment});
            killed += got.exitStatus == -1 ? 1 : 0;
            const QString problem = contradictionAfterwards(run);
            return problem.isEmpty() ? QString() : moment + ": " + problem;
        });
    qInfo() << killed.load() << "kills in" << timer.elapsed() << "ms";
    tell(problems);
    QVERIFY(killed > 30 / static_cast<int>(sweepStride()));
}

/** The verdict of such a run is right as well, and the next one, with space again, finds the way.
 */
void TestCommandRecover::survivesAFullDisk() {
    const QStringList moments = writes("SHIM_FULL=%1");
    std::atomic<int> refused{0};
    std::atomic<int> unknown{0};
    const QStringList problems =
        problemsOf(static_cast<std::size_t>(moments.size()), [&](std::size_t index) -> QString {
            CommandRun run;
            const QString& full = moments[static_cast<int>(index)];
            const CommandResult got = run.run(run.applyAll(), {preload, full});
            const QString outcome = got.outcome();
            refused += outcome == "refused" ? 1 : 0;
            unknown += outcome == "unknown" ? 1 : 0;
            const bool isWritten = !run.writingCalls().isEmpty();
            if (outcome == "refused" ? isWritten || got.exitStatus != 3
                                     : outcome != "verified" && outcome != "unknown")
                return full + ": " + got.text();
            if (outcome == "verified" && (run.isMarked() || !fromWanted(run).isEmpty()))
                return full + ": verified, and not kept";
            const QString problem = contradictionAfterwards(run, true);
            return problem.isEmpty() ? QString() : full + ": " + problem;
        });
    qInfo() << "refused" << refused.load() << "unknown" << unknown.load() << "of" << moments.size();
    tell(problems);
    QVERIFY(refused > 5 / static_cast<int>(sweepStride()));
    QVERIFY(unknown > 5 / static_cast<int>(sweepStride()));
}

void TestCommandRecover::saysWhatIsHeld_data() {
    QTest::addColumn<QString>("function"); ///< whose first call is the last one that is made
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<QString>("outcome");
    const QString stage = "KVA_JIG_SetFactoryCalib_CALREFDATA";
    const QString network = "KVA_SetNetworkInfo";
    QTest::newRow("old") << stage << "before"
                         << "answers the old state"
                         << "rolled-back";
    QTest::newRow("staged") << stage << "after"
                            << "answers neither"
                            << "rolled-back";
    QTest::newRow("all but one") << network << "before"
                                 << "answers neither"
                                 << "rolled-back";
    QTest::newRow("wanted") << network << "after"
                            << "answers what was wanted"
                            << "verified";
}

void TestCommandRecover::saysWhatIsHeld() {
    QFETCH(QString, function);
    QFETCH(QString, moment);
    QFETCH(QString, sentence);
    QFETCH(QString, outcome);
    const QString kill = killAt(moment, function);
    CommandRun run;
    QCOMPARE(run.run(run.applyAll(), {preload, kill}).exitStatus, -1);
    run.clearTrace();
    const CommandResult got = run.run({"recover", "--yes", "--json"});
    QVERIFY2(got.outcome() == outcome, got.text());
    QVERIFY2(got.standardError.contains(sentence.toUtf8()), got.text());
    QCOMPARE(got.exitStatus, outcome == "verified" ? 0 : 4);
    QCOMPARE(outcome == "verified" ? fromWanted(run) : fromInitial(run), QString());
    // Also what reads equal is written.
    for (const char* name :
         {"KVA_JIG_SetFactoryCalib_CALREFDATA", "KVA_JIG_SetFactoryCalib_WriteSector",
          "KVA_SetShutdownTime", "KVA_SetNetworkInfo"})
        QVERIFY2(run.writingCalls().contains(name), name);
    const CommandResult again = run.run({"recover", "--yes", "--json"});
    QVERIFY2(again.exitStatus == 0 && again.standardOutput.isEmpty(), again.text());
}

/** The state before is the one before the first of them: what a restore began from is not known. */
void TestCommandRecover::endsAnUnfinishedRestore() {
    CommandRun run;
    run.run(run.applyAll(), {preload, killAt("after", "KVA_SetShutdownTime")});
    QVERIFY(run.isMarked());
    const QStringList restore = {"restore", "1000001", run.snapshots().value(0), "--yes", "--json"};
    const QString kill = killAt("before", "KVA_JIG_SetFactoryCalib_CALREFDATA");
    QCOMPARE(run.run(restore, {preload, kill}).exitStatus, -1);
    QCOMPARE(run.run({"recover", "--yes", "--json"}).outcome(), QString("rolled-back"));
    QCOMPARE(fromInitial(run), QString());
    QVERIFY(!run.isMarked());
}

/** What it wanted, and wrote, is the old state: that is not the row that somebody wanted. */
void TestCommandRecover::endsAnUnfinishedRecovery() {
    const QString kill = killAt("after", "KVA_SetShutdownTime");
    const QStringList recover = {"recover", "--yes", "--json"};
    const CommandRun whole;
    whole.run(whole.applyAll(), {preload, kill});
    whole.clearTrace();
    whole.run(recover);
    const int lastWrite = whole.calls().lastIndexOf("KVA_SetNetworkInfo") + 1;
    const CommandRun run;
    run.run(run.applyAll(), {preload, kill});
    const QString late = QString("SHIM_KILL=after:%1").arg(lastWrite);
    QCOMPARE(run.run(recover, {preload, late}).exitStatus, -1);
    QCOMPARE(fromInitial(run), QString());
    const CommandResult got = run.run(recover);
    QVERIFY2(got.outcome() == "rolled-back", got.text());
    QCOMPARE(fromInitial(run), QString());
    QVERIFY(!run.isMarked());
}

void TestCommandRecover::honoursAMarkFile() {
    CommandRun run;
    const CommandResult backup = run.run({"backup", "1000001", "--to", run.path("kept")});
    const QString snapshot = QString::fromUtf8(backup.standardOutput.trimmed());
    QVERIFY(QDir().mkpath(run.dataFolder() + "/unfinished"));
    const QString mark = "data/vq-tl4ctl/unfinished/01000001.json";
    run.write(mark, QJsonDocument(QJsonObject{{"snapshot", snapshot}}).toJson());
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("refused"));
    QCOMPARE(run.run({"recover", "--yes", "--json"}).outcome(), QString("rolled-back"));
    QVERIFY(!QFileInfo::exists(run.path(mark)));
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
}

void TestCommandRecover::asks() {
    const CommandRun run;
    const CommandResult got = run.run({"recover"});
    QCOMPARE(got.exitStatus, 2);
    QVERIFY2(got.standardError.contains("--yes"), got.text());
}

void TestCommandRecover::verifies_data() {
    QTest::addColumn<QStringList>("environment"); ///< of the apply before
    QTest::addColumn<bool>("isChanged");
    QTest::addColumn<bool>("isOldAnswered");
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("exitStatus");
    const QStringList none;
    QTest::newRow("held") << none << false << false << "held" << 0;
    QTest::newRow("changed since") << none << true << false << "differs" << 7;
    QTest::newRow("waits") << QStringList{preload, "SHIM_OLD_NETWORK=1"} << false << true << "waits"
                           << 6;
    QTest::newRow("waited") << QStringList{preload, "SHIM_OLD_NETWORK=1"} << false << false
                            << "held" << 0;
    QTest::newRow("killed") << QStringList{preload, "SHIM_KILL=before:20"} << false << false
                            << "unfinished" << 5;
}

void TestCommandRecover::verifies() {
    QFETCH(QStringList, environment);
    QFETCH(bool, isChanged);
    QFETCH(bool, isOldAnswered);
    QFETCH(QString, word);
    QFETCH(int, exitStatus);
    CommandRun run;
    QCOMPARE(run.run({"verify", "--json"}).object()["outcome"].toString(), QString("unwritten"));
    run.run(run.applyAll(), environment);
    QJsonObject instrument = run.instrument();
    const QJsonObject now = instrument;
    if (isChanged)
        instrument["powerOffMode"] = 2;
    if (isOldAnswered)
        instrument["network"] = CommandRun::initialInstrument()["network"];
    run.setBench(instrument);
    for (const QStringList& chosen :
         {QStringList{"1000001"}, QStringList{"--all"}, QStringList()}) {
        const CommandResult got = run.run(QStringList{"verify", "--json"} + chosen);
        QVERIFY2(got.object()["outcome"].toString() == word, got.text());
        QCOMPARE(got.exitStatus, exitStatus);
    }
    QCOMPARE(kept(run, "SELECT word FROM verification"),
             word == "unfinished" ? QStringList() : QStringList({word, word, word}));
}

void TestCommandRecover::seesTheMarkOfTheUsualJournal() {
    CommandRun run;
    const QStringList other = {"--journal", run.path("other.sqlite")};
    run.run(run.applyAll(), {preload, "SHIM_KILL=before:20"});
    QVERIFY(run.isMarked());
    run.clearTrace();
    const CommandResult refused = run.run(run.applyAll() + other);
    QVERIFY2(refused.outcome() == "refused", refused.text());
    QCOMPARE(run.calls(), QStringList());
}

TEST_CLASS(TestCommandRecover)
#include "tst_command_recover.moc"
