#include "tests/dialogs/settings/ConnectedFixture.h"

#include <QSignalSpy>

namespace {

const QString disconnectButton = "disConnectPushBtn";
const QString disconnectCall = "KVA_Disconnect";
const QString disconnectLine = "diconect error \n";
const QStringList modeButtons =
    words("invalidradioBtn fifteenRadioBtn thirtyRadioBtn sixtyRadioBtn");

struct ModeAndSwitches {
    const char* name;
    int mode;
    int wireless;
    int dhcp;
};

enum Connected { Never, Before, Now, Failing }; ///< the last: now, and Disconnect fails

struct Closing {
    const char* name;
    Connected connected;
    bool isByTitleBar;
    QStringList records = {};
};

} // namespace

/** The Disconnect and Close buttons, and the not-connected state that a connection ends in. */
class TestDisconnect : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void disconnects_data() {
        addRows(QVector<ModeAndSwitches>{{"mode 0", 0, 0, 0},
                                         {"mode 1", 1, 1, 0},
                                         {"mode 2", 2, 0, 1},
                                         {"mode 3", 3, 1, 1},
                                         {"mode 4", 4, 0, 0}});
    }

    void disconnects() {
        const auto row = rowOf<ModeAndSwitches>();
        SettingsFixture f;
        TestBench::set(networkPatch({{"APConnectUse", row.wireless}, {"DHCPUse", row.dhcp}}));
        TestBench::set("{\"powerOffMode\": " + QByteArray::number(row.mode) + '}');
        QVERIFY(f.connectFirst());
        QCOMPARE(f.checked(), switchButtons(row.wireless, row.dhcp) + modeButtons.mid(row.mode, 1));
        f.setOctets(octetsOf(networkValues()));
        f.setNameAndKey("typed", "typed");
        for (const char* name : {"selWCPFileNamelabel", "selFileSerialNolabel",
                                 "selAmbAdpFnamelabel", "selAmbAdpFSerialNolabel"})
            f.child<QLabel>(name).setText("shown");
        f.click(disconnectButton);

        QCOMPARE(f.records(), QStringList(disconnectCall));
        QCOMPARE(f.everything(), SettingsFixture::nothing(row.dhcp != 0 ? 0 : 16));
        QVERIFY(!f.controller->m_connected);
        QVERIFY(!f.dialog.isFinished);
        QVERIFY(f.dialog.isVisible());
    }

    // The switch of the wireless LAN is unchecked directly. Qt lets that happen as long as another
    // button of its group box is checked, as those of DHCP are, but not to the only one that is.
    void keepsASwitchThatIsTheOnlyOne() {
        SettingsFixture f;
        TestBench::answer("KVA_GetNetworkInfo");
        QVERIFY(f.connectFirst());
        f.click("disableRadioBtn");
        f.click(disconnectButton);

        QCOMPARE(f.checked(), QStringList("disableRadioBtn"));
        QVERIFY(f.child<QRadioButton>("disableRadioBtn").isCheckable());
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected);
    }

    // While a message is open, as macOS' Quit does: first the message, then the window.
    void closedWhileConnecting() {
        SettingsFixture f;
        TestBench::set(R"({"wirelessModule": false})");
        f.controller->GetDevicePortList();
        f.answers.onBox = [&](QMessageBox&) { f.dialog.close(); };
        f.dialog.connectDevice(0, false);

        QVERIFY(f.dialog.isFinished);
        QVERIFY(!f.controller->m_connected);
        QCOMPARE(f.calls().constLast(), disconnectCall);
        QCOMPARE(f.calls().count(disconnectCall), 1);
        QVERIFY(!watchOf(f.dialog).isActive());
    }

    // After a connection has ended, what was chosen during it is not sent any more.
    void forgetsTheValueFiles() {
        ConnectedFixture f;
        QStringList boxes;
        for (const bool adapter : {false, true}) {
            const CalibrationTab& tab = calibrationTab(adapter);
            boxes.append(tab.noFileBox);
            f.openPage(tab.page);
            // A refused file: its path is kept all the same, as long as the connection lasts.
            f.choose(tab.chooseButton, f.folder.write("refused.csv", ""));
        }
        f.click(disconnectButton);
        f.clearRecords();

        f.invoke(calibrationTab(false).writeSlot);
        f.invoke(calibrationTab(true).writeSlot);
        QCOMPARE(f.boxes(), boxes);
        QCOMPARE(f.calls(), QStringList());
    }

    void failingDisconnect() {
        ConnectedFixture f;
        const QStringList before = f.everything();
        TestBench::answer(disconnectCall, KVA_ERROR_DISCONNECT, 1);
        f.click(disconnectButton);

        QCOMPARE(f.records(), (QStringList{"error: Failed to device disconnect.", disconnectCall,
                                           disconnectLine}));
        QCOMPARE(f.everything(), before);
        QCOMPARE(f.atBox.everything, before);

        f.clearRecords();
        f.click(disconnectButton);
        QCOMPARE(f.calls(), QStringList(disconnectCall));
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected);
    }

    void disconnectWithoutConnection() {
        SettingsFixture f;
        f.dialog.connectDevice(-1, false);
        const QStringList before = f.everything();
        f.invoke("on_disConnectPushBtn_clicked");

        QCOMPARE(f.records(), QStringList());
        QCOMPARE(f.everything(), before);
    }

    void closes_data() {
        const QStringList failure = {"error: Failed to disconnect device.", disconnectCall,
                                     disconnectLine};
        addRows(QVector<Closing>{{"never connected, button", Never, false},
                                 {"never connected, title bar", Never, true},
                                 {"button, after Disconnect", Before, false},
                                 {"title bar, after Disconnect", Before, true},
                                 {"title bar", Now, true, {disconnectCall}},
                                 {"title bar, Disconnect fails", Failing, true, failure},
                                 {"slot", Now, false, {disconnectCall}},
                                 {"slot, Disconnect fails", Failing, false, failure}});
    }

    void closes() {
        const auto row = rowOf<Closing>();
        SettingsFixture f;
        if (row.connected != Never)
            QVERIFY(f.connectFirst());
        else
            f.dialog.connectDevice(-1, false);
        f.dialog.show();
        if (row.connected == Before)
            f.click(disconnectButton);
        f.clearRecords();
        if (row.connected == Failing)
            TestBench::answer(disconnectCall);
        bool isOpenBehindTheBox = false;
        f.answers.onBox = [&](QMessageBox&) {
            isOpenBehindTheBox = f.dialog.isVisible() && !f.dialog.isFinished;
        };
        const QSignalSpy finished(&f.dialog, &QDialog::finished);
        if (row.isByTitleBar)
            QVERIFY(f.dialog.close());
        else if (row.connected == Now || row.connected == Failing)
            f.invoke("on_ClosePushBtn_clicked"); // its button is disabled
        else
            f.click("ClosePushBtn");

        QVERIFY(f.dialog.isFinished);
        QVERIFY(!f.dialog.isVisible());
        QVERIFY(!watchOf(f.dialog).isActive());
        QCOMPARE(finished.count(), 1); // closed as any dialog is
        QCOMPARE(f.records(), row.records);
        QCOMPARE(isOpenBehindTheBox, row.connected == Failing);

        // Closed once and for all: nothing is left to disconnect.
        f.clearRecords();
        f.dialog.show();
        QVERIFY(f.dialog.close());
        f.invoke("on_disConnectPushBtn_clicked");
        QCOMPARE(f.calls(), QStringList());
    }

    // Who sets the flag has taken care of the connection.
    void closesOnceFinished() {
        ConnectedFixture f;
        f.dialog.isFinished = true;
        QVERIFY(f.dialog.close());
        QVERIFY(!f.dialog.isVisible());
        QCOMPARE(f.calls(), QStringList());
        QVERIFY(f.controller->m_connected);
    }

    void destroyedWhileConnected() {
        SettingsFixture f;
        auto dialog = std::make_unique<InitSettingDialog>();
        dialog->setSdkCtrl(f.controller);
        QVERIFY(f.controller->GetDevicePortList());
        dialog->connectDevice(0, true);
        QCOMPARE(f.controller.use_count(), 4L); // the fixture's, its two dialogs', this one's
        dialog.reset();
        QCOMPARE(f.calls().count(disconnectCall), 0);
        QVERIFY(f.controller->m_connected);
        QCOMPARE(f.controller.use_count(), 3L);
    }

    // The watch leaves the controller's view of the connection alone; the dialog's own counts.
    void closesAfterALoss() {
        ConnectedFixture f;
        TestBench::emitEvent(eEventCode_DisConnect);
        f.invoke("timerHit");
        QVERIFY(f.controller->m_connected);
        f.clearRecords();
        f.click("ClosePushBtn");

        QVERIFY(f.dialog.isFinished);
        QVERIFY(!f.dialog.isVisible());
        QCOMPARE(f.calls(), QStringList());
        QCOMPARE(f.boxes(), QStringList());
    }
};

TEST_CLASS(TestDisconnect)
#include "tst_disconnect.moc"
