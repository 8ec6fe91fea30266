#ifndef TESTS_SUPPORT_MODALANSWERER_H
#define TESTS_SUPPORT_MODALANSWERER_H

#include <QFileDialog>
#include <QMessageBox>
#include <QQueue>
#include <QTimer>
#include <QVector>

#include <functional>

/**
 * Answers the modal windows that a slot opens while it runs, and keeps what they showed. Message
 * boxes get their Ok button pressed; file dialogs get the next answer that was prepared, or are
 * cancelled when there is none.
 */
class ModalAnswerer : public QObject {
public:
    struct Box {
        QString title;
        QString text;
        QMessageBox::Icon icon;
        QMessageBox::StandardButtons buttons;
        Qt::WindowFlags flags;
        bool hasWindowIcon;
        bool isModal;
        bool hasParent;

        static Box of(const QMessageBox& box);
    };
    struct FileDialog {
        QString caption;
        QString directory; ///< absolute
        QStringList nameFilters;
        QString selectedNameFilter;
        QFileDialog::AcceptMode acceptMode;
        QFileDialog::Options options;
        QWidget* parent;
    };

    ModalAnswerer();

    /** The next file dialog is answered with this file; empty: it is cancelled. */
    void willChoose(const QString& path);

    /** Called for each message box while it is open, before it is answered. */
    std::function<void(QMessageBox&)> onBox;
    /** Called for each file dialog while it is open, before it is answered. */
    std::function<void(QFileDialog&)> onFileDialog;
    /** Boxes are closed by the window's close control instead of their button. */
    bool closesBoxes = false;

    QVector<Box> boxes;
    QVector<FileDialog> fileDialogs;

private:
    void answer();
    void answerBox(QMessageBox& box);
    void answerFileDialog(QFileDialog& dialog);

    QTimer m_timer;
    QQueue<QString> m_files;           ///< empty text: cancel
    QVector<QWidget*> m_beingAnswered; ///< a callback may run the event loop
};

#endif
