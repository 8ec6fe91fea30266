#ifndef DIALOGS_CONNECTSELECTDIALOG_H
#define DIALOGS_CONNECTSELECTDIALOG_H

#include <QDialog>
#include <QStringList>

#include <functional>
#include <memory>

class CKvaSdk_Ctrl;

namespace Ui {
class ConnectSelectDialog;
}

/**
 * The selection of one of the listed instruments. One object serves all selections of a run. Only
 * its OK button closes it.
 */
class ConnectSelectDialog : public QDialog {
    Q_OBJECT

    // The order of the members is fixed, so public and private ones alternate.

public:
    explicit ConnectSelectDialog(QWidget* parent = nullptr);
    ~ConnectSelectDialog() override;

    /** Shares ownership of the controller, which keeps it alive; the dialog never calls it. */
    void setSdkCtrl(std::shared_ptr<CKvaSdk_Ctrl> ctrl);

    /** Prepares the window and lists @p devices, the first one selected. */
    void setDeviceList(QStringList devices);

    /** Shows @p devices and waits until the user has chosen; the choice is then in `portNum`. The
        owner clears `isFinished` before each use except the first.
        @param isAbandoned  polled while waiting: true closes the window
        @return false when @p isAbandoned returned true, even together with a choice */
    bool choose(const QStringList& devices, const std::function<bool()>& isAbandoned);

protected:
    /** Ignores Escape and the platform's key for Cancel: the window stays open until the user has
     * chosen. */
    void keyPressEvent(QKeyEvent* event) override;

private Q_SLOTS:
    void on_pushButton_clicked();
    void on_connectlistWidget_itemSelectionChanged();

private:
    std::unique_ptr<Ui::ConnectSelectDialog> ui;
    std::shared_ptr<CKvaSdk_Ctrl> m_sdkCtrl;

public:
    bool isFinished = false; ///< set by OK and by the destructor; only the owner clears it
    int portNum = 0;         ///< the chosen row
};

#endif
