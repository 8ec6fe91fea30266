#include "tests/dialogs/settings/SettingsFixture.h"

#include <QPushButton>
#include <QtTest>

/** Connecting to an instrument, where nothing fails. */
class TestConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithoutConnection();
    void withoutInstrument_data();
    void withoutInstrument();
    void firstTimePreparesTheWindow_data();
    void firstTimePreparesTheWindow();
    void laterTimeLeavesTheWindow();
    void fillsTheDialog_data();
    void fillsTheDialog();
    void connectsToTheChosenEntry();
    void showsTheSwitches_data();
    void showsTheSwitches();
    void showsThePowerOffMode_data();
    void showsThePowerOffMode();
    void takesWarningsForSuccess();
    void takesAnyModuleFlagForAModule();
    void asksForAValueFileAgain();
    void enablesTheTabs();
};

namespace {

QStringList filledNetworkTexts() {
    return {QStringLiteral("press-hall"),   QStringLiteral("spectral-key"),
            QStringLiteral("192.168.0.10"), QStringLiteral("255.255.255.0"),
            QStringLiteral("192.168.0.1"),  QStringLiteral("8.8.4.0")};
}

const Qt::WindowFlags firstTimeHints = Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                                       Qt::WindowMaximizeButtonHint | Qt::CustomizeWindowHint |
                                       Qt::WindowCloseButtonHint;

// Qt itself adds a type, and the system menu where a window has a close button.
Qt::WindowFlags hintsOf(const QWidget& window) {
    return window.windowFlags() & ~(Qt::WindowType_Mask | Qt::WindowSystemMenuHint);
}

} // namespace

void TestConnection::startsWithoutConnection() {
    SettingsFixture f;
    QCOMPARE(f.disabled(), QStringList());
    QCOMPARE(f.checked(), QStringList());
    QVERIFY(!watchOf(f.dialog).isActive());
    QCOMPARE(watchOf(f.dialog).interval(), 1000);
    QVERIFY(!watchOf(f.dialog).isSingleShot());
    QVERIFY(!f.dialog.isFinished);
    QCOMPARE(f.log.others(), QStringList());
}

void TestConnection::withoutInstrument_data() {
    QTest::addColumn<int>("portNum");
    QTest::addColumn<bool>("firstTime");
    QTest::newRow("at start") << -1 << true;
    QTest::newRow("later") << -1 << false;
    QTest::newRow("any negative port") << -7 << false;
    QTest::newRow("port of an empty list, at start") << 0 << true;
    QTest::newRow("port of an empty list, later") << 0 << false;
    QTest::newRow("port behind the list") << 3 << true;
}

void TestConnection::withoutInstrument() {
    QFETCH(int, portNum);
    QFETCH(bool, firstTime);
    SettingsFixture f;
    f.dialog.connectDevice(portNum, firstTime);

    const bool tried = portNum >= 0;
    QCOMPARE(f.boxes().join(u' '),
             tried ? QStringLiteral("error: Failed to connect device.") : QString());
    QCOMPARE(f.lines().join(u' '), tried ? QStringLiteral("conect error \n") : QString());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QCOMPARE(f.checked(), QStringList());
    QCOMPARE(f.dialog.focusWidget(), &f.child(QStringLiteral("ConnectPushBtn")));
    QVERIFY(!watchOf(f.dialog).isActive());
    QCOMPARE(f.identity().join(QString()), QString());
    QCOMPARE(f.calibrationTexts().join(QString()), QString());
    QCOMPARE(f.calls(), QStringList());
    QVERIFY(!f.dialog.isFinished);
}

void TestConnection::firstTimePreparesTheWindow_data() {
    QTest::addColumn<int>("portNum");
    QTest::newRow("no instrument") << -1;
    QTest::newRow("an instrument") << 0;
    QTest::newRow("no such instrument") << 3;
}

void TestConnection::firstTimePreparesTheWindow() {
    QFETCH(int, portNum);
    SettingsFixture f;
    f.controller->GetDevicePortList();
    f.dialog.resize(1180, 730);
    f.dialog.connectDevice(portNum, true);

    QCOMPARE(hintsOf(f.dialog), firstTimeHints);
    QVERIFY(f.dialog.isWindow());
    QCOMPARE(f.dialog.minimumSize(), QSize(1180, 730));
    QCOMPARE(f.dialog.maximumSize(), QSize(1180, 730));
    QVERIFY(!f.dialog.windowIcon().isNull());
    if (portNum > 0) {
        QCOMPARE(f.answers.boxes.size(), 1);
        QVERIFY(f.answers.boxes[0].hasWindowIcon);
    }
}

void TestConnection::laterTimeLeavesTheWindow() {
    SettingsFixture f;
    const Qt::WindowFlags flags = f.dialog.windowFlags();
    f.dialog.connectDevice(3, false);

    QCOMPARE(f.dialog.windowFlags(), flags);
    QVERIFY(f.dialog.minimumSize() != f.dialog.maximumSize());
    QVERIFY(f.dialog.windowIcon().isNull());
    QCOMPARE(f.answers.boxes.size(), 1);
    QVERIFY(!f.answers.boxes[0].hasWindowIcon);
}

void TestConnection::fillsTheDialog_data() {
    QTest::addColumn<bool>("firstTime");
    QTest::addColumn<bool>("fromNotConnected");
    QTest::newRow("at start") << true << false;
    QTest::newRow("later") << false << false;
    QTest::newRow("from the not-connected state") << false << true;
}

void TestConnection::fillsTheDialog() {
    QFETCH(bool, firstTime);
    QFETCH(bool, fromNotConnected);
    SettingsFixture f;
    f.controller->GetDevicePortList();
    if (fromNotConnected)
        f.dialog.connectDevice(-1, false);
    f.clearRecords();
    f.dialog.connectDevice(0, firstTime);

    QCOMPARE(f.calls(), SettingsFixture::connectCalls());
    QCOMPARE(f.lines(), SettingsFixture::connectLines().mid(1));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QVERIFY(watchOf(f.dialog).isActive());
    QCOMPARE(f.identity(), (QStringList{QStringLiteral("01234567"), QStringLiteral("1.02.0003"),
                                        QStringLiteral("02:0A:BC:0D:EF:09")}));
    QCOMPARE(f.networkTexts(), filledNetworkTexts());
    QCOMPARE(f.checked(),
             (QStringList{QStringLiteral("enableRadioBtn"), QStringLiteral("dhcpOffRadioBtn"),
                          QStringLiteral("thirtyRadioBtn")}));
    QCOMPARE(f.calibrationTexts(), (QStringList{QStringLiteral("12345678"), QString(), QString(),
                                                QStringLiteral("00012345"), QString(), QString()}));
    QCOMPARE(f.enabledAddressEdits(), 16);
    QVERIFY(!f.dialog.isFinished);
}

void TestConnection::connectsToTheChosenEntry() {
    SettingsFixture f({SettingsFixture::instrument(), SettingsFixture::instrument(42)});
    f.controller->GetDevicePortList();
    f.dialog.connectDevice(1, true);

    const QJsonObject arguments = SettingsFixture::argumentsOf(QStringLiteral("KVA_Connect"));
    QCOMPARE(arguments[QStringLiteral("serialNumber")].toInt(), 42);
    QCOMPARE(arguments[QStringLiteral("wait")].toInt(), 10);
    QCOMPARE(f.identity().constFirst(), QStringLiteral("00000042"));
}

void TestConnection::showsTheSwitches_data() {
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("wireless");
    QTest::addColumn<QString>("dhcp");
    QTest::addColumn<int>("enabledEdits");
    const QString on = QStringLiteral("enableRadioBtn");
    const QString off = QStringLiteral("disableRadioBtn");
    const QString dhcpOn = QStringLiteral("dhcpOnRadioBtn");
    const QString dhcpOff = QStringLiteral("dhcpOffRadioBtn");
    QTest::newRow("both off") << QByteArray(R"("APConnectUse": 0, "DHCPUse": 0)") << off << dhcpOff
                              << 16;
    QTest::newRow("wireless on") << QByteArray(R"("APConnectUse": 1, "DHCPUse": 0)") << on
                                 << dhcpOff << 16;
    QTest::newRow("DHCP on") << QByteArray(R"("APConnectUse": 0, "DHCPUse": 1)") << off << dhcpOn
                             << 0;
    QTest::newRow("both on") << QByteArray(R"("APConnectUse": 1, "DHCPUse": 1)") << on << dhcpOn
                             << 0;
    QTest::newRow("any value but 0 is on")
        << QByteArray(R"("APConnectUse": 2, "DHCPUse": 4294967295)") << on << dhcpOn << 0;
}

void TestConnection::showsTheSwitches() {
    QFETCH(QByteArray, settings);
    QFETCH(QString, wireless);
    QFETCH(QString, dhcp);
    SettingsFixture f;
    QVERIFY(f.set(R"({"network": {"active": {)" + settings + "}}}"));
    QVERIFY(f.connectFirst());

    QCOMPARE(f.checked().mid(0, 2), (QStringList{wireless, dhcp}));
    QTEST(f.enabledAddressEdits(), "enabledEdits");
    QCOMPARE(f.networkTexts(), filledNetworkTexts());
}

void TestConnection::showsThePowerOffMode_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("disabled") << 0 << QStringList(QStringLiteral("invalidradioBtn"));
    QTest::newRow("15 minutes") << 1 << QStringList(QStringLiteral("fifteenRadioBtn"));
    QTest::newRow("30 minutes") << 2 << QStringList(QStringLiteral("thirtyRadioBtn"));
    QTest::newRow("60 minutes") << 3 << QStringList(QStringLiteral("sixtyRadioBtn"));
    QTest::newRow("first unknown") << 4 << QStringList();
    QTest::newRow("last unknown") << 255 << QStringList();
}

void TestConnection::showsThePowerOffMode() {
    QFETCH(int, mode);
    SettingsFixture f;
    QVERIFY(f.set("{\"powerOffMode\": " + QByteArray::number(mode) + '}'));
    f.controller->GetDevicePortList();
    f.dialog.connectDevice(0, false);

    QTEST(QStringList(f.checked().mid(2)), "buttons");
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines().constLast(),
             QStringLiteral("KVA_GetShutdownTime() success[mode:%1].\n").arg(mode));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestConnection::takesWarningsForSuccess() {
    SettingsFixture f;
    QVERIFY(f.answer(QStringLiteral("*"), KVA_WARNING_BATTERY_EMPTY));
    f.controller->GetDevicePortList();
    f.clearRecords();
    f.dialog.connectDevice(0, false);

    QCOMPARE(f.calls(), SettingsFixture::connectCalls());
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QCOMPARE(f.networkTexts(), filledNetworkTexts());
}

void TestConnection::takesAnyModuleFlagForAModule() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"wirelessModule": 255})"));
    f.controller->GetDevicePortList();
    f.dialog.connectDevice(0, false);

    QCOMPARE(f.lines()[1], QStringLiteral("  wifiModuleEnable :      255\n"));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QCOMPARE(f.networkTexts(), filledNetworkTexts());
}

// Whatever comes of a connection: values are only sent from a file that was chosen afterwards.
void TestConnection::asksForAValueFileAgain() {
    for (const int portNum : {-1, 0, 3}) {
        SettingsFixture f;
        f.controller->GetDevicePortList();
        auto& white = f.child(QStringLiteral("setWCPValPushBtn"));
        auto& adapter = f.child(QStringLiteral("setAmbAdpBodyPushBtn"));
        white.setEnabled(true);
        adapter.setEnabled(true);
        f.dialog.connectDevice(portNum, false);
        QVERIFY(!white.isEnabledTo(white.parentWidget()));
        QVERIFY(!adapter.isEnabledTo(adapter.parentWidget()));
    }
}

void TestConnection::enablesTheTabs() {
    SettingsFixture f;
    f.child(QStringLiteral("setBasetabWidget")).setEnabled(false);
    QVERIFY(f.connectFirst());
    QVERIFY(f.child(QStringLiteral("setBasetabWidget")).isEnabled());
}

QTEST_MAIN(TestConnection)
#include "tst_connection.moc"
