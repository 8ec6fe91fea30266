#ifndef DIALOGS_INITSETTINGDIALOG_H
#define DIALOGS_INITSETTINGDIALOG_H

#include <QDialog>
#include <QFileDialog>
#include <QString>
#include <QTimer>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

class CKvaSdk_Ctrl;
class ConnectSelectDialog;
class QLineEdit;
class QRadioButton;

namespace Ui {
class InitSettingDialog;
}

/**
 * The settings dialog, the main window of a run: the connection panel with the disconnect watch,
 * and the tabs for the network settings, the power-off time and the two calibration accessories.
 *
 * Its owner hands over the controller and the selection dialog, calls `connectDevice`, shows the
 * window with `show()` and waits for `isFinished`. User-interface thread only; the slots block
 * while the instrument works and while a message is shown.
 */
class InitSettingDialog : public QDialog {
    Q_OBJECT

    // The order of the members is fixed, so public and private ones alternate.

public:
    explicit InitSettingDialog(QWidget* parent = nullptr);
    ~InitSettingDialog() override;

    /** Shares ownership of the controller. Must be called first. */
    void setSdkCtrl(std::shared_ptr<CKvaSdk_Ctrl> ctrl);

    /** The dialog in which the Connect button lists the instruments; not owned, and must stay
        alive as long as this window is used. */
    void setConnectSelectDialog(ConnectSelectDialog* dialog);

    /** Connects to an instrument and fills the dialog from it.
        @param portNum    index into the controller's list; negative: no instrument
        @param firstTime  also sets the window's icon, flags and fixed size */
    void connectDevice(int portNum, bool firstTime);

    /** Shows a modal box with the critical icon. Translates the text, also a translated one. */
    void showErrorMessage(const QString& message);
    /** Shows a modal box with the information icon. Translates the text, also a translated one. */
    void showInfoMessage(const QString& message);

    /** Enables or disables the sixteen address edits, nothing else. */
    void SetTcpIpEditsEnabled(bool enabled);
    /** Whether each of the sixteen address edits holds digits and nothing else. */
    bool ValidateAddressEdits();
    /** Whether the text is one or more of the ASCII digits. */
    bool IsDigitsOnly(const QString& text);

protected:
    /** Ignores Escape and the platform's key for Cancel: they must not end the program. */
    void keyPressEvent(QKeyEvent* event) override;
    /** The title bar's close button acts as the Close button. */
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    // Their order is part of the meta-object.
    void on_ClosePushBtn_clicked();
    void on_selWCPFilePushBtn_clicked();
    void on_selAmbLightAdpFilePushBtn_clicked();
    void on_readToFilePushBtn_clicked();
    void on_disConnectPushBtn_clicked();
    void on_ConnectPushBtn_clicked();
    void on_readBodyPushBtn_clicked();
    void on_writeFilePushBtn_clicked();
    void on_writeBodyPushBtn_clicked();
    void on_setWCPValPushBtn_clicked();
    void on_setAmbAdpBodyPushBtn_clicked();
    void on_dhcpOnRadioBtn_clicked();
    void on_dhcpOffRadioBtn_clicked();
    void on_getAutoPWOffPushBtn_clicked();
    void on_setAutoPWOffPushBtn_clicked();
    void timerHit();
    void on_setBasetabWidget_currentChanged(int index);

private:
    struct CalibrationTab;

    /** IP address, subnet mask, default gateway and DNS server, first octet first. */
    using Octets = std::array<uint8_t, 16>;
    /** The radio buttons of the power-off modes, in the order of the modes' values. */
    using PowerOffButtons = std::array<QRadioButton*, 4>;

    // Accessibility: texts for screen readers, the keyboard
    void nameFields();
    void nameNetworkFields();
    void nameNetworkButtons();
    void namePowerOffTab();
    void nameCalibrationTabs();
    void separateChoices();

    // Connection panel
    void showNoInstrument();
    void fillFromInstrument();
    bool fillIdentity();
    void fillWirelessLan();
    void fillCalibrationSerialNos();
    void fillPowerOffTime();
    void enterConnectedState();
    void resetToNotConnected();
    void endConnection();
    void setTabsEnabled(bool enabled);
    void clearIdentity();

    /** `QFileDialog::getOpenFileName` or `getSaveFileName`. */
    using FileQuestion = QString (*)(QWidget* parent, const QString& caption,
                                     const QString& directory, const QString& filter,
                                     QString* selectedFilter, QFileDialog::Options options);

    /** The file that the user chose. Empty when the dialog was cancelled, or when the connection
        was lost meanwhile: the fields that the file is for are then empty and disabled. */
    QString askFileName(FileQuestion ask, const QString& caption, const QString& filter,
                        QFileDialog::Options options = {});

    // Network tab
    void fillNetworkTab();
    void clearNetworkTab();
    void clearNetworkSwitches();
    void uncheckNetworkSwitches();
    std::optional<Octets> readOctets();
    void collectNetworkTab(const Octets& octets);
    void writeNetworkToBody();
    void setNetworkButtonsEnabled(bool enabled);

    // Calibration tabs
    CalibrationTab whitePlateTab();
    CalibrationTab ambientAdapterTab();
    static void clearCalibrationTab(const CalibrationTab& tab);
    void clearCalibrationTabs();
    void chooseValueFile(const CalibrationTab& tab);
    void registerValueFile(const CalibrationTab& tab);

    // Power-off tab
    PowerOffButtons powerOffButtons() const;
    void clearPowerOffTab();
    void checkPowerOffButton(uint8_t mode);
    void setPowerOffButtonsEnabled(bool enabled);

    std::unique_ptr<Ui::InitSettingDialog> ui;
    std::shared_ptr<CKvaSdk_Ctrl> m_sdkCtrl;
    ConnectSelectDialog* m_connectSelectDialog = nullptr;
    QString m_wcpFilePath; ///< chosen white plate file; empty: none
    QString m_ambFilePath; ///< chosen adapter file; empty: none
    QString iconPath;      ///< for the message boxes; empty until the first `connectDevice`
    QTimer m_timer;        ///< the disconnect watch: runs while connected

public:
    bool isFinished = false; ///< the window was closed

private:
    bool m_isConnected = false;
    bool m_isChoosing = false; ///< the selection dialog of the Connect button is open
    std::array<QLineEdit*, 16> m_addressEdits = {}; ///< in the order of `Octets`
};

#endif
