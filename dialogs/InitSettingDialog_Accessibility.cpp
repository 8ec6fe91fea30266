#include "dialogs/InitSettingDialog.h"
#include "dialogs/RadioKeys.h"
#include "ui_InitSettingDialog.h"

namespace {

/** Sets what a screen reader says: the widget's name, then its purpose. */
void nameWidget(QWidget* widget, const QString& name, const QString& description) {
    widget->setAccessibleName(name);
    widget->setAccessibleDescription(description);
}

/** A button is read by its own text. */
void describe(QWidget* widget, const QString& description) {
    widget->setAccessibleDescription(description);
}

} // namespace

void InitSettingDialog::nameFields() {
    nameWidget(ui->setBasetabWidget, tr("Settings"), tr("The settings of the instrument"));
    describe(ui->ConnectPushBtn, tr("Connects to an instrument and reads its settings"));
    describe(ui->disConnectPushBtn, tr("Ends the connection with the instrument"));
    describe(ui->ClosePushBtn, tr("Ends the program"));
    // A screen reader reads the label's value; the description says what the value is.
    describe(ui->serialNolabel, tr("Serial number of the instrument"));
    describe(ui->firmVersionlabel, tr("Firmware version of the instrument"));
    describe(ui->MACAddresslabel, tr("MAC address of the instrument"));
    nameNetworkFields();
    nameNetworkButtons();
    namePowerOffTab();
    nameCalibrationTabs();
}

void InitSettingDialog::nameNetworkFields() {
    // Without a name of its own, a box would be read with the name of its parent box.
    ui->AccessPointgroupBox->setAccessibleName(ui->AccessPointgroupBox->title());
    ui->tcpIPGroupBox->setAccessibleName(ui->tcpIPGroupBox->title());
    nameWidget(ui->enableRadioBtn, tr("Wireless LAN: enable"),
               tr("The instrument connects to the access point"));
    nameWidget(ui->disableRadioBtn, tr("Wireless LAN: disable"),
               tr("The instrument does not connect to the access point"));
    nameWidget(ui->SSIDlineEdit, tr("SSID"), tr("Name of the access point, up to 32 bytes"));
    nameWidget(ui->passwdlineEdit, tr("Security Key"),
               tr("Key of the access point, up to 64 bytes; the first key pressed empties it"));
    nameWidget(ui->dhcpOnRadioBtn, tr("DHCP: on"),
               tr("The instrument gets its addresses from the network"));
    nameWidget(ui->dhcpOffRadioBtn, tr("DHCP: off"),
               tr("The instrument uses the addresses below; choosing this empties them"));

    const std::array<QString, 4> addresses = {
        tr("IP Address, octet %1"),
        tr("Subnet Mask, octet %1"),
        tr("Default Gateway, octet %1"),
        tr("DNS Server, octet %1"),
    };
    const std::size_t octetsPerAddress = m_addressEdits.size() / addresses.size();
    for (std::size_t i = 0; i < m_addressEdits.size(); ++i) {
        const auto octet = static_cast<int>(i % octetsPerAddress) + 1;
        nameWidget(m_addressEdits[i], addresses[i / octetsPerAddress].arg(octet),
                   tr("A number from 0 to 255"));
    }
}

void InitSettingDialog::nameNetworkButtons() {
    describe(ui->readToFilePushBtn, tr("Loads network settings from a file into the fields"));
    describe(ui->writeFilePushBtn, tr("Saves the network settings in the fields to a file"));
    describe(ui->readBodyPushBtn, tr("Reads the network settings of the instrument"));
    describe(ui->writeBodyPushBtn, tr("Writes the network settings to the instrument"));
}

void InitSettingDialog::namePowerOffTab() {
    // The page itself gets the focus when its tab is selected.
    nameWidget(ui->autoPowerOfftab, tr("Auto Power Off"),
               tr("The time after which the instrument switches itself off"));
    describe(ui->invalidradioBtn, tr("The instrument does not switch itself off"));
    describe(ui->fifteenRadioBtn, tr("The instrument switches itself off after 15 minutes"));
    describe(ui->thirtyRadioBtn, tr("The instrument switches itself off after 30 minutes"));
    describe(ui->sixtyRadioBtn, tr("The instrument switches itself off after 60 minutes"));
    describe(ui->getAutoPWOffPushBtn, tr("Reads the power-off time of the instrument"));
    describe(ui->setAutoPWOffPushBtn, tr("Writes the power-off time to the instrument"));
}

void InitSettingDialog::nameCalibrationTabs() {
    describe(ui->curWCalibPlateSerialNolabel,
             tr("Serial number of the white calibration plate that the instrument holds"));
    describe(ui->selWCPFilePushBtn, tr("Chooses the value file of a white calibration plate"));
    describe(ui->setWCPValPushBtn,
             tr("Registers the white calibration plate of the chosen file in the instrument"));
    describe(ui->curAmbAdpSerialNolabel,
             tr("Serial number of the ambient light adapter that the instrument holds"));
    describe(ui->selAmbLightAdpFilePushBtn,
             tr("Chooses the value file of an ambient light adapter"));
    describe(ui->setAmbAdpBodyPushBtn,
             tr("Registers the ambient light adapter of the chosen file in the instrument"));
    for (QLabel* label : {ui->selWCPFileNamelabel, ui->selAmbAdpFnamelabel})
        describe(label, tr("Name of the chosen value file"));
    for (QLabel* label : {ui->selFileSerialNolabel, ui->selAmbAdpFSerialNolabel})
        describe(label, tr("Serial number in the chosen value file"));
}

void InitSettingDialog::separateChoices() {
    new RadioKeys({ui->enableRadioBtn, ui->disableRadioBtn}, this);
    new RadioKeys({ui->dhcpOnRadioBtn, ui->dhcpOffRadioBtn}, this);
    const PowerOffButtons times = powerOffButtons();
    new RadioKeys({times.begin(), times.end()}, this);
}
