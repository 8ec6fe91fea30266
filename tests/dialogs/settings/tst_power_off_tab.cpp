#include "tests/dialogs/settings/ConnectedFixture.h"
#include "tests/support/TestMain.h"

namespace {

const QStringList bothButtons = words("getAutoPWOffPushBtn setAutoPWOffPushBtn");
const QStringList choices = words("invalidradioBtn fifteenRadioBtn thirtyRadioBtn sixtyRadioBtn");

struct Mode {
    const char* name;
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

Q_DECLARE_METATYPE(Mode)

/** The tab of the automatic power-off. */
class TestPowerOffTab : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reads_data() {
        addRows(QVector<Mode>{
            {"disabled", 3, 0, {choices[0]}},
            {"15 minutes", 0, 1, {choices[1]}},
            {"30 minutes", 1, 2, {choices[2]}},
            {"60 minutes", 2, 3, {choices[3]}},
            {"no change", 2, 2, {choices[2]}},
            {"unknown mode leaves the choice", 1, 4, {choices[1]}},
            {"last unknown mode leaves the choice", 3, 255, {choices[3]}},
            {"unknown mode without a choice", 200, 4, {}},
            {"first choice", 200, 3, {choices[3]}},
        });
    }

    void reads() {
        QFETCH(const Mode, row);
        ConnectedFixture f(SettingsFixture::PowerOff, patch(row.before));
        TestBench::set(patch(row.mode));
        f.click("getAutoPWOffPushBtn");

        QCOMPARE(f.records(),
                 (QStringList{"information: Successful read body data.", "KVA_GetShutdownTime",
                              QString("KVA_GetShutdownTime() success[mode:%1].\n").arg(row.mode)}));
        QCOMPARE(choiceIn(f), row.checked);
        QCOMPARE(f.busyAtBox(), bothButtons);
        QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected);
    }

    void writes_data() {
        addRows(QVector<Mode>{
            {"disabled", 3, 0, {choices[0]}},
            {"15 minutes", 0, 1, {choices[1]}},
            {"30 minutes", 1, 2, {choices[2]}},
            {"60 minutes", 2, 3, {choices[3]}},
            {"in place of an unknown mode", 9, 0, {choices[0]}},
        });
    }

    void writes() {
        QFETCH(const Mode, row);
        ConnectedFixture f(SettingsFixture::PowerOff, patch(row.before));
        QJsonObject expected = TestBench::state();
        expected["powerOffMode"] = row.mode;
        f.click(choices[row.mode]);
        f.click("setAutoPWOffPushBtn");

        QCOMPARE(f.records(),
                 (QStringList{"information: Successful device writing.", "KVA_SetShutdownTime",
                              QString("KVA_SetShutdownTime() success[mode:%1].\n").arg(row.mode)}));
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

    void buttonsAreExclusive() {
        ConnectedFixture f(SettingsFixture::PowerOff);
        for (const QString& name : choices) {
            f.click(name);
            QCOMPARE(choiceIn(f), QStringList(name));
        }
        QCOMPARE(f.calls(), QStringList());
    }
};

TEST_CLASS(TestPowerOffTab)
#include "tst_power_off_tab.moc"
