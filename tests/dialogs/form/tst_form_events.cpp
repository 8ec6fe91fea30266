#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/SettingWindow.h"
#include "tests/support/DebugLog.h"
#include "tests/support/ModalAnswerer.h"
#include "tests/support/TestMain.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPushButton>

namespace {

const QString watchLine = "eEventCode_DisConnect check \n";

struct KeyRow {
    QByteArray name;
    FormTable form;
    int key;
    Qt::KeyboardModifiers modifiers;
    bool isSwallowed;
};

struct CloseRow {
    const char* name;
    bool isConnected;
    bool isFinished; ///< before it is closed
    bool byButton;
    int times;
    int disconnects;
};

} // namespace

Q_DECLARE_METATYPE(KeyRow)
Q_DECLARE_METATYPE(CloseRow)

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
    void escapeIsSwallowed_data() {
        QVector<KeyRow> rows;
        for (const FormTable& form : allForms()) {
            const QByteArray name = form.name;
            rows += {
                {name, form, Qt::Key_Escape, Qt::NoModifier, true},
                {name + " shift", form, Qt::Key_Escape, Qt::ShiftModifier, true},
                {name + " keypad", form, Qt::Key_Escape, Qt::KeypadModifier, true},
                {name + " the platform's cancel", form, Qt::Key_Period, Qt::ControlModifier, true},
                {name + " A", form, Qt::Key_A, Qt::NoModifier, false},
                {name + " F5", form, Qt::Key_F5, Qt::NoModifier, false},
                {name + " Back", form, Qt::Key_Back, Qt::NoModifier, false},
            };
        }
        addRows(rows);
    }

    /** QDialog leaves other keys to others; who swallows one leaves the event accepted. */
    void escapeIsSwallowed() {
        QFETCH(const KeyRow, row);
        const auto dialog = row.form.create();
        dialog->show();
        QKeyEvent press(QEvent::KeyPress, row.key, row.modifiers);
        QCoreApplication::sendEvent(dialog.get(), &press);
        QCOMPARE(press.isAccepted(), row.isSwallowed);
        QVERIFY(dialog->isVisible());
    }

    void escapeInAWidgetIsSwallowed_data() { addRows(allForms()); }
    /** In each one that can have the focus at first. */
    void escapeInAWidgetIsSwallowed() {
        QFETCH(const FormTable, row);
        const auto dialog = row.create();
        dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        int pressed = 0;
        for (const WidgetRow& each : row.widgets) {
            QWidget* widget = findWidget(*dialog, each.name);
            if (!widget->isVisible() || !widget->isEnabled() ||
                widget->focusPolicy() == Qt::NoFocus)
                continue;
            widget->setFocus();
            QTRY_VERIFY2(widget->hasFocus(), each.name);
            QTest::keyClick(widget, Qt::Key_Escape);
            QVERIFY2(dialog->isVisible(), each.name);
            QCOMPARE(dialog->result(), 0);
            ++pressed;
        }
        QVERIFY(pressed > row.widgets.size() / 4);
    }

    void returnPressesNothingInTheSettings() {
        SettingWindow window;
        QVERIFY(window.connectAndShow());
        QVERIFY(QTest::qWaitForWindowActive(window.dialog.get()));
        ModalAnswerer answerer;
        TestBench::clearCalls();
        for (const WidgetRow& row : settingForm().widgets) {
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
        QCOMPARE(TestBench::calls(), QStringList());
    }

    void closed_data() {
        addRows(QVector<CloseRow>{
            {"while not connected", false, false, false, 1, 0},
            {"by its button, while not connected", false, false, true, 1, 0},
            {"while connected", true, false, false, 1, 1},
            {"once finished", true, true, false, 1, 0},
            {"twice", true, false, false, 2, 1},
        });
    }

    void closed() {
        QFETCH(const CloseRow, row);
        SettingWindow window;
        QVERIFY(!row.isConnected || window.connectAndShow());
        QVERIFY(!window.dialog->isFinished);
        window.dialog->isFinished = row.isFinished;
        for (int time = 0; time < row.times; ++time) {
            window.dialog->show();
            if (row.byButton)
                QTest::mouseClick(findWidget(*window.dialog, "ClosePushBtn"), Qt::LeftButton);
            else
                QVERIFY(window.dialog->close());
            QVERIFY(window.dialog->isFinished);
            QVERIFY(!window.dialog->isVisible());
        }
        QCOMPARE(TestBench::calls().count("KVA_Disconnect"), row.disconnects);
        QCOMPARE(window.ctrl->m_connected, row.isFinished);
        QVERIFY(!row.isFinished || window.ctrl->Disconnect());
    }

    void destroyedWhileConnected() {
        SettingWindow window;
        QVERIFY(window.connectAndShow());
        window.dialog.reset();
        QCOMPARE(TestBench::calls().count("KVA_Disconnect"), 0);
        QVERIFY(window.ctrl->m_connected);
        QCOMPARE(window.ctrl.use_count(), 1L);
        QVERIFY(window.ctrl->Disconnect());
    }

    /** And not when it connects again. */
    void preparedOnFirstConnecting() {
        InitSettingDialog dialog;
        const Qt::WindowFlags flags = dialog.windowFlags();
        dialog.connectDevice(-1, false);
        QVERIFY(dialog.windowIcon().isNull());
        QCOMPARE(dialog.windowFlags(), flags);
        QCOMPARE(dialog.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
        dialog.connectDevice(-1, true);
        QCOMPARE(iconOf(dialog), programIcon());
        QCOMPARE(dialog.windowFlags(), closableFlags());
        QCOMPARE(dialog.minimumSize(), QSize(1171, 720));
        QCOMPARE(dialog.maximumSize(), QSize(1171, 720));
    }

    void watchRunsEverySecond() {
        constexpr qint64 earliest = 900; // ms; a coarse timer may be 5 percent early
        SettingWindow window;
        const DebugLog log;
        QElapsedTimer sinceConnected;
        sinceConnected.start();
        QVERIFY(window.connectAndShow());
        QVERIFY(!log.lines().contains(watchLine));
        for (const int times : {1, 2}) {
            QTRY_COMPARE_WITH_TIMEOUT(log.lines().count(watchLine), times, 2000);
            QVERIFY(sinceConnected.elapsed() >= times * earliest);
        }
    }

    void watchDoesNotRunBeforeConnecting() {
        SettingWindow window;
        const DebugLog log;
        window.dialog->show();
        QElapsedTimer shown;
        shown.start();
        QTRY_VERIFY_WITH_TIMEOUT(shown.hasExpired(1500), 5000);
        QVERIFY(!log.lines().contains(watchLine));
    }

    void lostConnectionIsReportedWithinTwoSeconds() {
        SettingWindow window;
        ModalAnswerer answerer;
        QVERIFY(window.connectAndShow());
        TestBench::emitEvent(eEventCode_DisConnect);
        QTRY_COMPARE_WITH_TIMEOUT(answerer.boxes.size(), 1, 2000);
        QCOMPARE(answerer.texts(),
                 QStringList("The connection with the measuring instrument was disconnected."));
        QTRY_VERIFY(findWidget(*window.dialog, "ConnectPushBtn")->isEnabled());
    }
};

TEST_CLASS(TestFormEvents)
#include "tst_form_events.moc"
