#include "dialogs/ConnectSelectDialog.h"
#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "ui_InitSettingDialog.h"

#include <QtDebug>

using DialogSupport::whileBusy;

namespace {

constexpr int noInstrument = -1;
constexpr uint32_t connectWait = 10; // the library does not document the unit

} // namespace

void InitSettingDialog::connectDevice(int portNum, bool firstTime) {
    if (firstTime) {
        iconPath = DialogSupport::iconPath();
        DialogSupport::prepareWindow(*this, iconPath, DialogSupport::closableWindow);
    }
    const bool isConnected =
        portNum >= 0 && whileBusy([&] { return m_sdkCtrl->Connect(portNum, connectWait); });
    if (isConnected)
        fillFromInstrument();
    else if (portNum >= 0)
        showErrorMessage(tr("Failed to connect device."));
    // With an empty list at start the index is 0, which has no instrument either.
    if (portNum < 0 || portNum >= m_sdkCtrl->m_deviceCount)
        showNoInstrument();
    // A value file must be chosen again before its values can be sent.
    ui->setWCPValPushBtn->setEnabled(false);
    ui->setAmbAdpBodyPushBtn->setEnabled(false);
}

void InitSettingDialog::showNoInstrument() {
    ui->disConnectPushBtn->setEnabled(false);
    setTabsEnabled(false);
    uncheckNetworkSwitches();
    ui->ConnectPushBtn->setFocus();
}

void InitSettingDialog::fillFromInstrument() {
    ui->setBasetabWidget->setEnabled(true);
    setTabsEnabled(true);
    if (fillIdentity()) {
        fillWirelessLan();
        fillCalibrationSerialNos();
        fillPowerOffTime();
    }
    enterConnectedState();
    // The user may have closed the window while a message was open. Do not stay connected then.
    if (isFinished)
        endConnection();
}

bool InitSettingDialog::fillIdentity() {
    if (!whileBusy([this] { return m_sdkCtrl->GetDeviceInfo(); })) {
        clearIdentity();
        ui->dhcpOnRadioBtn->setChecked(false);
        ui->dhcpOffRadioBtn->setChecked(false);
        showErrorMessage(tr("Failed to read device data."));
        return false;
    }
    ui->serialNolabel->setText(m_sdkCtrl->m_serialNo);
    ui->firmVersionlabel->setText(m_sdkCtrl->m_firmVersion);
    ui->MACAddresslabel->setText(m_sdkCtrl->m_macAddress);
    return true;
}

void InitSettingDialog::fillWirelessLan() {
    if (!whileBusy([this] { return m_sdkCtrl->IsWifiModuleEnabled(); })) {
        ui->networkSetTab->setEnabled(false);
        uncheckNetworkSwitches();
        showInfoMessage(tr("Wireless LAN is invalid."));
        return;
    }
    ui->networkSetTab->setEnabled(true);
    if (whileBusy([this] { return m_sdkCtrl->GetNetworkInfo(); }))
        fillNetworkTab();
}

void InitSettingDialog::fillCalibrationSerialNos() {
    const bool read = whileBusy([this] { return m_sdkCtrl->GetCalRefSerialNo(); });
    // Both texts are empty when they could not be read.
    ui->curWCalibPlateSerialNolabel->setText(m_sdkCtrl->m_curWCPSerialNo);
    ui->curAmbAdpSerialNolabel->setText(m_sdkCtrl->m_curAmbAdpSerialNo);
    if (!read) {
        showErrorMessage(tr("Failed to device WhiteCalibPlateSerialNo."));
        showErrorMessage(tr("Failed to device AmbientLightAdapterSerialNo."));
    }
}

void InitSettingDialog::fillPowerOffTime() {
    uint8_t mode = 0;
    if (whileBusy([&] { return m_sdkCtrl->GetShutdownTime(mode); }))
        checkPowerOffButton(mode);
    else
        showErrorMessage(tr("Failed to read automatic shutdown time."));
}

void InitSettingDialog::enterConnectedState() {
    ui->ConnectPushBtn->setEnabled(false);
    ui->disConnectPushBtn->setEnabled(true);
    ui->ClosePushBtn->setEnabled(false);
    m_isConnected = true;
    m_timer.start();
}

void InitSettingDialog::resetToNotConnected() {
    ui->ConnectPushBtn->setEnabled(true);
    ui->disConnectPushBtn->setEnabled(false);
    ui->ClosePushBtn->setEnabled(true);
    setTabsEnabled(false);

    // All texts first, then all choices.
    clearIdentity();
    clearNetworkTab();
    clearCalibrationTabs();
    clearNetworkSwitches();
    clearPowerOffTab();
    m_isConnected = false;
}

void InitSettingDialog::setTabsEnabled(bool enabled) {
    ui->networkSetTab->setEnabled(enabled);
    ui->autoPowerOfftab->setEnabled(enabled);
    ui->ambLightAdpTab->setEnabled(enabled);
    ui->wCalibPlateTab->setEnabled(enabled);
}

void InitSettingDialog::clearIdentity() {
    ui->serialNolabel->setText(QString());
    ui->firmVersionlabel->setText(QString());
    ui->MACAddresslabel->setText(QString());
}

void InitSettingDialog::on_ConnectPushBtn_clicked() {
    if (m_isChoosing) {
        // Connect was pressed again while the selection dialog is open: bring that to the front.
        m_connectSelectDialog->raise();
        m_connectSelectDialog->activateWindow();
        return;
    }
    whileBusy([this] { return m_sdkCtrl->GetDevicePortList(); });
    int portNum = 0;
    if (m_sdkCtrl->m_deviceCount == 0) {
        showInfoMessage(tr("The measuring instruments is not connected."));
        portNum = noInstrument;
    } else if (m_sdkCtrl->m_deviceCount > 1) {
        m_isChoosing = true;
        m_connectSelectDialog->isFinished = false;
        const bool chosen = m_connectSelectDialog->choose(m_sdkCtrl->m_deviceNameList,
                                                          [this] { return isFinished; });
        m_isChoosing = false;
        if (!chosen)
            return; // this dialog was closed meanwhile
        portNum = m_connectSelectDialog->portNum;
    }
    connectDevice(portNum, false);
}

void InitSettingDialog::on_disConnectPushBtn_clicked() {
    if (!m_isConnected)
        return;
    if (!whileBusy([this] { return m_sdkCtrl->Disconnect(); })) {
        showErrorMessage(tr("Failed to device disconnect."));
        return;
    }
    m_timer.stop();
    resetToNotConnected();
}

void InitSettingDialog::on_ClosePushBtn_clicked() {
    if (m_isConnected)
        endConnection();
    isFinished = true;
    close();
}

void InitSettingDialog::endConnection() {
    if (!whileBusy([this] { return m_sdkCtrl->Disconnect(); }))
        showErrorMessage(tr("Failed to disconnect device."));
    m_isConnected = false;
    m_timer.stop();
}

void InitSettingDialog::timerHit() {
    qDebug("eEventCode_DisConnect check \n");
    if (!g_deviceDisconnected.load(std::memory_order_relaxed))
        return;
    m_timer.stop();
    g_deviceDisconnected.store(false, std::memory_order_relaxed);
    qDebug("eEventCode_DisConnect true \n");
    resetToNotConnected();
    showErrorMessage(tr("The connection with the measuring instrument was disconnected."));
}
