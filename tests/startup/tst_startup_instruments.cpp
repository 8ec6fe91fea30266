#include "tests/startup/ProgramRun.h"
#include "tests/startup/ProgramTree.h"
#include "tests/startup/Steps.h"

#include <QMessageBox>
#include <QtTest>

using namespace Steps;

namespace {

const QString enumeration = QStringLiteral("KVA_GetDevicePortList");
const QString mainLine = QStringLiteral("select portNum[main]:%1");

/** The serial numbers that the program opened a connection to. */
QVector<int> connectedTo(const ProgramRun& run) {
    QVector<int> serialNumbers;
    for (const QJsonObject& call : run.calls()) {
        const QJsonObject arguments = call.value(QLatin1String("arguments")).toObject();
        if (call.value(QLatin1String("function")).toString() == QLatin1String("KVA_Connect"))
            serialNumbers.append(arguments.value(QLatin1String("serialNumber")).toInt());
    }
    return serialNumbers;
}

/** The debug lines of the choice of an instrument as the entry point took it. */
QStringList choices(const ProgramRun& run) {
    return run.debugLines().filter(QStringLiteral("select portNum[main]"));
}

} // namespace

class TestStartupInstruments : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneInstrument();
    void severalInstruments_data();
    void severalInstruments();
    void choiceWindow();
    void choiceCannotBeLeft();
    void noInstrument();
    void failedEnumeration_data();
    void failedEnumeration();
    void unusableBench();
    void enumerationWithAWarning();

private:
    static void compareNoInstrument(const QJsonObject& settings);
};

void TestStartupInstruments::oneInstrument() {
    ProgramRun run;
    run.bench = benchOf(1);
    run.steps = {confirmLanguage(), disconnectInstrument(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows(), QStringList({languageDialog, settingsDialog}));
    QCOMPARE(connectedTo(run), QVector<int>{1000001});
    QCOMPARE(choices(run), QStringList());
    QCOMPARE(textIn(run.state(settingsDialog), "serialNolabel"), QStringLiteral("01000001"));
}

void TestStartupInstruments::severalInstruments_data() {
    QTest::addColumn<int>("attached");
    QTest::addColumn<QJsonArray>("selections");
    QTest::addColumn<int>("portNum");
    QTest::addColumn<int>("serialNumber");

    const QJsonArray untouched;
    QTest::newRow("two, not touched") << 2 << untouched << 0 << 1000001;
    QTest::newRow("two, the second") << 2 << QJsonArray{selectRow(1)} << 1 << 1000002;
    QTest::newRow("three, not touched") << 3 << untouched << 0 << 1000001;
    QTest::newRow("three, the second") << 3 << QJsonArray{selectRow(1)} << 1 << 1000002;
    QTest::newRow("three, the third") << 3 << QJsonArray{selectRow(2)} << 2 << 1000003;
    QTest::newRow("three, the third and back")
        << 3 << QJsonArray{selectRow(2), selectRow(0)} << 0 << 1000001;
}

void TestStartupInstruments::severalInstruments() {
    QFETCH(int, attached);
    QFETCH(QJsonArray, selections);
    QFETCH(int, portNum);
    QFETCH(int, serialNumber);
    ProgramRun run;
    run.bench = benchOf(attached);
    run.steps = {confirmLanguage()};
    for (const QJsonValue& selection : qAsConst(selections))
        run.steps.append(selection);
    run.steps.append(confirmInstrument());
    run.steps.append(disconnectInstrument());
    run.steps.append(pressClose());

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows(), QStringList({languageDialog, instrumentDialog, settingsDialog}));
    QCOMPARE(choices(run), QStringList(mainLine.arg(portNum)));
    QCOMPARE(connectedTo(run), QVector<int>{serialNumber});
    const QStringList all = {QStringLiteral("VARNE-1(USB,Serial#01000001)"),
                             QStringLiteral("VARNE-1(192.168.0.20,Serial#01000002)"),
                             QStringLiteral("VARNE-1(USB,Serial#01000003)")};
    const QJsonObject choice = run.state(instrumentDialog);
    QCOMPARE(namesIn(choice, "rows"), all.mid(0, attached));
    QCOMPARE(choice.value(QLatin1String("currentRow")).toInt(-1), 0);
    QCOMPARE(textIn(run.state(settingsDialog), "serialNolabel"),
             QStringLiteral("0%1").arg(serialNumber));
}

void TestStartupInstruments::choiceWindow() {
    ProgramRun run;
    run.steps = {chooseJapanese(), confirmLanguage(), confirmInstrument(),
                 closeWindow(settingsDialog)};

    QVERIFY2(run.run(), run.problem());

    const QJsonObject state = run.state(instrumentDialog);
    const QString japanese = QStringLiteral("jp.qm");
    QCOMPARE(state.value(QLatin1String("title")).toString(),
             translated(japanese, "ConnectSelectDialog", "Select Device"));
    QCOMPARE(textIn(state, "pushButton"), translated(japanese, "ConnectSelectDialog", "OK"));
    // Qt::Window and the system menu are what Qt adds to the flags of a window without parent.
    const Qt::WindowFlags flags = Qt::Window | Qt::WindowSystemMenuHint | Qt::CustomizeWindowHint |
                                  Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                                  Qt::WindowMaximizeButtonHint;
    QCOMPARE(state.value(QLatin1String("flags")).toInt(), static_cast<int>(flags));
    QCOMPARE(state.value(QLatin1String("hasParent")).toBool(true), false);
    QCOMPARE(state.value(QLatin1String("isFixed")).toBool(), true);
}

/** Its button is the only way out. */
void TestStartupInstruments::choiceCannotBeLeft() {
    ProgramRun run;
    run.steps = {confirmLanguage(),   strike(instrumentDialog, Qt::Key_Escape),
                 selectRow(1),        closeWindow(instrumentDialog),
                 confirmInstrument(), closeWindow(settingsDialog)};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.shownWindows().last(), settingsDialog);
    QCOMPARE(choices(run), QStringList(mainLine.arg(1)));
    QCOMPARE(connectedTo(run), QVector<int>{1000002});
}

void TestStartupInstruments::noInstrument() {
    ProgramRun run;
    run.bench = benchOf(0);
    run.steps = {confirmLanguage(), confirmInstrument(), dismissBox(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    const QString text = QStringLiteral("Failed to connect device.");
    QCOMPARE(run.shownWindows(),
             QStringList({languageDialog, instrumentDialog,
                          QStringLiteral("QMessageBox \"%1\"").arg(text), settingsDialog}));
    const QJsonObject choice = run.state(instrumentDialog);
    QCOMPARE(choice.value(QLatin1String("rows")).toArray(), QJsonArray());
    QCOMPARE(choices(run), QStringList(mainLine.arg(0)));
    QCOMPARE(run.state(messageBox).value(QLatin1String("icon")).toInt(),
             static_cast<int>(QMessageBox::Critical));
    QVERIFY(run.debugLines().contains(QStringLiteral("conect error \n")));
    QCOMPARE(connectedTo(run), QVector<int>());
    compareNoInstrument(run.state(settingsDialog));
}

void TestStartupInstruments::failedEnumeration_data() {
    QTest::addColumn<int>("call");
    QTest::addColumn<QString>("result");
    QTest::addColumn<int>("calls");

    QTest::newRow("the count") << 1 << QStringLiteral("KVA_ERROR") << 1;
    QTest::newRow("the count, not answered")
        << 1 << QStringLiteral("KVA_ERROR_COMMUNICATION_TIMEOUT") << 1;
    QTest::newRow("the list") << 2 << QStringLiteral("KVA_ERROR") << 2;
}

void TestStartupInstruments::failedEnumeration() {
    QFETCH(int, call);
    QFETCH(QString, result);
    QFETCH(int, calls);
    ProgramRun run;
    run.bench = benchOf(3, {fault(enumeration, call, result)});
    run.steps = {confirmLanguage(), dismissBox(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    const QString text = QStringLiteral("The measuring instruments is not connected.");
    QCOMPARE(run.shownWindows(),
             QStringList(
                 {languageDialog, QStringLiteral("QMessageBox \"%1\"").arg(text), settingsDialog}));
    const QString registration = QStringLiteral("KVA_RegisterDeviceEventHandler");
    QCOMPARE(run.calledFunctions(),
             QStringList({registration}) +
                 QStringList(calls == 1 ? QStringList({enumeration})
                                        : QStringList({enumeration, enumeration})) +
                 QStringList({registration}));
    QCOMPARE(choices(run), QStringList());
    compareNoInstrument(run.state(settingsDialog));
}

/** The settings dialog without an instrument. */
void TestStartupInstruments::compareNoInstrument(const QJsonObject& settings) {
    const QStringList disabled = namesIn(settings, "disabled");
    const QStringList without = {
        QStringLiteral("disConnectPushBtn"),   QStringLiteral("networkSetTab"),
        QStringLiteral("autoPowerOfftab"),     QStringLiteral("ambLightAdpTab"),
        QStringLiteral("wCalibPlateTab"),      QStringLiteral("setWCPValPushBtn"),
        QStringLiteral("setAmbAdpBodyPushBtn")};
    for (const QString& name : without)
        QVERIFY2(disabled.contains(name), qPrintable(name));
    QVERIFY(!disabled.contains(QStringLiteral("ConnectPushBtn")));
    QVERIFY(!disabled.contains(QStringLiteral("ClosePushBtn")));
    const QStringList checked = namesIn(settings, "checked");
    for (const QString& name :
         {QStringLiteral("enableRadioBtn"), QStringLiteral("disableRadioBtn"),
          QStringLiteral("dhcpOnRadioBtn"), QStringLiteral("dhcpOffRadioBtn")})
        QVERIFY2(!checked.contains(name), qPrintable(name));
    QCOMPARE(settings.value(QLatin1String("focus")).toString(), QStringLiteral("ConnectPushBtn"));
    QCOMPARE(textIn(settings, "serialNolabel"), QString());
}

/** The simulated instruments cannot be read at all. */
void TestStartupInstruments::unusableBench() {
    ProgramRun run;
    run.bench = {{QStringLiteral("version"), QStringLiteral("none")}};
    run.steps = {confirmLanguage(), dismissBox(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(),
             QStringList(QStringLiteral("The measuring instruments is not connected.")));
    compareNoInstrument(run.state(settingsDialog));
}

/** Warnings count as success. */
void TestStartupInstruments::enumerationWithAWarning() {
    ProgramRun run;
    run.bench = benchOf(1, {fault(enumeration, 0, QStringLiteral("KVA_WARNING_BATTERY_EMPTY"))});
    run.steps = {confirmLanguage(), disconnectInstrument(), pressClose()};

    QVERIFY2(run.run(), run.problem());

    QCOMPARE(run.boxTexts(), QStringList());
    QCOMPARE(connectedTo(run), QVector<int>{1000001});
}

QTEST_GUILESS_MAIN(TestStartupInstruments)
#include "tst_startup_instruments.moc"
