#include "ApplyCases.h"
#include "CommandRun.h"
#include "tests/support/TestMain.h"

#include <QFileInfo>

#include <csignal>

namespace {

const QString commit = "KVA_JIG_SetFactoryCalib_WriteSector";
const QString preload = QString("LD_PRELOAD=" COMMAND_SHIM);

QJsonObject result(const QString& code) {
    return {{"result", code}};
}

} // namespace

Q_DECLARE_METATYPE(ApplyCase)

class TestCommand : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void applies_data();
    void applies();
    void doesNothingTwice();
    void keepsOtherWritersOff();
    void refusesUnfinishedAndRestores();
    void neverCommitsARefusedPlate();
    void honoursInterrupts_data();
    void honoursInterrupts();
    void showsAHangingCall();
    void asks_data();
    void asks();
};

void TestCommand::applies_data() {
    QTest::addColumn<ApplyCase>("test");
    for (const ApplyCase& test : applyCases())
        QTest::newRow(test.name) << test;
}

void TestCommand::applies() {
    QFETCH(const ApplyCase, test);
    CommandRun run;
    run.setFaults(test.faults);
    const CommandResult got = run.run(run.applyAll() + test.options, test.environment);
    QVERIFY2(got.exitStatus == test.exitStatus && got.outcome() == test.outcome, got.text());
    const QJsonObject object = got.object();
    QVERIFY2(object["reason"].toString().contains(test.reason), got.text());
    QCOMPARE(object.keys(),
             QStringList({"changes", "outcome", "reason", "serialNumber", "snapshot", "warnings"}));
    QCOMPARE(object["serialNumber"].toString(), QString("01000001"));
    for (const char* key : CommandRun::keys)
        QVERIFY2(!(got.standardOutput + got.standardError).contains(key), got.text());
    QCOMPARE(run.isMarked(), test.exitStatus == 5);

    if (test.holds == ApplyCase::Initial)
        QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()), QString());
    if (test.holds == ApplyCase::Wanted)
        QCOMPARE(differenceBetween(run.instrument(), CommandRun::wantedInstrument()), QString());
    if (test.exitStatus == 3 || test.exitStatus == 7)
        QCOMPARE(run.writingCalls(), QStringList());
    else
        QVERIFY(QFileInfo::exists(object["snapshot"].toString()));
}

void TestCommand::doesNothingTwice() {
    CommandRun run;
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    run.clearTrace();
    const CommandResult again = run.run(run.applyAll());
    QVERIFY2(again.exitStatus == 0 && again.outcome() == "unchanged", again.text());
    QCOMPARE(run.writingCalls(), QStringList());
    QCOMPARE(run.snapshots().size(), 1);
    QCOMPARE(run.run(run.applyAll() << "--dry-run").exitStatus, 0);
}

void TestCommand::keepsOtherWritersOff() {
    CommandRun run;
    run.setFaults(ruleFor("KVA_Connect", "1", {{"delayMs", 2000}}));
    const auto first = run.start(run.applyAll());
    const QByteArray holder = QByteArray::number(first->processId());
    QTRY_COMPARE_WITH_TIMEOUT(run.read("data/vq-tl4ctl/write.lock").trimmed(), holder, 10000);
    const CommandResult second = run.run(run.applyAll());
    QVERIFY2(second.exitStatus == 3 && second.outcome() == "refused", second.text());
    QVERIFY2(second.object()["reason"].toString().contains("process " + QString(holder)),
             second.text());
    QCOMPARE(CommandRun::finish(*first).outcome(), QString("verified"));
}

void TestCommand::refusesUnfinishedAndRestores() {
    CommandRun run;
    run.setFaults(ruleFor(commit, "every", {{"dropped", true}}));
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("unknown"));
    run.setFaults({});
    run.clearTrace();
    const CommandResult refused = run.run(run.applyAll());
    const QString snapshot = run.snapshots().value(0);
    QVERIFY2(refused.outcome() == "refused", refused.text());
    const QString reason = refused.object()["reason"].toString();
    QVERIFY2(reason.contains("To end it, run vq-tl4ctl recover. "), refused.text());
    QVERIFY2(reason.endsWith("run: vq-tl4ctl restore 01000001 " + snapshot), refused.text());
    QVERIFY(run.run({"show", "1000001"}).standardError.contains(reason.toUtf8()));
    run.clearTrace();
    QCOMPARE(run.calls(), QStringList());
    QCOMPARE(run.run({"backup", "1000001", "--to", run.path("out")}).exitStatus, 3);
    const QStringList restore = {"restore", "1000001", snapshot, "--yes", "--json"};
    QCOMPARE(run.run(restore + QStringList{"--only", "white-plate"}).outcome(), QString("refused"));
    QVERIFY(run.isMarked());

    // It reads equal already, and is written all the same.
    const CommandResult restored = run.run(restore);
    QVERIFY2(restored.exitStatus == 0 && restored.outcome() == "verified", restored.text());
    QVERIFY(run.writingCalls().contains(commit));
    QVERIFY(!run.isMarked());
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()), QString());
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::wantedInstrument()), QString());
}

void TestCommand::neverCommitsARefusedPlate() {
    CommandRun run;
    const QStringList plate = {"apply", "1000001", "--white-plate", run.path("plate.csv"),
                               "--yes", "--json"};
    const QStringList adapter = {"apply", "1000001", "--ambient-adapter", run.path("adapter.csv"),
                                 "--yes", "--json"};
    run.setFaults(ruleFor(commit, "1", result("KVA_ERROR_NAK")));
    QCOMPARE(run.run(plate + QStringList{"--on-failure", "rollback"}).outcome(),
             QString("rolled-back"));
    run.setFaults({});
    QCOMPARE(run.run(adapter).outcome(), QString("verified"));
    const auto committed = [&](const QString& accessory) {
        return run.instrument()["calibration"]
            .toObject()["committed"]
            .toObject()[accessory]
            .toObject()["serialNumber"]
            .toString();
    };
    QCOMPARE(committed("white"), QString("12345678"));
    QCOMPARE(committed("ambientAdapter"), QString("00012346"));

    // What is left as it is keeps the next one off.
    run.setFaults(ruleFor(commit, "1", result("KVA_ERROR_NAK")));
    QCOMPARE(run.run(plate + QStringList{"--on-failure", "leave"}).outcome(), QString("unknown"));
    run.setFaults({});
    QCOMPARE(run.run(adapter).outcome(), QString("refused"));
    QCOMPARE(committed("white"), QString("12345678"));
}

void TestCommand::honoursInterrupts_data() {
    QTest::addColumn<QString>("during");
    QTest::addColumn<int>("times");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QByteArray>("said");
    const auto row = [](const char* name, const QString& during, int times, const char* outcome,
                        const char* said) {
        QTest::newRow(name) << during << times << QString(outcome) << QByteArray(said);
    };
    row("while it connects", "KVA_Connect", 1, "refused", "after the present step");
    row("while it stages", "KVA_JIG_SetFactoryCalib_CALREFDATA", 1, "rolled-back",
        "has been committed");
    row("twice while it stages", "KVA_JIG_SetFactoryCalib_CALREFDATA", 2, "rolled-back",
        "has been committed");
    row("while it commits", commit, 1, "rolled-back", "has been committed");
    row("while it sets the power-off time", "KVA_SetShutdownTime", 1, "rolled-back",
        "after the present step");
    row("while it is read back", "KVA_Disconnect", 1, "verified", "state is known");
}

void TestCommand::honoursInterrupts() {
    QFETCH(const QString, during);
    QFETCH(const int, times);
    QFETCH(const QByteArray, said);
    CommandRun run;
    run.setFaults(ruleFor(during, "1", {{"delayMs", 1000}}));
    const auto process = run.start(run.applyAll(), {preload, "SHIM_BEGUN=" + run.path("begun")});
    QTRY_VERIFY_WITH_TIMEOUT(run.read("begun").contains(during.toLatin1() + '\n'), 10000);
    for (int i = 0; i < times; ++i)
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const CommandResult got = CommandRun::finish(*process);
    QTEST(got.outcome(), "outcome");
    QVERIFY2(got.standardError.contains(said), got.text());
    const bool isVerified = got.outcome() == "verified";
    QCOMPARE(differenceBetween(run.instrument(), isVerified ? CommandRun::wantedInstrument()
                                                            : CommandRun::initialInstrument()),
             QString());
    // Whatever was staged was committed.
    QStringList writing = run.writingCalls();
    const auto staged = writing.indexOf("KVA_JIG_SetFactoryCalib_CALREFDATA");
    QVERIFY(staged < 0 || writing.value(staged + 1) == commit);
    QVERIFY(!run.isMarked());
}

void TestCommand::showsAHangingCall() {
    CommandRun run;
    run.setFaults(ruleFor("KVA_GetShutdownTime", "1", {{"delayMs", 3500}}));
    const CommandResult got = run.run(run.applyAll());
    QCOMPARE(got.outcome(), QString("verified"));
    QVERIFY2(got.standardError.contains("KVA_GetShutdownTime has not answered for 3 s"),
             got.text());
}

void TestCommand::asks_data() {
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("exitStatus");
    QTest::newRow("yes") << QByteArray("y\n") << 0;
    QTest::newRow("no") << QByteArray("n\n") << 3;
    QTest::newRow("nothing") << QByteArray("\n") << 3;
    QTest::newRow("Ctrl-C") << QByteArray("\x03") << 3;
}

void TestCommand::asks() {
    QFETCH(const QByteArray, answer);
    CommandRun run;
    QStringList arguments = run.applyAll();
    arguments.removeAll("--yes");
    arguments.removeAll("--json");
    // script(1) gives it a terminal. A shell that stayed between would itself die of Ctrl-C.
    const auto list = run.start({"list"});
    CommandRun::finish(*list);
    QProcess process;
    process.setProcessEnvironment(list->processEnvironment());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("script",
                  {"-qefc", "exec " + (QStringList(VQTL4CTL) + arguments).join(' '), "/dev/null"});
    QByteArray shown;
    QTRY_VERIFY2_WITH_TIMEOUT((shown += process.readAll()).contains("[y/N]"), shown.constData(),
                              10000);
    QVERIFY(shown.contains("whitePlate.serialNumber: \"12345678\" -> \"12345679\""));
    QVERIFY(shown.contains("network.key: \"********\" -> \"********\" (another key)\r\n"));
    process.write(answer);
    QVERIFY(process.waitForFinished());
    QTEST(process.exitCode(), "exitStatus");
    QCOMPARE(run.writingCalls().isEmpty(), process.exitCode() != 0);
}

TEST_CLASS(TestCommand)
#include "tst_command.moc"
