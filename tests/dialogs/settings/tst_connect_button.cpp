#include "tests/dialogs/settings/SettingsFixture.h"

#include <QListWidget>
#include <QPushButton>
#include <QtTest>

/** The Connect button, with the choice of an instrument where there are several. */
class TestConnectButton : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noInstrumentListed_data();
    void noInstrumentListed();
    void oneInstrument();
    void failedConnection();
    void choice_data();
    void choice();
    void choiceOffersAFreshListEachTime();
    void choiceHasNoOtherWayOut();
    void connectPressedAgainDuringTheChoice();
    void dialogClosedDuringTheChoice_data();
    void dialogClosedDuringTheChoice();
};

namespace {

const QString connectButton = QStringLiteral("ConnectPushBtn");
const QString listCall = QStringLiteral("KVA_GetDevicePortList");

QStringList listedAndConnected() {
    return QStringList{listCall, listCall} + SettingsFixture::connectCalls();
}

QString chosenLine(int row) {
    return QStringLiteral("select portNum[ConnectSelectDialog]:%1").arg(row);
}

QString takenLine(int row) {
    return QStringLiteral("select portNum[main]:%1").arg(row);
}

/** A network instrument. */
QJsonObject networkInstrument(int serial) {
    QJsonObject object = SettingsFixture::instrument(serial);
    object[QStringLiteral("port")] = QJsonObject{
        {QStringLiteral("type"), 2}, {QStringLiteral("name"), QStringLiteral("192.168.0.10")}};
    return object;
}

QJsonArray instruments(int count) {
    QJsonArray array;
    for (int i = 0; i < count; ++i)
        array.append(i == 1 ? networkInstrument(43) : SettingsFixture::instrument(42 + i));
    return array;
}

/** The open selection dialog, as a user sees and uses it. */
class Choice {
public:
    explicit Choice(SettingsFixture& f)
        : m_list(*f.selection.findChild<QListWidget*>()),
          m_ok(*f.selection.findChild<QPushButton*>()) {}

    QStringList rows() const {
        QStringList texts;
        for (int i = 0; i < m_list.count(); ++i)
            texts.append(m_list.item(i)->text());
        return texts;
    }
    int currentRow() const { return m_list.currentRow(); }
    void select(int row) {
        QTest::mouseClick(m_list.viewport(), Qt::LeftButton, {},
                          m_list.visualItemRect(m_list.item(row)).center());
    }
    void accept() { QTest::mouseClick(&m_ok, Qt::LeftButton); }

private:
    QListWidget& m_list;
    QPushButton& m_ok;
};

/** Shows the dialog without a connection. */
void openNotConnected(SettingsFixture& f) {
    f.dialog.connectDevice(-1, false);
    f.dialog.show();
    f.clearRecords();
}

} // namespace

void TestConnectButton::noInstrumentListed_data() {
    QTest::addColumn<int>("attached");
    QTest::addColumn<int>("failingCall");
    QTest::addColumn<QStringList>("calls");
    QTest::newRow("none attached") << 0 << 0 << QStringList{listCall, listCall};
    QTest::newRow("they cannot be counted") << 1 << 1 << QStringList(listCall);
    QTest::newRow("they cannot be listed") << 2 << 2 << QStringList{listCall, listCall};
}

void TestConnectButton::noInstrumentListed() {
    QFETCH(int, attached);
    QFETCH(int, failingCall);
    SettingsFixture f(instruments(attached));
    f.controller->GetDevicePortList(); // a list from before that must not be used
    openNotConnected(f);
    if (failingCall > 0)
        QVERIFY(f.answer(listCall, KVA_ERROR, failingCall));
    f.click(connectButton);

    QCOMPARE(f.boxes(), QStringList(QStringLiteral(
                            "information: The measuring instruments is not connected.")));
    QTEST(f.calls(), "calls");
    QCOMPARE(f.lines().size(), 1);
    QVERIFY(f.lines().constFirst().startsWith(QStringLiteral("port count[")));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QCOMPARE(f.dialog.focusWidget(), &f.child(connectButton));
    QVERIFY(!watchOf(f.dialog).isActive());
    QVERIFY(!f.selection.isVisible());
}

void TestConnectButton::oneInstrument() {
    SettingsFixture f;
    openNotConnected(f);
    bool offered = false;
    f.whenShown(f.selection, [&] { offered = true; });
    const Qt::WindowFlags flags = f.dialog.windowFlags();
    f.click(connectButton);

    QVERIFY(!offered);
    QVERIFY(!f.selection.isVisible());
    QCOMPARE(f.calls(), listedAndConnected());
    QCOMPARE(f.lines(), SettingsFixture::connectLines());
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QVERIFY(watchOf(f.dialog).isActive());
    QCOMPARE(f.dialog.windowFlags(), flags);
}

void TestConnectButton::failedConnection() {
    SettingsFixture f;
    openNotConnected(f);
    QVERIFY(f.answer(QStringLiteral("KVA_Connect"), KVA_ERROR_CONNECT_TIMEOUT));
    f.click(connectButton);

    QCOMPARE(f.boxes(), QStringList(QStringLiteral("error: Failed to connect device.")));
    QCOMPARE(f.calls(), (QStringList{listCall, listCall, QStringLiteral("KVA_Connect")}));
    QCOMPARE(f.lines(),
             (QStringList{QStringLiteral("port count[1] \n"), QStringLiteral("conect error \n")}));
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QVERIFY(!watchOf(f.dialog).isActive());
}

void TestConnectButton::choice_data() {
    QTest::addColumn<int>("attached");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("serialNo");
    QTest::newRow("two, the first as offered") << 2 << 0 << QStringLiteral("00000042");
    QTest::newRow("two, the second") << 2 << 1 << QStringLiteral("00000043");
    QTest::newRow("three, the third") << 3 << 2 << QStringLiteral("00000044");
}

void TestConnectButton::choice() {
    QFETCH(int, attached);
    QFETCH(int, row);
    SettingsFixture f(instruments(attached));
    openNotConnected(f);
    QStringList rows;
    QStringList callsBefore;
    QStringList disabledBefore;
    f.whenShown(f.selection, [&] {
        Choice choice(f);
        rows = choice.rows();
        callsBefore = f.calls();
        disabledBefore = f.disabled();
        if (row != choice.currentRow())
            choice.select(row);
        choice.accept();
    });
    f.click(connectButton);

    QCOMPARE(rows, QStringList({QStringLiteral("VARNE-1(USB,Serial#00000042)"),
                                QStringLiteral("VARNE-1(192.168.0.10,Serial#00000043)"),
                                QStringLiteral("VARNE-1(USB,Serial#00000044)")})
                       .mid(0, attached));
    QCOMPARE(callsBefore, (QStringList{listCall, listCall}));
    QCOMPARE(disabledBefore, SettingsFixture::disabledWhenNotConnected());
    QStringList lines = SettingsFixture::connectLines(attached);
    lines.insert(1, takenLine(row));
    lines.insert(1, chosenLine(0));
    if (row != 0)
        lines.insert(2, chosenLine(row));
    QCOMPARE(f.lines(), lines);
    QCOMPARE(f.calls(), listedAndConnected());
    QTEST(f.identity().constFirst(), "serialNo");
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    QVERIFY(!f.selection.isVisible());
}

void TestConnectButton::choiceOffersAFreshListEachTime() {
    SettingsFixture f(instruments(3));
    openNotConnected(f);
    f.whenShown(f.selection, [&] {
        Choice(f).select(2);
        Choice(f).accept();
    });
    f.click(connectButton);
    f.click(QStringLiteral("disConnectPushBtn"));
    QVERIFY(f.set(R"({"plugged": false})"));
    f.clearRecords();

    QStringList rows;
    int current = -1;
    f.whenShown(f.selection, [&] {
        rows = Choice(f).rows();
        current = Choice(f).currentRow();
        Choice(f).accept();
    });
    f.click(connectButton);
    QCOMPARE(rows, (QStringList{QStringLiteral("VARNE-1(192.168.0.10,Serial#00000043)"),
                                QStringLiteral("VARNE-1(USB,Serial#00000044)")}));
    QCOMPARE(current, 0);
    QCOMPARE(f.lines().constFirst(), QStringLiteral("port count[2] \n"));
    QCOMPARE(f.lines().indexOf(takenLine(0)), f.lines().indexOf(chosenLine(0)) + 1);
    QCOMPARE(f.identity().constFirst(), QStringLiteral("00000043"));
}

void TestConnectButton::choiceHasNoOtherWayOut() {
    SettingsFixture f(instruments(2));
    openNotConnected(f);
    f.whenShown(f.selection, [&] {
        QTest::keyClick(&f.selection, Qt::Key_Escape);
        QVERIFY(f.selection.isVisible());
        f.selection.close(); // as a window manager may
        f.whenShown(f.selection, [&] { Choice(f).accept(); });
    });
    f.click(connectButton);
    QCOMPARE(f.calls(), listedAndConnected());
}

void TestConnectButton::connectPressedAgainDuringTheChoice() {
    SettingsFixture f(instruments(2));
    openNotConnected(f);
    f.whenShown(f.selection, [&] {
        // Prepared before the button is pressed: a second choice would not come back by itself.
        f.whenShown(f.selection, [&] {
            Choice(f).select(1);
            Choice(f).accept();
        });
        f.click(connectButton);
        QVERIFY(f.selection.isVisible());
        QCOMPARE(f.calls(), (QStringList{listCall, listCall}));
    });
    f.click(connectButton);

    QCOMPARE(f.calls(), listedAndConnected());
    QCOMPARE(f.lines().count(takenLine(1)), 1);
    QCOMPARE(f.identity().constFirst(), QStringLiteral("00000043"));
    QCOMPARE(f.boxes(), QStringList());
    QVERIFY(!f.selection.isVisible());
}

void TestConnectButton::dialogClosedDuringTheChoice_data() {
    QTest::addColumn<bool>("byButton");
    QTest::addColumn<bool>("afterOk");
    QTest::newRow("by the Close button") << true << false;
    QTest::newRow("by the title bar") << false << false;
    QTest::newRow("by the Close button, in one pass with OK") << true << true;
    QTest::newRow("by the title bar, in one pass with OK") << false << true;
}

void TestConnectButton::dialogClosedDuringTheChoice() {
    QFETCH(bool, byButton);
    QFETCH(bool, afterOk);
    SettingsFixture f(instruments(2));
    openNotConnected(f);
    f.whenShown(f.selection, [&] {
        if (afterOk)
            Choice(f).accept();
        if (byButton)
            f.click(QStringLiteral("ClosePushBtn"));
        else
            f.dialog.close();
    });
    f.click(connectButton);

    QVERIFY(f.dialog.isFinished);
    QVERIFY(!f.dialog.isVisible());
    QVERIFY(!f.selection.isVisible());
    QCOMPARE(f.calls(), (QStringList{listCall, listCall}));
    QCOMPARE(f.lines(), (QStringList{QStringLiteral("port count[2] \n"), chosenLine(0)}));
    QCOMPARE(f.boxes(), QStringList());
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenNotConnected());
    QVERIFY(!watchOf(f.dialog).isActive());
}

QTEST_MAIN(TestConnectButton)
#include "tst_connect_button.moc"
