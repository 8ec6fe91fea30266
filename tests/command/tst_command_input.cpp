#include "CommandRun.h"
#include "tests/support/TestMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>

class TestCommandInput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refusesInput_data();
    void refusesInput();
    void saysWhichValue_data();
    void saysWhichValue();
    void refusesSnapshots_data();
    void refusesSnapshots();
    void restoresBitForBit();
    void restoresParts();
    void restoresWhatLooksWrong();
    void readsWithoutWriting();
    void tellsUsage_data();
    void tellsUsage();
};

void TestCommandInput::refusesInput_data() {
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

void TestCommandInput::refusesInput() {
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

void TestCommandInput::saysWhichValue_data() {
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("said");
    QTest::newRow("English")
        << "en"
        << "White plate, value 2 of 38, values[1]: 8.58 (expected: about 85.8; "
           "the instrument holds 85.7). It is 0.1 times";
    QTest::newRow("Japanese") << "ja"
                              << "白色校正板、38 個中 2 番目の値(values[1]): 8.58(予想: 約 "
                                 "85.8。測定器の値は 85.7)。前後の値から";
}

void TestCommandInput::saysWhichValue() {
    QFETCH(QString, language);
    QFETCH(QString, said);
    CommandRun run;
    run.write("plate.csv", run.read("plate.csv").replace("85.8000", "8.5800"));
    const CommandResult got = run.run({"apply", "1000001", "--white-plate", run.path("plate.csv"),
                                       "--dry-run", "--json", "--lang", language});
    QVERIFY2(got.exitStatus == 3, got.text());
    QVERIFY2(QString::fromUtf8(got.standardError).contains(said), got.text());
    QVERIFY2(got.object()["reason"].toString().contains("whitePlate.values[1]. "), got.text());
}

void TestCommandInput::refusesSnapshots_data() {
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
    for (const char* record : {"device", "calibration", "network"})
        QTest::addRow("a byte too many in %s", record)
            << QByteArray(record) + "\": \"" << QByteArray(record) + "\": \"00" << true
            << QByteArray("do not say the same");
    QTest::newRow("newer") << QByteArray("\"version\": 1") << QByteArray("\"version\": 2") << true
                           << QByteArray("newer");
    QTest::newRow("something else") << QByteArray("vq-tl4ctl snapshot") << QByteArray("recipe")
                                    << true << QByteArray("not a snapshot");
    QTest::newRow("of another instrument")
        << QByteArray() << QByteArray() << true << QByteArray("01000001, not of 01000002");
}

void TestCommandInput::refusesSnapshots() {
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

void TestCommandInput::restoresBitForBit() {
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
    QVERIFY(run.read(name).contains(QByteArray(CommandRun::keys[0]).toHex()));
}

void TestCommandInput::restoresParts() {
    CommandRun run;
    QCOMPARE(run.run({"backup", "--all", "--without-key", "--to", run.path("out")}).exitStatus, 0);
    const QString name = "out/" + QDir(run.path("out")).entryList(QDir::Files).value(0);
    QVERIFY(!run.read(name).contains(CommandRun::keys[0]));
    QVERIFY(!run.read(name).contains(QByteArray(CommandRun::keys[0]).toHex()));
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

/** An instrument held these values before: they are its own, however they look. */
void TestCommandInput::restoresWhatLooksWrong() {
    CommandRun run;
    const QByteArray file = withValue(run.read("adapter.csv"), 40, "1.3");
    const QStringList wrong = {
        "apply", "1000001", "--ambient-adapter", run.write("wrong.csv", file), "--yes", "--json"};
    QCOMPARE(run.run(wrong).outcome(), QString("refused"));
    QCOMPARE(run.run(wrong + QStringList{"--accept-implausible"}).outcome(), QString("verified"));
    const QJsonObject before = run.instrument();
    QCOMPARE(run.run({"backup", "1000001", "--to", run.path("out")}).exitStatus, 0);
    const QString name = "out/" + QDir(run.path("out")).entryList(QDir::Files).value(0);
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    const QStringList restore = {"restore", "1000001", run.path(name), "--yes", "--json"};
    QCOMPARE(run.run(restore + QStringList{"--only", "ambient-adapter"}).outcome(),
             QString("verified"));
    QCOMPARE(run.run(restore).outcome(), QString("verified"));
    QCOMPARE(differenceBetween(run.instrument(), before), QString());
}

void TestCommandInput::readsWithoutWriting() {
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

void TestCommandInput::tellsUsage_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QByteArray>("said");
    const auto row = [](const char* name, const QStringList& arguments, int status,
                        const char* said) {
        QTest::newRow(name) << arguments << status << QByteArray(said);
    };
    row("no verb", {}, 2, "A subcommand is required\nRun with --help for more information.\n");
    const auto japanese = [&](const char* name, const QStringList& arguments, int status,
                              const char* said) {
        row(name, QStringList{"--lang", "ja"} + arguments, status, said);
    };
    japanese("no verb, in Japanese", {}, 2,
             "コマンドを指定してください\n詳しくは --help を付けて実行してください。\n");
    japanese("no run, in Japanese", {"journal", "show"}, 2, "RUN を指定してください\n");
    japanese("a power-off time that is none, in Japanese", {"apply", "1", "--power-off", "45"}, 2,
             "--power-off: 45 は指定できません(次のいずれか: off,15,30,60)\n");
    japanese("one too many, in Japanese", {"list", "x"}, 2, "次の引数は指定できません: x\n");
    japanese("no value, in Japanese", {"report", "1", "--to"}, 2, "--to: 値を指定してください\n");
    japanese("both, in Japanese", {"verify", "1", "--all"}, 2, "は同時に指定できません\n");
    japanese("without its plan, in Japanese", {"apply", "--all", "--only", "1"}, 2,
             "--only には --plan の指定が必要です\n");
    japanese("twice, in Japanese", {"report", "1", "--to", "a", "--to", "b"}, 2,
             "--to: 指定できるのは1回だけです\n");
    japanese("help, in Japanese", {"--help"}, 0, "[オプション] コマンド\n\nオプション:\n");
    japanese("help on verbs, in Japanese", {"--help"}, 0, "\nコマンド:\n  list ");
    row("help", {"--help"}, 0, "apply");
    row("help of a verb", {"apply", "--help"}, 0, "--accept-implausible");
    row("the version", {"--version"}, 0, ".");
    row("a verb that is none", {"bogus"}, 2, "The following arguments were not expected: bogus\n");
    japanese("a verb that is none, in Japanese", {"plan", "bogus"}, 2,
             "次の引数は指定できません: bogus\n");
    row("a value for a switch", {"apply", "1", "--power-off", "15", "--yes=maybe"}, 2,
        "--yes takes no value\n");
    japanese("a value for a switch, in Japanese", {"list", "--json=no"}, 2,
             "--json に値は指定できません\n");
    row("nothing to apply", {"apply", "1000001", "--yes"}, 2, "--power-off");
    row("a power-off time that is none", {"apply", "1", "--power-off", "45", "--yes"}, 2, "45");
    row("a serial number that is none", {"apply", "1x", "--power-off", "15", "--yes"}, 2, "1x");
    row("nobody to ask", {"apply", "1000001", "--power-off", "30"}, 2, "--yes");
    row("a part that is none", {"restore", "1", "x", "--only", "plates"}, 2, "plates");
    row("a snapshot that is not there", {"restore", "1", "/nowhere", "--yes"}, 2, "/nowhere");
    row("backup of nothing", {"backup", "--to", "/tmp"}, 2, "--all");
}

void TestCommandInput::tellsUsage() {
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

TEST_CLASS(TestCommandInput)
#include "tst_command_input.moc"
