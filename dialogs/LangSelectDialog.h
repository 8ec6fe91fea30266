#ifndef DIALOGS_LANGSELECTDIALOG_H
#define DIALOGS_LANGSELECTDIALOG_H

#include "dialogs/Language.h"

#include <QDialog>

#include <memory>

namespace Ui {
class LangSelectDialog;
}

/**
 * The choice of the user-interface language, the first window of a run. Shown with `show()`; its
 * owner waits for `isFinished` and then reads `isCancelled` and `languageCode`.
 */
class LangSelectDialog : public QDialog {
    Q_OBJECT

    // The order of the members is fixed, so public and private ones alternate.

public:
    explicit LangSelectDialog(QWidget* parent = nullptr);
    ~LangSelectDialog() override;

    /** Prepares the window and preselects a language; an unknown code means Japanese. */
    void setLanguage(int languageCode);

protected:
    /** Ignores Escape and the platform's key for Cancel: they must not count as a choice. */
    void keyPressEvent(QKeyEvent* event) override;
    /** Closing the window before OK cancels the start. */
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    void on_pushButton_clicked();
    void on_jpnRadioBtn_clicked();
    void on_engRadioBtn_clicked();

public:
    bool isCancelled = false; ///< the window was closed before OK was pressed

private:
    std::unique_ptr<Ui::LangSelectDialog> ui;

public:
    bool isFinished = false;
    int languageCode = Language::japanese; ///< `Language::code`
};

#endif
