#ifndef TESTS_DIALOGS_FORM_FORMTABLE_H
#define TESTS_DIALOGS_FORM_FORMTABLE_H

#include "tests/support/Widgets.h"

#include <functional>

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
    QRect geometry;   ///< relative to the parent; null for a tab page
    const char* text; ///< label, title or, of a tab page, the text of its tab
    Settings settings;
    const char* parent = nullptr; ///< object name; of a tab page: of the tab widget
};

/** A form: the widgets in the order of their creation. */
struct FormTable {
    const char* name; ///< class and object name of the dialog
    const char* title;
    const char* japaneseTitle;
    QSize size;
    QSizePolicy::Policy sizePolicy; ///< of the dialog, both ways
    std::function<std::unique_ptr<QDialog>()> create;
    QVector<WidgetRow> widgets;
};

FormTable settingForm();
FormTable langSelectForm();
FormTable connectSelectForm();
QVector<FormTable> allForms();

/** A test row: one widget of one form. */
struct FormWidget {
    QByteArray name; ///< of form and widget
    FormTable form;
    WidgetRow widget;
};

QVector<FormWidget> allWidgets();

/** The window itself or its widget of that name; null when there is none, or more than one. */
QWidget* findWidget(QDialog& dialog, const char* name);

/** What a widget shows for text: label, title, content or, of a tab page, the text of its tab. */
QString shownText(QDialog& dialog, const WidgetRow& row);

/** The icon that a window shows, and the one that the program's windows have to show. */
QImage iconOf(const QWidget& window);
QImage programIcon();

/** The flags of a window without close button and of one with it, as they read back: Qt adds what
    belongs to them, such as Qt::Window. */
Qt::WindowFlags titledFlags();
Qt::WindowFlags closableFlags();

#endif
