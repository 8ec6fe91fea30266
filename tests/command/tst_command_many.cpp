// Runs over several instruments, by a plan or with the same for all: what becomes of each, what is
// shown and asked, and what stops the run.
#include "ThreeInstruments.h"
#include "tests/support/TestMain.h"

#include <csignal>

using namespace ThreeInstruments;

namespace {

/** The program in a terminal of its own, by script(1). */
std::unique_ptr<QProcess> startInTerminal(const CommandRun& run, const QStringList& arguments,
                                          const QStringList& environment = {}) {
    const auto list = run.start({"list"}, QStringList{"TERM=xterm"} + environment);
    CommandRun::finish(*list);
    run.clearTrace();
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(list->processEnvironment());
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start("script",
                   {"-qefc", "exec " + (QStringList(VQTL4CTL) + arguments).join(' '), "/dev/null"});
    return process;
}

const QByteArray threeRows = "serial,ip,power_off,white_plate\n1000001,192.168.7.20,,\n"
                             "1000002,,60,plate.csv\n1000003,192.168.7.22,off,\n";
const QString before = "10 1 12345678, 11 1 12345678, 12 1 12345678";
const QString afterwards = "20 1 12345678, 11 3 12345679, 22 0 12345678";

} // namespace

class TestCommandMany : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void appliesSome_data();
    void appliesSome();
    void appliesAPlan_data();
    void appliesAPlan();
    void refusesTheSameForSeveral_data();
    void refusesTheSameForSeveral();
    void saysWhatIsImplausible();
    void givesTheSameToSeveral();
    void goesOnAfterAnInterrupt();
    void asksOnceForAll_data();
    void asksOnceForAll();
    void showsProgress_data();
    void showsProgress();
    void tellsUsage_data();
    void tellsUsage();
};

void TestCommandMany::appliesSome_data() {
    QTest::addColumn<QByteArray>("cells"); // ip, mask, gateway, dhcp, ssid, key
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("fields");
    const auto row = [](const char* name, const char* cells, const char* outcome,
                        const char* fields) {
        QTest::newRow(name) << QByteArray(cells) << QString(outcome) << QString(fields);
    };
    row("an address", "192.168.7.77,,,,,", "verified", "network.ipAddress");
    row("an SSID with blanks", ",,,,\" my room \",", "verified", "network.ssid");
    row("a key", ",,,,,k", "verified", "network.key");
    row("nothing", ",,,,,", "unchanged", "");
    row("what is held", "192.168.7.10,255.255.255.0,,off,first-room,", "unchanged", "");
    row("an address outside the held mask", "192.168.8.77,,,,,", "refused", "");
    row("an address outside, with DHCP", "192.168.8.77,,,on,,", "verified",
        "network.dhcp network.ipAddress");
    row("the held gateway's address", "192.168.7.1,,,,,", "refused", "");
    row("a gateway outside the held network", ",,192.168.8.1,,,", "refused", "");
    row("a gateway that is the held address", ",,192.168.7.10,,,", "refused", "");
    row("a mask that makes the held address the broadcast", ",255.255.255.254,,,,", "refused", "");
    row("all of another network", "10.0.0.7,255.0.0.0,10.0.0.1,,,", "verified",
        "network.ipAddress network.subnetMask network.defaultGateway");
}

void TestCommandMany::appliesSome() {
    QFETCH(QByteArray, cells);
    CommandRun run;
    const QString plan =
        run.write("plan.csv", "serial,ip,mask,gateway,dhcp,ssid,key\n1000001," + cells + '\n');
    const CommandResult result = run.run({"apply", "--plan", plan, "--yes", "--json"});
    QTEST(result.outcome(), "outcome");
    QStringList fields;
    for (const QJsonValue change : result.object()["changes"].toArray())
        fields.append(change.toObject()["field"].toString());
    QTEST(fields.join(' '), "fields");
    QCOMPARE(run.writingCalls(),
             fields.isEmpty() ? QStringList() : QStringList{"KVA_SetNetworkInfo"});
    QVERIFY2(!result.text().contains(CommandRun::keys[0]), result.text());
    // The fields that no cell names.
    const QJsonObject network = run.instrument()["network"].toObject();
    const QJsonObject held =
        (network["pending"].isObject() ? network["pending"] : network["active"]).toObject();
    QCOMPARE(held["DNS"].toString(), QString("192.168.7.2"));
    if (!fields.contains("network.key"))
        QCOMPARE(held["EncryptKey"].toString(), QString(CommandRun::keys[0]));
    if (fields.contains("network.ssid"))
        QCOMPARE(held["SSID"].toString(), QString(" my room "));
}

void TestCommandMany::appliesAPlan_data() {
    QTest::addColumn<QJsonArray>("faults");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("holds");
    const auto row = [](const char* name, const QJsonArray& faults, const QStringList& options,
                        int exitStatus, const char* outcome, const QString& holds) {
        QTest::newRow(name) << faults << options << exitStatus << QString(outcome) << holds;
    };
    const QJsonObject timeOut = {{"result", "KVA_ERROR_COMMUNICATION_TIMEOUT"}};
    const QJsonArray unreadable = {faultOf(1, "KVA_GetShutdownTime", "1", timeOut)};
    const QJsonArray uncommitted = {
        faultOf(1, "KVA_JIG_SetFactoryCalib_WriteSector", "1", timeOut)};
    const QJsonArray unverified = {
        faultOf(1, "KVA_JIG_SetFactoryCalib_WriteSector", "every", timeOut)};
    const QJsonArray late = {faultOf(0, "KVA_GetNetworkInfo", "3-4", {{"stale", true}})};
    row("all is well", {}, {}, 0, "verified verified verified", afterwards);
    row("a dry run", {}, {"--dry-run"}, 7, "would-change would-change would-change", before);
    row("some", {}, {"--only", "01000003,1000001"}, 0, "verified verified",
        "20 1 12345678, 11 1 12345678, 22 0 12345678");
    row("one is refused", unreadable, {}, 3, "verified refused not-reached",
        "20 1 12345678, 11 1 12345678, 12 1 12345678");
    row("one is refused, and it keeps going", unreadable, {"--keep-going"}, 3,
        "verified refused verified", "20 1 12345678, 11 1 12345678, 22 0 12345678");
    row("one is refused in a dry run", unreadable, {"--dry-run"}, 3,
        "would-change refused would-change", before);
    row("one is rolled back", uncommitted, {}, 4, "verified rolled-back not-reached",
        "20 1 12345678, 11 1 12345678, 12 1 12345678");
    row("one is rolled back, and it keeps going", uncommitted, {"--keep-going"}, 4,
        "verified rolled-back verified", "20 1 12345678, 11 1 12345678, 22 0 12345678");
    row("one is unknown, and it keeps going", unverified, {"--keep-going"}, 5,
        "verified unknown verified", "20 1 12345678, 11 1 12345678, 22 0 12345678");
    row("one waits for its power cycle", late, {}, 6, "waits verified verified", afterwards);
}

void TestCommandMany::appliesAPlan() {
    QFETCH(QJsonArray, faults);
    QFETCH(QStringList, options);
    CommandRun run;
    setBench(run, faults);
    const QStringList arguments = {"apply", "--plan", run.write("plan.csv", threeRows), "--json"};
    const CommandResult result = run.run(
        arguments + options + QStringList(options.contains("--dry-run") ? "--dry-run" : "--yes"));
    QTEST(outcomes(result), "outcome");
    QTEST(result.exitStatus, "exitStatus");
    QTEST(heldByAll(run), "holds");
    QVERIFY2(!result.standardError.contains('\033'), result.text());
    QFETCH(QString, outcome);
    for (const QString& word : outcome.split(' ')) // in the table, with their sum
        QVERIFY2(result.standardError.contains(
                     QString("%1 %2").arg(word).arg(outcome.split(' ').count(word)).toUtf8()),
                 result.text());
    if (options.contains("--dry-run"))
        return;
    QCOMPARE(run.ask("SELECT count(*) FROM run")[0][0].toInt(), 1);
    const auto kept = run.ask("SELECT word FROM outcome ORDER BY instrument");
    QStringList words;
    for (const QVariantList& each : kept)
        words.append(each[0].toString());
    QCOMPARE(words.join(' '), outcome.remove(" not-reached"));
    QStringList roles;
    for (const QVariantList& input : run.ask("SELECT role FROM input_file ORDER BY id"))
        roles.append(input[0].toString());
    // The values of an instrument that was not to be changed are no input.
    const bool hasPlate = !options.contains("--only");
    QCOMPARE(roles.join(", "), QString("plan") + (hasPlate ? ", white-plate 01000002" : ""));
    // Once more: what was done is done, and what was not is done now.
    if (outcome.contains("unknown")) {
        const CommandResult marked = run.run(arguments + QStringList("--yes"));
        QCOMPARE(outcomes(marked), QString("unchanged refused not-reached"));
        QVERIFY2(marked.standardOutput.contains("run vq-tl4ctl recover. "), marked.text());
        QVERIFY2(marked.standardOutput.contains("vq-tl4ctl restore 01000002"), marked.text());
        return;
    }
    QJsonObject healed = QJsonDocument::fromJson(run.read("bench.json")).object();
    healed["faults"] = QJsonArray();
    run.write("bench.json", QJsonDocument(healed).toJson());
    const CommandResult again = run.run(arguments + QStringList("--yes"));
    QCOMPARE(again.exitStatus, 0);
    QCOMPARE(heldByAll(run), afterwards);
    QVERIFY(outcomes(again).startsWith("unchanged"));
}

void TestCommandMany::refusesTheSameForSeveral_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QByteArray>("said");
    const auto row = [](const char* name, const QStringList& arguments, const char* said) {
        QTest::newRow(name) << arguments << 2 << QByteArray(said);
    };
    row("a fixed address", {"--all", "--network", "wanted.ini"}, "have a fixed address");
    row("a plate", {"1000001", "1000002", "--white-plate", "plate.csv"},
        "belongs to one instrument");
    row("named twice", {"1000001", "01000001", "--power-off", "60"}, "01000001 is named twice");
    row("not in the plan", {"--plan", "plan.csv", "--only", "1000009"},
        "--only: Instrument 01000009 is not in the plan");
    row("not attached", {"1000001", "1000009", "--power-off", "60"}, "01000009 is not attached");
}

void TestCommandMany::refusesTheSameForSeveral() {
    QFETCH(QStringList, arguments);
    CommandRun run;
    setBench(run);
    run.write("plan.csv", threeRows);
    for (QString& argument : arguments)
        argument = argument.contains('.') ? run.path(argument) : argument;
    const CommandResult result = run.run(QStringList("apply") + arguments + QStringList("--yes"));
    QTEST(result.exitStatus, "exitStatus");
    QFETCH(QByteArray, said);
    QVERIFY2(result.standardError.contains(said), result.text());
    QVERIFY(!run.calls().contains("KVA_Connect"));
}

void TestCommandMany::saysWhatIsImplausible() {
    CommandRun run;
    setBench(run);
    run.write("plate.csv", run.read("plate.csv").replace("85.8000", "8.5800"));
    run.write("plan.csv", "serial,white_plate\n1000001,plate.csv\n");
    const CommandResult result =
        run.run({"apply", "--plan", run.path("plan.csv"), "--yes", "--json"});
    QCOMPARE(outcomes(result), QString("refused"));
    QVERIFY2(result.standardError.count("White plate, value 2 of 38, values[1]: 8.58") == 1,
             result.text());
    QCOMPARE(run.writingCalls(), QStringList());
}

void TestCommandMany::givesTheSameToSeveral() {
    CommandRun run;
    setBench(run);
    const QString settings =
        run.write("dhcp.ini", run.read("wanted.ini").replace("DHCPUse=0", "DHCPUse=1"));
    CommandResult result =
        run.run({"apply", "1000003", "1000001", "--power-off", "60", "--yes", "--json"});
    QCOMPARE(outcomes(result), QString("verified verified"));
    result =
        run.run({"apply", "--all", "--network", settings, "--power-off", "60", "--yes", "--json"});
    QCOMPARE(outcomes(result), QString("verified verified verified"));
    QCOMPARE(heldByAll(run), QString("20 3 12345678, 20 3 12345678, 20 3 12345678"));
}

void TestCommandMany::goesOnAfterAnInterrupt() {
    CommandRun run;
    setBench(run, {faultOf(1, "KVA_JIG_SetFactoryCalib_WriteSector", "1", {{"delayMs", 1500}})});
    const QStringList arguments = {"apply", "--plan", run.write("plan.csv", threeRows), "--yes",
                                   "--json"};
    const auto process = run.start(arguments);
    QTRY_VERIFY_WITH_TIMEOUT(run.read("trace").contains("KVA_JIG_SetFactoryCalib_CALREFDATA"),
                             10000);
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const CommandResult result = CommandRun::finish(*process);
    QCOMPARE(outcomes(result), QString("verified rolled-back not-reached"));
    QCOMPARE(result.exitStatus, 4);
    QCOMPARE(heldByAll(run), QString("20 1 12345678, 11 1 12345678, 12 1 12345678"));
    QCOMPARE(outcomes(run.run(arguments)), QString("unchanged verified verified"));
    QCOMPARE(heldByAll(run), afterwards);
}

void TestCommandMany::asksOnceForAll_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("answer"); // empty: nobody is to be asked
    QTest::addColumn<QJsonArray>("faults");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QString>("holds");
    const auto row = [](const char* name, const QByteArray& answer, const QJsonArray& faults,
                        int exitStatus, const QString& holds, const QStringList& options = {}) {
        QTest::newRow(name) << options << answer << faults << exitStatus << holds;
    };
    const QJsonObject timeOut = {{"result", "KVA_ERROR_COMMUNICATION_TIMEOUT"}};
    const QJsonArray unreadable = {faultOf(1, "KVA_GetShutdownTime", "1", timeOut)};
    row("yes", "y\n", {}, 0, afterwards);
    row("no", "n\n", {}, 3, before);
    row("Ctrl-C", "\x03", {}, 3, before);
    row("one cannot be read", "", unreadable, 3, before);
    row("one cannot be read, and it keeps going", "y\n", unreadable, 3,
        "20 1 12345678, 11 1 12345678, 22 0 12345678", {"--keep-going"});
    // The third reading: the first two were shown.
    row("one is otherwise when it is written", "y\n",
        {faultOf(1, "KVA_GetShutdownTime", "3-4",
                 {{"corrupted", QJsonObject{{"offset", 0}, {"value", 2}}}})},
        3, "20 1 12345678, 11 1 12345678, 12 1 12345678");
}

void TestCommandMany::asksOnceForAll() {
    QFETCH(QStringList, options);
    QFETCH(QByteArray, answer);
    QFETCH(QJsonArray, faults);
    CommandRun run;
    setBench(run, faults);
    const QStringList arguments = QStringList{"apply", "--plan", run.write("plan.csv", threeRows)};
    const auto terminal = startInTerminal(run, arguments + options);
    QProcess& process = *terminal;
    QByteArray shown;
    if (!answer.isEmpty()) {
        QTRY_VERIFY2_WITH_TIMEOUT((shown += process.readAll()).contains("[y/N]"), shown.constData(),
                                  10000);
        // All of it is shown, and nothing written.
        QVERIFY(shown.contains("network.ipAddress: \"192.168.7.12\" -> \"192.168.7.22\""));
        QVERIFY(run.writingCalls().isEmpty());
        process.write(answer);
    }
    QVERIFY(process.waitForFinished());
    shown += process.readAll();
    QTEST(process.exitCode(), "exitStatus");
    QTEST(heldByAll(run), "holds");
    QCOMPARE(shown.count("[y/N]"), answer.isEmpty() ? 0 : 1);
    QCOMPARE(shown.count("Instrument 01000001, 1 change:"), 1);
    QCOMPARE(shown.count("network.ipAddress: \"192.168.7.12\" -> \"192.168.7.22\""), 1);
    QVERIFY2(shown.contains("[#############-------]  3/3  01000003  reading"), shown);
    // Nothing of it is left at the end.
    QVERIFY2(!shown.mid(shown.lastIndexOf("\r\033[K")).contains("]  "), shown);
}

void TestCommandMany::showsProgress_data() {
    QTest::addColumn<QString>("variable");
    QTest::addColumn<bool>("hasBar");
    QTest::addColumn<bool>("hasColour");
    QTest::newRow("a terminal") << "TERM=xterm" << true << true;
    QTest::newRow("without colours") << "NO_COLOR=1" << true << false;
    QTest::newRow("a dumb terminal") << "TERM=dumb" << false << false;
    QTest::newRow("a terminal of no kind") << "TERM=" << false << false;
}

void TestCommandMany::showsProgress() {
    QFETCH(QString, variable);
    CommandRun run;
    setBench(run);
    const QStringList arguments = {"apply", "--plan", run.write("plan.csv", threeRows), "--yes"};
    const auto process = startInTerminal(run, arguments, {variable});
    const CommandResult result = CommandRun::finish(*process);
    QCOMPARE(result.exitStatus, 0);
    const QByteArray shown = result.standardOutput;
    QTEST(shown.contains("\r\033[K[######--------------]  2/3  01000002  writing calibration "
                         "values  0:0"),
          "hasBar");
    QTEST(shown.contains("01000001  writing network settings"), "hasBar");
    QVERIFY2(!shown.contains("01000001  writing calibration"), shown);
    QVERIFY2(!shown.contains("01000002  writing network"), shown);
    QTEST(shown.contains("\033[32m01000001: verified."), "hasColour");
    QVERIFY2(shown.contains("01000001: verified."), shown);
    // Nothing of the bar stays, and without one no character but those of the lines.
    const QByteArray lastLines = shown.mid(shown.indexOf("Recap"));
    QVERIFY2(!lastLines.contains('#'), shown);
    QFETCH(bool, hasBar);
    QVERIFY2(hasBar || !shown.contains('\033'), shown);
}

void TestCommandMany::tellsUsage_data() {
    QTest::addColumn<QString>("arguments");
    for (const char* arguments :
         {"apply", "apply --all", "apply 1000001", "apply --plan plan.csv --power-off 60",
          "apply --plan plan.csv 1000001", "apply --all 1000001 --power-off 60",
          "apply --all --power-off 60 --only 1000001", "apply --plan plan.csv --only x --yes",
          "apply --plan plan.csv --only 1000009 --yes", "apply --plan plan.csv", "plan",
          "plan check", "plan init", "plan make plan.csv"})
        QTest::newRow(arguments) << QString(arguments);
}

void TestCommandMany::tellsUsage() {
    QFETCH(QString, arguments);
    CommandRun run;
    setBench(run);
    run.write("plan.csv", threeRows);
    const CommandResult result =
        run.run(arguments.replace("plan.csv", run.path("plan.csv")).split(' '));
    QCOMPARE(result.exitStatus, 2);
    QVERIFY(!result.standardError.isEmpty());
    QVERIFY(!run.calls().contains("KVA_Connect"));
}

TEST_CLASS(TestCommandMany)
#include "tst_command_many.moc"
