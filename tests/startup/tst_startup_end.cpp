#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"
#include "tests/support/TestMain.h"

using namespace Steps;

namespace {

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
    QVector<StoryRow> rows;
    const auto add = [&](const char* name, int instruments, const QJsonArray& faults,
                         const QJsonArray& steps, const QStringList& story) {
        rows.append({name, instruments, faults, steps, story});
    };
    add("one instrument", 1, {}, disconnectAndClose, use);
    add("two instruments", 2, {},
        {confirmLanguage, selectRow(1), confirmInstrument, disconnectInstrument, pressClose},
        choice + use);
    add("no enumeration", 1, {fault("KVA_GetDevicePortList", 2)},
        {confirmLanguage, dismissBox, pressClose},
        box(notConnected) + QStringList("shown InitSettingDialog"));
    add("closed, and disconnect fails", 1, {fault("KVA_Disconnect", 0, "KVA_ERROR_DISCONNECT")},
        {confirmLanguage, closeWindow(settingsDialog), dismissBox},
        use + QStringList("log diconect error \n") + box("Failed to disconnect device."));
    return rows;
}

/** A way to end. */
struct EndRow {
    const char* name;
    QJsonArray steps;
    QStringList windows;
    QJsonArray faults = {};
};

const QStringList bothDialogs = {languageDialog, settingsDialog};

const EndRow ends[] = {
    {"cancelled", {closeWindow(languageDialog)}, {languageDialog}},
    {"language rejected", {step(languageDialog, "reject")}, {languageDialog}},
    {"language hidden", {step(languageDialog, "hide")}, {languageDialog}},
    {"disconnected", disconnectAndClose, bothDialogs},
    {"closed", {confirmLanguage, closeWindow(settingsDialog)}, bothDialogs},
    // Nothing is made of it.
    {"registration fails", disconnectAndClose, bothDialogs, {fault(registration, 0)}},
};

/** A way to leave the settings dialog. */
struct LeaveRow {
    const char* name;
    QJsonObject step;
};

const LeaveRow leaves[] = {{"closed", closeWindow(settingsDialog)},
                           {"rejected", step(settingsDialog, "reject")},
                           {"hidden", step(settingsDialog, "hide")}};

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
    QVector<LibraryRow> rows;
    rows.append({"in lib", serving, "", "", use, bothDialogs, "07654321"});
    rows.append(
        {"on the library path", "", "LD_LIBRARY_PATH", folder, use, bothDialogs, "07654321"});
    rows.append({"preloaded", "", "LD_PRELOAD", serving, use, bothDialogs, "07654321"});
    rows.append({"in lib, failing", OTHER_SDK_FAILING, "", "", dismiss, withBox, ""});
    return rows;
}

/** Whether each registration of an event handler named one, in order. */
QVector<bool> registrations(const ProgramRun& run) {
    QVector<bool> handlers;
    for (const QJsonObject& call : run.calls()) {
        if (call["function"] == registration)
            handlers.append(call["arguments"]["handler"].toBool());
    }
    return handlers;
}

} // namespace

class TestStartupEnd : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void story_data() { addRows(stories()); }
    void story() {
        const auto row = rowOf<StoryRow>();
        ProgramRun run(row.steps, benchOf(row.instruments, row.faults));

        QVERIFY2(run.run(), run.problem());

        const QStringList expected = storyOfTheStart(row.instruments) + row.story + storyOfTheEnd;
        QVERIFY2(run.story() == expected, run.problem());
    }

    void handlerIsRemovedAtTheEnd_data() { addRows(ends); }
    void handlerIsRemovedAtTheEnd() {
        const auto row = rowOf<EndRow>();
        ProgramRun run(row.steps, benchOf(1, row.faults));

        QVERIFY2(run.run(), run.problem());

        QCOMPARE(run.shownWindows(), row.windows);
        QCOMPARE(registrations(run), QVector<bool>({true, false}));
        QCOMPARE(run.calledFunctions().first(), registration);
        QCOMPARE(run.calledFunctions().last(), registration);
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
        QCOMPARE(run.boxTexts(), QStringList());
    }

    void fontAndIconOfTheApplication() {
        ProgramRun run({confirmLanguage, confirmInstrument, dismissBox, pressClose},
                       benchOf(2, {fault("KVA_Connect", 0, "KVA_ERROR_CONNECT")}));

        QVERIFY2(run.run(), run.problem());

        const QJsonObject font = {
            {"family", "San Francisco"}, {"pointSize", 13}, {"weight", 50}, {"isItalic", false}};
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
};

TEST_CLASS(TestStartupEnd)
#include "tst_startup_end.moc"
