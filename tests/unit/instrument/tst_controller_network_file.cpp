#include "tests/unit/files/NetworkFixture.h"
#include "tests/unit/instrument/ControllerFixture.h"

namespace {

const QByteArray settings = iniSetting("DHCPUse", "1")
                                .replace("192.168.0.10", "10.0.100.255")
                                .replace("255.255.255.0", "255.255.0.0")
                                .replace("192.168.0.1\n", "10.0.0.1\n")
                                .replace("Lab 5", "hall 2")
                                .replace("pass word=1", "secret")
                                .replace("8.8.4.4", "1.2.3.4")
                                .replace("APConnectUse=1", "APConnectUse=0");

QByteArray settingsWith(const QByteArray& before, const QByteArray& after) {
    return QByteArray(settings).replace(before, after);
}

const QString failedToRead = "Failed to read networkInfo parameter data. \n";

/** A file that is refused. */
struct RefusedRow {
    const char* name;
    QByteArray content;                 ///< null: there is no file
    QStringList lines = {failedToRead}; ///< logged
    /** What the record keeps when only the flags are wrong. */
    quint32 apConnectUse = 0;
    quint32 dhcpUse = 0;
};

const RefusedRow refusedFiles[] = {
    {"no file", {}},
    {"empty file", ""},
    {"no section", settingsWith("[Network]\n", "")},
    {"last key missing", settingsWith("APConnectUse=0\n", "")},
    {"empty SSID", settingsWith("SSID=hall 2\n", "SSID=\n")},
    {"empty key", settingsWith("EncryptKey=secret\n", "EncryptKey=\n")},
    {"SSID of 33 bytes", settingsWith("hall 2", QByteArray(33, 's'))},
    {"key of 65 bytes", settingsWith("secret", QByteArray(65, 'k'))},
    {"APConnectUse 2", settingsWith("APConnectUse=0", "APConnectUse=2"), {}, 2, 1},
    {"APConnectUse -1", settingsWith("APConnectUse=0", "APConnectUse=-1"), {}, 4294967295, 1},
    {"APConnectUse 256", settingsWith("APConnectUse=0", "APConnectUse=256"), {}, 256, 1},
    {"DHCPUse 2", settingsWith("DHCPUse=1", "DHCPUse=2"), {}, 0, 2},
    {"DHCPUse -1", settingsWith("DHCPUse=1", "DHCPUse=-1"), {}, 0, 4294967295},
};

} // namespace

class TestControllerNetworkFile : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void init() { TestBench::load(); }

    void readsFile() {
        const QByteArray path = localFile(m_folder, settings);
        LoggedController controller;
        QVERIFY(controller.ReadNetworkInfoFile(path));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo),
                 QByteArray::fromHex("00000000010000000a0064ffffff00000a00000101020304") +
                     QByteArray("hall 2").leftJustified(33, '\0') +
                     QByteArray("secret").leftJustified(67, '\0'));
        QVERIFY(!controller.m_apConnectUse);
        QVERIFY(controller.m_dhcpUse);
        QCOMPARE(controller.m_ssid, "hall 2");
        QCOMPARE(controller.m_encryptKey, "secret");
        QCOMPARE(addresses(controller),
                 QStringList({"10|0|100|255", "255|255|0|0", "10|0|0|1", "1|2|3|4"}));
        QCOMPARE(controller.left(), QStringList("4"));
    }

    void refusesFile_data() { addRows(refusedFiles); }
    void refusesFile() {
        const auto row = rowOf<RefusedRow>();
        const QByteArray path = localFile(m_folder, row.content);
        LoggedController controller;
        QVERIFY(!controller.ReadNetworkInfoFile(path));
        QVERIFY(hasNoNetworkTexts(controller));
        if (row.lines.isEmpty()) {
            QCOMPARE(controller.m_networkInfo.APConnectUse, row.apConnectUse);
            QCOMPARE(controller.m_networkInfo.DHCPUse, row.dhcpUse);
            QCOMPARE(controller.m_networkInfo.SSID, "hall 2");
        }
        if (row.content.isNull())
            QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
        QCOMPARE(controller.left(), QStringList("4") + row.lines);
    }

    void failedReadReplacesTheInstrumentsSettings() {
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        QVERIFY(!controller.ReadNetworkInfoFile(localFile(m_folder, {})));
        QVERIFY(hasNoNetworkTexts(controller));
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), QByteArray(124, '\0'));
    }

    void writesFile() {
        ConnectedController controller;
        QVERIFY(controller.GetNetworkInfo());
        const QByteArray record = TestBench::bytesOf(controller.m_networkInfo);
        controller.forget();
        QVERIFY(controller.WriteNetworkInfoFile(m_folder.localPath("out.ini")));
        QCOMPARE(m_folder.read("out.ini"), benchNetworkIni());
        QCOMPARE(TestBench::bytesOf(controller.m_networkInfo), record);
        QCOMPARE(controller.left(), QStringList("4"));
    }

    void failsToWrite() {
        LoggedController controller;
        controller.SetSSID("kept");
        QVERIFY(!controller.WriteNetworkInfoFile(m_folder.localPath("none/out.ini")));
        QCOMPARE(controller.m_networkInfo.SSID, "kept");
        QCOMPARE(controller.left(), QStringList({"4", "Failed to write network setting file. \n"}));
    }

    void readsWhatItWrote() {
        CKvaSdk_Ctrl controller;
        const uint8_t octets[] = {0, 9, 99, 255};
        controller.m_networkInfo.APConnectUse = 1;
        controller.m_networkInfo.DHCPUse = 1;
        controller.SetIPAddress(octets);
        controller.SetDNS(octets);
        controller.SetSSID(QByteArray(32, 's'));
        controller.SetEncryptKey(QByteArray(64, 'k'));
        const QByteArray record = TestBench::bytesOf(controller.m_networkInfo);
        QVERIFY(controller.WriteNetworkInfoFile(m_folder.localPath("out.ini")));
        CKvaSdk_Ctrl other;
        QVERIFY(other.ReadNetworkInfoFile(m_folder.localPath("out.ini")));
        QCOMPARE(TestBench::bytesOf(other.m_networkInfo), record);
        QCOMPARE(other.m_ssid, QString(32, 's'));
        QCOMPARE(other.m_encryptKey, QString(64, 'k'));
    }

private:
    TestFolder m_folder;
};

TEST_CLASS(TestControllerNetworkFile)
#include "tst_controller_network_file.moc"
