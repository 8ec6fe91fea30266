#include "tests/dialogs/settings/SettingsFixture.h"

#include <QGroupBox>
#include <QLabel>
#include <QTabWidget>
#include <QtTest>

/** The network tab's checks and switches, and the change of tabs. */
class TestNetworkTab : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void digitsOnly_data();
    void digitsOnly();
    void checksTheEditsInOrder();
    void checksEveryEdit();
    void switchesTheEdits();
    void dhcpOnKeepsTheTexts();
    void dhcpOffEmptiesTheTexts();
    void choosingTabs_data();
    void choosingTabs();
    void choosingDisabledTabs_data();
    void choosingDisabledTabs();
    void unknownTabs();
};

namespace {

const QStringList sixteenOctets = {
    QStringLiteral("10"), QStringLiteral("1"),  QStringLiteral("2"),  QStringLiteral("3"),
    QStringLiteral("4"),  QStringLiteral("5"),  QStringLiteral("6"),  QStringLiteral("7"),
    QStringLiteral("8"),  QStringLiteral("9"),  QStringLiteral("11"), QStringLiteral("12"),
    QStringLiteral("13"), QStringLiteral("14"), QStringLiteral("15"), QStringLiteral("16")};

/** Keeps the reasons for which a widget gets the focus. */
class FocusReasons : public QObject {
public:
    explicit FocusReasons(QWidget& widget) { widget.installEventFilter(this); }

    QVector<Qt::FocusReason> reasons;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn)
            reasons.append(static_cast<QFocusEvent*>(event)->reason());
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void TestNetworkTab::digitsOnly_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("digits");
    QTest::addColumn<int>("looked"); // at so many characters
    QTest::newRow("empty") << QString() << false << 0;
    QTest::newRow("one digit") << QStringLiteral("0") << true << 1;
    QTest::newRow("all digits") << QStringLiteral("0123456789") << true << 10;
    QTest::newRow("leading zeros") << QStringLiteral("007") << true << 3;
    QTest::newRow("too great for an octet") << QStringLiteral("256") << true << 3;
    QTest::newRow("letter behind") << QStringLiteral("1a") << false << 2;
    QTest::newRow("letter in front") << QStringLiteral("a12") << false << 1;
    QTest::newRow("below 0") << QStringLiteral("1/2") << false << 2;
    QTest::newRow("above 9") << QStringLiteral("1:2") << false << 2;
    QTest::newRow("plus") << QStringLiteral("+12") << false << 1;
    QTest::newRow("minus") << QStringLiteral("-12") << false << 1;
    QTest::newRow("blank in front") << QStringLiteral(" 12") << false << 1;
    QTest::newRow("blank behind") << QStringLiteral("12 ") << false << 3;
    QTest::newRow("blank") << QStringLiteral(" ") << false << 1;
    QTest::newRow("full-width") << QString::fromUtf8("１２３") << false << 1;
    QTest::newRow("Arabic-Indic") << QString::fromUtf8("1٢3") << false << 2;
    QTest::newRow("superscript") << QString::fromUtf8("2²") << false << 2;
}

void TestNetworkTab::digitsOnly() {
    QFETCH(QString, text);
    QFETCH(int, looked);
    SettingsFixture f;
    QTEST(f.dialog.IsDigitsOnly(text), "digits");

    QStringList lines(QStringLiteral("length:%1\n").arg(text.length()));
    for (int i = 0; i < looked; ++i)
        lines.append(QString(text[i]));
    QCOMPARE(f.lines(), lines);
}

void TestNetworkTab::checksTheEditsInOrder() {
    SettingsFixture f;
    f.setOctets(sixteenOctets);
    QVERIFY(f.dialog.ValidateAddressEdits());
    QCOMPARE(f.lines(), SettingsFixture::digitLines(sixteenOctets));

    f.clearRecords();
    f.addressEdits()[2]->setText(QStringLiteral("x"));
    f.addressEdits()[9]->setText(QString());
    QVERIFY(!f.dialog.ValidateAddressEdits());
    QCOMPARE(f.lines(), SettingsFixture::digitLines(
                            {QStringLiteral("10"), QStringLiteral("1"), QStringLiteral("x")}));
}

void TestNetworkTab::checksEveryEdit() {
    SettingsFixture f;
    for (int i = 0; i < 16; ++i) {
        f.setOctets(sixteenOctets);
        f.addressEdits()[i]->setText(QString());
        QVERIFY2(!f.dialog.ValidateAddressEdits(), qPrintable(QString::number(i)));
    }
}

void TestNetworkTab::switchesTheEdits() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList checked = f.checked();
    f.dialog.SetTcpIpEditsEnabled(false);
    QCOMPARE(f.enabledAddressEdits(), 0);
    QCOMPARE(f.disabled(), SettingsFixture::disabledWhenConnected());
    for (const char* name : {"dhcpOnRadioBtn", "dhcpOffRadioBtn", "tcpIPGroupBox", "WLanGroupBox",
                             "AccessPointgroupBox", "SSIDlineEdit", "passwdlineEdit"})
        QVERIFY2(f.child(QLatin1String(name)).isEnabled(), name);
    f.dialog.SetTcpIpEditsEnabled(true);
    QCOMPARE(f.enabledAddressEdits(), 16);
    QCOMPARE(f.checked(), checked);
    QCOMPARE(f.lines(), QStringList());
}

void TestNetworkTab::dhcpOnKeepsTheTexts() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QStringList texts = f.networkTexts();
    f.click(QStringLiteral("dhcpOnRadioBtn"));

    QVERIFY(f.checked().contains(QStringLiteral("dhcpOnRadioBtn")));
    QVERIFY(!f.checked().contains(QStringLiteral("dhcpOffRadioBtn")));
    QCOMPARE(f.enabledAddressEdits(), 0);
    QCOMPARE(f.networkTexts(), texts);
    QCOMPARE(f.calls(), QStringList());
    QCOMPARE(f.lines(), QStringList());
}

void TestNetworkTab::dhcpOffEmptiesTheTexts() {
    SettingsFixture f;
    QVERIFY(f.set(R"({"network": {"active": {"DHCPUse": 1}}})"));
    QVERIFY(f.connectFirst());
    QCOMPARE(f.enabledAddressEdits(), 0);
    f.click(QStringLiteral("dhcpOffRadioBtn"));
    const QStringList emptied = {QStringLiteral("press-hall"), QStringLiteral("spectral-key"),
                                 QStringLiteral("..."),        QStringLiteral("..."),
                                 QStringLiteral("..."),        QStringLiteral("...")};
    QCOMPARE(f.enabledAddressEdits(), 16);
    QCOMPARE(f.networkTexts(), emptied);

    // The button that is checked already as well.
    f.setOctets(sixteenOctets);
    f.click(QStringLiteral("dhcpOffRadioBtn"));
    QCOMPARE(f.networkTexts(), emptied);
    QCOMPARE(f.calls(), QStringList());
}

void TestNetworkTab::choosingTabs_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("focused");
    QTest::newRow("network") << 3 << 0 << QStringLiteral("ConnectPushBtn");
    QTest::newRow("power-off") << 0 << 1 << QStringLiteral("autoPowerOfftab");
    QTest::newRow("white plate") << 0 << 2 << QStringLiteral("curWCalibPlateSerialNolabel");
    QTest::newRow("adapter") << 0 << 3 << QStringLiteral("curAmbAdpSerialNolabel");
    QTest::newRow("power-off, from the adapter") << 3 << 1 << QStringLiteral("autoPowerOfftab");
}

void TestNetworkTab::choosingTabs() {
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QString, focused);
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::Page(from)));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    auto& start = f.child(QStringLiteral("ConnectPushBtn"));
    start.setEnabled(true); // outside of the pages
    start.setFocus();
    f.clearRecords();
    FocusReasons focus(f.child(focused));
    f.openPage(SettingsFixture::Page(to));

    QCOMPARE(f.lines(), QStringList(QStringLiteral("select tab:%1").arg(to)));
    QVERIFY(f.dialog.focusWidget());
    QCOMPARE(f.dialog.focusWidget()->objectName(), focused);
    QCOMPARE(focus.reasons,
             to == 0 ? QVector<Qt::FocusReason>() : QVector<Qt::FocusReason>{Qt::OtherFocusReason});
    QCOMPARE(f.calls(), QStringList());
}

void TestNetworkTab::choosingDisabledTabs_data() {
    QTest::addColumn<int>("tab");
    QTest::newRow("power-off") << 1;
    QTest::newRow("white plate") << 2;
    QTest::newRow("adapter") << 3;
}

void TestNetworkTab::choosingDisabledTabs() {
    QFETCH(int, tab);
    SettingsFixture f;
    f.dialog.connectDevice(-1, true);
    f.dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    QCOMPARE(f.dialog.focusWidget(), &f.child(QStringLiteral("ConnectPushBtn")));
    f.openPage(SettingsFixture::Page(tab));

    QCOMPARE(f.lines(), QStringList(QStringLiteral("select tab:%1").arg(tab)));
    QCOMPARE(f.dialog.focusWidget(), &f.child(QStringLiteral("ConnectPushBtn")));
}

void TestNetworkTab::unknownTabs() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    const QWidget* focused = f.dialog.focusWidget();
    for (const int index : {-1, 4, 1000})
        QVERIFY(QMetaObject::invokeMethod(&f.dialog, "on_setBasetabWidget_currentChanged",
                                          Qt::DirectConnection, Q_ARG(int, index)));
    QCOMPARE(f.lines(),
             (QStringList{QStringLiteral("select tab:-1"), QStringLiteral("select tab:4"),
                          QStringLiteral("select tab:1000")}));
    QCOMPARE(f.dialog.focusWidget(), focused);
}

QTEST_MAIN(TestNetworkTab)
#include "tst_network_tab.moc"
