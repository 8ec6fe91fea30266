#ifndef TESTS_DIALOGS_FORM_FORMTABLE_H
#define TESTS_DIALOGS_FORM_FORMTABLE_H

#include <QDialog>
#include <QRect>
#include <QSizePolicy>
#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>

/** A property that a form sets; enumerations and flags by their number. */
struct Setting {
    const char* property;
    QVariant value;
};
using Settings = QVector<Setting>;

/** A widget of a form. */
struct WidgetRow {
    const char* name;
    const char* className;
    const char* parent; ///< object name; of a tab page: of the tab widget
    QRect geometry;     ///< relative to the parent; null for a tab page
    /** Label, title or, of a tab page, the text of its tab. Empty: the widget shows none. Null: the
        form sets none. */
    const char* text;
    Settings settings;
};

/** A form: the widgets in the order of their creation. */
struct FormTable {
    const char* name; ///< class and object name of the dialog
    const char* title;
    QSize size;
    QSizePolicy::Policy sizePolicy; ///< of the dialog, both ways
    std::function<std::unique_ptr<QDialog>()> create;
    QVector<WidgetRow> rows;
};

QVector<WidgetRow> settingFormRows();
FormTable settingForm();
FormTable langSelectForm();
FormTable connectSelectForm();

inline QVector<FormTable> allForms() {
    return {settingForm(), langSelectForm(), connectSelectForm()};
}

/** The window itself or its widget of that name; null when there is none, or more than one. */
QWidget* findWidget(QDialog& dialog, const char* name);

/** What a widget shows for text: label, title, content or, of a tab page, the text of its tab. */
QString shownText(QDialog& dialog, const WidgetRow& row);

/** What flags read back as once they are set for a window without parent: Qt adds what belongs to
    them, such as Qt::Window. */
Qt::WindowFlags onceSet(Qt::WindowFlags flags);

/** Adds a test row for each form: "form" (its index in allForms). */
void addFormRows();

/** Adds a test row for each widget of each form: "form" (its index in allForms), "row". */
void addWidgetRows();

#endif
