#include "tests/dialogs/settings/ConnectedFixture.h"

#include <QJsonDocument>
#include <QTest>

namespace {

const QStringList addresses = words("IPAddress SubnetMask DefaultGateway DNS");

} // namespace

ConnectedFixture::ConnectedFixture(Page page, const QByteArray& patch) {
    TestBench::set(patch);
    QTest::qVerify(connectFirst(page), "connectFirst(page)", "", __FILE__, __LINE__);
    answers.onBox = [this](QMessageBox&) { atBox = {everything(), disabled(), texts(), calls()}; };
}

QStringList ConnectedFixture::busyAtBox() {
    QStringList names = atBox.disabled;
    for (const QString& name : disabled())
        names.removeOne(name);
    return names;
}

QJsonObject networkValues(double wireless, double dhcp) {
    return {{"APConnectUse", wireless},      {"DHCPUse", dhcp},
            {"IPAddress", "1.22.3.0"},       {"SubnetMask", "255.254.128.7"},
            {"DefaultGateway", "8.9.10.11"}, {"DNS", "12.13.14.15"},
            {"SSID", "typed name"},          {"EncryptKey", "typed key"}};
}

QStringList octetsOf(const QJsonObject& values) {
    QStringList octets;
    for (const QString& name : addresses)
        octets += values[name].toString().split('.');
    return octets;
}

QStringList networkTexts(const QJsonObject& values) {
    QStringList texts;
    for (const QString& name : QStringList{"SSID", "EncryptKey"} + addresses)
        texts.append(values[name].toString());
    return texts;
}

QByteArray settingsFile(const QJsonObject& values) {
    QString text = "[Network]\n; 0:eDHCP_OFF, 1:eDHCP_ON\n";
    for (const QString& name :
         words("DHCPUse IPAddress SubnetMask DefaultGateway SSID EncryptKey DNS"))
        text += name + '=' + values[name].toVariant().toString() + '\n';
    text += "; 0:eAPConnect_OFF, 1:eAPConnect_ON\nAPConnectUse=";
    return (text + values["APConnectUse"].toVariant().toString() + '\n').toUtf8();
}

QByteArray networkPatch(const QJsonObject& values) {
    const QJsonObject network = {{"active", values}};
    return QJsonDocument(QJsonObject{{"network", network}}).toJson();
}

void typeNetwork(SettingsFixture& f, const QJsonObject& values) {
    for (const QString& button :
         switchButtons(values["APConnectUse"].toDouble(), values["DHCPUse"].toDouble()))
        f.click(button);
    f.setOctets(octetsOf(values)); // after the switch of DHCP, which may empty them
    f.setNameAndKey(values["SSID"].toString(), values["EncryptKey"].toString());
}

QStringList switchButtons(double wireless, double dhcp) {
    return {wireless != 0 ? "enableRadioBtn" : "disableRadioBtn",
            dhcp != 0 ? "dhcpOnRadioBtn" : "dhcpOffRadioBtn"};
}

const CalibrationTab& calibrationTab(bool adapter) {
    static const CalibrationTab tabs[] = {
        {SettingsFixture::WhitePlate, 0, "selWCPFilePushBtn", "setWCPValPushBtn",
         "on_setWCPValPushBtn_clicked", 38, "87654321", "ambientAdapter", "white",
         "error: Failed to write WhiteCalibPlate file.",
         "error: Failed to write WhiteCalibPlate data.", "10000001", "10000000", "99999999"},
        {SettingsFixture::AmbientAdapter, 3, "selAmbLightAdpFilePushBtn", "setAmbAdpBodyPushBtn",
         "on_setAmbAdpBodyPushBtn_clicked", 75, "00054321", "white", "ambientAdapter",
         "error: Failed to write AmbientLightAdapter file.",
         "error: Failed to write AmbientLightAdapter data.", "00010001", "00010000", "00099999"},
    };
    return tabs[adapter ? 1 : 0];
}

QStringList checkLines(const QByteArray& serialLine, int count) {
    return TestBench::checkLines(serialLine.toInt(), TestBench::valueTexts(count));
}
