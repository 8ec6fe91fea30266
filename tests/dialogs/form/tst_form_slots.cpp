#include "tests/dialogs/form/FormTable.h"

#include <QMetaMethod>
#include <QtTest>

namespace {

/** The slots of a form's dialog, in the order of the meta-object. */
QVector<QByteArray> slotsOf(int form) {
    if (form == 1)
        return {"on_pushButton_clicked()", "on_jpnRadioBtn_clicked()", "on_engRadioBtn_clicked()"};
    if (form == 2)
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

/** The signal in the name of a slot, without arguments: the part after the last underscore. */
QByteArray signalOf(const QByteArray& slot) {
    const int start = slot.lastIndexOf('_') + 1;
    return slot.mid(start, slot.indexOf('(') - start);
}

/** The object name in the name of a slot: between "on_" and the signal. */
QByteArray senderOf(const QByteArray& slot) {
    const int start = int(qstrlen("on_"));
    return slot.mid(start, slot.lastIndexOf('_') - start);
}

/** The index of the signal of that name that a slot of that signature takes, every argument of the
    signal that the slot leaves out being ignored. -1 when there is none. */
int matchingSignal(const QMetaObject& sender, const QByteArray& name, const QByteArray& slot) {
    for (int i = 0; i < sender.methodCount(); ++i) {
        const QMetaMethod method = sender.method(i);
        if (method.methodType() == QMetaMethod::Signal && method.name() == name &&
            !(method.attributes() & QMetaMethod::Cloned) &&
            QMetaObject::checkConnectArgs(method.methodSignature().constData(), slot.constData()))
            return i;
    }
    return -1;
}

} // namespace

/** The slots of the dialogs and what reaches them. */
class TestFormSlots : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void table_data() { addFormRows(); }
    void table();
    void slot_data();
    void slot();
    void connectedByName_data();
    void connectedByName();
    void nothingElseOfTheirOwn_data() { addFormRows(); }
    void nothingElseOfTheirOwn();
    void tabIndexIsNamed();
};

void TestFormSlots::table() {
    QFETCH(int, form);
    const auto dialog = allForms()[form].create();
    const QMetaObject* meta = dialog->metaObject();
    QVector<QByteArray> signatures;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        signatures.append(meta->method(i).methodSignature());
    QCOMPARE(signatures, slotsOf(form));
}

void TestFormSlots::slot_data() {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("index");
    const QVector<FormTable> forms = allForms();
    for (int form = 0; form < forms.size(); ++form) {
        const QVector<QByteArray> slotNames = slotsOf(form);
        for (int i = 0; i < slotNames.size(); ++i)
            QTest::addRow("%s.%s", forms[form].name, slotNames[i].constData()) << form << i;
    }
}

void TestFormSlots::slot() {
    QFETCH(int, form);
    QFETCH(int, index);
    const auto dialog = allForms()[form].create();
    const QMetaMethod method =
        dialog->metaObject()->method(dialog->metaObject()->methodOffset() + index);
    QCOMPARE(method.methodSignature(), slotsOf(form)[index]);
    QCOMPARE(method.methodType(), QMetaMethod::Slot);
    QCOMPARE(method.access(), QMetaMethod::Private);
    QCOMPARE(method.returnType(), int(QMetaType::Void));
}

void TestFormSlots::connectedByName_data() {
    QTest::addColumn<int>("form");
    QTest::addColumn<QByteArray>("slot");
    const QVector<FormTable> forms = allForms();
    for (int form = 0; form < forms.size(); ++form) {
        const QVector<QByteArray> slotNames = slotsOf(form);
        for (const QByteArray& slot : slotNames) {
            if (slot.startsWith("on_"))
                QTest::addRow("%s.%s", forms[form].name, slot.constData()) << form << slot;
        }
    }
}

/** What can be disconnected was connected; what can be disconnected twice was connected twice. */
void TestFormSlots::connectedByName() {
    QFETCH(int, form);
    QFETCH(QByteArray, slot);
    const auto dialog = allForms()[form].create();
    const QWidget* sender = findWidget(*dialog, senderOf(slot).constData());
    QVERIFY(sender);
    const int signal = matchingSignal(*sender->metaObject(), signalOf(slot), slot);
    QVERIFY(signal >= 0);
    const int method = dialog->metaObject()->indexOfSlot(slot.constData());
    QVERIFY(QMetaObject::disconnectOne(sender, signal, dialog.get(), method));
    QVERIFY(!QMetaObject::disconnectOne(sender, signal, dialog.get(), method));
}

void TestFormSlots::nothingElseOfTheirOwn() {
    QFETCH(int, form);
    const auto dialog = allForms()[form].create();
    const QMetaObject* meta = dialog->metaObject();
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
    QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
    QCOMPARE(meta->classInfoCount(), meta->classInfoOffset());
    QCOMPARE(meta->constructorCount(), 0);
    QVERIFY(dialog->dynamicPropertyNames().isEmpty());
}

void TestFormSlots::tabIndexIsNamed() {
    const auto dialog = settingForm().create();
    const QMetaObject* meta = dialog->metaObject();
    const int slot = meta->indexOfSlot("on_setBasetabWidget_currentChanged(int)");
    QVERIFY(slot >= 0);
    QCOMPARE(meta->method(slot).parameterNames(), QList<QByteArray>({"index"}));
}

QTEST_MAIN(TestFormSlots)

#include "tst_form_slots.moc"
