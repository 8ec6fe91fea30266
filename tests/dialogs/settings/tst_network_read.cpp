#include "tests/dialogs/settings/SettingsFixture.h"

#include <QTemporaryDir>
#include <QtTest>

/** The network tab's buttons "Read From Body" and "Read From File...". */
class TestNetworkRead : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void readsTheBody_data();
    void readsTheBody();
    void readsTheBodyWithAWarning();
    void failingBodyLeavesThePage();
    void asksForAFile();
    void readsAFile_data();
    void readsAFile();
    void badFileLeavesThePage_data();
    void badFileLeavesThePage();
    void vanishedFileLeavesThePage();
    void cancelledFileDialog();

private:
    QString write(const QString& name, const QByteArray& content);

    QString m_start;
    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

const QString bodyButton = QStringLiteral("readBodyPushBtn");
const QString fileButton = QStringLiteral("readToFilePushBtn");
const QString readCall = QStringLiteral("KVA_GetNetworkInfo");
const QString fileFailure = QStringLiteral("error: Failed to read Network Infomation file data.");

QByteArray settingsFile(int wireless, int dhcp, const QByteArray& ssid = "file-name",
                        const QByteArray& key = "file-key") {
    return "[Network]\n; 0:eDHCP_OFF, 1:eDHCP_ON\nDHCPUse=" + QByteArray::number(dhcp) +
           "\nIPAddress=10.0.0.255\nSubnetMask=255.0.0.0\nDefaultGateway=10.0.0.1\nSSID=" + ssid +
           "\nEncryptKey=" + key +
           "\nDNS=1.2.3.4\n; 0:eAPConnect_OFF, 1:eAPConnect_ON\nAPConnectUse=" +
           QByteArray::number(wireless) + "\n";
}

QString wirelessButton(int use) {
    return use != 0 ? QStringLiteral("enableRadioBtn") : QStringLiteral("disableRadioBtn");
}

QString dhcpButton(int use) {
    return use != 0 ? QStringLiteral("dhcpOnRadioBtn") : QStringLiteral("dhcpOffRadioBtn");
}

} // namespace

void TestNetworkRead::initTestCase() {
    m_start = QDir::currentPath();
}

void TestNetworkRead::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void TestNetworkRead::cleanup() {
    QVERIFY(QDir::setCurrent(m_start));
}

QString TestNetworkRead::write(const QString& name, const QByteArray& content) {
    QFile file(m_folder->filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
               ? file.fileName()
               : QString();
}

void TestNetworkRead::readsTheBody_data() {
    QTest::addColumn<int>("wireless");
    QTest::addColumn<int>("dhcp");
    QTest::newRow("both off") << 0 << 0;
    QTest::newRow("wireless on") << 1 << 0;
    QTest::newRow("DHCP on") << 0 << 1;
    QTest::newRow("both on") << 1 << 1;
    QTest::newRow("beyond on") << 2 << 9;
}

void TestNetworkRead::readsTheBody() {
    QFETCH(int, wireless);
    QFETCH(int, dhcp);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.setOctets({QStringLiteral("x")});
    const QByteArray patch = R"({"network": {"active": {"IPAddress": "0.1.10.255",
        "SubnetMask": "255.255.0.0", "DefaultGateway": "0.0.0.0", "DNS": "9.8.7.6",
        "SSID": "ab c", "EncryptKey": "", "APConnectUse": )" +
                             QByteArray::number(wireless) +
                             ", \"DHCPUse\": " + QByteArray::number(dhcp) + "}}}";
    QVERIFY(f.set(patch.constData()));
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = f.everything(); };
    f.click(bodyButton);

    QCOMPARE(f.calls(), QStringList(readCall));
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful read body data.")));
    QCOMPARE(f.networkTexts(),
             (QStringList{QStringLiteral("ab c"), QString(), QStringLiteral("0.1.10.255"),
                          QStringLiteral("255.255.0.0"), QStringLiteral("0.0.0.0"),
                          QStringLiteral("9.8.7.6")}));
    QCOMPARE(f.checked().mid(0, 2), (QStringList{wirelessButton(wireless), dhcpButton(dhcp)}));
    QCOMPARE(f.enabledAddressEdits(), dhcp != 0 ? 0 : 16);
    // Filled before the box comes up, and no button is disabled meanwhile.
    QCOMPARE(duringBox, f.everything());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestNetworkRead::readsTheBodyWithAWarning() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(f.answer(readCall, KVA_WARNING_WCALIB_TEMP));
    const QStringList before = f.everything();
    f.setOctets({});
    f.click(bodyButton);
    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful read body data.")));
    QCOMPARE(f.everything(), before);
}

void TestNetworkRead::failingBodyLeavesThePage() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(f.answer(readCall, KVA_ERROR_COMMUNICATION_RECEIVE));
    f.click(QStringLiteral("dhcpOnRadioBtn"));
    f.setOctets({QStringLiteral("1x")});
    const QStringList before = f.everything();
    f.click(bodyButton);

    QCOMPARE(f.boxes(),
             QStringList(QStringLiteral("error: Failed to read Network Infomation data.")));
    QCOMPARE(f.calls(), QStringList(readCall));
    QCOMPARE(f.lines(), QStringList(QStringLiteral("Failed to KVA_GetNetworkInfo(). \n")));
    QCOMPARE(f.everything(), before);
}

void TestNetworkRead::asksForAFile() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QString name = QStringLiteral("not looked at");
    f.answers.onFileDialog = [&](QFileDialog& dialog) {
        name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
    };
    f.click(fileButton);

    QCOMPARE(name, QString());
    QCOMPARE(f.answers.fileDialogs.size(), 1);
    const ModalAnswerer::FileDialog& shown = f.answers.fileDialogs[0];
    QCOMPARE(shown.caption, QStringLiteral("Open"));
    QCOMPARE(shown.directory, QDir::currentPath());
    QCOMPARE(shown.nameFilters, QStringList(QStringLiteral("*(*.*)")));
    QCOMPARE(shown.selectedNameFilter, QStringLiteral("*(*.*)"));
    QCOMPARE(shown.acceptMode, QFileDialog::AcceptOpen);
    QCOMPARE(shown.options, QFileDialog::Options());
    QCOMPARE(shown.parent, &f.dialog);
}

void TestNetworkRead::readsAFile_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("wireless");
    QTest::addColumn<int>("dhcp");
    QTest::newRow("both off") << QStringLiteral("settings.ini") << 0 << 0;
    QTest::newRow("wireless on") << QStringLiteral("settings.ini") << 1 << 0;
    QTest::newRow("DHCP on") << QStringLiteral("settings.ini") << 0 << 1;
    QTest::newRow("both on") << QStringLiteral("settings.ini") << 1 << 1;
    QTest::newRow("name without a dot") << QStringLiteral("settings") << 1 << 0;
    QTest::newRow("Japanese name") << QString::fromUtf8("設定 1.ini") << 1 << 0;
}

void TestNetworkRead::readsAFile() {
    QFETCH(QString, name);
    QFETCH(int, wireless);
    QFETCH(int, dhcp);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QJsonObject state = SettingsFixture::state();
    f.answers.willChoose(write(name, settingsFile(wireless, dhcp)));
    f.click(fileButton);

    QCOMPARE(f.boxes(), QStringList(QStringLiteral("information: Successful read file data.")));
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.networkTexts(),
             (QStringList{QStringLiteral("file-name"), QStringLiteral("file-key"),
                          QStringLiteral("10.0.0.255"), QStringLiteral("255.0.0.0"),
                          QStringLiteral("10.0.0.1"), QStringLiteral("1.2.3.4")}));
    QCOMPARE(f.checked().mid(0, 2), (QStringList{wirelessButton(wireless), dhcpButton(dhcp)}));
    QCOMPARE(f.enabledAddressEdits(), dhcp != 0 ? 0 : 16);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QCOMPARE(SettingsFixture::state(), state);
}

void TestNetworkRead::badFileLeavesThePage_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("logged");
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("another section") << settingsFile(1, 0).replace("[Network]", "[Other]") << true;
    QTest::newRow("no SSID") << settingsFile(1, 0, "") << true;
    QTest::newRow("no key") << settingsFile(1, 0, "a", "") << true;
    QTest::newRow("SSID of 33 bytes") << settingsFile(1, 0, QByteArray(33, 's')) << true;
    QTest::newRow("key of 65 bytes") << settingsFile(1, 0, "a", QByteArray(65, 'k')) << true;
    QTest::newRow("wireless use of 2") << settingsFile(2, 0) << false;
    QTest::newRow("DHCP use of 2") << settingsFile(1, 2) << false;
    QTest::newRow("negative use") << settingsFile(-1, 0) << false;
}

void TestNetworkRead::badFileLeavesThePage() {
    QFETCH(QByteArray, content);
    QFETCH(bool, logged);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.setOctets({QStringLiteral("1x")});
    const QStringList before = f.everything();
    f.answers.willChoose(write(QStringLiteral("bad.ini"), content));
    f.click(fileButton);

    QCOMPARE(f.boxes(), QStringList(fileFailure));
    const QString line = QStringLiteral("Failed to read networkInfo parameter data. \n");
    QCOMPARE(f.lines(), logged ? QStringList(line) : QStringList());
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.everything(), before);
}

void TestNetworkRead::vanishedFileLeavesThePage() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.answers.onFileDialog = [](QFileDialog& dialog) {
        connect(&dialog, &QFileDialog::fileSelected,
                [](const QString& path) { QVERIFY(QFile::remove(path)); });
    };
    f.answers.willChoose(write(QStringLiteral("gone.ini"), settingsFile(1, 0)));
    f.click(fileButton);

    QCOMPARE(f.boxes(), QStringList(fileFailure));
    QCOMPARE(f.lines(),
             QStringList(QStringLiteral("Failed to read networkInfo parameter data. \n")));
    QCOMPARE(f.everything(), before);
}

void TestNetworkRead::cancelledFileDialog() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.answers.willCancel();
    f.click(fileButton);

    QCOMPARE(f.answers.fileDialogs.size(), 1);
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.everything(), before);
}

QTEST_MAIN(TestNetworkRead)
#include "tst_network_read.moc"
