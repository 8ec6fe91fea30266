#include "tests/dialogs/form/FormTable.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaProperty>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QtTest>

namespace {

/** Properties that hold what a row states elsewhere, or that follow from it. */
const QSet<QByteArray> otherwiseTested = {"accessibleDescription",
                                          "accessibleName",
                                          "childrenRect",
                                          "childrenRegion",
                                          "frameRect",
                                          "count",
                                          "currentIndex",
                                          "displayText",
                                          "frameGeometry",
                                          "frameSize",
                                          "geometry",
                                          "height",
                                          "minimumSizeHint",
                                          "normalGeometry",
                                          "objectName",
                                          "pos",
                                          "rect",
                                          "size",
                                          "sizeHint",
                                          "text",
                                          "title",
                                          "width",
                                          "x",
                                          "y"};

QWidget* newWidget(const QByteArray& className, QWidget* parent) {
    if (className == "QGroupBox")
        return new QGroupBox(parent);
    if (className == "QLabel")
        return new QLabel(parent);
    if (className == "QLineEdit")
        return new QLineEdit(parent);
    if (className == "QListWidget")
        return new QListWidget(parent);
    if (className == "QPushButton")
        return new QPushButton(parent);
    if (className == "QRadioButton")
        return new QRadioButton(parent);
    if (className == "QTabWidget")
        return new QTabWidget(parent);
    return className == "QWidget" ? new QWidget(parent) : nullptr;
}

/** A property's value so that it compares with a row's: enumerations and flags as their number, of
    a size policy what a form sets. */
QVariant comparable(const QVariant& value, bool isEnumeration) {
    if (isEnumeration && QMetaType::sizeOf(value.userType()) == int(sizeof(int)))
        return *static_cast<const int*>(value.constData());
    if (value.userType() != QMetaType::QSizePolicy)
        return value;
    const auto policy = value.value<QSizePolicy>();
    return QVariantList{int(policy.horizontalPolicy()), int(policy.verticalPolicy()),
                        policy.horizontalStretch(), policy.verticalStretch()};
}

QVariant valueOf(const QWidget& widget, const char* property) {
    const int index = widget.metaObject()->indexOfProperty(property);
    if (index < 0)
        return QStringLiteral("no such property");
    const QMetaProperty meta = widget.metaObject()->property(index);
    return comparable(meta.read(&widget), meta.isEnumType());
}

/** The widgets of a form below one of them, in the order of creation; the pages of a tab widget in
    that of their tabs. What is inside Qt's own widgets is left out. */
QVector<QWidget*> childrenOf(const QWidget& parent) {
    QVector<QWidget*> children;
    if (qobject_cast<const QListWidget*>(&parent))
        return children;
    if (const auto* tabs = qobject_cast<const QTabWidget*>(&parent)) {
        for (int i = 0; i < tabs->count(); ++i)
            children.append(tabs->widget(i));
        return children;
    }
    for (QObject* child : parent.children()) {
        if (auto* widget = qobject_cast<QWidget*>(child))
            children.append(widget);
    }
    return children;
}

/** The names of the widgets below one of a form, depth first. */
QStringList namesBelow(const QWidget& parent) {
    QStringList names;
    for (const QWidget* child : childrenOf(parent))
        names += QStringList(child->objectName()) + namesBelow(*child);
    return names;
}

} // namespace

/** The widgets of the forms: class, parent, place, settings, order. */
class TestFormLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void form_data() { addFormRows(); }
    void form();
    void widget_data() { addWidgetRows(); }
    void widget();
    void settings_data() { addWidgetRows(); }
    void settings();
    void everythingElseIsDefault_data() { addWidgetRows(); }
    void everythingElseIsDefault();
    void order_data() { addFormRows(); }
    void order();
    void tabOrder_data() { addFormRows(); }
    void tabOrder();
    void tabPages();
    void leftToRightIsKept();
    void localeIsKept();
    void nothingIsChecked();
    void powerOffTimesExclude();
    void networkSwitchesAreIndependent();
    void editsHaveNoMaskOrValidator();
    void noButtonIsDefault();
};

void TestFormLayout::form() {
    QFETCH(int, form);
    const FormTable table = allForms()[form];
    const auto dialog = table.create();
    QCOMPARE(dialog->metaObject()->className(), table.name);
    QCOMPARE(dialog->metaObject()->superClass(), &QDialog::staticMetaObject);
    QCOMPARE(dialog->objectName(), QString::fromLatin1(table.name));
    QCOMPARE(dialog->windowTitle(), QString::fromLatin1(table.title));
    QCOMPARE(dialog->size(), table.size);
    QCOMPARE(comparable(dialog->sizePolicy(), false),
             comparable(QSizePolicy(table.sizePolicy, table.sizePolicy), false));
    QVERIFY(!dialog->parentWidget());
    QVERIFY(!dialog->layout());
    QVERIFY(!dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QVERIFY(dialog->isEnabled());
    QVERIFY(dialog->windowIcon().isNull());
    QVERIFY(dialog->styleSheet().isEmpty());
    // Until it is prepared for its use, a window can still be resized.
    QCOMPARE(dialog->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

void TestFormLayout::widget() {
    QFETCH(int, form);
    QFETCH(int, row);
    const FormTable table = allForms()[form];
    const WidgetRow expected = table.rows[row];
    const auto dialog = table.create();
    QWidget* widget = findWidget(*dialog, expected.name);
    QVERIFY(widget);
    QCOMPARE(widget->metaObject()->className(), expected.className);
    QVERIFY(!widget->layout());
    QWidget* parent = findWidget(*dialog, expected.parent);
    QVERIFY(parent);
    if (expected.geometry.isNull()) {
        auto* tabs = qobject_cast<QTabWidget*>(parent);
        QVERIFY(tabs);
        QVERIFY(tabs->indexOf(widget) >= 0);
    } else {
        QCOMPARE(widget->parentWidget(), parent);
        QCOMPARE(widget->geometry(), expected.geometry);
    }
}

void TestFormLayout::settings() {
    QFETCH(int, form);
    QFETCH(int, row);
    const FormTable table = allForms()[form];
    const auto dialog = table.create();
    const QWidget* widget = findWidget(*dialog, table.rows[row].name);
    QVERIFY(widget);
    for (const Setting& setting : table.rows[row].settings) {
        const QVariant expected = comparable(setting.value, false);
        const QVariant actual = valueOf(*widget, setting.property);
        QVERIFY2(actual == expected, setting.property);
    }
}

void TestFormLayout::everythingElseIsDefault() {
    QFETCH(int, form);
    QFETCH(int, row);
    const FormTable table = allForms()[form];
    const auto dialog = table.create();
    const QWidget* widget = findWidget(*dialog, table.rows[row].name);
    QVERIFY(widget);
    // With the row's settings, whatever follows from them is the same as well.
    QDialog plainDialog;
    QWidget* plain = newWidget(table.rows[row].className, &plainDialog);
    QVERIFY(plain);
    for (const Setting& setting : table.rows[row].settings)
        QVERIFY2(plain->setProperty(setting.property, setting.value), setting.property);
    int compared = 0;
    for (int i = 0; i < plain->metaObject()->propertyCount(); ++i) {
        const char* property = plain->metaObject()->property(i).name();
        if (otherwiseTested.contains(property))
            continue;
        const QVariant actual = valueOf(*widget, property);
        const QVariant usual = valueOf(*plain, property);
        QVERIFY2(actual == usual, property);
        ++compared;
    }
    QVERIFY(compared > 30);
}

void TestFormLayout::order() {
    QFETCH(int, form);
    const FormTable table = allForms()[form];
    QStringList names;
    for (const WidgetRow& row : table.rows)
        names.append(QString::fromLatin1(row.name));
    QCOMPARE(namesBelow(*table.create()), names);
}

void TestFormLayout::tabOrder() {
    QFETCH(int, form);
    const FormTable table = allForms()[form];
    const auto dialog = table.create();
    QStringList names;
    QSet<QString> focusable;
    for (const WidgetRow& row : table.rows) {
        const QWidget* widget = findWidget(*dialog, row.name);
        QVERIFY(widget);
        if (widget->focusPolicy() & Qt::TabFocus) {
            names.append(widget->objectName());
            focusable.insert(widget->objectName());
        }
    }
    QVERIFY(!names.isEmpty());
    QStringList chain;
    for (QWidget* w = dialog->nextInFocusChain(); w != dialog.get(); w = w->nextInFocusChain()) {
        if (focusable.contains(w->objectName()))
            chain.append(w->objectName());
    }
    QCOMPARE(chain, names);
}

void TestFormLayout::tabPages() {
    const auto dialog = settingForm().create();
    const auto* tabs = dialog->findChild<QTabWidget*>(QStringLiteral("setBasetabWidget"));
    QVERIFY(tabs);
    QStringList pages;
    for (int i = 0; i < tabs->count(); ++i)
        pages.append(tabs->widget(i)->objectName());
    QCOMPARE(pages,
             QStringList({QStringLiteral("networkSetTab"), QStringLiteral("autoPowerOfftab"),
                          QStringLiteral("wCalibPlateTab"), QStringLiteral("ambLightAdpTab")}));
    QCOMPARE(tabs->currentIndex(), 0);
}

void TestFormLayout::leftToRightIsKept() {
    const auto dialog = settingForm().create();
    dialog->setLayoutDirection(Qt::RightToLeft);
    QStringList leftToRight;
    for (const WidgetRow& row : settingFormRows()) {
        const QWidget* widget = findWidget(*dialog, row.name);
        QVERIFY(widget);
        if (widget->layoutDirection() == Qt::LeftToRight)
            leftToRight.append(widget->objectName());
    }
    QCOMPARE(leftToRight, QStringList({QStringLiteral("curWCalibPlateSerialNoTlabel"),
                                       QStringLiteral("selFileSerialNoTlabel")}));
}

void TestFormLayout::localeIsKept() {
    const auto dialog = settingForm().create();
    dialog->setLocale(QLocale(QLocale::German));
    const QLocale japanese(QLocale::Japanese, QLocale::Japan);
    for (const WidgetRow& row : settingFormRows()) {
        const QWidget* widget = findWidget(*dialog, row.name);
        QVERIFY(widget);
        const bool isOwn = qstrcmp(row.name, "ConnectPushBtn") == 0;
        QVERIFY2((widget->locale() == japanese) == isOwn, row.name);
    }
}

void TestFormLayout::nothingIsChecked() {
    const auto dialog = settingForm().create();
    const auto buttons = dialog->findChildren<QRadioButton*>();
    QCOMPARE(buttons.size(), 8);
    for (const QRadioButton* button : buttons) {
        QVERIFY2(!button->isChecked(), qPrintable(button->objectName()));
        QVERIFY2(button->isCheckable(), qPrintable(button->objectName()));
    }
}

void TestFormLayout::powerOffTimesExclude() {
    const auto dialog = settingForm().create();
    const char* const names[] = {"invalidradioBtn", "fifteenRadioBtn", "thirtyRadioBtn",
                                 "sixtyRadioBtn"};
    for (const char* chosen : names) {
        qobject_cast<QRadioButton*>(findWidget(*dialog, chosen))->setChecked(true);
        for (const char* name : names) {
            const bool checked =
                qobject_cast<QRadioButton*>(findWidget(*dialog, name))->isChecked();
            QVERIFY2(checked == (name == chosen), name);
        }
    }
}

void TestFormLayout::networkSwitchesAreIndependent() {
    const auto dialog = settingForm().create();
    const auto radio = [&](const char* name) {
        return qobject_cast<QRadioButton*>(findWidget(*dialog, name));
    };
    radio("enableRadioBtn")->setChecked(true);
    radio("dhcpOnRadioBtn")->setChecked(true);
    radio("sixtyRadioBtn")->setChecked(true);
    QVERIFY(radio("enableRadioBtn")->isChecked());
    QVERIFY(radio("dhcpOnRadioBtn")->isChecked());
    radio("disableRadioBtn")->setChecked(true);
    QVERIFY(!radio("enableRadioBtn")->isChecked());
    QVERIFY(radio("dhcpOnRadioBtn")->isChecked());
    radio("dhcpOffRadioBtn")->setChecked(true);
    QVERIFY(!radio("dhcpOnRadioBtn")->isChecked());
    QVERIFY(radio("disableRadioBtn")->isChecked());
    QVERIFY(radio("sixtyRadioBtn")->isChecked());
}

void TestFormLayout::editsHaveNoMaskOrValidator() {
    const auto dialog = settingForm().create();
    int edits = 0;
    for (const WidgetRow& row : settingFormRows()) {
        if (qstrcmp(row.className, "QLineEdit") != 0)
            continue;
        const auto* edit = qobject_cast<QLineEdit*>(findWidget(*dialog, row.name));
        QVERIFY2(edit, row.name);
        QVERIFY2(edit->inputMask().isEmpty(), row.name);
        QVERIFY2(!edit->validator(), row.name);
        QVERIFY2(!edit->completer(), row.name);
        ++edits;
    }
    QCOMPARE(edits, 18);
}

void TestFormLayout::noButtonIsDefault() {
    const auto dialog = settingForm().create();
    dialog->show();
    const auto buttons = dialog->findChildren<QPushButton*>();
    QCOMPARE(buttons.size(), 13);
    for (const QPushButton* button : buttons) {
        QVERIFY2(!button->autoDefault(), qPrintable(button->objectName()));
        QVERIFY2(!button->isDefault(), qPrintable(button->objectName()));
    }
}

QTEST_MAIN(TestFormLayout)

#include "tst_form_layout.moc"
