// A plan through the program: the instruments that it names, and one to fill in.
#include "ThreeInstruments.h"
#include "command/Plan.h"
#include "tests/support/TestMain.h"

using namespace ThreeInstruments;

class TestCommandPlanInit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looksForInstruments_data();
    void looksForInstruments();
    void makesAPlan();
    void leavesAddressesOut();

private:
    CommandRun m_run;
};

void TestCommandPlanInit::looksForInstruments_data() {
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QByteArray>("said");
    const QByteArray other = "serial,key\n1000001,secret \n1000002,\n";
    QTest::newRow("attached") << QStringList{} << QByteArray("serial,key\n1000001,secret \n") << 0
                              << QByteArray("no fault (instruments: 1)");
    QTest::newRow("one is not") << QStringList{} << other << 2
                                << QByteArray("row 3, column A (serial): Instrument 01000002 is "
                                              "not attached.");
    QTest::newRow("with another fault")
        << QStringList{} << QByteArray("serial,key,ip\n1000002,secret,x\n") << 2
        << QByteArray("row 2, column A (serial): Instrument 01000002 is not attached.");
    QTest::newRow("offline") << QStringList{"--offline"} << other << 0
                             << QByteArray("no fault (instruments: 2)");
    QTest::newRow("in Japanese") << QStringList{"--lang", "ja"} << other << 2
                                 << QByteArray("の3行目、A (serial)列");
}

void TestCommandPlanInit::looksForInstruments() {
    QFETCH(QStringList, options);
    QFETCH(QByteArray, content);
    m_run.clearTrace();
    const QStringList arguments = QStringList{"plan", "check", m_run.write("plan.csv", content)};
    const CommandResult result = m_run.run(arguments + options);
    QTEST(result.exitStatus, "exitStatus");
    QFETCH(QByteArray, said);
    QVERIFY2(result.text().contains(said), result.text());
    QVERIFY2(!result.text().contains("secret"), result.text());
    QVERIFY(!m_run.calls().contains("KVA_Connect"));
    // Beside other files it is checked by itself.
    QCOMPARE(m_run.run({"check", m_run.path("plan.csv")}).exitStatus,
             content.contains(",x") ? 2 : 0);
}

void TestCommandPlanInit::makesAPlan() {
    CommandRun run;
    setBench(run, {faultOf(2, "KVA_GetShutdownTime", "every",
                           {{"result", "KVA_ERROR_COMMUNICATION_TIMEOUT"}})});
    QJsonObject bench = QJsonDocument::fromJson(run.read("bench.json")).object();
    QJsonArray instruments = bench["instruments"].toArray();
    QJsonObject second = instruments[1].toObject();
    QJsonObject network = second["network"].toObject()["active"].toObject();
    network["SSID"] = "=1+1";
    network["DHCPUse"] = 1;
    second["network"] = QJsonObject{{"active", network}};
    instruments[1] = second;
    bench["instruments"] = instruments;
    run.write("bench.json", QJsonDocument(bench).toJson());
    const QString plan = run.path("plan.csv");
    const QByteArray titles =
        "\xEF\xBB\xBF\"serial\",\"wireless\",\"ssid\",\"key\",\"dhcp\",\"ip\","
        "\"mask\",\"gateway\",\"dns\",\"power_off\",\"white_plate\","
        "\"ambient_adapter\",\"# now\"\r\n";
    const QByteArray now =
        "mask 255.255.255.0; gateway 192.168.7.1; dns 192.168.7.2; power_off 15; "
        "white_plate 12345678; ambient_adapter 00012345\"\r\n";
    const QByteArray firstNow =
        "\"wireless on; ssid \"\"first-room\"\"; key ********; dhcp off; ip "
        "192.168.7.10; " +
        now;
    const QByteArray secondNow = "\"wireless on; ssid \"\"=1+1\"\"; key ********; dhcp on; ip "
                                 "192.168.7.11; " +
                                 now;
    const QByteArray nothing = ",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",";
    const QByteArray unread =
        "\"01000003\"" + nothing +
        "\"KVA_GetShutdownTime answered KVA_ERROR_COMMUNICATION_TIMEOUT.\"\r\n";

    CommandResult result = run.run({"plan", "init", run.path("new/plan.csv")});
    QCOMPARE(result.exitStatus, 3);
    QVERIFY2(result.standardError.contains("cannot be written: No such file"), result.text());
    result = run.run({"plan", "init", plan});
    QCOMPARE(result.exitStatus, 3); // one could not be read
    QCOMPARE(run.read("plan.csv"), titles + "\"01000001\"" + nothing + firstNow + "\"01000002\"" +
                                       nothing + secondNow + unread);
    QCOMPARE(run.run({"plan", "check", plan}).exitStatus, 0);

    result = run.run({"plan", "init", plan, "--all"});
    QCOMPARE(result.exitStatus, 3);
    QVERIFY2(result.standardError.contains("is there already"), result.text());
    QVERIFY(QFile::remove(plan));
    QCOMPARE(run.run({"plan", "init", plan, "--all"}).exitStatus, 3);
    QCOMPARE(run.read("plan.csv"),
             titles +
                 "\"01000001\",\"on\",\"first-room\",\"\",\"off\",\"192.168.7.10\","
                 "\"255.255.255.0\",\"192.168.7.1\",\"192.168.7.2\",\"15\",\"\",\"\"," +
                 firstNow +
                 "\"01000002\",\"on\",\"\",\"\",\"on\",\"\",\"\",\"\",\"\",\"15\",\"\",\"\"," +
                 secondNow + unread);
    // What was filled in is what is held.
    const CommandResult again =
        run.run({"apply", "--plan", plan, "--only", "1000001,1000002", "--yes", "--json"});
    QCOMPARE(outcomes(again), QString("unchanged unchanged"));
    QVERIFY(run.writingCalls().isEmpty());
}

/** Its own addresses would be refused in a plan. */
void TestCommandPlanInit::leavesAddressesOut() {
    CommandRun run;
    QJsonObject instrument = run.instrument();
    QJsonObject network = instrument["network"].toObject()["active"].toObject();
    network["DefaultGateway"] = "10.0.0.1";
    instrument["network"] = QJsonObject{{"active", network}};
    run.setBench(instrument);
    const QString plan = run.path("plan.csv");
    const QByteArray said = "01000001: its addresses are left out: 192.168.7.10 is outside the "
                            "network that mask 255.255.255.0 and gateway 10.0.0.1 make.";
    CommandResult result = run.run({"plan", "init", plan});
    QVERIFY2(result.exitStatus == 0 && !result.standardError.contains(said), result.text());
    QVERIFY(QFile::remove(plan));
    result = run.run({"plan", "init", plan, "--all"});
    QVERIFY2(result.exitStatus == 0 && result.standardError.contains(said), result.text());
    QVERIFY2(run.read("plan.csv").contains("\"off\",\"\",\"\",\"\",\"\",\"15\""),
             run.read("plan.csv"));
    QCOMPARE(run.run({"plan", "check", plan}).exitStatus, 0);
}

TEST_CLASS(TestCommandPlanInit)
#include "tst_command_plan_init.moc"
