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
 * The choice of one of the listed instruments. One object serves every choice of a run; its OK
 * button is the only way out.
 */
class ConnectSelectDialog : public QDialog {
    Q_OBJECT

    // The order of the members is fixed, so public and private ones alternate.

public:
    explicit ConnectSelectDialog(QWidget* parent = nullptr);
    ~ConnectSelectDialog() override;

    /** Shares the controller, so that it outlives the dialog; nothing is called on it. */
    void setSdkCtrl(std::shared_ptr<CKvaSdk_Ctrl> ctrl);

    /** Prepares the window and lists @p devices, the first one selected. */
    void setDeviceList(QStringList devices);

    /** Offers @p devices and waits for the choice, which is `portNum` then. The owner clears
        `isFinished` before each use but the first.
        @param isAbandoned  asked while waiting: the window is withdrawn when it answers true
        @return false when the choice was abandoned, be it in the moment in which it was made */
    bool choose(const QStringList& devices, const std::function<bool()>& isAbandoned);

protected:
    /** Escape, or the platform's key for Cancel, is swallowed: there is no way out without a
     * choice. */
    void keyPressEvent(QKeyEvent* event) override;

private Q_SLOTS:
    void on_pushButton_clicked();
    void on_connectlistWidget_itemSelectionChanged();

private:
    std::unique_ptr<Ui::ConnectSelectDialog> ui;
    std::shared_ptr<CKvaSdk_Ctrl> m_sdkCtrl;

public:
    bool isFinished = false; ///< set by OK and by the destructor; cleared by the owner alone
    int portNum = 0;         ///< the chosen row
};

#endif
