#include "tests/dialogs/form/FormTable.h"

#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/InitSettingDialog.h"
#include "dialogs/LangSelectDialog.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QtTest>

namespace {

Settings expandingFixed() {
    return {{"sizePolicy",
             QVariant::fromValue(QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed))}};
}

} // namespace

FormTable settingForm() {
    return {"InitSettingDialog",
            "Spectrophotometer Configuration Tool VQ-TL4",
            {1171, 720},
            QSizePolicy::Preferred,
            [] { return std::make_unique<InitSettingDialog>(); },
            settingFormRows()};
}

FormTable langSelectForm() {
    const Settings checked = expandingFixed() + Settings{{"checked", true}};
    const Settings unchecked = expandingFixed() + Settings{{"checked", false}};
    return {"LangSelectDialog",
            "Select Language",
            {351, 170},
            QSizePolicy::Expanding,
            [] { return std::make_unique<LangSelectDialog>(); },
            {
                {"langselgrpBox",
                 "QGroupBox",
                 "LangSelectDialog",
                 {10, 10, 221, 151},
                 "LanguageType",
                 expandingFixed()},
                {"engRadioBtn",
                 "QRadioButton",
                 "langselgrpBox",
                 {20, 30, 181, 41},
                 "English",
                 unchecked},
                {"jpnRadioBtn",
                 "QRadioButton",
                 "langselgrpBox",
                 {20, 90, 181, 31},
                 "Japanese",
                 checked},
                {"pushButton",
                 "QPushButton",
                 "LangSelectDialog",
                 {240, 70, 91, 41},
                 "OK",
                 expandingFixed()},
            }};
}

FormTable connectSelectForm() {
    return {"ConnectSelectDialog",
            "Select Device",
            {520, 213},
            QSizePolicy::Preferred,
            [] { return std::make_unique<ConnectSelectDialog>(); },
            {
                {"connectlistWidget",
                 "QListWidget",
                 "ConnectSelectDialog",
                 {10, 10, 381, 192},
                 nullptr,
                 {}},
                {"pushButton", "QPushButton", "ConnectSelectDialog", {410, 90, 91, 41}, "OK", {}},
            }};
}

QWidget* findWidget(QDialog& dialog, const char* name) {
    if (dialog.objectName() == QLatin1String(name))
        return &dialog;
    const QList<QWidget*> found = dialog.findChildren<QWidget*>(QString::fromLatin1(name));
    return found.size() == 1 ? found.first() : nullptr;
}

QString shownText(QDialog& dialog, const WidgetRow& row) {
    QWidget* widget = findWidget(dialog, row.name);
    if (auto* tabs = qobject_cast<QTabWidget*>(findWidget(dialog, row.parent)))
        return tabs->tabText(tabs->indexOf(widget));
    if (const auto* box = qobject_cast<QGroupBox*>(widget))
        return box->title();
    if (const auto* label = qobject_cast<QLabel*>(widget))
        return label->text();
    if (const auto* edit = qobject_cast<QLineEdit*>(widget))
        return edit->text();
    if (const auto* button = qobject_cast<QAbstractButton*>(widget))
        return button->text();
    return {};
}

Qt::WindowFlags onceSet(Qt::WindowFlags flags) {
    QWidget window;
    window.setWindowFlags(flags);
    return window.windowFlags();
}

void addFormRows() {
    QTest::addColumn<int>("form");
    const QVector<FormTable> forms = allForms();
    for (int i = 0; i < forms.size(); ++i)
        QTest::newRow(forms[i].name) << i;
}

void addWidgetRows() {
    QTest::addColumn<int>("form");
    QTest::addColumn<int>("row");
    const QVector<FormTable> forms = allForms();
    for (int form = 0; form < forms.size(); ++form) {
        for (int row = 0; row < forms[form].rows.size(); ++row)
            QTest::addRow("%s.%s", forms[form].name, forms[form].rows[row].name) << form << row;
    }
}
