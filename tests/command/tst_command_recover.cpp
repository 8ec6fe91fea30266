// `recover` and `verify`: what they say of what a run left behind, and what they end.
#include "CommandRun.h"
#include "ThreeInstruments.h"
#include "tests/support/TestMain.h"

#include <QDir>
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

/** What kills an `apply` before or after the first call of @p function. */
QString killAt(const QString& moment, const QString& function) {
    const CommandRun whole;
    whole.run(whole.applyAll());
    return QString("SHIM_KILL=%1:%2").arg(moment).arg(whole.calls().indexOf(function) + 1);
}

} // namespace

class TestCommandRecover : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysWhatIsHeld_data();
    void saysWhatIsHeld();
    void endsAnUnfinishedRestore();
    void endsAnUnfinishedRecovery();
    void honoursAMarkFile();
    void asks();
    void verifies_data();
    void verifies();
    void verifiesWhatIsAttached_data();
    void verifiesWhatIsAttached();
    void verifiesWhatWasPutBack();
    void seesTheMarkOfTheUsualJournal();
    void refusesBesideADamagedJournal();
    void namesAnotherJournal();
    void keepsWhatItCannotEnd();
    void readsNoDamagedSnapshot();
    void saysThatTheMarkStays();
};

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
    QVERIFY2(got.standardError.contains("01000001, no changes.\n") ==
                 (sentence != "answers neither"),
             got.text());
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
    const auto lastWrite = whole.calls().lastIndexOf("KVA_SetNetworkInfo") + 1;
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
    CommandRun run;
    const CommandResult nothing = run.run({"recover"});
    QVERIFY2(nothing.exitStatus == 0, nothing.text());
    QVERIFY2(nothing.standardError.contains("nothing to recover"), nothing.text());
    run.run(run.applyAll(), {preload, killAt("after", "KVA_SetShutdownTime")});
    const CommandResult got = run.run({"recover"});
    QVERIFY2(got.exitStatus == 2, got.text());
    QVERIFY2(got.standardError.contains("--yes"), got.text());
    QVERIFY2(!got.standardError.contains("--dry-run"), got.text());
    QVERIFY(run.isMarked());
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
        QVERIFY2(!got.standardError.startsWith('\n'), got.text());
    }
    QCOMPARE(kept(run, "SELECT word FROM verification"),
             word == "unfinished" ? QStringList() : QStringList({word, word, word}));
}

void TestCommandRecover::verifiesWhatIsAttached_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QList<int>>("attached"); ///< of three; the third was not written to
    QTest::addColumn<QString>("words");
    QTest::addColumn<int>("exitStatus");
    const auto row = [](const char* name, const QStringList& options, const QList<int>& attached,
                        const char* words, int exitStatus) {
        QTest::newRow(name) << options << attached << QString(words) << exitStatus;
    };
    row("one is not", {}, {0, 2}, "held unwritten", 0);
    row("one is not, of all", {"--all"}, {0, 2}, "held unwritten refused", 3);
    row("one is not, and is named", {"1000002"}, {0, 2}, "refused", 3);
    row("none of them is", {}, {2}, "unwritten", 3);
    row("none of them is, of all", {"--all"}, {2}, "unwritten refused refused", 3);
}

void TestCommandRecover::verifiesWhatIsAttached() {
    QFETCH(QList<int>, attached);
    QFETCH(QStringList, options);
    CommandRun run;
    ThreeInstruments::setBench(run);
    QCOMPARE(run.run({"apply", "1000001", "1000002", "--power-off", "60", "--yes"}).exitStatus, 0);
    QJsonObject bench = QJsonDocument::fromJson(run.read("bench.json")).object();
    QJsonArray instruments;
    for (const int number : attached)
        instruments.append(bench["instruments"].toArray()[number]);
    bench["instruments"] = instruments;
    run.write("bench.json", QJsonDocument(bench).toJson());
    const CommandResult got = run.run(QStringList{"verify", "--json"} + options);
    QVERIFY2(got.standardError.contains("01000002"), got.text());
    QTEST(ThreeInstruments::outcomes(got), "words");
    QTEST(got.exitStatus, "exitStatus");
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

void TestCommandRecover::verifiesWhatWasPutBack() {
    CommandRun run;
    const QJsonObject fault = {{"result", "KVA_ERROR_NAK"}};
    run.setFaults({rule("KVA_SetShutdownTime", "1", fault)});
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("rolled-back"));
    run.setFaults({});
    CommandResult got = run.run({"verify", "1000001", "--json"});
    QVERIFY2(got.object()["outcome"].toString() == "held", got.text());
    // What a recovery put back is what it wanted.
    run.run(run.applyAll(), {preload, killAt("after", "KVA_SetShutdownTime")});
    QCOMPARE(run.run({"recover", "--yes", "--json"}).outcome(), QString("rolled-back"));
    got = run.run({"verify", "1000001", "--json"});
    QVERIFY2(got.object()["outcome"].toString() == "held", got.text());
}

/** A usual journal that cannot be read may have a mark. */
void TestCommandRecover::refusesBesideADamagedJournal() {
    CommandRun run;
    QVERIFY(QDir().mkpath(run.dataFolder()));
    run.write("data/vq-tl4ctl/journal.sqlite", "This is no journal.");
    const QStringList other = {"--journal", run.path("other.sqlite")};
    const CommandResult got = run.run(run.applyAll() + other);
    QVERIFY2(got.outcome() == "refused", got.text());
    QVERIFY2(got.object()["reason"].toString().contains("file is not a database"), got.text());
    QCOMPARE(run.calls(), QStringList());
    QVERIFY(run.run({"list", "--json"}).object()["unfinished"].toBool());
}

/** In a form that a shell takes as it is. */
void TestCommandRecover::namesAnotherJournal() {
    CommandRun run;
    const QStringList other = {"--journal", run.path("it's here.sqlite")};
    run.run(run.applyAll() + other, {preload, "SHIM_KILL=before:20"});
    const CommandResult refused = run.run(run.applyAll() + other);
    QVERIFY2(refused.outcome() == "refused", refused.text());
    const QString named = " --journal '" + run.path("it'\\''s here.sqlite") + "'";
    const QString reason = refused.object()["reason"].toString();
    QVERIFY2(reason.contains("run vq-tl4ctl recover" + named + ". "), refused.text());
    QVERIFY2(reason.endsWith(run.snapshots().value(0) + named), refused.text());
}

void TestCommandRecover::keepsWhatItCannotEnd() {
    CommandRun run;
    const QStringList recover = {"recover", "--yes", "--json"};
    run.run(run.applyAll(), {preload, killAt("after", "KVA_SetShutdownTime")});
    const QJsonObject instrument = run.instrument();
    run.setBench(QJsonArray());
    CommandResult got = run.run(recover);
    QVERIFY2(got.outcome() == "refused" && got.exitStatus == 3, got.text());
    QVERIFY2(got.standardError.contains("Instrument 01000001 is not attached."), got.text());
    QVERIFY(run.isMarked());
    // Another failure does not lead back: the state before this run is not known.
    run.setBench(instrument, {rule("KVA_SetShutdownTime", "1", {{"result", "KVA_ERROR_NAK"}})});
    got = run.run(recover);
    QVERIFY2(got.outcome() == "unknown" && got.exitStatus == 5, got.text());
    QVERIFY2(
        got.object()["reason"].toString().contains(
            "KVA_SetShutdownTime answered KVA_ERROR_NAK. To end it, run vq-tl4ctl recover. To put "
            "the state before back in any case, run: vq-tl4ctl restore 01000001 "),
        got.text());
    QVERIFY(run.isMarked());
    run.setFaults({});
    QCOMPARE(run.run(recover).outcome(), QString("rolled-back"));
    QCOMPARE(fromInitial(run), QString());
}

void TestCommandRecover::readsNoDamagedSnapshot() {
    CommandRun run;
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    editSnapshots(run.journal());
    CommandResult got = run.run({"verify", "1000001", "--json"});
    QVERIFY2(got.object()["outcome"].toString() == "refused" && got.exitStatus == 3, got.text());
    QVERIFY2(got.standardError.contains("01000001: its snapshot in the journal is damaged."),
             got.text());

    CommandRun marked;
    marked.run(marked.applyAll(), {preload, killAt("after", "KVA_SetShutdownTime")});
    editSnapshots(marked.journal());
    marked.clearTrace();
    got = marked.run({"recover", "--yes", "--json"});
    QVERIFY2(got.outcome() == "refused" && got.exitStatus == 3, got.text());
    QVERIFY2(got.standardError.contains("The snapshot is damaged or was edited"), got.text());
    QVERIFY2(got.standardError.contains("The snapshot of the state before cannot be used."),
             got.text());
    QCOMPARE(marked.calls(), QStringList());
    QVERIFY(marked.isMarked());
}

/** A mark that is no file cannot be removed. */
void TestCommandRecover::saysThatTheMarkStays() {
    CommandRun run;
    const CommandResult backup = run.run({"backup", "1000001", "--to", run.path("kept")});
    const QString snapshot = QString::fromUtf8(backup.standardOutput.trimmed());
    QVERIFY(QDir().mkpath(run.dataFolder() + "/unfinished/01000001.json"));
    const CommandResult got = run.run({"restore", "1000001", snapshot, "--yes", "--json"});
    QVERIFY2(got.outcome() == "verified", got.text());
    QVERIFY2(got.standardError.contains("01000001.json cannot be written: Is a directory"),
             got.text());
    QVERIFY(run.run({"list", "--json"}).object()["unfinished"].toBool());
}

TEST_CLASS(TestCommandRecover)
#include "tst_command_recover.moc"
