// Instruments, folders and languages that are unusual: what the command shows of them, and that it
// takes nothing from them that it could not put back.
#include "CommandRun.h"
#include "command/InstrumentState.h"
#include "tests/support/TestMain.h"

#include <QDir>
#include <QFileInfo>

#include <cstring>

namespace {

QJsonObject withValues(QJsonObject object, const QJsonObject& values) {
    for (const QString& key : values.keys())
        object[key] = values[key];
    return object;
}

QJsonObject withNetwork(const QJsonObject& values) {
    QJsonObject instrument = CommandRun::initialInstrument();
    const QJsonObject network = instrument["network"].toObject()["active"].toObject();
    instrument["network"] = QJsonObject{{"active", withValues(network, values)}};
    return instrument;
}

/** All bytes of the record are 0. */
QJsonObject blankInstrument() {
    const auto accessory = [](int count) {
        QJsonArray values;
        for (int i = 0; i < count; ++i)
            values.append(0);
        return QJsonObject{{"serialNumber", "00000000"}, {"values", values}};
    };
    const QJsonObject record = {{"white", accessory(38)},
                                {"ambientAdapter", accessory(75)},
                                {"reserved", QJsonObject{{"fill", 0}}}};
    return withValues(CommandRun::initialInstrument(),
                      {{"calibration", QJsonObject{{"committed", record}}}});
}

/** Each is quoted. */
QStringList cellsOf(const QString& line) {
    return line.mid(1).chopped(1).split("\",\"");
}

/** The cells of the only row of a plan, by column. */
QMap<QString, QString> planRow(const QByteArray& plan) {
    const QStringList lines = QString::fromUtf8(plan.mid(3)).split("\r\n");
    const QStringList names = cellsOf(lines.value(0));
    const QStringList cells = cellsOf(lines.value(1));
    QMap<QString, QString> row;
    for (int i = 0; i < names.size(); ++i)
        row[names[i]] = cells.value(i);
    return row;
}

} // namespace

class TestCommandUnusual : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsWhatNoSettingMeans_data();
    void showsWhatNoSettingMeans();
    void plansWithoutAModule();
    void neverWritesABlankRecord();
    void restoresTheNetworkAlone();
    void ignoresARelativeDataFolder();
    void namesTheLanguageInOneWord();
    void ignoresWhatStandsBehindATextsEnd();
};

void TestCommandUnusual::showsWhatNoSettingMeans_data() {
    QTest::addColumn<QJsonObject>("instrument");
    QTest::addColumn<QString>("field"); ///< of JSON; in `network` where there is one
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("column"); ///< of a plan
    QTest::addColumn<QString>("cell");
    const auto row = [](const char* name, const QJsonObject& instrument, const char* field,
                        const char* shown, const char* column, const char* cell) {
        QTest::newRow(name) << instrument << QString(field) << QString(shown) << QString(column)
                            << QString(cell);
    };
    row("a power-off mode", withValues(CommandRun::initialInstrument(), {{"powerOffMode", 7}}),
        "powerOff", "mode 7", "power_off", "");
    row("a switch", withNetwork({{"APConnectUse", 2}}), "wireless", "2", "wireless", "");
    row("bytes that are no text",
        withNetwork({{"SSID", QJsonObject{{"hex", "41ff" + QString("00").repeated(31)}}}}), "ssid",
        "0x41ff", "ssid", "");
    row("a text with a line end", withNetwork({{"SSID", "a\nb"}}), "ssid", "0x610a62", "ssid", "");
    row("a text like bytes", withNetwork({{"SSID", "0x41"}}), "ssid", "0x30783431", "ssid", "");
    row("a text like a formula", withNetwork({{"SSID", "=1"}}), "ssid", "=1", "ssid", "");
    row("a text like a long number", withNetwork({{"SSID", "1.0E+06"}}), "ssid", "1.0E+06", "ssid",
        "");
    row("a text beyond the first plane", withNetwork({{"SSID", "a\U0001F600"}}), "ssid",
        "a\U0001F600", "ssid", "a\U0001F600");
    row("no text", withNetwork({{"SSID", ""}}), "ssid", "", "ssid", "");
}

void TestCommandUnusual::showsWhatNoSettingMeans() {
    QFETCH(QJsonObject, instrument);
    QFETCH(QString, field);
    QFETCH(QString, column);
    const CommandRun run;
    run.setBench(instrument);
    CommandResult got = run.run({"show", "1000001", "--json"});
    const QJsonObject object = got.object();
    const QJsonObject network = object["network"].toObject();
    QTEST((network.contains(field) ? network : object)[field].toString(), "shown");
    got = run.run({"plan", "init", run.path("new.csv"), "--all"});
    QVERIFY2(got.exitStatus == 0, got.text());
    QTEST(planRow(run.read("new.csv")).value(column, "missing"), "cell");
}

void TestCommandUnusual::plansWithoutAModule() {
    const CommandRun run;
    run.setBench(withValues(CommandRun::initialInstrument(), {{"wirelessModule", false}}));
    CommandResult got = run.run({"plan", "init", run.path("new.csv"), "--all"});
    QVERIFY2(got.exitStatus == 0, got.text());
    QMap<QString, QString> row = planRow(run.read("new.csv"));
    QCOMPARE(row["ip"] + row["dhcp"] + row["wireless"], QString());
    QCOMPARE(row["power_off"], QString("15"));
    QVERIFY2(row["# now"].startsWith("no wireless module; power_off 15"), qPrintable(row["# now"]));

    // It takes no network settings of a plan, and the others.
    got =
        run.run({"apply", "--plan", run.write("plan.csv", "serial,ssid\n1000001,Lab\n"), "--yes"});
    QVERIFY2(got.exitStatus == 3 && got.standardError.contains("no wireless module"), got.text());
    got = run.run(
        {"apply", "--plan", run.write("plan.csv", "serial,power_off\n1000001,30\n"), "--yes"});
    QVERIFY2(got.exitStatus == 0, got.text());
    run.setBench(withValues(CommandRun::initialInstrument(), {{"wirelessModule", false}}));

    // One whose write did not end is not read.
    QVERIFY(QDir().mkpath(run.dataFolder() + "/unfinished"));
    run.write("data/vq-tl4ctl/unfinished/01000001.json", "{}");
    QVERIFY(QFile::remove(run.path("new.csv")));
    got = run.run({"plan", "init", run.path("new.csv"), "--all"});
    QVERIFY2(got.exitStatus == 3, got.text());
    row = planRow(run.read("new.csv"));
    QCOMPARE(row["power_off"], QString());
    QVERIFY2(row["# now"].contains("01000001: unfinished. An earlier write did not end"),
             qPrintable(row["# now"]));
    QVERIFY(run.run({"list"}).standardOutput.contains("01000001  USB  (an unfinished write)\n"));
}

void TestCommandUnusual::neverWritesABlankRecord() {
    const CommandRun run;
    run.setBench(blankInstrument());
    CommandResult got = run.run({"backup", "1000001", "--to", run.path("out")});
    const QString snapshot = QString::fromUtf8(got.standardOutput.trimmed());
    QVERIFY2(QFileInfo::exists(snapshot), got.text());
    got = run.run(run.applyAll());
    QVERIFY2(got.outcome() == "refused", got.text());
    QVERIFY2(got.standardError.contains("All bytes of the instrument's calibration record are"),
             got.text());
    run.setBench(CommandRun::initialInstrument());
    got = run.run({"restore", "1000001", snapshot, "--yes", "--json"});
    QVERIFY2(got.outcome() == "refused", got.text());
    QVERIFY2(got.standardError.contains("All bytes of the calibration record to be written are"),
             got.text());
    QCOMPARE(run.writingCalls(), QStringList());
}

void TestCommandUnusual::restoresTheNetworkAlone() {
    const CommandRun run;
    const auto backUp = [&] {
        const CommandResult got = run.run({"backup", "1000001", "--to", run.path("out")});
        return QString::fromUtf8(got.standardOutput.trimmed());
    };
    const auto restore = [&](const QString& snapshot) {
        return QStringList{"restore", "1000001", snapshot, "--only", "network"};
    };
    const QString snapshot = backUp();
    QCOMPARE(run.run(run.applyAll()).outcome(), QString("verified"));
    run.clearTrace();
    const CommandResult unasked = run.run(restore(snapshot));
    QVERIFY2(unasked.exitStatus == 2 && unasked.standardError.contains("--yes"), unasked.text());
    QCOMPARE(run.calls(), QStringList());
    const CommandResult got = run.run(restore(snapshot) << "--yes"
                                                        << "--json");
    QVERIFY2(got.outcome() == "verified", got.text());
    QCOMPARE(run.writingCalls(), QStringList{"KVA_SetNetworkInfo"});
    QCOMPARE(differenceBetween(run.instrument(), CommandRun::initialInstrument()),
             QString("power-off calibration"));

    run.setBench(withValues(CommandRun::initialInstrument(), {{"wirelessModule", false}}));
    const CommandResult none = run.run(restore(backUp()) << "--yes");
    QVERIFY2(none.exitStatus == 2, none.text());
    QVERIFY2(none.standardError.contains("The snapshot has no network settings."), none.text());
}

void TestCommandUnusual::ignoresARelativeDataFolder() {
    const CommandRun run;
    QCOMPARE(run.run(run.applyAll(), {"XDG_DATA_HOME=data"}).outcome(), QString("verified"));
    QVERIFY(QFileInfo::exists(run.path("home/.local/share/vq-tl4ctl/journal.sqlite")));
    QVERIFY(!QFileInfo::exists("data/vq-tl4ctl"));
}

void TestCommandUnusual::namesTheLanguageInOneWord() {
    const CommandRun run;
    const QByteArray japanese = QByteArray("コマンドを指定してください\n");
    QVERIFY(run.run({"--lang=ja"}).standardError.startsWith(japanese));
    QVERIFY(run.run({}, {"LC_ALL=ja_JP.UTF-8"}).standardError.startsWith(japanese));
    QVERIFY(!run.run({"--lang=en"}, {"LC_ALL=ja_JP.UTF-8"}).standardError.startsWith(japanese));
    QCOMPARE(run.run({"list", "--lang"}).exitStatus, 2);
}

/** Of a network record the texts count up to their NUL, and the padding not at all. */
void TestCommandUnusual::ignoresWhatStandsBehindATextsEnd() {
    const auto record = [](char filler, const char* ssid) {
        KVA_NETWORKINFO info;
        std::memset(&info, filler, sizeof info);
        info.DHCPUse = 1;
        info.APConnectUse = 1;
        for (auto* address : {&info.IPAddress, &info.SubnetMask, &info.DefaultGateway, &info.DNS})
            std::memset(address, 7, sizeof *address);
        qstrcpy(info.SSID, ssid);
        qstrcpy(info.EncryptKey, "key");
        return info;
    };
    const KVA_NETWORKINFO first = normalized(record('a', "room"));
    QVERIFY(isSame(first, normalized(record('b', "room"))));
    QVERIFY(!isSame(first, normalized(record('a', "rooms"))));
    QCOMPARE(first.SSID, "room");
    QCOMPARE(first.EncryptKey, "key");
    QCOMPARE(first.IPAddress[3], std::uint8_t(7));
}

TEST_CLASS(TestCommandUnusual)
#include "tst_command_unusual.moc"
