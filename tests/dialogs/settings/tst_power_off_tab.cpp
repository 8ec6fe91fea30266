#include "tests/dialogs/settings/SettingsFixture.h"

#include <QtTest>

/** The tab of the automatic power-off. */
class TestPowerOffTab : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void failingRead();
    void writes_data();
    void writes();
    void writesNothingWithoutAChoice();
    void failingWrite();
    void warningsAreSuccess();
    void buttonsAreExclusive();
};

namespace {

const QString readButton = QStringLiteral("getAutoPWOffPushBtn");
const QString writeButton = QStringLiteral("setAutoPWOffPushBtn");
const QString readCall = QStringLiteral("KVA_GetShutdownTime");
const QString writeCall = QStringLiteral("KVA_SetShutdownTime");
const QString readSuccess = QStringLiteral("information: Successful read body data.");
const QString readFailure = QStringLiteral("error: Failed to read automatic shutdown time.");
const QString writeSuccess = QStringLiteral("information: Successful device writing.");
const QString writeFailure = QStringLiteral("error: Failed to write automatic shutdown time.");

const QStringList buttons = {QStringLiteral("invalidradioBtn"), QStringLiteral("fifteenRadioBtn"),
                             QStringLiteral("thirtyRadioBtn"), QStringLiteral("sixtyRadioBtn")};

/** The tab's radio buttons that are checked. */
QStringList checkedIn(SettingsFixture& f) {
    QStringList names;
    for (const QString& name : f.checked()) {
        if (buttons.contains(name))
            names.append(name);
    }
    return names;
}

/** Keeps which of the tab's push buttons are disabled while a box is open. */
void watchButtons(SettingsFixture& f, QStringList& disabled) {
    f.answers.onBox = [&f, &disabled](QMessageBox&) {
        for (const QString& name : {readButton, writeButton}) {
            if (f.disabled().contains(name))
                disabled.append(name);
        }
    };
}

const QStringList bothButtons = {readButton, writeButton};

int mode() {
    return SettingsFixture::state()[QStringLiteral("powerOffMode")].toInt(-1);
}

QString line(const char* call, bool success, int mode) {
    return QStringLiteral("%1() %2[mode:%3].\n")
        .arg(QLatin1String(call), success ? QStringLiteral("success") : QStringLiteral("failed"))
        .arg(mode);
}

} // namespace

void TestPowerOffTab::reads_data() {
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("button"); // -1: none
    QTest::newRow("disabled") << 3 << 0 << 0;
    QTest::newRow("15 minutes") << 0 << 1 << 1;
    QTest::newRow("30 minutes") << 1 << 2 << 2;
    QTest::newRow("60 minutes") << 2 << 3 << 3;
    QTest::newRow("no change") << 2 << 2 << 2;
    QTest::newRow("unknown mode leaves the choice") << 1 << 4 << 1;
    QTest::newRow("last unknown mode leaves the choice") << 3 << 255 << 3;
    QTest::newRow("unknown mode without a choice") << 200 << 4 << -1;
    QTest::newRow("first choice") << 200 << 3 << 3;
}

void TestPowerOffTab::reads() {
    QFETCH(int, before);
    QFETCH(int, mode);
    QFETCH(int, button);
    SettingsFixture f;
    QVERIFY(f.set("{\"powerOffMode\": " + QByteArray::number(before) + '}'));
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(f.set("{\"powerOffMode\": " + QByteArray::number(mode) + '}'));
    QStringList disabled;
    watchButtons(f, disabled);
    f.click(readButton);

    QCOMPARE(f.boxes(), QStringList(readSuccess));
    QCOMPARE(f.calls(), QStringList(readCall));
    QCOMPARE(f.lines(), QStringList(line("KVA_GetShutdownTime", true, mode)));
    QCOMPARE(checkedIn(f), button < 0 ? QStringList() : QStringList(buttons[button]));
    QCOMPARE(disabled, bothButtons);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestPowerOffTab::failingRead() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(f.answer(readCall, KVA_ERROR_NAV));
    const QStringList before = f.everything();
    QStringList disabled;
    watchButtons(f, disabled);
    f.click(readButton);

    QCOMPARE(f.boxes(), QStringList(readFailure));
    QCOMPARE(f.calls(), QStringList(readCall));
    // The byte that no mode has, as the instrument has not set one.
    QCOMPARE(f.lines(), QStringList(line("KVA_GetShutdownTime", false, 255)));
    QCOMPARE(disabled, bothButtons);
    QCOMPARE(f.everything(), before);
}

void TestPowerOffTab::writes_data() {
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("mode");
    QTest::newRow("disabled") << 3 << 0;
    QTest::newRow("15 minutes") << 0 << 1;
    QTest::newRow("30 minutes") << 1 << 2;
    QTest::newRow("60 minutes") << 2 << 3;
    QTest::newRow("in place of an unknown mode") << 9 << 0;
}

void TestPowerOffTab::writes() {
    QFETCH(int, before);
    QFETCH(int, mode);
    SettingsFixture f;
    QVERIFY(f.set("{\"powerOffMode\": " + QByteArray::number(before) + '}'));
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QJsonObject expected = SettingsFixture::state();
    expected[QStringLiteral("powerOffMode")] = mode;
    f.click(buttons[mode]);
    QStringList disabled;
    watchButtons(f, disabled);
    f.click(writeButton);

    QCOMPARE(f.boxes(), QStringList(writeSuccess));
    QCOMPARE(f.calls(), QStringList(writeCall));
    QCOMPARE(f.lines(), QStringList(line("KVA_SetShutdownTime", true, mode)));
    QCOMPARE(SettingsFixture::state(), expected);
    QCOMPARE(checkedIn(f), QStringList(buttons[mode]));
    QCOMPARE(disabled, bothButtons);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestPowerOffTab::writesNothingWithoutAChoice() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"powerOffMode": 4})"));
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QCOMPARE(checkedIn(f), QStringList());
    QStringList disabled;
    watchButtons(f, disabled);
    f.click(writeButton);

    QCOMPARE(f.boxes(), QStringList(writeFailure));
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), QStringList());
    QCOMPARE(mode(), 4);
    QCOMPARE(disabled, bothButtons);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestPowerOffTab::failingWrite() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(f.answer(writeCall, KVA_ERROR_NSP));
    f.click(buttons[3]);
    QStringList disabled;
    watchButtons(f, disabled);
    f.click(writeButton);

    QCOMPARE(f.boxes(), QStringList(writeFailure));
    QCOMPARE(f.calls(), QStringList(writeCall));
    QCOMPARE(f.lines(), QStringList(line("KVA_SetShutdownTime", false, 3)));
    QCOMPARE(mode(), 2);
    QCOMPARE(checkedIn(f), QStringList(buttons[3]));
    QCOMPARE(disabled, bothButtons);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
}

void TestPowerOffTab::warningsAreSuccess() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(f.answer(QStringLiteral("*"), KVA_WARNING_INITIALDATE_SETTING));
    f.click(writeButton);
    f.click(readButton);
    QCOMPARE(f.boxes(), (QStringList{writeSuccess, readSuccess}));
}

void TestPowerOffTab::buttonsAreExclusive() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    for (const QString& name : buttons) {
        f.click(name);
        QCOMPARE(checkedIn(f), QStringList(name));
    }
    QCOMPARE(f.calls(), QStringList());
}

QTEST_MAIN(TestPowerOffTab)
#include "tst_power_off_tab.moc"
