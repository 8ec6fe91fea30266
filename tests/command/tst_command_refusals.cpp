// What each verb says when something is not there, cannot be read or cannot be written.
#include "CommandRun.h"
#include "tests/support/TestMain.h"

#include <QDir>
#include <QFileInfo>

namespace {

/** What is made ready before the program runs. */
using Prepare = std::function<void(const CommandRun& run)>;

struct Refusal {
    Prepare prepare;
    QStringList arguments; ///< "@NAME" is a path
    int exitStatus;
    QByteArrayList said; ///< on standard error
    QStringList environment;
};

void nothing(const CommandRun& /*run*/) {}

void noInstrument(const CommandRun& run) {
    run.setBench(QJsonArray());
}

void noList(const CommandRun& run) {
    run.setFaults({rule("KVA_GetDevicePortList", "every", {{"result", "KVA_ERROR_NAK"}})});
}

/** A plan, and files that have one fault each. */
void files(const CommandRun& run) {
    run.write("plan.csv", "serial,power_off\n1000001,30\n");
    run.write("bad.ini", run.read("wanted.ini").replace("DHCPUse=0", "DHCPUse=2"));
    run.write("bad.json", "{");
    run.write("lost.csv", "serial\n1.0E+06\n");
    run.write("bad.csv", run.read("plate.csv").replace("85.6000", "nan"));
}

void makeFolder(const CommandRun& run, const QString& path) {
    QVERIFY(QDir().mkpath(run.dataFolder() + path));
}

} // namespace

Q_DECLARE_METATYPE(Refusal)

class TestCommandRefusals : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refuses_data();
    void refuses();
    void checks_data();
    void checks();

private:
    static void addInstruments();
    static void addFiles();
    static void addDisk();
};

void TestCommandRefusals::addInstruments() {
    const auto row = [](const char* name, const Prepare& prepare, const QStringList& arguments,
                        int status, const QByteArrayList& said,
                        const QStringList& environment = {}) {
        QTest::newRow(name) << Refusal{prepare, arguments, status, said, environment};
    };
    const QStringList backup = {"backup", "--all", "--to", "@out"};
    const QStringList apply = {"apply", "--all", "--power-off", "30", "--yes"};
    const QStringList init = {"plan", "init", "@new.csv"};
    const QByteArrayList none = {"No instrument is attached.\n"};
    row("backup, none attached", noInstrument, backup, 3, none);
    row("apply, none attached", noInstrument, apply, 3, none);
    row("plan init, none attached", noInstrument, init, 3, none);

    const QByteArrayList answered = {"KVA_GetDevicePortList answered KVA_ERROR_NAK.\n"};
    row("list, no list", noList, {"list"}, 3, answered);
    row("backup, no list", noList, backup, 3, answered);
    row("apply, no list", noList, apply, 3, answered);
    row("plan init, no list", noList, init, 3, answered);
    row("verify, no list", noList, {"verify", "--all"}, 3, answered);
    row(
        "plan check, no list",
        [](const CommandRun& run) {
            noList(run);
            files(run);
        },
        {"plan", "check", "@plan.csv"}, 3, answered);
    row("a code without a name",
        [](const CommandRun& run) {
            run.setFaults({rule("KVA_GetDevicePortList", "1", {{"result", -4242}})});
        },
        {"list"}, 3, {"KVA_GetDevicePortList answered -4242.\n"});
    row("listed twice", nothing, {"show", "1000001"}, 3,
        {"Instrument 01000001 is listed more than once."},
        {"LD_PRELOAD=" COMMAND_SHIM, "SHIM_TWICE=1"});
    const QByteArrayList notAttached = {"Instrument 00000077 is not attached."};
    row("backup, not attached", nothing, {"backup", "77", "--to", "@out"}, 3, notAttached);
    row("diff, the first not attached", nothing, {"diff", "77", "1000001"}, 3, notAttached);
    row("diff, the second not attached", nothing, {"diff", "1000001", "77"}, 3, notAttached);
    row("diff with settings, no module",
        [](const CommandRun& run) {
            QJsonObject instrument = CommandRun::initialInstrument();
            instrument["wirelessModule"] = false;
            run.setBench(instrument);
        },
        {"diff", "1000001", "@wanted.ini"}, 3, {"There are no network settings to compare with"});

    const QByteArrayList noSerial = {"\"7x\" is not a serial number.\n"};
    row("backup, no serial number", nothing, {"backup", "7x", "--to", "@out"}, 2, noSerial);
    row("show, no serial number", nothing, {"show", "7x"}, 2, noSerial);
    row("restore, no serial number", nothing, {"restore", "7x", "@s", "--yes"}, 2, noSerial);
    row("verify, no serial number", nothing, {"verify", "7x"}, 2, noSerial);
    row("journal snapshot, no serial number", nothing,
        {"journal", "snapshot", "1", "7x", "--to", "@new.json"}, 2, noSerial);
}

void TestCommandRefusals::addFiles() {
    const auto row = [](const char* name, const QStringList& arguments,
                        const QByteArrayList& said) {
        QTest::newRow(name) << Refusal{files, arguments, 2, said, {}};
    };
    const QByteArray missing = "The file cannot be opened: No such file or directory\n";
    row("diff, both missing", {"diff", "@none.ini", "@none.json"},
        {"none.ini: " + missing, "none.json: " + missing});
    row("diff, bad settings", {"diff", "@bad.ini", "1000001"}, {"DHCPUse has to be 0 or 1"});
    row("diff, a bad snapshot", {"diff", "1000001", "@bad.json"}, {"it is not JSON"});
    row("diff, values", {"diff", "1000001", "@plate.csv"},
        {"plate.csv: Only an instrument, a snapshot and network settings can"});
    row("diff, a plan", {"diff", "@plan.csv", "1000001"},
        {"plan.csv: Only an instrument, a snapshot and network settings can"});
    row("apply, files missing",
        {"apply", "1000001", "--network", "@none.ini", "--white-plate", "@none.csv", "--yes"},
        {"none.ini: " + missing, "none.csv: " + missing});
    row("check, missing", {"check", "@none"}, {"none: " + missing});
    row("check, bad settings", {"check", "@bad.ini"}, {"DHCPUse has to be 0 or 1"});
    row("plan check, digits lost", {"plan", "check", "@lost.csv", "--offline"},
        {"lost.csv, row 2, column A (serial): \"1.0E+06\" may have lost digits: "});
    row("check, a bad snapshot", {"check", "@bad.json"}, {"it is not JSON"});
    row("check, all faults of all", {"check", "@bad.csv", "@bad.ini"},
        {"bad.csv:4:1: ", "bad.ini:3:9: "});
}

void TestCommandRefusals::addDisk() {
    const auto row = [](const char* name, const Prepare& prepare, const QStringList& arguments,
                        const QByteArrayList& said, const QStringList& environment = {}) {
        QTest::newRow(name) << Refusal{prepare, arguments, 3, said, environment};
    };
    const QStringList apply = {"apply", "1000001", "--power-off", "30", "--yes"};
    row("no data folder", nothing, apply, {"/proc/none", "cannot be written: "},
        {"XDG_DATA_HOME=/proc/none"});
    row("a file in place of the data folder",
        [](const CommandRun& run) {
            QVERIFY(QDir().mkdir(run.path("data")));
            run.write("data/vq-tl4ctl", "");
        },
        apply, {"write.lock cannot be written: Not a directory\n"});
    row("a folder in place of the lock",
        [](const CommandRun& run) { makeFolder(run, "/write.lock"); }, apply,
        {"write.lock cannot be written: Is a directory\n"});
    row("a file in place of the snapshots' folder",
        [](const CommandRun& run) {
            makeFolder(run, "");
            run.write("data/vq-tl4ctl/snapshots", "");
        },
        apply, {".json cannot be written: Not a directory\n"});
    row("a file in place of the backup's folder", nothing,
        {"backup", "1000001", "--to", "@plate.csv/new"}, {"plate.csv/new cannot be written: "});
    row("a link to nothing in place of the plan",
        [](const CommandRun& run) { QVERIFY(QFile::link("nowhere", run.path("new.csv"))); },
        {"plan", "init", "@new.csv"}, {"new.csv is there already, and stays as it is.\n"});

    const QByteArrayList none = {"There is no journal yet: "};
    const QStringList snapshot = {"journal", "snapshot", "1", "1000001", "--to", "@new.json"};
    row("list, no journal", nothing, {"journal"}, none);
    row("show, no journal", nothing, {"journal", "show", "1"}, none);
    row("snapshot, no journal", nothing, snapshot, none);
    const Prepare isFolder = [](const CommandRun& run) { makeFolder(run, "/journal.sqlite"); };
    row("list, a folder in place of the journal", isFolder, {"journal"}, {"is not a journal"});
    const Prepare isText = [](const CommandRun& run) {
        makeFolder(run, "");
        run.write("data/vq-tl4ctl/journal.sqlite", "This is no journal.");
    };
    row("list, no journal's content", isText, {"journal"}, {"file is not a database"});
    row("recover without --yes, no journal's content", isText, {"recover"},
        {"file is not a database"});
    row("apply without writing, no journal's content", isText,
        {"apply", "1000001", "--power-off", "30", "--dry-run"}, {"file is not a database"});
    row("list, a link to nothing in place of the journal",
        [](const CommandRun& run) {
            makeFolder(run, "");
            QVERIFY(QFile::link("nowhere", run.journal()));
        },
        {"journal"}, {"is not a journal"});
}

void TestCommandRefusals::refuses_data() {
    QTest::addColumn<Refusal>("refusal");
    addInstruments();
    addFiles();
    addDisk();
}

void TestCommandRefusals::refuses() {
    QFETCH(Refusal, refusal);
    const CommandRun run;
    refusal.prepare(run);
    for (QString& argument : refusal.arguments)
        argument = argument.startsWith('@') ? run.path(argument.mid(1)) : argument;
    const CommandResult got = run.run(refusal.arguments, refusal.environment);
    QVERIFY2(got.exitStatus == refusal.exitStatus, got.text());
    for (const QByteArray& said : refusal.said)
        QVERIFY2(got.standardError.contains(said), got.text());
    QCOMPARE(got.standardOutput.left(1), QByteArray());
    QCOMPARE(run.writingCalls(), QStringList());
    if (refusal.exitStatus == 2)
        QCOMPARE(run.calls(), QStringList());
    for (const char* made : {"new.csv", "new.json", "out"})
        QVERIFY2(!QFileInfo::exists(run.path(made)), made);
}

void TestCommandRefusals::checks_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("settings") << "wanted.ini" << QByteArray(": network settings, no fault\n");
    QTest::newRow("a plate") << "plate.csv" << QByteArray(": values of a white plate, no fault\n");
    QTest::newRow("an adapter") << "adapter.csv"
                                << QByteArray(": values of an ambient adapter, no fault\n");
    QTest::newRow("a plan") << "plan.csv" << QByteArray(", no fault");
}

void TestCommandRefusals::checks() {
    QFETCH(QString, file);
    QFETCH(QByteArray, said);
    const CommandRun run;
    files(run);
    const CommandResult got = run.run({"check", run.path(file)});
    QVERIFY2(got.exitStatus == 0 && got.standardOutput.startsWith(run.path(file).toUtf8()),
             got.text());
    QVERIFY2(got.standardOutput.contains(said), got.text());
}

TEST_CLASS(TestCommandRefusals)
#include "tst_command_refusals.moc"
