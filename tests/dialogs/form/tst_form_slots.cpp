#include "tests/dialogs/form/FormTable.h"
#include "tests/support/TestMain.h"

#include <QMetaMethod>

namespace {

/** The slots of a form's dialog, in the order of the meta-object. */
QVector<QByteArray> slotsOf(const FormTable& form) {
    if (qstrcmp(form.name, "LangSelectDialog") == 0)
        return {"on_pushButton_clicked()", "on_jpnRadioBtn_clicked()", "on_engRadioBtn_clicked()"};
    if (qstrcmp(form.name, "ConnectSelectDialog") == 0)
        return {"on_pushButton_clicked()", "on_connectlistWidget_itemSelectionChanged()"};
    return {"on_ClosePushBtn_clicked()",
            "on_selWCPFilePushBtn_clicked()",
            "on_selAmbLightAdpFilePushBtn_clicked()",
            "on_readToFilePushBtn_clicked()",
            "on_disConnectPushBtn_clicked()",
            "on_ConnectPushBtn_clicked()",
            "on_readBodyPushBtn_clicked()",
            "on_writeFilePushBtn_clicked()",
            "on_writeBodyPushBtn_clicked()",
            "on_setWCPValPushBtn_clicked()",
            "on_setAmbAdpBodyPushBtn_clicked()",
            "on_dhcpOnRadioBtn_clicked()",
            "on_dhcpOffRadioBtn_clicked()",
            "on_getAutoPWOffPushBtn_clicked()",
            "on_setAutoPWOffPushBtn_clicked()",
            "timerHit()",
            "on_setBasetabWidget_currentChanged(int)"};
}

struct SlotRow {
    QByteArray name;
    FormTable form;
    int index; ///< among the slots of the dialog
};

} // namespace

Q_DECLARE_METATYPE(SlotRow)

/** The slots of the dialogs and what reaches them. */
class TestFormSlots : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void table_data() { addRows(allForms()); }
    /** The slots in their order, and nothing else. */
    void table() {
        QFETCH(const FormTable, row);
        const auto dialog = row.create();
        const QMetaObject* meta = dialog->metaObject();
        QVector<QByteArray> signatures;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
            signatures.append(meta->method(i).methodSignature());
        QCOMPARE(signatures, slotsOf(row));
        QCOMPARE(meta->propertyCount(), meta->propertyOffset());
        QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
        QCOMPARE(meta->classInfoCount(), meta->classInfoOffset());
        QCOMPARE(meta->constructorCount(), 0);
        QVERIFY(dialog->dynamicPropertyNames().isEmpty());
    }

    void slot_data() {
        QVector<SlotRow> rows;
        for (const FormTable& form : allForms()) {
            for (const QByteArray& slot : slotsOf(form))
                rows.append(
                    {QByteArray(form.name) + '.' + slot, form, slotsOf(form).indexOf(slot)});
        }
        addRows(rows);
    }

    /** What can be disconnected was connected; what can be disconnected twice was connected twice.
     */
    void slot() {
        QFETCH(const SlotRow, row);
        const QByteArray signature = slotsOf(row.form)[row.index];
        const auto dialog = row.form.create();
        const int index = dialog->metaObject()->methodOffset() + row.index;
        const QMetaMethod method = dialog->metaObject()->method(index);
        QCOMPARE(method.methodSignature(), signature);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Private);
        QCOMPARE(method.returnType(), int(QMetaType::Void));
        QCOMPARE(method.parameterNames(),
                 signature.endsWith("(int)") ? QList<QByteArray>{"index"} : QList<QByteArray>());
        if (!signature.startsWith("on_"))
            return; // not connected by its name
        // on_<object>_<signal>; the slots leave out what "clicked" brings.
        QByteArray signal = signature.mid(signature.lastIndexOf('_') + 1);
        signal.replace("clicked()", "clicked(bool)");
        const QByteArray object = signature.mid(3, signature.lastIndexOf('_') - 3);
        const QWidget* sender = findWidget(*dialog, object.constData());
        QVERIFY(sender);
        const int sent = sender->metaObject()->indexOfSignal(signal.constData());
        QVERIFY(sent >= 0);
        QVERIFY(QMetaObject::disconnectOne(sender, sent, dialog.get(), index));
        QVERIFY(!QMetaObject::disconnectOne(sender, sent, dialog.get(), index));
    }
};

TEST_CLASS(TestFormSlots)
#include "tst_form_slots.moc"
