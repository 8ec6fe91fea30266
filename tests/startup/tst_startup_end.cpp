#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"

#include <QFileInfo>
#include <QtTest>

using namespace Steps;

namespace {

const QString registration = QStringLiteral("KVA_RegisterDeviceEventHandler");

/** The story of a run in English up to the call that lists the instruments. */
QStringList storyOfTheLanguage() {
    return {registration, QStringLiteral("shown LangSelectDialog"),
            QStringLiteral("hidden LangSelectDialog"), QStringLiteral("log select English:1")};
}

QStringList storyOfTheList(int count) {
    return {QStringLiteral("KVA_GetDevicePortList"),
            QStringLiteral("log port count[%1] \n").arg(count),
            QStringLiteral("KVA_GetDevicePortList")};
}

/** The settings dialog fills itself from the instrument, then comes up. */
QStringList storyOfTheConnection() {
    return {QStringLiteral("KVA_Connect"),
            QStringLiteral("KVA_GetDeviceInfo"),
            QStringLiteral("KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA"),
            QStringLiteral("log   wifiModuleEnable :      1\n"),
            QStringLiteral("KVA_GetNetworkInfo"),
            QStringLiteral("KVA_JIG_GetFactoryCalib_CALREFDATA"),
            QStringLiteral("KVA_GetShutdownTime"),
            QStringLiteral("log KVA_GetShutdownTime() success[mode:2].\n"),
            QStringLiteral("shown InitSettingDialog")};
}

/** The settings dialog goes first, the controller last but before the application object. */
QStringList storyOfTheEnd() {
    return {QStringLiteral("hidden InitSettingDialog"),
            QStringLiteral("destroyed InitSettingDialog"),
            QStringLiteral("destroyed ConnectSelectDialog"),
            QStringLiteral("destroyed LangSelectDialog"),
            registration,
            QStringLiteral("application ends")};
}

/** Whether each registration of an event handler named one, in order. */
QVector<bool> registrations(const ProgramRun& run) {
    QVector<bool> handlers;
    for (const QJsonObject& call : run.calls()) {
        const QJsonObject arguments = call.value(QLatin1String("arguments")).toObject();
        if (call.value(QLatin1String("function")).toString() == registration)
            handlers.append(arguments.value(QLatin1String("handler")).toBool());
    }
    return handlers;
}

} // namespace

class TestStartupEnd : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void storyWithOneInstrument();
    void storyWithTwoInstruments();
    void storyWithoutEnumeration();
    void handlerIsRemovedAtTheEnd_data();
    void handlerIsRemovedAtTheEnd();
    void leftWhileConnected_data();
    void leftWhileConnected();
    void closedWhileConnectedAndDisconnectFails();
    void registrationFails();
    void fontAndIconOfTheApplication();
    void otherLibrary_data();
    void otherLibrary();
    void otherLibraryThatFails();
};

void TestStartupEnd::storyWithOneInstrument() {
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = {confirmLanguage(), disconnectInstrument(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    const QStringList expected = storyOfTheLanguage() + storyOfTheList(1) + storyOfTheConnection() +
                                 QStringList(QStringLiteral("KVA_Disconnect")) + storyOfTheEnd();
    QVERIFY2(run.story() == expected, run.problem());
}

void TestStartupEnd::storyWithTwoInstruments() {
    ProgramRun run;
    run.steps = {confirmLanguage(), selectRow(1), confirmInstrument(), disconnectInstrument(),
                 pressClose()};

    QVERIFY2(run.run(), run.problem());

    const QStringList choice = {
        QStringLiteral("log select portNum[ConnectSelectDialog]:0"),
        QStringLiteral("shown ConnectSelectDialog"),
        QStringLiteral("log select portNum[ConnectSelectDialog]:1"),
        QStringLiteral("hidden ConnectSelectDialog"),
        QStringLiteral("log select portNum[main]:1"),
    };
    const QStringList expected = storyOfTheLanguage() + storyOfTheList(2) + choice +
                                 storyOfTheConnection() +
                                 QStringList(QStringLiteral("KVA_Disconnect")) + storyOfTheEnd();
    QVERIFY2(run.story() == expected, run.problem());
}

void TestStartupEnd::storyWithoutEnumeration() {
    ProgramRun run;
    run.bench = benchOf(
        1, {fault(QStringLiteral("KVA_GetDevicePortList"), 2, QStringLiteral("KVA_ERROR"))});
    run.steps = {confirmLanguage(), dismissBox(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    const QString box =
        QStringLiteral("QMessageBox \"The measuring instruments is not connected.\"");
    const QStringList expected =
        storyOfTheLanguage() + storyOfTheList(1) +
        QStringList({QStringLiteral("shown ") + box, QStringLiteral("hidden ") + box,
                     QStringLiteral("shown InitSettingDialog")}) +
        storyOfTheEnd();
    QVERIFY2(run.story() == expected, run.problem());
}

void TestStartupEnd::handlerIsRemovedAtTheEnd_data() {
    QTest::addColumn<QJsonArray>("steps");

    QTest::newRow("cancelled") << QJsonArray{closeWindow(languageDialog)};
    QTest::newRow("language rejected") << QJsonArray{rejectWindow(languageDialog)};
    QTest::newRow("language hidden") << QJsonArray{hideWindow(languageDialog)};
    QTest::newRow("disconnected") << QJsonArray{confirmLanguage(), disconnectInstrument(),
                                                pressClose()};
    QTest::newRow("closed") << QJsonArray{confirmLanguage(), closeWindow(settingsDialog)};
}

void TestStartupEnd::handlerIsRemovedAtTheEnd() {
    QFETCH(QJsonArray, steps);
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = steps;

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(registrations(run), QVector<bool>({true, false}));
    QCOMPARE(run.calledFunctions().first(), registration);
    QCOMPARE(run.calledFunctions().last(), registration);
}

void TestStartupEnd::leftWhileConnected_data() {
    QTest::addColumn<QJsonObject>("leave");

    QTest::newRow("closed") << closeWindow(settingsDialog);
    QTest::newRow("rejected") << rejectWindow(settingsDialog);
    QTest::newRow("hidden") << hideWindow(settingsDialog);
}

/** By the window's close control, or by any other way of making it disappear. */
void TestStartupEnd::leftWhileConnected() {
    QFETCH(QJsonObject, leave);
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = {confirmLanguage(), leave};

    QVERIFY2(run.run(), run.problem());

    // What is hidden first is closed after that: the same calls, in another order.
    const auto sorted = [](QStringList lines) {
        lines.sort();
        return lines;
    };
    const QStringList expected = storyOfTheLanguage() + storyOfTheList(1) + storyOfTheConnection() +
                                 QStringList(QStringLiteral("KVA_Disconnect")) + storyOfTheEnd();
    QVERIFY2(sorted(run.story()) == sorted(expected), run.problem());
    QCOMPARE(run.story().mid(run.story().size() - 5), storyOfTheEnd().mid(1));
    QCOMPARE(run.boxTexts(), QStringList());
}

void TestStartupEnd::closedWhileConnectedAndDisconnectFails() {
    ProgramRun run;
    run.bench = benchOf(
        1, {fault(QStringLiteral("KVA_Disconnect"), 0, QStringLiteral("KVA_ERROR_DISCONNECT"))});
    run.steps = {confirmLanguage(), closeWindow(settingsDialog), dismissBox()};

    QVERIFY2(run.run(), run.problem());

    const QString box = QStringLiteral("QMessageBox \"Failed to disconnect device.\"");
    const QStringList expected =
        storyOfTheLanguage() + storyOfTheList(1) + storyOfTheConnection() +
        QStringList({QStringLiteral("KVA_Disconnect"), QStringLiteral("log diconect error \n"),
                     QStringLiteral("shown ") + box, QStringLiteral("hidden ") + box}) +
        storyOfTheEnd();
    QVERIFY2(run.story() == expected, run.problem());
}

/** Nothing is made of it. */
void TestStartupEnd::registrationFails() {
    ProgramRun run;
    run.bench = benchOf(1, {fault(registration, 0, QStringLiteral("KVA_ERROR"))});
    run.steps = {confirmLanguage(), disconnectInstrument(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows(), QStringList({languageDialog, settingsDialog}));
    QCOMPARE(registrations(run), QVector<bool>({true, false}));
}

void TestStartupEnd::fontAndIconOfTheApplication() {
    ProgramRun run;
    run.bench =
        benchOf(2, {fault(QStringLiteral("KVA_Connect"), 0, QStringLiteral("KVA_ERROR_CONNECT"))});
    run.steps = {confirmLanguage(), confirmInstrument(), dismissBox(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    const QJsonObject font = {{QStringLiteral("family"), QStringLiteral("San Francisco")},
                              {QStringLiteral("pointSize"), 13},
                              {QStringLiteral("weight"), 50},
                              {QStringLiteral("isItalic"), false}};
    const QJsonArray widths = {16, 32, 48, 64, 128, 256};
    for (const QString& window : {languageDialog, instrumentDialog, messageBox, settingsDialog}) {
        const QJsonObject state = run.state(window);
        QCOMPARE(state.value(QLatin1String("font")).toObject(), font);
        QCOMPARE(state.value(QLatin1String("windowFontFamily")),
                 font.value(QLatin1String("family")));
        QCOMPARE(state.value(QLatin1String("applicationIconWidths")).toArray(), widths);
        QCOMPARE(state.value(QLatin1String("iconWidths")).toArray(), widths);
        QCOMPARE(state.value(QLatin1String("ownIcon")).toBool(), true);
        QCOMPARE(state.value(QLatin1String("hasParent")).toBool(true), false);
    }
}

void TestStartupEnd::otherLibrary_data() {
    QTest::addColumn<bool>("isReplaced");
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");

    const QString library = QStringLiteral(OTHER_SDK_SERVING);
    QTest::newRow("in lib") << true << QString() << QString();
    QTest::newRow("on the library path")
        << false << QStringLiteral("LD_LIBRARY_PATH") << QFileInfo(library).path();
    QTest::newRow("preloaded") << false << QStringLiteral("LD_PRELOAD") << library;
}

/** Another library of the name serves without a rebuild. */
void TestStartupEnd::otherLibrary() {
    QFETCH(bool, isReplaced);
    QFETCH(QString, variable);
    QFETCH(QString, value);
    ProgramTree tree;
    QVERIFY(tree.isComplete());
    QVERIFY(!isReplaced || tree.replaceLibrary(QStringLiteral(OTHER_SDK_SERVING)));
    ProgramRun run;
    run.program = tree.program();
    if (!variable.isEmpty())
        run.environment.insert(variable, value);
    // A preloaded library comes before the run-time library of the sanitizer, where there is one.
    run.environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           qEnvironmentVariable("ASAN_OPTIONS") +
                               QStringLiteral(":verify_asan_link_order=0"));
    run.steps = {confirmLanguage(), disconnectInstrument(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows(), QStringList({languageDialog, settingsDialog}));
    QCOMPARE(textIn(run.state(settingsDialog), "serialNolabel"), QStringLiteral("07654321"));
    QCOMPARE(run.calledFunctions(), QStringList()); // not the simulator, which would trace
}

void TestStartupEnd::otherLibraryThatFails() {
    ProgramTree tree;
    QVERIFY(tree.isComplete());
    QVERIFY(tree.replaceLibrary(QStringLiteral(OTHER_SDK_FAILING)));
    ProgramRun run;
    run.program = tree.program();
    run.steps = {confirmLanguage(), dismissBox(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(),
             QStringList(QStringLiteral("The measuring instruments is not connected.")));
    QCOMPARE(run.calledFunctions(), QStringList());
}

QTEST_GUILESS_MAIN(TestStartupEnd)
#include "tst_startup_end.moc"
