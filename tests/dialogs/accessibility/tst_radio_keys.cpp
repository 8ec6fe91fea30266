#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/accessibility/FocusKeys.h"
#include "tests/dialogs/settings/SettingsFixture.h"

#include <QApplication>
#include <QMetaMethod>
#include <QRadioButton>
#include <QtTest>

using namespace FocusKeys;

/** What the keyboard does with radio buttons. */
class TestRadioKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void arrowsStayInTheirChoice_data();
    void arrowsStayInTheirChoice();
    void arrowsThatGoOn_data();
    void arrowsThatGoOn();
    void noneChecked();
    void tabStopsFollowTheChecks();
    void languageByArrows_data();
    void languageByArrows();
    void nothingIsConnected();
};

namespace {

// The radio buttons of the settings dialog.
const QString enable = QStringLiteral("enableRadioBtn");
const QString disable = QStringLiteral("disableRadioBtn");
const QString on = QStringLiteral("dhcpOnRadioBtn");
const QString off = QStringLiteral("dhcpOffRadioBtn");
const QString never = QStringLiteral("invalidradioBtn");
const QString fifteen = QStringLiteral("fifteenRadioBtn");
const QString thirty = QStringLiteral("thirtyRadioBtn");
const QString sixty = QStringLiteral("sixtyRadioBtn");

/** Counts the presses of a key that reach a window. */
class KeyCount : public QObject {
public:
    KeyCount(int key, QWidget& window) : m_key(key) { window.installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        Q_UNUSED(watched)
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == m_key)
            ++value;
        return false;
    }

    int value = 0;

private:
    int m_key;
};

/** Lets at what is protected in QObject. */
struct OpenObject : QObject {
    using QObject::isSignalConnected;
};

template <typename Signal>
bool isConnected(const QObject& sender, Signal signal) {
    return (sender.*(&OpenObject::isSignalConnected))(QMetaMethod::fromSignal(signal));
}

} // namespace

void TestRadioKeys::arrowsStayInTheirChoice_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QVector<int>>("keys");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QStringList>("checked");
    using Keys = QVector<int>;
    QTest::newRow("wireless, down")
        << enable << Keys{Qt::Key_Down} << disable << QStringList{disable, off, thirty};
    QTest::newRow("wireless, right")
        << enable << Keys{Qt::Key_Right} << disable << QStringList{disable, off, thirty};
    QTest::newRow("wireless, to the end and no further")
        << enable << Keys{Qt::Key_Down, Qt::Key_Down, Qt::Key_Right} << disable
        << QStringList{disable, off, thirty};
    QTest::newRow("wireless, and back") << enable << Keys{Qt::Key_Right, Qt::Key_Left} << enable
                                        << QStringList{enable, off, thirty};
    QTest::newRow("wireless, up from the first")
        << enable << Keys{Qt::Key_Up} << enable << QStringList{enable, off, thirty};
    QTest::newRow("DHCP, left") << off << Keys{Qt::Key_Left} << on
                                << QStringList{enable, on, thirty};
    QTest::newRow("DHCP, up and further")
        << off << Keys{Qt::Key_Up, Qt::Key_Up} << on << QStringList{enable, on, thirty};
    QTest::newRow("power-off, down")
        << thirty << Keys{Qt::Key_Down} << sixty << QStringList{enable, off, sixty};
    QTest::newRow("power-off, up by two")
        << thirty << Keys{Qt::Key_Up, Qt::Key_Left} << never << QStringList{enable, off, never};
    QTest::newRow("power-off, from end to end")
        << thirty
        << Keys{Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up, Qt::Key_Up} << never
        << QStringList{enable, off, never};
}

void TestRadioKeys::arrowsStayInTheirChoice() {
    QFETCH(QString, from);
    QFETCH(QVector<int>, keys);
    QFETCH(QString, to);
    QFETCH(QStringList, checked);
    // On a Mac the arrow keys always bear the keypad's modifier.
    for (const Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::KeypadModifier}) {
        SettingsFixture f;
        QVERIFY(
            SettingsFixture::set(R"({"network": {"active": {"APConnectUse": 1, "DHCPUse": 0}}})"));
        QVERIFY(
            f.connectFirst(from == thirty ? SettingsFixture::PowerOff : SettingsFixture::Network));
        QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
        f.child(from).setFocus();
        for (const int key : keys)
            press(Qt::Key(key), modifier);
        QCOMPARE(QApplication::focusWidget()->objectName(), to);
        QCOMPARE(f.checked(), checked);
    }
}

void TestRadioKeys::arrowsThatGoOn_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("count");
    const auto row = [](const char* name, const QString& from, Qt::Key key,
                        Qt::KeyboardModifiers modifiers, int count) {
        QTest::newRow(name) << from << int(key) << modifiers << count;
    };
    row("first, up", enable, Qt::Key_Up, Qt::NoModifier, 1);
    row("first, left", never, Qt::Key_Left, Qt::NoModifier, 1);
    row("last, down", off, Qt::Key_Down, Qt::NoModifier, 1);
    row("last, right", sixty, Qt::Key_Right, Qt::NoModifier, 1);
    row("last, right on the keypad", sixty, Qt::Key_Right, Qt::KeypadModifier, 1);
    row("Control", enable, Qt::Key_Down, Qt::ControlModifier, 1);
    row("Alt", off, Qt::Key_Up, Qt::AltModifier, 1);
    row("Shift", thirty, Qt::Key_Right, Qt::ShiftModifier, 1);
    row("Meta", thirty, Qt::Key_Left, Qt::MetaModifier, 1);
    row("Shift on the keypad", thirty, Qt::Key_Down, Qt::ShiftModifier | Qt::KeypadModifier, 1);
    row("needed", thirty, Qt::Key_Down, Qt::NoModifier, 0);
    row("needed, on the keypad", thirty, Qt::Key_Up, Qt::KeypadModifier, 0);
}

/** What the buttons do not need reaches the dialog, and changes nothing on its way. */
void TestRadioKeys::arrowsThatGoOn() {
    QFETCH(QString, from);
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, count);
    SettingsFixture f;
    QVERIFY(SettingsFixture::set(R"({"network": {"active": {"APConnectUse": 1, "DHCPUse": 0}}})"));
    const bool isNetwork = from == enable || from == off;
    QVERIFY(f.connectFirst(isNetwork ? SettingsFixture::Network : SettingsFixture::PowerOff));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    auto& button = f.child<QRadioButton>(from);
    button.setChecked(true);
    button.setFocus();
    const QStringList checked = f.checked();
    const KeyCount presses(key, f.dialog);
    press(Qt::Key(key), modifiers);
    QCOMPARE(presses.value, count);
    QCOMPARE(button.hasFocus(), count == 1);
    QCOMPARE(f.checked() == checked, count == 1);
}

void TestRadioKeys::noneChecked() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    f.uncheck(thirty);
    QWidget& first = f.child(QStringLiteral("disConnectPushBtn"));
    first.setFocus();
    const QStringList all = {first.objectName(),
                             tabBar,
                             never,
                             fifteen,
                             thirty,
                             sixty,
                             QStringLiteral("getAutoPWOffPushBtn"),
                             QStringLiteral("setAutoPWOffPushBtn")};
    QCOMPARE(stops(Qt::Key_Tab), all);

    const QStringList checked = f.checked();
    const KeyCount presses(Qt::Key_Down, f.dialog);
    f.child(sixty).setFocus();
    press(Qt::Key_Down);
    QCOMPARE(presses.value, 1);
    QCOMPARE(f.checked(), checked);
    f.child(fifteen).setFocus();
    press(Qt::Key_Up);
    QCOMPARE(f.checked(), checked + QStringList(never));
    QCOMPARE(QApplication::focusWidget()->objectName(), never);
}

/** However a button was checked, and wherever the focus was then. */
void TestRadioKeys::tabStopsFollowTheChecks() {
    SettingsFixture f;
    QVERIFY(f.connectFirst(SettingsFixture::PowerOff));
    QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
    QWidget& first = f.child(QStringLiteral("disConnectPushBtn"));
    for (const QString& time : {sixty, never, fifteen}) {
        first.setFocus();
        f.child<QRadioButton>(time).setChecked(true);
        QCOMPARE(stops(Qt::Key_Tab).value(2), time);
        QTest::mouseClick(&f.child(thirty), Qt::LeftButton);
        first.setFocus();
        QCOMPARE(stops(Qt::Key_Tab).value(2), thirty);
    }
}

void TestRadioKeys::languageByArrows_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("to");
    constexpr int english = Language::english;
    constexpr int japanese = Language::japanese;
    QTest::newRow("down from English") << english << int(Qt::Key_Down) << japanese;
    QTest::newRow("up from Japanese") << japanese << int(Qt::Key_Up) << english;
    QTest::newRow("up from English") << english << int(Qt::Key_Up) << english;
    QTest::newRow("down from Japanese") << japanese << int(Qt::Key_Down) << japanese;
}

void TestRadioKeys::languageByArrows() {
    QFETCH(int, from);
    QFETCH(int, key);
    QFETCH(int, to);
    LangSelectDialog dialog;
    dialog.setLanguage(from);
    dialog.show();
    const bool isEnglish = from == Language::english;
    auto* button = dialog.findChild<QRadioButton*>(isEnglish ? QStringLiteral("engRadioBtn")
                                                             : QStringLiteral("jpnRadioBtn"));
    QCOMPARE(dialog.focusWidget(), button);
    const KeyCount presses(key, dialog);
    QTest::keyClick(button, Qt::Key(key));
    QCOMPARE(dialog.languageCode, to);
    QCOMPARE(presses.value, from == to ? 1 : 0);
}

/** What the radio buttons do for the keyboard takes no connection. */
void TestRadioKeys::nothingIsConnected() {
    const SettingsFixture f;
    const LangSelectDialog language;
    for (const QWidget* window :
         {static_cast<const QWidget*>(&f.dialog), static_cast<const QWidget*>(&language)}) {
        const auto buttons = window->findChildren<QRadioButton*>();
        QVERIFY(buttons.size() >= 2);
        for (const QRadioButton* button : buttons)
            QVERIFY2(!isConnected(*button, &QAbstractButton::toggled),
                     qUtf8Printable(button->objectName()));
    }
    QVERIFY(!isConnected(*qApp, &QApplication::focusChanged));
    QVERIFY(isConnected(*f.dialog.findChild<QRadioButton*>(on), &QAbstractButton::clicked));
}

QTEST_MAIN(TestRadioKeys)
#include "tst_radio_keys.moc"
