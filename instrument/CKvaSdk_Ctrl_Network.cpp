#include "files/CFileIO.h"
#include "instrument/CKvaSdk_Ctrl.h"

#include <QtDebug>

#include <cstring>

namespace {

/** A text field up to its NUL, never beyond the field. */
template <std::size_t Size>
QString fieldText(const char (&field)[Size]) {
    return QString::fromUtf8(field, static_cast<int>(::strnlen(field, Size)));
}

/** Cuts the text to leave room for the NUL, and zeroes the rest of the field. */
template <std::size_t Size>
void setField(char (&field)[Size], const char* bytes) {
    const char* text = bytes ? bytes : "";
    const std::size_t length = ::strnlen(text, Size - 1);
    std::memmove(field, text, length); // the text may be the field's own
    std::memset(field + length, 0, Size - length);
}

} // namespace

void CKvaSdk_Ctrl::clearNetworkInfo() {
    m_apConnectUse = false;
    m_dhcpUse = false;
    m_ssid.clear();
    m_encryptKey.clear();
    m_ipAddress.clear();
    m_subnetMask.clear();
    m_defaultGateway.clear();
    m_dns.clear();
    m_networkInfo = {};
}

void CKvaSdk_Ctrl::rebuildNetworkTexts() {
    m_apConnectUse = m_networkInfo.APConnectUse != 0;
    m_dhcpUse = m_networkInfo.DHCPUse != 0;
    m_ssid = fieldText(m_networkInfo.SSID);
    m_encryptKey = fieldText(m_networkInfo.EncryptKey);
    for (int i = 0; i < 4; ++i) {
        m_ipAddress.append(QString::number(m_networkInfo.IPAddress[i]));
        m_subnetMask.append(QString::number(m_networkInfo.SubnetMask[i]));
        m_defaultGateway.append(QString::number(m_networkInfo.DefaultGateway[i]));
        m_dns.append(QString::number(m_networkInfo.DNS[i]));
    }
}

bool CKvaSdk_Ctrl::GetNetworkInfo() {
    clearNetworkInfo();
    m_lastResult = KVA_GetNetworkInfo(&m_networkInfo);
    if (m_lastResult < 0) {
        qDebug("Failed to KVA_GetNetworkInfo(). \n");
        return false;
    }
    rebuildNetworkTexts();
    return true;
}

bool CKvaSdk_Ctrl::SetNetworkInfo() {
    m_lastResult = KVA_SetNetworkInfo(&m_networkInfo);
    if (m_lastResult < 0) {
        qDebug("Failed to KVA_SetNetworkInfo(). \n");
        return false;
    }
    return true;
}

bool CKvaSdk_Ctrl::ReadNetworkInfoFile(const char* path) {
    clearNetworkInfo();
    CFileIO file;
    if (!file.ReadNetworkIni(path, &m_networkInfo)) {
        qDebug("Failed to read networkInfo parameter data. \n");
        return false;
    }
    // Stricter than for the instrument's own settings: anybody may have written the file.
    if (m_networkInfo.APConnectUse > eAPConnect_ON || m_networkInfo.DHCPUse > eDHCP_ON)
        return false;
    rebuildNetworkTexts();
    return true;
}

bool CKvaSdk_Ctrl::WriteNetworkInfoFile(const char* path) {
    CFileIO file;
    if (!file.WriteNetworkIni(path, &m_networkInfo)) {
        qDebug("Failed to write network setting file. \n");
        return false;
    }
    return true;
}

void CKvaSdk_Ctrl::SetIPAddress(const uint8_t octets[4]) {
    std::memcpy(m_networkInfo.IPAddress, octets, sizeof m_networkInfo.IPAddress);
}

void CKvaSdk_Ctrl::SetSubnetMask(const uint8_t octets[4]) {
    std::memcpy(m_networkInfo.SubnetMask, octets, sizeof m_networkInfo.SubnetMask);
}

void CKvaSdk_Ctrl::SetDefaultGateway(const uint8_t octets[4]) {
    std::memcpy(m_networkInfo.DefaultGateway, octets, sizeof m_networkInfo.DefaultGateway);
}

void CKvaSdk_Ctrl::SetDNS(const uint8_t octets[4]) {
    std::memcpy(m_networkInfo.DNS, octets, sizeof m_networkInfo.DNS);
}

void CKvaSdk_Ctrl::SetSSID(const char* bytes) {
    setField(m_networkInfo.SSID, bytes);
}

void CKvaSdk_Ctrl::SetEncryptKey(const char* bytes) {
    setField(m_networkInfo.EncryptKey, bytes);
}

bool CKvaSdk_Ctrl::IsWifiModuleEnabled() {
    KVA_JIG_ACTIONOPTIONFACTORYDATA options = {};
    // The result stays out of m_lastResult: a failed query only means that there is no module.
    if (KVA_JIG_GetFactoryCalib_ACTIONOPTIONDATA(&options) < 0)
        return false;
    qDebug("  wifiModuleEnable :      %d\n", options.wifiModuleEnable);
    return options.wifiModuleEnable != 0;
}
