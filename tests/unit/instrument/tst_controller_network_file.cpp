#include "tests/support/DebugLog.h"
#include "tests/unit/instrument/InstrumentBench.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const char settings[] = "[Network]\n"
                        "; 0:eDHCP_OFF, 1:eDHCP_ON\n"
                        "DHCPUse=1\n"
                        "IPAddress=10.0.100.255\n"
                        "SubnetMask=255.255.0.0\n"
                        "DefaultGateway=10.0.0.1\n"
                        "SSID=hall 2\n"
                        "EncryptKey=secret\n"
                        "DNS=1.2.3.4\n"
                        "; 0:eAPConnect_OFF, 1:eAPConnect_ON\n"
                        "APConnectUse=0\n";

QByteArray settingsWith(const char* before, const char* after) {
    return QByteArray(settings).replace(before, after);
}

const QString failedToRead = QStringLiteral("Failed to read networkInfo parameter data. \n");

/** Whether the texts are as a failed read leaves them. */
bool isCleared(const CKvaSdk_Ctrl& controller) {
    return controller.m_ssid.isEmpty() && controller.m_encryptKey.isEmpty() &&
           controller.m_ipAddress.isEmpty() && controller.m_subnetMask.isEmpty() &&
           controller.m_defaultGateway.isEmpty() && controller.m_dns.isEmpty();
}

} // namespace

class TestControllerNetworkFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void readsFile();
    void refusesFile_data();
    void refusesFile();
    void refusesFlagAboveOne_data();
    void refusesFlagAboveOne();
    void refusesMissingFile();
    void failedReadReplacesTheInstrumentsSettings();
    void writesFile();
    void failsToWrite();
    void readsWhatItWrote();

private:
    QByteArray path(const char* name) const {
        return QFile::encodeName(m_folder->filePath(QString::fromLatin1(name)));
    }
    QByteArray writeFile(const QByteArray& content) const {
        return InstrumentBench::writeFile(m_folder->filePath(QStringLiteral("network.ini")),
                                          content);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestControllerNetworkFile::init() {
    QVERIFY2(InstrumentBench::load(), KvaSim_LastError());
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void TestControllerNetworkFile::cleanup() {
    m_folder.reset();
}

void TestControllerNetworkFile::readsFile() {
    const QByteArray file = writeFile(settings);
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY(controller.ReadNetworkInfoFile(file.constData()));
    const QByteArray expected =
        QByteArray::fromHex("00000000010000000a0064ffffff00000a00000101020304") +
        QByteArray("hall 2").leftJustified(33, '\0') + QByteArray("secret").leftJustified(67, '\0');
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), expected);
    QVERIFY(!controller.m_apConnectUse);
    QVERIFY(controller.m_dhcpUse);
    QCOMPARE(controller.m_ssid, QStringLiteral("hall 2"));
    QCOMPARE(controller.m_encryptKey, QStringLiteral("secret"));
    QCOMPARE(controller.m_ipAddress.join(u'|'), QStringLiteral("10|0|100|255"));
    QCOMPARE(controller.m_subnetMask.join(u'|'), QStringLiteral("255|255|0|0"));
    QCOMPARE(controller.m_defaultGateway.join(u'|'), QStringLiteral("10|0|0|1"));
    QCOMPARE(controller.m_dns.join(u'|'), QStringLiteral("1|2|3|4"));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), QStringList());
}

void TestControllerNetworkFile::refusesFile_data() {
    QTest::addColumn<QByteArray>("content");
    const QByteArray longName = "SSID=" + QByteArray(33, 's') + '\n';
    const QByteArray longKey = "EncryptKey=" + QByteArray(65, 'k') + '\n';
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("no section") << settingsWith("[Network]\n", "");
    QTest::newRow("last key missing") << settingsWith("APConnectUse=0\n", "");
    QTest::newRow("empty SSID") << settingsWith("SSID=hall 2\n", "SSID=\n");
    QTest::newRow("empty key") << settingsWith("EncryptKey=secret\n", "EncryptKey=\n");
    QTest::newRow("SSID of 33 bytes") << settingsWith("SSID=hall 2\n", longName.constData());
    QTest::newRow("key of 65 bytes") << settingsWith("EncryptKey=secret\n", longKey.constData());
}

void TestControllerNetworkFile::refusesFile() {
    QFETCH(QByteArray, content);
    const QByteArray file = writeFile(content);
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    const DebugLog log;
    QVERIFY(!controller.ReadNetworkInfoFile(file.constData()));
    QVERIFY(isCleared(controller));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList(failedToRead));
    QCOMPARE(log.others(), QStringList());
}

void TestControllerNetworkFile::refusesFlagAboveOne_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<quint32>("apConnectUse");
    QTest::addColumn<quint32>("dhcpUse");
    QTest::newRow("APConnectUse 2") << settingsWith("APConnectUse=0", "APConnectUse=2") << 2U << 1U;
    QTest::newRow("APConnectUse -1")
        << settingsWith("APConnectUse=0", "APConnectUse=-1") << 4294967295U << 1U;
    QTest::newRow("APConnectUse 256")
        << settingsWith("APConnectUse=0", "APConnectUse=256") << 256U << 1U;
    QTest::newRow("DHCPUse 2") << settingsWith("DHCPUse=1", "DHCPUse=2") << 0U << 2U;
    QTest::newRow("DHCPUse -1") << settingsWith("DHCPUse=1", "DHCPUse=-1") << 0U << 4294967295U;
}

void TestControllerNetworkFile::refusesFlagAboveOne() {
    QFETCH(QByteArray, content);
    const QByteArray file = writeFile(content);
    CKvaSdk_Ctrl controller;
    controller.m_lastResult = 4;
    const DebugLog log;
    QVERIFY(!controller.ReadNetworkInfoFile(file.constData()));
    QVERIFY(isCleared(controller));
    // The record keeps the file's values.
    QTEST(controller.m_networkInfo.APConnectUse, "apConnectUse");
    QTEST(controller.m_networkInfo.DHCPUse, "dhcpUse");
    QCOMPARE(QByteArray(controller.m_networkInfo.SSID), QByteArray("hall 2"));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
}

void TestControllerNetworkFile::refusesMissingFile() {
    CKvaSdk_Ctrl controller;
    const DebugLog log;
    QVERIFY(!controller.ReadNetworkInfoFile(path("none.ini").constData()));
    QVERIFY(isCleared(controller));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    QCOMPARE(log.lines(), QStringList(failedToRead));
}

void TestControllerNetworkFile::failedReadReplacesTheInstrumentsSettings() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetNetworkInfo());
    QVERIFY(!controller.ReadNetworkInfoFile(path("none.ini").constData()));
    QVERIFY(isCleared(controller));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
}

void TestControllerNetworkFile::writesFile() {
    CKvaSdk_Ctrl controller;
    QVERIFY(InstrumentBench::connect(controller));
    QVERIFY(controller.GetNetworkInfo());
    const QByteArray record = InstrumentBench::bytesOf(controller.m_networkInfo);
    controller.m_lastResult = 4;
    KvaSim_ClearCallLog();
    const DebugLog log;
    QVERIFY(controller.WriteNetworkInfoFile(path("out.ini").constData()));
    QFile file(m_folder->filePath(QStringLiteral("out.ini")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("[Network]\n"
                                        "; 0:eDHCP_OFF, 1:eDHCP_ON\n"
                                        "DHCPUse=0\n"
                                        "IPAddress=192.168.0.10\n"
                                        "SubnetMask=255.255.255.0\n"
                                        "DefaultGateway=192.168.0.1\n"
                                        "SSID=press-hall\n"
                                        "EncryptKey=spectral-key\n"
                                        "DNS=8.8.4.0\n"
                                        "; 0:eAPConnect_OFF, 1:eAPConnect_ON\n"
                                        "APConnectUse=1\n"));
    QCOMPARE(InstrumentBench::bytesOf(controller.m_networkInfo), record);
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(log.others(), QStringList());
    QCOMPARE(InstrumentBench::calls(), QStringList());
}

void TestControllerNetworkFile::failsToWrite() {
    CKvaSdk_Ctrl controller;
    controller.SetSSID("kept");
    controller.m_lastResult = 4;
    const DebugLog log;
    QVERIFY(!controller.WriteNetworkInfoFile(path("none/out.ini").constData()));
    QCOMPARE(QByteArray(controller.m_networkInfo.SSID), QByteArray("kept"));
    QCOMPARE(controller.m_lastResult, 4);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("Failed to write network setting file. \n")));
    QCOMPARE(log.others(), QStringList());
}

void TestControllerNetworkFile::readsWhatItWrote() {
    CKvaSdk_Ctrl controller;
    const uint8_t octets[] = {0, 9, 99, 255};
    controller.m_networkInfo.APConnectUse = 1;
    controller.m_networkInfo.DHCPUse = 1;
    controller.SetIPAddress(octets);
    controller.SetDNS(octets);
    controller.SetSSID(QByteArray(32, 's').constData());
    controller.SetEncryptKey(QByteArray(64, 'k').constData());
    const QByteArray record = InstrumentBench::bytesOf(controller.m_networkInfo);
    QVERIFY(controller.WriteNetworkInfoFile(path("out.ini").constData()));
    CKvaSdk_Ctrl other;
    QVERIFY(other.ReadNetworkInfoFile(path("out.ini").constData()));
    QCOMPARE(InstrumentBench::bytesOf(other.m_networkInfo), record);
    QCOMPARE(other.m_ssid, QString(32, u's'));
    QCOMPARE(other.m_encryptKey, QString(64, u'k'));
}

QTEST_GUILESS_MAIN(TestControllerNetworkFile)
#include "tst_controller_network_file.moc"
