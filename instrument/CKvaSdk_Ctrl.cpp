#include "instrument/CKvaSdk_Ctrl.h"
#include "instrument/ResultNames.h"

#include <QLatin1Char>
#include <QLatin1String>
#include <QtDebug>

#include <algorithm>
#include <cstring>

std::atomic<bool> g_deviceDisconnected{false};

namespace {

/** The text of a listed instrument, for the selection dialog. */
QString portText(const KVA_PORTINFO& port) {
    const QString serialNo = QStringLiteral("%1").arg(port.serialNumber, 8, 10, QLatin1Char('0'));
    if (port.portType == ePortType_USB)
        return QStringLiteral("VARNE-1(USB,Serial#%1)").arg(serialNo);
    const auto length = ::strnlen(port.portName, sizeof port.portName);
    const QString name = QString::fromLatin1(port.portName, static_cast<int>(length));
    // Both in one call: a "%2" in the name must not be replaced by the serial number.
    return QStringLiteral("VARNE-1(%1,Serial#%2)").arg(name, serialNo);
}

} // namespace

QString ResultCodeToString(KVA_RESULT code) {
    return QString::fromStdString(resultName(code));
}

void DeviceEventHandler(uint32_t code, uint32_t rawDataCount, int32_t error) {
    qDebug("outEventCode[%d],outRAWDataCount[%d],outError[%d] \n", static_cast<int>(code),
           static_cast<int>(rawDataCount), error);
    if (code > eEventCode_Last) {
        qDebug("eEventCode Unknown[%d] \n", static_cast<int>(code));
    } else if (code == eEventCode_Standby) {
        qDebug("eEventCode_Standby \n");
        g_deviceDisconnected.store(false, std::memory_order_relaxed);
    } else if (code == eEventCode_DisConnect) {
        qDebug("eEventCode_DisConnect \n");
        g_deviceDisconnected.store(true, std::memory_order_relaxed);
    }
}

CKvaSdk_Ctrl::CKvaSdk_Ctrl() {
    m_lastResult = KVA_RegisterDeviceEventHandler(DeviceEventHandler);
}

CKvaSdk_Ctrl::~CKvaSdk_Ctrl() {
    m_lastResult = KVA_RegisterDeviceEventHandler(nullptr);
}

bool CKvaSdk_Ctrl::GetDevicePortList() {
    m_lastResult = KVA_GetDevicePortList(nullptr, &m_portCount, 0);
    qDebug("port count[%d] \n", m_portCount);

    // Before the result is checked: after a failed enumeration the list is empty, not outdated.
    m_deviceCount = 0;
    std::memset(m_portList, 0, sizeof m_portList);
    m_ports.clear();
    m_deviceNameList.clear();
    if (m_lastResult < 0)
        return false;

    m_lastResult = KVA_GetDevicePortList(m_portList, &m_portCount, maxPorts);
    if (m_lastResult < 0)
        return false;

    const int32_t filled = std::clamp<int32_t>(m_portCount, 0, maxPorts);
    for (int32_t i = 0; i < filled; ++i) {
        m_ports.push_back(m_portList[i]);
        ++m_deviceCount;
        m_deviceNameList.append(portText(m_portList[i]));
    }
    return true;
}

bool CKvaSdk_Ctrl::Connect(int32_t portIndex, uint32_t wait) {
    if (portIndex < 0 || portIndex >= m_deviceCount) {
        qDebug("conect error \n");
        return false;
    }
    m_lastResult = KVA_Connect(&m_ports[static_cast<std::size_t>(portIndex)], wait);
    if (m_lastResult < 0) {
        qDebug("conect error \n");
        return false;
    }
    m_connected = true;
    return true;
}

bool CKvaSdk_Ctrl::Disconnect() {
    if (!m_connected) {
        qDebug("diconect already \n");
        return false;
    }
    m_lastResult = KVA_Disconnect();
    if (m_lastResult < 0) {
        qDebug("diconect error \n");
        return false;
    }
    m_connected = false;
    return true;
}

bool CKvaSdk_Ctrl::GetDeviceInfo() {
    m_deviceInfo = {};
    m_lastResult = KVA_GetDeviceInfo(&m_deviceInfo);
    if (m_lastResult < 0) {
        m_serialNo.clear();
        m_firmVersion.clear();
        m_macAddress.clear();
        qDebug("Failed to read Firm data. \n");
        return false;
    }
    const uint8_t* mac = m_deviceInfo.macAddress;
    m_serialNo = QString::asprintf("%08d", static_cast<int32_t>(m_deviceInfo.serialNumber));
    m_firmVersion = QString::asprintf("%u.%02d.%04d", m_deviceInfo.firmVersionMajor,
                                      m_deviceInfo.firmVersionMinor, m_deviceInfo.firmVersionBuild);
    m_macAddress = QString::asprintf("%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2],
                                     mac[3], mac[4], mac[5]);
    return true;
}
