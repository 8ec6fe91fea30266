#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/SettingWindow.h"

#include "instrument/CKvaSdk_Ctrl.h"
#include "simulator/KvaSim.h"
#include "tests/support/DebugLog.h"
#include "tests/support/ModalAnswerer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QIcon>
#include <QKeyEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QtTest>

namespace {

const QString watchLine = QStringLiteral("eEventCode_DisConnect check \n");

QPushButton* button(QDialog& dialog, const char* name) {
    return qobject_cast<QPushButton*>(findWidget(dialog, name));
}

} // namespace

/** In place of Qt's own: here every platform's key for "Cancel" is one, macOS' Command and full
   stop as well. */
bool QKeyEvent::matches(QKeySequence::StandardKey wanted) const {
    const int pressed = key() | static_cast<int>(modifiers() & ~Qt::KeypadModifier);
    return wanted == QKeySequence::Cancel &&
           (pressed == Qt::Key_Escape ||
            pressed == (Qt::Key_Period | static_cast<int>(Qt::ControlModifier)));
}

/** Keys and closing of the three windows, and the watch that the settings dialog's timer runs. */
class TestFormEvents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void escapeIsSwallowed_data();
    void escapeIsSwallowed();
    void escapeInAWidgetIsSwallowed_data();
    void escapeInAWidgetIsSwallowed();
    void otherKeysArePassedOn_data();
    void otherKeysArePassedOn();
    void returnPressesNothingInTheSettings();
    void notFinishedAtFirst();
    void closedWhileNotConnected();
    void closeButtonWhileNotConnected();
    void closedWhileConnected();
    void closedOnceFinished();
    void closedTwice();
    void destroyedWhileConnected();
    void preparedOnFirstConnecting();
    void notPreparedOnReconnecting();
    void watchRunsEverySecond();
    void watchDoesNotRunBeforeConnecting();
    void lostConnectionIsReportedWithinTwoSeconds();
};

void TestFormEvents::escapeIsSwallowed_data() {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    const auto addRow = [](int form, const char* what, Qt::Key key, Qt::KeyboardModifiers held) {
        QTest::addRow("%s%s", allForms()[form].name, what) << form << int(key) << held;
    };
    for (int form = 0; form < allForms().size(); ++form) {
        addRow(form, "", Qt::Key_Escape, Qt::NoModifier);
        addRow(form, " shift", Qt::Key_Escape, Qt::ShiftModifier);
        addRow(form, " keypad", Qt::Key_Escape, Qt::KeypadModifier);
        addRow(form, " the platform's cancel", Qt::Key_Period, Qt::ControlModifier);
    }
}

void TestFormEvents::escapeIsSwallowed() {
    QFETCH(int, form);
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    const auto dialog = allForms()[form].create();
    dialog->show();
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(dialog.get(), &press);
    QVERIFY(press.isAccepted());
    QVERIFY(dialog->isVisible());
}

void TestFormEvents::escapeInAWidgetIsSwallowed_data() {
    QTest::addColumn<int>("form");
    QTest::addColumn<QByteArray>("widget");
    QTest::newRow("edit") << 0 << QByteArray("SSIDlineEdit");
    QTest::newRow("radio button") << 0 << QByteArray("dhcpOnRadioBtn");
    QTest::newRow("tabs") << 0 << QByteArray("setBasetabWidget");
    QTest::newRow("close button") << 0 << QByteArray("ClosePushBtn");
    QTest::newRow("language") << 1 << QByteArray("engRadioBtn");
    QTest::newRow("language OK") << 1 << QByteArray("pushButton");
    QTest::newRow("list") << 2 << QByteArray("connectlistWidget");
    QTest::newRow("list OK") << 2 << QByteArray("pushButton");
}

void TestFormEvents::escapeInAWidgetIsSwallowed() {
    QFETCH(int, form);
    QFETCH(QByteArray, widget);
    const auto dialog = allForms()[form].create();
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    QWidget* target = findWidget(*dialog, widget.constData());
    QVERIFY(target);
    target->setFocus();
    QTRY_VERIFY(target->hasFocus());
    QTest::keyClick(target, Qt::Key_Escape);
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->result(), 0);
}

void TestFormEvents::otherKeysArePassedOn_data() {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("key");
    const QVector<FormTable> forms = allForms();
    for (int form = 0; form < forms.size(); ++form) {
        QTest::addRow("%s A", forms[form].name) << form << int(Qt::Key_A);
        QTest::addRow("%s F5", forms[form].name) << form << int(Qt::Key_F5);
        QTest::addRow("%s Back", forms[form].name) << form << int(Qt::Key_Back);
    }
}

/** QDialog leaves such a key to others; who swallows it leaves the event accepted. */
void TestFormEvents::otherKeysArePassedOn() {
    QFETCH(int, form);
    QFETCH(int, key);
    const auto dialog = allForms()[form].create();
    dialog->show();
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(dialog.get(), &press);
    QVERIFY(!press.isAccepted());
    QVERIFY(dialog->isVisible());
}

void TestFormEvents::returnPressesNothingInTheSettings() {
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    QVERIFY(QTest::qWaitForWindowActive(window.dialog.get()));
    ModalAnswerer answerer;
    KvaSim_ClearCallLog();
    for (const WidgetRow& row : settingFormRows()) {
        QWidget* widget = findWidget(*window.dialog, row.name);
        if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus))
            continue;
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Return);
        QTest::keyClick(widget, Qt::Key_Enter, Qt::KeypadModifier);
    }
    QVERIFY(answerer.boxes.isEmpty());
    QVERIFY(answerer.fileDialogs.isEmpty());
    QVERIFY(window.dialog->isVisible());
    char* log = KvaSim_CallLog();
    const QByteArray calls(log);
    KvaSim_Free(log);
    QCOMPARE(calls, QByteArray("[]"));
}

void TestFormEvents::notFinishedAtFirst() {
    InitSettingDialog dialog;
    QVERIFY(!dialog.isFinished);
}

void TestFormEvents::closedWhileNotConnected() {
    SettingWindow window;
    window.dialog->show();
    QVERIFY(window.dialog->close());
    QVERIFY(window.dialog->isFinished);
    QVERIFY(!window.dialog->isVisible());
    QCOMPARE(SettingWindow::callsOf("KVA_Disconnect"), 0);
}

void TestFormEvents::closeButtonWhileNotConnected() {
    SettingWindow window;
    window.dialog->show();
    QTest::mouseClick(button(*window.dialog, "ClosePushBtn"), Qt::LeftButton);
    QVERIFY(window.dialog->isFinished);
    QVERIFY(!window.dialog->isVisible());
    QCOMPARE(SettingWindow::callsOf("KVA_Disconnect"), 0);
}

void TestFormEvents::closedWhileConnected() {
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    QVERIFY(window.dialog->close());
    QVERIFY(window.dialog->isFinished);
    QVERIFY(!window.dialog->isVisible());
    QVERIFY(!window.ctrl->m_connected);
    QCOMPARE(SettingWindow::callsOf("KVA_Disconnect"), 1);
}

void TestFormEvents::closedOnceFinished() {
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    window.dialog->isFinished = true;
    QVERIFY(window.dialog->close());
    QVERIFY(!window.dialog->isVisible());
    QCOMPARE(SettingWindow::callsOf("KVA_Disconnect"), 0);
    QVERIFY(window.ctrl->Disconnect());
}

void TestFormEvents::closedTwice() {
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    QVERIFY(window.dialog->close());
    window.dialog->show();
    QVERIFY(window.dialog->close());
    QCOMPARE(SettingWindow::callsOf("KVA_Disconnect"), 1);
}

void TestFormEvents::destroyedWhileConnected() {
    SettingWindow window;
    QVERIFY(window.connectAndShow());
    window.dialog.reset();
    QCOMPARE(SettingWindow::callsOf("KVA_Disconnect"), 0);
    QVERIFY(window.ctrl->m_connected);
    QCOMPARE(window.ctrl.use_count(), 1L);
    QVERIFY(window.ctrl->Disconnect());
}

void TestFormEvents::preparedOnFirstConnecting() {
    const QString iconPath = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                             QStringLiteral("/../Resources/VQ_TL4.ico"));
    const QImage image = QIcon(iconPath).pixmap(32).toImage();
    QVERIFY(!image.isNull());
    InitSettingDialog dialog;
    dialog.connectDevice(-1, true);
    QCOMPARE(dialog.windowIcon().pixmap(32).toImage(), image);
    QCOMPARE(dialog.windowFlags(), onceSet(Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint |
                                           Qt::WindowMaximizeButtonHint | Qt::CustomizeWindowHint |
                                           Qt::WindowCloseButtonHint));
    QCOMPARE(dialog.minimumSize(), QSize(1171, 720));
    QCOMPARE(dialog.maximumSize(), QSize(1171, 720));
}

void TestFormEvents::notPreparedOnReconnecting() {
    InitSettingDialog dialog;
    const Qt::WindowFlags flags = dialog.windowFlags();
    dialog.connectDevice(-1, false);
    QVERIFY(dialog.windowIcon().isNull());
    QCOMPARE(dialog.windowFlags(), flags);
    QCOMPARE(dialog.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

void TestFormEvents::watchRunsEverySecond() {
    constexpr qint64 earliest = 900; // ms; a coarse timer may be 5 percent early
    SettingWindow window;
    const DebugLog log;
    QElapsedTimer sinceConnected;
    sinceConnected.start();
    QVERIFY(window.connectAndShow());
    QVERIFY(!log.lines().contains(watchLine));
    QTRY_COMPARE_WITH_TIMEOUT(log.lines().count(watchLine), 1, 2000);
    QVERIFY(sinceConnected.elapsed() >= earliest);
    QTRY_COMPARE_WITH_TIMEOUT(log.lines().count(watchLine), 2, 2000);
    QVERIFY(sinceConnected.elapsed() >= 2 * earliest);
}

void TestFormEvents::watchDoesNotRunBeforeConnecting() {
    SettingWindow window;
    const DebugLog log;
    window.dialog->show();
    QElapsedTimer shown;
    shown.start();
    QTRY_VERIFY_WITH_TIMEOUT(shown.hasExpired(1500), 5000);
    QVERIFY(!log.lines().contains(watchLine));
}

void TestFormEvents::lostConnectionIsReportedWithinTwoSeconds() {
    SettingWindow window;
    ModalAnswerer answerer;
    QVERIFY(window.connectAndShow());
    KvaSim_EmitEvent(eEventCode_DisConnect, 0, 0);
    KvaSim_WaitForEvents();
    QTRY_COMPARE_WITH_TIMEOUT(answerer.boxes.size(), 1, 2000);
    QCOMPARE(answerer.boxes[0].text,
             QStringLiteral("The connection with the measuring instrument was disconnected."));
    QTRY_VERIFY(button(*window.dialog, "ConnectPushBtn")->isEnabled());
}

QTEST_MAIN(TestFormEvents)

#include "tst_form_events.moc"
