#ifndef TESTS_DIALOGS_ACCESSIBILITY_FOCUSKEYS_H
#define TESTS_DIALOGS_ACCESSIBILITY_FOCUSKEYS_H

#include <QApplication>
#include <QStringList>
#include <QWidget>
#include <QtTest>

/** Keys pressed in whatever has the focus. */
namespace FocusKeys {

/** The name of the widget of the tabs that has the focus. */
inline const QString tabBar = QStringLiteral("qt_tabwidget_tabbar");

inline void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

/** The names of what has the focus, from where it is around to it again. */
inline QStringList stops(Qt::Key key) {
    QStringList names;
    const QWidget* start = QApplication::focusWidget();
    do {
        names.append(QApplication::focusWidget()->objectName());
        press(key);
    } while (QApplication::focusWidget() != start && names.size() < 100);
    return names;
}

} // namespace FocusKeys

#endif
