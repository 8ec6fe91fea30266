#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/settings/ConnectedFixture.h"

namespace {

const QString connectCall = "KVA_Connect";
const QString deviceInfo = "KVA_GetDeviceInfo";
const QString options = "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA";
const QString networkInfo = "KVA_GetNetworkInfo";
const QString calibration = "KVA_JIG_GetFactoryCalib_CALREFDATA";
const QString shutdownTime = "KVA_GetShutdownTime";

const QString cannotConnectBox = "error: Failed to connect device.";
const QString cannotConnectLine = "conect error \n";
const QString noWireless = "information: Wireless LAN is invalid.";

const QStringList identity = {"01234567", "1.02.0003", "02:0A:BC:0D:EF:09"};
const QStringList network = {"press-hall",    "spectral-key", "192.168.0.10",
                             "255.255.255.0", "192.168.0.1",  "8.8.4.0"};
const QStringList plates = {"12345678", "", "", "00012345", "", ""};
const QStringList none = SettingsFixture::noTexts;
const QStringList switches = switchButtons(1, 0);
const QStringList thirty = {"thirtyRadioBtn"};

/** One call of `connectDevice`. */
struct Attempt {
    const char* name;
    int portNum;
    bool isFirstTime;
    bool isFromNotConnected;
    bool isListed; ///< whether the controller has the list of the instruments
};

struct ShownSettings {
    const char* name;
    QByteArray patch;
    QStringList checked;
    int moduleFlag;
    int mode;
};

struct FailingRead {
    const char* name;
    QByteArray patch;
    QString function; ///< the one that fails; empty: none
    QStringList records;
    QStringList disabledTabs;
    QStringList checked;
    QStringList texts;
    QStringList textsOverFormer; ///< when another connection has filled the dialog before
};

/** A fixture before a call of `connectDevice`. */
class ListedFixture : public SettingsFixture {
public:
    explicit ListedFixture(bool isFromNotConnected = false, const QByteArray& patch = "{}") {
        TestBench::set(patch);
        controller->GetDevicePortList();
        if (isFromNotConnected)
            dialog.connectDevice(-1, false);
        // Values are only sent from a file that is chosen after the attempt, whatever comes of it.
        child("setWCPValPushBtn").setEnabled(true);
        child("setAmbAdpBodyPushBtn").setEnabled(true);
        clearRecords();
        answers.onBox = [this](QMessageBox&) {
            disabledAtBoxes.insert(disabled());
            QVERIFY(!watchOf(dialog).isActive());
        };
    }

    QSet<QStringList> disabledAtBoxes;
};

} // namespace

/** Connecting to an instrument. */
class TestConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithoutConnection() {
        SettingsFixture f;
        f.dialog.show();
        QCOMPARE(f.disabled(), QStringList());
        QCOMPARE(f.checked(), QStringList());
        QVERIFY(!watchOf(f.dialog).isActive());
        QCOMPARE(watchOf(f.dialog).interval(), 1000);
        QVERIFY(!watchOf(f.dialog).isSingleShot());
        QVERIFY(!f.dialog.isFinished);
    }

    void noConnection_data() {
        addRows(QVector<Attempt>{
            {"no instrument, at start", -1, true, false, false},
            {"no instrument, later", -1, false, false, false},
            {"no instrument, any negative port", -7, false, false, false},
            {"port of an empty list, at start", 0, true, false, false},
            {"port of an empty list, later", 0, false, false, false},
            {"port behind the list", 3, true, false, false},
            {"refused, at start", 0, true, false, true},
            {"refused, later", 0, false, false, true},
            {"refused, from the not-connected state", 0, false, true, true},
            {"no such entry, at start", 1, true, false, true},
            {"no such entry, not connected", 1, false, true, true},
        });
    }

    void noConnection() {
        const auto row = rowOf<Attempt>();
        ListedFixture f(row.isFromNotConnected);
        if (!row.isListed)
            f.controller = std::make_shared<CKvaSdk_Ctrl>();
        f.dialog.setSdkCtrl(f.controller);
        f.clearRecords();
        TestBench::answer(connectCall);
        f.dialog.connectDevice(row.portNum, row.isFirstTime);

        const bool isRefused = row.isListed && row.portNum == 0;
        QCOMPARE(f.boxes(), row.portNum < 0 ? QStringList() : QStringList(cannotConnectBox));
        QCOMPARE(f.calls(), isRefused ? QStringList(connectCall) : QStringList());
        QCOMPARE(f.lines(), row.portNum < 0 ? QStringList() : QStringList(cannotConnectLine));
        if (isRefused && !row.isFromNotConnected) {
            QCOMPARE(f.disabled(), words("setWCPValPushBtn setAmbAdpBodyPushBtn"));
        } else {
            QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected);
            QCOMPARE(f.dialog.focusWidget(), &f.child("ConnectPushBtn"));
        }
        for (const QStringList& disabled : f.disabledAtBoxes)
            QCOMPARE(disabled, row.isFromNotConnected
                                   ? SettingsFixture::disabledWhenNotConnected.mid(0, 5)
                                   : QStringList());
        QCOMPARE(f.checked(), QStringList());
        QCOMPARE(f.texts(), SettingsFixture::noTexts);
        QVERIFY(!watchOf(f.dialog).isActive());
        QVERIFY(!f.dialog.isFinished);
    }

    void preparesTheWindow_data() {
        addRows(QVector<Attempt>{
            {"no instrument", -1, true, false, true},
            {"an instrument", 0, true, false, true},
            {"no such instrument", 3, true, false, true},
            {"later time leaves it", 3, false, false, true},
        });
    }

    void preparesTheWindow() {
        const auto row = rowOf<Attempt>();
        ListedFixture f;
        const Qt::WindowFlags flags = f.dialog.windowFlags();
        f.dialog.resize(1180, 730);
        f.dialog.connectDevice(row.portNum, row.isFirstTime);

        if (row.isFirstTime) {
            QCOMPARE(iconOf(f.dialog), programIcon());
            QCOMPARE(f.dialog.windowFlags(), closableFlags());
            QCOMPARE(f.dialog.minimumSize(), QSize(1180, 730));
            QCOMPARE(f.dialog.maximumSize(), QSize(1180, 730));
        } else {
            QCOMPARE(f.dialog.windowFlags(), flags);
            QVERIFY(f.dialog.minimumSize() != f.dialog.maximumSize());
        }
        QCOMPARE(f.dialog.windowIcon().isNull(), !row.isFirstTime);
        QCOMPARE(f.answers.boxes.size(), row.portNum > 0 ? 1 : 0);
        for (const ModalAnswerer::Box& box : f.answers.boxes)
            QCOMPARE(box.hasWindowIcon, row.isFirstTime);
    }

    void fillsTheDialog_data() {
        addRows(QVector<Attempt>{
            {"at start", 0, true, false, true},
            {"later", 0, false, false, true},
            {"from the not-connected state", 0, false, true, true},
        });
    }

    void fillsTheDialog() {
        const auto row = rowOf<Attempt>();
        ListedFixture f(row.isFromNotConnected);
        f.child("setBasetabWidget").setEnabled(false);
        f.dialog.connectDevice(row.portNum, row.isFirstTime);

        QCOMPARE(f.records(),
                 SettingsFixture::connectCalls + SettingsFixture::connectLines().mid(1));
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
        QVERIFY(watchOf(f.dialog).isActive());
        QCOMPARE(f.texts().mid(0, 15), identity + network + plates);
        QCOMPARE(f.checked(), switches + thirty);
        QCOMPARE(f.enabledAddressEdits(), 16);
        QVERIFY(!f.dialog.isFinished);
    }

    void showsTheSettings_data() {
        const auto row = [](const char* name, double wireless, double dhcp) -> ShownSettings {
            return {name, networkPatch({{"APConnectUse", wireless}, {"DHCPUse", dhcp}}),
                    switchButtons(wireless, dhcp) << thirty, 1, 2};
        };
        addRows(QVector<ShownSettings>{
            row("both off", 0, 0),
            row("wireless on", 1, 0),
            row("DHCP on", 0, 1),
            row("both on", 1, 1),
            row("any value but 0 is on", 2, 4294967295),
            {"power-off disabled", R"({"powerOffMode": 0})", switches + words("invalidradioBtn"), 1,
             0},
            {"15 minutes", R"({"powerOffMode": 1})", switches + words("fifteenRadioBtn"), 1, 1},
            {"30 minutes", R"({"powerOffMode": 2})", switches + words("thirtyRadioBtn"), 1, 2},
            {"60 minutes", R"({"powerOffMode": 3})", switches + words("sixtyRadioBtn"), 1, 3},
            {"first unknown mode", R"({"powerOffMode": 4})", switches, 1, 4},
            {"last unknown mode", R"({"powerOffMode": 255})", switches, 1, 255},
            {"any module flag", R"({"wirelessModule": 255})", switches + thirty, 255, 2},
        });
    }

    void showsTheSettings() {
        const auto row = rowOf<ShownSettings>();
        ListedFixture f(false, row.patch);
        f.dialog.connectDevice(0, false);

        QCOMPARE(f.boxes(), QStringList());
        QCOMPARE(f.lines(),
                 (QStringList{QString("  wifiModuleEnable :      %1\n").arg(row.moduleFlag),
                              QString("KVA_GetShutdownTime() success[mode:%1].\n").arg(row.mode)}));
        QCOMPARE(f.checked(), row.checked);
        QCOMPARE(f.enabledAddressEdits(), row.checked.contains("dhcpOnRadioBtn") ? 0 : 16);
        QCOMPARE(f.networkTexts(), network);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
    }

    // The dialog keeps whatever state it had.
    void cannotConnectWhileConnected() {
        ConnectedFixture f;
        const QStringList before = f.everything();
        f.dialog.connectDevice(0, false);

        QCOMPARE(f.records(), (QStringList{cannotConnectBox, connectCall, cannotConnectLine}));
        QCOMPARE(f.everything(), before);
    }

    void failingRead_data() { addFailingReads(); }
    void failingRead() {
        const auto row = rowOf<FailingRead>();
        ListedFixture f(true, row.patch);
        if (!row.function.isEmpty())
            TestBench::answer(row.function, KVA_ERROR_COMMUNICATION_TIMEOUT);
        f.dialog.connectDevice(0, false);

        QCOMPARE(f.records(), row.records);
        QCOMPARE(f.disabled(), row.disabledTabs + SettingsFixture::disabledWhenConnected);
        // The connected state comes last: until then the buttons are those of the state before.
        for (const QStringList& disabled : f.disabledAtBoxes)
            QCOMPARE(disabled, row.disabledTabs + QStringList("disConnectPushBtn"));
        QCOMPARE(f.checked(), row.checked);
        QCOMPARE(f.texts().mid(0, 15), row.texts);
        QVERIFY(watchOf(f.dialog).isActive());
    }

    // A second connection over what the first has left on the page.
    void emptiesStaleTexts_data() { addFailingReads(); }
    void emptiesStaleTexts() {
        const auto row = rowOf<FailingRead>();
        ConnectedFixture f;
        QVERIFY(f.controller->Disconnect());
        TestBench::set(row.patch);
        if (!row.function.isEmpty())
            TestBench::answer(row.function);
        f.dialog.connectDevice(0, false);

        QCOMPARE(f.texts().mid(0, 15), row.textsOverFormer);
        QCOMPARE(f.enabledAddressEdits(), 16);
        QCOMPARE(f.checked().contains("enableRadioBtn"), row.disabledTabs.isEmpty());
        QCOMPARE(f.checked().mid(f.checked().size() - 1), thirty);
        QCOMPARE(f.disabled(), row.disabledTabs + SettingsFixture::disabledWhenConnected);
    }

private:
    static void addFailingReads() {
        const QStringList noModule = {noWireless, connectCall, deviceInfo,
                                      options,    calibration, shutdownTime};
        const QString moduleLine = "  wifiModuleEnable :      1\n";
        const QString timeLine = "KVA_GetShutdownTime() success[mode:2].\n";
        const QStringList identityRecords = {"error: Failed to read device data.", connectCall,
                                             deviceInfo, "Failed to read Firm data. \n"};
        const QStringList plateBoxes = {"error: Failed to device WhiteCalibPlateSerialNo.",
                                        "error: Failed to device AmbientLightAdapterSerialNo."};
        const QStringList calls = SettingsFixture::connectCalls;
        const QStringList networkRecords =
            calls + QStringList{moduleLine, "Failed to KVA_GetNetworkInfo(). \n", timeLine};
        const QStringList timeRecords =
            QStringList("error: Failed to read automatic shutdown time.") + calls
            << moduleLine << "KVA_GetShutdownTime() failed[mode:0].\n";
        const QStringList plateRecords = plateBoxes + calls + QStringList{moduleLine, timeLine};
        const QStringList flagRecords =
            noModule + QStringList{"  wifiModuleEnable :      0\n", timeLine};
        const QByteArray flagPatch = R"({"wirelessModule": false})";
        const QStringList tab("networkSetTab");
        const QStringList all = switches + thirty;
        const QStringList full = identity + network + plates;
        const QStringList noNetwork = identity + none.mid(3, 6) + plates;
        const QStringList noPlates = identity + network + none.mid(9, 6);
        const QStringList noIdentity = none.mid(0, 3) + network + plates;
        addRows(QVector<FailingRead>{
            {"identity", "{}", deviceInfo, identityRecords, {}, {}, none.mid(0, 15), noIdentity},
            {"wireless module", "{}", options, noModule + QStringList(timeLine), tab, thirty,
             noNetwork, full},
            {"no wireless module", flagPatch, "", flagRecords, tab, thirty, noNetwork, full},
            {"network settings", "{}", networkInfo, networkRecords, {}, thirty, noNetwork, full},
            {"calibration", "{}", calibration, plateRecords, {}, all, noPlates, noPlates},
            {"power-off time", "{}", shutdownTime, timeRecords, {}, switches, full, full},
        });
    }
};

TEST_CLASS(TestConnection)
#include "tst_connection.moc"
