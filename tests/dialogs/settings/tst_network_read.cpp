#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/dialogs/settings/NetworkValues.h"
#include "tests/support/TestMain.h"

namespace {

struct Read {
    const char* name;
    QString file; ///< empty: from the body
    double wireless;
    double dhcp;
};

struct BadFile {
    const char* name;
    QByteArray content;
    bool isLogged;
};

/** A settings file with one value replaced. */
QByteArray fileWith(const QString& name, const QJsonValue& value) {
    QJsonObject values = networkValues();
    values[name] = value;
    return settingsFile(values);
}

} // namespace

Q_DECLARE_METATYPE(Read)
Q_DECLARE_METATYPE(BadFile)

/** The network tab's buttons "Read From Body" and "Read From File...". */
class TestNetworkRead : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_data() {
        addRows(QVector<Read>{
            {"body, both off", "", 0, 0},
            {"body, wireless on", "", 1, 0},
            {"body, DHCP on", "", 0, 1},
            {"body, both on", "", 1, 1},
            {"body, beyond on", "", 2, 9},
            {"file, both off", "settings.ini", 0, 0},
            {"file, wireless on", "settings.ini", 1, 0},
            {"file, DHCP on", "settings.ini", 0, 1},
            {"file, both on", "settings.ini", 1, 1},
            {"file, name without a dot", "settings", 1, 0},
            {"file, Japanese name", "設定 1.ini", 1, 0},
        });
    }

    void reads() {
        QFETCH(const Read, row);
        const QJsonObject values = networkValues(row.wireless, row.dhcp);
        ConnectedFixture f;
        f.setOctets({"x"});
        if (row.file.isEmpty())
            TestBench::set(networkPatch(values));
        const QJsonObject state = TestBench::state();
        if (row.file.isEmpty())
            f.click("readBodyPushBtn");
        else
            f.choose("readToFilePushBtn", f.folder.write(row.file, settingsFile(values)));

        const QStringList fromBody = {"information: Successful read body data.",
                                      "KVA_GetNetworkInfo"};
        const QStringList fromFile("information: Successful read file data.");
        QCOMPARE(f.records(), row.file.isEmpty() ? fromBody : fromFile);
        QCOMPARE(f.networkTexts(), networkTexts(values));
        QCOMPARE(f.checked().mid(0, 2), switchButtons(row.wireless, row.dhcp));
        QCOMPARE(f.enabledAddressEdits(), row.dhcp != 0 ? 0 : 16);
        // The page is filled before the box comes up, and no button is disabled meanwhile.
        QCOMPARE(f.atBox.everything, f.everything());
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
        QCOMPARE(TestBench::state(), state);
    }

    void readsAnEmptyKeyFromTheBody() {
        ConnectedFixture f;
        QJsonObject values = networkValues();
        values["IPAddress"] = "0.1.10.255";
        values["DefaultGateway"] = "0.0.0.0";
        values["EncryptKey"] = "";
        TestBench::set(networkPatch(values));
        f.click("readBodyPushBtn");
        QCOMPARE(f.networkTexts(), networkTexts(values));
    }

    void badFileLeavesThePage_data() {
        addRows(QVector<BadFile>{
            {"empty", "", true},
            {"another section", settingsFile().replace("[Network]", "[Other]"), true},
            {"no SSID", fileWith("SSID", ""), true},
            {"no key", fileWith("EncryptKey", ""), true},
            {"SSID of 33 bytes", fileWith("SSID", QString(33, 's')), true},
            {"key of 65 bytes", fileWith("EncryptKey", QString(65, 'k')), true},
            {"wireless use of 2", fileWith("APConnectUse", 2), false},
            {"DHCP use of 2", fileWith("DHCPUse", 2), false},
            {"negative use", fileWith("APConnectUse", -1), false},
        });
    }

    void badFileLeavesThePage() {
        QFETCH(const BadFile, row);
        ConnectedFixture f;
        f.setOctets({"1x"});
        const QStringList before = f.everything();
        f.choose("readToFilePushBtn", f.folder.write("bad.ini", row.content));

        QStringList expected("error: Failed to read Network Infomation file data.");
        if (row.isLogged)
            expected << "Failed to read networkInfo parameter data. \n";
        QCOMPARE(f.records(), expected);
        QCOMPARE(f.everything(), before);
    }
};

TEST_CLASS(TestNetworkRead)
#include "tst_network_read.moc"
