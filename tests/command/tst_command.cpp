#include "CommandRun.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTest>

#include <csignal>
#include <functional>

namespace {

const QString commit = "KVA_JIG_SetFactoryCalib_WriteSector";
const QString fetch = "KVA_JIG_GetFactoryCalib_CALREFDATA";
const QString preload = QStringLiteral("LD_PRELOAD=%1").arg(COMMAND_SHIM);

QJsonObject result(const QString& code) {
    return {{"result", code}};
}

/** An apply of everything, under a fault. */
struct Case {
    const char* name;
    QJsonArray faults;
    QStringList environment;
    QStringList options;
    int exitStatus;
    const char* outcome;
    const char* reason; ///< what the reason has in it
    enum { Initial, Wanted, WantedButNetwork, Any } holds;
};

QJsonArray one(const QString& function, const QString& call, const QJsonObject& what) {
    return {rule(function, call, what)};
}

} // namespace

Q_DECLARE_METATYPE(Case)

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
    void refusesInput_data();
    void refusesInput();
    void refusesSnapshots_data();
    void refusesSnapshots();
    void restoresBitForBit();
    void restoresParts();
    void readsWithoutWriting();
    void tellsUsage_data();
    void tellsUsage();
};

void TestCommand::applies_data() {
    QTest::addColumn<Case>("test");
    const QJsonObject wrongBit = {{"corrupted", QJsonObject{{"offset", 1000}, {"xor", 1}}}};
    const QJsonObject dropped = {{"dropped", true}};
    const QJsonObject unplugged = {{"unplug", "during"}};
    const QString timeOut = "KVA_ERROR_COMMUNICATION_TIMEOUT";
    const QString battery = "KVA_WARNING_BATTERY_EMPTY";
    const QStringList leave = {"--on-failure", "leave"};
    const Case cases[] = {
        {"all is well", {}, {}, {}, 0, "verified", "", Case::Wanted},
        {"a dry run", {}, {}, {"--dry-run"}, 7, "would-change", "", Case::Initial},
        {"the first fetch answers battery empty and fills nothing",
         {},
         {preload, "SHIM_SILENT=1:2"},
         {},
         3,
         "refused",
         "differ",
         Case::Initial},
        {"a fetch that fills nothing, battery allowed",
         {},
         {preload, "SHIM_SILENT=1:2"},
         {"--allow-low-battery"},
         3,
         "refused",
         "unwritten",
         Case::Initial},
        {"a fetch that fills nothing and answers 0",
         {},
         {preload, "SHIM_SILENT=2:0"},
         {},
         3,
         "refused",
         "unwritten",
         Case::Initial},
        {"a byte that no reading fills",
         {},
         {preload, "SHIM_UNWRITTEN=1"},
         {},
         3,
         "refused",
         "unwritten",
         Case::Initial},
        {"battery empty",
         one("KVA_GetShutdownTime", "2", result(battery)),
         {},
         {},
         3,
         "refused",
         "battery",
         Case::Initial},
        {"battery empty at the third fetch",
         one(fetch, "3", result(battery)),
         {},
         {},
         3,
         "refused",
         "battery",
         Case::Initial},
        {"battery empty, allowed",
         one("KVA_Connect", "1", result(battery)),
         {},
         {"--allow-low-battery"},
         0,
         "verified",
         "",
         Case::Wanted},
        {"one bit of the fetched rest is wrong",
         one(fetch, "1", wrongBit),
         {},
         {},
         3,
         "refused",
         "differ",
         Case::Initial},
        {"the same bit wrong twice",
         one(fetch, "1-2", wrongBit),
         {},
         {},
         3,
         "refused",
         "not the expected",
         Case::Initial},
        {"one bit of what was staged is wrong",
         one(fetch, "4", wrongBit),
         {},
         {},
         4,
         "rolled-back",
         "not the expected",
         Case::Initial},
        {"one bit read back is wrong",
         one(fetch, "5-6", wrongBit),
         {},
         {},
         4,
         "rolled-back",
         "otherFactoryData[540..540]",
         Case::Initial},
        {"a commit answers 0 and does nothing",
         one(commit, "1", dropped),
         {},
         {},
         0,
         "verified",
         "",
         Case::Wanted},
        {"no commit does anything",
         one(commit, "every", dropped),
         {},
         {},
         5,
         "unknown",
         "nothing is staged any more",
         Case::Any},
        {"a library that never says that nothing is staged",
         {},
         {preload, "SHIM_COMMITS=1"},
         {},
         5,
         "unknown",
         "nothing is staged any more",
         Case::Any},
        {"a commit fails",
         one(commit, "1", result(timeOut)),
         {},
         {},
         4,
         "rolled-back",
         "WriteSector answered KVA_ERROR_COMMUNICATION_TIMEOUT",
         Case::Initial},
        {"a commit fails and is left",
         one(commit, "1", result(timeOut)),
         {},
         leave,
         5,
         "unknown",
         "vq-tl4ctl restore 01000001 ",
         Case::Any},
        {"every commit fails",
         one(commit, "every", result(timeOut)),
         {},
         {},
         5,
         "unknown",
         "could not be put back",
         Case::Any},
        {"the instrument goes during the commit",
         one(commit, "1", unplugged),
         {},
         {},
         5,
         "unknown",
         "vq-tl4ctl restore 01000001 ",
         Case::Any},
        {"the instrument goes before anything is written",
         one("KVA_GetShutdownTime", "1", unplugged),
         {},
         {},
         3,
         "refused",
         "",
         Case::Initial},
        {"a stage that is lost",
         one("KVA_JIG_SetFactoryCalib_CALREFDATA", "1", dropped),
         {},
         {},
         4,
         "rolled-back",
         "not the expected",
         Case::Initial},
        {"the power-off time is not taken",
         one("KVA_SetShutdownTime", "1", dropped),
         {},
         {},
         4,
         "rolled-back",
         "differs: powerOff",
         Case::Initial},
        {"the network settings are refused",
         one("KVA_SetNetworkInfo", "1", result("KVA_ERROR_NAK")),
         {},
         {},
         4,
         "rolled-back",
         "KVA_SetNetworkInfo answered KVA_ERROR_NAK",
         Case::Initial},
        {"the network settings are answered after a power cycle",
         {},
         {preload, "SHIM_OLD_NETWORK=1"},
         {},
         6,
         "waits",
         "switched off and on",
         Case::Wanted},
        {"the read-back meets another instrument",
         one("KVA_GetDeviceInfo", "4",
             {{"corrupted", QJsonObject{{"field", "serialNumber"}, {"value", 1}}}}),
         {},
         {},
         4,
         "rolled-back",
         "another serial number",
         Case::Initial},
        {"the list names it, and it is another one",
         one("KVA_GetDeviceInfo", "1",
             {{"corrupted", QJsonObject{{"field", "serialNumber"}, {"value", 1}}}}),
         {},
         {},
         3,
         "refused",
         "another serial number",
         Case::Initial},
        {"both readings say another serial number",
         one("KVA_GetDeviceInfo", "2-3",
             {{"corrupted", QJsonObject{{"field", "serialNumber"}, {"value", 1}}}}),
         {},
         {},
         3,
         "refused",
         "another serial number",
         Case::Initial},
        {"it is not listed",
         one("KVA_GetDevicePortList", "2", {{"shortList", 0}}),
         {},
         {},
         3,
         "refused",
         "not attached",
         Case::Initial},
        {"the handler is not taken",
         one("KVA_RegisterDeviceEventHandler", "1", result("KVA_ERROR")),
         {},
         {},
         3,
         "refused",
         "KVA_RegisterDeviceEventHandler answered KVA_ERROR.",
         Case::Initial},
    };
    for (const Case& test : cases)
        QTest::newRow(test.name) << test;
}

void TestCommand::applies() {
    QFETCH(const Case, test);
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

    if (test.holds == Case::Initial)
        QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()), QString());
    if (test.holds == Case::Wanted)
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
    run.setFaults(one("KVA_Connect", "1", {{"delayMs", 2000}}));
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
    run.setFaults(one(commit, "every", {{"dropped", true}}));
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("unknown"));
    run.setFaults({});
    run.clearTrace();
    const CommandResult refused = run.run(run.applyAll());
    const QString snapshot = run.snapshots().value(0);
    QVERIFY2(refused.outcome() == "refused" && refused.object()["reason"].toString().contains(
                                                   "vq-tl4ctl restore 01000001 " + snapshot),
             refused.text());
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
    run.setFaults(one(commit, "1", result("KVA_ERROR_NAK")));
    QCOMPARE(run.run(plate).outcome(), QString("rolled-back"));
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
    run.setFaults(one(commit, "1", result("KVA_ERROR_NAK")));
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
    run.setFaults(one(during, "1", {{"delayMs", 1000}}));
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
    const int staged = writing.indexOf("KVA_JIG_SetFactoryCalib_CALREFDATA");
    QVERIFY(staged < 0 || writing.value(staged + 1) == commit);
    QVERIFY(!run.isMarked());
}

void TestCommand::showsAHangingCall() {
    CommandRun run;
    run.setFaults(one("KVA_GetShutdownTime", "1", {{"delayMs", 3500}}));
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
    process.write(answer);
    QVERIFY(process.waitForFinished());
    QTEST(process.exitCode(), "exitStatus");
    QCOMPARE(run.writingCalls().isEmpty(), process.exitCode() != 0);
}

void TestCommand::refusesInput_data() {
    QTest::addColumn<QByteArray>("content");
    CommandRun run;
    const QByteArray good = run.read("plate.csv");
    const auto with = [&](const QByteArray& from, const QByteArray& to) {
        return QByteArray(good).replace(from, to);
    };
    QTest::newRow("a serial number and no fourth line") << good.left(good.indexOf("85.6000"));
    QTest::newRow("a serial number ABCDEFGH") << with("12345679", "ABCDEFGH");
    QTest::newRow("quoted cells") << with("85.6000", "\"85.6000\"");
    QTest::newRow("nan") << with("85.6000", "nan");
    QTest::newRow("inf") << with("85.6000", "inf");
    QTest::newRow("0x10") << with("85.6000", "0x10");
    QTest::newRow("cut inside its last number") << good.left(good.size() - 3);
}

void TestCommand::refusesInput() {
    QFETCH(const QByteArray, content);
    CommandRun run;
    const QString file = run.write("bad.csv", content);
    const QString settings = run.write("bad.ini", "[Network]\nIPAddress=1.2.3.400\n");
    const CommandResult got = run.run(
        {"apply", "1000001", "--white-plate", file, "--network", settings, "--yes", "--json"});
    QCOMPARE(got.exitStatus, 2);
    QCOMPARE(got.standardOutput, QByteArray());
    // All faults at once, each with its place.
    QVERIFY2(got.standardError.contains("bad.csv:") && got.standardError.contains("bad.ini:"),
             got.text());
    QCOMPARE(run.calls(), QStringList());
    QCOMPARE(run.run({"check", file}).exitStatus, 2);
}

void TestCommand::refusesSnapshots_data() {
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<bool>("hashFits");
    QTest::addColumn<QByteArray>("reason");
    QTest::newRow("damaged") << QByteArray("}") << QByteArray("") << false
                             << QByteArray("not JSON");
    QTest::newRow("edited") << QByteArray("\"powerOff\": \"15\"")
                            << QByteArray("\"powerOff\": \"30\"") << false << QByteArray("SHA-256");
    QTest::newRow("edited, with a hash that fits")
        << QByteArray("\"powerOff\": \"15\"") << QByteArray("\"powerOff\": \"30\"") << true
        << QByteArray("do not say the same");
    QTest::newRow("newer") << QByteArray("\"version\": 1") << QByteArray("\"version\": 2") << true
                           << QByteArray("newer");
    QTest::newRow("something else") << QByteArray("vq-tl4ctl snapshot") << QByteArray("recipe")
                                    << true << QByteArray("not a snapshot");
    QTest::newRow("of another instrument")
        << QByteArray() << QByteArray() << true << QByteArray("01000001, not of 01000002");
}

void TestCommand::refusesSnapshots() {
    QFETCH(const QByteArray, from);
    QFETCH(const QByteArray, to);
    QFETCH(const bool, hashFits);
    QFETCH(const QByteArray, reason);
    CommandRun run;
    QCOMPARE(run.run({"backup", "--all", "--to", run.path("out")}).exitStatus, 0);
    run.clearTrace();
    const QString name = run.path("edited.json");
    QByteArray content = run.read("out/" + QDir(run.path("out")).entryList(QDir::Files).value(0));
    QVERIFY(content.contains(from));
    if (!from.isEmpty())
        content.replace(content.indexOf(from), from.size(), to);
    if (hashFits) {
        QJsonObject object = QJsonDocument::fromJson(content).object();
        object.remove("sha256");
        const QByteArray canonical = QJsonDocument(object).toJson(QJsonDocument::Compact);
        object["sha256"] =
            QString(QCryptographicHash::hash(canonical, QCryptographicHash::Sha256).toHex());
        content = QJsonDocument(object).toJson();
    }
    run.write("edited.json", content);
    const QString serial = from.isEmpty() ? "1000002" : "1000001";
    const CommandResult got = run.run({"restore", serial, name, "--yes", "--json"});
    QVERIFY2(got.exitStatus == 2 && got.standardError.contains(reason), got.text());
    QCOMPARE(got.standardOutput, QByteArray());
    QCOMPARE(run.calls(), QStringList());
}

void TestCommand::restoresBitForBit() {
    CommandRun run;
    // Values that no decimal carries, and a text that is none.
    QJsonObject instrument = CommandRun::initialInstrument();
    QJsonObject calibration = instrument["calibration"].toObject();
    QJsonObject record = calibration["committed"].toObject();
    QJsonObject white = record["white"].toObject();
    QJsonArray values = white["values"].toArray();
    values[0] = "0x7fc00001";
    values[1] = "0xff800000";
    values[2] = "0x80000000";
    values[3] = "0x00000001";
    values[4] = 0.1;
    white["values"] = values;
    record["white"] = white;
    calibration["committed"] = record;
    instrument["calibration"] = calibration;
    run.setBench(instrument);
    QCOMPARE(run.run({"show", "1000001", "--json"}).exitStatus, 0);
    QCOMPARE(run.run({"backup", "01000001", "--to", run.path("out")}).exitStatus, 0);
    const QString name = "out/" + QDir(run.path("out")).entryList(QDir::Files).value(0);
    QCOMPARE(run.run({"check", run.path(name)}).exitStatus, 0);
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    QCOMPARE(run.run({"diff", "1000001", run.path(name)}).exitStatus, 7);
    QCOMPARE(run.run({"restore", "1000001", run.path(name), "--yes", "--json"}).outcome(),
             QString("verified"));
    QCOMPARE(differenceBetween(run.instrument(), instrument), QString());
    QCOMPARE(run.run({"diff", "1000001", run.path(name)}).exitStatus, 0);
    QCOMPARE(QFileInfo(run.path(name)).permissions() & 0x777, QFile::Permissions(0x600));
    QVERIFY(run.read(name).contains(CommandRun::keys[0]));
}

void TestCommand::restoresParts() {
    CommandRun run;
    QCOMPARE(run.run({"backup", "--all", "--without-key", "--to", run.path("out")}).exitStatus, 0);
    const QString name = "out/" + QDir(run.path("out")).entryList(QDir::Files).value(0);
    QVERIFY(!run.read(name).contains(CommandRun::keys[0]));
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    const QStringList restore = {"restore", "1000001", run.path(name), "--yes", "--json"};
    QCOMPARE(run.run(restore).exitStatus, 2); // no key
    QCOMPARE(run.run(restore + QStringList{"--only", "power-off,ambient-adapter"}).outcome(),
             QString("verified"));
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()),
             QString("network calibration"));
    QCOMPARE(run.run(restore + QStringList{"--only", "white-plate"}).outcome(),
             QString("verified"));
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()),
             QString("network"));
}

void TestCommand::readsWithoutWriting() {
    CommandRun run;
    QJsonObject instrument = CommandRun::initialInstrument();
    instrument["wirelessModule"] = false;
    run.setBench(instrument);
    CommandResult got = run.run({"list"});
    QVERIFY2(got.exitStatus == 0 && got.standardOutput.contains("01000001  USB"), got.text());
    QCOMPARE(run.run({"list", "--json"}).object()["serialNumber"].toString(), QString("01000001"));
    got = run.run({"show", "1000001"});
    QVERIFY2(got.standardOutput.contains("12345678") && got.standardOutput.contains("none"),
             got.text());
    got = run.run(run.applyAll());
    QVERIFY2(got.outcome() == "refused" && got.standardError.contains("no wireless module"),
             got.text());
    QCOMPARE(run.run({"show", "1000001"}).exitStatus, 0);
    QCOMPARE(run.run({"show", "77"}).exitStatus, 3);
    QCOMPARE(run.writingCalls(), QStringList());

    run.setBench(CommandRun::initialInstrument());
    for (const char* const option : {"", "--json"}) {
        const QStringList options = QString(option).split(' ', Qt::SkipEmptyParts);
        const QStringList show = QStringList{"show", "1000001"} + options;
        QVERIFY(!run.run(show).standardOutput.contains(CommandRun::keys[0]));
        QVERIFY(run.run(show + QStringList{"--reveal-key"})
                    .standardOutput.contains(CommandRun::keys[0]));
    }
    got = run.run({"diff", "1000001", run.path("wanted.ini"), "--json"});
    QCOMPARE(got.exitStatus, 7);
    QCOMPARE(got.object()["changes"].toArray().size(), 3); // address, SSID, key
    QVERIFY2(!got.text().contains("-key"), got.text());
}

void TestCommand::tellsUsage_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QByteArray>("said");
    const auto row = [](const char* name, const QStringList& arguments, int status,
                        const char* said) {
        QTest::newRow(name) << arguments << status << QByteArray(said);
    };
    row("no verb", {}, 2, "subcommand");
    row("help", {"--help"}, 0, "apply");
    row("help of a verb", {"apply", "--help"}, 0, "--accept-implausible");
    row("the version", {"--version"}, 0, ".");
    row("nothing to apply", {"apply", "1000001", "--yes"}, 2, "--power-off");
    row("a power-off time that is none", {"apply", "1", "--power-off", "45", "--yes"}, 2, "45");
    row("a serial number that is none", {"apply", "1x", "--power-off", "15", "--yes"}, 2, "1x");
    row("nobody to ask", {"apply", "1000001", "--power-off", "30"}, 2, "--yes");
    row("a part that is none", {"restore", "1", "x", "--only", "plates"}, 2, "plates");
    row("a snapshot that is not there", {"restore", "1", "/nowhere", "--yes"}, 2, "/nowhere");
    row("backup of nothing", {"backup", "--to", "/tmp"}, 2, "--all");
}

void TestCommand::tellsUsage() {
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, said);
    CommandRun run;
    const CommandResult got = run.run(arguments);
    QTEST(got.exitStatus, "exitStatus");
    QVERIFY2((got.exitStatus == 0 ? got.standardOutput : got.standardError).contains(said),
             got.text());
    QCOMPARE(got.exitStatus == 0 ? got.standardError : got.standardOutput, QByteArray());
    QCOMPARE(run.calls(), QStringList());
}

QTEST_GUILESS_MAIN(TestCommand)
#include "tst_command.moc"
