#include "dialogs/LangSelectDialog.h"
#include "tests/dialogs/settings/SettingsFixture.h"

#include <algorithm>

namespace {

// The radio buttons of the settings dialog, and the widget of its tabs that has the focus.
const QString enable = "enableRadioBtn";
const QString disable = "disableRadioBtn";
const QString on = "dhcpOnRadioBtn";
const QString off = "dhcpOffRadioBtn";
const QString never = "invalidradioBtn";
const QString fifteen = "fifteenRadioBtn";
const QString thirty = "thirtyRadioBtn";
const QString sixty = "sixtyRadioBtn";
const QString tabBar = "qt_tabwidget_tabbar";

/** The settings dialog, connected, on an instrument with such a network, with the page of a widget
    on top. */
class ActiveWindow : public SettingsFixture {
public:
    explicit ActiveWindow(const QString& widget, bool hasWirelessLan = true, bool hasDhcp = false) {
        const QString network = R"({"network": {"active": {"APConnectUse": %1, "DHCPUse": %2}}})";
        TestBench::set(network.arg(hasWirelessLan ? 1 : 0).arg(hasDhcp ? 1 : 0).toUtf8());
        QVERIFY(connectFirst());
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        for (int page = 0; page < 4 && !child(widget).isVisible(); ++page)
            openPage(Page(page));
    }

    /** The names of what has the focus, from the Disconnect button around to it again. */
    QStringList stops(Qt::Key key = Qt::Key_Tab) {
        QWidget& start = child("disConnectPushBtn");
        start.setFocus();
        QStringList names;
        do {
            names.append(QApplication::focusWidget()->objectName());
            press(key);
        } while (QApplication::focusWidget() != &start && names.size() < 100);
        return names;
    }

    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
    }
};

/** Counts the presses of arrow keys that reach a window. */
class KeyCount : public QObject {
public:
    explicit KeyCount(QWidget& window) { window.installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::KeyPress)
            return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        value += key >= Qt::Key_Left && key <= Qt::Key_Down ? 1 : 0;
        return false;
    }

    int value = 0;
};

/** Lets at what is protected in QObject. */
struct OpenObject : QObject {
    using QObject::isSignalConnected;
};

template <typename Signal>
bool isConnected(const QObject& sender, Signal signal) {
    return (sender.*(&OpenObject::isSignalConnected))(QMetaMethod::fromSignal(signal));
}

struct OrderRow {
    const char* name;
    bool hasWirelessLan;
    bool hasDhcp;
    QStringList stops; ///< after the Disconnect button and the tabs
};

struct ArrowsRow {
    const char* name;
    QString from; ///< a radio button, checked
    QVector<int> keys;
    Qt::KeyboardModifiers modifiers;
    QString to;
    int passed; ///< of the keys, how many reach the dialog
};

} // namespace

/** The windows without a mouse. */
class TestKeyboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tabOrder_data() {
        QStringList addresses;
        for (const char* address : {"ipaddr%1lineEdit", "subnetMask%1lineEdit",
                                    "defGWaddr%1lineEdit", "dnsaddr%1lineEdit"}) {
            for (int octet = 1; octet <= 4; ++octet)
                addresses.append(QString(address).arg(octet));
        }
        const QStringList accessPoint = {"SSIDlineEdit", "passwdlineEdit"};
        const QStringList buttons = {"readToFilePushBtn", "writeFilePushBtn", "readBodyPushBtn",
                                     "writeBodyPushBtn"};
        addRows(QVector<OrderRow>{
            {"network, enabled, DHCP off", true, false,
             QStringList(enable) + accessPoint + QStringList(off) + addresses + buttons},
            {"network, disabled, DHCP on", false, true,
             QStringList(disable) + accessPoint + QStringList(on) + buttons},
            {"power-off", true, false, {thirty, "getAutoPWOffPushBtn", "setAutoPWOffPushBtn"}},
            {"white plate", true, false, {"selWCPFilePushBtn"}},
            {"adapter", true, false, {"selAmbLightAdpFilePushBtn"}},
        });
    }

    /** Forth and back. */
    void tabOrder() {
        const auto row = rowOf<OrderRow>();
        ActiveWindow f(row.stops.last(), row.hasWirelessLan, row.hasDhcp);
        const QStringList expected = QStringList({"disConnectPushBtn", tabBar}) + row.stops;
        QCOMPARE(f.stops(), expected);
        QStringList back = f.stops(Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        QCOMPARE(back, expected);
    }

    /** A button that is disabled while it works loses the focus; the next Space would disconnect.
     */
    void focusComesBack() {
        for (const char* button : {"writeBodyPushBtn", "getAutoPWOffPushBtn", "setAutoPWOffPushBtn",
                                   "setWCPValPushBtn", "setAmbAdpBodyPushBtn"}) {
            ActiveWindow f(button);
            QWidget& pressed = f.child(button);
            pressed.setEnabled(true); // those of the calibration tabs want a file first
            pressed.setFocus();
            ActiveWindow::press(Qt::Key_Space);
            QCOMPARE(f.answers.boxes.size(), 1);
            QCOMPARE(f.dialog.focusWidget(), &pressed);
        }
    }

    void focusDoesNotComeBackToWhatIsLost() {
        ActiveWindow f("getAutoPWOffPushBtn");
        QWidget& pressed = f.child("getAutoPWOffPushBtn");
        pressed.setFocus();
        f.answers.onBox = [&](QMessageBox&) {
            f.answers.onBox = nullptr;
            f.invoke("on_disConnectPushBtn_clicked");
        };
        ActiveWindow::press(Qt::Key_Space);
        QVERIFY(!pressed.isEnabled()); // its page is
        QVERIFY(f.dialog.focusWidget() != &pressed);
    }

    /** Also at the second choice, when the button had the focus last. */
    void listHasTheFocus() {
        ConnectSelectDialog dialog;
        for (int round = 0; round < 2; ++round) {
            QTimer::singleShot(0, &dialog, [&] {
                const auto focused = [&] { return dialog.focusWidget()->objectName(); };
                QCOMPARE(focused(), QString("connectlistWidget"));
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Down);
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
                QCOMPARE(focused(), QString("pushButton"));
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
            });
            QVERIFY(dialog.choose({"first", "second", "third"}, [] { return false; }));
            QCOMPARE(dialog.portNum, 1);
            dialog.isFinished = false; // as its owner does
        }
    }

    void tabsByKeyboard() {
        ActiveWindow f("SSIDlineEdit");
        auto& tabs = f.child<QTabWidget>("setBasetabWidget");
        f.child("SSIDlineEdit").setFocus();
        for (const int page : {1, 2, 3, 0}) {
            ActiveWindow::press(Qt::Key_Tab, Qt::ControlModifier);
            QCOMPARE(tabs.currentIndex(), page);
        }
        tabs.tabBar()->setFocus();
        ActiveWindow::press(Qt::Key_Right);
        QCOMPARE(tabs.currentIndex(), 1);
    }

    void arrows_data() {
        constexpr int up = Qt::Key_Up;
        constexpr int down = Qt::Key_Down;
        constexpr int left = Qt::Key_Left;
        constexpr int right = Qt::Key_Right;
        addRows(QVector<ArrowsRow>{
            {"wireless, down", enable, {down}, {}, disable, 0},
            {"wireless, right", enable, {right}, {}, disable, 0},
            {"wireless, to the end and no further", enable, {down, down, right}, {}, disable, 2},
            {"wireless, and back", enable, {right, left}, {}, enable, 0},
            {"wireless, up from the first", enable, {up}, {}, enable, 1},
            {"DHCP, left", off, {left}, {}, on, 0},
            {"DHCP, up and further", off, {up, up}, {}, on, 1},
            {"power-off, down", thirty, {down}, {}, sixty, 0},
            {"power-off, up by two", thirty, {up, left}, {}, never, 0},
            {"power-off, end to end", thirty, {down, down, up, up, up, up}, {}, never, 2},
            {"first, left", never, {left}, {}, never, 1},
            {"last, down", off, {down}, {}, off, 1},
            {"last, right", sixty, {right}, {}, sixty, 1},
            {"Control", enable, {down}, Qt::ControlModifier, enable, 1},
            {"Alt", off, {up}, Qt::AltModifier, off, 1},
            {"Shift", thirty, {right}, Qt::ShiftModifier, thirty, 1},
            {"Shift, down", thirty, {down}, Qt::ShiftModifier, thirty, 1},
            {"Meta", thirty, {left}, Qt::MetaModifier, thirty, 1},
        });
    }

    /** They stay in their choice. What the buttons do not need reaches the dialog, and changes
       nothing on its way. */
    void arrows() {
        const auto row = rowOf<ArrowsRow>();
        // On a Mac the arrow keys always bear the keypad's modifier.
        for (const Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::KeypadModifier}) {
            ActiveWindow f(row.from);
            auto& button = f.child<QRadioButton>(row.from);
            button.setChecked(true);
            button.setFocus();
            QStringList checked = f.checked();
            checked[checked.indexOf(row.from)] = row.to;
            const KeyCount presses(f.dialog);
            for (const int key : row.keys)
                ActiveWindow::press(key, row.modifiers | modifier);
            QCOMPARE(QApplication::focusWidget()->objectName(), row.to);
            QCOMPARE(f.checked(), checked);
            QCOMPARE(presses.value, row.passed);
        }
    }

    void noneChecked() {
        ActiveWindow f(thirty);
        f.uncheck(thirty);
        QCOMPARE(f.stops(), QStringList({"disConnectPushBtn", tabBar, never, fifteen, thirty, sixty,
                                         "getAutoPWOffPushBtn", "setAutoPWOffPushBtn"}));
        const QStringList checked = f.checked();
        const KeyCount presses(f.dialog);
        f.child(sixty).setFocus();
        ActiveWindow::press(Qt::Key_Down);
        QCOMPARE(presses.value, 1);
        QCOMPARE(f.checked(), checked);
        f.child(fifteen).setFocus();
        ActiveWindow::press(Qt::Key_Up);
        QCOMPARE(presses.value, 1);
        QCOMPARE(f.checked(), checked + QStringList(never));
        QCOMPARE(QApplication::focusWidget()->objectName(), never);
    }

    /** However a button was checked, and wherever the focus was then. */
    void tabStopsFollowTheChecks() {
        ActiveWindow f(thirty);
        for (const QString& time : {sixty, never, fifteen}) {
            f.child("disConnectPushBtn").setFocus();
            f.child<QRadioButton>(time).setChecked(true);
            QCOMPARE(f.stops().value(2), time);
            // On its circle: a radio button wider than its text takes no clicks behind that.
            QTest::mouseClick(&f.child(thirty), Qt::LeftButton, {}, {8, 25});
            QCOMPARE(f.stops().value(2), thirty);
        }
    }

    /** Up is English, down is Japanese; a key that changes nothing reaches the dialog. */
    void languageByArrows() {
        for (const int from : {Language::english, Language::japanese}) {
            for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down}) {
                const int to = key == Qt::Key_Up ? Language::english : Language::japanese;
                LangSelectDialog dialog;
                dialog.setLanguage(from);
                dialog.show();
                QCOMPARE(dialog.focusWidget()->objectName(),
                         QString(from == Language::english ? "engRadioBtn" : "jpnRadioBtn"));
                const KeyCount presses(dialog);
                QTest::keyClick(dialog.focusWidget(), key);
                QCOMPARE(dialog.languageCode, to);
                QCOMPARE(presses.value, from == to ? 1 : 0);
            }
        }
    }

    /** What the radio buttons do for the keyboard takes no connection. */
    void nothingIsConnected() {
        const SettingsFixture f;
        const LangSelectDialog language;
        for (const QWidget* window : std::initializer_list<const QWidget*>{&f.dialog, &language}) {
            const auto buttons = window->findChildren<QRadioButton*>();
            QVERIFY(buttons.size() >= 2);
            for (const QRadioButton* button : buttons)
                QVERIFY2(!isConnected(*button, &QAbstractButton::toggled),
                         qUtf8Printable(button->objectName()));
        }
        QVERIFY(!isConnected(*qApp, &QApplication::focusChanged));
        QVERIFY(isConnected(*f.dialog.findChild<QRadioButton*>(on), &QAbstractButton::clicked));
    }
};

TEST_CLASS(TestKeyboard)
#include "tests/support/Widgets.h"
#include "tst_keyboard.moc"
