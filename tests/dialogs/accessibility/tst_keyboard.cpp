#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/settings/SettingsFixture.h"

#include <QApplication>
#include <QListWidget>
#include <QRadioButton>
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
    void arrowsStayInTheirChoice_data();
    void arrowsStayInTheirChoice();
    void focusComesBack_data();
    void focusComesBack();
    void focusDoesNotComeBackToWhatIsLost();
    void listHasTheFocus();
    void tabsByKeyboard();
    void languageByArrows_data();
    void languageByArrows();
};

namespace {

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

/** The names of what has the focus, from where it is around to it again. */
QStringList stops(Qt::Key key) {
    QStringList names;
    const QWidget* start = QApplication::focusWidget();
    do {
        names.append(QApplication::focusWidget()->objectName());
        press(key);
    } while (QApplication::focusWidget() != start && names.size() < 100);
    return names;
}

QStringList octets(const char* address) {
    QStringList names;
    for (int i = 1; i <= 4; ++i)
        names.append(QString::fromLatin1(address).arg(i));
    return names;
}

const QString tabBar = QStringLiteral("qt_tabwidget_tabbar");

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

void TestKeyboard::arrowsStayInTheirChoice_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QVector<int>>("keys");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QStringList>("checked");
    using Keys = QVector<int>;
    const QString enable = QStringLiteral("enableRadioBtn");
    const QString disable = QStringLiteral("disableRadioBtn");
    const QString on = QStringLiteral("dhcpOnRadioBtn");
    const QString off = QStringLiteral("dhcpOffRadioBtn");
    const QString time = QStringLiteral("thirtyRadioBtn");
    QTest::newRow("wireless, down")
        << enable << Keys{Qt::Key_Down} << disable << QStringList{disable, off, time};
    QTest::newRow("wireless, right")
        << enable << Keys{Qt::Key_Right} << disable << QStringList{disable, off, time};
    QTest::newRow("wireless, to the end and no further")
        << enable << Keys{Qt::Key_Down, Qt::Key_Down, Qt::Key_Right} << disable
        << QStringList{disable, off, time};
    QTest::newRow("wireless, and back")
        << enable << Keys{Qt::Key_Right, Qt::Key_Left} << enable << QStringList{enable, off, time};
    QTest::newRow("wireless, up from the first")
        << enable << Keys{Qt::Key_Up} << enable << QStringList{enable, off, time};
    QTest::newRow("DHCP, left") << off << Keys{Qt::Key_Left} << on << QStringList{enable, on, time};
    QTest::newRow("DHCP, up and further")
        << off << Keys{Qt::Key_Up, Qt::Key_Up} << on << QStringList{enable, on, time};
}

void TestKeyboard::arrowsStayInTheirChoice() {
    QFETCH(QString, from);
    QFETCH(QVector<int>, keys);
    QFETCH(QString, to);
    QFETCH(QStringList, checked);
    SettingsFixture f;
    QVERIFY(SettingsFixture::set(R"({"network": {"active": {"APConnectUse": 1, "DHCPUse": 0}}})"));
    QVERIFY(f.connectFirst());
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    f.child(from).setFocus();
    for (const int key : keys)
        press(Qt::Key(key));
    QCOMPARE(QApplication::focusWidget()->objectName(), to);
    QCOMPARE(f.checked(), checked);
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

void TestKeyboard::languageByArrows_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("to");
    constexpr int english = LangSelectDialog::english;
    constexpr int japanese = LangSelectDialog::japanese;
    QTest::newRow("down from English") << english << int(Qt::Key_Down) << japanese;
    QTest::newRow("up from Japanese") << japanese << int(Qt::Key_Up) << english;
    QTest::newRow("up from English") << english << int(Qt::Key_Up) << english;
    QTest::newRow("down from Japanese") << japanese << int(Qt::Key_Down) << japanese;
}

void TestKeyboard::languageByArrows() {
    QFETCH(int, from);
    QFETCH(int, key);
    QFETCH(int, to);
    LangSelectDialog dialog;
    dialog.setLanguage(from);
    dialog.show();
    const bool isEnglish = from == LangSelectDialog::english;
    auto* button = dialog.findChild<QRadioButton*>(isEnglish ? QStringLiteral("engRadioBtn")
                                                             : QStringLiteral("jpnRadioBtn"));
    QCOMPARE(dialog.focusWidget(), button);
    QTest::keyClick(button, Qt::Key(key));
    QCOMPARE(dialog.languageCode, to);
}

QTEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
