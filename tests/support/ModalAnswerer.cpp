#include "tests/support/ModalAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QLineEdit>

ModalAnswerer::Box ModalAnswerer::Box::of(const QMessageBox& box) {
    return {box.windowTitle(), box.text(),
            box.icon(),        box.standardButtons(),
            box.windowFlags(), !box.windowIcon().isNull(),
            box.isModal(),     box.parentWidget() != nullptr};
}

ModalAnswerer::ModalAnswerer() {
    QObject::connect(&m_timer, &QTimer::timeout, this, &ModalAnswerer::answer);
    m_timer.start(1);
}

void ModalAnswerer::willChoose(const QString& path) {
    m_files.enqueue(path);
}

void ModalAnswerer::answer() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible() || m_beingAnswered.contains(modal))
        return;
    m_beingAnswered.append(modal);
    if (auto* box = qobject_cast<QMessageBox*>(modal))
        answerBox(*box);
    else if (auto* dialog = qobject_cast<QFileDialog*>(modal))
        answerFileDialog(*dialog);
    m_beingAnswered.removeOne(modal);
}

void ModalAnswerer::answerBox(QMessageBox& box) {
    boxes.append(Box::of(box));
    if (onBox)
        onBox(box);
    if (closesBoxes)
        box.close();
    else
        box.button(QMessageBox::Ok)->click();
}

void ModalAnswerer::answerFileDialog(QFileDialog& dialog) {
    fileDialogs.append({dialog.windowTitle(), dialog.directory().absolutePath(),
                        dialog.nameFilters(), dialog.selectedNameFilter(), dialog.acceptMode(),
                        dialog.options(), dialog.parentWidget()});
    if (onFileDialog)
        onFileDialog(dialog);
    const QString path = m_files.isEmpty() ? QString() : m_files.dequeue();
    if (path.isEmpty()) {
        dialog.reject();
        return;
    }
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(path);
    // QFileDialog makes accept() protected; the slot is the same one that its button calls.
    QMetaObject::invokeMethod(&dialog, "accept", Qt::DirectConnection);
}
