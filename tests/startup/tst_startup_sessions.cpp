#include "tests/startup/ProgramRun.h"

#include <QMessageBox>

using namespace Steps;

namespace {

QJsonArray connectedTo(const ProgramRun& run) {
    return run.argumentsOf("KVA_Connect", "serialNumber");
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
    // A closed dialog comes up again.
    const QJsonArray others = {escape, selectRow(1), closeWindow(instrumentDialog)};
    return {
        {"one", 1, {}, 0, 1000001},
        // Warnings count as success.
        {"one, with a warning", 1, {}, 0, 1000001, warning},
        {"two, not touched", 2, {}, 0, 1000001},
        {"two, the second", 2, {selectRow(1)}, 1, 1000002},
        {"three, not touched", 3, {}, 0, 1000001},
        {"three, the second", 3, {selectRow(1)}, 1, 1000002},
        {"three, the third", 3, {selectRow(2)}, 2, 1000003},
        {"three, the third and back", 3, {selectRow(2), selectRow(0)}, 0, 1000001},
        {"two, not left otherwise", 2, others, 1, 1000002, {}, 2},
    };
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

void compareNoInstrument(const QJsonObject& settings) {
    QVERIFY(namesIn(settings, "disabled").contains("disConnectPushBtn"));
    QVERIFY(!namesIn(settings, "disabled").contains("ConnectPushBtn"));
    QCOMPARE(namesIn(settings, "checked"), QStringList());
    QCOMPARE(settings["focus"].toString(), "ConnectPushBtn");
    QCOMPARE(textIn(settings, "serialNolabel"), "");
}

/** The story of a run in English up to the list of the instruments. */
QStringList storyOfTheStart(int count) {
    return {registration,
            "shown LangSelectDialog",
            "hidden LangSelectDialog",
            "log select English:1",
            "KVA_GetDevicePortList",
            QString("log port count[%1] \n").arg(count),
            "KVA_GetDevicePortList"};
}

/** The settings dialog fills itself from the instrument, then comes up. */
const QStringList storyOfTheConnection = {"KVA_Connect",
                                          "KVA_GetDeviceInfo",
                                          "KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA",
                                          "log   wifiModuleEnable :      1\n",
                                          "KVA_GetNetworkInfo",
                                          "KVA_JIG_GetFactoryCalib_CALREFDATA",
                                          "KVA_GetShutdownTime",
                                          "log KVA_GetShutdownTime() success[mode:2].\n",
                                          "shown InitSettingDialog"};

/** The settings dialog goes first, the controller last but before the application object. */
const QStringList storyOfTheEnd = {"hidden InitSettingDialog",
                                   "destroyed InitSettingDialog",
                                   "destroyed ConnectSelectDialog",
                                   "destroyed LangSelectDialog",
                                   registration,
                                   "application ends"};

/** A run that is told to the end. */
struct StoryRow {
    const char* name;
    int instruments;
    QJsonArray faults;
    QJsonArray steps;
    QStringList story; ///< between the start and the end
};

const QJsonArray disconnectAndClose = {confirmLanguage, disconnectInstrument, pressClose};

QVector<StoryRow> stories() {
    const QStringList choice = {"log select portNum[ConnectSelectDialog]:0",
                                "shown ConnectSelectDialog",
                                "log select portNum[ConnectSelectDialog]:1",
                                "hidden ConnectSelectDialog", "log select portNum[main]:1"};
    const QStringList use = storyOfTheConnection + QStringList("KVA_Disconnect");
    const auto box = [](const QString& text) {
        return QStringList({"shown " + boxNamed(text), "hidden " + boxNamed(text)});
    };
    return {
        {"one instrument", 1, {}, disconnectAndClose, use},
        // Nothing is made of it.
        {"registration fails", 1, {fault(registration, 0)}, disconnectAndClose, use},
        {"two instruments",
         2,
         {},
         {confirmLanguage, selectRow(1), confirmInstrument, disconnectInstrument, pressClose},
         choice + use},
        {"no enumeration",
         1,
         {fault("KVA_GetDevicePortList", 2)},
         {confirmLanguage, dismissBox, pressClose},
         box(notConnected) + QStringList("shown InitSettingDialog")},
        {"closed, and disconnect fails",
         1,
         {fault("KVA_Disconnect", 0, "KVA_ERROR_DISCONNECT")},
         {confirmLanguage, closeWindow(settingsDialog), dismissBox},
         use + QStringList("log diconect error \n") + box("Failed to disconnect device.")},
    };
}

const QStringList bothDialogs = {languageDialog, settingsDialog};

/** A way to leave the settings dialog. */
struct LeaveRow {
    const char* name;
    QJsonObject step;
};

const LeaveRow leaves[] = {{"closed", closeWindow(settingsDialog)},
                           {"rejected", step(settingsDialog, "reject")},
                           {"hidden", step(settingsDialog, "hide")}};

/** What the user does before the process is ended within an event. */
struct ExitRow {
    const char* name;
    QJsonArray before;
};

const ExitRow exits[] = {{"connected", {confirmLanguage}},
                         {"disconnected", {confirmLanguage, disconnectInstrument}}};

/** How another libKVASDK comes to be used, and what it shows for. */
struct LibraryRow {
    const char* name;
    QString replacement; ///< of the file in lib; empty: none
    QString variable;    ///< of the environment; empty: none
    QString value;
    QJsonArray steps;
    QStringList windows;
    QString serialNumber; ///< shown
};

QVector<LibraryRow> libraries() {
    const QString serving = OTHER_SDK_SERVING;
    const QString folder = QFileInfo(serving).path();
    const QJsonArray& use = disconnectAndClose;
    const QJsonArray dismiss = {confirmLanguage, dismissBox, pressClose};
    const QStringList withBox = {languageDialog, boxNamed(notConnected), settingsDialog};
    return {
        {"in lib", serving, "", "", use, bothDialogs, "07654321"},
        {"on the library path", "", "LD_LIBRARY_PATH", folder, use, bothDialogs, "07654321"},
        {"preloaded", "", "LD_PRELOAD", serving, use, bothDialogs, "07654321"},
        {"in lib, failing", OTHER_SDK_FAILING, "", "", dismiss, withBox, ""},
    };
}

} // namespace

/** Sessions from the choice of an instrument to the end. */
class TestStartupSessions : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void story_data() { addRows(stories()); }
    void story() {
        const auto row = rowOf<StoryRow>();
        ProgramRun run(row.steps, benchOf(row.instruments, row.faults));

        QVERIFY2(run.run(), run.problem());

        const QStringList expected = storyOfTheStart(row.instruments) + row.story + storyOfTheEnd;
        QVERIFY2(run.story() == expected, run.problem());
        QCOMPARE(run.argumentsOf(registration, "handler"), QJsonArray({true, false}));
    }

    /** By the window's close control, or by any other way of making it disappear. */
    void leftWhileConnected_data() { addRows(leaves); }
    void leftWhileConnected() {
        const auto row = rowOf<LeaveRow>();
        ProgramRun run({confirmLanguage, row.step}, benchOf(1));

        QVERIFY2(run.run(), run.problem());

        // What is hidden first is closed after that: the same calls, in another order.
        QStringList expected = storyOfTheStart(1) + storyOfTheConnection +
                               QStringList("KVA_Disconnect") + storyOfTheEnd;
        QStringList story = run.story();
        QCOMPARE(story.mid(story.size() - 5), storyOfTheEnd.mid(1));
        expected.sort();
        story.sort();
        QVERIFY2(story == expected, run.problem());
        QCOMPARE(run.argumentsOf(registration, "handler"), QJsonArray({true, false}));
        QCOMPARE(run.boxTexts(), QStringList());
    }

    /** Qt ends the process itself: no window is closed, no object of main destroyed. */
    void exitedWithin_data() { addRows(exits); }
    void exitedWithin() {
        const auto row = rowOf<ExitRow>();
        ProgramRun run(row.before, benchOf(1));
        run.steps.append(step(settingsDialog, "exit", 0));

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.calledFunctions().filter("onnect"),
                 QStringList({"KVA_Connect", "KVA_Disconnect"}));
        QCOMPARE(run.debugLines().filter("diconect"), QStringList());
        QCOMPARE(run.argumentsOf(registration, "handler"), QJsonArray({true}));
    }

    void fontAndIconOfTheApplication() {
        ProgramRun run({confirmLanguage, confirmInstrument, dismissBox, pressClose},
                       benchOf(2, {fault("KVA_Connect", 0, "KVA_ERROR_CONNECT")}));

        QVERIFY2(run.run(), run.problem());

        const QJsonObject font = {{"family", "San Francisco"},
                                  {"pointSize", 13},
                                  {"weight", int{QFont::Normal}},
                                  {"isItalic", false}};
        const QJsonArray widths = {16, 32, 48, 64, 128, 256};
        for (const QString& window :
             {languageDialog, instrumentDialog, messageBox, settingsDialog}) {
            const QJsonObject state = run.state(window);
            QCOMPARE(state["font"].toObject(), font);
            QCOMPARE(state["windowFontFamily"], font["family"]);
            QCOMPARE(state["applicationIconWidths"].toArray(), widths);
            QCOMPARE(state["iconWidths"].toArray(), widths);
            QCOMPARE(state["ownIcon"], QJsonValue(true));
            QCOMPARE(state["hasParent"], QJsonValue(false));
        }
    }

    /** Another library of the name serves without a rebuild. */
    void otherLibrary_data() { addRows(libraries()); }
    void otherLibrary() {
        const auto row = rowOf<LibraryRow>();
        const ProgramTree tree;
        if (!row.replacement.isEmpty())
            tree.replaceLibrary(row.replacement);
        ProgramRun run(row.steps);
        run.program = tree.program();
        if (!row.variable.isEmpty())
            run.environment.insert(row.variable, row.value);
        // A preloaded library comes before the run-time library of the sanitizer, where there is
        // one.
        run.environment.insert("ASAN_OPTIONS",
                               qEnvironmentVariable("ASAN_OPTIONS") + ":verify_asan_link_order=0");

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(), row.windows);
        QCOMPARE(textIn(run.state(settingsDialog), "serialNolabel"), row.serialNumber);
        QCOMPARE(run.calledFunctions(), QStringList()); // not the simulator, which would trace
    }

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
        QCOMPARE(connectedTo(run), QJsonArray{row.serialNumber});
        const QStringList all = {"VARNE-1(USB,Serial#01000001)",
                                 "VARNE-1(192.168.0.20,Serial#01000002)",
                                 "VARNE-1(USB,Serial#01000003)"};
        const QJsonObject choice = run.state(instrumentDialog);
        QCOMPARE(namesIn(choice, "rows"), all.mid(0, isChosen ? row.attached : 0));
        QCOMPARE(choice["currentRow"].toInt(-1), isChosen ? 0 : -1);
        QCOMPARE(textIn(run.state(settingsDialog), "serialNolabel"),
                 QString("0%1").arg(row.serialNumber));
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
        QCOMPARE(connectedTo(run), QJsonArray());
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

TEST_CLASS(TestStartupSessions)
#include "tst_startup_sessions.moc"
