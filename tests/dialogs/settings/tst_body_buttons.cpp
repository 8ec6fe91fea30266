#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/dialogs/settings/NetworkValues.h"
#include "tests/support/TestMain.h"

namespace {

struct BodyButton {
    const char* name;
    SettingsFixture::Page page;
    QString button;
    QString call;
    QString success;
    QString failure;
    QStringList failureLines;
    QStringList busy; ///< disabled while the box is open
};

} // namespace

Q_DECLARE_METATYPE(BodyButton)

/** What the buttons of the network tab and of the power-off tab that call the instrument have in
    common. */
class TestBodyButtons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void failingCall_data() { addButtons(); }
    // What the page shows by then differs from what the instrument holds.
    void failingCall() {
        QFETCH(const BodyButton, row);
        ConnectedFixture f;
        typeNetwork(f);
        f.openPage(SettingsFixture::PowerOff);
        f.click("sixtyRadioBtn");
        f.openPage(row.page);
        f.clearRecords();
        TestBench::answer(row.call, KVA_ERROR_COMMUNICATION_RECEIVE);
        const QJsonObject state = TestBench::state();
        const QStringList before = f.everything();
        f.click(row.button);

        QCOMPARE(f.records(), (QStringList{row.failure, row.call} + row.failureLines));
        QCOMPARE(TestBench::state(), state);
        QCOMPARE(f.busyAtBox(), row.busy);
        QCOMPARE(f.everything(), before);
    }

    void warningIsSuccess_data() { addButtons(); }
    void warningIsSuccess() {
        QFETCH(const BodyButton, row);
        ConnectedFixture f(row.page);
        TestBench::answer("*", KVA_WARNING_WCALIB_TEMP);
        f.answers.closesBoxes = true; // as the window's close control does
        const QStringList before = f.everything();
        if (row.call == "KVA_GetNetworkInfo")
            f.setOctets({}); // filled again
        f.click(row.button);
        QCOMPARE(f.boxes(), QStringList(row.success));
        QCOMPARE(f.busyAtBox(), row.busy);
        QCOMPARE(f.everything(), before);
    }

    void lossBehindTheBox_data() { addButtons(); }
    void lossBehindTheBox() {
        QFETCH(const BodyButton, row);
        ConnectedFixture f(row.page);
        QString report;
        f.answers.onBox = [&](QMessageBox& box) { report = f.loseBehind(box); };
        f.click(row.button);

        QCOMPARE(report, SettingsFixture::lostBox);
        QCOMPARE(f.boxes(), QStringList(row.success));
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected);
        QCOMPARE(f.checked(), QStringList());
        QVERIFY(!watchOf(f.dialog).isActive());
    }

private:
    static void addButtons() {
        const QString readSuccess = "information: Successful read body data.";
        const QStringList networkButtons =
            words("readToFilePushBtn writeFilePushBtn readBodyPushBtn writeBodyPushBtn");
        const QStringList modeButtons = words("getAutoPWOffPushBtn setAutoPWOffPushBtn");
        addRows(QVector<BodyButton>{
            {"network read",
             SettingsFixture::Network,
             "readBodyPushBtn",
             "KVA_GetNetworkInfo",
             readSuccess,
             "error: Failed to read Network Infomation data.",
             {"Failed to KVA_GetNetworkInfo(). \n"},
             {}},
            {"network written", SettingsFixture::Network, "writeBodyPushBtn", "KVA_SetNetworkInfo",
             "information: Write successful. To reflect, after [Disconnect], turn the power supply "
             "of "
             "the measuring instrument OFF -> ON.",
             "error: Failed to write Network Infomation data.",
             SettingsFixture::digitLines(octetsOf(networkValues()))
                 << "Failed to KVA_SetNetworkInfo(). \n",
             networkButtons},
            // The byte that no mode has, as the instrument has not set one.
            {"power-off time read",
             SettingsFixture::PowerOff,
             "getAutoPWOffPushBtn",
             "KVA_GetShutdownTime",
             readSuccess,
             "error: Failed to read automatic shutdown time.",
             {"KVA_GetShutdownTime() failed[mode:255].\n"},
             modeButtons},
            {"power-off time written",
             SettingsFixture::PowerOff,
             "setAutoPWOffPushBtn",
             "KVA_SetShutdownTime",
             "information: Successful device writing.",
             "error: Failed to write automatic shutdown time.",
             {"KVA_SetShutdownTime() failed[mode:3].\n"},
             modeButtons},
        });
    }
};

TEST_CLASS(TestBodyButtons)
#include "tst_body_buttons.moc"
