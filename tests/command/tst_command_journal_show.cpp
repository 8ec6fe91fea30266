// What `journal` shows: the list, a run, a snapshot.
#include "CommandRun.h"
#include "tests/support/TestMain.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

const QString serial = "1000001";
const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);

} // namespace

class TestCommandJournalShow : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_done.run(m_done.applyAll()).exitStatus == 0); }
    void lists_data();
    void lists();
    void showsARun();
    void showsWhatWentWrong();
    void showsARunThatDidNotEnd();
    void givesTheSnapshotBack();
    void givesNoDamagedSnapshot();

private:
    const CommandRun m_done; ///< after an `apply` of all four things
};

void TestCommandJournalShow::lists_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<int>("lines");
    const auto now = QDateTime::currentDateTime();
    QTest::newRow("all") << QStringList() << 0 << 1;
    QTest::newRow("its instrument") << QStringList{"--serial", "01000001"} << 0 << 1;
    QTest::newRow("another") << QStringList{"--serial", "7"} << 0 << 0;
    QTest::newRow("since a day") << QStringList{"--since",
                                                now.addDays(-1).date().toString(Qt::ISODate)}
                                 << 0 << 1;
    QTest::newRow("since a time to come")
        << QStringList{"--since", now.addDays(1).toString(Qt::ISODate)} << 0 << 0;
    QTest::newRow("since nonsense") << QStringList{"--since", "yesterday"} << 2 << 0;
    QTest::newRow("no number") << QStringList{"--serial", "x"} << 2 << 0;
}

void TestCommandJournalShow::lists() {
    QFETCH(QStringList, options);
    QFETCH(int, exitStatus);
    QFETCH(int, lines);
    for (const bool asJson : {false, true}) {
        QStringList arguments = QStringList{"journal"} + options;
        if (asJson)
            arguments += "--json";
        const CommandResult got = m_done.run(arguments);
        QVERIFY2(got.exitStatus == exitStatus, got.text());
        QVERIFY2(got.standardOutput.count('\n') == lines, got.text());
    }
}

void TestCommandJournalShow::showsARun() {
    const QJsonObject shown = m_done.run({"journal", "show", "1", "--json"}).object();
    const QJsonObject part = shown["instruments"].toArray()[0].toObject();
    QCOMPARE(part["outcome"].toString(), QString("verified"));
    QCOMPARE(part["calls"].toArray().size(), m_done.calls().size());
    QVERIFY(part["changes"].toArray().size() > 100);
    QCOMPARE(shown["inputs"].toArray().size(), 3);
    const CommandResult text = m_done.run({"journal", "show", "1"});
    QVERIFY2(text.standardOutput.contains("01000001: verified"), text.text());
    for (const char* key : CommandRun::keys)
        QVERIFY(!text.text().contains(key));
    for (const QStringList& verb : {QStringList{"journal"}, QStringList{"journal", "show", "1"}}) {
        const CommandResult told = m_done.run(verb, {"TZ=JST-9"});
        QVERIFY2(told.standardOutput.contains("+09:00  "), told.text());
    }
    const CommandResult missing = m_done.run({"journal", "show", "2"});
    QCOMPARE(missing.exitStatus, 3);
    QVERIFY2(missing.standardError.contains("has no run 2"), missing.text());
}

void TestCommandJournalShow::givesTheSnapshotBack() {
    CommandRun run;
    QVERIFY(run.run(run.applyAll()).exitStatus == 0);
    QVERIFY(QFile::remove(run.snapshots().value(0)));
    const QString file = run.path("again.json");
    const QStringList arguments = {"journal", "snapshot", "1", serial, "--to", file};
    QCOMPARE(run.run(arguments).exitStatus, 0);
    QCOMPARE(QFileInfo(file).permissions() & 0x777, QFile::Permissions(0x600));
    const CommandResult again = run.run(arguments);
    QCOMPARE(again.exitStatus, 3);
    QVERIFY2(again.standardError.contains("is there already"), again.text());
    QCOMPARE(run.run({"journal", "snapshot", "1", "2", "--to", file + "2"}).exitStatus, 3);
    const CommandResult none = run.run({"journal", "snapshot", "2", serial, "--to", file + "2"});
    QVERIFY2(none.exitStatus == 3 && none.standardError.contains("has no run 2"), none.text());
    QCOMPARE(run.run({"restore", serial, file, "--yes", "--json"}).outcome(), QString("verified"));
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()), QString());
}

void TestCommandJournalShow::givesNoDamagedSnapshot() {
    const CommandRun run;
    QVERIFY(QDir().mkpath(run.dataFolder()));
    QVERIFY(QFile::copy(m_done.journal(), run.journal()));
    editSnapshots(run.journal());
    const QString file = run.path("again.json");
    const CommandResult got = run.run({"journal", "snapshot", "1", serial, "--to", file});
    QVERIFY2(got.exitStatus == 3, got.text());
    QVERIFY2(got.standardError.contains("The snapshot is damaged or was edited"), got.text());
    QVERIFY(!QFileInfo::exists(file));
}

/** Reasons, warnings, and what `verify` found. */
void TestCommandJournalShow::showsWhatWentWrong() {
    const CommandRun run;
    run.setFaults(
        {rule("KVA_Connect", "1", {{"result", "KVA_WARNING_BATTERY_EMPTY"}}),
         rule("KVA_JIG_SetFactoryCalib_WriteSector", "1", {{"result", "KVA_ERROR_NAK"}})});
    QCOMPARE(run.run(run.applyAll() << "--allow-low-battery").outcome(), QString("rolled-back"));
    QCOMPARE(run.run({"verify"}).exitStatus, 0);
    const QString reason = "KVA_JIG_SetFactoryCalib_WriteSector answered KVA_ERROR_NAK.";
    const QJsonObject shown = run.run({"journal", "show", "1", "--json"}).object();
    const QJsonObject part = shown["instruments"].toArray()[0].toObject();
    QCOMPARE(part["outcome"].toString(), QString("rolled-back"));
    QCOMPARE(part["reason"].toString(), reason);
    QCOMPARE(part["warnings"].toArray(), QJsonArray{"KVA_WARNING_BATTERY_EMPTY"});
    QCOMPARE(part["snapshot"].toString(), run.snapshots().value(0));
    const QJsonObject verified = part["verifications"].toArray()[0].toObject();
    QCOMPARE(verified["outcome"].toString(), QString("held"));
    QCOMPARE(verified["at"].toString(), run.ask("SELECT at FROM verification")[0][0].toString());
    QCOMPARE(shown["exitStatus"].toInt(), 4);
    QStringList steps;
    for (const QVariantList& step :
         run.ask("SELECT name FROM step WHERE instrument = 1 ORDER BY id"))
        steps.append(step[0].toString());
    QCOMPARE(steps.join(' '),
             QString("refuse-unfinished connect read-everything-twice refuse-unfit "
                     "judge-plausibility find-difference ask keep-snapshot fetch-once-more "
                     "mark-unfinished write-calibration reconnect put-back-calibration "
                     "put-back-power-off put-back-network verify-put-back end"));
    const QByteArray text = run.run({"journal", "show", "1"}).standardOutput;
    QVERIFY2(text.contains("01000001: rolled-back\n  " + reason.toUtf8() + '\n'), text);
    QVERIFY2(text.contains("  The state before is in " + run.snapshots().value(0).toUtf8()), text);
    QVERIFY2(text.contains("  looked at again: held\n"), text);
    QVERIFY2(text.contains("  KVA_JIG_SetFactoryCalib_WriteSector: KVA_ERROR_NAK\n"), text);
    QVERIFY2(text.contains("\nExit status:   4\n"), text);
}

void TestCommandJournalShow::showsARunThatDidNotEnd() {
    const CommandRun run;
    QCOMPARE(run.run(run.applyAll(), {preload, "SHIM_KILL=before:5"}).exitStatus, -1);
    const QJsonObject shown = run.run({"journal", "show", "1", "--json"}).object();
    const QJsonObject part = shown["instruments"].toArray()[0].toObject();
    const QJsonArray calls = part["calls"].toArray();
    QVERIFY(calls.size() == 5);
    QVERIFY(calls[3].toObject()["result"].isString());
    QVERIFY(calls[3].toObject()["microseconds"].isDouble());
    for (const QJsonValue& missing :
         QList<QJsonValue>{calls[4].toObject()["result"], calls[4].toObject()["microseconds"],
                           shown["ended"], shown["exitStatus"], part["ended"], part["snapshot"]})
        QCOMPARE(missing, QJsonValue(QJsonValue::Null));
    QCOMPARE(part["outcome"].toString(), QString("unfinished"));
    QCOMPARE(part["reason"], QJsonValue(QString()));
    const QByteArray text = run.run({"journal", "show", "1"}).standardOutput;
    QVERIFY2(text.contains("\nEnded:         -\nExit status:   -\n"), text);
    QVERIFY2(text.contains("\n01000001: unfinished\n"), text);
    QVERIFY2(text.endsWith(": (no answer)\n"), text);
}

TEST_CLASS(TestCommandJournalShow)
#include "tst_command_journal_show.moc"
