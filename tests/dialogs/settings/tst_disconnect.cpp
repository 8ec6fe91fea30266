#include "tests/dialogs/settings/SettingsFixture.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

/** The Disconnect and Close buttons, and the not-connected state that a connection ends in. */
class TestDisconnect : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void disconnects();
    void resetsTheSwitches_data();
    void resetsTheSwitches();
    void keepsASwitchThatIsTheOnlyOne();
    void resetsTypedAndChosen();
    void closedWhileConnecting();
    void forgetsTheValueFiles();
    void failingDisconnect();
    void disconnectWithoutConnection();
    void connectsAgain();
    void closesWithoutConnection_data();
    void closesWithoutConnection();
    void closesWhileConnected_data();
    void closesWhileConnected();
    void closesAfterALoss();
};

namespace {

const QString disconnectButton = QStringLiteral("disConnectPushBtn");
const QString disconnectCall = QStringLiteral("KVA_Disconnect");

const QStringList emptyNetworkTexts = {QString(),
                                       QString(),
                                       QStringLiteral("..."),
                                       QStringLiteral("..."),
                                       QStringLiteral("..."),
                                       QStringLiteral("...")};

const QStringList radioButtons = {
    QStringLiteral("enableRadioBtn"),  QStringLiteral("disableRadioBtn"),
    QStringLiteral("dhcpOnRadioBtn"),  QStringLiteral("dhcpOffRadioBtn"),
    QStringLiteral("invalidradioBtn"), QStringLiteral("fifteenRadioBtn"),
    QStringLiteral("thirtyRadioBtn"),  QStringLiteral("sixtyRadioBtn")};

} // namespace

void TestDisconnect::disconnects() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.click(disconnectButton);

    QCOMPARE(f.calls(), QStringList(disconnectCall));
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QCOMPARE(f.identity().join(QString()), QString());
    QCOMPARE(f.networkTexts(), emptyNetworkTexts);
    QCOMPARE(f.calibrationTexts().join(QString()), QString());
    QVERIFY(!watchOf(f.dialog).isActive());
    QVERIFY(!f.controller->m_connected);
    QVERIFY(!f.dialog.isFinished);
    QVERIFY(f.dialog.isVisible());
}

void TestDisconnect::resetsTheSwitches_data() {
    QTest::addColumn<QByteArray>("patch");
    QTest::addColumn<QStringList>("before");
    const QString enable = QStringLiteral("enableRadioBtn");
    const QString disable = QStringLiteral("disableRadioBtn");
    const QStringList dhcp = {QStringLiteral("dhcpOffRadioBtn"), QStringLiteral("dhcpOnRadioBtn")};
    for (int mode = 0; mode <= 4; ++mode) {
        const int wireless = mode % 2;
        const int dhcpUse = mode / 2 % 2;
        const QByteArray patch =
            QByteArrayLiteral("{\"powerOffMode\": ") + QByteArray::number(mode) +
            ", \"network\": {\"active\": {\"APConnectUse\": " + QByteArray::number(wireless) +
            ", \"DHCPUse\": " + QByteArray::number(dhcpUse) + "}}}";
        QStringList before = {wireless == 1 ? enable : disable, dhcp[dhcpUse]};
        before += radioButtons.mid(4 + mode, 1);
        QTest::addRow("mode %d", mode) << patch << before;
    }
}

void TestDisconnect::resetsTheSwitches() {
    QFETCH(QByteArray, patch);
    SettingsFixture f;
    QVERIFY(f.set(patch.constData()));
    QVERIFY(f.connectFirst());
    QTEST(f.checked(), "before");
    f.click(disconnectButton);

    QCOMPARE(f.checked(), QStringList());
    for (const QString& name : radioButtons)
        QVERIFY2(f.child<QRadioButton>(name).isCheckable(), qPrintable(name));
}

// The switch of the wireless LAN is unchecked directly: Qt lets that happen as long as another
// button inside its group box is checked, which those of DHCP are, but not to a button that is
// the only one.
void TestDisconnect::keepsASwitchThatIsTheOnlyOne() {
    SettingsFixture f;
    QVERIFY(f.answer(QStringLiteral("KVA_GetNetworkInfo")));
    QVERIFY(f.connectFirst());
    f.click(QStringLiteral("disableRadioBtn"));
    f.click(disconnectButton);

    QCOMPARE(f.checked(), QStringList(QStringLiteral("disableRadioBtn")));
    QVERIFY(f.child<QRadioButton>(QStringLiteral("disableRadioBtn")).isCheckable());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
}

// While a message is open, as macOS' Quit does: first the message, then the window.
void TestDisconnect::closedWhileConnecting() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"wirelessModule": false})"));
    f.controller->GetDevicePortList();
    f.answers.onBox = [&](QMessageBox&) { f.dialog.close(); };
    f.dialog.connectDevice(0, false);

    QVERIFY(f.dialog.isFinished);
    QVERIFY(!f.controller->m_connected);
    QCOMPARE(f.calls().constLast(), disconnectCall);
    QCOMPARE(f.calls().count(disconnectCall), 1);
    QVERIFY(!watchOf(f.dialog).isActive());
}

void TestDisconnect::resetsTypedAndChosen() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.child<QLineEdit>(QStringLiteral("SSIDlineEdit")).setText(QStringLiteral("typed"));
    f.child<QLineEdit>(QStringLiteral("passwdlineEdit")).setText(QStringLiteral("typed"));
    for (QLineEdit* edit : f.addressEdits())
        edit->setText(QStringLiteral("9"));
    for (const char* name : {"selWCPFileNamelabel", "selFileSerialNolabel", "selAmbAdpFnamelabel",
                             "selAmbAdpFSerialNolabel"})
        f.child<QLabel>(QLatin1String(name)).setText(QStringLiteral("shown"));
    f.click(disconnectButton);

    QCOMPARE(f.networkTexts(), emptyNetworkTexts);
    QCOMPARE(f.calibrationTexts().join(QString()), QString());
}

// After a connection has ended, what was chosen during it is not sent any more.
void TestDisconnect::forgetsTheValueFiles() {
    SettingsFixture f;
    QTemporaryDir folder;
    QVERIFY(f.connectFirst(SettingsFixture::WhitePlate));
    for (const char* name : {"white.csv", "adapter.csv"}) {
        QFile file(folder.filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    // Refused files: their paths are kept all the same, as long as the connection lasts.
    f.answers.willChoose(folder.filePath(QStringLiteral("white.csv")));
    f.click(QStringLiteral("selWCPFilePushBtn"));
    f.openPage(SettingsFixture::AmbientAdapter);
    f.answers.willChoose(folder.filePath(QStringLiteral("adapter.csv")));
    f.click(QStringLiteral("selAmbLightAdpFilePushBtn"));
    f.click(disconnectButton);
    f.clearRecords();

    f.invoke("on_setWCPValPushBtn_clicked");
    f.invoke("on_setAmbAdpBodyPushBtn_clicked");
    QCOMPARE(f.boxes(),
             (QStringList{QStringLiteral("error: Failed to write WhiteCalibPlate file."),
                          QStringLiteral("error: Failed to write AmbientLightAdapter file.")}));
    QCOMPARE(f.calls(), QStringList());
}

void TestDisconnect::failingDisconnect() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    QVERIFY(f.answer(disconnectCall, KVA_ERROR_DISCONNECT, 1));
    bool watching = false;
    f.answers.onBox = [&](QMessageBox&) { watching = watchOf(f.dialog).isActive(); };
    f.click(disconnectButton);

    QCOMPARE(f.boxes(), QStringList(QStringLiteral("error: Failed to device disconnect.")));
    QCOMPARE(f.calls(), QStringList(disconnectCall));
    QCOMPARE(f.lines(), QStringList(QStringLiteral("diconect error \n")));
    QCOMPARE(f.everything(), before);
    QVERIFY(watching);
    QVERIFY(watchOf(f.dialog).isActive());

    f.clearRecords();
    f.click(disconnectButton);
    QCOMPARE(f.calls(), QStringList(disconnectCall));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
}

void TestDisconnect::disconnectWithoutConnection() {
    SettingsFixture f;
    f.dialog.connectDevice(-1, false);
    const QStringList before = f.everything();
    f.invoke("on_disConnectPushBtn_clicked");

    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.everything(), before);
}

void TestDisconnect::connectsAgain() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList connected = f.everything();
    f.click(disconnectButton);
    f.clearRecords();
    f.click(QStringLiteral("ConnectPushBtn"));

    QCOMPARE(f.everything(), connected);
    QCOMPARE(f.lines(), SettingsFixture::connectLines());
    QVERIFY(watchOf(f.dialog).isActive());
}

void TestDisconnect::closesWithoutConnection_data() {
    QTest::addColumn<bool>("byButton");
    QTest::addColumn<bool>("afterDisconnect");
    QTest::newRow("button") << true << false;
    QTest::newRow("title bar") << false << false;
    QTest::newRow("button, after Disconnect") << true << true;
    QTest::newRow("title bar, after Disconnect") << false << true;
}

void TestDisconnect::closesWithoutConnection() {
    QFETCH(bool, byButton);
    QFETCH(bool, afterDisconnect);
    SettingsFixture f;
    if (afterDisconnect) {
        QVERIFY(f.connectFirst());
        f.click(disconnectButton);
    } else {
        f.dialog.connectDevice(-1, false);
        f.dialog.show();
    }
    f.clearRecords();
    const QSignalSpy finished(&f.dialog, &QDialog::finished);
    if (byButton)
        f.click(QStringLiteral("ClosePushBtn"));
    else
        QVERIFY(f.dialog.close());

    QVERIFY(f.dialog.isFinished);
    QVERIFY(!f.dialog.isVisible());
    QCOMPARE(finished.count(), 1); // closed as any dialog is
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.boxes(), QStringList());
}

void TestDisconnect::closesWhileConnected_data() {
    QTest::addColumn<bool>("byTitleBar");
    QTest::addColumn<bool>("fails");
    QTest::newRow("title bar") << true << false;
    QTest::newRow("title bar, Disconnect fails") << true << true;
    QTest::newRow("slot") << false << false;
    QTest::newRow("slot, Disconnect fails") << false << true;
}

void TestDisconnect::closesWhileConnected() {
    QFETCH(bool, byTitleBar);
    QFETCH(bool, fails);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    if (fails)
        QVERIFY(f.answer(disconnectCall));
    bool openBehindTheBox = false;
    f.answers.onBox = [&](QMessageBox&) {
        openBehindTheBox = f.dialog.isVisible() && !f.dialog.isFinished;
    };
    if (byTitleBar)
        QVERIFY(f.dialog.close());
    else
        f.invoke("on_ClosePushBtn_clicked");

    QVERIFY(f.dialog.isFinished);
    QVERIFY(!f.dialog.isVisible());
    QVERIFY(!watchOf(f.dialog).isActive());
    QCOMPARE(f.calls(), QStringList(disconnectCall));
    const QString text = QStringLiteral("error: Failed to disconnect device.");
    QCOMPARE(f.boxes(), fails ? QStringList(text) : QStringList());
    QCOMPARE(f.lines(), fails ? QStringList(QStringLiteral("diconect error \n")) : QStringList());
    QCOMPARE(openBehindTheBox, fails);

    // Closed once and for all: nothing is left to disconnect.
    f.clearRecords();
    f.dialog.close();
    f.invoke("on_disConnectPushBtn_clicked");
    QCOMPARE(f.calls(), QStringList());
}

// The watch leaves the controller's view of the connection alone; the dialog's own counts.
void TestDisconnect::closesAfterALoss() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    SettingsFixture::emitEvent(eEventCode_DisConnect);
    f.invoke("timerHit");
    QVERIFY(f.controller->m_connected);
    f.clearRecords();
    f.click(QStringLiteral("ClosePushBtn"));

    QVERIFY(f.dialog.isFinished);
    QVERIFY(!f.dialog.isVisible());
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.boxes(), QStringList());
}

QTEST_MAIN(TestDisconnect)
#include "tst_disconnect.moc"
