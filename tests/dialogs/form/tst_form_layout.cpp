#include "tests/dialogs/form/FormTable.h"
#include "tests/support/TestMain.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaProperty>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

namespace {

/** Properties that hold what a row states elsewhere, or that follow from it. */
const QStringList otherwiseTested =
    QString("accessibleDescription accessibleName childrenRect childrenRegion frameRect count "
            "currentIndex displayText frameGeometry frameSize geometry height minimumSizeHint "
            "normalGeometry objectName pos rect size sizeHint text title width x y")
        .split(' ');

/** A widget of that class; null for another class than those of the forms. */
QWidget* newWidget(const QByteArray& className, QWidget* parent) {
    const QHash<QByteArray, std::function<QWidget*()>> classes = {
        {"QGroupBox", [&] { return new QGroupBox(parent); }},
        {"QLabel", [&] { return new QLabel(parent); }},
        {"QLineEdit", [&] { return new QLineEdit(parent); }},
        {"QListWidget", [&] { return new QListWidget(parent); }},
        {"QPushButton", [&] { return new QPushButton(parent); }},
        {"QRadioButton", [&] { return new QRadioButton(parent); }},
        {"QTabWidget", [&] { return new QTabWidget(parent); }},
        {"QWidget", [&] { return new QWidget(parent); }},
    };
    return classes.contains(className) ? classes[className]() : nullptr;
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
        return "no such property";
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
    void form_data() { addRows(allForms()); }
    void form() {
        QFETCH(const FormTable, row);
        const auto dialog = row.create();
        QCOMPARE(dialog->metaObject()->className(), row.name);
        QCOMPARE(dialog->metaObject()->superClass(), &QDialog::staticMetaObject);
        QCOMPARE(dialog->objectName(), QString(row.name));
        QCOMPARE(dialog->windowTitle(), QString(row.title));
        QCOMPARE(dialog->size(), row.size);
        QCOMPARE(comparable(dialog->sizePolicy(), false),
                 comparable(QSizePolicy(row.sizePolicy, row.sizePolicy), false));
        QVERIFY(!dialog->parentWidget());
        QVERIFY(!dialog->layout());
        QVERIFY(!dialog->isVisible());
        QVERIFY(!dialog->isModal());
        QVERIFY(dialog->isEnabled());
        QVERIFY(dialog->windowIcon().isNull());
        QVERIFY(dialog->styleSheet().isEmpty());
        // Until it is prepared for its use, a window can still be resized.
        QCOMPARE(dialog->minimumSize(), QSize(0, 0));
        QCOMPARE(dialog->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
        QStringList names;
        for (const WidgetRow& widget : row.widgets)
            names.append(widget.name);
        QCOMPARE(namesBelow(*dialog), names);
    }

    void widget_data() { addRows(allWidgets()); }
    void widget() {
        QFETCH(const FormWidget, row);
        const auto dialog = row.form.create();
        QWidget* widget = findWidget(*dialog, row.widget.name);
        QVERIFY(widget);
        QCOMPARE(widget->metaObject()->className(), row.widget.className);
        QVERIFY(!widget->layout());
        QWidget* parent = findWidget(*dialog, row.widget.parent);
        QVERIFY(parent);
        if (const auto* tabs = qobject_cast<QTabWidget*>(parent)) {
            QVERIFY(tabs->indexOf(widget) >= 0);
        } else {
            QCOMPARE(widget->parentWidget(), parent);
            QCOMPARE(widget->geometry(), row.widget.geometry);
        }
        for (const Setting& setting : row.widget.settings)
            QVERIFY2(valueOf(*widget, setting.property) == comparable(setting.value, false),
                     setting.property);
        // Everything else is as in a plain widget with the row's settings, what follows from them
        // included.
        QDialog plainDialog;
        QWidget* plain = newWidget(row.widget.className, &plainDialog);
        QVERIFY(plain);
        for (const Setting& setting : row.widget.settings)
            QVERIFY2(plain->setProperty(setting.property, setting.value), setting.property);
        int compared = 0;
        for (int i = 0; i < plain->metaObject()->propertyCount(); ++i) {
            const char* property = plain->metaObject()->property(i).name();
            if (otherwiseTested.contains(property))
                continue;
            QVERIFY2(valueOf(*widget, property) == valueOf(*plain, property), property);
            ++compared;
        }
        QVERIFY(compared > 30);
    }

    void tabOrder_data() { addRows(allForms()); }
    void tabOrder() {
        QFETCH(const FormTable, row);
        const auto dialog = row.create();
        QStringList names;
        for (const WidgetRow& each : row.widgets) {
            const QWidget* widget = findWidget(*dialog, each.name);
            QVERIFY(widget);
            if (widget->focusPolicy() & Qt::TabFocus)
                names.append(widget->objectName());
        }
        QVERIFY(!names.isEmpty());
        QStringList chain;
        for (QWidget* w = dialog->nextInFocusChain(); w != dialog.get();
             w = w->nextInFocusChain()) {
            if (names.contains(w->objectName()))
                chain.append(w->objectName());
        }
        QCOMPARE(chain, names);
    }

    void tabPages() {
        const auto dialog = settingForm().create();
        const auto* tabs = dialog->findChild<QTabWidget*>("setBasetabWidget");
        QVERIFY(tabs);
        QStringList pages;
        for (int i = 0; i < tabs->count(); ++i)
            pages.append(tabs->widget(i)->objectName());
        QCOMPARE(pages, QStringList({"networkSetTab", "autoPowerOfftab", "wCalibPlateTab",
                                     "ambLightAdpTab"}));
        QCOMPARE(tabs->currentIndex(), 0);
    }

    /** What the form sets itself does not follow the dialog. */
    void leftToRightAndLocaleAreKept() {
        const auto dialog = settingForm().create();
        dialog->setLayoutDirection(Qt::RightToLeft);
        dialog->setLocale(QLocale(QLocale::German));
        QStringList leftToRight;
        QStringList japanese;
        for (const WidgetRow& row : settingForm().widgets) {
            const QWidget* widget = findWidget(*dialog, row.name);
            QVERIFY(widget);
            if (widget->layoutDirection() == Qt::LeftToRight)
                leftToRight.append(row.name);
            if (widget->locale() == QLocale(QLocale::Japanese, QLocale::Japan))
                japanese.append(row.name);
        }
        QCOMPARE(leftToRight,
                 QStringList({"curWCalibPlateSerialNoTlabel", "selFileSerialNoTlabel"}));
        QCOMPARE(japanese, QStringList("ConnectPushBtn"));
    }

    void powerOffTimesExclude() {
        const auto dialog = settingForm().create();
        const QStringList names = {"invalidradioBtn", "fifteenRadioBtn", "thirtyRadioBtn",
                                   "sixtyRadioBtn"};
        for (const QString& chosen : names) {
            dialog->findChild<QRadioButton*>(chosen)->setChecked(true);
            for (const QString& name : names)
                QCOMPARE(dialog->findChild<QRadioButton*>(name)->isChecked(), name == chosen);
        }
    }

    void networkSwitchesAreIndependent() {
        const auto dialog = settingForm().create();
        const auto radio = [&](const char* name) { return dialog->findChild<QRadioButton*>(name); };
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

    /** No radio button is checked and no push button is a default one, shown or not. No edit has a
        mask, a validator or a completer. */
    void buttonsAndEdits() {
        const auto dialog = settingForm().create();
        const auto radioButtons = dialog->findChildren<QRadioButton*>();
        QCOMPARE(radioButtons.size(), 8);
        for (const QRadioButton* button : radioButtons) {
            QVERIFY2(!button->isChecked(), qPrintable(button->objectName()));
            QVERIFY2(button->isCheckable(), qPrintable(button->objectName()));
        }
        dialog->show();
        const auto pushButtons = dialog->findChildren<QPushButton*>();
        QCOMPARE(pushButtons.size(), 13);
        for (const QPushButton* button : pushButtons) {
            QVERIFY2(!button->autoDefault(), qPrintable(button->objectName()));
            QVERIFY2(!button->isDefault(), qPrintable(button->objectName()));
        }
        const auto edits = dialog->findChildren<QLineEdit*>();
        QCOMPARE(edits.size(), 18);
        for (const QLineEdit* edit : edits) {
            QVERIFY2(edit->inputMask().isEmpty(), qPrintable(edit->objectName()));
            QVERIFY2(!edit->validator(), qPrintable(edit->objectName()));
            QVERIFY2(!edit->completer(), qPrintable(edit->objectName()));
        }
    }
};

TEST_CLASS(TestFormLayout)
#include "tst_form_layout.moc"
