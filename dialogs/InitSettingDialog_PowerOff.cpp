#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "ui_InitSettingDialog.h"

#include <algorithm>

using DialogSupport::whileBusy;

InitSettingDialog::PowerOffButtons InitSettingDialog::powerOffButtons() const {
    return {ui->invalidradioBtn, ui->fifteenRadioBtn, ui->thirtyRadioBtn, ui->sixtyRadioBtn};
}

void InitSettingDialog::clearPowerOffTab() {
    for (QRadioButton* button : powerOffButtons())
        DialogSupport::forceUncheck(*button);
}

void InitSettingDialog::checkPowerOffButton(uint8_t mode) {
    const PowerOffButtons buttons = powerOffButtons();
    if (mode < buttons.size())
        buttons[mode]->setChecked(true);
}

void InitSettingDialog::setPowerOffButtonsEnabled(bool enabled) {
    ui->getAutoPWOffPushBtn->setEnabled(enabled);
    ui->setAutoPWOffPushBtn->setEnabled(enabled);
}

void InitSettingDialog::on_getAutoPWOffPushBtn_clicked() {
    const DialogSupport::FocusKeeper focus(*this);
    setPowerOffButtonsEnabled(false);
    uint8_t mode = 0xFF; // no button's mode: the instrument may leave the byte unwritten
    if (whileBusy([&] { return m_sdkCtrl->GetShutdownTime(mode); })) {
        checkPowerOffButton(mode);
        showInfoMessage(tr("Successful read body data."));
    } else {
        showErrorMessage(tr("Failed to read automatic shutdown time."));
    }
    setPowerOffButtonsEnabled(true);
}

void InitSettingDialog::on_setAutoPWOffPushBtn_clicked() {
    const DialogSupport::FocusKeeper focus(*this);
    setPowerOffButtonsEnabled(false);
    const PowerOffButtons buttons = powerOffButtons();
    const auto* checked = std::find_if(buttons.begin(), buttons.end(),
                                       [](const QRadioButton* b) { return b->isChecked(); });
    const auto mode = static_cast<uint8_t>(std::distance(buttons.begin(), checked));
    if (checked != buttons.end() && whileBusy([&] { return m_sdkCtrl->SetShutdownTime(mode); }))
        showInfoMessage(tr("Successful device writing."));
    else
        showErrorMessage(tr("Failed to write automatic shutdown time."));
    setPowerOffButtonsEnabled(true);
}
