#include "dialogs/DialogSupport.h"
#include "dialogs/InitSettingDialog.h"
#include "instrument/CKvaSdk_Ctrl.h"
#include "ui_InitSettingDialog.h"

#include <QtDebug>

#include <algorithm>

using DialogSupport::whileBusy;

namespace {

constexpr unsigned int highestOctet = 255;
constexpr std::size_t octetsPerAddress = 4;

void checkSwitch(bool isOn, QRadioButton& on, QRadioButton& off) {
    (isOn ? on : off).setChecked(true);
    (isOn ? off : on).setChecked(false);
}

} // namespace

void InitSettingDialog::SetTcpIpEditsEnabled(bool enabled) {
    for (QLineEdit* edit : m_addressEdits)
        edit->setEnabled(enabled);
}

bool InitSettingDialog::ValidateAddressEdits() {
    return std::all_of(m_addressEdits.begin(), m_addressEdits.end(),
                       [this](const QLineEdit* edit) { return IsDigitsOnly(edit->text()); });
}

bool InitSettingDialog::IsDigitsOnly(const QString& text) {
    qDebug("length:%d\n", static_cast<int>(text.length())); // Qt 6 counts in more than an int
    for (const QChar character : text) {
        qDebug("%s", qUtf8Printable(QString(character)));
        if (character < QLatin1Char('0') || character > QLatin1Char('9'))
            return false;
    }
    return !text.isEmpty();
}

void InitSettingDialog::clearNetworkTab() {
    ui->SSIDlineEdit->setText(QString());
    ui->passwdlineEdit->setText(QString());
    for (QLineEdit* edit : m_addressEdits)
        edit->setText(QString());
}

void InitSettingDialog::clearNetworkSwitches() {
    ui->enableRadioBtn->setChecked(false);
    ui->disableRadioBtn->setChecked(false);
    DialogSupport::forceUncheck(*ui->dhcpOnRadioBtn);
    DialogSupport::forceUncheck(*ui->dhcpOffRadioBtn);
}

void InitSettingDialog::uncheckNetworkSwitches() {
    ui->enableRadioBtn->setChecked(false);
    ui->disableRadioBtn->setChecked(false);
    ui->dhcpOnRadioBtn->setChecked(false);
    ui->dhcpOffRadioBtn->setChecked(false);
}

void InitSettingDialog::fillNetworkTab() {
    const CKvaSdk_Ctrl& ctrl = *m_sdkCtrl;
    checkSwitch(ctrl.m_apConnectUse, *ui->enableRadioBtn, *ui->disableRadioBtn);
    checkSwitch(ctrl.m_dhcpUse, *ui->dhcpOnRadioBtn, *ui->dhcpOffRadioBtn);
    SetTcpIpEditsEnabled(!ctrl.m_dhcpUse);

    ui->SSIDlineEdit->setText(ctrl.m_ssid);
    ui->passwdlineEdit->setText(ctrl.m_encryptKey);
    const QStringList octets =
        ctrl.m_ipAddress + ctrl.m_subnetMask + ctrl.m_defaultGateway + ctrl.m_dns;
    for (std::size_t i = 0; i < m_addressEdits.size(); ++i)
        m_addressEdits[i]->setText(octets.value(static_cast<int>(i)));
}

std::optional<InitSettingDialog::Octets> InitSettingDialog::readOctets() {
    Octets octets = {};
    bool valid = ValidateAddressEdits();
    for (std::size_t i = 0; valid && i < octets.size(); ++i) {
        const auto value = static_cast<unsigned int>(m_addressEdits[i]->text().toInt());
        valid = value <= highestOctet;
        octets[i] = static_cast<uint8_t>(value & highestOctet);
    }
    if (!valid) {
        showErrorMessage(tr("The input value is invalid."));
        return std::nullopt;
    }
    return octets;
}

void InitSettingDialog::collectNetworkTab(const Octets& octets) {
    CKvaSdk_Ctrl& ctrl = *m_sdkCtrl;
    ctrl.SetIPAddress(octets.data());
    ctrl.SetSubnetMask(octets.data() + octetsPerAddress);
    ctrl.SetDefaultGateway(octets.data() + 2 * octetsPerAddress);
    ctrl.SetDNS(octets.data() + 3 * octetsPerAddress);

    // With neither button of a switch checked, its field keeps the value of the last read.
    if (ui->enableRadioBtn->isChecked())
        ctrl.m_networkInfo.APConnectUse = eAPConnect_ON;
    if (ui->disableRadioBtn->isChecked())
        ctrl.m_networkInfo.APConnectUse = eAPConnect_OFF;
    if (ui->dhcpOnRadioBtn->isChecked())
        ctrl.m_networkInfo.DHCPUse = eDHCP_ON;
    if (ui->dhcpOffRadioBtn->isChecked())
        ctrl.m_networkInfo.DHCPUse = eDHCP_OFF;

    ctrl.SetSSID(ui->SSIDlineEdit->text().toLocal8Bit().constData());
    ctrl.SetEncryptKey(ui->passwdlineEdit->text().toLocal8Bit().constData());
}

void InitSettingDialog::setNetworkButtonsEnabled(bool enabled) {
    ui->readToFilePushBtn->setEnabled(enabled);
    ui->writeFilePushBtn->setEnabled(enabled);
    ui->readBodyPushBtn->setEnabled(enabled);
    ui->writeBodyPushBtn->setEnabled(enabled);
}

void InitSettingDialog::on_dhcpOnRadioBtn_clicked() {
    SetTcpIpEditsEnabled(false);
}

void InitSettingDialog::on_dhcpOffRadioBtn_clicked() {
    SetTcpIpEditsEnabled(true);
    for (QLineEdit* edit : m_addressEdits)
        edit->setText(QString());
}

void InitSettingDialog::on_readBodyPushBtn_clicked() {
    if (!whileBusy([this] { return m_sdkCtrl->GetNetworkInfo(); })) {
        showErrorMessage(tr("Failed to read Network Infomation data."));
        return;
    }
    fillNetworkTab();
    showInfoMessage(tr("Successful read body data."));
}

void InitSettingDialog::on_readToFilePushBtn_clicked() {
    const QString name = askFileName(QFileDialog::getOpenFileName, tr("Open"), tr("*(*.*)"));
    if (name.isEmpty())
        return;
    if (!m_sdkCtrl->ReadNetworkInfoFile(name.toLocal8Bit().constData())) {
        showErrorMessage(tr("Failed to read Network Infomation file data."));
        return;
    }
    fillNetworkTab();
    showInfoMessage(tr("Successful read file data."));
}

void InitSettingDialog::on_writeFilePushBtn_clicked() {
    const QString name = askFileName(QFileDialog::getSaveFileName, tr("Save"), tr("ini(*.ini)"));
    if (name.isEmpty())
        return;
    // Also with DHCP on, a file gets the addresses that the page shows.
    const std::optional<Octets> octets = readOctets();
    if (!octets)
        return;
    collectNetworkTab(*octets);
    if (m_sdkCtrl->WriteNetworkInfoFile(name.toLocal8Bit().constData()))
        showInfoMessage(tr("Successful file writing."));
    else
        showErrorMessage(tr("Failed to write Network Infomation file data."));
}

void InitSettingDialog::on_writeBodyPushBtn_clicked() {
    const DialogSupport::FocusKeeper focus(*this);
    // Prevents a second click, which would queue another write.
    setNetworkButtonsEnabled(false);
    writeNetworkToBody();
    setNetworkButtonsEnabled(true);
}

void InitSettingDialog::writeNetworkToBody() {
    // With DHCP on, the instrument gets 0.0.0.0 for all four addresses, whatever the edits hold.
    const std::optional<Octets> octets =
        ui->dhcpOnRadioBtn->isChecked() ? std::optional<Octets>(Octets{}) : readOctets();
    if (!octets)
        return;
    collectNetworkTab(*octets);
    if (whileBusy([this] { return m_sdkCtrl->SetNetworkInfo(); })) {
        showInfoMessage(tr("Write successful. To reflect, after [Disconnect], turn the power "
                           "supply of the measuring instrument OFF -> ON."));
    } else {
        showErrorMessage(tr("Failed to write Network Infomation data."));
    }
}
