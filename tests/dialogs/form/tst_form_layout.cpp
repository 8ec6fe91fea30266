#include "tests/dialogs/form/FormTable.h"
#include "tests/dialogs/form/Translations.h"
#include "tests/support/TestMain.h"

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
    a size policy what a form sets, of a picture its key, as pictures do not compare. */
QVariant comparable(const QVariant& value, bool isEnumeration) {
    if (isEnumeration && QMetaType::sizeOf(value.userType()) == int(sizeof(int)))
        return *static_cast<const int*>(value.constData());
    if (value.userType() == QMetaType::QIcon)
        return value.value<QIcon>().cacheKey();
    if (value.userType() == QMetaType::QPixmap)
        return value.value<QPixmap>().cacheKey();
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

struct SlotRow {
    QByteArray name;
    FormTable form;
    int index; ///< of the method
};

} // namespace

/** The forms: the class, parent, place, settings, texts and order of each widget, and the slots. */
class TestFormLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void form_data() { addRows(allForms()); }
    void form() {
        const auto row = rowOf<FormTable>();
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
        const auto row = rowOf<FormWidget>();
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
        // Everything else is as in a plain widget with the row's settings and what follows of them.
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

    void text_data() { addRows(allWidgets()); }
    void text() {
        const auto row = rowOf<FormWidget>();
        const char* const source = row.widget.text;
        const bool hasText = *source != '\0';
        const auto shown = [&] { return shownText(*row.form.create(), row.widget); };
        QVERIFY(findWidget(*row.form.create(), row.widget.name));
        QCOMPARE(shown(), QString(source));
        for (const LanguageRow& language : languages) {
            const InstalledTranslation translation(language.name);
            const QString translated = translationOf(language.name, row.form.name, source);
            QCOMPARE(translated.isEmpty(), !hasText);
            QCOMPARE(shown(), translated);
        }
        const MarkingTranslator marking;
        QCOMPARE(shown(), hasText ? MarkingTranslator::marked(row.form.name, source) : QString());
    }

    void title_data() { addRows(allForms()); }
    void title() {
        const auto row = rowOf<FormTable>();
        const char* const titles[] = {row.title, row.japaneseTitle};
        for (int i = 0; i < 2; ++i) {
            const InstalledTranslation translation(languages[i].name);
            QCOMPARE(row.create()->windowTitle(), QString(titles[i]));
        }
        const MarkingTranslator marking;
        QCOMPARE(row.create()->windowTitle(), MarkingTranslator::marked(row.name, row.title));
    }

    void tabOrder_data() { addRows(allForms()); }
    void tabOrder() {
        const auto row = rowOf<FormTable>();
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
        QCOMPARE(dialog->findChild<QTabWidget*>("setBasetabWidget")->currentIndex(), 0);
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

    /** No push button is a default one, shown or not. No edit has a validator or a completer. */
    void buttonsAndEdits() {
        const auto dialog = settingForm().create();
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
            QVERIFY2(!edit->validator(), qPrintable(edit->objectName()));
            QVERIFY2(!edit->completer(), qPrintable(edit->objectName()));
        }
    }

    /** Nothing but slots. Their order is listed in docs/frozen.md, which is compared elsewhere. */
    void slotTable_data() { addRows(allForms()); }
    void slotTable() {
        const auto dialog = rowOf<FormTable>().create();
        const QMetaObject* meta = dialog->metaObject();
        QCOMPARE(meta->propertyCount(), meta->propertyOffset());
        QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
        QCOMPARE(meta->classInfoCount(), meta->classInfoOffset());
        QCOMPARE(meta->constructorCount(), 0);
        QVERIFY(dialog->dynamicPropertyNames().isEmpty());
    }

    void slot_data() {
        QVector<SlotRow> rows;
        for (const FormTable& form : allForms()) {
            const auto dialog = form.create();
            const QMetaObject* meta = dialog->metaObject();
            for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
                rows.append({form.name + ('.' + meta->method(i).methodSignature()), form, i});
        }
        addRows(rows);
    }

    /** What can be disconnected was connected, once if it can be disconnected once. */
    void slot() {
        const auto row = rowOf<SlotRow>();
        const auto dialog = row.form.create();
        const QMetaMethod method = dialog->metaObject()->method(row.index);
        const QByteArray signature = method.methodSignature();
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
        QVERIFY(QMetaObject::disconnectOne(sender, sent, dialog.get(), row.index));
        QVERIFY(!QMetaObject::disconnectOne(sender, sent, dialog.get(), row.index));
    }
};

TEST_CLASS(TestFormLayout)
#include "tst_form_layout.moc"
