#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/settings/ConnectedFixture.h"

namespace {

struct KeyRow {
    QByteArray name;
    FormTable form;
    int key;
    Qt::KeyboardModifiers modifiers;
    bool isSwallowed;
};

} // namespace

/** In place of Qt's own: here every platform's key for "Cancel" is one, macOS' Command and full
   stop as well. */
bool QKeyEvent::matches(QKeySequence::StandardKey wanted) const {
    const int pressed = key() | static_cast<int>(modifiers() & ~Qt::KeypadModifier);
    return wanted == QKeySequence::Cancel &&
           (pressed == Qt::Key_Escape ||
            pressed == (Qt::Key_Period | static_cast<int>(Qt::ControlModifier)));
}

/** Keys that close or press nothing. */
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
        const auto row = rowOf<KeyRow>();
        const auto dialog = row.form.create();
        dialog->show();
        QKeyEvent press(QEvent::KeyPress, row.key, row.modifiers);
        QCoreApplication::sendEvent(dialog.get(), &press);
        QCOMPARE(press.isAccepted(), row.isSwallowed);
        QVERIFY(dialog->isVisible());
    }

    /** In each one that can have the focus at first. */
    void escapeInAWidgetIsSwallowed_data() { addRows(allForms()); }
    void escapeInAWidgetIsSwallowed() {
        const auto row = rowOf<FormTable>();
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
        ConnectedFixture f;
        QVERIFY(QTest::qWaitForWindowActive(&f.dialog));
        for (const WidgetRow& row : settingForm().widgets) {
            QWidget& widget = f.child(row.name);
            if (!widget.isVisible() || !(widget.focusPolicy() & Qt::TabFocus))
                continue;
            widget.setFocus();
            QTest::keyClick(&widget, Qt::Key_Return);
            QTest::keyClick(&widget, Qt::Key_Enter, Qt::KeypadModifier);
        }
        QCOMPARE(f.boxes() + f.calls(), QStringList());
        QVERIFY(f.answers.fileDialogs.isEmpty());
        QVERIFY(f.dialog.isVisible());
    }
};

TEST_CLASS(TestFormEvents)
#include "tst_form_events.moc"
