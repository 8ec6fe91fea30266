#ifndef TESTS_DIALOGS_FORM_INSTRUMENTLIST_H
#define TESTS_DIALOGS_FORM_INSTRUMENTLIST_H

#include "dialogs/ConnectSelectDialog.h"

#include <QListWidget>
#include <QPushButton>
#include <QtTest>

/** The instrument selection dialog as a user sees and handles it. */
namespace InstrumentList {

inline const QStringList three = {QStringLiteral("VARNE-1(USB,Serial#1000001)"),
                                  QStringLiteral("VARNE-1(192.168.0.20,Serial#1000002)"),
                                  QStringLiteral("VARNE-1(192.168.0.21,Serial#1000003)")};
inline const QStringList two = {QStringLiteral("VARNE-1(USB,Serial#1000007)"),
                                QStringLiteral("VARNE-1(USB,Serial#1000008)")};

inline QListWidget& list(const ConnectSelectDialog& dialog) {
    return *dialog.findChild<QListWidget*>(QStringLiteral("connectlistWidget"));
}

inline QPushButton& okButton(const ConnectSelectDialog& dialog) {
    return *dialog.findChild<QPushButton*>(QStringLiteral("pushButton"));
}

inline void clickOk(const ConnectSelectDialog& dialog) {
    QTest::mouseClick(&okButton(dialog), Qt::LeftButton);
}

inline void clickRow(const ConnectSelectDialog& dialog, int row) {
    QListWidget& widget = list(dialog);
    QTest::mouseClick(widget.viewport(), Qt::LeftButton, Qt::NoModifier,
                      widget.visualItemRect(widget.item(row)).center());
}

inline QStringList rows(const ConnectSelectDialog& dialog) {
    QStringList texts;
    for (int i = 0; i < list(dialog).count(); ++i)
        texts.append(list(dialog).item(i)->text());
    return texts;
}

inline QString selectedLine(int row) {
    return QStringLiteral("select portNum[ConnectSelectDialog]:%1").arg(row);
}

inline QString chosenLine(int row) {
    return QStringLiteral("select portNum[main]:%1").arg(row);
}

} // namespace InstrumentList

#endif
