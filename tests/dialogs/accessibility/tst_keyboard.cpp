#include "tests/dialogs/accessibility/FocusKeys.h"
#include "tests/dialogs/settings/SettingsFixture.h"

#include <QApplication>
#include <QListWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

/** The settings dialog without a mouse. */
class TestKeyboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tabOrder_data();
    void tabOrder();
    void focusComesBack_data();
    void focusComesBack();
    void focusDoesNotComeBackToWhatIsLost();
    void listHasTheFocus();
    void tabsByKeyboard();
};

using namespace FocusKeys;

namespace {

QStringList octets(const char* address) {
    QStringList names;
    for (int i = 1; i <= 4; ++i)
        names.append(QString::fromLatin1(address).arg(i));
    return names;
}

} // namespace

void TestKeyboard::tabOrder_data() {
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("patch");
    QTest::addColumn<QStringList>("expected");
    const QStringList around = {QStringLiteral("disConnectPushBtn"), tabBar};
    const QString network =
        QStringLiteral(R"({"network": {"active": {"APConnectUse": %1, "DHCPUse": %2}}})");
    const QStringList accessPoint = {QStringLiteral("SSIDlineEdit"),
                                     QStringLiteral("passwdlineEdit")};
    const QStringList addresses = octets("ipaddr%1lineEdit") + octets("subnetMask%1lineEdit") +
                                  octets("defGWaddr%1lineEdit") + octets("dnsaddr%1lineEdit");
    const QStringList buttons = {
        QStringLiteral("readToFilePushBtn"), QStringLiteral("writeFilePushBtn"),
        QStringLiteral("readBodyPushBtn"), QStringLiteral("writeBodyPushBtn")};
    const QString enable = QStringLiteral("enableRadioBtn");
    const QString disable = QStringLiteral("disableRadioBtn");
    const QString on = QStringLiteral("dhcpOnRadioBtn");
    const QString off = QStringLiteral("dhcpOffRadioBtn");
    QTest::newRow("network, enabled, DHCP off")
        << 0 << network.arg(1).arg(0)
        << around + QStringList(enable) + accessPoint + QStringList(off) + addresses + buttons;
    QTest::newRow("network, disabled, DHCP on")
        << 0 << network.arg(0).arg(1)
        << around + QStringList(disable) + accessPoint + QStringList(on) + buttons;
    QTest::newRow("power-off") << 1 << QStringLiteral("{}")
                               << around + QStringList{QStringLiteral("thirtyRadioBtn"),
                                                       QStringLiteral("getAutoPWOffPushBtn"),
                                                       QStringLiteral("setAutoPWOffPushBtn")};
    QTest::newRow("white plate") << 2 << QStringLiteral("{}")
                                 << around + QStringList(QStringLiteral("selWCPFilePushBtn"));
    QTest::newRow("adapter") << 3 << QStringLiteral("{}")
                             << around + QStringList(QStringLiteral("selAmbLightAdpFilePushBtn"));
}

void TestKeyboard::tabOrder() {
    QFETCH(int, page);
    QFETCH(QString, patch);
    QFETCH(QStringList, expected);
    SettingsFixture f;
    QVERIFY(SettingsFixture::set(patch.toUtf8().constData()));
    QVERIFY(f.connectFirst(SettingsFixture::Page(page)));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    f.child(QStringLiteral("disConnectPushBtn")).setFocus();
    QCOMPARE(stops(Qt::Key_Tab), expected);
    // And the same way back.
    f.child(QStringLiteral("disConnectPushBtn")).setFocus();
    QStringList back = stops(Qt::Key_Backtab);
    std::reverse(back.begin() + 1, back.end());
    QCOMPARE(back, expected);
}

void TestKeyboard::focusComesBack_data() {
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("button");
    QTest::newRow("network") << 0 << QStringLiteral("writeBodyPushBtn");
    QTest::newRow("power-off, read") << 1 << QStringLiteral("getAutoPWOffPushBtn");
    QTest::newRow("power-off, write") << 1 << QStringLiteral("setAutoPWOffPushBtn");
    QTest::newRow("white plate") << 2 << QStringLiteral("setWCPValPushBtn");
    QTest::newRow("adapter") << 3 << QStringLiteral("setAmbAdpBodyPushBtn");
}

/** A button that is disabled while it works loses the focus, and the next Space would disconnect.
 */
void TestKeyboard::focusComesBack() {
    QFETCH(int, page);
    QFETCH(QString, button);
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::Page(page)));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    QWidget& pressed = f.child(button);
    pressed.setEnabled(true); // those of the calibration tabs want a file first
    pressed.setFocus();
    QTest::keyClick(&pressed, Qt::Key_Space);
    QCOMPARE(f.answers.boxes.size(), 1);
    QCOMPARE(f.dialog.focusWidget(), &pressed);
}

void TestKeyboard::focusDoesNotComeBackToWhatIsLost() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    QWidget& pressed = f.child(QStringLiteral("getAutoPWOffPushBtn"));
    pressed.setFocus();
    f.answers.onBox = [&](QMessageBox&) {
        f.answers.onBox = nullptr;
        f.invoke("on_disConnectPushBtn_clicked");
    };
    QTest::keyClick(&pressed, Qt::Key_Space);
    QVERIFY(!pressed.isEnabled()); // its page is
    QVERIFY(f.dialog.focusWidget() != &pressed);
}

/** Also at the second choice, when the button had the focus last. */
void TestKeyboard::listHasTheFocus() {
    ConnectSelectDialog dialog;
    const QStringList devices = {QStringLiteral("first"), QStringLiteral("second"),
                                 QStringLiteral("third")};
    for (int round = 0; round < 2; ++round) {
        QTimer::singleShot(0, &dialog, [&] {
            const auto focused = [&] { return dialog.focusWidget()->objectName(); };
            QCOMPARE(focused(), QStringLiteral("connectlistWidget"));
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Down);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
            QCOMPARE(focused(), QStringLiteral("pushButton"));
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
        });
        QVERIFY(dialog.choose(devices, [] { return false; }));
        QCOMPARE(dialog.portNum, 1);
        dialog.isFinished = false; // as its owner does
    }
}

void TestKeyboard::tabsByKeyboard() {
    SettingsFixture f;
    QVERIFY(f.connectFirst());
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    auto& tabs = f.child<QTabWidget>(QStringLiteral("setBasetabWidget"));
    f.child(QStringLiteral("SSIDlineEdit")).setFocus();
    for (const int page : {1, 2, 3, 0}) {
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs.currentIndex(), page);
    }
    tabs.tabBar()->setFocus();
    press(Qt::Key_Right);
    QCOMPARE(tabs.currentIndex(), 1);
}

QTEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
