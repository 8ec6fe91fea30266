#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"
#include "tests/support/TestMain.h"

#include <QMessageBox>

using namespace Steps;

namespace {

/** The serial numbers that the program opened a connection to. */
QVector<int> connectedTo(const ProgramRun& run) {
    QVector<int> serialNumbers;
    for (const QJsonObject& call : run.calls()) {
        if (call["function"] == "KVA_Connect")
            serialNumbers.append(call["arguments"]["serialNumber"].toInt());
    }
    return serialNumbers;
}

/** The debug lines of the choice of an instrument as the entry point took it. */
QStringList choices(const ProgramRun& run) {
    return run.debugLines().filter("select portNum[main]");
}

/** Attached instruments, and what the user does in the dialog that lists several. */
struct AttachedRow {
    const char* name;
    int attached;
    QJsonArray selections; ///< steps in the dialog before its OK
    int portNum;
    int serialNumber; ///< that is connected to
    QJsonArray faults = {};
    int shows = 1; ///< how often the dialog comes up
};

QVector<AttachedRow> attached() {
    const QJsonObject escape = step(instrumentDialog, "key", Qt::Key_Escape);
    const QJsonArray warning = {fault(enumeration, 0, "KVA_WARNING_BATTERY_EMPTY")};
    QVector<AttachedRow> rows;
    rows.append({"one", 1, {}, 0, 1000001});
    // Warnings count as success.
    rows.append({"one, with a warning", 1, {}, 0, 1000001, warning});
    rows.append({"two, not touched", 2, {}, 0, 1000001});
    rows.append({"two, the second", 2, {selectRow(1)}, 1, 1000002});
    rows.append({"three, not touched", 3, {}, 0, 1000001});
    rows.append({"three, the second", 3, {selectRow(1)}, 1, 1000002});
    rows.append({"three, the third", 3, {selectRow(2)}, 2, 1000003});
    rows.append({"three, the third and back", 3, {selectRow(2), selectRow(0)}, 0, 1000001});
    // The button is the only way out: a closed dialog comes up again.
    const QJsonArray others = {escape, selectRow(1), closeWindow(instrumentDialog)};
    rows.append({"two, not left otherwise", 2, others, 1, 1000002, {}, 2});
    return rows;
}

/** A bench whose instruments cannot be listed. */
struct FailureRow {
    const char* name;
    QJsonObject bench;
    int calls; ///< of the enumeration
};

const FailureRow failures[] = {
    {"the count", benchOf(3, {fault(enumeration, 1)}), 1},
    {"the count, not answered",
     benchOf(3, {fault(enumeration, 1, "KVA_ERROR_COMMUNICATION_TIMEOUT")}), 1},
    {"the list", benchOf(3, {fault(enumeration, 2)}), 2},
    {"a bench that cannot be read", {{"version", "none"}}, 1},
};

/** The settings dialog without an instrument. */
void compareNoInstrument(const QJsonObject& settings) {
    const QStringList disabled = namesIn(settings, "disabled");
    for (const char* name :
         {"disConnectPushBtn", "networkSetTab", "autoPowerOfftab", "ambLightAdpTab",
          "wCalibPlateTab", "setWCPValPushBtn", "setAmbAdpBodyPushBtn"})
        QVERIFY2(disabled.contains(name), name);
    QVERIFY(!disabled.contains("ConnectPushBtn"));
    QVERIFY(!disabled.contains("ClosePushBtn"));
    const QStringList checked = namesIn(settings, "checked");
    for (const char* name :
         {"enableRadioBtn", "disableRadioBtn", "dhcpOnRadioBtn", "dhcpOffRadioBtn"})
        QVERIFY2(!checked.contains(name), name);
    QCOMPARE(settings["focus"].toString(), "ConnectPushBtn");
    QCOMPARE(textIn(settings, "serialNolabel"), "");
}

} // namespace

class TestStartupInstruments : public QObject {
    Q_OBJECT
private Q_SLOTS:
    /** A single instrument is connected to at once. */
    void connects_data() { addRows(attached()); }
    void connects() {
        const auto row = rowOf<AttachedRow>();
        const bool isChosen = row.attached > 1;
        ProgramRun run({confirmLanguage}, benchOf(row.attached, row.faults));
        for (const QJsonValue& selection : row.selections)
            run.steps.append(selection);
        if (isChosen)
            run.steps.append(confirmInstrument);
        run.steps.append(disconnectInstrument);
        run.steps.append(pressClose);

        QVERIFY2(run.run(), run.problem());

        QStringList windows = {languageDialog, settingsDialog};
        for (int i = 0; isChosen && i < row.shows; ++i)
            windows.insert(1, instrumentDialog);
        QCOMPARE(run.shownWindows(), windows);
        QCOMPARE(choices(run),
                 isChosen ? QStringList(QString("select portNum[main]:%1").arg(row.portNum))
                          : QStringList());
        QCOMPARE(connectedTo(run), QVector<int>{row.serialNumber});
        const QStringList all = {"VARNE-1(USB,Serial#01000001)",
                                 "VARNE-1(192.168.0.20,Serial#01000002)",
                                 "VARNE-1(USB,Serial#01000003)"};
        const QJsonObject choice = run.state(instrumentDialog);
        QCOMPARE(namesIn(choice, "rows"), all.mid(0, isChosen ? row.attached : 0));
        QCOMPARE(choice["currentRow"].toInt(-1), isChosen ? 0 : -1);
        QCOMPARE(textIn(run.state(settingsDialog), "serialNolabel"),
                 QString("0%1").arg(row.serialNumber));
    }

    void choiceWindow() {
        ProgramRun run(
            {chooseJapanese, confirmLanguage, confirmInstrument, closeWindow(settingsDialog)});

        QVERIFY2(run.run(), run.problem());

        const QJsonObject state = run.state(instrumentDialog);
        QCOMPARE(state["title"].toString(),
                 translated(japanese, "ConnectSelectDialog", "Select Device"));
        QCOMPARE(textIn(state, "pushButton"), translated(japanese, "ConnectSelectDialog", "OK"));
        QCOMPARE(state["flags"].toInt(), titledFlags);
        QCOMPARE(state["hasParent"], QJsonValue(false));
        QCOMPARE(state["isFixed"], QJsonValue(true));
    }

    void noInstrument() {
        ProgramRun run({confirmLanguage, confirmInstrument, dismissBox, pressClose}, benchOf(0));

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(),
                 QStringList({languageDialog, instrumentDialog,
                              boxNamed("Failed to connect device."), settingsDialog}));
        QCOMPARE(run.state(instrumentDialog)["rows"].toArray(), QJsonArray());
        QCOMPARE(choices(run), QStringList("select portNum[main]:0"));
        QCOMPARE(run.state(messageBox)["icon"].toInt(), int{QMessageBox::Critical});
        QVERIFY(run.debugLines().contains("conect error \n"));
        QCOMPARE(connectedTo(run), QVector<int>());
        compareNoInstrument(run.state(settingsDialog));
    }

    void failedEnumeration_data() { addRows(failures); }
    void failedEnumeration() {
        const auto row = rowOf<FailureRow>();
        ProgramRun run({confirmLanguage, dismissBox, pressClose}, row.bench);

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(),
                 QStringList({languageDialog, boxNamed(notConnected), settingsDialog}));
        QStringList functions = {registration, enumeration, registration};
        if (row.calls == 2)
            functions.insert(1, enumeration);
        QCOMPARE(run.calledFunctions(), functions);
        QCOMPARE(choices(run), QStringList());
        compareNoInstrument(run.state(settingsDialog));
    }
};

TEST_CLASS(TestStartupInstruments)
#include "tst_startup_instruments.moc"
