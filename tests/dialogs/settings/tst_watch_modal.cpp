#include "tests/dialogs/settings/SettingsFixture.h"

#include "simulator/KvaSim.h"

#include <QLabel>
#include <QTemporaryDir>
#include <QtTest>

/** A connection that is lost while a box or a file dialog is open: the watch goes on, and what was
    begun comes to a harmless end. */
class TestWatchModal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void duringABox_data();
    void duringABox();
    void duringTheBoxOfARegistration();
    void duringTheBoxesOfAConnection();
    void duringTheBoxOfAFailedClose();
    void fileIsNotReadAfterALoss_data();
    void fileIsNotReadAfterALoss();
    void fileDialogCancelledAfterALoss();
    void nothingIsSavedAfterALoss();

private:
    QString write(const char* name, const QByteArray& content);

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

const QString lostBox =
    QStringLiteral("error: The connection with the measuring instrument was disconnected.");

QByteArray values(int count) {
    QByteArray line = "1.5";
    for (int i = 1; i < count; ++i)
        line += ",1.5";
    return line + '\n';
}

/** Pulls the plug and waits for the watch's report on top of @p below. */
QString lose(SettingsFixture& f, QWidget& below) {
    watchOf(f.dialog).setInterval(20); // a second is long
    KvaSim_Unplug(SettingsFixture::serialNumber);
    return SettingsFixture::dismissBoxAbove(below);
}

} // namespace

void TestWatchModal::initTestCase() {
    // File dialogs start in the working directory, which must outlive them.
    QVERIFY(QDir::setCurrent(QDir::tempPath()));
}

void TestWatchModal::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QString TestWatchModal::write(const char* name, const QByteArray& content) {
    QFile file(m_folder->filePath(QLatin1String(name)));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
               ? file.fileName()
               : QString();
}

void TestWatchModal::duringABox_data() {
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("box");
    QTest::newRow("network read") << int(SettingsFixture::Network)
                                  << QStringLiteral("readBodyPushBtn")
                                  << QStringLiteral("information: Successful read body data.");
    QTest::newRow("network written")
        << int(SettingsFixture::Network) << QStringLiteral("writeBodyPushBtn")
        << QStringLiteral("information: Write successful. To reflect, after [Disconnect], turn "
                          "the power supply of the measuring instrument OFF -> ON.");
    QTest::newRow("power-off time read")
        << int(SettingsFixture::PowerOff) << QStringLiteral("getAutoPWOffPushBtn")
        << QStringLiteral("information: Successful read body data.");
    QTest::newRow("power-off time written")
        << int(SettingsFixture::PowerOff) << QStringLiteral("setAutoPWOffPushBtn")
        << QStringLiteral("information: Successful device writing.");
}

void TestWatchModal::duringABox() {
    QFETCH(int, page);
    QFETCH(QString, button);
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::Page(page)));
    QString report;
    f.answers.onBox = [&](QMessageBox& box) { report = lose(f, box); };
    f.click(button);

    QCOMPARE(report, lostBox);
    QCOMPARE(f.boxes().size(), 1);
    QTEST(f.boxes().constFirst(), "box");
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QCOMPARE(f.checked(), QStringList());
    QVERIFY(!watchOf(f.dialog).isActive());
}

// The serial number is read once more after the box: from nowhere, this time.
void TestWatchModal::duringTheBoxOfARegistration() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::WhitePlate));
    f.answers.willChoose(write("white.csv", "a\nb\n87654321\n" + values(38)));
    f.click(QStringLiteral("selWCPFilePushBtn"));
    f.clearRecords();
    QString report;
    f.answers.onBox = [&](QMessageBox& box) { report = lose(f, box); };
    f.click(QStringLiteral("setWCPValPushBtn"));

    QCOMPARE(report, lostBox);
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful device writing.")));
    QCOMPARE(f.calibrationTexts().join(QString()), QString());
    QStringList disabled = SettingsFixture::disabledWhenNotConnected();
    disabled.removeOne(QStringLiteral("setWCPValPushBtn")); // a registration ends with it enabled
    QCOMPARE(f.disabled(), disabled);
}

// Not watched yet, a loss while the dialog is being filled is found by the first tick.
void TestWatchModal::duringTheBoxesOfAConnection() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"wirelessModule": false})"));
    f.controller->GetDevicePortList();
    f.answers.onBox = [&](QMessageBox&) {
        f.answers.onBox = nullptr;
        KvaSim_Unplug(SettingsFixture::serialNumber);
        KvaSim_WaitForEvents();
    };
    f.dialog.connectDevice(0, true);
    f.dialog.show();
    QCOMPARE(f.boxes(),
             (QStringList{QStringLiteral("information: Wireless LAN is invalid."),
                          QStringLiteral("error: Failed to device WhiteCalibPlateSerialNo."),
                          QStringLiteral("error: Failed to device AmbientLightAdapterSerialNo."),
                          QStringLiteral("error: Failed to read automatic shutdown time.")}));
    QVERIFY(watchOf(f.dialog).isActive());
    f.clearRecords();
    QTRY_COMPARE_WITH_TIMEOUT(f.boxes(), QStringList(lostBox), 20000);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
}

// The watch runs until the box of the failed disconnect is gone.
void TestWatchModal::duringTheBoxOfAFailedClose() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(f.answer(QStringLiteral("KVA_Disconnect")));
    QString report;
    f.answers.onBox = [&](QMessageBox& box) { report = lose(f, box); };
    QVERIFY(f.dialog.close());

    QCOMPARE(report, lostBox);
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("error: Failed to disconnect device.")));
    QVERIFY(f.dialog.isFinished);
    QVERIFY(!f.dialog.isVisible());
    QVERIFY(!watchOf(f.dialog).isActive());
}

void TestWatchModal::fileIsNotReadAfterALoss_data() {
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("network settings")
        << int(SettingsFixture::Network) << QStringLiteral("readToFilePushBtn")
        << QByteArray("[Network]\nDHCPUse=1\nIPAddress=1.2.3.4\nSubnetMask=1.2.3.4\n"
                      "DefaultGateway=1.2.3.4\nSSID=a\nEncryptKey=b\nDNS=1.2.3.4\n"
                      "APConnectUse=1\n");
    QTest::newRow("white plate") << int(SettingsFixture::WhitePlate)
                                 << QStringLiteral("selWCPFilePushBtn")
                                 << "a\nb\n87654321\n" + values(38);
    QTest::newRow("adapter") << int(SettingsFixture::AmbientAdapter)
                             << QStringLiteral("selAmbLightAdpFilePushBtn")
                             << "a\nb\n00054321\n" + values(75);
}

void TestWatchModal::fileIsNotReadAfterALoss() {
    QFETCH(int, page);
    QFETCH(QString, button);
    QFETCH(QByteArray, content);
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::Page(page)));
    QString report;
    QStringList reset;
    f.answers.onFileDialog = [&](QFileDialog& dialog) {
        report = lose(f, dialog);
        reset = f.everything();
    };
    f.answers.willChoose(write("chosen", content));
    f.click(button);

    QCOMPARE(report, lostBox);
    QCOMPARE(f.answers.fileDialogs.size(), 1);
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.everything(), reset);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QCOMPARE(f.networkTexts().join(QString()), QStringLiteral("............"));
    QCOMPARE(f.calibrationTexts().join(QString()), QString());
    QVERIFY(f.controller->m_fileWCPSerialNo.isEmpty());
    QVERIFY(f.controller->m_fileAmbAdpSerialNo.isEmpty());

    // Nor is its path kept for a later registration.
    f.invoke("on_setWCPValPushBtn_clicked");
    f.invoke("on_setAmbAdpBodyPushBtn_clicked");
    QCOMPARE(f.boxes(),
             (QStringList{QStringLiteral("error: Failed to write WhiteCalibPlate file."),
                          QStringLiteral("error: Failed to write AmbientLightAdapter file.")}));
}

void TestWatchModal::fileDialogCancelledAfterALoss() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QString report;
    f.answers.onFileDialog = [&](QFileDialog& dialog) { report = lose(f, dialog); };
    f.answers.willCancel();
    f.click(QStringLiteral("readToFilePushBtn"));

    QCOMPARE(report, lostBox);
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
}

void TestWatchModal::nothingIsSavedAfterALoss() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QString report;
    f.answers.onFileDialog = [&](QFileDialog& dialog) { report = lose(f, dialog); };
    const QString path = m_folder->filePath(QStringLiteral("saved.ini"));
    f.answers.willChoose(path);
    f.click(QStringLiteral("writeFilePushBtn"));

    QCOMPARE(report, lostBox);
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines().filter(QStringLiteral("length:")), QStringList()); // nor is it looked at
    QVERIFY(!QFile::exists(path));
}

QTEST_MAIN(TestWatchModal)
#include "tst_watch_modal.moc"
