#include "tests/dialogs/settings/ConnectedFixture.h"

namespace {

struct FileButton {
    QByteArray name;
    SettingsFixture::Page page;
    QString button;
    QString nameFilter;
    QByteArray content = {}; ///< of a good file; null: the button saves one
    QFileDialog::Options options = {};
    bool isCancelled = false;
};

QVector<FileButton> allButtons() {
    const CalibrationTab& plate = calibrationTab(false);
    const CalibrationTab& adapter = calibrationTab(true);
    const QFileDialog::Options options = QFileDialog::DontUseCustomDirectoryIcons;
    return {
        {"network, write", SettingsFixture::Network, "writeFilePushBtn", "ini(*.ini)"},
        {"network, read", SettingsFixture::Network, "readToFilePushBtn", "*(*.*)", settingsFile()},
        {"white plate", plate.page, plate.chooseButton, "csv(*.csv)", plate.file(), options},
        {"adapter", adapter.page, adapter.chooseButton, "csv(*.csv)", adapter.file(), options},
    };
}

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

const QStringList bothButtons = words("getAutoPWOffPushBtn setAutoPWOffPushBtn");
const QStringList choices = words("invalidradioBtn fifteenRadioBtn thirtyRadioBtn sixtyRadioBtn");

const QString readSuccess = "information: Successful read body data.";
const QString writeSuccess = "information: Successful device writing.";

struct Mode {
    const char* name;
    bool isWritten; ///< or read
    int before;
    int mode;
    QStringList checked;
};

QByteArray patch(int mode) {
    return "{\"powerOffMode\": " + QByteArray::number(mode) + '}';
}

/** The tab's radio buttons that are checked: those of the network tab come first. */
QStringList choiceIn(SettingsFixture& f) {
    return f.checked().mid(2);
}

} // namespace

/** What the tabs' buttons have in common, and the tab of the automatic power-off. */
class TestTabButtons : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- Those that open a file dialog, up to the file that it answers

    void asksForAFile_data() { addRows(allButtons()); }
    void asksForAFile() {
        const auto row = rowOf<FileButton>();
        ConnectedFixture f(row.page);
        f.setOctets({}); // invalid, but nothing is checked
        const QStringList before = f.everything();
        QString name = "not looked at";
        f.answers.onFileDialog = [&](QFileDialog& dialog) {
            name = dialog.findChild<QLineEdit*>("fileNameEdit")->text();
        };
        f.click(row.button);

        const bool saves = row.content.isNull();
        QCOMPARE(name, QString());
        QCOMPARE(f.answers.fileDialogs.size(), 1);
        const ModalAnswerer::FileDialog& shown = f.answers.fileDialogs[0];
        QCOMPARE(shown.caption, saves ? "Save" : "Open");
        QCOMPARE(shown.directory, QDir::currentPath());
        QCOMPARE(shown.nameFilters, QStringList(row.nameFilter));
        QCOMPARE(shown.selectedNameFilter, row.nameFilter);
        QCOMPARE(shown.acceptMode, saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        QCOMPARE(shown.options, row.options);
        QCOMPARE(shown.parent, &f.dialog);
        // Cancelled, it was as if nothing had been.
        QCOMPARE(f.records(), QStringList());
        QCOMPARE(f.everything(), before);
        QCOMPARE(f.files(), QStringList());
    }

    void afterALoss_data() {
        QVector<FileButton> buttons = allButtons();
        for (FileButton button : allButtons()) {
            button.name += ", cancelled";
            button.isCancelled = true;
            buttons.append(button);
        }
        addRows(buttons);
    }

    void afterALoss() {
        const auto row = rowOf<FileButton>();
        ConnectedFixture f(row.page);
        QString report;
        f.answers.onFileDialog = [&](QFileDialog& dialog) { report = f.loseBehind(dialog); };
        const QString path = f.folder.path("chosen");
        if (!row.content.isNull())
            f.folder.write("chosen", row.content);
        const QStringList files = f.files();
        f.choose(row.button, row.isCancelled ? QString() : path);

        QCOMPARE(report, SettingsFixture::lostBox);
        QCOMPARE(f.answers.fileDialogs.size(), 1);
        QCOMPARE(f.boxes(), QStringList());
        QCOMPARE(f.lines().filter("length:"), QStringList()); // nor are the edits checked
        QCOMPARE(f.files(), files);
        QCOMPARE(f.everything(), SettingsFixture::nothing());
        QVERIFY(f.controller->m_fileWCPSerialNo.isEmpty());
        QVERIFY(f.controller->m_fileAmbAdpSerialNo.isEmpty());

        // Nor is its path kept for a later registration.
        f.invoke(calibrationTab(false).writeSlot);
        f.invoke(calibrationTab(true).writeSlot);
        QCOMPARE(f.boxes(),
                 (QStringList{calibrationTab(false).noFileBox, calibrationTab(true).noFileBox}));
    }

    // ---- Those that call the instrument

    // What the page shows by then differs from what the instrument holds.
    void failingCall_data() { addButtons(); }
    void failingCall() {
        const auto row = rowOf<BodyButton>();
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
        const auto row = rowOf<BodyButton>();
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
        const auto row = rowOf<BodyButton>();
        ConnectedFixture f(row.page);
        QString report;
        f.answers.onBox = [&](QMessageBox& box) { report = f.loseBehind(box); };
        f.click(row.button);

        QCOMPARE(report, SettingsFixture::lostBox);
        QCOMPARE(f.boxes(), QStringList(row.success));
        QCOMPARE(f.everything(), SettingsFixture::nothing());
    }

    void powerOffTime_data() {
        addRows(QVector<Mode>{
            {"read, disabled", false, 3, 0, {choices[0]}},
            {"read, 15 minutes", false, 0, 1, {choices[1]}},
            {"read, 30 minutes", false, 1, 2, {choices[2]}},
            {"read, 60 minutes", false, 2, 3, {choices[3]}},
            {"no change", false, 2, 2, {choices[2]}},
            {"unknown mode leaves the choice", false, 1, 4, {choices[1]}},
            {"last unknown mode leaves the choice", false, 3, 255, {choices[3]}},
            {"unknown mode without a choice", false, 200, 4, {}},
            {"first choice", false, 200, 3, {choices[3]}},
            {"written, disabled", true, 3, 0, {choices[0]}},
            {"written, 15 minutes", true, 0, 1, {choices[1]}},
            {"written, 30 minutes", true, 1, 2, {choices[2]}},
            {"written, 60 minutes", true, 2, 3, {choices[3]}},
            {"in place of an unknown mode", true, 9, 0, {choices[0]}},
        });
    }

    void powerOffTime() {
        const auto row = rowOf<Mode>();
        ConnectedFixture f(SettingsFixture::PowerOff, patch(row.before));
        if (row.isWritten)
            f.click(choices[row.mode]);
        else
            TestBench::set(patch(row.mode));
        const QString call = row.isWritten ? "KVA_SetShutdownTime" : "KVA_GetShutdownTime";
        QJsonObject expected = TestBench::state();
        expected["powerOffMode"] = row.mode;
        f.click(row.isWritten ? "setAutoPWOffPushBtn" : "getAutoPWOffPushBtn");

        QCOMPARE(f.records(),
                 (QStringList{row.isWritten ? writeSuccess : readSuccess, call,
                              call + QString("() success[mode:%1].\n").arg(row.mode)}));
        QCOMPARE(TestBench::state(), expected);
        QCOMPARE(choiceIn(f), row.checked);
        QCOMPARE(f.busyAtBox(), bothButtons);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
    }

    void writesNothingWithoutAChoice() {
        ConnectedFixture f(SettingsFixture::PowerOff, patch(4));
        QCOMPARE(choiceIn(f), QStringList());
        f.click("setAutoPWOffPushBtn");

        QCOMPARE(f.records(), QStringList("error: Failed to write automatic shutdown time."));
        QCOMPARE(TestBench::state()["powerOffMode"].toInt(), 4);
        QCOMPARE(f.busyAtBox(), bothButtons);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
    }

private:
    static void addButtons() {
        using F = SettingsFixture;
        const QStringList checks = F::digitLines(octetsOf(networkValues()));
        addRows(QVector<BodyButton>{
            {"network read", F::Network, "readBodyPushBtn", "KVA_GetNetworkInfo", readSuccess,
             "error: Failed to read Network Infomation data.",
             QStringList("Failed to KVA_GetNetworkInfo(). \n"), QStringList()},
            {"network written", F::Network, "writeBodyPushBtn", "KVA_SetNetworkInfo",
             networkWrittenBox, "error: Failed to write Network Infomation data.",
             checks + QStringList("Failed to KVA_SetNetworkInfo(). \n"), networkButtons},
            // The byte that no mode has, as the instrument has not set one.
            {"power-off time read", F::PowerOff, "getAutoPWOffPushBtn", "KVA_GetShutdownTime",
             readSuccess, "error: Failed to read automatic shutdown time.",
             QStringList("KVA_GetShutdownTime() failed[mode:255].\n"), bothButtons},
            {"power-off time written", F::PowerOff, "setAutoPWOffPushBtn", "KVA_SetShutdownTime",
             writeSuccess, "error: Failed to write automatic shutdown time.",
             QStringList("KVA_SetShutdownTime() failed[mode:3].\n"), bothButtons},
        });
    }
};

TEST_CLASS(TestTabButtons)
#include "tst_tab_buttons.moc"
