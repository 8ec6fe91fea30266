/**
 * The least that a program of this kind costs: one dialog, and the wait that processes events and
 * sleeps 10 ms.
 *
 * bare_dialog language   the dialog is empty, of the language dialog's size
 * bare_dialog choice     of the same size, with widgets like the language dialog's
 * bare_dialog settings   empty, of the settings dialog's size
 * bare_dialog form       of the same size, with as many widgets as the settings dialog
 * bare_dialog version    no dialog: prints the version of Qt
 */
#include "benchmarks/BareForm.h"

#include <QApplication>
#include <QDialog>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QThread>

#include <cstdio>

namespace {

void addChoice(QWidget& window) {
    auto* group = new QGroupBox(QStringLiteral("Choice"), &window);
    group->setGeometry(10, 10, 221, 151);
    auto* first = new QRadioButton(QStringLiteral("First"), group);
    first->setGeometry(20, 30, 181, 41);
    auto* second = new QRadioButton(QStringLiteral("Second"), group);
    second->setGeometry(20, 90, 181, 31);
    auto* button = new QPushButton(QStringLiteral("OK"), &window);
    button->setGeometry(240, 70, 91, 41);
}

} // namespace

int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    const QString kind = QCoreApplication::arguments().value(1);
    if (kind == QStringLiteral("version")) {
        std::puts(qVersion());
        return 0;
    }
    QDialog dialog;
    if (kind == QStringLiteral("language") || kind == QStringLiteral("choice"))
        dialog.setFixedSize(351, 170);
    else if (kind == QStringLiteral("settings") || kind == QStringLiteral("form"))
        dialog.setFixedSize(1171, 720);
    else
        return 2;
    if (kind == QStringLiteral("choice"))
        addChoice(dialog);
    else if (kind == QStringLiteral("form"))
        addBareForm(dialog);
    dialog.show();
    while (dialog.isVisible()) {
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
    return 0;
}
