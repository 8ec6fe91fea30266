#include "tests/dialogs/settings/SettingsFixture.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cstring>

/** The network tab's button "Write To File...". */
class TestNetworkWriteFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void asksForAName();
    void cancelledFileDialog();
    void writesThePage_data();
    void writesThePage();
    void writesTheSwitches_data();
    void writesTheSwitches();
    void keepsSwitchesWithoutAButton();
    void writesTheShownAddressesWithDhcp();
    void invalidAddresses_data();
    void invalidAddresses();
    void cutsLongTexts();
    void unwritableFile();
    void writtenFileIsReadAgain();

private:
    QByteArray written(const QString& name) const;

    QString m_start;
    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

const QString button = QStringLiteral("writeFilePushBtn");
const QString success = QStringLiteral("information: Successful file writing.");
const QString invalid = QStringLiteral("error: The input value is invalid.");

/** What the instrument's own settings are as a file. */
QByteArray settingsFile(int wireless = 1, int dhcp = 0) {
    return "[Network]\n; 0:eDHCP_OFF, 1:eDHCP_ON\nDHCPUse=" + QByteArray::number(dhcp) +
           "\nIPAddress=192.168.0.10\nSubnetMask=255.255.255.0\nDefaultGateway=192.168.0.1\n"
           "SSID=press-hall\nEncryptKey=spectral-key\nDNS=8.8.4.0\n"
           "; 0:eAPConnect_OFF, 1:eAPConnect_ON\nAPConnectUse=" +
           QByteArray::number(wireless) + "\n";
}

const QStringList octetsOfTheInstrument = {
    QStringLiteral("192"), QStringLiteral("168"), QStringLiteral("0"),   QStringLiteral("10"),
    QStringLiteral("255"), QStringLiteral("255"), QStringLiteral("255"), QStringLiteral("0"),
    QStringLiteral("192"), QStringLiteral("168"), QStringLiteral("0"),   QStringLiteral("1"),
    QStringLiteral("8"),   QStringLiteral("8"),   QStringLiteral("4"),   QStringLiteral("0")};

} // namespace

void TestNetworkWriteFile::initTestCase() {
    m_start = QDir::currentPath();
}

void TestNetworkWriteFile::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void TestNetworkWriteFile::cleanup() {
    QVERIFY(QDir::setCurrent(m_start));
}

QByteArray TestNetworkWriteFile::written(const QString& name) const {
    QFile file(m_folder->filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

void TestNetworkWriteFile::asksForAName() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.click(button);

    QCOMPARE(f.answers.fileDialogs.size(), 1);
    const ModalAnswerer::FileDialog& shown = f.answers.fileDialogs[0];
    QCOMPARE(shown.caption, QStringLiteral("Save"));
    QCOMPARE(shown.directory, QDir::currentPath());
    QCOMPARE(shown.nameFilters, QStringList(QStringLiteral("ini(*.ini)")));
    QCOMPARE(shown.selectedNameFilter, QStringLiteral("ini(*.ini)"));
    QCOMPARE(shown.acceptMode, QFileDialog::AcceptSave);
    QCOMPARE(shown.options, QFileDialog::Options());
    QCOMPARE(shown.parent, &f.dialog);
}

void TestNetworkWriteFile::cancelledFileDialog() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.setOctets({}); // would be invalid, but is not looked at
    const QStringList before = f.everything();
    f.answers.willCancel();
    f.click(button);

    QCOMPARE(f.answers.fileDialogs.size(), 1);
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(f.everything(), before);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList());
}

void TestNetworkWriteFile::writesThePage_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("with its extension") << QStringLiteral("saved.ini");
    QTest::newRow("no extension is added") << QStringLiteral("saved");
    QTest::newRow("another extension") << QStringLiteral("saved.txt");
    QTest::newRow("Japanese name") << QString::fromUtf8("保存 1.ini");
}

void TestNetworkWriteFile::writesThePage() {
    QFETCH(QString, name);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QJsonObject state = SettingsFixture::state();
    const QStringList before = f.everything();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = f.everything(); };
    f.answers.willChoose(m_folder->filePath(name));
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), SettingsFixture::digitLines(octetsOfTheInstrument));
    QCOMPARE(written(name), settingsFile());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList(name));
    QCOMPARE(SettingsFixture::state(), state);
    QCOMPARE(duringBox, before);
    QCOMPARE(f.everything(), before);
}

void TestNetworkWriteFile::writesTheSwitches_data() {
    QTest::addColumn<int>("wireless");
    QTest::addColumn<int>("dhcp");
    for (const int use : {0, 1}) {
        QTest::addRow("wireless %d, DHCP on", use) << use << 1;
        QTest::addRow("wireless %d, DHCP off", use) << use << 0;
    }
}

void TestNetworkWriteFile::writesTheSwitches() {
    QFETCH(int, wireless);
    QFETCH(int, dhcp);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.click(wireless == 1 ? QStringLiteral("enableRadioBtn") : QStringLiteral("disableRadioBtn"));
    f.click(dhcp == 1 ? QStringLiteral("dhcpOnRadioBtn") : QStringLiteral("dhcpOffRadioBtn"));
    f.setOctets(octetsOfTheInstrument);
    f.answers.willChoose(m_folder->filePath(QStringLiteral("saved.ini")));
    f.click(button);

    QCOMPARE(written(QStringLiteral("saved.ini")), settingsFile(wireless, dhcp));
}

void TestNetworkWriteFile::keepsSwitchesWithoutAButton() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"network": {"active": {"APConnectUse": 2, "DHCPUse": 3}}})"));
    QVERIFY(f.connectFirst());
    for (const char* name :
         {"enableRadioBtn", "disableRadioBtn", "dhcpOnRadioBtn", "dhcpOffRadioBtn"})
        f.uncheck(QLatin1String(name));
    f.answers.willChoose(m_folder->filePath(QStringLiteral("saved.ini")));
    f.click(button);

    QCOMPARE(written(QStringLiteral("saved.ini")), settingsFile(2, 3));
}

// Unlike what the instrument gets, a file gets what the page shows.
void TestNetworkWriteFile::writesTheShownAddressesWithDhcp() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    f.click(QStringLiteral("dhcpOnRadioBtn"));
    f.click(QStringLiteral("writeBodyPushBtn"));
    f.clearRecords();
    f.answers.willChoose(m_folder->filePath(QStringLiteral("saved.ini")));
    f.click(button);

    QCOMPARE(f.boxes(), QStringList(success));
    QCOMPARE(written(QStringLiteral("saved.ini")), settingsFile(1, 1));
}

void TestNetworkWriteFile::invalidAddresses_data() {
    QTest::addColumn<int>("edit");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("dhcp");
    for (int edit = 0; edit < 16; ++edit) {
        QTest::addRow("edit %d empty", edit) << edit << QString() << false;
        QTest::addRow("edit %d too great, DHCP on", edit) << edit << QStringLiteral("256") << true;
    }
    QTest::newRow("empty, DHCP on") << 0 << QString() << true;
    QTest::newRow("letter") << 3 << QStringLiteral("1a") << false;
    QTest::newRow("letter, DHCP on") << 3 << QStringLiteral("1a") << true;
    QTest::newRow("full-width") << 4 << QString::fromUtf8("１２") << false;
    QTest::newRow("sign") << 5 << QStringLiteral("-1") << false;
    QTest::newRow("blank") << 6 << QStringLiteral(" ") << false;
}

void TestNetworkWriteFile::invalidAddresses() {
    QFETCH(int, edit);
    QFETCH(QString, text);
    QFETCH(bool, dhcp);
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const KVA_NETWORKINFO record = f.controller->m_networkInfo;
    if (dhcp)
        f.click(QStringLiteral("dhcpOnRadioBtn"));
    f.addressEdits()[edit]->setText(text);
    const QStringList before = f.everything();
    QStringList duringBox;
    f.answers.onBox = [&](QMessageBox&) { duringBox = f.everything(); };
    f.answers.willChoose(m_folder->filePath(QStringLiteral("saved.ini")));
    f.click(button);

    QCOMPARE(f.answers.fileDialogs.size(), 1); // the name is asked for first
    QCOMPARE(f.boxes(), QStringList(invalid));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList());
    QCOMPARE(std::memcmp(&f.controller->m_networkInfo, &record, sizeof record), 0);
    QCOMPARE(duringBox, before);
    QCOMPARE(f.everything(), before);
}

void TestNetworkWriteFile::cutsLongTexts() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QString kanji = QString::fromUtf8("京");
    f.child<QLineEdit>(QStringLiteral("SSIDlineEdit")).setText(kanji.repeated(32));
    f.child<QLineEdit>(QStringLiteral("passwdlineEdit")).setText(kanji.repeated(64));
    f.answers.willChoose(m_folder->filePath(QStringLiteral("saved.ini")));
    f.click(button);

    QByteArray expected = settingsFile();
    expected.replace("press-hall", kanji.repeated(32).toUtf8().left(32));
    expected.replace("spectral-key", kanji.repeated(64).toUtf8().left(64));
    QCOMPARE(written(QStringLiteral("saved.ini")), expected);
}

void TestNetworkWriteFile::unwritableFile() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    f.answers.willChoose(m_folder->filePath(QStringLiteral("no-such-folder/saved.ini")));
    f.click(button);

    QCOMPARE(f.boxes(),
             QStringList(QStringLiteral("error: Failed to write Network Infomation file data.")));
    QCOMPARE(f.lines(), SettingsFixture::digitLines(octetsOfTheInstrument)
                            << QStringLiteral("Failed to write network setting file. \n"));
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.everything(), before);
}

void TestNetworkWriteFile::writtenFileIsReadAgain() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList before = f.everything();
    const QString path = m_folder->filePath(QStringLiteral("saved.ini"));
    f.answers.willChoose(path);
    f.click(button);
    f.click(QStringLiteral("disableRadioBtn"));
    f.click(QStringLiteral("dhcpOffRadioBtn"));
    f.child<QLineEdit>(QStringLiteral("SSIDlineEdit")).clear();
    f.child<QLineEdit>(QStringLiteral("passwdlineEdit")).clear();
    f.answers.willChoose(path);
    f.click(QStringLiteral("readToFilePushBtn"));

    QCOMPARE(f.boxes(),
             (QStringList{success, QStringLiteral("information: Successful read file data.")}));
    QCOMPARE(f.everything(), before);
}

QTEST_MAIN(TestNetworkWriteFile)
#include "tst_network_write_file.moc"
