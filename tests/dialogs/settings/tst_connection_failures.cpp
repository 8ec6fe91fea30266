#include "tests/dialogs/settings/SettingsFixture.h"

#include <QtTest>

/** Connecting to an instrument that fails in one step or another. */
class TestConnectionFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cannotConnect_data();
    void cannotConnect();
    void cannotConnectWhileConnected();
    void failingRead_data();
    void failingRead();
    void withoutWirelessModule();
    void emptiesStaleTexts_data();
    void emptiesStaleTexts();
    void statesWhileBoxesAreOpen_data();
    void statesWhileBoxesAreOpen();
};

namespace {

const QString connectCall = QStringLiteral("KVA_Connect");
const QString deviceInfo = QStringLiteral("KVA_GetDeviceInfo");
const QString options = QStringLiteral("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA");
const QString networkInfo = QStringLiteral("KVA_GetNetworkInfo");
const QString calibration = QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA");
const QString shutdownTime = QStringLiteral("KVA_GetShutdownTime");

const QString noDeviceData = QStringLiteral("error: Failed to read device data.");
const QString noWireless = QStringLiteral("information: Wireless LAN is invalid.");
const QString noPlate = QStringLiteral("error: Failed to device WhiteCalibPlateSerialNo.");
const QString noAdapter = QStringLiteral("error: Failed to device AmbientLightAdapterSerialNo.");
const QString noTime = QStringLiteral("error: Failed to read automatic shutdown time.");

const QString moduleLine = QStringLiteral("  wifiModuleEnable :      1\n");
const QString timeLine = QStringLiteral("KVA_GetShutdownTime() success[mode:2].\n");

/** What an empty network tab shows. */
const QStringList emptyNetworkTexts = {QString(),
                                       QString(),
                                       QStringLiteral("..."),
                                       QStringLiteral("..."),
                                       QStringLiteral("..."),
                                       QStringLiteral("...")};

QStringList withoutNetworkTab(QStringList names) {
    names.prepend(QStringLiteral("networkSetTab"));
    return names;
}

} // namespace

void TestConnectionFailures::cannotConnect_data() {
    QTest::addColumn<int>("portNum");
    QTest::addColumn<bool>("firstTime");
    QTest::addColumn<bool>("fromNotConnected");
    QTest::addColumn<QStringList>("calls");
    const QStringList refused(connectCall);
    QTest::newRow("at start") << 0 << true << false << refused;
    QTest::newRow("later") << 0 << false << false << refused;
    QTest::newRow("from the not-connected state") << 0 << false << true << refused;
    QTest::newRow("no such entry, at start") << 1 << true << false << QStringList();
    QTest::newRow("no such entry, not connected") << 1 << false << true << QStringList();
}

void TestConnectionFailures::cannotConnect() {
    QFETCH(int, portNum);
    QFETCH(bool, firstTime);
    QFETCH(bool, fromNotConnected);
    SettingsFixture f;
    QVERIFY(f.answer(connectCall));
    f.controller->GetDevicePortList();
    if (fromNotConnected)
        f.dialog.connectDevice(-1, false);
    f.clearRecords();
    QStringList expected = f.disabled();
    if (portNum > 0)
        expected = SettingsFixture::disabledWhenNotConnected();
    else if (!fromNotConnected)
        expected =
            QStringList{QStringLiteral("setWCPValPushBtn"), QStringLiteral("setAmbAdpBodyPushBtn")};
    f.dialog.connectDevice(portNum, firstTime);

    QCOMPARE(f.boxes(), QStringList(QStringLiteral("error: Failed to connect device.")));
    QTEST(f.calls(), "calls");
    QCOMPARE(f.lines(), QStringList(QStringLiteral("conect error \n")));
    QCOMPARE(f.disabled(), expected);
    QCOMPARE(f.checked(), QStringList());
    QCOMPARE(f.identity().join(QString()), QString());
    QCOMPARE(f.networkTexts(), emptyNetworkTexts);
    QVERIFY(!watchOf(f.dialog).isActive());
}

// The dialog keeps whatever state it had.
void TestConnectionFailures::cannotConnectWhileConnected() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.dialog.connectDevice(0, false);

    QCOMPARE(f.boxes(), QStringList(QStringLiteral("error: Failed to connect device.")));
    QCOMPARE(f.calls(), QStringList(connectCall));
    QCOMPARE(f.everything(), before);
    QVERIFY(watchOf(f.dialog).isActive());
}

void TestConnectionFailures::failingRead_data() {
    QTest::addColumn<QString>("function");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("empty");

    QTest::newRow("identity") << deviceInfo << QStringList(noDeviceData)
                              << QStringList{connectCall, deviceInfo}
                              << QStringList(QStringLiteral("Failed to read Firm data. \n"))
                              << QStringList{QStringLiteral("identity"), QStringLiteral("network"),
                                             QStringLiteral("plates"), QStringLiteral("time")};
    QTest::newRow("wireless module")
        << options << QStringList(noWireless)
        << QStringList{connectCall, deviceInfo, options, calibration, shutdownTime}
        << QStringList(timeLine) << QStringList(QStringLiteral("network"));
    QTest::newRow("network settings")
        << networkInfo << QStringList() << SettingsFixture::connectCalls()
        << QStringList{moduleLine, QStringLiteral("Failed to KVA_GetNetworkInfo(). \n"), timeLine}
        << QStringList(QStringLiteral("network"));
    QTest::newRow("calibration") << calibration << QStringList{noPlate, noAdapter}
                                 << SettingsFixture::connectCalls()
                                 << QStringList{moduleLine, timeLine}
                                 << QStringList(QStringLiteral("plates"));
    QTest::newRow("power-off time")
        << shutdownTime << QStringList(noTime) << SettingsFixture::connectCalls()
        << QStringList{moduleLine, QStringLiteral("KVA_GetShutdownTime() failed[mode:0].\n")}
        << QStringList(QStringLiteral("time"));
}

void TestConnectionFailures::failingRead() {
    QFETCH(QString, function);
    QFETCH(QStringList, empty);
    SettingsFixture f;
    QVERIFY(f.answer(function, KVA_ERROR_COMMUNICATION_TIMEOUT));
    f.controller->GetDevicePortList();
    f.dialog.connectDevice(-1, false);
    f.clearRecords();
    f.dialog.connectDevice(0, false);

    QTEST(f.boxes(), "boxes");
    QTEST(f.calls(), "calls");
    QTEST(f.lines(), "lines");
    const bool moduleKnown = function != options;
    QCOMPARE(f.disabled(), moduleKnown
                               ? SettingsFixture::disabledWhenConnected()
                               : withoutNetworkTab(SettingsFixture::disabledWhenConnected()));
    QVERIFY(watchOf(f.dialog).isActive());

    const auto isEmpty = [&](const char* part) { return empty.contains(QLatin1String(part)); };
    QCOMPARE(f.identity().constFirst(),
             isEmpty("identity") ? QString() : QStringLiteral("01234567"));
    QCOMPARE(f.networkTexts() == emptyNetworkTexts, isEmpty("network"));
    QCOMPARE(f.checked().contains(QStringLiteral("enableRadioBtn")), !isEmpty("network"));
    QCOMPARE(f.checked().contains(QStringLiteral("dhcpOffRadioBtn")), !isEmpty("network"));
    QCOMPARE(f.calibrationTexts().join(QString()),
             isEmpty("plates") ? QString() : QStringLiteral("1234567800012345"));
    QCOMPARE(f.checked().contains(QStringLiteral("thirtyRadioBtn")), !isEmpty("time"));
}

void TestConnectionFailures::withoutWirelessModule() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"wirelessModule": false})"));
    f.controller->GetDevicePortList();
    f.clearRecords();
    f.dialog.connectDevice(0, true);

    QCOMPARE(f.boxes(), QStringList(noWireless));
    QCOMPARE(f.calls(), (QStringList{connectCall, deviceInfo, options, calibration, shutdownTime}));
    QCOMPARE(f.lines(), (QStringList{QStringLiteral("  wifiModuleEnable :      0\n"), timeLine}));
    QCOMPARE(f.disabled(), withoutNetworkTab(SettingsFixture::disabledWhenConnected()));
    QCOMPARE(f.checked(), QStringList(QStringLiteral("thirtyRadioBtn")));
    QCOMPARE(f.networkTexts(), emptyNetworkTexts);
    QVERIFY(watchOf(f.dialog).isActive());
}

void TestConnectionFailures::emptiesStaleTexts_data() {
    QTest::addColumn<QString>("function");
    QTest::addColumn<bool>("identityEmpty");
    QTest::addColumn<bool>("platesEmpty");
    QTest::newRow("identity") << deviceInfo << true << false;
    QTest::newRow("network settings") << networkInfo << false << false;
    QTest::newRow("calibration") << calibration << false << true;
    QTest::newRow("power-off time") << shutdownTime << false << false;
}

// A second connection over what the first has left on the page.
void TestConnectionFailures::emptiesStaleTexts() {
    QFETCH(QString, function);
    QFETCH(bool, identityEmpty);
    QFETCH(bool, platesEmpty);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList network = f.networkTexts();
    const QStringList identity = f.identity();
    const QStringList plates = f.calibrationTexts();
    QVERIFY(f.controller->Disconnect());
    QVERIFY(f.answer(function));
    f.dialog.connectDevice(0, false);

    QCOMPARE(f.identity().join(QString()), identityEmpty ? QString() : identity.join(QString()));
    QCOMPARE(f.networkTexts(), network);
    QCOMPARE(f.enabledAddressEdits(), 16);
    QCOMPARE(f.calibrationTexts().join(QString()),
             platesEmpty ? QString() : plates.join(QString()));
    QVERIFY(f.checked().contains(QStringLiteral("enableRadioBtn")));
    QVERIFY(f.checked().contains(QStringLiteral("thirtyRadioBtn")));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestConnectionFailures::statesWhileBoxesAreOpen_data() {
    QTest::addColumn<QString>("function");
    QTest::addColumn<QStringList>("disabled");
    const QStringList tabsEnabled = {QStringLiteral("disConnectPushBtn"),
                                     QStringLiteral("setWCPValPushBtn"),
                                     QStringLiteral("setAmbAdpBodyPushBtn")};
    QTest::newRow("connection") << connectCall << SettingsFixture::disabledWhenNotConnected();
    QTest::newRow("identity") << deviceInfo << tabsEnabled;
    QTest::newRow("wireless module") << options << withoutNetworkTab(tabsEnabled);
    QTest::newRow("calibration") << calibration << tabsEnabled;
    QTest::newRow("power-off time") << shutdownTime << tabsEnabled;
}

// The connected state is entered last: until then the buttons are those of the state before.
void TestConnectionFailures::statesWhileBoxesAreOpen() {
    QFETCH(QString, function);
    QFETCH(QStringList, disabled);
    SettingsFixture f;
    QVERIFY(f.answer(function));
    f.controller->GetDevicePortList();
    f.dialog.connectDevice(-1, false);
    int opened = 0;
    f.answers.onBox = [&](QMessageBox&) {
        ++opened;
        QCOMPARE(f.disabled(), disabled);
        QVERIFY(!watchOf(f.dialog).isActive());
    };
    f.dialog.connectDevice(0, false);
    QCOMPARE(opened, function == calibration ? 2 : 1);
}

QTEST_MAIN(TestConnectionFailures)
#include "tst_connection_failures.moc"
